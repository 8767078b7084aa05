#include "export/location_data.h"

#include "export/availability.h"
#include "export/waiting_records.h"
#include "foundation/dao.h"
#include "foundation/feedback.h"

#include <algorithm>

namespace tp {

namespace {

constexpr int kSlots = 10;
constexpr int kBranchSlot = 9;
// The map location fields only the scan fills: slot and place in the kept row.
constexpr std::array<int, 3> kKeptSlots = {0, 1, kBranchSlot};

const char* const kColumns[kSlots] = {"CommonLocationNumber", "LocationName", "Address1",
                                      "Address2", "City", "State", "ZipCode", "Longitude",
                                      "Latitude", "BranchNumber"};

const QString kKrvSettings = QStringLiteral("KRV.ini");
const QString kRecordsFound = QStringLiteral("  Record(s) found");
const QString kCannotReadRecords = QStringLiteral("Cannot read Common Location Record(s)");

bool isMapLocations(const ExportRequest& request)
{
    return request.settingsFile == kKrvSettings;
}

QString selectRows()
{
    QStringList columns;
    for (const char* c : kColumns)
        columns << QLatin1String(c);
    // Stored order; PostgreSQL keeps none of its own, so both engines go by the number.
    return QStringLiteral("Select ") + columns.join(QStringLiteral(", ")) +
           QStringLiteral(" from CommonLocations ORDER BY CommonLocationNumber");
}

// Per output column, the slot its name selects in names; -1 for a name it lacks.
std::vector<int> slotsIn(const QStringList& fields, const QStringList& names)
{
    std::vector<int> found;
    for (const QString& f : fields)
        found.push_back(int(names.indexOf(f)));
    return found;
}

QString foundStatus(qint64 n)
{
    return n >= 20 ? QStringLiteral("First 20 records out of ") + QString::number(n) +
                         QStringLiteral(" found")
                   : QString::number(n) + kRecordsFound;
}

QString retrievingText(qint64 i, qint64 total)
{
    return QStringLiteral("Retrieving Record # ") + QString::number(i) + QStringLiteral(" Of ") +
           QString::number(total);
}

} // namespace

const QStringList& LocationAssembler::mapLocationFields()
{
    static const QStringList names = {
        QStringLiteral("LocationNumber"), QStringLiteral("LocationName"), QStringLiteral("Address1"),
        QStringLiteral("Address2"),       QStringLiteral("City"),         QStringLiteral("State"),
        QStringLiteral("ZipCode"),        QStringLiteral("Longitude"),    QStringLiteral("Latitude"),
        QStringLiteral("BranchNumber")};
    return names;
}

const QStringList& LocationAssembler::pinpointFields()
{
    static const QStringList names = [] {
        QStringList n = mapLocationFields().mid(0, kBranchSlot);
        n[0] = QStringLiteral("PinpointNumber");
        n[1] = QStringLiteral("PinpointName");
        return n;
    }();
    return names;
}

int LocationAssembler::slotOf(const QString& fieldName)
{
    const int slot = int(pinpointFields().indexOf(fieldName));
    return slot >= 0 ? slot : int(mapLocationFields().indexOf(fieldName));
}

LocationAssembler::LocationAssembler(cDAO& db, Feedback& feedback) : m_db(db), m_feedback(feedback)
{
}

qint16 LocationAssembler::available(const ExportRequest&)
{
    return avail::LocationRecordsAvailable(m_db, m_feedback);
}

void LocationAssembler::failed(const QString& message, qint64 index)
{
    m_feedback.message(0, message, kBoxTitle);
    m_feedback.status(QStringLiteral("Error Retrieving Record # ") + QString::number(index));
}

qint64 LocationAssembler::rowCount()
{
    RecordsetPtr rs = m_db.RecSet_Forward(QStringLiteral("Select COUNT(*) from CommonLocations"));
    if (!rs || rs->atEnd())
        return -1;
    const qint64 n = rs->value(0).toLongLong();
    m_db.RS_Close(rs);
    return n;
}

qint64 LocationAssembler::count(const ExportRequest&)
{
    const qint64 n = rowCount();
    // The count never looked for an empty table first: it fails on one.
    if (n < 1) {
        failed(kCannotReadRecords, 0);
        return -1;
    }
    return n;
}

qint64 LocationAssembler::scanCount(const ExportRequest& request, bool& cancel)
{
    return isMapLocations(request) ? loadMapLocations(request, cancel) : count(request);
}

qint64 LocationAssembler::loadMapLocations(const ExportRequest& request, bool& cancel)
{
    const qint64 total = rowCount();
    if (total < 0) {
        failed(QStringLiteral("Cannot read Common Location record # 0"), 0);
        return -1;
    }
    if (total == 0) {
        m_feedback.message(0, QStringLiteral("No records found."), kBoxTitle);
        return 0;
    }
    if (!ConfirmLongExport(m_feedback, total, cancel))
        return 0;

    RecordsetPtr rs = m_db.RecSet_Forward(selectRows());
    const std::vector<int> columnSlots = slotsIn(request.fields, mapLocationFields());
    // Resized, never cleared: a field the scan does not fill keeps what an earlier scan left.
    if (m_kept.size() < std::size_t(total))
        m_kept.resize(std::size_t(total));
    ProgressThrottle throttle;
    qint64 i = 0;
    for (; rs && !rs->atEnd() && i < total; rs->moveNext()) {
        ++i;
        for (int slot : columnSlots) {
            if (slot < 0)
                continue;
            const auto place = std::find(kKeptSlots.begin(), kKeptSlots.end(), slot);
            const auto v = storedText(rs->value(slot), false);
            if (!v) {
                m_db.RS_Close(rs);
                failed(QStringLiteral("Cannot read Common Location record # ") + QString::number(i), i);
                return -1;
            }
            if (place != kKeptSlots.end())
                m_kept[std::size_t(i - 1)][std::size_t(place - kKeptSlots.begin())] = *v;
        }
        if (throttle.due(i, total))
            m_feedback.status(retrievingText(i, total));
    }
    if (!rs) {
        failed(QStringLiteral("Cannot read Common Location record # 0"), 0);
        return -1;
    }
    m_db.RS_Close(rs);
    m_feedback.status(foundStatus(total));
    return total;
}

PreviewResult LocationAssembler::preview(const ExportRequest& request, qint64 recordCount,
                                         int maxRows)
{
    PreviewResult result;
    const bool map = isMapLocations(request);
    const std::vector<int> columnSlots =
        slotsIn(request.fields, map ? mapLocationFields() : pinpointFields());
    auto fail = [&](qint64 i) {
        failed(map ? QStringLiteral("Cannot read Common Location Record # ") + QString::number(i)
                   : kCannotReadRecords,
               i);
        result.failed = true;
        return result;
    };
    RecordsetPtr rs = m_db.RecSet_Forward(selectRows());
    if (!rs)
        return fail(0);
    result.gridRows = int(std::min<qint64>(std::max<qint64>(recordCount, 0), maxRows));
    for (int i = 1; i <= result.gridRows && !rs->atEnd(); ++i, rs->moveNext()) {
        QStringList cells;
        for (int slot : columnSlots) {
            const auto v = slot < 0 ? std::optional<QString>(QString()) : storedText(rs->value(slot), false);
            if (!v) {
                m_db.RS_Close(rs);
                return fail(i);
            }
            cells << *v;
        }
        result.rows.push_back(cells);
        m_feedback.status(retrievingText(i, recordCount));
    }
    m_db.RS_Close(rs);
    m_feedback.status(map ? foundStatus(recordCount) : QString::number(recordCount) + kRecordsFound);
    return result;
}

LoadResult LocationAssembler::load(const ExportRequest& request, RecordSink& sink, bool&)
{
    LoadResult result;
    // Read again: the pinpoint fields and the map location fields they share. The three map
    // location fields of their own come from the scan.
    const std::vector<int> read = slotsIn(request.fields, pinpointFields());
    const std::vector<int> kept = slotsIn(request.fields, mapLocationFields());
    auto fail = [&](qint64 i) {
        failed(kCannotReadRecords, i);
        result.error = kCannotReadRecords;
        return result;
    };
    // Like the count, the load never looked for an empty table: it fails on one.
    const qint64 total = rowCount();
    RecordsetPtr rs = total < 1 ? nullptr : m_db.RecSet_Forward(selectRows());
    if (!rs)
        return fail(0);
    if (!sink.begin(total)) {
        m_db.RS_Close(rs);
        result.outcome = LoadOutcome::Aborted;
        return result;
    }
    QStringList values;
    ProgressThrottle throttle;
    qint64 i = 0;
    for (; !rs->atEnd() && i < total; rs->moveNext()) {
        ++i;
        values.clear();
        for (std::size_t c = 0; c < read.size(); ++c) {
            if (read[c] >= 0) {
                const auto v = storedText(rs->value(read[c]), false);
                if (!v) {
                    m_db.RS_Close(rs);
                    return fail(i);
                }
                values << *v;
                continue;
            }
            const auto place = std::find(kKeptSlots.begin(), kKeptSlots.end(), kept[c]);
            const bool held = place != kKeptSlots.end() && std::size_t(i) <= m_kept.size();
            values << (held ? m_kept[std::size_t(i - 1)][std::size_t(place - kKeptSlots.begin())]
                            : QString());
        }
        if (!sink.record(values)) {
            m_db.RS_Close(rs);
            result.outcome = LoadOutcome::Aborted;
            return result;
        }
        result.count = i;
        if (throttle.due(i, total)) {
            m_feedback.status(retrievingText(i, total));
            m_feedback.progress(i, total);
        }
    }
    m_db.RS_Close(rs);
    m_feedback.status(QString::number(result.count) + kRecordsFound);
    result.outcome = LoadOutcome::Completed;
    return result;
}

qint64 LocationAssembler::mark(const ExportRequest&, const ExportedRows*)
{
    return 0;
}

} // namespace tp
