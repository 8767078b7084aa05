#include "export/time_data.h"

#include "export/availability.h"
#include "export/export_values.h"
#include "foundation/conversions.h"
#include "foundation/dao.h"
#include "foundation/feedback.h"
#include "foundation/sql_literal.h"

namespace tp {

namespace {

enum Slot {
    SlotId, SlotEmployee, SlotVehicle, SlotFirstName, SlotLastName, SlotDate, SlotTime,
    SlotCustomer, SlotJobIn, SlotTimeIn, SlotJobOut, SlotTimeOut, SlotOdometer, SlotApproved,
    SlotExportId, SlotCount
};

// The column each slot is read from; the two name columnSlots are looked up by EmployeeNumber.
const char* const kColumns[SlotCount] = {
    "NewTimeRecordID", "EmployeeNumber", "VehicleBlock", "EmployeeNumber", "EmployeeNumber",
    "Date", "Time", "CustomerNumber", "IsJobInRecord", "IsTimeInRecord", "IsJobOutRecord",
    "IsTimeOutRecord", "OdometerReading", "Approved", "ExportId"};

const QString kKeyAlias = QStringLiteral("tp_exportkey");
const QString kReadErrorAll = QStringLiteral("Cannot read Time Record(s)");
const QString kReadErrorDated = QStringLiteral("Cannot read Time record(s)");
const QString kRecordsFound = QStringLiteral("  Record(s) found");
const QString kNoneFound = QStringLiteral("0 Record(s) found");

bool isTruthSlot(int slot)
{
    return slot >= SlotJobIn && slot <= SlotTimeOut;
}

bool isNameSlot(int slot)
{
    return slot == SlotFirstName || slot == SlotLastName;
}

// The text of a stored value; nullopt for a null, which the old loaders could not read.
std::optional<QString> storedText(const QVariant& v, bool truth)
{
    if (!v.isValid() || v.isNull())
        return std::nullopt;
    const QString kTrue = QStringLiteral("True"), kFalse = QStringLiteral("False");
    switch (v.typeId()) {
    case QMetaType::Bool:
        return v.toBool() ? kTrue : kFalse;
    case QMetaType::Int: case QMetaType::UInt: case QMetaType::LongLong:
    case QMetaType::ULongLong: case QMetaType::Short: case QMetaType::UShort:
        if (truth)
            return v.toLongLong() != 0 ? kTrue : kFalse;
        return QString::number(v.toLongLong());
    case QMetaType::Double: case QMetaType::Float:
        if (truth)
            return v.toDouble() != 0 ? kTrue : kFalse;
        return formatExportNumber(v.toDouble());
    default:
        break;
    }
    const QString s = v.toString();
    if (!truth)
        return s;
    if (s.compare(kTrue, Qt::CaseInsensitive) == 0 || s.compare(QLatin1String("t")) == 0)
        return kTrue;
    if (s.compare(kFalse, Qt::CaseInsensitive) == 0 || s.compare(QLatin1String("f")) == 0)
        return kFalse;
    return s.toDouble() != 0 ? kTrue : kFalse;
}

} // namespace

// One open selection: which columns the output needs and how to read them.
class TimeAssembler::Reader {
public:
    Reader(const QStringList& fields)
    {
        for (const QString& f : fields) {
            const int slot = slotOf(f);
            columnSlots.push_back(slot);
            if (isNameSlot(slot))
                needNames = true;
        }
    }
    QString selectList() const
    {
        QStringList columns;
        for (int slot : columnSlots)
            if (slot >= 0 && !columns.contains(QLatin1String(kColumns[slot])))
                columns << QLatin1String(kColumns[slot]);
        if (needNames && !columns.contains(QLatin1String(kColumns[SlotEmployee])))
            columns << QLatin1String(kColumns[SlotEmployee]);
        return columns.join(QLatin1String(", "));
    }
    bool bind(const Recordset& rs)
    {
        for (int slot : columnSlots) {
            const int index = slot < 0 ? -1 : rs.fieldIndex(QLatin1String(kColumns[slot]));
            if (slot >= 0 && index < 0)
                return false;
            indexes.push_back(index);
        }
        employeeIndex = needNames ? rs.fieldIndex(QLatin1String(kColumns[SlotEmployee])) : -1;
        keyIndex = rs.fieldIndex(kKeyAlias);
        return (!needNames || employeeIndex >= 0) && keyIndex >= 0;
    }

