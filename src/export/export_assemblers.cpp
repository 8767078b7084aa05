#include "export/export_assemblers.h"

#include "export/gps_data.h"
#include "export/inventory_data.h"
#include "export/location_data.h"
#include "export/time_data.h"

namespace tp {

std::unique_ptr<ExportAssembler> MakeExportAssembler(const QString& tableKey, cDAO& db,
                                                     Feedback& feedback)
{
    if (tableKey == kTableTime)
        return std::make_unique<TimeAssembler>(db, feedback);
    if (tableKey == kTableInventory)
        return std::make_unique<InventoryAssembler>(db, feedback);
    if (tableKey == kTableLocations)
        return std::make_unique<LocationAssembler>(db, feedback);
    if (tableKey == kTableGps)
        return std::make_unique<GpsAssembler>(db, feedback);
    return nullptr;
}

} // namespace tp
