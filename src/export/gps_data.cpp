#include "export/gps_data.h"

#include "export/availability.h"
#include "export/export_values.h"
#include "foundation/conversions.h"
#include "foundation/dao.h"
#include "foundation/feedback.h"
#include "foundation/sql_literal.h"
#include "export/track_subjects.h"


namespace tp {

namespace {

enum Slot {
    SlotVehicleId, SlotSerial, SlotLicense, SlotFirstName, SlotLastName, SlotAssignedTo,
    SlotUnused, SlotDate, SlotTime, SlotUnit, SlotTrackId, SlotLongitude, SlotLatitude,
    SlotTimeDeviation, SlotPowerOnOff, SlotTrackStartStop, SlotDownloadId, SlotSpeed, SlotCount
};

// The GPSCoordinates column of each point slot; null for the columnSlots that come from look-ups.
const char* const kPointColumns[SlotCount] = {
    nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, "RcvDate", "RcvTime", nullptr,
    "TrackID", "Longitude", "Latitude", "TimeDeviation", "PowerOnOff", "TrackStartStop",
    "DownloadID", "Speed"};

const QString kKrv = QStringLiteral("KRV.ini");
const QString kLumtrek = QStringLiteral("lumtrek.ini");
const QString kUsableFix = QStringLiteral(" AND Longitude <> -1 AND Latitude <> -1");

bool isPointSlot(int slot)
{
    return slot >= 0 && kPointColumns[slot] != nullptr;
}

// A stored value as text; a null (a track's open end, say) is the empty text.
QString storedText(const QVariant& v)
{
    if (!v.isValid() || v.isNull())
        return QString();
    switch (v.typeId()) {
    case QMetaType::Int: case QMetaType::UInt: case QMetaType::LongLong:
    case QMetaType::ULongLong: case QMetaType::Short: case QMetaType::UShort:
        return QString::number(v.toLongLong());
    case QMetaType::Double: case QMetaType::Float:
        return formatExportNumber(v.toDouble());
    case QMetaType::Bool:
        return v.toBool() ? QStringLiteral("-1") : QStringLiteral("0");
    default:
        return v.toString();
    }
}

QString orUnknown(const QString& name)
{
    return name.isEmpty() ? kUnknownName : name;
}

} // namespace

// The output columns of a pass: which slot each shows and which point columns to read.
class GpsAssembler::Reader {
public:
    explicit Reader(const QStringList& fields)
    {
        for (const QString& f : fields) {
            const int slot = slotOf(f);
            columnSlots.push_back(slot);
            needEmployee |= slot == SlotFirstName || slot == SlotLastName || slot == SlotAssignedTo;
            needLicense |= slot == SlotLicense;
            needUnit |= slot == SlotUnit;
            if (isPointSlot(slot) && !columns.contains(QLatin1String(kPointColumns[slot])))
                columns << QLatin1String(kPointColumns[slot]);
        }
    }
    // The points of one track, usable fixes only, in the order they were received.
    QString pointsSql(const QString& track) const
    {
        const QString list = columns.isEmpty() ? QStringLiteral("TrackID") : columns.join(QStringLiteral(", "));
        return QStringLiteral("Select ") + list + QStringLiteral(" from GPSCoordinates WHERE TrackID = ") +
               track + kUsableFix + QStringLiteral("  Order By RcvDate, RcvTime");
    }
    bool bind(const Recordset& rs)
    {
        indexes.clear();
        for (int slot : columnSlots) {
            const int index = isPointSlot(slot) ? rs.fieldIndex(QLatin1String(kPointColumns[slot])) : -1;
            if (isPointSlot(slot) && index < 0)
                return false;
            indexes.push_back(index);
        }
        return true;
    }
    // One point's texts into values.
    void fill(const Recordset& rs, const SubjectTexts& texts, bool formatDate, bool formatTime,
              QStringList& values)
    {
        values.clear();
        for (std::size_t c = 0; c < columnSlots.size(); ++c) {
            switch (const int slot = columnSlots[c]) {
            case SlotVehicleId: values << texts.vehicle; break;
            case SlotLicense: values << texts.license; break;
            case SlotFirstName: case SlotAssignedTo: values << texts.first; break;
            case SlotLastName: values << texts.last; break;
            case SlotUnit: values << texts.unit; break;
            case SlotDate: {
                // A track's points share their date: it is laid out once.
                const QString stored = storedText(rs.value(indexes[c]));
                if (m_lastDate != stored) {
                    m_lastDate = stored;
                    m_lastDateText = fieldText(slot, stored, formatDate, formatTime);
                }
                values << m_lastDateText;
                break;
            }
            default:
                values << (isPointSlot(slot) ? fieldText(slot, storedText(rs.value(indexes[c])),
                                                         formatDate, formatTime)
                                             : QString());
            }
        }
    }

