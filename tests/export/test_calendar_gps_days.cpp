// The calendar's GPS days and the track look-ups behind them, on a real SQLite file.
#include "export/calendar_gps_days.h"
#include "foundation/globals.h"
#include "foundation/log.h"
#include "gps_calendar_fixture.h"

namespace tp::test {
namespace {

class CalendarGps : public GpsCalendarDbTest {
protected:
    void SetUp() override
    {
        GpsCalendarDbTest::SetUp();
        if (!HasFatalFailure() && !IsSkipped())
            addTracks();
    }
};

TEST_F(CalendarGps, DaysWithUsablePointsOnTheTracksOwnDate)
{
    DaysWithData d = gpsDaysWithData(db, feedback, 1, "lumtrek.ini", "20040315");
    EXPECT_TRUE(d.ok);
    // Not the 10th (fixes of -1), the 12th (points of another day), the 18th (another vehicle).
    EXPECT_EQ(d.days, (std::set<int>{5}));
    // Every track of the pairing counts, not only the one named.
    EXPECT_EQ(gpsDaysWithData(db, feedback, 2, "lumtrek.ini", "20040301").days,
              (std::set<int>{5}));
    EXPECT_EQ(gpsDaysWithData(db, feedback, 1, "lumtrek.ini", "20040401").days,
              (std::set<int>{1}));
    EXPECT_EQ(gpsDaysWithData(db, feedback, 4, "KRV.ini", "20040301").days, (std::set<int>{20}));

    d = gpsDaysWithData(db, feedback, 99, "lumtrek.ini", "20040301");   // no such track
    EXPECT_TRUE(d.ok);
    EXPECT_TRUE(d.days.empty());
    EXPECT_TRUE(feedback.messages().isEmpty());
}

TEST_F(CalendarGps, TrackLookUpsGiveNumbersAndDisplayTexts)
{
    QString name;
    EXPECT_EQ(GetEmployeeInfoFromTrackID(db, feedback, 1, "KRV.ini", &name), "7");
    EXPECT_EQ(name, QStringLiteral("Smith, Ann Q."));
    EXPECT_EQ(GetEmployeeInfoFromTrackID(db, feedback, 1, "lumtrek.ini", &name), "7");
    EXPECT_EQ(name, QStringLiteral("Ann Smith"));
    EXPECT_EQ(GetEmployeeInfoFromTrackID(db, feedback, 4, "lumtrek.ini", &name), "8");
    EXPECT_EQ(name, QStringLiteral("No Employee"));
    EXPECT_EQ(GetEmployeeInfoFromTrackID(db, feedback, 7, "lumtrek.ini", &name), "9");
    EXPECT_EQ(name, QStringLiteral("UnAssigned Individual"));
    EXPECT_EQ(GetEmployeeInfoFromTrackID(db, feedback, 7, "KRV.ini", &name), "9");
    EXPECT_EQ(name, QStringLiteral("Unknown"));
    EXPECT_EQ(GetEmployeeInfoFromTrackID(db, feedback, 99, "KRV.ini", &name), "Error");

    QString serial;
    EXPECT_EQ(GetVehicleInfoFromTrackID(db, 1, &serial), "3");
    EXPECT_EQ(serial, QStringLiteral("TS-3"));
    EXPECT_EQ(GetVehicleInfoFromTrackID(db, 6, &serial), "5");
    EXPECT_EQ(serial, QStringLiteral("UnAssigned Tracker"));
    EXPECT_EQ(GetVehicleInfoFromTrackID(db, 99, &serial), "Error");
    EXPECT_TRUE(feedback.messages().isEmpty());
}

TEST_F(CalendarGps, FailingLookUpsAreLoggedAndTheOtherVariantWarns)
{
    const QString oldPath = globals().PrimaryDatabasePath;
    globals().PrimaryDatabasePath = dir.path();
    setLogStem(QStringLiteral("calgps"));
    exec("DROP TABLE EmployeeInfo");
    exec("DROP TABLE VehicleInfo");

    EXPECT_EQ(GetEmployeeInfoFromTrackID(db, feedback, 1, "KRV.ini"), "Error");
    EXPECT_TRUE(feedback.messages().isEmpty());
    EXPECT_EQ(GetEmployeeInfoFromTrackID(db, feedback, 1, "lumtrek.ini"), "Error");
    ASSERT_EQ(feedback.messages().size(), 1);
    EXPECT_TRUE(feedback.messages()[0].startsWith("A non-critical error has occurred."));
    EXPECT_TRUE(feedback.messages()[0].endsWith("Advise technical support as soon as possible."));
    EXPECT_EQ(GetVehicleInfoFromTrackID(db, 1), "Error");
    // No day can be enabled without the subject's numbers.
    EXPECT_TRUE(gpsDaysWithData(db, feedback, 1, "KRV.ini", "20040301").days.empty());

    closeLog();
    const QByteArray log = readFile(path(QStringLiteral("calgps.LOG")));
    globals().PrimaryDatabasePath = oldPath;
    setLogStem(QString());
    EXPECT_TRUE(log.contains("ERROR occurred in GetEmployeeInfoFromTrackID: Primary")) << log.data();
    EXPECT_TRUE(log.contains("ERROR occurred in GetVehicleInfoFromTrackID: Primary")) << log.data();
}

} // namespace
} // namespace tp::test
