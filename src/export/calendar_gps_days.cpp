#include "export/calendar_gps_days.h"

#include "foundation/dao.h"
#include "foundation/feedback.h"
#include "foundation/log.h"
#include "foundation/sql_literal.h"

namespace tp {

namespace {

QString text(const QVariant& v)
{
    return v.isNull() ? QString() : v.toString().trimmed();
}

// A whole number as text as the database holds it; numbers stored as reals lose their ".0".
QString numberText(const QVariant& v)
{
    if (v.isNull())
        return QString();
    bool ok = false;
    const double d = v.toDouble(&ok);
    if (ok && d == double(qint64(d)))
        return QString::number(qint64(d));
    return v.toString().trimmed();
}

enum class Row { Found, Missing, Failed, NoTrack };

// Opens sql and copies the first row's values of columns; the recordset is closed again.
Row firstValue(cDAO& db, const QString& sql, const QStringList& columns, QVariantList& values)
{
    RecordsetPtr rs = db.RecSet_Opt(sql);
    if (!rs)
        return Row::Failed;
    if (rs->atEnd()) {
        db.RS_Close(rs);
        return Row::Missing;
    }
    values.clear();
    for (const QString& c : columns)
        values.append(rs->value(c));
    db.RS_Close(rs);
    return Row::Found;
}

Row trackRow(cDAO& db, qint32 trackId, const QString& column, QString& number)
{
    QVariantList v;
    const Row r = firstValue(
        db,
        QStringLiteral("Select * from EmployeeTrackActivity Where TrackID = ") +
            sql::number(qint64(trackId)),
        {column}, v);
    if (r == Row::Found)
        number = numberText(v.value(0));
    return r;
}

// The track's numberColumn (into number), then the first row that select (with %1 for that
// number) finds. NoTrack: the track has no row.
Row trackedRow(cDAO& db, qint32 trackId, const QString& numberColumn, QString& number,
               const QString& select, const QStringList& columns, QVariantList& values)
{
    const Row track = trackRow(db, trackId, numberColumn, number);
    if (track != Row::Found)
        return track == Row::Missing ? Row::NoTrack : Row::Failed;
    const auto literal = sql::wholeNumber(number);
    if (!literal)
        return Row::Failed;
    return firstValue(db, select.arg(*literal), columns, values);
}

} // namespace

QString GetEmployeeInfoFromTrackID(cDAO& db, Feedback& feedback, qint32 trackId,
                                   const QString& settingsFile, QString* displayName)
{
    const bool krv = settingsFile == QLatin1String("KRV.ini");
    auto failed = [&] {
        WriteLog(QStringLiteral("ERROR occurred in GetEmployeeInfoFromTrackID: Primary"));
        if (!krv)
            feedback.message(0,
                             QStringLiteral("A non-critical error has occurred.\r\n"
                                            "Advise technical support as soon as possible."),
                             kBoxTitle);
        return kTrackLookupError;
    };

    QString number;
    QVariantList v;
    const Row employee = trackedRow(
        db, trackId, QStringLiteral("EmployeeNumber"), number,
        QStringLiteral("SELECT EmployeeInfo.* FROM EmployeeInfo WHERE EmployeeNumber   = %1 "
                       "ORDER BY EmployeeInfo.EmployeeNumber"),
        {QStringLiteral("LastName"), QStringLiteral("FirstName"), QStringLiteral("MI"),
         QStringLiteral("Name")},
        v);
    if (employee == Row::NoTrack)
        return kTrackLookupError;
    if (employee == Row::Failed)
        return failed();
    QString name;
    if (employee == Row::Missing) {
        name = QStringLiteral("No Employee");
    } else if (krv) {
        const QString last = text(v.value(0)), first = text(v.value(1));
        name = last.isEmpty() && first.isEmpty()
                   ? QStringLiteral("Unknown")
                   : last + QStringLiteral(", ") + first + QLatin1Char(' ') + text(v.value(2)) +
                         QLatin1Char('.');
    } else {
        name = text(v.value(3));
        if (name.isEmpty())
            name = QStringLiteral("UnAssigned Individual");
    }
    if (displayName)
        *displayName = name;
    return number;
}

QString GetVehicleInfoFromTrackID(cDAO& db, qint32 trackId, QString* trackerSerial)
{
    auto failed = [] {
        WriteLog(QStringLiteral("ERROR occurred in GetVehicleInfoFromTrackID: Primary"));
        return kTrackLookupError;
    };
    QString number;
    QVariantList v;
    const Row vehicle = trackedRow(
        db, trackId, QStringLiteral("VehicleNumber"), number,
        QStringLiteral("SELECT VehicleInfo.*  FROM VehicleInfo WHERE VehicleNumber = %1 "
                       "ORDER BY VehicleInfo.VehicleNumber"),
        {QStringLiteral("TrackerSerialNumber")}, v);
    if (vehicle == Row::NoTrack)
        return kTrackLookupError;
    if (vehicle == Row::Failed)
        return failed();
    QString serial = vehicle == Row::Found ? text(v.value(0)) : QString();
    if (serial.isEmpty())
        serial = QStringLiteral("UnAssigned Tracker");
    if (trackerSerial)
        *trackerSerial = serial;
    return number;
}

DaysWithData gpsDaysWithData(cDAO& db, Feedback& feedback, qint32 trackSubject,
                             const QString& settingsFile, const QString& fieldDate)
{
    DaysWithData result;
    const auto from = sql::wholeNumber(fieldDate.left(6) + QStringLiteral("01"));
    const auto to = sql::wholeNumber(fieldDate.left(6) + QStringLiteral("31"));
    // A track without a row gives "Error", which is no number: no day to enable.
    const auto employee =
        sql::wholeNumber(GetEmployeeInfoFromTrackID(db, feedback, trackSubject, settingsFile));
    const auto vehicle = sql::wholeNumber(GetVehicleInfoFromTrackID(db, trackSubject));
    if (fieldDate.size() < 6 || !from || !to) {
        result.ok = false;
        return result;
    }
    if (!employee || !vehicle)
        return result;

    RecordsetPtr tracks = db.RecSet_Opt(
        QStringLiteral("SELECT * FROM EmployeeTrackActivity WHERE VehicleNumber = ") + *vehicle +
        QStringLiteral(" AND EmployeeNumber = ") + *employee +
        QStringLiteral(" AND TrackingDate >= ") + *from + QStringLiteral(" AND TrackingDate  <= ") +
        *to + QStringLiteral(" Order BY TrackingDate"));
    if (!tracks) {
        result.ok = false;
        return result;
    }
    const MonthLayout layout = monthLayout(fieldDate.left(4).toInt(), fieldDate.mid(4, 2).toInt());
    for (; !tracks->atEnd(); tracks->moveNext()) {
        const auto trackId = sql::wholeNumber(numberText(tracks->value(QStringLiteral("TrackID"))));
        const QString date = numberText(tracks->value(QStringLiteral("TrackingDate")));
        const auto dateLiteral = sql::wholeNumber(date);
        if (!trackId || !dateLiteral)
            continue;
        RecordsetPtr points = db.RecSet_Forward(
            QStringLiteral("SELECT * FROM GPSCoordinates   WHERE TrackID = ") + *trackId +
            QStringLiteral(" AND GPSCoordinates.Latitude <> ") + sql::number(qint64(-1)) +
            QStringLiteral(" AND GPSCoordinates.Longitude <> ") + sql::number(qint64(-1)) +
            QStringLiteral(" AND GPSCoordinates.RcvDate = ") + *dateLiteral);
        if (!points) {
            result.ok = false;
            continue;
        }
        const bool hasPoint = !points->atEnd();
        db.RS_Close(points);
        const int day = date.right(2).toInt();
        if (hasPoint && day >= 1 && day <= layout.days)
            result.days.insert(day);
    }
    db.RS_Close(tracks);
    return result;
}

} // namespace tp
