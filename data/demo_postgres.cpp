// Writes the demo rows to PostgreSQL through the program's own database object, in one
// transaction, a few hundred rows per INSERT.
#include "demo_content.h"
#include "foundation/dao.h"
#include "foundation/pg_location.h"
#include "foundation/sql_literal.h"

#include <QRegularExpression>

namespace tp {

bool createPostgresDemo(const QString& location, const QString& schemaText, const DemoOptions& options,
                        QString* error, DemoSummary& summary);

namespace {

const QString kDatabasePassword = QStringLiteral("MarlinGate");   // the product's fixed password
constexpr int kRowsPerInsert = 500;

class PostgresSink : public DemoSink {
public:
    explicit PostgresSink(cDAO& db) : m_db(db) {}

    bool beginTable(const QString& table, const QStringList& columns) override
    {
        m_head = QStringLiteral("INSERT INTO %1 (%2) VALUES ").arg(table, columns.join(", "));
        m_rows = 0;
        m_sql.clear();
        return true;
    }

    bool addRow(std::span<const DemoValue> row) override
    {
        m_sql += m_rows ? QStringLiteral(", (") : m_head + '(';
        for (size_t i = 0; i < row.size(); ++i) {
            if (i)
                m_sql += QStringLiteral(", ");
            const DemoValue& v = row[i];
            switch (v.kind) {
            case DemoValue::Null: m_sql += QStringLiteral("NULL"); break;
            case DemoValue::Int: m_sql += sql::number(v.i); break;
            case DemoValue::Real: m_sql += sql::number(v.d); break;
            case DemoValue::Text: m_sql += sql::text(QString::fromUtf8(v.s)); break;
            }
        }
        m_sql += ')';
        return ++m_rows < kRowsPerInsert || flush();
    }

    bool endTable() override { return flush(); }

    bool exec(const QString& statement)
    {
        m_db.Exec(statement);
        if (m_db.appError == 0)
            return true;
        error = m_db.errorText.isEmpty() ? QStringLiteral("statement failed: %1").arg(statement.left(200))
                                         : m_db.errorText;
        return false;
    }

private:
    bool flush()
    {
        if (m_rows == 0)
            return true;
        const bool ok = exec(m_sql);
        m_sql.clear();
        m_rows = 0;
        return ok;
    }

    cDAO& m_db;
    QString m_head, m_sql;
    int m_rows = 0;
};

bool isIndex(const QString& statement) { return statement.startsWith(QLatin1String("CREATE INDEX"), Qt::CaseInsensitive); }

} // namespace

bool createPostgresDemo(const QString& location, const QString& schemaText, const DemoOptions& options,
                        QString* error, DemoSummary& summary)
{
    auto failWith = [&](const QString& text) {
        if (error)
            *error = text;
        return false;
    };
    cDAO db;
    if (!db.DB_Connect(location, QString(), QStringLiteral("Admin"), kDatabasePassword))
        return failWith(QStringLiteral("Cannot connect to %1: %2").arg(maskPassword(location), db.errorText));

    const QStringList statements = schemaStatements(schemaText);
    static const QRegularExpression createTable(QStringLiteral("^CREATE TABLE\\s+(\\w+)"),
                                                QRegularExpression::CaseInsensitiveOption);
    QStringList tables;
    for (const QString& s : statements)
        if (const auto m = createTable.match(s); m.hasMatch())
            tables << m.captured(1);

    db.Records_Exist(QStringLiteral("Select top 1 * from UserNames"));
    const bool present = db.appError == 0;
    if (present && !options.replaceExisting)
        return failWith(QStringLiteral("The database at %1 holds the tables already; not replaced.").arg(maskPassword(location)));

    if (!db.BeginTrans())
        return failWith(QStringLiteral("Cannot start a transaction: %1").arg(db.errorText));
    PostgresSink sink(db);
    bool ok = true;
    if (options.replaceExisting)
        for (const QString& t : tables)
            ok = ok && sink.exec(QStringLiteral("DROP TABLE IF EXISTS %1").arg(t));
    for (const QString& s : statements)
        ok = ok && (isIndex(s) || sink.exec(s));
    ok = ok && generateDemoContent(options, sink, summary);
    for (const QString& s : statements)
        ok = ok && (!isIndex(s) || sink.exec(s));
    if (!ok) {
        db.Rollback();
        return failWith(QStringLiteral("Cannot fill %1: %2").arg(maskPassword(location), sink.error));
    }
    if (!db.CommitTrans())
        return failWith(QStringLiteral("Cannot commit: %1").arg(db.errorText));
    db.DB_Close();
    return true;
}

} // namespace tp
