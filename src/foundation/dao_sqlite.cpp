// cDAO on an SQLite file through the C API.
#include "foundation/dao_engine.h"

#include <QFileInfo>
#include <QHash>
#include <QStringEncoder>
#include <sqlite3.h>

namespace tp {

namespace {

constexpr int kBusyTimeoutMs = 5000;

void setError(sqlite3* db, DbError& err)
{
    err.set(sqlite3_extended_errcode(db), QString::fromUtf8(sqlite3_errmsg(db)));
}

int bindValue(sqlite3_stmt* st, int i, const QVariant& v)
{
    if (!v.isValid() || v.isNull())
        return sqlite3_bind_null(st, i);
    switch (v.typeId()) {
    case QMetaType::Bool:
        return sqlite3_bind_int64(st, i, v.toBool() ? -1 : 0);   // Jet's True
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
    case QMetaType::Short:
    case QMetaType::UShort:
    case QMetaType::Char:
    case QMetaType::SChar:
    case QMetaType::UChar:
    case QMetaType::Long:
    case QMetaType::ULong:
        return sqlite3_bind_int64(st, i, v.toLongLong());
    case QMetaType::Double:
    case QMetaType::Float:
        return sqlite3_bind_double(st, i, v.toDouble());
    case QMetaType::QByteArray: {
        const QByteArray b = v.toByteArray();
        return sqlite3_bind_blob64(st, i, b.constData(), sqlite3_uint64(b.size()), SQLITE_TRANSIENT);
    }
    default: {
        const QByteArray s = v.toString().toUtf8();
        return sqlite3_bind_text64(st, i, s.constData(), sqlite3_uint64(s.size()), SQLITE_TRANSIENT,
                                   SQLITE_UTF8);
    }
    }
}

// Binds a row's values to ?1, ?2, ... Texts are converted into scratch, which must stay
// untouched until the statement has run: no copy per value, neither ours nor SQLite's.
int bindRow(sqlite3_stmt* st, const QVector<QVariant>& row, QByteArray& scratch)
{
    const auto text = [](const QVariant& v) { return static_cast<const QString*>(v.constData()); };
    qsizetype need = 0;
    for (const QVariant& v : row)
        if (v.typeId() == QMetaType::QString)
            need += 3 * text(v)->size();
    if (scratch.size() < need)
        scratch.resize(need);
    char* out = scratch.data();
    for (int i = 0; i < row.size(); ++i) {
        const QVariant& v = row[i];
        int rc;
        if (v.typeId() == QMetaType::QString) {
            QStringEncoder utf8(QStringEncoder::Utf8);
            char* end = utf8.appendToBuffer(out, *text(v));
            rc = sqlite3_bind_text64(st, i + 1, out, sqlite3_uint64(end - out), SQLITE_STATIC, SQLITE_UTF8);
            out = end;
        } else {
            rc = bindValue(st, i + 1, v);
        }
        if (rc != SQLITE_OK)
            return rc;
    }
    return SQLITE_OK;
}

QVariant columnValue(sqlite3_stmt* st, int i)
{
    switch (sqlite3_column_type(st, i)) {
    case SQLITE_INTEGER:
        return QVariant(qint64(sqlite3_column_int64(st, i)));
    case SQLITE_FLOAT:
        return QVariant(sqlite3_column_double(st, i));
    case SQLITE_TEXT:
        return QVariant(QString::fromUtf8(reinterpret_cast<const char*>(sqlite3_column_text(st, i)),
                                          sqlite3_column_bytes(st, i)));
    case SQLITE_BLOB:
        return QVariant(QByteArray(static_cast<const char*>(sqlite3_column_blob(st, i)),
                                   sqlite3_column_bytes(st, i)));
    default:
        return QVariant();
    }
}

QStringList columnNames(sqlite3_stmt* st)
{
    QStringList names;
    for (int i = 0, n = sqlite3_column_count(st); i < n; ++i)
        names.append(QString::fromUtf8(sqlite3_column_name(st, i)));
    return names;
}

class SqliteConnection;

// Rows one at a time, straight from sqlite3_step.
class SqliteForwardRecordset final : public ForwardRecordset {
public:
    SqliteForwardRecordset(std::shared_ptr<Connection> owner, sqlite3* db, sqlite3_stmt* st)
        : m_owner(std::move(owner)), m_db(db), m_stmt(st)
    {
        m_names = columnNames(st);
        start();
    }
    ~SqliteForwardRecordset() override { sqlite3_finalize(m_stmt); }

protected:
    bool fetchNext(DbError& err) override
    {
        const int rc = sqlite3_step(m_stmt);
        if (rc == SQLITE_ROW)
            return true;
        if (rc != SQLITE_DONE)
            setError(m_db, err);
        return false;
    }
    QVariant cell(int index) const override { return columnValue(m_stmt, index); }

private:
    std::shared_ptr<Connection> m_owner;   // keeps the database open while rows stream
    sqlite3* m_db;
    sqlite3_stmt* m_stmt;
};

class SqliteConnection final : public Connection {
public:
    ~SqliteConnection() override { close(); }

