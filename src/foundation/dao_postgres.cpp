// cDAO on a PostgreSQL server through QtSql's QPSQL driver.
#include "foundation/dao_engine.h"
#include "foundation/pg_location.h"

#include <QAtomicInteger>
#include <QSqlDatabase>
#include <QSqlDriver>
#include <QSqlError>
#include <QSqlField>
#include <QSqlQuery>
#include <QSqlRecord>

namespace tp {

namespace {

// SQLSTATE is five characters of digits and capitals; read as a base-36 number it gives
// every state its own error number (all-digit states keep their decimal value).
qint32 sqlStateNumber(const QString& state)
{
    if (state.isEmpty())
        return ErrConnectFailed;
    bool ok = false;
    const qint32 decimal = state.toInt(&ok);
    if (ok && decimal != 0)
        return decimal;
    const qint32 base36 = state.toInt(&ok, 36);
    return ok && base36 != 0 ? base36 : ErrConnectFailed;
}

void setError(const QSqlError& e, DbError& err)
{
    QString text = e.databaseText().trimmed();
    if (text.isEmpty())
        text = e.text().trimmed();
    err.set(sqlStateNumber(e.nativeErrorCode()), text);
}

QVariant normalized(const QVariant& v)
{
    if (!v.isValid() || v.isNull())
        return QVariant();
    switch (v.typeId()) {
    case QMetaType::Bool:
        return QVariant(qint64(v.toBool() ? -1 : 0));   // Jet's True
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
    case QMetaType::Short:
    case QMetaType::UShort:
    case QMetaType::Long:
    case QMetaType::ULong:
        return QVariant(v.toLongLong());
    case QMetaType::Float:
        return QVariant(v.toDouble());
    default:
        return v;
    }
}

QStringList columnNames(const QSqlRecord& r)
{
    QStringList names;
    for (int i = 0; i < r.count(); ++i)
        names.append(r.fieldName(i));
    return names;
}

// Rows from a server-side cursor, fetched in batches: other statements may run on the same
// connection between two rows (a look-up per record, say), which a streamed query forbids.
class PgForwardRecordset final : public ForwardRecordset {
public:
    PgForwardRecordset(std::shared_ptr<Connection> owner, QString cursor)
        : m_owner(std::move(owner)), m_cursor(std::move(cursor))
    {
        DbError err;
        if (fill(err))
            m_names = m_batch.names;
        if (err.code) {
            m_error = err.code;
            m_errorText = err.text;
            return;
        }
        start();
    }
    ~PgForwardRecordset() override
    {
        if (m_owner->isOpen()) {
            DbError ignored;
            m_owner->exec(QStringLiteral("CLOSE ") + m_cursor, ignored);
        }
    }

protected:
    bool fetchNext(DbError& err) override
    {
        if (m_first) {
            m_first = false;
        } else {
            ++m_row;
        }
        if (m_row >= m_batch.rows.size()) {
            if (m_drained || !fill(err))
                return false;
        }
        return m_row < m_batch.rows.size();
    }
    QVariant cell(int index) const override { return m_batch.rows[m_row].value(index); }

private:
    static constexpr int kBatch = 2000;

    bool fill(DbError& err)
    {
        m_batch = ResultRows();
        m_row = 0;
        if (!m_owner->query(QStringLiteral("FETCH FORWARD %1 FROM %2").arg(kBatch).arg(m_cursor), {},
                            m_batch, err))
            return false;
        m_drained = m_batch.rows.size() < kBatch;
        return true;
    }

    std::shared_ptr<Connection> m_owner;
    QString m_cursor;
    ResultRows m_batch;
    qsizetype m_row = 0;
    bool m_first = true;
    bool m_drained = false;
};

class PgConnection final : public Connection {
public:
    ~PgConnection() override
    {
        close();
        if (!m_name.isEmpty())
            QSqlDatabase::removeDatabase(m_name);
    }

