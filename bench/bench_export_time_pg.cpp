// Time-data export on PostgreSQL through the built tallyport-batch: 125,000 waiting records of
// 500 employees, 8 fields with names and formatted date and time, then marking them; against
// psql's \copy of the equivalent query plus the equivalent UPDATE on a copy of the database,
// in the same run. The peak memory (max RSS) of our run is compared with the same export of
// the same records from an SQLite file.
// Needs TALLYPORT_TEST_PG (scripts/bench.sh export-time-pg starts a scratch server).
// Last line: export-time-pg: ours=<s>s peer=<s>s ratio=<ours/peer> max_rss_mb=<MB>
#include "bench_demo.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QUrl>
#include <sqlite3.h>

#include <cstdio>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace {

constexpr int kEmployees = 500;
const char* const kFields = "TimeRecordID,EmployeeNumber,EmployeeFirstName,EmployeeLastName,Date,"
                            "Time,CustomerNumber,IsJobInRecord";

// The same pseudo-random records on both engines, made by the engine itself.
QString fillSql(int records, bool postgres)
{
    const QString rows = postgres ? QStringLiteral("generate_series(1, %1) AS s(i)").arg(records)
                                  : QStringLiteral("s");
    const QString head = postgres ? QString()
                                  : QStringLiteral("WITH RECURSIVE s(i) AS (SELECT 1 UNION ALL "
                                                   "SELECT i + 1 FROM s WHERE i < %1) ")
                                        .arg(records);
    return head + QStringLiteral(
        "INSERT INTO JobTimeRecords (NewTimeRecordID, EmployeeNumber, VehicleBlock, Date, Time, "
        "JobRecordID, CustomerNumber, IsJobInRecord, IsTimeInRecord, IsJobOutRecord, "
        "IsTimeOutRecord, OdometerReading, Approved, ExportID) "
        "SELECT i, 1 + (i * 97) %% %1, 1 + i %% 30, 20240000 + (1 + i %% 12) * 100 + 1 + (i * 31) %% 28, "
        "((i * 13) %% 24) * 10000 + ((i * 17) %% 60) * 100 + (i * 19) %% 60, 5000 + i / 4, "
        "1 + (i * 3) %% 30, CASE WHEN i %% 4 = 1 THEN -1 ELSE 0 END, CASE WHEN i %% 4 = 0 THEN -1 ELSE 0 END, "
        "CASE WHEN i %% 4 = 2 THEN -1 ELSE 0 END, CASE WHEN i %% 4 = 3 THEN -1 ELSE 0 END, 12000 + i, 1, 0 "
        "FROM %2").arg(kEmployees).arg(rows).replace(QStringLiteral("%%"), QStringLiteral("%"));
}

const char* const kPeerScript =
    "\\copy (SELECT t.NewTimeRecordID AS TimeRecordID, t.EmployeeNumber,"
    " coalesce(nullif(e.FirstName, ''), 'Unknown') AS EmployeeFirstName,"
    " coalesce(nullif(e.LastName, ''), 'Unknown') AS EmployeeLastName,"
    " substr(t.date::text, 5, 2) || '/' || substr(t.date::text, 7, 2) || '/' || substr(t.date::text, 1, 4) AS Date,"
    " lpad((t.time / 10000)::text, 2, '0') || ':' || lpad((t.time / 100 % 100)::text, 2, '0') || ':'"
    " || lpad((t.time % 100)::text, 2, '0') AS Time,"
    " t.CustomerNumber,"
    " CASE WHEN t.IsJobInRecord <> 0 THEN '#TRUE#' ELSE '#FALSE#' END AS IsJobInRecord"
    " FROM JobTimeRecords t LEFT JOIN EmployeeInfo e ON e.EmployeeNumber = t.EmployeeNumber"
    " WHERE t.ExportID = 0 AND t.Approved = 1 ORDER BY t.NewTimeRecordID) TO '%1' WITH (FORMAT csv, HEADER)\n"
    "UPDATE JobTimeRecords SET ExportID = ExportID + 1, Approved = 2 WHERE ExportID = 0 AND Approved = 1;\n";

