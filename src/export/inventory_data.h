#pragma once
// "Inventory Data": approved movements of InventoryHistory, waiting under the request's export
// identifier, with the names of the record's EmployeeID looked up in EmployeeInfo. The rows a
// load hands out are kept by InventoryHistoryID and marked by it.
#include "export/waiting_records.h"

namespace tp {

class InventoryAssembler : public WaitingRecordsAssembler {
public:
    // The 12 slots of the data set, their columns and the getter. JobRecordID has a slot but
    // no column: it is never exported.
    static const SlotTable& slotTable();

    InventoryAssembler(cDAO& db, Feedback& feedback);

    qint16 available(const ExportRequest& request) override;
};

} // namespace tp
