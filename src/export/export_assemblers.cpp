#include "export/export_assemblers.h"

#include "export/gps_data.h"
#include "export/time_data.h"

namespace tp {

std::unique_ptr<ExportAssembler> MakeExportAssembler(const QString& tableKey, cDAO& db,
                                                     Feedback& feedback)
{
    if (tableKey == kTableTime)
        return std::make_unique<TimeAssembler>(db, feedback);
    if (tableKey == kTableGps)
        return std::make_unique<GpsAssembler>(db, feedback);
    return nullptr;
}

} // namespace tp
