// Snapshot, dynaset and optimistic recordsets: every row copied at open; dynasets write
// changed rows back to their single table by the hidden row key.
#include "foundation/dao_engine.h"

namespace tp {

namespace {

const QString kNoCurrentRecord = QStringLiteral("No current record.");

class BufferedRecordset final : public Recordset {
public:
    BufferedRecordset(RecordsetKind kind, ResultRows&& data, bool keyed)
        : m_kind(kind), m_names(std::move(data.names)), m_rows(std::move(data.rows)),
          m_offset(keyed ? 1 : 0)
    {
    }

    // Makes the rows writable through conn.
    void makeWritable(const std::shared_ptr<Connection>& conn, const jet::SelectShape& shape)
    {
        m_conn = conn;
        m_shape = shape;
        m_writable = true;
        for (int i = 0; i < fieldCount(); ++i)
            m_quoted.append(jet::quoteName(fieldName(i), conn->dialect()));
    }

    RecordsetKind kind() const override { return m_kind; }
    bool atEnd() const override { return m_rows.isEmpty() || m_pos >= m_rows.size(); }
    bool atBegin() const override { return m_rows.isEmpty() || m_pos < 0; }
    void moveFirst() override { moveTo(0); }
    void moveLast() override { moveTo(m_rows.size() - 1); }
    void moveNext() override
    {
        if (m_pos >= m_rows.size())
            noCurrent();
        else
            ++m_pos;
    }
    void movePrevious() override
    {
        if (m_pos < 0)
            noCurrent();
        else
            --m_pos;
    }
    qint32 recordCount() const override { return qint32(m_rows.size()); }

    int fieldCount() const override { return int(m_names.size() - m_offset); }
    QString fieldName(int index) const override
    {
        return index >= 0 && index < fieldCount() ? m_names[index + m_offset] : QString();
    }
    int fieldIndex(const QString& name) const override
    {
        for (int i = 0; i < fieldCount(); ++i)
            if (m_names[i + m_offset].compare(name, Qt::CaseInsensitive) == 0)
                return i;
        m_error = ErrItemNotFound;
        m_errorText = QStringLiteral("Item not found in this collection: %1").arg(name);
        return -1;
    }
    QVariant value(int index) const override
    {
        if (index < 0 || index >= fieldCount()) {
            if (index >= 0 || m_error != ErrItemNotFound) {
                m_error = ErrItemNotFound;
                m_errorText = QStringLiteral("Item not found in this collection.");
            }
            return QVariant();
        }
        if (m_mode != Mode::None)
            return m_pending[index];
        if (m_pos < 0 || m_pos >= m_rows.size()) {
            noCurrent();
            return QVariant();
        }
        return m_rows[m_pos][index + m_offset];
    }

    bool addNew() override
    {
        if (!m_writable)
            return refuse();
        m_mode = Mode::Adding;
        m_pending = QVector<QVariant>(fieldCount());
        m_changed = QVector<bool>(fieldCount(), false);
        return true;
    }
    bool edit() override
    {
        if (!m_writable)
            return refuse();
        if (m_pos < 0 || m_pos >= m_rows.size())
            return noCurrent();
        m_mode = Mode::Editing;
        m_pending = m_rows[m_pos].mid(m_offset);
        m_changed = QVector<bool>(fieldCount(), false);
        return true;
    }
    bool setValue(const QString& name, const QVariant& v) override
    {
        if (!m_writable)
            return refuse();
        if (m_mode == Mode::None)
            return withoutEdit();
        const int i = fieldIndex(name);
        if (i < 0)
            return false;
        m_pending[i] = v;
        m_changed[i] = true;
        return true;
    }
    bool update() override;
    void cancelUpdate() override { m_mode = Mode::None; }

private:
    enum class Mode { None, Adding, Editing };

