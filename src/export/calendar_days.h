#pragma once
// The export calendar's model: a month laid out on 42 day buttons (Sunday in column 1 on every
// system), the label text, the date texts it converts, and which days hold waiting records.
#include <QString>
#include <array>
#include <set>

namespace tp {

class cDAO;

// "M/D/Y" (parts unpadded, year of two or four digits) -> YYYYMMDD. A year is cut to its
// last two digits; 0 to 50 become 20yy, others 19yy.
QString ToFieldDate(const QString& date);
// The same for the first day of that month.
QString ToMonthStartFieldDate(const QString& date);

struct MonthLayout {
    int year = 0, month = 0;
    int firstButton = 0;         // button (1-42) of day 1
    int days = 0;                // length of the month
    std::array<int, 43> day{};   // day number per button 1-42; 0: empty caption
    // The text LoadDays returns: month + "/1/" + year, unpadded.
    QString firstDayText() const;
};

MonthLayout monthLayout(int year, int month);

// "Days Available for the Month of March  2004": English month names on every system.
QString calendarInfoText(int year, int month);

struct DaysWithData {
    bool ok = true;        // false: the query failed (the buttons stay disabled)
    std::set<int> days;    // day numbers to enable, all within the month
};

// Days of the month of fieldDate (YYYYMMDD, only year and month are used) on which the data
// set has records waiting under exportId. table: "JobTimeRecords" or "Inventory"; any other
// data set enables no day here.
DaysWithData daysWithData(cDAO& db, const QString& table, qint32 exportId,
                          const QString& fieldDate);

} // namespace tp
