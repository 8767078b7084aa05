#include "export/calendar_days.h"

#include "foundation/conversions.h"
#include "foundation/dao.h"
#include "foundation/sql_literal.h"

#include <QDate>
#include <QStringList>

namespace tp {

namespace {

QString pad2(const QString& s)
{
    return s.size() < 2 ? QString(2 - s.size(), QLatin1Char('0')) + s : s;
}

QString fieldDate(const QString& date, bool monthStart)
{
    const QStringList parts = date.split(QLatin1Char('/'));
    const QString month = pad2(parts.value(0));
    const QString day = monthStart ? QStringLiteral("01") : pad2(parts.value(1));
    QString year = parts.value(2);
    if (year.size() > 2)
        year = year.right(2);
    year = pad2(year);
    const int y = year.toInt();
    year = (y >= 0 && y <= 50 ? QStringLiteral("20") : QStringLiteral("19")) + year;
    return ConvertStandard2FieldDate(month + QLatin1Char('/') + day + QLatin1Char('/') + year);
}

} // namespace

QString ToFieldDate(const QString& date)
{
    return fieldDate(date, false);
}

QString ToMonthStartFieldDate(const QString& date)
{
    return fieldDate(date, true);
}

QString MonthLayout::firstDayText() const
{
    return QString::number(month) + QStringLiteral("/1/") + QString::number(year);
}

MonthLayout monthLayout(int year, int month)
{
    MonthLayout layout;
    layout.year = year;
    layout.month = month;
    const QDate first(year, month, 1);
    if (!first.isValid())
        return layout;
    // QDate counts Monday 1 to Sunday 7; the grid puts Sunday first.
    layout.firstButton = first.dayOfWeek() % 7 + 1;
    layout.days = first.daysInMonth();
    for (int d = 1; d <= layout.days; ++d)
        layout.day[std::size_t(layout.firstButton + d - 1)] = d;
    return layout;
}

QString calendarInfoText(int year, int month)
{
    static const char* const names[12] = {"January", "February", "March", "April", "May", "June",
                                          "July", "August", "September", "October", "November",
                                          "December"};
    const QString name = month >= 1 && month <= 12 ? QLatin1String(names[month - 1]) : QString();
    return QStringLiteral("Days Available for the Month of ") + name + QStringLiteral("  ") +
           QString::number(year);
}

DaysWithData daysWithData(cDAO& db, const QString& table, qint32 exportId, const QString& date)
{
    DaysWithData result;
    const auto from = sql::wholeNumber(date.left(6) + QStringLiteral("01"));
    const auto to = sql::wholeNumber(date.left(6) + QStringLiteral("31"));
    if (!from || !to || date.size() < 6) {
        result.ok = false;
        return result;
    }
    const QString id = sql::number(qint64(exportId));
    QString sql;
    if (table == QLatin1String("JobTimeRecords"))
        sql = QStringLiteral("Select Date from JobTimeRecords WHERE ExportID = ") + id +
              QStringLiteral(" AND Approved = 1  AND Date >= ") + *from +
              QStringLiteral(" AND Date <= ") + *to + QStringLiteral(" ORDER BY Date");
    else if (table == QLatin1String("Inventory"))
        sql = QStringLiteral("Select * FROM InventoryHistory WHERE Approved = 1 AND ExportID = ") +
              id + QStringLiteral(" AND Date >= ") + *from + QStringLiteral(" AND Date <= ") + *to +
              QStringLiteral(" ORDER BY Date");
    else
        return result;

    const MonthLayout layout = monthLayout(date.left(4).toInt(), date.mid(4, 2).toInt());
    RecordsetPtr rs = db.RecSet_Forward(sql);
    if (!rs) {
        result.ok = false;
        return result;
    }
    const int dateIndex = rs->fieldIndex(QStringLiteral("Date"));
    QString previous;
    for (; dateIndex >= 0 && !rs->atEnd(); rs->moveNext()) {
        const QVariant v = rs->value(dateIndex);
        const QString d = v.isNull() ? QString() : v.toString();
        if (d == previous)
            continue;
        previous = d;
        const int day = d.right(2).toInt();
        if (day >= 1 && day <= layout.days)
            result.days.insert(day);
    }
    db.RS_Close(rs);
    return result;
}

} // namespace tp
