// The window and tallyport-batch, given the same choices on the same records, write the same
// bytes and mark the same records.
#include "export_window_fixture.h"
#include "gps_window_fixture.h"

#include "support/programs.h"

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
