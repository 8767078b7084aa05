#pragma once
// The keys of the export data sets (msTableSelected), shared by the catalogue and the assemblers.
#include <QString>

namespace tp {

inline const QString kTableTime = QStringLiteral("JobTimeRecords");
inline const QString kTableInventory = QStringLiteral("Inventory");
inline const QString kTableGps = QStringLiteral("GPSCoordinates");
inline const QString kTableLocations = QStringLiteral("CommonLocations");

} // namespace tp
