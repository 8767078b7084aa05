#include "export/lookups.h"

#include "foundation/dao.h"
#include "foundation/feedback.h"
#include "foundation/sql_literal.h"

#include <QStringList>

namespace tp {

namespace {

QString orUnknown(const QString& name)
{
    return name.isEmpty() ? kUnknownName : name;
}

} // namespace

QStringList Lookups::firstRow(const QString& sql, const QStringList& columns,
                              const QString& failMessage)
{
    ++m_queries;
    QStringList values;
    RecordsetPtr rs = m_db.RecSet_Forward(sql);
    bool failed = !rs;
    if (rs && !rs->atEnd()) {
        for (const QString& column : columns) {
            const int index = rs->fieldIndex(column);
            if (index < 0) {
                failed = true;
                break;
            }
            const QVariant v = rs->value(index);
            values << (v.isNull() ? QString() : v.toString());
        }
    }
    if (rs)
        m_db.RS_Close(rs);
    if (failed) {
        m_feedback.message(0, failMessage, kBoxTitle);
        values.clear();
    }
    return values;
}

qint32 Lookups::VehicleOfTrack(qint32 trackId)
{
    const QStringList v = firstRow(
        QStringLiteral("SELECT VehicleNumber FROM EmployeeTrackActivity WHERE TrackID = ") + sql::number(qint64(trackId)),
        {QStringLiteral("VehicleNumber")}, kCannotReadVehicle);
    return v.isEmpty() ? 0 : v.at(0).toInt();
}

qint32 Lookups::EmployeeOfTrack(qint32 trackId)
{
    const QStringList v = firstRow(
        QStringLiteral("SELECT EmployeeNumber FROM EmployeeTrackActivity WHERE TrackID = ") + sql::number(qint64(trackId)),
        {QStringLiteral("EmployeeNumber")}, kCannotReadEmployee);
    return v.isEmpty() ? 0 : v.at(0).toInt();
}

QString Lookups::VehicleLicense(qint32 vehicleNumber)
{
    const QStringList v = firstRow(
        QStringLiteral("SELECT *  FROM VehicleInfo WHERE VehicleNumber = ") + sql::number(qint64(vehicleNumber)),
        {QStringLiteral("LicenseNumber")}, kCannotReadVehicle);
    return v.isEmpty() ? kUnknownName : v.at(0);
}

QString Lookups::VehicleIdentity(qint32 vehicleNumber, QString& identifier)
{
    const QStringList v = firstRow(
        QStringLiteral("SELECT *  FROM VehicleInfo WHERE VehicleNumber = ") + sql::number(qint64(vehicleNumber)),
        {QStringLiteral("TrackerSerialNumber"), QStringLiteral("VehicleIdentifier")}, kCannotReadVehicle);
    identifier = v.isEmpty() ? kUnknownName : v.at(1);
    return v.isEmpty() ? kUnknownName : v.at(0);
}

bool Lookups::EmployeeName(qint32 employeeNumber, QString& name)
{
    const QStringList v = firstRow(
        QStringLiteral("SELECT Name FROM EmployeeInfo WHERE EmployeeNumber = ") + sql::number(qint64(employeeNumber)),
        {QStringLiteral("Name")}, kCannotReadEmployee);
    if (v.isEmpty())
        return false;
    name = v.at(0);
    return true;
}

bool Lookups::EmployeeFirstLast(qint32 employeeNumber, QString& firstName, QString& lastName)
{
    const QStringList v = firstRow(
        QStringLiteral("SELECT FirstName, LastName FROM EmployeeInfo WHERE EmployeeNumber = ") +
            sql::number(qint64(employeeNumber)),
        {QStringLiteral("FirstName"), QStringLiteral("LastName")}, kCannotReadEmployee);
    firstName = v.isEmpty() ? kUnknownName : orUnknown(v.at(0));
    lastName = v.isEmpty() ? kUnknownName : orUnknown(v.at(1));
    return !v.isEmpty();
}

} // namespace tp
