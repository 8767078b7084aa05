// Writes the demo rows straight through the SQLite C API: one transaction, one prepared
// statement per table, indexes built after the rows are in.
#include "demo_content.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <sqlite3.h>

namespace tp {

bool createSqliteDemo(const QString& file, const QString& schemaText, const DemoOptions& options,
                      QString* error, DemoSummary& summary);

namespace {

class SqliteSink : public DemoSink {
public:
    explicit SqliteSink(sqlite3* db) : m_db(db) {}
    ~SqliteSink() override { sqlite3_finalize(m_insert); }

    bool beginTable(const QString& table, const QStringList& columns) override
    {
        QString sql = QStringLiteral("INSERT INTO %1 (%2) VALUES (").arg(table, columns.join(", "));
        for (qsizetype i = 0; i < columns.size(); ++i)
            sql += i ? QStringLiteral(", ?") : QStringLiteral("?");
        sql += ')';
        sqlite3_finalize(m_insert);
        m_insert = nullptr;
        return check(sqlite3_prepare_v2(m_db, sql.toUtf8().constData(), -1, &m_insert, nullptr));
    }

    bool addRow(std::span<const DemoValue> row) override
    {
        for (size_t i = 0; i < row.size(); ++i) {
            const DemoValue& v = row[i];
            const int at = int(i) + 1;
            int rc = SQLITE_OK;
            switch (v.kind) {
            case DemoValue::Null: rc = sqlite3_bind_null(m_insert, at); break;
            case DemoValue::Int: rc = sqlite3_bind_int64(m_insert, at, v.i); break;
            case DemoValue::Real: rc = sqlite3_bind_double(m_insert, at, v.d); break;
            case DemoValue::Text:
                rc = sqlite3_bind_text(m_insert, at, v.s.constData(), int(v.s.size()), SQLITE_TRANSIENT);
                break;
            }
            if (!check(rc))
                return false;
        }
        const int rc = sqlite3_step(m_insert);
        sqlite3_reset(m_insert);
        return rc == SQLITE_DONE || check(rc);
    }

    bool endTable() override
    {
        sqlite3_finalize(m_insert);
        m_insert = nullptr;
        return true;
    }

    bool exec(const QString& sql) { return check(sqlite3_exec(m_db, sql.toUtf8().constData(), nullptr, nullptr, nullptr)); }

private:
    bool check(int rc)
    {
        if (rc == SQLITE_OK || rc == SQLITE_DONE || rc == SQLITE_ROW)
            return true;
        error = QString::fromUtf8(sqlite3_errmsg(m_db));
        return false;
    }

    sqlite3* m_db;
    sqlite3_stmt* m_insert = nullptr;
};

bool isIndex(const QString& statement) { return statement.startsWith(QLatin1String("CREATE INDEX"), Qt::CaseInsensitive); }

} // namespace

bool createSqliteDemo(const QString& file, const QString& schemaText, const DemoOptions& options,
                      QString* error, DemoSummary& summary)
{
    auto failWith = [&](const QString& text) {
        if (error)
            *error = text;
        return false;
    };
    if (QFileInfo::exists(file) && !options.replaceExisting)
        return failWith(QStringLiteral("%1 exists already; not overwritten.").arg(file));
    const QFileInfo info(file);
    if (!info.absoluteDir().exists())
        return failWith(QStringLiteral("The folder %1 does not exist.").arg(info.absolutePath()));

    // Build beside the target and move it in place at the end: a failure leaves no half file.
    const QString work = file + QStringLiteral(".part");
    QFile::remove(work);
    sqlite3* db = nullptr;
    if (sqlite3_open_v2(QFile::encodeName(work).constData(), &db, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE,
                        nullptr) != SQLITE_OK) {
        const QString why = db ? QString::fromUtf8(sqlite3_errmsg(db)) : QStringLiteral("out of memory");
        sqlite3_close(db);
        return failWith(QStringLiteral("Cannot create %1: %2").arg(work, why));
    }

    bool ok;
    QString why;
    {
        SqliteSink sink(db);
        const QStringList statements = schemaStatements(schemaText);
        ok = sink.exec(QStringLiteral("PRAGMA journal_mode=OFF; PRAGMA synchronous=OFF; BEGIN"));
        for (const QString& s : statements)
            if (ok && !isIndex(s))
                ok = sink.exec(s);
        ok = ok && generateDemoContent(options, sink, summary);
        for (const QString& s : statements)
            if (ok && isIndex(s))
                ok = sink.exec(s);
        ok = ok && sink.exec(QStringLiteral("COMMIT; PRAGMA journal_mode=DELETE"));
        why = sink.error;
    }
    sqlite3_close(db);
    if (!ok) {
        QFile::remove(work);
        return failWith(QStringLiteral("Cannot fill %1: %2").arg(file, why));
    }
    if (QFileInfo::exists(file) && !QFile::remove(file)) {
        QFile::remove(work);
        return failWith(QStringLiteral("Cannot replace %1.").arg(file));
    }
    if (!QFile::rename(work, file)) {
        QFile::remove(work);
        return failWith(QStringLiteral("Cannot move the new database to %1.").arg(file));
    }
    return true;
}

} // namespace tp
