// The export session without a window, as the batch tool drives it: dates typed as text are
// checked, and a tick drops the range and the formats. Its scan and save are checked through the
// window and the batch tool, which both drive it.
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
        addTimeOn(1, 20050131);
    }

    // Chooses "Time Data" and ticks the named field.
    void choose(const QString& name)
    {
        ASSERT_TRUE(session.selectDataSet(QStringLiteral("Time Data")));
        ASSERT_EQ(session.AvailabilityResult, 1);
        ASSERT_TRUE(session.tickField(session.fieldRow(name), true));
    }

    ScopedFoundation foundation;
    ExportSession session{db, feedback};
};

TEST_F(SessionFlow, DatesAreCheckedAndATickDropsRangeAndFormats)
{
    choose(QStringLiteral("Date"));
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

TEST_F(SessionFlow, FormatTimeShowsInTheGridWhatTheFileGets)
{
    // Times that are no whole 32-bit number: a half, and a number too large for one.
    for (qint64 id : {2, 3, 4})
        addTimeOn(id, 20050131);
    exec("UPDATE JobTimeRecords SET Time = 93000.5 WHERE NewTimeRecordID = 2");
    exec("UPDATE JobTimeRecords SET Time = 93001.5 WHERE NewTimeRecordID = 3");
    exec("UPDATE JobTimeRecords SET Time = 3000000000 WHERE NewTimeRecordID = 4");
    choose(QStringLiteral("Time"));
    ASSERT_TRUE(session.selectAllRecords());
    ASSERT_EQ(session.scanDatabase().kind, ScanOutcome::Found);
    session.setTimeFormat(true);
    QStringList grid;
    for (int r = 1; r <= session.recordGrid().rowCount(); ++r)
        grid << session.recordGrid().text(2, r);
    EXPECT_EQ(grid, QStringList({"14:30:05", "9:30:00", "9:30:02", "::"}));

    const ExportJobResult saved = session.saveExportFile(path(QStringLiteral("times.txt")));
    ASSERT_EQ(saved.outcome, ExportJobResult::Completed);
    QByteArray expected = "\"Time\"\r\n";
    for (const QString& clock : grid)
        expected += '"' + clock.toLatin1() + "\"\r\n";
    EXPECT_EQ(readFile(path(QStringLiteral("times.txt"))), expected);

    // Undo brings back whole numbers, however large.
    session.setTimeFormat(false);
    EXPECT_EQ(session.recordGrid().text(2, 4), QStringLiteral("3000000000"));
    EXPECT_EQ(session.recordGrid().text(2, 2), QStringLiteral("93000"));
}

} // namespace
} // namespace tp::test
