#pragma once
// The small look-ups the export loaders use to turn track, vehicle and employee numbers into
// numbers and names. Each runs one query, reads the first row and reports a failure with its
// message; after a failure it gives what it gives when no row is found.
#include <QString>

namespace tp {

class cDAO;
class Feedback;

inline const QString kCannotReadVehicle = QStringLiteral("Cannot read Vehicle record");
inline const QString kCannotReadEmployee = QStringLiteral("Cannot read Employee record");
inline const QString kUnknownName = QStringLiteral("Unknown");

class Lookups {
public:
    Lookups(cDAO& db, Feedback& feedback) : m_db(db), m_feedback(feedback) {}

    // VehicleNumber / EmployeeNumber of a track; 0 when the track has no row.
    qint32 VehicleOfTrack(qint32 trackId);
    qint32 EmployeeOfTrack(qint32 trackId);
    // LicenseNumber of a vehicle; "Unknown" when it has no row.
    QString VehicleLicense(qint32 vehicleNumber);
    // TrackerSerialNumber of a vehicle, its VehicleIdentifier into identifier. A vehicle
    // without a row gives "Unknown" for both.
    QString VehicleIdentity(qint32 vehicleNumber, QString& identifier);
    // Name into name; left unchanged when the employee has no row. True when a row was read.
    bool EmployeeName(qint32 employeeNumber, QString& name);
    // FirstName and LastName; an empty name, a missing row or a failure gives "Unknown".
    // True when a row was read.
    bool EmployeeFirstLast(qint32 employeeNumber, QString& firstName, QString& lastName);

    // Queries run so far (callers that cache names are tested through it).
    int queriesRun() const { return m_queries; }

private:
    // The named columns of the first row of sql (null -> ""); empty when there is no row or
    // the query failed, a failure being told with failMessage.
    QStringList firstRow(const QString& sql, const QStringList& columns, const QString& failMessage);

    cDAO& m_db;
    Feedback& m_feedback;
    int m_queries = 0;
};

} // namespace tp