    bool open(const QString& location, const QString& password, DbError& err)
    {
        PgLocation loc;
        if (!parsePgLocation(location, loc)) {
            err.set(ErrConnectFailed,
                    QStringLiteral("Not a valid PostgreSQL location: %1").arg(maskPassword(location)));
            return false;
        }
        static QAtomicInteger<quint64> counter;
        m_name = QStringLiteral("tallyport-dao-%1").arg(counter.fetchAndAddRelaxed(1));
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QPSQL"), m_name);
        db.setHostName(loc.host);
        if (loc.port > 0)
            db.setPort(loc.port);
        db.setUserName(loc.user);
        db.setPassword(loc.password.isEmpty() ? password : loc.password);
        db.setDatabaseName(loc.database);
        db.setConnectOptions(loc.connectOptions());
        if (!db.open()) {
            setError(db.lastError(), err);
            if (err.text.isEmpty())
                err.text = QStringLiteral("Cannot connect to %1").arg(maskPassword(location));
            err.text = maskPassword(err.text);
            return false;
        }
        m_open = true;
        DbError ignored;
        exec(QStringLiteral("SET client_min_messages TO warning"), ignored);
        return true;
    }

    jet::Dialect dialect() const override { return jet::Dialect::PostgreSQL; }
    QString rowKeyExpression() const override { return QStringLiteral("ctid"); }
    QString rowKeyParameter() const override { return QStringLiteral("CAST(? AS tid)"); }
    bool isOpen() const override { return m_open; }
    void close() override
    {
        if (m_open)
            QSqlDatabase::database(m_name, false).close();
        m_open = false;
    }

    bool query(const QString& sql, const QVector<QVariant>& params, ResultRows& out,
               DbError& err) override
    {
        QSqlQuery q = run(sql, params, err);
        if (err.code)
            return false;
        out.names = columnNames(q.record());
        const int n = int(out.names.size());
        while (q.next()) {
            QVector<QVariant> row(n);
            for (int i = 0; i < n; ++i)
                row[i] = normalized(q.value(i));
            out.rows.append(std::move(row));
        }
        if (q.lastError().isValid()) {
            setError(q.lastError(), err);
            return false;
        }
        return true;
    }

    bool exec(const QString& sql, DbError& err) override
    {
        run(sql, {}, err);
        return err.code == 0;
    }

    bool execCount(const QString& sql, qint64& changed, DbError& err) override
    {
        QSqlQuery q = run(sql, {}, err);
        if (err.code)
            return false;
        changed = q.numRowsAffected();
        return true;
    }

    bool fillIdTable(const QString& table, const std::vector<qint64>& ids, DbError& err) override
    {
        // No key: filling an index costs more than the hash join it would spare.
        if (!exec(QStringLiteral("CREATE TEMP TABLE IF NOT EXISTS %1 (id bigint)").arg(table), err)
            || !exec(QStringLiteral("TRUNCATE %1").arg(table), err))
            return false;
        // Whole arrays of ids per statement: a few round trips, no statement per id.
        constexpr std::size_t kChunk = 50000;
        QByteArray list;
        for (std::size_t b = 0; b < ids.size(); b += kChunk) {
            const std::size_t e = std::min(ids.size(), b + kChunk);
            list.clear();
            list.reserve(qsizetype((e - b) * 8 + 2));
            list += '{';
            for (std::size_t i = b; i < e; ++i) {
                if (i > b)
                    list += ',';
                list += QByteArray::number(ids[i]);
            }
            list += '}';
            if (!exec(QStringLiteral("INSERT INTO %1 SELECT unnest('%2'::bigint[])")
                          .arg(table, QString::fromLatin1(list)),
                      err))
                return false;
        }
        // The planner has to know the list's size to join it well.
        return exec(QStringLiteral("ANALYZE %1").arg(table), err);
    }

    bool insertRows(const QString& table, const QStringList& columns, const std::vector<QVector<QVariant>>& rows,
                    DbError& err) override
    {
        if (columns.isEmpty()) {
            for (std::size_t i = 0; i < rows.size(); ++i)
                if (!exec(insertStatement(table, columns), err))
                    return false;
            return true;
        }
        if (!m_open) {
            err.set(ErrNotConnected, QStringLiteral("The database is closed."));
            return false;
        }
        // Many rows per statement: one round trip for a batch instead of one per row.
        const QSqlDriver* driver = QSqlDatabase::database(m_name, false).driver();
        const QString head = QStringLiteral("INSERT INTO %1 (%2) VALUES ").arg(table, columns.join(QStringLiteral(", ")));
        constexpr std::size_t kRowsPerStatement = 500;
        QString sql;
        for (std::size_t b = 0; b < rows.size(); b += kRowsPerStatement) {
            sql = head;
            const std::size_t e = std::min(rows.size(), b + kRowsPerStatement);
            for (std::size_t r = b; r < e; ++r) {
                sql += r == b ? QStringLiteral("(") : QStringLiteral(", (");
                for (int i = 0; i < rows[r].size(); ++i) {
                    if (i > 0)
                        sql += QStringLiteral(", ");
                    sql += formatted(*driver, rows[r][i]);
                }
                sql += QLatin1Char(')');
            }
            if (!exec(sql, err))
                return false;
        }
        return true;
    }

