// The calendar's month layout, date texts and the failures of its day look-up; the days it
// enables are checked through the calendar window.
#include "export/calendar_days.h"
#include "time_fixture.h"

#include <QLocale>

namespace tp::test {
namespace {

TEST(MonthLayout, MonthsEndingLateReachTheSixthRow)
{
    QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));   // week starts on Monday
    const MonthLayout jan = monthLayout(2005, 1);                      // Saturday, 31 days
    const MonthLayout may = monthLayout(2010, 5);                      // Saturday, 31 days
    const MonthLayout mar = monthLayout(2004, 3);
    QLocale::setDefault(QLocale::c());
    EXPECT_EQ(jan.firstButton, 7);
    EXPECT_EQ(jan.day[37], 31);
    EXPECT_EQ(jan.day[38], 0);
    EXPECT_EQ(may.day[37], 31);
    EXPECT_EQ(mar.firstDayText(), QStringLiteral("3/1/2004"));
}

TEST(CalendarDates, TwoDigitYearsAndPadding)
{
    const std::pair<const char*, const char*> cases[] = {
        {"3/5/2004", "20040305"}, {"12/31/1999", "19991231"}, {"1/2/50", "20500102"},
        {"1/2/51", "19510102"},   {"1/2/00", "20000102"},
        {"1/2/2075", "19750102"},   // only two digits count
    };
    for (const auto& [shown, field] : cases)
        EXPECT_EQ(ToFieldDate(shown), QLatin1String(field)) << shown;
    EXPECT_EQ(ToMonthStartFieldDate("3/15/2004"), QStringLiteral("20040301"));
    EXPECT_EQ(ToMonthStartFieldDate("11/1/04"), QStringLiteral("20041101"));
}

class CalendarDays : public TimeDbTest {};

TEST_F(CalendarDays, FailedLookUpsAreNotOk)
{
    addTimeOn(1, 20040305);
    EXPECT_TRUE(daysWithData(db, "JobTimeRecords", 0, "20040501").ok);
    EXPECT_FALSE(daysWithData(db, "JobTimeRecords", 0, "2004").ok);
    exec("DROP TABLE InventoryHistory");
    const DaysWithData d = daysWithData(db, "Inventory", 0, "20040315");
    EXPECT_FALSE(d.ok);
    EXPECT_TRUE(d.days.empty());
}

} // namespace
} // namespace tp::test
