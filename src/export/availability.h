#pragma once
// Does a data set have anything to export? Each check returns 1 (records exist), 0 (none)
// or -1 (the check failed; the failure has been shown) and reports on the status bar.
#include <QString>

namespace tp {

class cDAO;
class Feedback;

namespace avail {

inline const QString kNoRecordsAvailable = QStringLiteral("There are no records available.");
inline const QString kErrorGps = QStringLiteral("Error opening GPS data.");
inline const QString kErrorLocations = QStringLiteral("Error opening Pinpoint  data.");
inline const QString kErrorTime = QStringLiteral("Error opening Time data.");
inline const QString kErrorInventory = QStringLiteral("Error opening Inventory data.");

qint16 LocationRecordsAvailable(cDAO& db, Feedback& feedback);
qint16 GpsPointsAvailable(cDAO& db, Feedback& feedback);
// Time and inventory also set exportRecordCount to 1 or 0 (left alone on failure).
qint16 TimeRecordsAvailable(cDAO& db, Feedback& feedback, qint32 exportId, qint32& exportRecordCount);
qint16 InventoryRecordsAvailable(cDAO& db, Feedback& feedback, qint32 exportId,
                                 qint32& exportRecordCount);

} // namespace avail
} // namespace tp
