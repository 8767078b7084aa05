#include "export/inventory_data.h"

#include "export/availability.h"
#include "foundation/dao.h"
#include "foundation/feedback.h"

namespace tp {

namespace {

enum Slot {
    SlotId, SlotEmployee, SlotFirstName, SlotLastName, SlotInventory, SlotCustomer, SlotDate,
    SlotTime, SlotQuantity, SlotJobRecord, SlotApproved, SlotExportId
};

const QString kTable = QStringLiteral("InventoryHistory");
const QString kIdColumn = QStringLiteral("InventoryHistoryID");

const WaitingRecordsStyle& style()
{
    static const WaitingRecordsStyle s{
        .table = kTable,
        .idColumn = kIdColumn,
        .postgresOrder = " ORDER BY InventoryHistoryID",
        .postgresDatedOrder = " ORDER BY Date, InventoryHistoryID",
        .markNoneFound = "0 Record(s) found",
        .employeeColumn = "EmployeeID",
        .loadErrorAll = "Cannot read Inventory record",
        .previewErrorAll = "Cannot read Inventory record(s)",
        .errorDated = "Cannot read Inventory record(s)",
        .errorStatus = "Error retrieving record at # ",
        .noneFound = "0  Record(s) found",
        // The inventory loads run to the end without letting the user interface in.
        .yields = false,
        .previewDone = [](qint64 n) {
            return n < 21 ? QStringLiteral("%1  Record(s) found").arg(n)
                          : QStringLiteral("20  out of %1  Records").arg(n);
        },
        .loadDone = [](qint64 n) {
            return n >= 20 ? QStringLiteral("First 20 records out of %1 found").arg(n)
                           : QStringLiteral("%1  Record(s) found").arg(n);
        },
        .datedCondition = " AND Date >= %1 AND Date <= %2"};
    return s;
}

} // namespace

const SlotTable& InventoryAssembler::slotTable()
{
    static const SlotTable table{
        .names = {kIdColumn, "EmployeeID", "EmployeeFirstName", "EmployeeLastName", "InventoryNumber",
                  "CustomerID", "Date", "Time", "UsedQuantity", "JobRecordID", "Approved", "ExportID"},
        .columns = {kIdColumn, "EmployeeID", "EmployeeID", "EmployeeID", "InventoryNumber", "CustomerID",
                    "Date", "Time", "UsedQuantity", "", "Approved", "ExportID"},
        .firstNameSlot = SlotFirstName,
        .lastNameSlot = SlotLastName,
        .dateSlot = SlotDate,
        .timeSlot = SlotTime};
    return table;
}

InventoryAssembler::InventoryAssembler(cDAO& db, Feedback& feedback)
    : WaitingRecordsAssembler(db, feedback, slotTable(), style())
{
}

qint16 InventoryAssembler::available(const ExportRequest& request)
{
    qint32 records = 0;
    return avail::InventoryRecordsAvailable(m_db, m_feedback, request.exportId, records);
}

} // namespace tp
