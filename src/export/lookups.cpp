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

Lookups::Row Lookups::firstRow(const QString& sql, const QStringList& columns,
                               QStringList& values)
{
    ++m_queries;
    values.clear();
    RecordsetPtr rs = m_db.RecSet_Forward(sql);
    if (!rs)
        return Row::Failed;
    if (rs->atEnd()) {
        m_db.RS_Close(rs);
        return Row::Missing;
    }
    for (const QString& column : columns) {
        const int index = rs->fieldIndex(column);
        if (index < 0) {
            m_db.RS_Close(rs);
            return Row::Failed;
        }
        const QVariant v = rs->value(index);
        values << (v.isNull() ? QString() : v.toString());
    }
    m_db.RS_Close(rs);
    return Row::Found;
}

void Lookups::failed(const QString& message)
{
    m_feedback.message(0, message, kBoxTitle);
}

qint32 Lookups::VehicleOfTrack(qint32 trackId)
{
    QStringList v;
    switch (firstRow(QStringLiteral("SELECT VehicleNumber FROM EmployeeTrackActivity WHERE TrackID = ") +
                         sql::number(qint64(trackId)),
                     {QStringLiteral("VehicleNumber")}, v)) {
    case Row::Found:
        return v.at(0).toInt();
    case Row::Missing:
        return 0;
    case Row::Failed:
        break;
    }
    failed(kCannotReadVehicle);
    return 0;
}

qint32 Lookups::EmployeeOfTrack(qint32 trackId)
{
    QStringList v;
    switch (firstRow(QStringLiteral("SELECT EmployeeNumber FROM EmployeeTrackActivity WHERE TrackID = ") +
                         sql::number(qint64(trackId)),
                     {QStringLiteral("EmployeeNumber")}, v)) {
    case Row::Found:
        return v.at(0).toInt();
    case Row::Missing:
        return 0;
    case Row::Failed:
        break;
    }
    failed(kCannotReadEmployee);
    return 0;
}

QString Lookups::VehicleLicense(qint32 vehicleNumber)
{
    QStringList v;
    switch (firstRow(QStringLiteral("SELECT *  FROM VehicleInfo WHERE VehicleNumber = ") +
                         sql::number(qint64(vehicleNumber)),
                     {QStringLiteral("LicenseNumber")}, v)) {
    case Row::Found:
        return v.at(0);
    case Row::Missing:
        return kUnknownName;
    case Row::Failed:
        break;
    }
    failed(kCannotReadVehicle);
    return kUnknownName;
}

QString Lookups::VehicleIdentity(qint32 vehicleNumber, QString& identifier)
{
    QStringList v;
    switch (firstRow(QStringLiteral("SELECT *  FROM VehicleInfo WHERE VehicleNumber = ") +
                         sql::number(qint64(vehicleNumber)),
                     {QStringLiteral("TrackerSerialNumber"), QStringLiteral("VehicleIdentifier")},
                     v)) {
    case Row::Found:
        identifier = v.at(1);
        return v.at(0);
    case Row::Missing:
        identifier = kUnknownName;
        return kUnknownName;
    case Row::Failed:
        break;
    }
    failed(kCannotReadVehicle);
    identifier = kUnknownName;
    return kUnknownName;
}

bool Lookups::EmployeeName(qint32 employeeNumber, QString& name)
{
    QStringList v;
    switch (firstRow(QStringLiteral("SELECT Name FROM EmployeeInfo WHERE EmployeeNumber = ") +
                         sql::number(qint64(employeeNumber)),
                     {QStringLiteral("Name")}, v)) {
    case Row::Found:
        name = v.at(0);
        return true;
    case Row::Missing:
        return false;
    case Row::Failed:
        break;
    }
    failed(kCannotReadEmployee);
    return false;
}

bool Lookups::EmployeeFirstLast(qint32 employeeNumber, QString& firstName, QString& lastName)
{
    QStringList v;
    switch (firstRow(QStringLiteral("SELECT FirstName, LastName FROM EmployeeInfo WHERE EmployeeNumber = ") +
                         sql::number(qint64(employeeNumber)),
                     {QStringLiteral("FirstName"), QStringLiteral("LastName")}, v)) {
    case Row::Found:
        firstName = orUnknown(v.at(0));
        lastName = orUnknown(v.at(1));
        return true;
    case Row::Missing:
        break;
    case Row::Failed:
        failed(kCannotReadEmployee);
        break;
    }
    firstName = kUnknownName;
    lastName = kUnknownName;
    return false;
}

} // namespace tp