    RecordsetPtr stream(const QString& sql, DbError& err) override
    {
        static QAtomicInteger<quint64> counter;
        const QString cursor = QStringLiteral("tp_cursor_%1").arg(counter.fetchAndAddRelaxed(1));
        // WITH HOLD: the cursor outlives the statement's own transaction and any commit.
        if (!exec(QStringLiteral("DECLARE ") + cursor + QStringLiteral(" NO SCROLL CURSOR WITH HOLD FOR ")
                      + sql,
                  err))
            return nullptr;
        auto rs = std::make_unique<PgForwardRecordset>(shared_from_this(), cursor);
        if (rs->lastError() != 0) {
            err.set(rs->lastError(), rs->lastErrorText());
            return nullptr;
        }
        return rs;
    }

    bool begin(DbError& err) override { return transaction(&QSqlDatabase::transaction, err); }
    bool commit(DbError& err) override { return transaction(&QSqlDatabase::commit, err); }
    bool rollback(DbError& err) override { return transaction(&QSqlDatabase::rollback, err); }

    qint64 size() override
    {
        ResultRows r;
        DbError err;
        if (!query(QStringLiteral("SELECT pg_database_size(current_database())"), {}, r, err)
            || r.rows.isEmpty())
            return 0;
        return r.rows[0][0].toLongLong();
    }

private:
    QSqlQuery run(const QString& sql, const QVector<QVariant>& params, DbError& err)
    {
        if (!m_open) {
            err.set(ErrNotConnected, QStringLiteral("The database is closed."));
            return QSqlQuery();
        }
        QSqlQuery q(QSqlDatabase::database(m_name, false));
        q.setForwardOnly(true);
        q.setNumericalPrecisionPolicy(QSql::LowPrecisionDouble);
        if (!q.exec(params.isEmpty() ? sql : withValues(sql, params)))
            setError(q.lastError(), err);
        return q;
    }

    // A value as a literal, quoted and escaped by the driver (libpq's quoting).
    static QString formatted(const QSqlDriver& driver, const QVariant& v)
    {
        QSqlField field(QString(), v.metaType());
        field.setValue(v);
        return driver.formatValue(field);
    }

    // Puts each value, escaped by the driver (libpq's quoting), in place of its "?": one
    // round trip instead of the three of a server-side PREPARE, EXECUTE and DEALLOCATE.
    QString withValues(const QString& sql, const QVector<QVariant>& params) const
    {
        const QSqlDriver* driver = QSqlDatabase::database(m_name, false).driver();
        QString out;
        qsizetype next = 0;
        for (const jet::Token& t : jet::tokenize(sql)) {
            if (t.kind != jet::Token::Punct || t.text != u'?' || next >= params.size()) {
                out += t.text;
                continue;
            }
            out += formatted(*driver, params[next++]);
        }
        return out;
    }

    bool transaction(bool (QSqlDatabase::*op)(), DbError& err)
    {
        if (!m_open) {
            err.set(ErrNotConnected, QStringLiteral("The database is closed."));
            return false;
        }
        QSqlDatabase db = QSqlDatabase::database(m_name, false);
        if ((db.*op)())
            return true;
        setError(db.lastError(), err);
        return false;
    }

    QString m_name;
    bool m_open = false;
};

} // namespace

std::shared_ptr<Connection> openPostgres(const QString& location, const QString& password,
                                         DbError& err)
{
    auto c = std::make_shared<PgConnection>();
    if (!c->open(location, password, err))
        return nullptr;
    return c;
}

} // namespace tp
