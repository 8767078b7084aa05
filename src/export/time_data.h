#pragma once
// "Time Data": approved time records of JobTimeRecords, waiting under the request's export
// identifier, with the employee names looked up in EmployeeInfo.
#include "export/waiting_records.h"

namespace tp {

class TimeAssembler : public WaitingRecordsAssembler {
public:
    // The 15 fields of the data set in slot order, their columns and the getter.
    static const SlotTable& slotTable();

    TimeAssembler(cDAO& db, Feedback& feedback);

    qint16 available(const ExportRequest& request) override;
};

} // namespace tp