    std::vector<int> columnSlots;
    std::vector<int> indexes;
    std::optional<QString> m_lastDate;
    QString m_lastDateText;
    QStringList columns;
    bool needEmployee = false, needLicense = false, needUnit = false;
};

const QStringList& GpsAssembler::fieldNames()
{
    static const QStringList names = {
        QStringLiteral("VehicleID"), QStringLiteral("Serial Number"), QStringLiteral("LicenseNumber"),
        QStringLiteral("EmployeeFirstName"), QStringLiteral("EmployeeLastName"),
        QStringLiteral("Assigned To"), QString(), QStringLiteral("Date"), QStringLiteral("Time"),
        QStringLiteral("Unit Identifier"), QStringLiteral("TrackID"), QStringLiteral("Longitude"),
        QStringLiteral("Latitude"), QStringLiteral("TimeDeviation"), QStringLiteral("PowerOnOff"),
        QStringLiteral("TrackStartStop"), QStringLiteral("DownloadID"), QStringLiteral("Speed")};
    return names;
}

int GpsAssembler::slotOf(const QString& fieldName)
{
    return fieldName.isEmpty() ? -1 : int(fieldNames().indexOf(fieldName));
}

QString GpsAssembler::fieldText(int slot, const QString& stored, bool formatDate, bool formatTime)
{
    if (slot == SlotDate && formatDate)
        return ConvertField2StandardDate(stored);
    if (slot == SlotTime && formatTime)
        return formatStoredTimeText(stored);
    return stored;
}

bool GpsAssembler::hasSubjectList(const ExportRequest& request)
{
    return request.trackSubjects.size() > 1;
}

std::vector<qint32> GpsAssembler::subjectTracks(const ExportRequest& request)
{
    if (hasSubjectList(request))
        return {request.trackSubjects.begin() + 1, request.trackSubjects.end()};
    return {request.currentTrackSubject};
}

GpsAssembler::GpsAssembler(cDAO& db, Feedback& feedback)
    : m_db(db), m_feedback(feedback), m_lookups(db, feedback)
{
}

qint16 GpsAssembler::available(const ExportRequest&)
{
    return avail::GpsPointsAvailable(m_db, m_feedback);
}

GpsAssembler::Subject GpsAssembler::selectSubject(const ExportRequest& request, qint32 track)
{
    Subject s;
    RecordsetPtr rs = m_db.RecSet_Forward(
        QStringLiteral("Select EmployeeNumber, VehicleNumber from EmployeeTrackActivity WHERE TrackID = ") +
        sql::number(qint64(track)));
    if (!rs) {
        s.failed = true;
        return s;
    }
    s.found = !rs->atEnd();
    if (s.found) {
        s.employee = qint32(rs->value(0).toDouble());
        s.vehicle = qint32(rs->value(1).toDouble());
    }
    m_db.RS_Close(rs);
    const auto start = sql::wholeNumber(request.start);
    const auto stop = sql::wholeNumber(request.stop);
    if (!s.found || !request.byDate || !start || !stop)
        return s;

    // Every track of the pairing in the range; equal dates keep the order they were made in.
    rs = m_db.RecSet_Forward(
        QStringLiteral("Select TrackID from EmployeeTrackActivity WHERE EmployeeNumber = ") +
        sql::number(qint64(s.employee)) + QStringLiteral(" AND VehicleNumber = ") +
        sql::number(qint64(s.vehicle)) + QStringLiteral(" AND TrackingDate >= ") + *start +
        QStringLiteral(" AND TrackingDate <= ") + *stop +
        QStringLiteral(" Order By TrackingDate, TrackID"));
    if (!rs) {
        s.failed = true;
        return s;
    }
    for (; !rs->atEnd(); rs->moveNext())
        s.tracks.push_back(qint32(rs->value(0).toDouble()));
    m_db.RS_Close(rs);
    return s;
}

GpsAssembler::SubjectTexts GpsAssembler::subjectTexts(const ExportRequest& request,
                                                      const Subject& subject, const Reader& reader)
{
    SubjectTexts t;
    const bool lumtrek = request.settingsFile == kLumtrek;
    t.vehicle = QString::number(subject.vehicle);
    if (reader.needEmployee) {
        if (subject.employee < 1) {
            t.first = kUnassignedIndividual;
        } else {
            // The two settings files name people differently: one pass's cache holds both.
            const qint64 key = qint64(subject.employee) * 2 + (lumtrek ? 1 : 0);
            auto it = m_employees.find(key);
            if (it == m_employees.end()) {
                std::pair<QString, QString> names;
                if (lumtrek) {
                    m_lookups.EmployeeName(subject.employee, names.first);
                    names.first = orUnknown(names.first);
                } else {
                    m_lookups.EmployeeFirstLast(subject.employee, names.first, names.second);
                }
                it = m_employees.insert(key, names);
            }
            t.first = it->first;
            t.last = it->second;
        }
    }
    if (reader.needLicense && request.settingsFile == kKrv)
        t.license = m_lookups.VehicleLicense(subject.vehicle);
    if (reader.needUnit && subject.vehicle > 0)
        m_lookups.VehicleIdentity(subject.vehicle, t.unit);
    return t;
}

std::optional<qint64> GpsAssembler::countTrack(qint32 track)
{
    RecordsetPtr rs = m_db.RecSet_Forward(
        QStringLiteral("Select COUNT(*) from GPSCoordinates WHERE TrackID = ") +
        sql::number(qint64(track)) + kUsableFix);
    if (!rs || rs->atEnd())
        return std::nullopt;
    const qint64 n = rs->value(0).toLongLong();
    m_db.RS_Close(rs);
    return n;
}

void GpsAssembler::readFailed(qint64 index)
{
    m_feedback.status(QStringLiteral("Error Retrieving Record # ") + QString::number(index));
}

void GpsAssembler::tellNoRecords(const ExportRequest& request, qint32 track)
{
    const bool lumtrek = request.settingsFile == kLumtrek;
    const qint32 employee = m_lookups.EmployeeOfTrack(track);
    QString first, last;
    if (lumtrek && employee == 0)
        first = QStringLiteral("Unassigned Individual");
    else if (lumtrek)
        m_lookups.EmployeeName(employee, first);
    else
        m_lookups.EmployeeFirstLast(employee, first, last);
    m_feedback.message(0, QStringLiteral("There are no records to obtain for  ") + first +
                              QStringLiteral("  ") + last + QLatin1Char('.'),
                       kBoxTitle);
}

qint64 GpsAssembler::countSubject(const ExportRequest& request, qint32 track)
{
    const Subject s = selectSubject(request, track);
    qint64 n = 0;
    for (std::size_t i = 0; i < s.tracks.size() && !s.failed; ++i) {
        const auto points = countTrack(s.tracks[i]);
        if (!points) {
            m_feedback.status(QStringLiteral("Error Retrieving Record"));
            return -1;
        }
        n += *points;
    }
    if (s.failed) {
        m_feedback.status(QStringLiteral("Error Retrieving Record"));
        return -1;
    }
    return n;
}

qint64 GpsAssembler::count(const ExportRequest& request)
{
    if (!hasSubjectList(request) && request.currentTrackSubject < 1) {
        m_feedback.message(0, kNoTrackForEmployee, kBoxTitle);
        return 0;
    }
    qint64 total = 0;
    for (qint32 track : subjectTracks(request)) {
        const qint64 n = countSubject(request, track);
        if (n < 0)
            return -1;
        total += n;
    }
    return total;
}

bool GpsAssembler::previewSubject(const ExportRequest& request, qint32 track, qint64 recordCount,
                                  PreviewResult& preview, int maxRows)
{
    const Subject s = selectSubject(request, track);
    Reader reader(request.fields);
    if (s.failed) {
        readFailed(qint64(preview.rows.size()) + 1);
        preview.failed = true;
        return false;
    }
    if (s.tracks.empty() || int(preview.rows.size()) >= maxRows)
        return true;
    const SubjectTexts texts = subjectTexts(request, s, reader);
    QStringList values;
    for (qint32 t : s.tracks) {
        RecordsetPtr rs = m_db.RecSet_Forward(reader.pointsSql(sql::number(qint64(t))));
        if (!rs || !reader.bind(*rs)) {
            readFailed(qint64(preview.rows.size()) + 1);
            preview.failed = true;
            return false;
        }
        for (; !rs->atEnd() && int(preview.rows.size()) < maxRows; rs->moveNext()) {
            reader.fill(*rs, texts, false, false, values);
            preview.rows.push_back(values);
            for (std::size_t c = 0; c < reader.columnSlots.size(); ++c) {
                preview.dateFilled |= reader.columnSlots[c] == SlotDate && !values.at(qsizetype(c)).isEmpty();
                preview.timeFilled |= reader.columnSlots[c] == SlotTime && !values.at(qsizetype(c)).isEmpty();
            }
            m_feedback.status(QStringLiteral("Retrieving Record # ") + QString::number(preview.rows.size()) +
                              QStringLiteral(" Of ") + QString::number(recordCount));
        }
        m_db.RS_Close(rs);
        preview.gridRows = int(preview.rows.size());
        if (preview.gridRows >= maxRows)
            break;
    }
    return true;
}

PreviewResult GpsAssembler::preview(const ExportRequest& request, qint64 recordCount, int maxRows)
{
    PreviewResult result;
    if (!hasSubjectList(request) && request.currentTrackSubject < 1) {
        m_feedback.message(0, kNoTrackForEmployee, kBoxTitle);
        result.failed = true;
        return result;
    }
    for (qint32 track : subjectTracks(request))
        if (!previewSubject(request, track, recordCount, result, maxRows)
            || int(result.rows.size()) >= maxRows)
            break;
    if (!result.failed && !hasSubjectList(request))
        m_feedback.status(recordCount >= 20 ? QStringLiteral("First 20 records out of ") +
                                                  QString::number(recordCount) + QStringLiteral(" found")
                                            : QString::number(recordCount) +
                                                  QStringLiteral("  Record(s) found"));
    return result;
}

LoadResult GpsAssembler::load(const ExportRequest& request, RecordSink& sink, bool& cancel)
{
    LoadResult result;
    m_employees.clear();
    const bool list = hasSubjectList(request);
    if (!list && request.currentTrackSubject < 1) {
        m_feedback.message(0, kNoTrackForEmployee, kBoxTitle);
        result.error = kNoTrackForEmployee;
        return result;
    }
    // The question takes the scan's count, as the window's save always has; counting again
    // would read every point twice.
    const qint64 total = request.scannedCount >= 0 ? request.scannedCount : count(request);
    if (total < 0) {
        result.error = QStringLiteral("Error Retrieving Record");
        return result;
    }
    if (!ConfirmLongExport(m_feedback, total, cancel)) {
        result.outcome = LoadOutcome::Declined;
        return result;
    }
    if (!sink.begin(total)) {
        result.outcome = LoadOutcome::Aborted;
        return result;
    }

    Reader reader(request.fields);
    QStringList values;
    ProgressThrottle throttle;
    qint64 i = 0;
    auto cancelled = [&] {
        m_feedback.status(QStringLiteral("Cancel"));
        result.outcome = LoadOutcome::Cancelled;
        return result;
    };
    for (qint32 track : subjectTracks(request)) {
        const Subject s = selectSubject(request, track);
        if (s.failed) {
            readFailed(i + 1);
            result.error = QStringLiteral("Error Retrieving Record # ") + QString::number(i + 1);
            return result;
        }
        if (!s.found && list)
            tellNoRecords(request, track);
        const SubjectTexts texts = s.tracks.empty() ? SubjectTexts() : subjectTexts(request, s, reader);
        for (qint32 t : s.tracks) {
            RecordsetPtr rs = m_db.RecSet_Forward(reader.pointsSql(sql::number(qint64(t))));
            if (!rs || !reader.bind(*rs)) {
                readFailed(i + 1);
                result.error = QStringLiteral("Error Retrieving Record # ") + QString::number(i + 1);
                return result;
            }
            for (; !rs->atEnd(); rs->moveNext()) {
                reader.fill(*rs, texts, request.formatDate, request.formatTime, values);
                if (!sink.record(values)) {
                    m_db.RS_Close(rs);
                    result.outcome = LoadOutcome::Aborted;
                    return result;
                }
                result.count = ++i;
                if (throttle.due(i, total)) {
                    m_feedback.yield();
                    if (cancel) {
                        m_db.RS_Close(rs);
                        return cancelled();
                    }
                    m_feedback.status(QStringLiteral("Retrieving Record # ") + QString::number(i) +
                                      QStringLiteral(" Of ") + QString::number(total));
                    m_feedback.progress(i, total);
                }
            }
            m_db.RS_Close(rs);
        }
        // Between subjects the user may cancel too.
        m_feedback.yield();
        if (cancel)
            return cancelled();
    }
    result.outcome = LoadOutcome::Completed;
    return result;
}

qint64 GpsAssembler::mark(const ExportRequest&, const ExportedRows*)
{
    return 0;
}

} // namespace tp
