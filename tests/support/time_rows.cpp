#include "support/time_rows.h"

#include <QStringList>

namespace tp::test {

QString insertTimeRows(const std::vector<TimeRow>& rows)
{
    QStringList values;
    for (const TimeRow& r : rows)
        values << QStringLiteral("(%1, %2, %3, %4, %5, %6, %7, %8, %9, %10, %11, %12, %13)")
                      .arg(r.id)
                      .arg(r.employee)
                      .arg(r.vehicle)
                      .arg(r.date)
                      .arg(r.time)
                      .arg(r.customer)
                      .arg(r.jobIn)
                      .arg(r.timeIn)
                      .arg(r.jobOut)
                      .arg(r.timeOut)
                      .arg(r.odometer)
                      .arg(r.approved)
                      .arg(r.exportId);
    return QStringLiteral("INSERT INTO JobTimeRecords (NewTimeRecordID, EmployeeNumber, VehicleBlock, Date, "
                          "Time, CustomerNumber, IsJobInRecord, IsTimeInRecord, IsJobOutRecord, "
                          "IsTimeOutRecord, OdometerReading, Approved, ExportID) VALUES ") +
           values.join(QStringLiteral(", "));
}

} // namespace tp::test
