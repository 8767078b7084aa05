// The calendar's month layout, label, date texts and the days that hold waiting records.
#include "export/calendar_days.h"
#include "time_fixture.h"

#include <QLocale>

namespace tp::test {
namespace {

std::vector<int> captioned(const MonthLayout& m)
{
    std::vector<int> buttons;
    for (int b = 1; b <= 42; ++b)
        if (m.day[std::size_t(b)] != 0)
            buttons.push_back(b);
    return buttons;
}

class GermanLocale : public ::testing::Test {
protected:
    void SetUp() override { QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany)); }
    void TearDown() override { QLocale::setDefault(QLocale::c()); }
};

TEST_F(GermanLocale, MonthsStartOnTheirWeekdayWithSundayFirst)
{
    const MonthLayout feb = monthLayout(2004, 2);   // Sunday, 29 days
    EXPECT_EQ(feb.firstButton, 1);
    EXPECT_EQ(feb.days, 29);
    EXPECT_EQ(captioned(feb).front(), 1);
    EXPECT_EQ(captioned(feb).back(), 29);
    EXPECT_EQ(feb.day[29], 29);
    EXPECT_EQ(feb.day[30], 0);

    const MonthLayout mar = monthLayout(2004, 3);   // Monday, 31 days
    EXPECT_EQ(mar.firstButton, 2);
    EXPECT_EQ(mar.day[1], 0);
    EXPECT_EQ(mar.day[2], 1);
    EXPECT_EQ(mar.day[32], 31);
    EXPECT_EQ(captioned(mar).size(), 31u);
    EXPECT_EQ(mar.firstDayText(), QStringLiteral("3/1/2004"));

    const MonthLayout jan = monthLayout(2005, 1);   // Saturday, 31 days: ends on button 37
    EXPECT_EQ(jan.firstButton, 7);
    EXPECT_EQ(captioned(jan).back(), 37);
    const MonthLayout may = monthLayout(2010, 5);   // Saturday, 31 days
    EXPECT_EQ(may.day[37], 31);
}

TEST_F(GermanLocale, LabelUsesEnglishMonthNames)
{
    EXPECT_EQ(calendarInfoText(2004, 3), QStringLiteral("Days Available for the Month of March  2004"));
    EXPECT_EQ(calendarInfoText(1999, 12),
              QStringLiteral("Days Available for the Month of December  1999"));
}

TEST(CalendarDates, TwoDigitYearsAndPadding)
{
    EXPECT_EQ(ToFieldDate("3/5/2004"), QStringLiteral("20040305"));
    EXPECT_EQ(ToFieldDate("12/31/1999"), QStringLiteral("19991231"));
    EXPECT_EQ(ToFieldDate("1/2/50"), QStringLiteral("20500102"));
    EXPECT_EQ(ToFieldDate("1/2/51"), QStringLiteral("19510102"));
    EXPECT_EQ(ToFieldDate("1/2/00"), QStringLiteral("20000102"));
    EXPECT_EQ(ToFieldDate("1/2/2075"), QStringLiteral("19750102"));   // only two digits count
    EXPECT_EQ(ToMonthStartFieldDate("3/15/2004"), QStringLiteral("20040301"));
    EXPECT_EQ(ToMonthStartFieldDate("11/1/04"), QStringLiteral("20041101"));
}

class CalendarDays : public TimeDbTest {};

TEST_F(CalendarDays, OnlyDaysWithWaitingRecordsAreEnabled)
{
    auto add = [&](qint64 id, qint32 date, int approved = 1, int exportId = 0) {
        TimeRow r;
        r.id = id;
        r.date = date;
        r.approved = approved;
        r.exportId = exportId;
        addTime(r);
    };
    add(1, 20040305);
    add(2, 20040305);
    add(3, 20040331);
    add(4, 20040312, 2);      // exported
    add(5, 20040314, 1, 1);   // another export identifier
    add(6, 20040401);
    add(7, 20040229);

    DaysWithData d = daysWithData(db, "JobTimeRecords", 0, ToMonthStartFieldDate("3/20/2004"));
    EXPECT_TRUE(d.ok);
    EXPECT_EQ(d.days, (std::set<int>{5, 31}));
    d = daysWithData(db, "JobTimeRecords", 0, "20040201");
    EXPECT_EQ(d.days, (std::set<int>{29}));
    d = daysWithData(db, "JobTimeRecords", 1, "20040301");
    EXPECT_EQ(d.days, (std::set<int>{14}));
    d = daysWithData(db, "JobTimeRecords", 0, "20040501");
    EXPECT_TRUE(d.ok);
    EXPECT_TRUE(d.days.empty());
    // GPS days and other data sets are not found here.
    EXPECT_TRUE(daysWithData(db, "GPSCoordinates", 0, "20040301").days.empty());
}

TEST_F(CalendarDays, InventoryRecordsAndFailures)
{
    exec("INSERT INTO InventoryHistory (InventoryHistoryID, Date, Approved, ExportID) VALUES "
         "(1, 20040302, 1, 0), (2, 20040302, 1, 0), (3, 20040309, 1, 0), (4, 20040310, 2, 0)");
    EXPECT_EQ(daysWithData(db, "Inventory", 0, "20040315").days, (std::set<int>{2, 9}));
    exec("DROP TABLE InventoryHistory");
    const DaysWithData d = daysWithData(db, "Inventory", 0, "20040315");
    EXPECT_FALSE(d.ok);
    EXPECT_TRUE(d.days.empty());
    EXPECT_FALSE(daysWithData(db, "JobTimeRecords", 0, "2004").ok);
}

} // namespace
} // namespace tp::test
