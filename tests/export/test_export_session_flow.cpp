// The export session without a window, as the batch tool drives it: choosing, ticking, a date
// range, formats, the scan and the save give the bytes and marks the window gives.
#include "export/export_session.h"
#include "foundation/globals.h"
#include "support/foundation_fixture.h"
#include "time_fixture.h"

namespace tp::test {
namespace {

class SessionFlow : public TimeDbTest {
protected:
    void SetUp() override
    {
        TimeDbTest::SetUp();
        globals().SettingsFileName = QStringLiteral("KRV.ini");
        addEmployee(17, QStringLiteral("Ann"), QStringLiteral("Smith"));
        for (auto [id, date] : {std::pair{1, 20050110}, {2, 20050115}, {3, 20050120}, {4, 20050125}}) {
            TimeRow r;
            r.id = id;
            r.date = date;
            r.time = 93000 + id;
            addTime(r);
        }
    }

    // Chooses "Time Data" and ticks the named fields in order.
    void choose(const QStringList& names)
    {
        ASSERT_TRUE(session.selectDataSet(QStringLiteral("Time Data")));
        ASSERT_EQ(session.AvailabilityResult, 1);
        for (const QString& n : names)
            ASSERT_TRUE(session.tickField(session.fieldRow(n), true)) << n.toStdString();
    }

    ScopedFoundation foundation;
    ExportSession session{db, feedback};
};

TEST_F(SessionFlow, DateRangeWithFormatsWritesAndMarksWithoutAScan)
{
    choose({QStringLiteral("TimeRecordID"), QStringLiteral("EmployeeLastName"), QStringLiteral("Date"),
            QStringLiteral("Time")});
    session.setHeaderText(session.fieldRow(QStringLiteral("TimeRecordID")), QStringLiteral("ID"));
    ASSERT_TRUE(session.selectRecordsByDate());
    EXPECT_EQ(session.setStartDate(QStringLiteral("01/15/2005")), DateRange::Incomplete);
    EXPECT_EQ(session.setStopDate(QStringLiteral("01/20/2005")), DateRange::Valid);
    session.setDateFormat(true);
    session.setTimeFormat(true);

    const ExportRequest r = session.request();
    EXPECT_TRUE(r.byDate);
    EXPECT_EQ(r.start, QStringLiteral("20050115"));
    EXPECT_EQ(r.stop, QStringLiteral("20050120"));
    EXPECT_EQ(r.fields, (QStringList{"TimeRecordID", "EmployeeLastName", "Date", "Time"}));
    EXPECT_TRUE(r.formatDate && r.formatTime);
    EXPECT_EQ(r.settingsFile, QStringLiteral("KRV.ini"));

    const QString file = path(QStringLiteral("batch.txt"));
    const ExportJobResult result = session.saveExportFile(file, FileEncoding::Windows1252);
    EXPECT_EQ(result.outcome, ExportJobResult::Completed);
    EXPECT_EQ(result.marked, 2);
    EXPECT_EQ(session.ExportRecordCount, 2);
    EXPECT_EQ(readFile(file), QByteArray("\"ID\",\"EmployeeLastName\",\"Date\",\"Time\"\r\n"
                                         "2,\"Smith\",\"01/15/2005\",\"9:30:02\"\r\n"
                                         "3,\"Smith\",\"01/20/2005\",\"9:30:03\"\r\n"));
    EXPECT_EQ(feedback.lastStatus, QStringLiteral("Export Completed Successfully"));
    EXPECT_EQ(scalar(QStringLiteral("Select count(*) from JobTimeRecords where Approved = 2 and "
                                    "ExportID = 1 and NewTimeRecordID in (2, 3)")), 2);
    EXPECT_EQ(scalar(QStringLiteral("Select count(*) from JobTimeRecords where Approved = 1")), 2);
}

TEST_F(SessionFlow, DatesAreCheckedAndATickDropsRangeAndFormats)
{
    choose({QStringLiteral("Date")});
    ASSERT_TRUE(session.selectRecordsByDate());
    EXPECT_EQ(session.setStartDate(QStringLiteral("2005-01-15")), DateRange::Invalid);
    EXPECT_EQ(session.startDate(), QString());
    EXPECT_EQ(session.setStartDate(QStringLiteral("01/31/2005")), DateRange::Incomplete);
    EXPECT_EQ(session.setStopDate(QStringLiteral("01/01/2005")), DateRange::Invalid);
    EXPECT_EQ(feedback.messages(), (QStringList{kInvalidTimeEntry, kInvalidTimeEntry}));
    EXPECT_EQ(session.scanDatabase().kind, ScanOutcome::Refused);
    EXPECT_EQ(feedback.messages().size(), 3);

    EXPECT_EQ(session.setStopDate(QStringLiteral("01/31/2005")), DateRange::Valid);   // one day
    session.setDateFormat(true);
    ASSERT_TRUE(session.tickField(session.fieldRow(QStringLiteral("Time")), true));
    EXPECT_EQ(session.startDate(), QString());
    EXPECT_FALSE(session.isDated());
    EXPECT_FALSE(session.dateFormatOn());
    EXPECT_EQ(session.OutputColumnCount, 3);
}

TEST_F(SessionFlow, ScanFillsTheGridAndAnAbandonedSaveMarksNothing)
{
    choose({QStringLiteral("Date"), QStringLiteral("EmployeeFirstName")});
    ASSERT_TRUE(session.selectAllRecords());
    const ScanOutcome out = session.scanDatabase();
    EXPECT_EQ(out.kind, ScanOutcome::Found);
    EXPECT_TRUE(out.dateFormat);
    EXPECT_FALSE(out.timeFormat);
    EXPECT_EQ(feedback.lastStatus, QStringLiteral("4  Record(s) found"));
    const RecordGrid& grid = session.recordGrid();
    ASSERT_EQ(grid.rowCount(), 4);
    EXPECT_TRUE(grid.locked());
    EXPECT_EQ(grid.text(1, 4), QStringLiteral("4"));
    EXPECT_EQ(grid.text(2, 4), QStringLiteral("20050125"));
    EXPECT_EQ(grid.text(3, 4), QStringLiteral("Ann"));
    EXPECT_EQ(session.previewHeaderLine(), QStringLiteral("''Date'' , ''EmployeeFirstName''"));
    EXPECT_EQ(session.previewRecordLine(1), QStringLiteral("20050110 , ''Ann''"));
    EXPECT_EQ(session.previewGridRows(), 5);

    const ExportJobResult result = session.saveExportFile(QString());
    EXPECT_EQ(result.outcome, ExportJobResult::NoFileName);
    EXPECT_EQ(feedback.lastStatus, QStringLiteral("File name is empty"));
    EXPECT_EQ(scalar(QStringLiteral("Select count(*) from JobTimeRecords where Approved = 2")), 0);

    session.cancelExport();
    EXPECT_TRUE(session.CancelRequested);
    EXPECT_EQ(session.recordGrid().rowCount(), 0);
    EXPECT_EQ(session.ExportRecordCount, 0);
    session.closeExportWindow();
    EXPECT_EQ(session.msTableSelected, QString());
    EXPECT_EQ(session.assembler(), nullptr);
}

} // namespace
} // namespace tp::test
