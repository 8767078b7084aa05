#pragma once
// The calendar's GPS days: the days of a month on which a track subject (one employee with one
// vehicle) has usable GPS points, and the two track look-ups that step starts from.
#include "export/calendar_days.h"

#include <QString>

namespace tp {

class cDAO;
class Feedback;

inline const QString kTrackLookupError = QStringLiteral("Error");

// EmployeeNumber of the track as text; "Error" when the track has no row or the query fails.
// displayName (optional) receives the employee's display name: "KRV.ini" builds
// "Last, First M." ("Unknown" without a name), other settings files use Name
// ("UnAssigned Individual" when empty); "No Employee" when the employee has no row.
QString GetEmployeeInfoFromTrackID(cDAO& db, Feedback& feedback, qint32 trackId,
                                   const QString& settingsFile, QString* displayName = nullptr);

// VehicleNumber of the track as text; "Error" when the track has no row or the query fails.
// trackerSerial (optional) receives TrackerSerialNumber, "UnAssigned Tracker" when none.
QString GetVehicleInfoFromTrackID(cDAO& db, qint32 trackId, QString* trackerSerial = nullptr);

// Days of the month of fieldDate (YYYYMMDD, year and month used) on which the subject's tracks
// hold at least one point with a usable fix received on the track's own date.
DaysWithData gpsDaysWithData(cDAO& db, Feedback& feedback, qint32 trackSubject,
                             const QString& settingsFile, const QString& fieldDate);

} // namespace tp
