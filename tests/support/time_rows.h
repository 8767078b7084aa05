#pragma once
// Time records as the tests write them into JobTimeRecords.
#include <QString>
#include <vector>

namespace tp::test {

struct TimeRow {
    qint64 id = 0;
    qint32 employee = 17;
    qint32 vehicle = 5;
    qint32 date = 20050131;
    qint32 time = 143005;
    qint32 customer = 300;
    int jobIn = -1, timeIn = 0, jobOut = 0, timeOut = 1;
    QString odometer = QStringLiteral("1200");
    int approved = 1;
    int exportId = 0;
};

// One INSERT statement holding every row.
QString insertTimeRows(const std::vector<TimeRow>& rows);

} // namespace tp::test
