#include "export/waiting_records.h"

#include "delivery/export_marks.h"
#include "export/export_values.h"
#include "foundation/conversions.h"
#include "foundation/dao.h"
#include "foundation/feedback.h"
#include "foundation/sql_literal.h"

namespace tp {

namespace {

const QString kKeyAlias = QStringLiteral("tp_exportkey");
const QString kRowAlias = QStringLiteral("tp_rowpos");
const QString kDateAlias = QStringLiteral("tp_datepos");

// An SQLite database lets no writer commit while a statement reads it, so a load reads chunks
// of this many rows, each statement finished before the next: the product's writers wait
// milliseconds, not the length of an export.
constexpr int kChunkRows = 2000;

QString retrievingText(qint64 i, qint64 total)
{
    return QStringLiteral("Retrieving Record # ") + QString::number(i) + QStringLiteral(" Of ") +
           QString::number(total);
}

} // namespace

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

QString SlotTable::fieldText(int slot, const QString& stored, bool formatDate,
                             bool formatTime) const
{
    if (slot == dateSlot && formatDate)
        return ConvertField2StandardDate(stored);
    if (slot == timeSlot && formatTime)
        return formatStoredTimeText(stored);
    return stored;
}

// One open selection: which columns the output needs and how to read them.
class WaitingRecordsAssembler::Reader {
public:
    Reader(const SlotTable& table, const QString& employeeColumn, const QStringList& fields)
        : m_slots(table), m_employeeColumn(employeeColumn)
    {
        for (const QString& f : fields) {
            int slot = table.slotOf(f);
            if (slot >= 0 && table.columns.at(slot).isEmpty())
                slot = kEmptySlot;
            columnSlots.push_back(slot);
            if (table.isNameSlot(slot))
                needNames = true;
        }
    }
    QString selectList() const
    {
        QStringList columns;
        for (int slot : columnSlots)
            if (slot >= 0 && !columns.contains(m_slots.columns.at(slot)))
                columns << m_slots.columns.at(slot);
        if (needNames && !columns.contains(m_employeeColumn))
            columns << m_employeeColumn;
        return columns.join(QLatin1String(", "));
    }
    bool bind(const Recordset& rs)
    {
        indexes.clear();
        for (int slot : columnSlots) {
            const int index = slot < 0 ? -1 : rs.fieldIndex(m_slots.columns.at(slot));
            if (slot >= 0 && index < 0)
                return false;
            indexes.push_back(index);
        }
        employeeIndex = needNames ? rs.fieldIndex(m_employeeColumn) : -1;
        keyIndex = rs.fieldIndex(kKeyAlias);
        rowIndex = rs.fieldIndex(kRowAlias);
        dateIndex = rs.fieldIndex(kDateAlias);
        return (!needNames || employeeIndex >= 0) && keyIndex >= 0;
    }
    // The employee of the current record (0 when no name is wanted); nullopt when unreadable.
    std::optional<qint32> employee(const Recordset& rs) const
    {
        if (!needNames)
            return 0;
        const auto e = storedText(rs.value(employeeIndex), false);
        if (!e)
            return std::nullopt;
        return e->toInt();
    }