struct Child {
    bool ok = false;
    double seconds = 0;
    double maxRssMb = 0;
};

// Runs a program to its end; its own peak memory comes from wait4.
Child runChild(const QStringList& command, const QByteArray& settingsDir = QByteArray())
{
    Child result;
    std::vector<QByteArray> args;
    for (const QString& a : command)
        args.push_back(a.toLocal8Bit());
    std::vector<char*> argv;
    for (QByteArray& a : args)
        argv.push_back(a.data());
    argv.push_back(nullptr);
    QElapsedTimer clock;
    clock.start();
    const pid_t pid = ::fork();
    if (pid == 0) {
        if (!settingsDir.isEmpty())
            ::setenv("TALLYPORT_SETTINGS_DIR", settingsDir.constData(), 1);
        // Our runs' question blocks stay out of the report; psql's errors do not.
        if (::freopen("/dev/null", "w", stdout) == nullptr
            || (!settingsDir.isEmpty() && ::freopen("/dev/null", "w", stderr) == nullptr))
            ::_exit(127);
        ::execvp(argv[0], argv.data());
        ::_exit(127);
    }
    int status = 0;
    rusage usage {};
    if (pid < 0 || ::wait4(pid, &status, 0, &usage) != pid)
        return result;
    result.seconds = double(clock.nsecsElapsed()) / 1e9;
    result.maxRssMb = double(usage.ru_maxrss) / 1024.0;
    result.ok = WIFEXITED(status) && WEXITSTATUS(status) == 0;
    return result;
}

qint64 countLines(const QString& file)
{
    QFile f(file);
    return f.open(QIODevice::ReadOnly) ? f.readAll().count('\n') : -1;
}

bool pgExec(const QString& url, const QString& sql, QString* error)
{
    const QString name = QStringLiteral("bench-%1").arg(qHash(url + sql));
    bool ok = false;
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QPSQL"), name);
        const QUrl u(url);
        db.setHostName(u.host());
        db.setPort(u.port(5432));
        db.setUserName(u.userName());
        db.setPassword(u.password());
        db.setDatabaseName(u.path().mid(1));
        ok = db.open();
        if (ok) {
            QSqlQuery q(db);
            ok = q.exec(sql);
            if (!ok)
                *error = q.lastError().text();
        } else {
            *error = db.lastError().text();
        }
        db.close();
    }
    QSqlDatabase::removeDatabase(name);
    return ok;
}

