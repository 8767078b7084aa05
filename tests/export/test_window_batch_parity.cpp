// The window and tallyport-batch, given the same choices on the same records, write the same
// bytes and mark the same records.
#include "export_window_fixture.h"
#include "gps_window_fixture.h"

#include "support/export_rows.h"
#include "support/programs.h"

#include <QProcess>
#include <QThread>

namespace tp::test {
namespace {

const auto* const kParityGui = ::testing::AddGlobalTestEnvironment(new GuiEnvironment);

class WindowBatchParity : public ExportFlowTest {
protected:
    // id:Approved:ExportID of every time record, in id order.
    QString marks()
    {
        return site.rows("Select NewTimeRecordID, Approved, ExportID from JobTimeRecords order by NewTimeRecordID");
    }
    QString inventoryMarks()
    {
        return site.rows("Select InventoryHistoryID, Approved, ExportID from InventoryHistory order by InventoryHistoryID");
    }

    // The window's road for one data set: choose, tick the rows in order, select all records
    // (or the range), scan, format as asked, preview and create the file. Returns its bytes.
    QByteArray windowFile(const char* commandLine, const QString& dataSet, std::initializer_list<int> rows,
                          const QString& name, bool formats = false, bool dated = false)
    {
        open(commandLine);
        clickListItem(child<QListWidget>("lstTables"), dataSet);
        tick(rows);
        if (dated) {
            press("cmdDate");
            pickDate(button("cmdStart"), 2005, 1, 15);
            pickDate(button("cmdStop"), 2005, 1, 20);
        } else {
            press("cmdAll");
        }
        press("cmdOK");
        if (formats) {
            press("cmdFormatDate");
            press("cmdFormatTime");
        }
        press("cmdPreviewExport");
        const QString file = outFile(name);
        dialogs.names.push_back(file);
        press("cmdPreviewExport");
        EXPECT_EQ(status(), QStringLiteral("Export Completed Successfully"));
        window.reset();
        return readBytes(file);
    }
    QByteArray batchFile(const QStringList& arguments, const QString& name)
    {
        const QString file = outFile(name);
        const ProgramRun batch = runProgram(TP_BINARY_DIR "/tallyport-batch",
                                            QStringList{"export"} + arguments + QStringList{"--output", file},
                                            site.settingsFolder());
        EXPECT_EQ(batch.exitCode, 0) << batch.err.toStdString();
        return readBytes(file);
    }
};

TEST_F(WindowBatchParity, DateRangeWithEditedHeaderAndFormatsGivesTheSameFileAndMarks)
{
    addTimes({{1, 20050110, 93000}, {2, 20050115, 143005}, {3, 20050115, 5}, {4, 20050120, 120000},
              {5, 20050125}, {6, 20050118, 80000, 9001, 0}, {7, 20050119, 80000, 9002}});
    const QString before = marks();

    openTimeData();
    tick({5, 6, 7, 1});   // EmployeeLastName, Date, Time, TimeRecordID
    fieldGrid()->item(0, 4)->setText(QStringLiteral("Emp \"ID\""));
    press("cmdDate");
    pickDate(button("cmdStart"), 2005, 1, 15);
    pickDate(button("cmdStop"), 2005, 1, 20);
    press("cmdOK");
    press("cmdFormatDate");
    press("cmdFormatTime");
    press("cmdPreviewExport");
    const QString windowFile = outFile(QStringLiteral("window.txt"));
    dialogs.names.push_back(windowFile);
    press("cmdPreviewExport");
    ASSERT_EQ(status(), QStringLiteral("Export Completed Successfully"));
    const QByteArray windowBytes = readBytes(windowFile);
    const QString windowMarks = marks();
    ASSERT_NE(windowMarks, before);
    window.reset();

    // Back to the records as they were, then the same choices on the command line.
    ASSERT_TRUE(site.exec(QStringLiteral("Update JobTimeRecords set Approved = 1, ExportID = 0 "
                                         "where NewTimeRecordID <> 6")));
    ASSERT_EQ(marks(), before);
    const QString batchFile = outFile(QStringLiteral("batch.txt"));
    const ProgramRun batch = runProgram(
        TP_BINARY_DIR "/tallyport-batch",
        {"export", "--settings", "KRV.ini", "--user", "1", "--dataset", "Time Data", "--fields",
         "EmployeeLastName,Date,Time,TimeRecordID=Emp \"ID\"", "--from", "01/15/2005", "--to", "01/20/2005",
         "--format-date", "--format-time", "--output", batchFile},
        site.settingsFolder());
    ASSERT_EQ(batch.exitCode, 0) << batch.err.toStdString();
    EXPECT_EQ(readBytes(batchFile), windowBytes);
    EXPECT_EQ(marks(), windowMarks);
    // Inclusive at both ends, in date order; the unapproved record stays out and an
    // employee without a name row reads "Unknown".
    EXPECT_EQ(windowBytes, QByteArray("\"EmployeeLastName\",\"Date\",\"Time\",\"Emp \"ID\"\"\r\n"
                                      "\"O'Hara\",\"01/15/2005\",\"14:30:05\",2\r\n"
                                      "\"O'Hara\",\"01/15/2005\",\"00:00:05\",3\r\n"
                                      "\"Unknown\",\"01/19/2005\",\"8:00:00\",7\r\n"
                                      "\"O'Hara\",\"01/20/2005\",\"12:00:00\",4\r\n"));
}

TEST_F(WindowBatchParity, InventoryByDateWithFormatsGivesTheSameFileAndMarks)
{
    ASSERT_TRUE(site.exec(QStringLiteral("Delete from InventoryHistory")));
    ASSERT_TRUE(site.exec(insertInventoryRows(
        {{.id = 1, .employee = 9001, .date = 20050110}, {.id = 2, .employee = 9001, .date = 20050120, .time = 93000},
         {.id = 3, .employee = 9002, .date = 20050115, .time = 5}, {.id = 4, .employee = 9001, .date = 20050116, .approved = 0},
         {.id = 5, .employee = 9001, .date = 20050117, .approved = 2, .exportId = 1}})));
    const QString before = inventoryMarks();

    // EmployeeLastName, Date, Time, InventoryHistoryID
    const QByteArray windowBytes =
        windowFile("x,KRV.ini,true,1", QStringLiteral("Inventory Data"), {5, 8, 9, 1}, "inv-window.txt", true, true);
    const QString windowMarks = inventoryMarks();
    EXPECT_EQ(windowMarks, QStringLiteral("1:1:0 2:2:1 3:2:1 4:0:0 5:2:1"));
    ASSERT_TRUE(site.exec(QStringLiteral("Update InventoryHistory set Approved = 1, ExportID = 0 where InventoryHistoryID in (2, 3)")));
    ASSERT_EQ(inventoryMarks(), before);

    const QByteArray batchBytes = batchFile(
        {"--settings", "KRV.ini", "--user", "1", "--dataset", "Inventory Data", "--fields",
         "EmployeeLastName,Date,Time,InventoryHistoryID", "--from", "01/15/2005", "--to", "01/20/2005",
         "--format-date", "--format-time"},
        "inv-batch.txt");
    EXPECT_EQ(batchBytes, windowBytes);
    EXPECT_EQ(inventoryMarks(), windowMarks);
    EXPECT_EQ(windowBytes, QByteArray("\"EmployeeLastName\",\"Date\",\"Time\",\"InventoryHistoryID\"\r\n"
                                      "\"Unknown\",\"01/15/2005\",\"00:00:05\",3\r\n"
                                      "\"O'Hara\",\"01/20/2005\",\"9:30:00\",2\r\n"));
}

TEST_F(WindowBatchParity, MapLocationsAndPinpointsGiveTheSameFiles)
{
    ASSERT_TRUE(site.exec(QStringLiteral("Delete from CommonLocations")));
    ASSERT_TRUE(site.exec(insertLocationRows({{.number = 4, .name = "Depot", .branch = 1},
                                              {.number = 9, .name = "O'Neil \"Yard\"", .city = "Tyler", .branch = 2}})));
    // BranchNumber, LocationName, City, LocationNumber, Longitude
    const QByteArray mapWindow =
        windowFile("x,KRV.ini,true,1", QStringLiteral("Map Locations Data"), {10, 2, 5, 1, 8}, "map-window.txt");
    const QByteArray mapBatch = batchFile({"--settings", "KRV.ini", "--user", "1", "--dataset", "Map Locations Data",
                                           "--fields", "BranchNumber,LocationName,City,LocationNumber,Longitude"},
                                          "map-batch.txt");
    EXPECT_EQ(mapBatch, mapWindow);
    EXPECT_EQ(mapWindow, QByteArray("\"BranchNumber\",\"LocationName\",\"City\",\"LocationNumber\",\"Longitude\"\r\n"
                                    "1,\"Depot\",\"Tulsa\",4,\"-95.9928\"\r\n"
                                    "2,\"O'Neil \"Yard\"\",\"Tyler\",9,\"-95.9928\"\r\n"));

    // PinpointName, State, Longitude under the other settings file, by a user without rights.
    const QByteArray pinWindow =
        windowFile("x,lumtrek.ini,true,3", QStringLiteral("Pinpoint Data"), {1, 5, 7}, "pin-window.txt");
    const QByteArray pinBatch = batchFile({"--settings", "lumtrek.ini", "--user", "3", "--dataset", "Pinpoint Data",
                                           "--fields", "PinpointName,State,Longitude"},
                                          "pin-batch.txt");
    EXPECT_EQ(pinBatch, pinWindow);
    EXPECT_EQ(pinWindow, QByteArray("\"PinpointName\",\"State\",\"Longitude\"\r\n"
                                    "\"Depot\",\"OK\",\"-95.9928\"\r\n\"O'Neil \"Yard\"\",\"OK\",\"-95.9928\"\r\n"));
}

// "A window that scanned 300 records while a batch run exported 200 of them writes only the
// 100 still waiting": the batch run holds the lock when "Create File" is pressed; the window
// waits for it and then reads the selection afresh.
TEST_F(WindowBatchParity, WindowThatScannedWhatABatchRunTookWritesOnlyWhatIsLeft)
{
    addWaiting(200, 1, 20050110);
    addWaiting(100, 201, 20050131);
    openTimeData();
    tick({1});   // TimeRecordID
    press("cmdAll");
    press("cmdOK");
    ASSERT_EQ(window->session().ExportRecordCount, 300);
    press("cmdPreviewExport");

    QProcess batch;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert("TALLYPORT_SETTINGS_DIR", site.settingsFolder());
    env.insert("TALLYPORT_EXPORT_FAULT", "synced:sleep1500");   // lingers holding the lock
    batch.setProcessEnvironment(env);
    const QString batchFile = outFile(QStringLiteral("batch.txt"));
    batch.start(TP_BINARY_DIR "/tallyport-batch",
                {"export", "--settings", "KRV.ini", "--user", "1", "--dataset", "Time Data", "--fields",
                 "TimeRecordID", "--from", "01/10/2005", "--to", "01/10/2005", "--yes", "--output", batchFile});
    ASSERT_TRUE(batch.waitForStarted());
    QThread::msleep(500);
    const QString windowFile = outFile(QStringLiteral("window.txt"));
    dialogs.names.push_back(windowFile);
    press("cmdPreviewExport");
    // The window's wait lets events run, so the batch run may already have been reaped.
    if (batch.state() != QProcess::NotRunning) {
        ASSERT_TRUE(batch.waitForFinished(30000));
    }
    EXPECT_EQ(batch.exitCode(), 0) << batch.readAllStandardError().constData();
    EXPECT_EQ(status(), QStringLiteral("Export Completed Successfully"));

    QByteArray expectedBatch = "\"TimeRecordID\"\r\n", expectedWindow = expectedBatch;
    for (int id = 1; id <= 300; ++id)
        (id <= 200 ? expectedBatch : expectedWindow) += QByteArray::number(id) + "\r\n";
    EXPECT_EQ(readBytes(batchFile), expectedBatch);
    EXPECT_EQ(readBytes(windowFile), expectedWindow);
    EXPECT_EQ(site.scalar("Select count(*) from JobTimeRecords where Approved = 2 and ExportID = 1"), 300);
}

using GpsWindowBatchParity = GpsWindowTest;

TEST_F(GpsWindowBatchParity, AllSubjectsInARangeWithEditedHeaderAndFormatsGiveTheSameFile)
{
    openGps();
    tick({7, 6, 1, 3, 4});   // Time, Date, EmployeeFirstName, TrackID, Longitude
    fieldGrid()->item(2, 4)->setText(QStringLiteral("Track \"no\""));
    chooseSubjects({0});
    press("cmdDate");
    pickDate(button("cmdStart"), 2004, 3, 2);
    pickDate(button("cmdStop"), 2004, 3, 6);
    press("cmdOK");
    press("cmdFormatDate");
    press("cmdFormatTime");
    press("cmdPreviewExport");
    const QString windowFile = outFile(QStringLiteral("window.txt"));
    dialogs.names.push_back(windowFile);
    press("cmdPreviewExport");
    ASSERT_EQ(status(), QStringLiteral("Export Completed Successfully"));
    const QByteArray windowBytes = readBytes(windowFile);
    window.reset();

    const QString batchFile = outFile(QStringLiteral("batch.txt"));
    const ProgramRun batch = runProgram(
        TP_BINARY_DIR "/tallyport-batch",
        {"export", "--settings", "KRV.ini", "--user", "1", "--dataset", "GPS Data", "--fields",
         "Time,Date,EmployeeFirstName,TrackID=Track \"no\",Longitude", "--from", "03/02/2004", "--to",
         "03/06/2004", "--subject", "all", "--format-date", "--format-time", "--output", batchFile},
        site.settingsFolder());
    ASSERT_EQ(batch.exitCode, 0) << batch.err.toStdString();
    EXPECT_EQ(readBytes(batchFile), windowBytes);
    // Subject after subject, each pairing's tracks in date order; no -1 fix.
    EXPECT_EQ(windowBytes, QByteArray("\"Time\",\"Date\",\"EmployeeFirstName\",\"Track \"no\"\",\"Longitude\"\r\n"
                                      "\"7:00:00\",\"03/04/2004\",\"UnAssigned Individual\",24,-120.5\r\n"
                                      "\"7:00:30\",\"03/04/2004\",\"UnAssigned Individual\",24,-120.25\r\n"
                                      "\"12:00:00\",\"03/02/2004\",\"Ann\",22,-122.125\r\n"
                                      "\"8:00:00\",\"03/05/2004\",\"Ann\",21,-122.75\r\n"
                                      "\"8:00:10\",\"03/05/2004\",\"Ann\",21,-122.5\r\n"
                                      "\"9:00:00\",\"03/03/2004\",\"Ann\",23,-121.5\r\n"
                                      "\"11:00:00\",\"03/06/2004\",\"Unknown\",26,-119.5\r\n"));
}

} // namespace
} // namespace tp::test