    static constexpr int kEmptySlot = -2;   // a slot the data set never fills: always ""
    std::vector<int> columnSlots;   // per output column; -1: a name the data set does not know
    std::vector<int> indexes;       // per output column, the recordset field
    bool needNames = false;
    int employeeIndex = -1;
    int keyIndex = -1;
    int rowIndex = -1;    // chunked reads: where the next chunk starts
    int dateIndex = -1;

private:
    const SlotTable& m_slots;
    QString m_employeeColumn;
};

WaitingRecordsAssembler::WaitingRecordsAssembler(cDAO& db, Feedback& feedback,
                                                 const SlotTable& slotTable,
                                                 const WaitingRecordsStyle& style)
    : m_db(db), m_feedback(feedback), m_slots(slotTable), m_style(style), m_lookups(db, feedback)
{
}

std::optional<QString> WaitingRecordsAssembler::where(const ExportRequest& request) const
{
    QString sql = QStringLiteral("WHERE ExportID = ") + sql::number(qint64(request.exportId)) +
                  QStringLiteral(" AND Approved = 1");
    if (request.byDate) {
        const auto start = sql::wholeNumber(request.start);
        const auto stop = sql::wholeNumber(request.stop);
        if (!start || !stop)
            return std::nullopt;
        sql += m_style.datedCondition.arg(*start, *stop);
    }
    return sql;
}

QString WaitingRecordsAssembler::selectSql(const ExportRequest& request, const Reader& reader,
                                           const QString& condition, bool chunk, int top) const
{
    QString order, position;
    if (m_db.isPostgres())
        order = request.byDate ? m_style.postgresDatedOrder : m_style.postgresOrder;
    else if (request.byDate || chunk)
        order = request.byDate ? QStringLiteral(" ORDER BY Date, rowid") : QStringLiteral(" ORDER BY rowid");
    if (chunk) {
        position = QStringLiteral(", rowid AS ") + kRowAlias +
                   (request.byDate ? QStringLiteral(", Date AS ") + kDateAlias : QString());
        top = kChunkRows;
    }
    const QString columns = reader.selectList();
    return QStringLiteral("Select ") + (top > 0 ? QStringLiteral("top %1 ").arg(top) : QString()) +
           columns + (columns.isEmpty() ? QString() : QStringLiteral(", ")) + m_style.idColumn +
           QStringLiteral(" AS ") + kKeyAlias + position + QStringLiteral(" from ") + m_style.table +
           QLatin1Char(' ') + condition + order;
}

void WaitingRecordsAssembler::readFailed(const ExportRequest& request, qint64 index,
                                         bool previewing)
{
    if (request.byDate) {
        m_feedback.message(0, m_style.errorDated, kBoxTitle);
        return;
    }
    m_feedback.message(0, previewing ? m_style.previewErrorAll : m_style.loadErrorAll, kBoxTitle);
    m_feedback.status(m_style.errorStatus + QString::number(index));
}

const WaitingRecordsAssembler::CachedEmployee& WaitingRecordsAssembler::employee(qint32 number,
                                                                                 bool lumtrek)
{
    auto it = m_employees.find(number);
    if (it != m_employees.end())
        return *it;
    CachedEmployee e;
    e.found = lumtrek ? m_lookups.EmployeeName(number, e.first)
                      : m_lookups.EmployeeFirstLast(number, e.first, e.last);
    return *m_employees.insert(number, e);
}

qint64 WaitingRecordsAssembler::count(const ExportRequest& request)
{
    const auto condition = where(request);
    RecordsetPtr rs;
    if (condition)
        rs = m_db.RecSet_Forward(QStringLiteral("Select COUNT(*) from ") + m_style.table +
                                 QLatin1Char(' ') + *condition);
    if (!rs || rs->atEnd()) {
        readFailed(request, 0, false);
        return -1;
    }
    const qint64 n = rs->value(0).toLongLong();
    m_db.RS_Close(rs);
    if (n == 0 && !request.byDate)
        m_feedback.status(m_style.noneFound);
    return n;
}

PreviewResult WaitingRecordsAssembler::preview(const ExportRequest& request, qint64 recordCount,
                                               int maxRows)
{
    PreviewResult result;
    Reader reader(m_slots, m_style.employeeColumn, request.fields);
    const auto condition = where(request);
    RecordsetPtr rs;
    if (condition)
        // Only the rows the grid shows are read.
        rs = m_db.RecSet_Forward(selectSql(request, reader, *condition, false, std::max(maxRows, 1)));
    if (!rs || !reader.bind(*rs)) {
        readFailed(request, 0, true);
        result.failed = true;
        return result;
    }
    if (rs->atEnd()) {
        if (!request.byDate)
            m_feedback.status(m_style.noneFound);
        m_db.RS_Close(rs);
        return result;
    }
    result.gridRows = int(std::min<qint64>(std::max<qint64>(recordCount, 0), maxRows));

    // The grid keeps the names of the last look-up between cells, as it always has: the first
    // name is looked up for every row, the last name only when none is held.
    const bool lumtrek = request.settingsFile == kLumtrekSettings;
    QString heldFirst, heldLast;
    // Under "lumtrek.ini" there is only the one Name, and no last name to look up; an
    // employee without a row shows no name rather than the previous row's.
    auto lookUp = [&](qint32 number) {
        if (!lumtrek) {
            m_lookups.EmployeeFirstLast(number, heldFirst, heldLast);
            return;
        }
        heldFirst.clear();
        m_lookups.EmployeeName(number, heldFirst);
    };
    for (int i = 1; i <= result.gridRows && !rs->atEnd(); ++i) {
        QStringList cells;
        const auto employeeNumber = reader.employee(*rs);
        bool ok = employeeNumber.has_value();
        for (std::size_t c = 0; c < reader.columnSlots.size() && ok; ++c) {
            const int slot = reader.columnSlots[c];
            QString cell;
            if (slot == m_slots.firstNameSlot) {
                lookUp(*employeeNumber);
                cell = heldFirst;
                heldFirst.clear();
            } else if (slot == m_slots.lastNameSlot) {
                if (heldLast.isEmpty() && !lumtrek)
                    lookUp(*employeeNumber);
                cell = heldLast;
                heldLast.clear();
            } else if (slot >= 0) {
                const auto v = storedText(rs->value(reader.indexes[c]), m_slots.isTruthSlot(slot));
                ok = v.has_value();
                cell = v.value_or(QString());
                if (slot == m_slots.dateSlot && !cell.isEmpty())
                    result.dateFilled = true;
                if (slot == m_slots.timeSlot && !cell.isEmpty())
                    result.timeFilled = true;
            }
            cells << cell;
        }
        if (!ok) {
            readFailed(request, i, true);
            result.failed = true;
            break;
        }
        result.rows.push_back(cells);
        rs->moveNext();
        if (!request.byDate)
            m_feedback.status(retrievingText(i, recordCount));
        else if (m_style.datedProgress)
            m_feedback.status(QStringLiteral("Retrieving ") + QString::number(i));
    }
    m_db.RS_Close(rs);
    if (!result.failed && !request.byDate)
        m_feedback.status(m_style.previewDone(recordCount));
    return result;
}

LoadResult WaitingRecordsAssembler::load(const ExportRequest& request, RecordSink& sink,
                                         bool& cancel)
{
    LoadResult result;
    m_employees.clear();
    const qint64 total = count(request);
    if (total < 0) {
        result.error = request.byDate ? m_style.errorDated : m_style.loadErrorAll;
        return result;
    }
    if (total > 0) {
        if (!request.byDate && m_style.loadStartStatus)
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

    Reader reader(m_slots, m_style.employeeColumn, request.fields);
    const auto condition = where(request);
    const bool chunked = !m_db.isPostgres();
    QString after;   // where the next chunk starts
    auto open = [&]() {
        RecordsetPtr chunk = chunked
            ? m_db.RecSet_Stat(selectSql(request, reader, *condition + after, true))
            : m_db.RecSet_Forward(selectSql(request, reader, *condition));
        return chunk && reader.bind(*chunk) && (!chunked || reader.rowIndex >= 0) ? std::move(chunk)
                                                                                 : RecordsetPtr();
    };
    RecordsetPtr rs = open();
    if (!rs) {
        readFailed(request, 0, false);
        result.error = request.byDate ? m_style.errorDated : m_style.loadErrorAll;
        return result;
    }
    qint64 inChunk = 0;

    const bool lumtrek = request.settingsFile == kLumtrekSettings;
    QString first, last;        // names of the employee looked up last
    qint32 cachedNumber = 0;    // 0 at the start of every load, as the old loaders kept it
    QStringList values;
    ProgressThrottle throttle;
    result.rows.ids.reserve(std::size_t(total));
    qint64 i = 0;
    // The selection was counted above; rows that started to match since wait for the next export.
    while (i < total) {
        if (rs->atEnd()) {
            if (!chunked || inChunk < kChunkRows)
                break;
            m_db.RS_Close(rs);
            rs = open();
            if (!rs) {
                readFailed(request, i + 1, false);
                result.error = request.byDate ? m_style.errorDated : m_style.loadErrorAll;
                return result;
            }
            inChunk = 0;
            if (rs->atEnd())
                break;
        }
        ++i;
        values.clear();
        const auto employeeNumber = reader.employee(*rs);
        bool ok = employeeNumber.has_value();
        for (std::size_t c = 0; c < reader.columnSlots.size() && ok; ++c) {
            const int slot = reader.columnSlots[c];
            if (m_slots.isNameSlot(slot)) {
                if (*employeeNumber != cachedNumber) {
                    const CachedEmployee& e = employee(*employeeNumber, lumtrek);
                    // A missing employee is "Unknown", never the previous record's name.
                    first = lumtrek ? (e.found ? e.first : QString()) : e.first;
                    last = lumtrek ? QString() : e.last;
                    cachedNumber = *employeeNumber;
                }
                const QString& name = slot == m_slots.firstNameSlot ? first : last;
                values << (name.isEmpty() ? kUnknownName : name);
            } else if (slot >= 0) {
                const auto v = storedText(rs->value(reader.indexes[c]), m_slots.isTruthSlot(slot));
                ok = v.has_value();
                if (ok)
                    values << m_slots.fieldText(slot, *v, request.formatDate, request.formatTime);
            } else {
                values << QString();
            }
        }
        // A record without its identity could never be marked: it cannot be exported.
        qint64 id = 0;
        if (ok)
            id = rs->value(reader.keyIndex).toLongLong(&ok);
        if (!ok) {
            m_db.RS_Close(rs);
            readFailed(request, i, false);
            result.error = request.byDate ? m_style.errorDated : m_style.loadErrorAll;
            return result;
        }
        if (!sink.record(values)) {
            m_db.RS_Close(rs);
            result.outcome = LoadOutcome::Aborted;
            return result;
        }
        result.rows.ids.push_back(id);
        result.count = i;
        if (chunked && ++inChunk == kChunkRows) {
            const QString row = sql::number(rs->value(reader.rowIndex).toLongLong());
            after = QStringLiteral(" AND rowid > ") + row;
            if (request.byDate) {
                const QString date = sql::number(rs->value(reader.dateIndex).toLongLong());
                after = QStringLiteral(" AND (Date > ") + date + QStringLiteral(" OR (Date = ") + date +
                        QStringLiteral(" AND rowid > ") + row + QStringLiteral("))");
            }
        }
        rs->moveNext();
        if (!throttle.due(i, total))
            continue;
        if (m_style.yields) {
            m_feedback.yield();
            if (cancel) {
                m_db.RS_Close(rs);
                m_feedback.status(QStringLiteral("Cancel"));
                result.outcome = LoadOutcome::Cancelled;
                return result;
            }
        }
        if (!request.byDate)
            m_feedback.status(retrievingText(i, total));
        else if (m_style.datedProgress)
            m_feedback.status(QStringLiteral("Retrieving ") + QString::number(i));
        m_feedback.progress(i, total);
    }
    m_db.RS_Close(rs);
    if (!request.byDate)
        m_feedback.status(m_style.loadDone(result.count));
    result.outcome = LoadOutcome::Completed;
    return result;
}

qint64 WaitingRecordsAssembler::mark(const ExportRequest& request, const ExportedRows* rows)
{
    const auto condition = where(request);
    if (!condition)
        return -1;
    const qint64 marked = markExported(m_db, m_style.table, m_style.idColumn, *condition,
                                       rows ? &rows->ids : nullptr);
    if (marked == 0 && !rows && !request.byDate)
        m_feedback.status(m_style.markNoneFound);
    return marked;
}

} // namespace tp
