#include "support/export_rows.h"

#include "foundation/sql_literal.h"

#include <QStringList>

namespace tp::test {

QString insertInventoryRows(const std::vector<InventoryRow>& rows)
{
    QStringList values;
    for (const InventoryRow& r : rows)
        values << QStringLiteral("(%1, %2, %3, %4, %5, %6, %7, %8, %9, %10)")
                      .arg(r.id)
                      .arg(r.inventory)
                      .arg(r.employee)
                      .arg(r.customer)
                      .arg(r.quantity)
                      .arg(r.date)
                      .arg(r.time)
                      .arg(r.jobRecord)
                      .arg(r.approved)
                      .arg(r.exportId);
    return QStringLiteral("INSERT INTO InventoryHistory (InventoryHistoryID, InventoryNumber, EmployeeID, "
                          "CustomerID, UsedQuantity, Date, Time, JobRecordID, Approved, ExportID) VALUES ") +
           values.join(QStringLiteral(", "));
}

QString insertLocationRows(const std::vector<LocationRow>& rows)
{
    QStringList values;
    for (const LocationRow& r : rows)
        values << QStringLiteral("(%1, %2, %3, '12 Main St', '', %4, 'OK', '74103', %5, %6)")
                      .arg(r.number)
                      .arg(r.branch)
                      .arg(sql::text(r.name), sql::text(r.city), sql::number(r.longitude),
                           sql::number(r.latitude));
    return QStringLiteral("INSERT INTO CommonLocations (CommonLocationNumber, BranchNumber, LocationName, "
                          "Address1, Address2, City, State, ZipCode, Longitude, Latitude) VALUES ") +
           values.join(QStringLiteral(", "));
}

std::vector<LocationRow> manyLocations(int n, qint64 firstNumber)
{
    std::vector<LocationRow> rows;
    for (int i = 0; i < n; ++i)
        rows.push_back({.number = firstNumber + i, .name = QStringLiteral("Site %1").arg(firstNumber + i)});
    return rows;
}

} // namespace tp::test