    bool open(const QString& path, DbError& err)
    {
        // Never create a database: a missing file is an error.
        if (!QFileInfo(path).isFile()) {
            err.set(SQLITE_CANTOPEN, QStringLiteral("unable to open database file: %1").arg(path));
            return false;
        }
        // One thread at a time uses a connection, so SQLite's own locking of it is spared.
        const int rc = sqlite3_open_v2(path.toUtf8().constData(), &m_db,
                                       SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX, nullptr);
        if (rc != SQLITE_OK) {
            setError(m_db, err);
            close();
            return false;
        }
        sqlite3_extended_result_codes(m_db, 1);
        sqlite3_busy_timeout(m_db, kBusyTimeoutMs);
        // Reading the schema tells a database from any other file.
        if (!exec(QStringLiteral("SELECT count(*) FROM sqlite_master"), err)) {
            close();
            return false;
        }
        m_path = path;
        return true;
    }

    jet::Dialect dialect() const override { return jet::Dialect::SQLite; }
    QString rowKeyExpression() const override { return QStringLiteral("rowid"); }
    QString rowKeyParameter() const override { return QStringLiteral("?"); }
    bool isOpen() const override { return m_db != nullptr; }
    void close() override
    {
        for (sqlite3_stmt* st : std::as_const(m_statements))
            sqlite3_finalize(st);
        m_statements.clear();
        if (m_db)
            sqlite3_close_v2(m_db);   // deferred while a streamed recordset still reads
        m_db = nullptr;
    }

    bool query(const QString& sql, const QVector<QVariant>& params, ResultRows& out,
               DbError& err) override
    {
        sqlite3_stmt* st = cached(sql, err);
        if (!st)
            return false;
        // Reset at once after use: a statement left stepping would keep the database locked.
        const auto release = [st] {
            sqlite3_reset(st);
            sqlite3_clear_bindings(st);
        };
        for (int i = 0; i < params.size(); ++i)
            if (bindValue(st, i + 1, params[i]) != SQLITE_OK) {
                setError(m_db, err);
                release();
                return false;
            }
        out.names = columnNames(st);
        const int n = int(out.names.size());
        int rc;
        while ((rc = sqlite3_step(st)) == SQLITE_ROW) {
            QVector<QVariant> row(n);
            for (int i = 0; i < n; ++i)
                row[i] = columnValue(st, i);
            out.rows.append(std::move(row));
        }
        if (rc != SQLITE_DONE) {
            setError(m_db, err);
            release();
            return false;
        }
        release();
        return true;
    }

    bool exec(const QString& sql, DbError& err) override
    {
        if (!m_db) {
            err.set(ErrNotConnected, QStringLiteral("The database is closed."));
            return false;
        }
        if (sqlite3_exec(m_db, sql.toUtf8().constData(), nullptr, nullptr, nullptr) != SQLITE_OK) {
            setError(m_db, err);
            return false;
        }
        return true;
    }

    bool execCount(const QString& sql, qint64& changed, DbError& err) override
    {
        if (!exec(sql, err))
            return false;
        changed = sqlite3_changes64(m_db);
        return true;
    }

