#include "export/time_data.h"

#include "export/availability.h"
#include "foundation/dao.h"
#include "foundation/feedback.h"
#include "foundation/sql_literal.h"

namespace tp {

namespace {

enum Slot {
    SlotId, SlotEmployee, SlotVehicle, SlotFirstName, SlotLastName, SlotDate, SlotTime,
    SlotCustomer, SlotJobIn, SlotTimeIn, SlotJobOut, SlotTimeOut, SlotOdometer, SlotApproved,
    SlotExportId, SlotCount
};

const QString kNoneFound = QStringLiteral("0 Record(s) found");

const WaitingRecordsStyle& style()
{
    static const WaitingRecordsStyle s{
        .table = "JobTimeRecords",
        .idColumn = "NewTimeRecordID",
        .postgresOrder = " ORDER BY NewTimeRecordID, ctid",
        .postgresDatedOrder = " ORDER BY Date, NewTimeRecordID, ctid",
        .markNoneFound = kNoneFound,
        .employeeColumn = "EmployeeNumber",
        .loadErrorAll = "Cannot read Time Record(s)",
        .previewErrorAll = "Cannot read Time Record(s)",
        .errorDated = "Cannot read Time record(s)",
        .errorStatus = "Error Retrieving Record at # ",
        .noneFound = kNoneFound,
        .datedProgress = true,
        .loadStartStatus = true,
        .yields = true,
        // "20 of " stands whatever the count.
        .previewDone = [](qint64 n) { return QStringLiteral("20 of %1  Record(s) found").arg(n); },
        .loadDone = [](qint64 n) { return QStringLiteral("%1  Record(s) found").arg(n); },
        .datedCondition = "  AND Date >= %1 AND Date <= %2"};
    return s;
}

} // namespace

const SlotTable& TimeAssembler::slotTable()
{
    // The two name slots are looked up by EmployeeNumber.
    static const SlotTable table{
        .names = {"TimeRecordID", "EmployeeNumber", "VehicleNumber", "EmployeeFirstName",
                  "EmployeeLastName", "Date", "Time", "CustomerNumber", "IsJobInRecord", "IsTimeInRecord",
                  "IsJobOutRecord", "IsTimeOutRecord", "OdometerReading", "Approved", "ExportID"},
        .columns = {"NewTimeRecordID", "EmployeeNumber", "VehicleBlock", "EmployeeNumber", "EmployeeNumber",
                    "Date", "Time", "CustomerNumber", "IsJobInRecord", "IsTimeInRecord", "IsJobOutRecord",
                    "IsTimeOutRecord", "OdometerReading", "Approved", "ExportId"},
        .firstNameSlot = SlotFirstName,
        .lastNameSlot = SlotLastName,
        .dateSlot = SlotDate,
        .timeSlot = SlotTime,
        .firstTruthSlot = SlotJobIn,
        .lastTruthSlot = SlotTimeOut};
    return table;
}

TimeAssembler::TimeAssembler(cDAO& db, Feedback& feedback)
    : WaitingRecordsAssembler(db, feedback, slotTable(), style())
{
}

qint16 TimeAssembler::available(const ExportRequest& request)
{
    qint32 records = 0;
    return avail::TimeRecordsAvailable(m_db, m_feedback, request.exportId, records);
}

} // namespace tp
