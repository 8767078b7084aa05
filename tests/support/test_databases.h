#pragma once
// Real databases for tests: SQLite files in temporary folders and scratch databases on the
// PostgreSQL server named by TALLYPORT_TEST_PG (scripts/pg-test-server.sh starts one).
#include <QString>
#include <QStringList>
#include <QTemporaryDir>
#include <memory>

namespace tp::test {

// The product's schema shipped in data/ (schema_sqlite.sql or schema_postgres.sql).
QString schemaScript(bool postgres);

// Creates folder/fileName from the script (run as is, no translation); returns its path,
// or an empty text after a failure (message in *error).
QString makeSqliteDatabase(const QString& folder, const QString& script,
                           const QString& fileName = QStringLiteral("test.db"),
                           QString* error = nullptr);

// TALLYPORT_TEST_PG, e.g. postgresql://tallyport@127.0.0.1:55432/tallyport_test; empty if unset.
QString pgTestUrl();
inline const char* const kPgSkipMessage =
    "TALLYPORT_TEST_PG is not set: PostgreSQL tests skipped "
    "(start a server with scripts/pg-test-server.sh start DIR PORT)";

// A fresh, uniquely named database on the test server, dropped again by the destructor.
class PgScratchDatabase {
public:
    explicit PgScratchDatabase(const QString& script = QString());
    ~PgScratchDatabase();
    PgScratchDatabase(const PgScratchDatabase&) = delete;
    PgScratchDatabase& operator=(const PgScratchDatabase&) = delete;

    bool ok() const { return m_error.isEmpty(); }
    QString error() const { return m_error; }
    QString url() const { return m_url; }
    QString name() const { return m_name; }
    // Runs a script in the scratch database as is.
    bool run(const QString& script, QString* error = nullptr);

private:
    QString m_name, m_url, m_error;
};

// Engines for typed tests: each makes a database from a script and tells its location.
struct SqliteTestEngine {
    static constexpr const char* kName = "SQLite";
    static constexpr bool kPostgres = false;
    // Empty on success, else why the test cannot run.
    QString create(const QString& script);
    QString location;
    QString missingLocation() const;
    QTemporaryDir dir;
};

struct PgTestEngine {
    static constexpr const char* kName = "PostgreSQL";
    static constexpr bool kPostgres = true;
    QString create(const QString& script);
    QString location;
    QString missingLocation() const;
    std::unique_ptr<PgScratchDatabase> db;
};

struct EngineNames {
    template <class E>
    static std::string GetName(int) { return E::kName; }
};

} // namespace tp::test
