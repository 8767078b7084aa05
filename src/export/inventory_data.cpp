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
const QString kRecordsFound = QStringLiteral("  Record(s) found");

const WaitingRecordsStyle& style()
{
    static const WaitingRecordsStyle s = [] {
        WaitingRecordsStyle w;
        w.table = kTable;
        w.employeeColumn = QStringLiteral("EmployeeID");
        w.loadErrorAll = QStringLiteral("Cannot read Inventory record");
        w.previewErrorAll = w.errorDated = QStringLiteral("Cannot read Inventory record(s)");
        w.errorStatus = QStringLiteral("Error retrieving record at # ");
        w.noneFound = QStringLiteral("0") + kRecordsFound;
        // The inventory loads run to the end without letting the user interface in.
        w.yields = false;
        w.previewDone = [](qint64 n) {
            return n < 21 ? QString::number(n) + kRecordsFound
                          : QStringLiteral("20  out of ") + QString::number(n) + QStringLiteral("  Records");
        };
        w.loadDone = [](qint64 n) {
            return n >= 20 ? QStringLiteral("First 20 records out of ") + QString::number(n) +
                                 QStringLiteral(" found")
                           : QString::number(n) + kRecordsFound;
        };
        w.datedCondition = QStringLiteral(" AND Date >= %1 AND Date <= %2");
        return w;
    }();
    return s;
}

} // namespace

const SlotTable& InventoryAssembler::slotTable()
{
    static const SlotTable table = [] {
        SlotTable t;
        t.names = {kIdColumn, QStringLiteral("EmployeeID"), QStringLiteral("EmployeeFirstName"),
                   QStringLiteral("EmployeeLastName"), QStringLiteral("InventoryNumber"),
                   QStringLiteral("CustomerID"), QStringLiteral("Date"), QStringLiteral("Time"),
                   QStringLiteral("UsedQuantity"), QStringLiteral("JobRecordID"),
                   QStringLiteral("Approved"), QStringLiteral("ExportID")};
        for (const char* c : {"InventoryHistoryID", "EmployeeID", "EmployeeID", "EmployeeID",
                              "InventoryNumber", "CustomerID", "Date", "Time", "UsedQuantity", "",
                              "Approved", "ExportID"})
            t.columns.push_back(QLatin1String(c));
        t.firstNameSlot = SlotFirstName;
        t.lastNameSlot = SlotLastName;
        t.dateSlot = SlotDate;
        t.timeSlot = SlotTime;
        return t;
    }();
    return table;
}

InventoryAssembler::InventoryAssembler(cDAO& db, Feedback& feedback)
    : WaitingRecordsAssembler(db, feedback, slotTable(), style())
{
}

QString InventoryAssembler::keyExpression() const
{
    return kIdColumn;
}

QString InventoryAssembler::orderBy(bool byDate) const
{
    return byDate ? QStringLiteral(" ORDER BY Date, InventoryHistoryID")
                  : QStringLiteral(" ORDER BY InventoryHistoryID");
}

qint16 InventoryAssembler::available(const ExportRequest& request)
{
    qint32 records = 0;
    return avail::InventoryRecordsAvailable(m_db, m_feedback, request.exportId, records);
}

qint64 InventoryAssembler::mark(const ExportRequest& request, const ExportedRows* rows)
{
    const auto condition = where(request);
    if (!condition)
        return -1;
    const qint64 marked = markExported(m_db, kTable, *condition, kIdColumn, rows);
    if (marked == 0 && !rows && !request.byDate)
        m_feedback.status(QStringLiteral("0 Record(s) found"));
    return marked;
}

} // namespace tp