    bool fillIdTable(const QString& table, const std::vector<qint64>& ids, DbError& err) override
    {
        // Rows of the temporary database only: the primary database stays unlocked.
        if (!exec(QStringLiteral("CREATE TEMP TABLE IF NOT EXISTS %1 (id INTEGER PRIMARY KEY)").arg(table),
                  err)
            || !exec(QStringLiteral("SAVEPOINT tp_fill"), err))
            return false;
        bool ok = exec(QStringLiteral("DELETE FROM temp.%1").arg(table), err);
        sqlite3_stmt* st = ok ? prepare(QStringLiteral("INSERT OR IGNORE INTO temp.%1 VALUES (?)").arg(table), err)
                              : nullptr;
        ok = st != nullptr;
        for (std::size_t i = 0; ok && i < ids.size(); ++i) {
            sqlite3_bind_int64(st, 1, ids[i]);
            ok = sqlite3_step(st) == SQLITE_DONE;
            if (!ok)
                setError(m_db, err);
            sqlite3_reset(st);
        }
        sqlite3_finalize(st);
        DbError ignored;
        if (!ok) {
            exec(QStringLiteral("ROLLBACK TO tp_fill"), ignored);
            exec(QStringLiteral("RELEASE tp_fill"), ignored);
            return false;
        }
        return exec(QStringLiteral("RELEASE tp_fill"), err);
    }

    RecordsetPtr stream(const QString& sql, DbError& err) override
    {
        sqlite3_stmt* st = prepare(sql, err);
        if (!st)
            return nullptr;
        auto rs = std::make_unique<SqliteForwardRecordset>(shared_from_this(), m_db, st);
        if (rs->lastError() != 0) {   // the first step failed
            err.set(rs->lastError(), rs->lastErrorText());
            return nullptr;
        }
        return rs;
    }

    bool insertRows(const QString& table, const QStringList& columns, const std::vector<QVector<QVariant>>& rows,
                    DbError& err) override
    {
        sqlite3_stmt* st = cached(insertStatement(table, columns), err);
        if (!st)
            return false;
        QByteArray scratch;
        int rc = SQLITE_DONE;
        for (std::size_t r = 0; r < rows.size() && rc == SQLITE_DONE; ++r) {
            rc = bindRow(st, rows[r], scratch);
            if (rc == SQLITE_OK)
                rc = sqlite3_step(st);
            if (rc != SQLITE_DONE)
                setError(m_db, err);
            sqlite3_reset(st);
        }
        // The kept statement must not point into the scratch buffer once it is gone.
        sqlite3_clear_bindings(st);
        return rc == SQLITE_DONE;
    }

    bool begin(DbError& err) override { return exec(QStringLiteral("BEGIN"), err); }
    bool beginWrite(DbError& err) override { return exec(QStringLiteral("BEGIN IMMEDIATE"), err); }
    bool commit(DbError& err) override { return exec(QStringLiteral("COMMIT"), err); }
    bool rollback(DbError& err) override { return exec(QStringLiteral("ROLLBACK"), err); }
    qint64 size() override { return QFileInfo(m_path).size(); }

private:
    // Statements run again and again (a dynaset's insert and re-read, say) are parsed once.
    sqlite3_stmt* cached(const QString& sql, DbError& err)
    {
        if (sqlite3_stmt* st = m_statements.value(sql))
            return st;
        sqlite3_stmt* st = prepare(sql, err);
        if (!st)
            return nullptr;
        if (m_statements.size() >= kCachedStatements) {
            for (sqlite3_stmt* old : std::as_const(m_statements))
                sqlite3_finalize(old);
            m_statements.clear();
        }
        m_statements.insert(sql, st);
        return st;
    }

    sqlite3_stmt* prepare(const QString& sql, DbError& err)
    {
        if (!m_db) {
            err.set(ErrNotConnected, QStringLiteral("The database is closed."));
            return nullptr;
        }
        const QByteArray text = sql.toUtf8();
        sqlite3_stmt* st = nullptr;
        if (sqlite3_prepare_v2(m_db, text.constData(), int(text.size()), &st, nullptr) != SQLITE_OK) {
            setError(m_db, err);
            sqlite3_finalize(st);
            return nullptr;
        }
        if (!st) {   // blank statement
            err.set(SQLITE_MISUSE, QStringLiteral("The statement is empty."));
            return nullptr;
        }
        return st;
    }

    static constexpr qsizetype kCachedStatements = 32;
    sqlite3* m_db = nullptr;
    QString m_path;
    QHash<QString, sqlite3_stmt*> m_statements;
};

} // namespace

std::shared_ptr<Connection> openSqlite(const QString& path, DbError& err)
{
    auto c = std::make_shared<SqliteConnection>();
    if (!c->open(path, err))
        return nullptr;
    return c;
}

} // namespace tp
