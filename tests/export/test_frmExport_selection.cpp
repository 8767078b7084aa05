// The Export window from the choice of "Time Data" to a written file, driven headless through
// its widgets: the whole road with all records, date ranges picked in the calendar, the
// invalid range, and what the scan shows for many, few and no records.
#include "export_window_fixture.h"

namespace tp::test {
namespace {

const auto* const kFlowGui = ::testing::AddGlobalTestEnvironment(new GuiEnvironment);

using ExportFlow = ExportFlowTest;

TEST_F(ExportFlow, AllRecordsFromTickToFileAndMarks)
{
    addTimes({{101, 20050131, 93000}, {102, 20050201, 143005}, {103, 20050202, 5}});
    addTimes({{104, 20050203, 80000, 9001, 0}, {105, 20050204, 80000, 9001, 2, 1}});
    openTimeData();
    tick({1, 5, 6});   // TimeRecordID, EmployeeLastName, Date
    fieldGrid()->item(0, 4)->setText(QStringLiteral("ID"));   // header text edited in the grid

    press("cmdAll");
    EXPECT_FALSE(button("cmdAll")->isEnabled());
    EXPECT_FALSE(button("cmdDate")->isEnabled());
    EXPECT_FALSE(button("cmdStart")->isEnabled());
    EXPECT_TRUE(button("cmdOK")->isEnabled());
    EXPECT_FALSE(button("cmdPreviewExport")->isEnabled());
    EXPECT_EQ(button("cmdCancelClose")->text(), QStringLiteral("Cancel"));

    press("cmdOK");
    EXPECT_EQ(status(), QStringLiteral("3  Record(s) found"));
    EXPECT_EQ(window->records().maxRows(), 3);
    EXPECT_EQ(recordRow(1), (QStringList{"1", "101", "O'Hara", "20050131"}));
    EXPECT_EQ(recordRow(3), (QStringList{"3", "103", "O'Hara", "20050202"}));
    EXPECT_TRUE(window->records().isLocked(2, 1));
    EXPECT_TRUE(button("cmdFormatDate")->isEnabled());
    EXPECT_FALSE(button("cmdFormatTime")->isEnabled());   // Time is not ticked
    EXPECT_TRUE(button("cmdPreviewExport")->isEnabled());
    EXPECT_EQ(button("cmdPreviewExport")->text(), QStringLiteral("Preview File"));
    EXPECT_FALSE(button("cmdOK")->isEnabled());
    EXPECT_FALSE(fieldGrid()->isEnabled());

    press("cmdFormatDate");
    EXPECT_EQ(button("cmdFormatDate")->text(), QStringLiteral("Undo Date"));
    EXPECT_EQ(window->records().text(4, 1), QStringLiteral("01/31/2005"));

    press("cmdPreviewExport");
    EXPECT_TRUE(previewGrid()->isVisible());
    EXPECT_FALSE(recordGrid()->isVisible());
    EXPECT_EQ(window->preview().maxRows(), 4);
    EXPECT_EQ(window->preview().text(1, 1), QStringLiteral("''ID'' , ''EmployeeLastName'' , ''Date''"));
    EXPECT_EQ(window->preview().text(1, 2), QStringLiteral("101 , ''O'Hara'' , ''01/31/2005''"));
    EXPECT_EQ(button("cmdPreviewExport")->text(), QStringLiteral("Create File"));
    EXPECT_TRUE(button("cmdPreviewExport")->isEnabled());
    EXPECT_EQ(button("cmdCancelClose")->text(), QStringLiteral("Cancel"));
    EXPECT_TRUE(window->fields().isLocked(1, 1));
    EXPECT_TRUE(window->fields().isLocked(5, 1));

    const QString file = outFile(QStringLiteral("time.txt"));
    dialogs.names.push_back(file);
    press("cmdPreviewExport");
    EXPECT_EQ(dialogs.requests, QStringList{QStringLiteral("save:Text files (*.txt) | *.txt")});
    EXPECT_TRUE(foundation.feedback.statuses.contains(QStringLiteral("Saving File ...")));
    EXPECT_EQ(status(), QStringLiteral("Export Completed Successfully"));
    EXPECT_EQ(readBytes(file), QByteArray("\"ID\",\"EmployeeLastName\",\"Date\"\r\n"
                                          "101,\"O'Hara\",\"01/31/2005\"\r\n"
                                          "102,\"O'Hara\",\"02/01/2005\"\r\n"
                                          "103,\"O'Hara\",\"02/02/2005\"\r\n"));
    EXPECT_FALSE(button("cmdPreviewExport")->isEnabled());
    EXPECT_EQ(button("cmdCancelClose")->text(), QStringLiteral("Close"));
    EXPECT_TRUE(button("cmdCancelClose")->isEnabled());
    EXPECT_FALSE(window->statusBar().progressVisible());

    EXPECT_EQ(site.scalar(QStringLiteral("Select count(*) from JobTimeRecords where Approved = 2 "
                                    "and ExportID = 1 and NewTimeRecordID <= 103")), 3);
    EXPECT_EQ(site.scalar(QStringLiteral("Select Approved from JobTimeRecords where NewTimeRecordID = 104")), 0);
    EXPECT_EQ(site.scalar(QStringLiteral("Select ExportID from JobTimeRecords where NewTimeRecordID = 105")), 1);
    EXPECT_TRUE(foundation.feedback.messages().isEmpty());

    press("cmdCancelClose");
    EXPECT_FALSE(window->isVisible());
    EXPECT_EQ(window->result(), int(QDialog::Accepted));
    EXPECT_EQ(window->session().msTableSelected, QString());

    // The exported records are not offered again.
    window.reset();
    resetGlobals();
    openTimeData();
    EXPECT_EQ(window->session().AvailabilityResult, 0);
    EXPECT_FALSE(fieldGrid()->isEnabled());
    EXPECT_EQ(foundation.feedback.messages(), QStringList{QStringLiteral("There are no records available.")});
}

TEST_F(ExportFlow, DateRangeFromTheCalendarIncludesBothEnds)
{
    addTimes({{1, 20050110}, {2, 20050115, 143005}, {3, 20050115, 93000}, {4, 20050120, 120000},
              {5, 20050125}, {6, 20050209}});
    openTimeData();
    tick({6, 7, 1});   // Date, Time, TimeRecordID

    press("cmdDate");
    EXPECT_FALSE(button("cmdDate")->isEnabled());
    EXPECT_TRUE(button("cmdStart")->isEnabled());
    EXPECT_TRUE(button("cmdStop")->isEnabled());
    EXPECT_FALSE(button("cmdOK")->isEnabled());
    EXPECT_EQ(ui::boxColor(box("txtStart")), QColor(Qt::white));
    EXPECT_EQ(window->session().SelectionMode, QStringLiteral("Date"));

    const std::vector<int> offered = pickDate(button("cmdStart"), 2005, 1, 15);
    EXPECT_EQ(offered, (std::vector<int>{10, 15, 20, 25}));
    EXPECT_EQ(box("txtStart")->text(), QStringLiteral("01/15/2005"));
    EXPECT_FALSE(button("cmdOK")->isEnabled());   // no stop date yet
    EXPECT_EQ(window->CalendarResult, QString());

    pickDate(box("txtStop"), 2005, 1, 20);   // a click into the box opens the calendar too
    EXPECT_EQ(box("txtStop")->text(), QStringLiteral("01/20/2005"));
    EXPECT_TRUE(button("cmdOK")->isEnabled());
    EXPECT_FALSE(button("cmdAll")->isEnabled());
    EXPECT_EQ(button("cmdCancelClose")->text(), QStringLiteral("Cancel"));
    EXPECT_EQ(window->session().StartDateNumber, 20050115);
    EXPECT_EQ(window->session().StopDateNumber, 20050120);

    press("cmdOK");
    EXPECT_EQ(status(), QStringLiteral("3  Record(s) found"));
    ASSERT_EQ(window->records().maxRows(), 3);
    // Ordered by date; columns by field order: Date, Time, TimeRecordID.
    EXPECT_EQ(recordRow(1), (QStringList{"1", "20050115", "143005", "2"}));
    EXPECT_EQ(recordRow(2), (QStringList{"2", "20050115", "93000", "3"}));
    EXPECT_EQ(recordRow(3), (QStringList{"3", "20050120", "120000", "4"}));
    EXPECT_TRUE(button("cmdFormatDate")->isEnabled());
    EXPECT_TRUE(button("cmdFormatTime")->isEnabled());
    EXPECT_FALSE(button("cmdStart")->isEnabled());
    EXPECT_TRUE(button("cmdPreviewExport")->isEnabled());

    press("cmdPreviewExport");
    const QString file = outFile(QStringLiteral("range.txt"));
    dialogs.names.push_back(file);
    press("cmdPreviewExport");
    EXPECT_EQ(status(), QStringLiteral("Export Completed Successfully"));
    EXPECT_EQ(readBytes(file), QByteArray("\"Date\",\"Time\",\"TimeRecordID\"\r\n"
                                          "20050115,143005,2\r\n20050115,93000,3\r\n20050120,120000,4\r\n"));
    EXPECT_EQ(site.scalar(QStringLiteral("Select count(*) from JobTimeRecords where Approved = 2 and "
                                    "NewTimeRecordID in (2, 3, 4)")), 3);
    EXPECT_EQ(markedCount(), 3);
}

TEST_F(ExportFlow, StopBeforeStartIsRefusedUntilALaterStopIsPicked)
{
    addTimes({{1, 20050101}, {2, 20050131}, {3, 20050209}});
    openTimeData();
    tick({6});
    press("cmdDate");
    pickDate(button("cmdStart"), 2005, 1, 31);
    pickDate(button("cmdStop"), 2005, 1, 1);
    EXPECT_EQ(foundation.feedback.messages(),
              QStringList{QStringLiteral("Reset your time values!Invalid Time Entry.")});
    EXPECT_FALSE(button("cmdOK")->isEnabled());

    pickDate(button("cmdStop"), 2005, 2, 9);
    EXPECT_TRUE(button("cmdOK")->isEnabled());
    EXPECT_EQ(foundation.feedback.messages().size(), 1);
    press("cmdOK");
    EXPECT_EQ(status(), QStringLiteral("2  Record(s) found"));

    // Cancel on the stop calendar returns no date: the scan waits for a new pick.
    press("cmdCancelClose");
    press("cmdDate");
    pickDate(button("cmdStart"), 2005, 1, 1);
    pickDate(button("cmdStop"), 2005, 1, 0);
    EXPECT_EQ(box("txtStop")->text(), QString());
    EXPECT_FALSE(button("cmdOK")->isEnabled());
}

TEST_F(ExportFlow, ManyRecordsShowTwentyAFewShowAll)
{
    addWaiting(5, 1, 20050103);
    addWaiting(32, 6, 20050104);
    openTimeData();
    tick({1, 6});
    press("cmdAll");
    press("cmdOK");
    EXPECT_EQ(status(), QStringLiteral("First 20 records out of 37 found"));
    EXPECT_EQ(window->session().ExportRecordCount, 37);
    ASSERT_EQ(window->records().maxRows(), 20);
    EXPECT_EQ(recordRow(20), (QStringList{"20", "20", "20050104"}));

    // Cancel drops the scan and offers both selections again.
    press("cmdCancelClose");
    EXPECT_EQ(status(), QString());
    EXPECT_EQ(window->records().maxRows(), 0);
    EXPECT_EQ(button("cmdCancelClose")->text(), QStringLiteral("Close"));
    EXPECT_TRUE(button("cmdAll")->isEnabled());
    EXPECT_TRUE(button("cmdDate")->isEnabled());
    EXPECT_TRUE(fieldGrid()->isEnabled());
    EXPECT_FALSE(button("cmdPreviewExport")->isEnabled());

    // A single day.
    press("cmdDate");
    EXPECT_EQ(pickDate(button("cmdStart"), 2005, 1, 3), (std::vector<int>{3, 4}));
    pickDate(button("cmdStop"), 2005, 1, 3);
    press("cmdOK");
    EXPECT_EQ(status(), QStringLiteral("5  Record(s) found"));
    ASSERT_EQ(window->records().maxRows(), 5);
    EXPECT_EQ(recordRow(5), (QStringList{"5", "5", "20050103"}));
}

TEST_F(ExportFlow, AScanThatFindsNothingEndsAsCancel)
{
    addWaiting(2);
    openTimeData();
    tick({1});
    // The records leave before the scan (the host exported them meanwhile).
    ASSERT_TRUE(site.exec(QStringLiteral("Update JobTimeRecords set Approved = 2")));
    press("cmdAll");
    press("cmdOK");
    EXPECT_EQ(status(), QStringLiteral("Cancel"));
    EXPECT_EQ(button("cmdCancelClose")->text(), QStringLiteral("Close"));
    EXPECT_TRUE(button("cmdAll")->isEnabled());
    EXPECT_TRUE(button("cmdDate")->isEnabled());
    EXPECT_FALSE(button("cmdOK")->isEnabled());
    EXPECT_FALSE(button("cmdPreviewExport")->isEnabled());
    EXPECT_EQ(window->records().maxRows(), 0);
    EXPECT_FALSE(window->session().CancelRequested);
    EXPECT_TRUE(foundation.feedback.statuses.contains(QStringLiteral("0 Record(s) found")));
}

} // namespace
} // namespace tp::test
