#include "support/test_databases.h"

#include <QAtomicInteger>
#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QUrl>
#include <QUrlQuery>
#include <sqlite3.h>

namespace tp::test {

namespace {

// The base URL with another database name in place of its own.
QString withDatabase(const QString& url, const QString& database)
{
    const qsizetype query = url.indexOf(u'?');
    const QString main = query < 0 ? url : url.left(query);
    const QString tail = query < 0 ? QString() : url.mid(query);
    return main.left(main.lastIndexOf(u'/') + 1) + database + tail;
}

// A QtSql connection to the server at url, under a name of its own.
QString connectAdmin(const QString& url, QString& error)
{
    static QAtomicInteger<int> counter;
    const QString name = QStringLiteral("tp-test-admin-%1").arg(counter.fetchAndAddRelaxed(1));
    const QUrl u(url);
    QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QPSQL"), name);
    const QString socket = QUrlQuery(u).queryItemValue(QStringLiteral("host"), QUrl::FullyDecoded);
    db.setHostName(socket.isEmpty() ? u.host() : socket);
    if (u.port() > 0)
        db.setPort(u.port());
    db.setUserName(u.userName());
    db.setPassword(u.password());
    db.setDatabaseName(u.path().mid(1));
    if (!db.open())
        error = db.lastError().text();
    return name;
}

// The whole script in one round trip: the server runs several statements of one query text.
bool runOn(const QString& connection, const QString& script, QString& error)
{
    QSqlQuery q(QSqlDatabase::database(connection, false));
    if (!q.exec(script))
        error = q.lastError().text();
    return error.isEmpty();
}

void ensureApplication()
{
    // QtSql finds its driver plugins through the application object.
    static int argc = 1;
    static char arg0[] = "tallyport-tests";
    static char* argv[] = {arg0, nullptr};
    if (!QCoreApplication::instance())
        new QCoreApplication(argc, argv);
}

} // namespace

QString schemaScript(bool postgres)
{
    QFile f(QStringLiteral(TP_DATA_DIR "/") +
            (postgres ? QStringLiteral("schema_postgres.sql") : QStringLiteral("schema_sqlite.sql")));
    if (!f.open(QIODevice::ReadOnly))
        return QString();
    return QString::fromUtf8(f.readAll());
}

QString makeSqliteDatabase(const QString& folder, const QString& script, const QString& fileName,
                           QString* error)
{
    const QString path = QDir(folder).filePath(fileName);
    sqlite3* db = nullptr;
    QString message;
    if (sqlite3_open_v2(path.toUtf8().constData(), &db, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE,
                        nullptr) != SQLITE_OK) {
        message = QString::fromUtf8(sqlite3_errmsg(db));
    } else {
        char* err = nullptr;
        if (sqlite3_exec(db, script.toUtf8().constData(), nullptr, nullptr, &err) != SQLITE_OK) {
            message = QString::fromUtf8(err ? err : "script failed");
            sqlite3_free(err);
        }
    }
    sqlite3_close(db);
    if (error)
        *error = message;
    return message.isEmpty() ? path : QString();
}

QString pgTestUrl()
{
    return qEnvironmentVariable("TALLYPORT_TEST_PG").trimmed();
}

PgScratchDatabase::PgScratchDatabase(const QString& script)
{
    ensureApplication();
    const QString base = pgTestUrl();
    if (base.isEmpty()) {
        m_error = QString::fromLatin1(kPgSkipMessage);
        return;
    }
    static QAtomicInteger<int> counter;
    m_name = QStringLiteral("tp_test_%1_%2")
                 .arg(QCoreApplication::applicationPid())
                 .arg(counter.fetchAndAddRelaxed(1));
    m_url = withDatabase(base, m_name);
    {
        const QString admin = connectAdmin(base, m_error);
        if (m_error.isEmpty())
            runOn(admin, QStringLiteral("CREATE DATABASE %1").arg(m_name),
                  m_error);
        QSqlDatabase::removeDatabase(admin);
    }
    if (m_error.isEmpty() && !script.isEmpty())
        run(script, &m_error);
}

PgScratchDatabase::~PgScratchDatabase()
{
    if (m_name.isEmpty() || pgTestUrl().isEmpty())
        return;
    QString error;
    const QString admin = connectAdmin(pgTestUrl(), error);
    if (error.isEmpty())
        runOn(admin, QStringLiteral("DROP DATABASE IF EXISTS %1 WITH (FORCE)").arg(m_name), error);
    QSqlDatabase::removeDatabase(admin);
}

bool PgScratchDatabase::run(const QString& script, QString* error)
{
    QString message;
    {
        const QString connection = connectAdmin(m_url, message);
        if (message.isEmpty())
            runOn(connection, script, message);
        QSqlDatabase::removeDatabase(connection);
    }
    if (error)
        *error = message;
    return message.isEmpty();
}

QString SqliteTestEngine::create(const QString& script)
{
    ensureApplication();
    QString error;
    location = makeSqliteDatabase(dir.path(), script, QStringLiteral("Primary.db"), &error);
    return error;
}

QString SqliteTestEngine::missingLocation() const
{
    return dir.filePath(QStringLiteral("Missing.db"));
}

QString PgTestEngine::create(const QString& script)
{
    if (pgTestUrl().isEmpty())
        return QString::fromLatin1(kPgSkipMessage);
    db = std::make_unique<PgScratchDatabase>(script);
    location = db->url();
    return db->error();
}

QString PgTestEngine::missingLocation() const
{
    return withDatabase(pgTestUrl(), QStringLiteral("tp_no_such_database"));
}

} // namespace tp::test
