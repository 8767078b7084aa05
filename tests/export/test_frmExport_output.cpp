// The Export window's output stage driven headless: date and time formats in the grid, the
// text-file preview and its Cancel, and the ways a save can end (read-only file, no file
// name, a long export declined).
#include "export_window_fixture.h"

#include <QFile>

namespace tp::test {
namespace {

const auto* const kOutputGui = ::testing::AddGlobalTestEnvironment(new GuiEnvironment);

class ExportOutput : public ExportFlowTest {
protected:
    // Ticks the rows, selects all records and scans.
    void scanAll(std::initializer_list<int> rows)
    {
        openTimeData();
        tick(rows);
        press("cmdAll");
        press("cmdOK");
    }
};

TEST_F(ExportOutput, FormatAndUndoChangeOnlyTheDateAndTimeCells)
{
    addTimes({{1, 20050131, 93000}, {2, 20041201, 5}});
    scanAll({7, 6, 2});   // Time, Date, EmployeeNumber
    EXPECT_EQ(recordRow(1), (QStringList{"1", "93000", "20050131", "9001"}));

    press("cmdFormatDate");
    press("cmdFormatTime");
    EXPECT_EQ(button("cmdFormatDate")->text(), QStringLiteral("Undo Date"));
    EXPECT_EQ(button("cmdFormatTime")->text(), QStringLiteral("Undo Time"));
    // A five-digit time keeps its one-digit hour.
    EXPECT_EQ(recordRow(1), (QStringList{"1", "9:30:00", "01/31/2005", "9001"}));
    EXPECT_EQ(recordRow(2), (QStringList{"2", "00:00:05", "12/01/2004", "9001"}));
    EXPECT_EQ(window->session().SavedDateNumbers.at(2), 20041201);
    EXPECT_TRUE(window->session().request().formatDate);

    press("cmdFormatTime");
    EXPECT_EQ(button("cmdFormatTime")->text(), QStringLiteral("Format Time"));
    EXPECT_EQ(recordRow(2), (QStringList{"2", "5", "12/01/2004", "9001"}));
    press("cmdFormatDate");
    EXPECT_EQ(recordRow(1), (QStringList{"1", "93000", "20050131", "9001"}));
    EXPECT_FALSE(window->session().request().formatDate);
    EXPECT_TRUE(window->records().isLocked(3, 1));

    // Opening a new date selection turns an applied format off with the lower-case caption,
    // which a later click turns on again.
    press("cmdFormatDate");
    window->SelectRecordsByDate();
    EXPECT_EQ(button("cmdFormatDate")->text(), QStringLiteral("format Date"));
    EXPECT_EQ(button("cmdFormatTime")->text(), QStringLiteral("Format Time"));
    EXPECT_FALSE(button("cmdFormatDate")->isEnabled());
    EXPECT_FALSE(window->session().dateFormatOn());
    pickDate(button("cmdStart"), 2004, 12, 1);
    pickDate(button("cmdStop"), 2005, 1, 31);
    press("cmdOK");
    EXPECT_EQ(status(), QStringLiteral("2  Record(s) found"));
    EXPECT_EQ(recordRow(1), (QStringList{"1", "5", "20041201", "9001"}));
    press("cmdFormatDate");
    EXPECT_EQ(button("cmdFormatDate")->text(), QStringLiteral("Undo Date"));
    EXPECT_EQ(recordRow(1), (QStringList{"1", "5", "12/01/2004", "9001"}));

    // With formats off, the file gets the stored numbers.
    press("cmdFormatDate");
    press("cmdPreviewExport");
    const QString file = outFile(QStringLiteral("numbers.txt"));
    dialogs.names.push_back(file);
    press("cmdPreviewExport");
    EXPECT_EQ(readBytes(file), QByteArray("\"Time\",\"Date\",\"EmployeeNumber\"\r\n"
                                          "5,20041201,9001\r\n93000,20050131,9001\r\n"));
}

TEST_F(ExportOutput, PreviewOfTwentyFiveRecordsShowsHeaderAndTwenty)
{
    addWaiting(25);
    scanAll({1, 5, 9});   // TimeRecordID, EmployeeLastName, IsJobInRecord
    press("cmdPreviewExport");
    ASSERT_EQ(window->preview().maxRows(), 21);
    EXPECT_EQ(window->preview().text(1, 1),
              QStringLiteral("''TimeRecordID'' , ''EmployeeLastName'' , ''IsJobInRecord''"));
    EXPECT_EQ(window->preview().text(1, 2), QStringLiteral("1 , ''O'Hara'' , #True#"));
    EXPECT_EQ(window->preview().text(1, 21), QStringLiteral("20 , ''O'Hara'' , #True#"));
    EXPECT_TRUE(foundation.feedback.statuses.contains(QStringLiteral("Preview 20 Record(s) out Of 25")));
    EXPECT_TRUE(child<QLabel>("lblFilePreview")->isVisible());
    EXPECT_EQ(child<QLabel>("lblFilePreview")->text(), QStringLiteral("Text File Preview"));
    EXPECT_FALSE(button("cmdAll")->isEnabled());
    EXPECT_FALSE(button("cmdFormatDate")->isEnabled());
    EXPECT_EQ(window->fields().backColor(3, 1), ui::buttonFaceColor(window.get()));
    EXPECT_FALSE(window->statusBar().progressVisible());

    // Ticks are locked now: a click on a box changes nothing.
    tick({2});
    EXPECT_FALSE(window->fields().isChecked(1, 2));
    EXPECT_EQ(window->session().tickedCount(), 3);

    const QString shot = QStringLiteral(TP_BINARY_DIR) + QStringLiteral("/export-preview.png");
    EXPECT_TRUE(window->grab().save(shot));
}

TEST_F(ExportOutput, CancelDuringThePreviewStopsItAndLeavesClose)
{
    addWaiting(5);
    scanAll({1, 6});
    int presses = 0;
    foundation.feedback.onYield = [&] {
        if (presses++ == 0)
            press("cmdCancelClose");
    };
    press("cmdPreviewExport");
    foundation.feedback.onYield = nullptr;

    EXPECT_EQ(status(), QStringLiteral("Cancel"));
    EXPECT_EQ(button("cmdCancelClose")->text(), QStringLiteral("Close"));
    EXPECT_TRUE(button("cmdCancelClose")->isEnabled());
    EXPECT_EQ(button("cmdPreviewExport")->text(), QStringLiteral("Preview File"));
    EXPECT_FALSE(button("cmdPreviewExport")->isEnabled());
    EXPECT_FALSE(previewGrid()->isVisible());
    EXPECT_TRUE(recordGrid()->isVisible());
    EXPECT_EQ(window->records().maxRows(), 0);
    // Only the first record row was built.
    EXPECT_EQ(window->preview().text(1, 2), QStringLiteral("1 , 20050131"));
    EXPECT_EQ(window->preview().text(1, 3), QString());
    EXPECT_FALSE(window->fields().isLocked(1, 1));
    EXPECT_FALSE(window->session().CancelRequested);
    EXPECT_TRUE(button("cmdAll")->isEnabled());
    EXPECT_TRUE(button("cmdDate")->isEnabled());

    // The field grid takes ticks again, and Close ends the window.
    tick({7});
    EXPECT_EQ(window->session().tickedCount(), 3);
    press("cmdCancelClose");
    EXPECT_FALSE(window->isVisible());
}

TEST_F(ExportOutput, ReadOnlyFileIsRefusedAndAnotherCanBeChosen)
{
    addWaiting(3);
    scanAll({1});
    press("cmdPreviewExport");
    const QString locked = outFile(QStringLiteral("locked.txt"));
    ASSERT_TRUE(writeBytes(locked, "keep me"));
    ASSERT_TRUE(QFile::setPermissions(locked, QFile::ReadOwner | QFile::ReadGroup));
    dialogs.names.push_back(locked);
    press("cmdPreviewExport");

    EXPECT_EQ(foundation.feedback.messages(),
              QStringList{QStringLiteral("Sorry, cannot save to READ-ONLY file !\rTips:\r- Make this file "
                                         "writable;\r- Select another file;\r- Create new file.")});
    EXPECT_EQ(status(), QStringLiteral("Saving File ..."));
    EXPECT_EQ(button("cmdPreviewExport")->text(), QStringLiteral("Create File"));
    EXPECT_TRUE(button("cmdPreviewExport")->isEnabled());
    EXPECT_EQ(button("cmdCancelClose")->text(), QStringLiteral("Cancel"));
    EXPECT_EQ(readBytes(locked), QByteArray("keep me"));
    EXPECT_EQ(markedCount(), 0);

    const QString other = outFile(QStringLiteral("other.txt"));
    dialogs.names.push_back(other);
    press("cmdPreviewExport");
    EXPECT_EQ(status(), QStringLiteral("Export Completed Successfully"));
    EXPECT_EQ(readBytes(other), QByteArray("\"TimeRecordID\"\r\n1\r\n2\r\n3\r\n"));
    EXPECT_EQ(markedCount(), 3);
    EXPECT_TRUE(window->preview().isLocked(1, 2));
}

TEST_F(ExportOutput, CancelledSaveDialogReturnsToTheSelection)
{
    addWaiting(3);
    scanAll({1, 6});
    press("cmdPreviewExport");
    press("cmdPreviewExport");   // the dialog answers with no name

    EXPECT_EQ(status(), QStringLiteral("Process cancel"));
    EXPECT_TRUE(foundation.feedback.statuses.contains(QStringLiteral("File name is empty")));
    EXPECT_EQ(button("cmdPreviewExport")->text(), QStringLiteral("Preview File"));
    EXPECT_EQ(button("cmdCancelClose")->text(), QStringLiteral("Close"));
    EXPECT_TRUE(recordGrid()->isVisible());
    EXPECT_FALSE(previewGrid()->isVisible());
    EXPECT_TRUE(button("cmdAll")->isEnabled());
    EXPECT_FALSE(window->fields().isLocked(1, 3));
    EXPECT_EQ(markedCount(), 0);
}

TEST_F(ExportOutput, LongExportDeclinedWritesAndMarksNothing)
{
    addWaiting(201);
    scanAll({1, 6});
    EXPECT_EQ(status(), QStringLiteral("First 20 records out of 201 found"));
    press("cmdPreviewExport");
    const QString file = outFile(QStringLiteral("long.txt"));
    dialogs.names.push_back(file);
    press("cmdPreviewExport");   // the question is answered No

    EXPECT_EQ(foundation.feedback.questions(),
              QStringList{QStringLiteral("There are 201 records to be exported. This may take some "
                                         "time. Do you wish to continue?")});
    EXPECT_FALSE(QFile::exists(file));
    EXPECT_EQ(markedCount(), 0);
    EXPECT_EQ(status(), QStringLiteral("Process cancel"));
    EXPECT_EQ(button("cmdCancelClose")->text(), QStringLiteral("Close"));
    EXPECT_FALSE(window->session().CancelRequested);

    // Yes writes all 201 and shows the progress while it runs.
    press("cmdAll");
    press("cmdOK");
    press("cmdPreviewExport");
    foundation.feedback.answers.push_back(AnswerYes);
    dialogs.names.push_back(file);
    bool progressSeen = false;
    foundation.feedback.onYield = [&] { progressSeen = progressSeen || window->statusBar().progressVisible(); };
    press("cmdPreviewExport");
    foundation.feedback.onYield = nullptr;
    EXPECT_EQ(status(), QStringLiteral("Export Completed Successfully"));
    EXPECT_TRUE(progressSeen);
    EXPECT_EQ(readBytes(file).count("\r\n"), 202);
    EXPECT_EQ(markedCount(), 201);
    EXPECT_TRUE(foundation.feedback.statuses.contains(QStringLiteral("Saving Record # 201 Of 201")));
}

} // namespace
} // namespace tp::test
