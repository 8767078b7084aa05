#pragma once
// Inventory movements and common locations as the tests write them.
#include <QString>
#include <vector>

namespace tp::test {

struct InventoryRow {
    qint64 id = 0;
    qint32 employee = 17;
    qint32 inventory = 1001;
    qint32 customer = 300;
    qint32 quantity = 3;
    qint32 date = 20050131;
    qint32 time = 143005;
    qint32 jobRecord = 5555;
    int approved = 1;
    int exportId = 0;
};

struct LocationRow {
    qint64 number = 0;
    QString name = QStringLiteral("Depot");
    QString city = QStringLiteral("Tulsa");
    double longitude = -95.9928;
    double latitude = 36.154;
    qint32 branch = 2;
};

// One INSERT statement holding every row.
QString insertInventoryRows(const std::vector<InventoryRow>& rows);
QString insertLocationRows(const std::vector<LocationRow>& rows);
// n rows numbered from firstNumber, named "Site <number>".
std::vector<LocationRow> manyLocations(int n, qint64 firstNumber = 1);

} // namespace tp::test