bool sqliteExec(const QString& file, const QString& sql, QString* error)
{
    sqlite3* db = nullptr;
    bool ok = sqlite3_open(QFile::encodeName(file).constData(), &db) == SQLITE_OK &&
              sqlite3_exec(db, sql.toUtf8().constData(), nullptr, nullptr, nullptr) == SQLITE_OK;
    if (!ok)
        *error = QString::fromUtf8(sqlite3_errmsg(db));
    sqlite3_close(db);
    return ok;
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    const int records = argc > 1 ? std::atoi(argv[1]) : 125000;
    const QString server = qEnvironmentVariable("TALLYPORT_TEST_PG");
    if (server.isEmpty()) {
        std::fprintf(stderr, "TALLYPORT_TEST_PG is not set (scripts/bench.sh export-time-pg sets it)\n");
        return 2;
    }
    const QString batch = QCoreApplication::applicationDirPath() + QStringLiteral("/tallyport-batch");
    const QString base = server.left(server.lastIndexOf(QLatin1Char('/')) + 1);
    const QString suffix = QString::number(::getpid());
    const QString oursDb = QStringLiteral("tp_bench_ours_") + suffix;
    const QString peerDb = QStringLiteral("tp_bench_peer_") + suffix;
    QTemporaryDir dir, oursSettings, liteSettings;
    const QString liteFile = QDir(dir.path()).filePath(QStringLiteral("bench.db"));

    const tp::DemoOptions options = recordFreeDemo(kEmployees);
    QString error;
    auto cleanup = [&] {
        QString ignored;
        pgExec(server, QStringLiteral("DROP DATABASE IF EXISTS ") + oursDb, &ignored);
        pgExec(server, QStringLiteral("DROP DATABASE IF EXISTS ") + peerDb, &ignored);
    };
    if (!pgExec(server, QStringLiteral("CREATE DATABASE ") + oursDb, &error)
        || !tp::createDemoDatabase(base + oursDb, options, &error)
        || !pgExec(base + oursDb, QStringLiteral("DELETE FROM JobTimeRecords; ") + fillSql(records, true), &error)
        || !pgExec(base + oursDb, QStringLiteral("VACUUM ANALYZE"), &error)
        || !pgExec(server, QStringLiteral("CREATE DATABASE %1 TEMPLATE %2").arg(peerDb, oursDb), &error)
        || !tp::writeDemoSettings(oursSettings.path(), base, oursDb, &error)
        || !tp::createDemoDatabase(liteFile, options, &error)
        || !sqliteExec(liteFile, QStringLiteral("DELETE FROM JobTimeRecords; ") + fillSql(records, false), &error)
        || !tp::writeDemoSettings(liteSettings.path(), dir.path() + QLatin1Char('/'), QStringLiteral("bench.db"),
                                  &error)) {
        std::fprintf(stderr, "cannot build the databases: %s\n", qPrintable(error));
        cleanup();
        return 1;
    }

    auto exportTo = [&](const QString& file) {
        return QStringList{batch, "export", "--settings", "KRV.ini", "--user", "1", "--dataset",
                           "Time Data", "--fields", kFields, "--format-date", "--format-time",
                           "--yes", "--output", file};
    };
    const QString oursTxt = QDir(dir.path()).filePath(QStringLiteral("ours.txt"));
    const Child ours = runChild(exportTo(oursTxt), QFile::encodeName(oursSettings.path()));
    const QString liteTxt = QDir(dir.path()).filePath(QStringLiteral("lite.txt"));
    const Child lite = runChild(exportTo(liteTxt), QFile::encodeName(liteSettings.path()));

    const QString peerCsv = QDir(dir.path()).filePath(QStringLiteral("peer.csv"));
    const QString script = QDir(dir.path()).filePath(QStringLiteral("peer.sql"));
    QFile s(script);
    if (!s.open(QIODevice::WriteOnly) || s.write(QString::fromLatin1(kPeerScript).arg(peerCsv).toUtf8()) < 0) {
        cleanup();
        return 1;
    }
    s.close();
    const Child peer = runChild({QStringLiteral("psql"), QStringLiteral("-X"), QStringLiteral("-q"),
                                 QStringLiteral("-v"), QStringLiteral("ON_ERROR_STOP=1"), QStringLiteral("-f"),
                                 script, base + peerDb});
    cleanup();

    if (!ours.ok || countLines(oursTxt) != records + 1 || !lite.ok || countLines(liteTxt) != records + 1) {
        std::fprintf(stderr, "our export failed (%lld lines, SQLite %lld lines)\n",
                     static_cast<long long>(countLines(oursTxt)), static_cast<long long>(countLines(liteTxt)));
        return 1;
    }
    if (!peer.ok || countLines(peerCsv) != records + 1) {
        std::fprintf(stderr, "psql failed (%lld lines)\n", static_cast<long long>(countLines(peerCsv)));
        return 1;
    }
    std::printf("records=%d employees=%d; the same export from SQLite: %.3fs max_rss_mb=%.1f\n", records,
                kEmployees, lite.seconds, lite.maxRssMb);
    std::printf("export-time-pg: ours=%.3fs peer=%.3fs ratio=%.2f max_rss_mb=%.1f\n", ours.seconds,
                peer.seconds, ours.seconds / peer.seconds, ours.maxRssMb);
    return 0;
}