    std::vector<int> columnSlots;     // per output column; -1: a name the data set does not know
    std::vector<int> indexes;   // per output column, the recordset field
    bool needNames = false;
    int employeeIndex = -1;
    int keyIndex = -1;
};

const QStringList& TimeAssembler::fieldNames()
{
    static const QStringList names = {
        QStringLiteral("TimeRecordID"), QStringLiteral("EmployeeNumber"),
        QStringLiteral("VehicleNumber"), QStringLiteral("EmployeeFirstName"),
        QStringLiteral("EmployeeLastName"), QStringLiteral("Date"), QStringLiteral("Time"),
        QStringLiteral("CustomerNumber"), QStringLiteral("IsJobInRecord"),
        QStringLiteral("IsTimeInRecord"), QStringLiteral("IsJobOutRecord"),
        QStringLiteral("IsTimeOutRecord"), QStringLiteral("OdometerReading"),
        QStringLiteral("Approved"), QStringLiteral("ExportID")};
    return names;
}

int TimeAssembler::slotOf(const QString& fieldName)
{
    return int(fieldNames().indexOf(fieldName));
}

QString TimeAssembler::fieldText(int slot, const QString& stored, bool formatDate,
                                 bool formatTime)
{
    if (slot == SlotDate && formatDate)
        return ConvertField2StandardDate(stored);
    if (slot == SlotTime && formatTime)
        return FormatStoredTime(stored.trimmed().toInt(), false);
    return stored;
}

TimeAssembler::TimeAssembler(cDAO& db, Feedback& feedback)
    : m_db(db), m_feedback(feedback), m_lookups(db, feedback)
{
}

std::optional<QString> TimeAssembler::where(const ExportRequest& request) const
{
    QString sql = QStringLiteral("WHERE ExportID = ") + sql::number(qint64(request.exportId)) +
                  QStringLiteral(" AND Approved = 1");
    if (request.byDate) {
        const auto start = sql::wholeNumber(request.start);
        const auto stop = sql::wholeNumber(request.stop);
        if (!start || !stop)
            return std::nullopt;
        sql += QStringLiteral("  AND Date >= ") + *start + QStringLiteral(" AND Date <= ") + *stop;
    }
    return sql;
}

QString TimeAssembler::rowKey() const
{
    return m_db.isPostgres() ? QStringLiteral("ctid") : QStringLiteral("rowid");
}

QString TimeAssembler::selectSql(const ExportRequest& request, const QString& columns,
                                 const QString& condition) const
{
    // Records come in stored order (ordered by date for a range). SQLite's rowid order is the
    // stored order; PostgreSQL moves a row whenever it is updated, so it is ordered by the id.
    QString order;
    if (m_db.isPostgres())
        order = request.byDate ? QStringLiteral(" ORDER BY Date, NewTimeRecordID, ctid")
                               : QStringLiteral(" ORDER BY NewTimeRecordID, ctid");
    else if (request.byDate)
        order = QStringLiteral(" ORDER BY Date, rowid");
    return QStringLiteral("Select ") + columns +
           (columns.isEmpty() ? QString() : QStringLiteral(", ")) + rowKey() +
           QStringLiteral(" AS ") + kKeyAlias + QStringLiteral(" from JobTimeRecords ") +
           condition + order;
}

RecordsetPtr TimeAssembler::openSelection(const QString& sql)
{
    return m_db.RecSet_Forward(sql);
}

void TimeAssembler::readFailed(const ExportRequest& request, qint64 index)
{
    if (request.byDate) {
        m_feedback.message(0, kReadErrorDated, kBoxTitle);
        return;
    }
    m_feedback.message(0, kReadErrorAll, kBoxTitle);
    m_feedback.status(QStringLiteral("Error Retrieving Record at # ") + QString::number(index));
}

const TimeAssembler::CachedEmployee& TimeAssembler::employee(qint32 number, bool lumtrek)
{
    auto it = m_employees.find(number);
    if (it != m_employees.end())
        return *it;
    CachedEmployee e;
    e.found = lumtrek ? m_lookups.EmployeeName(number, e.first)
                      : m_lookups.EmployeeFirstLast(number, e.first, e.last);
    return *m_employees.insert(number, e);
}

qint16 TimeAssembler::available(const ExportRequest& request)
{
    qint32 records = 0;
    return avail::TimeRecordsAvailable(m_db, m_feedback, request.exportId, records);
}

qint64 TimeAssembler::count(const ExportRequest& request)
{
    const auto condition = where(request);
    RecordsetPtr rs;
    if (condition)
        rs = m_db.RecSet_Forward(QStringLiteral("Select COUNT(*) from JobTimeRecords ") + *condition);
    if (!rs || rs->atEnd()) {
        readFailed(request, 0);
        return -1;
    }
    const qint64 n = rs->value(0).toLongLong();
    m_db.RS_Close(rs);
    if (n == 0 && !request.byDate)
        m_feedback.status(kNoneFound);
    return n;
}

PreviewResult TimeAssembler::preview(const ExportRequest& request, qint64 recordCount,
                                     int maxRows)
{
    PreviewResult result;
    Reader reader(request.fields);
    const auto condition = where(request);
    RecordsetPtr rs;
    if (condition)
        rs = openSelection(selectSql(request, reader.selectList(), *condition));
    if (!rs || !reader.bind(*rs)) {
        readFailed(request, 0);
        result.failed = true;
        return result;
    }
    if (rs->atEnd()) {
        if (!request.byDate)
            m_feedback.status(kNoneFound);
        m_db.RS_Close(rs);
        return result;
    }
    result.gridRows = int(std::min<qint64>(std::max<qint64>(recordCount, 0), maxRows));

    // The grid keeps the names of the last look-up between cells, as it always has: the first
    // name is looked up for every row, the last name only when none is held.
    const bool lumtrek = request.settingsFile == kLumtrekSettings;
    Names held;
    // Under "lumtrek.ini" there is only the one Name, and no last name to look up; an
    // employee without a row shows no name rather than the previous row's.
    auto lookUp = [&](qint32 number) {
        if (!lumtrek) {
            m_lookups.EmployeeFirstLast(number, held.first, held.last);
            return;
        }
        held.single.clear();
        m_lookups.EmployeeName(number, held.single);
    };
    for (int i = 1; i <= result.gridRows && !rs->atEnd(); ++i) {
        QStringList cells;
        qint32 employeeNumber = 0;
        if (reader.needNames) {
            const auto e = storedText(rs->value(reader.employeeIndex), false);
            if (!e) {
                readFailed(request, i);
                result.failed = true;
                break;
            }
            employeeNumber = e->toInt();
        }
        bool ok = true;
        for (std::size_t c = 0; c < reader.columnSlots.size() && ok; ++c) {
            const int slot = reader.columnSlots[c];
            QString cell;
            if (slot == SlotFirstName) {
                lookUp(employeeNumber);
                cell = lumtrek ? held.single : held.first;
                (lumtrek ? held.single : held.first).clear();
            } else if (slot == SlotLastName) {
                if (held.last.isEmpty() && !lumtrek)
                    lookUp(employeeNumber);
                cell = held.last;
                held.last.clear();
            } else if (slot >= 0) {
                const auto v = storedText(rs->value(reader.indexes[c]), isTruthSlot(slot));
                ok = v.has_value();
                cell = v.value_or(QString());
                if (slot == SlotDate && !cell.isEmpty())
                    result.dateFilled = true;
                if (slot == SlotTime && !cell.isEmpty())
                    result.timeFilled = true;
            }
            cells << cell;
        }
        if (!ok) {
            readFailed(request, i);
            result.failed = true;
            break;
        }
        result.rows.push_back(cells);
        rs->moveNext();
        m_feedback.status(request.byDate ? QStringLiteral("Retrieving ") + QString::number(i)
                                         : QStringLiteral("Retrieving Record # ") +
                                               QString::number(i) + QStringLiteral(" Of ") +
                                               QString::number(recordCount));
    }
    m_db.RS_Close(rs);
    if (!result.failed && !request.byDate)
        m_feedback.status(QStringLiteral("20 of ") + QString::number(recordCount) + kRecordsFound);
    return result;
}

LoadResult TimeAssembler::load(const ExportRequest& request, RecordSink& sink, bool& cancel)
{
    LoadResult result;
    m_employees.clear();
    const qint64 total = count(request);
    if (total < 0) {
        result.error = request.byDate ? kReadErrorDated : kReadErrorAll;
        return result;
    }
    if (total > 0) {
        if (!request.byDate)
            m_feedback.status(QStringLiteral("Retrieving  ..."));
        if (!ConfirmLongExport(m_feedback, total, cancel)) {
            result.outcome = LoadOutcome::Declined;
            return result;
        }
    }
    if (!sink.begin(total)) {
        result.outcome = LoadOutcome::Aborted;
        return result;
    }
    if (total == 0) {
        result.outcome = LoadOutcome::Completed;
        return result;
    }

    Reader reader(request.fields);
    const auto condition = where(request);
    RecordsetPtr rs = openSelection(selectSql(request, reader.selectList(), *condition));
    if (!rs || !reader.bind(*rs)) {
        readFailed(request, 0);
        result.error = request.byDate ? kReadErrorDated : kReadErrorAll;
        return result;
    }

    const bool lumtrek = request.settingsFile == kLumtrekSettings;
    Names held;
    qint32 cachedNumber = 0;   // names of this employee are held
    QStringList values;
    ProgressThrottle throttle;
    result.rows.keys.reserve(std::size_t(total));
    qint64 i = 0;
    // The selection was counted above; rows that started to match since wait for the next export.
    while (!rs->atEnd() && i < total) {
        ++i;
        values.clear();
        qint32 employeeNumber = 0;
        bool ok = true;
        if (reader.needNames) {
            const auto e = storedText(rs->value(reader.employeeIndex), false);
            ok = e.has_value();
            employeeNumber = ok ? e->toInt() : 0;
        }
        for (std::size_t c = 0; c < reader.columnSlots.size() && ok; ++c) {
            const int slot = reader.columnSlots[c];
            if (isNameSlot(slot)) {
                if (employeeNumber != cachedNumber) {
                    const CachedEmployee& e = employee(employeeNumber, lumtrek);
                    // A missing employee is "Unknown", never the previous record's name.
                    held.first = e.first;
                    held.last = e.last;
                    held.single = e.found ? e.first : QString();
                    cachedNumber = employeeNumber;
                }
                const QString& name = slot == SlotFirstName ? (lumtrek ? held.single : held.first)
                                                            : (lumtrek ? QString() : held.last);
                values << (name.isEmpty() ? kUnknownName : name);
            } else if (slot >= 0) {
                const auto v = storedText(rs->value(reader.indexes[c]), isTruthSlot(slot));
                ok = v.has_value();
                if (ok)
                    values << fieldText(slot, *v, request.formatDate, request.formatTime);
            } else {
                values << QString();
            }
        }
        if (!ok) {
            m_db.RS_Close(rs);
            readFailed(request, i);
            result.error = request.byDate ? kReadErrorDated : kReadErrorAll;
            return result;
        }
        if (!sink.record(values)) {
            m_db.RS_Close(rs);
            result.outcome = LoadOutcome::Aborted;
            return result;
        }
        result.rows.keys.push_back(rs->value(reader.keyIndex));
        result.count = i;
        rs->moveNext();
        if (throttle.due(i, total)) {
            m_feedback.yield();
            if (cancel) {
                m_db.RS_Close(rs);
                m_feedback.status(QStringLiteral("Cancel"));
                result.outcome = LoadOutcome::Cancelled;
                return result;
            }
            m_feedback.status(request.byDate ? QStringLiteral("Retrieving ") + QString::number(i)
                                             : QStringLiteral("Retrieving Record # ") +
                                                   QString::number(i) + QStringLiteral(" Of ") +
                                                   QString::number(total));
            m_feedback.progress(i, total);
        }
    }
    m_db.RS_Close(rs);
    if (!request.byDate)
        m_feedback.status(QString::number(result.count) + kRecordsFound);
    result.outcome = LoadOutcome::Completed;
    return result;
}

qint64 TimeAssembler::mark(const ExportRequest& request, const ExportedRows* rows)
{
    const auto condition = where(request);
    if (!condition)
        return -1;
    const QString update = QStringLiteral("UPDATE JobTimeRecords SET ExportID = ExportID + 1, Approved = 2 ") + *condition;
    const bool postgres = m_db.isPostgres();
    auto scalar = [&](const QString& sql, qint64& out) {
        RecordsetPtr rs = m_db.RecSet_Forward(sql);
        if (!rs || rs->atEnd())
            return false;
        out = rs->value(0).toLongLong();
        m_db.RS_Close(rs);
        return true;
    };
    // Runs one UPDATE over the condition extra and adds the rows it changed to marked.
    qint64 marked = 0;
    auto markWhere = [&](const QString& extra) {
        qint64 n = 0;
        if (postgres || !rows) {
            if (!scalar(QStringLiteral("Select COUNT(*) from JobTimeRecords ") + *condition + extra, n))
                return false;
        }
        m_db.Exec(update + extra);
        if (m_db.appError != 0 || m_db.error_code != 0)
            return false;
        if (!postgres && rows && !scalar(QStringLiteral("SELECT changes()"), n))
            return false;
        marked += n;
        return true;
    };

    if (!rows) {
        if (!m_db.BeginTrans())
            return -1;
        if (!markWhere(QString())) {
            m_db.Rollback();
            return -1;
        }
        if (!m_db.CommitTrans())
            return -1;
        if (marked == 0 && !request.byDate)
            m_feedback.status(kNoneFound);
        return marked;
    }
    if (rows->keys.empty())
        return 0;
    if (!m_db.BeginTrans())
        return -1;
    constexpr std::size_t kChunk = 4000;
    for (std::size_t b = 0; b < rows->keys.size(); b += kChunk) {
        QString in;
        in.reserve(qsizetype(kChunk * 10));
        const std::size_t e = std::min(rows->keys.size(), b + kChunk);
        for (std::size_t k = b; k < e; ++k) {
            if (k > b)
                in += QLatin1Char(',');
            const QVariant& key = rows->keys[k];
            in += postgres ? sql::text(key.toString()) : sql::number(key.toLongLong());
        }
        if (!markWhere(QStringLiteral(" AND ") + rowKey() + QStringLiteral(" IN (") + in +
                       QLatin1Char(')'))) {
            m_db.Rollback();
            return -1;
        }
    }
    if (!m_db.CommitTrans())
        return -1;
    return marked;
}

} // namespace tp
