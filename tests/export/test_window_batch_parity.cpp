// The window and tallyport-batch, given the same choices on the same records, write the same
// bytes and mark the same records.
#include "export_window_fixture.h"

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

} // namespace
} // namespace tp::test