    void moveTo(qsizetype pos)
    {
        if (m_rows.isEmpty())
            noCurrent();
        else
            m_pos = pos;
    }
    bool noCurrent() const
    {
        m_error = ErrNoCurrentRecord;
        m_errorText = kNoCurrentRecord;
        return false;
    }
    bool withoutEdit()
    {
        m_error = ErrUpdateWithoutEdit;
        m_errorText = QStringLiteral("Update or CancelUpdate without AddNew or Edit.");
        return false;
    }
    bool failWith(const DbError& e)
    {
        m_error = e.code;
        m_errorText = e.text;
        return false;
    }
    QString column(int i) const { return m_quoted[i]; }
    bool writeRow(Connection& c, QVariant& newKey, DbError& err);
    bool rereadRow(Connection& c, const QVariant& key, QVector<QVariant>& row);

    RecordsetKind m_kind;
    QStringList m_names;
    QList<QVector<QVariant>> m_rows;
    int m_offset;
    qsizetype m_pos = 0;

    bool m_writable = false;
    std::weak_ptr<Connection> m_conn;
    jet::SelectShape m_shape;
    QStringList m_quoted;   // column names as the engine's statements write them
    Mode m_mode = Mode::None;
    QVector<QVariant> m_pending;
    QVector<bool> m_changed;
};

// Writes the pending add or edit; the statement returns the row's key, so no row back
// means nothing was written.
bool BufferedRecordset::writeRow(Connection& c, QVariant& newKey, DbError& err)
{
    const jet::Dialect d = c.dialect();
    const QString key = c.rowKeyExpression();
    QString sql;
    QVector<QVariant> params;
    QStringList cols;
    for (int i = 0; i < fieldCount(); ++i)
        if (m_changed[i]) {
            cols.append(column(i));
            params.append(m_pending[i]);
        }
    if (m_mode == Mode::Adding) {
        sql = insertStatement(m_shape.table, cols);
    } else {
        if (cols.isEmpty()) {
            newKey = m_rows[m_pos][0];
            return true;   // nothing changed: nothing to write
        }
        for (QString& col : cols)
            col += QStringLiteral(" = ?");
        sql = QStringLiteral("UPDATE %1 SET %2 WHERE %3 = %4")
                  .arg(m_shape.table, cols.join(QStringLiteral(", ")), key, c.rowKeyParameter());
        params.append(m_rows[m_pos][0]);
        if (m_kind == RecordsetKind::Optimistic) {
            const QString same = d == jet::Dialect::SQLite ? QStringLiteral(" IS ?")
                                                           : QStringLiteral(" IS NOT DISTINCT FROM ?");
            for (int i = 0; i < fieldCount(); ++i) {
                sql += QStringLiteral(" AND ") + column(i) + same;
                params.append(m_rows[m_pos][i + m_offset]);
            }
        }
    }
    sql += QStringLiteral(" RETURNING ") + key;
    ResultRows out;
    if (!c.query(sql, params, out, err))
        return false;
    if (out.rows.isEmpty()) {
        if (m_kind == RecordsetKind::Optimistic)
            err.set(ErrRowChanged, QStringLiteral("The data has been changed: another user edited "
                                                  "this record and saved the changes before you "
                                                  "attempted to save your changes."));
        else
            err.set(ErrRowDeleted, QStringLiteral("Record is deleted."));
        return false;
    }
    newKey = out.rows[0][0];
    return true;
}

bool BufferedRecordset::rereadRow(Connection& c, const QVariant& key, QVector<QVariant>& row)
{
    const QString sql = QStringLiteral("SELECT %1 AS %2, %3 FROM %4 WHERE %1 = %5")
                            .arg(c.rowKeyExpression(), jet::kRowKeyColumn, m_shape.selectList,
                                 m_shape.fromClause, c.rowKeyParameter());
    ResultRows out;
    DbError err;
    if (!c.query(sql, {key}, out, err) || out.rows.size() != 1
        || out.rows[0].size() != m_names.size())
        return false;
    row = out.rows[0];
    return true;
}

bool BufferedRecordset::update()
{
    if (!m_writable)
        return refuse();
    if (m_mode == Mode::None)
        return withoutEdit();
    std::shared_ptr<Connection> c = m_conn.lock();
    if (!c || !c->isOpen()) {
        DbError e;
        e.set(ErrNotConnected, QStringLiteral("The database is closed."));
        return failWith(e);
    }
    QVariant newKey;
    DbError err;
    if (!writeRow(*c, newKey, err))
        return failWith(err);

    // Keep what the database now holds (defaults, conversions); our values if it cannot be read.
    QVector<QVariant> row;
    if (!rereadRow(*c, newKey, row)) {
        row = QVector<QVariant>{newKey} + m_pending;
        for (int i = 0; i < fieldCount() && m_mode == Mode::Editing; ++i)
            if (!m_changed[i])
                row[i + m_offset] = m_rows[m_pos][i + m_offset];
    }
    if (m_mode == Mode::Adding) {
        const bool atEof = m_pos >= m_rows.size();
        m_rows.append(row);
        if (atEof)
            m_pos = m_rows.size();   // stays past the end, as before the add
    } else {
        m_rows[m_pos] = row;
    }
    m_mode = Mode::None;
    m_error = 0;
    m_errorText.clear();
    return true;
}

} // namespace

QString insertStatement(const QString& table, const QStringList& columns)
{
    if (columns.isEmpty())
        return QStringLiteral("INSERT INTO %1 DEFAULT VALUES").arg(table);
    return QStringLiteral("INSERT INTO %1 (%2) VALUES (%3)")
        .arg(table, columns.join(QStringLiteral(", ")),
             QStringList(columns.size(), QStringLiteral("?")).join(QStringLiteral(", ")));
}

RecordsetPtr openBuffered(const std::shared_ptr<Connection>& conn, const QString& jetSql,
                          RecordsetKind kind, DbError& err)
{
    const QString sql = jet::translate(jetSql, conn->dialect());
    ResultRows rows;
    if (kind != RecordsetKind::Snapshot) {
        const jet::SelectShape shape = jet::analyseSelect(sql, conn->rowKeyExpression());
        // A statement that cannot carry the key (a view, a table without one) opens read-only.
        if (shape.updatable && conn->query(shape.keyed, {}, rows, err)) {
            auto rs = std::make_unique<BufferedRecordset>(kind, std::move(rows), true);
            rs->makeWritable(conn, shape);
            return rs;
        }
        err = DbError();
        rows = ResultRows();
    }
    if (!conn->query(sql, {}, rows, err))
        return nullptr;
    return std::make_unique<BufferedRecordset>(kind, std::move(rows), false);
}

void ForwardRecordset::start()
{
    advance();
}

void ForwardRecordset::advance()
{
    DbError err;
    if (fetchNext(err)) {
        ++m_seen;
        return;
    }
    m_end = true;
    if (err.code) {
        m_error = err.code;
        m_errorText = err.text;
    }
}

void ForwardRecordset::moveFirst()
{
    if (m_seen > 1 || m_end)
        notSupported();
}

void ForwardRecordset::moveNext()
{
    if (m_end) {
        m_error = ErrNoCurrentRecord;
        m_errorText = QStringLiteral("No current record.");
        return;
    }
    advance();
}

void ForwardRecordset::notSupported()
{
    m_error = ErrNotSupported;
    m_errorText = QStringLiteral("Operation is not supported for this type of object.");
}

int ForwardRecordset::fieldIndex(const QString& name) const
{
    for (int i = 0; i < m_names.size(); ++i)
        if (m_names[i].compare(name, Qt::CaseInsensitive) == 0)
            return i;
    m_error = ErrItemNotFound;
    m_errorText = QStringLiteral("Item not found in this collection: %1").arg(name);
    return -1;
}

QVariant ForwardRecordset::value(int index) const
{
    if (m_end || index < 0 || index >= m_names.size()) {
        if (index >= 0) {
            m_error = m_end ? ErrNoCurrentRecord : ErrItemNotFound;
            m_errorText = m_end ? QStringLiteral("No current record.")
                                : QStringLiteral("Item not found in this collection.");
        }
        return QVariant();
    }
    return cell(index);
}

} // namespace tp
