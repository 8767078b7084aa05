#include "export/track_subjects.h"

#include "foundation/dao.h"
#include "foundation/feedback.h"

#include <QHash>

namespace tp {

namespace {

const QString kLumtrek = QStringLiteral("lumtrek.ini");

qint64 whole(const QVariant& v)
{
    return v.isNull() ? 0 : qint64(v.toDouble());
}

QString textOf(const QVariant& v)
{
    return v.isNull() ? QString() : v.toString();
}

// The display text of every numbered row of sql, keyed by number; the first row of a number
// wins, as a find in the ordered set would. False when the read failed.
bool readNames(cDAO& db, const QString& sql, const QString& numberColumn,
               const QString& textColumn, QHash<qint64, QString>& names)
{
    RecordsetPtr rs = db.RecSet_Forward(sql);
    if (!rs)
        return false;
    const int number = rs->fieldIndex(numberColumn);
    const int text = rs->fieldIndex(textColumn);
    if (number < 0 || text < 0) {
        db.RS_Close(rs);
        return false;
    }
    for (; !rs->atEnd(); rs->moveNext()) {
        const qint64 n = whole(rs->value(number));
        if (!names.contains(n))
            names.insert(n, textOf(rs->value(text)));
    }
    db.RS_Close(rs);
    return true;
}

} // namespace

bool TrackSubjectList::load(cDAO& db, Feedback& feedback, const QString& settingsFile)
{
    m_entries.clear();
    m_subjects = 0;
    auto failed = [&] {
        m_entries = {{kTrackActivityNotAvailable, 0}};
        feedback.message(1, kCannotReadTracks, kBoxTitle);
        return false;
    };

    // The limit counts rows, so it is checked before any track is read.
    RecordsetPtr counted = db.RecSet_Forward(QStringLiteral("Select COUNT(*) from EmployeeTrackActivity"));
    if (!counted || counted->atEnd())
        return failed();
    const qint64 tracks = counted->value(0).toLongLong();
    db.RS_Close(counted);
    if (tracks >= kTrackListLimit) {
        feedback.message(0, kTooManyTracks, kBoxTitle);
        m_entries = {{kTrackActivityNotAvailable, 0}};
        return false;
    }

    const bool lumtrek = settingsFile == kLumtrek;
    QHash<qint64, QString> employees, vehicles;
    if (!readNames(db, QStringLiteral("Select * from EmployeeInfo ORDER BY EmployeeNumber"),
                   QStringLiteral("EmployeeNumber"),
                   lumtrek ? QStringLiteral("Name") : QStringLiteral("FirstName"), employees)
        || !readNames(db, QStringLiteral("Select * from VehicleInfo Order By VehicleNumber"),
                      QStringLiteral("VehicleNumber"),
                      lumtrek ? QStringLiteral("VehicleIdentifier") : QStringLiteral("LicenseNumber"),
                      vehicles))
        return failed();

    RecordsetPtr rs = db.RecSet_Forward(QStringLiteral(
        "Select * from EmployeeTrackActivity Order By EmployeeNumber,VehicleNumber, TrackingDate"));
    if (!rs)
        return failed();
    const int trackIndex = rs->fieldIndex(QStringLiteral("TrackID"));
    const int employeeIndex = rs->fieldIndex(QStringLiteral("EmployeeNumber"));
    const int vehicleIndex = rs->fieldIndex(QStringLiteral("VehicleNumber"));
    if (trackIndex < 0 || employeeIndex < 0 || vehicleIndex < 0) {
        db.RS_Close(rs);
        return failed();
    }

    m_entries.push_back({kAllSubjects, 0});
    // The remembered pairing starts as 0/0, so a first track without employee and vehicle
    // (and the tracks that follow it with the same pairing) is never listed.
    qint64 employee = 0, vehicle = 0;
    for (; !rs->atEnd(); rs->moveNext()) {
        const qint64 e = whole(rs->value(employeeIndex));
        const qint64 v = whole(rs->value(vehicleIndex));
        if (e == employee && v == vehicle)
            continue;
        const auto person = employees.constFind(e);
        const auto unit = vehicles.constFind(v);
        m_entries.push_back({(person != employees.cend() ? *person : kUnassignedIndividual) +
                                 QStringLiteral(" - ") +
                                 (unit != vehicles.cend() ? *unit : kUnassignedTracker),
                             qint32(whole(rs->value(trackIndex)))});
        employee = e;
        vehicle = v;
    }
    db.RS_Close(rs);
    m_subjects = int(m_entries.size()) - 1;
    if (m_subjects == 0)
        m_entries.push_back({kNoTrackActivity, 0});
    return true;
}

int TrackSubjectList::entryOfTrack(qint32 trackId) const
{
    for (std::size_t i = 1; i < m_entries.size(); ++i)
        if (m_entries[i].trackId == trackId && trackId != 0)
            return int(i);
    return -1;
}

std::optional<TrackSubjectChoice> TrackSubjectList::accept(int checked, Feedback& feedback) const
{
    if (checked < 0 || checked >= int(m_entries.size())) {
        feedback.message(0, kPleaseMakeASelection, kBoxTitle);
        return std::nullopt;
    }
    TrackSubjectChoice choice;
    // "All Subjects" over a list that names no subject chooses nothing.
    const bool all = checked == 0 && m_entries[0].text == kAllSubjects;
    if (all && m_subjects > 0) {
        const qint32 n = qint32(m_subjects);
        choice.TrackSubjects.assign(std::size_t(n) + 1, 0);
        for (qint32 i = 1; i <= n; ++i)
            choice.TrackSubjects[std::size_t(i)] = m_entries[std::size_t(i)].trackId;
        choice.CurrentTrackSubject = n;
        return choice;
    }
    choice.CurrentTrackSubject = m_entries[std::size_t(checked)].trackId;
    choice.TrackSubjects = {choice.CurrentTrackSubject};
    return choice;
}

} // namespace tp
