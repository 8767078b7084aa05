// Time-data export of 200,000 waiting records for 500 employees, 8 fields with names and
// formatted date and time, then marking them; against the sqlite3 shell producing the same
// CSV from the equivalent join and running the equivalent UPDATE on a copy of the database.
// Also times the scan of a million waiting records (count and first 20 rows), as "Scan
// Database" runs it. Both go through the Export window's session, as the window drives it.
// Last line: export-time: ours=<s>s peer=<s>s ratio=<ours/peer>
#include "bench_demo.h"
#include "bench_peer.h"
#include "export/export_session.h"
#include "foundation/dao.h"
#include "foundation/feedback.h"
#include "foundation/globals.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <sqlite3.h>

#include <cstdio>
#include <vector>

namespace {

constexpr int kRecords = 200000;
constexpr int kScanRecords = 1000000;
constexpr int kEmployees = 500;
const char* const kFields[] = {"TimeRecordID",     "EmployeeNumber", "EmployeeFirstName",
                               "EmployeeLastName", "Date",           "Time",
                               "CustomerNumber",   "IsJobInRecord"};

bool fillTimeRecords(const QString& file, int records, QString* error)
{
    sqlite3* db = nullptr;
    if (sqlite3_open(QFile::encodeName(file).constData(), &db) != SQLITE_OK) {
        *error = QStringLiteral("cannot open ") + file;
        return false;
    }
    std::vector<int> employees;
    sqlite3_stmt* st = nullptr;
    sqlite3_prepare_v2(db, "SELECT EmployeeNumber FROM EmployeeInfo", -1, &st, nullptr);
    while (sqlite3_step(st) == SQLITE_ROW)
        employees.push_back(sqlite3_column_int(st, 0));
    sqlite3_finalize(st);
    if (employees.size() < std::size_t(kEmployees)) {
        *error = QStringLiteral("the demo database has too few employees");
        sqlite3_close(db);
        return false;
    }
    sqlite3_exec(db, "DELETE FROM JobTimeRecords; BEGIN", nullptr, nullptr, nullptr);
    sqlite3_prepare_v2(db,
                       "INSERT INTO JobTimeRecords (NewTimeRecordID, EmployeeNumber, VehicleBlock, "
                       "Date, Time, JobRecordID, CustomerNumber, IsJobInRecord, IsTimeInRecord, "
                       "IsJobOutRecord, IsTimeOutRecord, OdometerReading, Approved, ExportID) "
                       "VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, 1, 0)",
                       -1, &st, nullptr);
    QRandomGenerator rng(7);
    for (int i = 1; i <= records; ++i) {
        const int step = i % 4;
        const int day = 1 + int(rng.bounded(28));
        const int month = 1 + int(rng.bounded(12));
        sqlite3_bind_int(st, 1, i);
        sqlite3_bind_int(st, 2, employees[rng.bounded(kEmployees)]);
        sqlite3_bind_int(st, 3, 1 + int(rng.bounded(30)));
        sqlite3_bind_int(st, 4, 20240000 + month * 100 + day);
        sqlite3_bind_int(st, 5, int(rng.bounded(24)) * 10000 + int(rng.bounded(60)) * 100 + int(rng.bounded(60)));
        sqlite3_bind_int(st, 6, 5000 + i / 4);
        sqlite3_bind_int(st, 7, 1 + int(rng.bounded(30)));
        sqlite3_bind_int(st, 8, step == 1 ? -1 : 0);
        sqlite3_bind_int(st, 9, step == 0 ? -1 : 0);
        sqlite3_bind_int(st, 10, step == 2 ? -1 : 0);
        sqlite3_bind_int(st, 11, step == 3 ? -1 : 0);
        sqlite3_bind_int(st, 12, 12000 + i);
        sqlite3_step(st);
        sqlite3_reset(st);
    }
    sqlite3_finalize(st);
    const bool ok = sqlite3_exec(db, "COMMIT", nullptr, nullptr, nullptr) == SQLITE_OK;
    sqlite3_close(db);
    if (!ok)
        *error = QStringLiteral("cannot fill JobTimeRecords");
    return ok;
}

// The same file through the sqlite3 shell, and the same marks.
const char* const kPeerScript =
    ".mode csv\n"
    ".headers on\n"
    ".output %1\n"
    "SELECT t.NewTimeRecordID AS TimeRecordID, t.EmployeeNumber,"
    " coalesce(nullif(e.FirstName, ''), 'Unknown') AS EmployeeFirstName,"
    " coalesce(nullif(e.LastName, ''), 'Unknown') AS EmployeeLastName,"
    " substr(t.Date, 5, 2) || '/' || substr(t.Date, 7, 2) || '/' || substr(t.Date, 1, 4) AS Date,"
    " printf('%02d:%02d:%02d', t.Time / 10000, t.Time / 100 % 100, t.Time % 100) AS Time,"
    " t.CustomerNumber,"
    " CASE WHEN t.IsJobInRecord <> 0 THEN '#TRUE#' ELSE '#FALSE#' END AS IsJobInRecord"
    " FROM JobTimeRecords t LEFT JOIN EmployeeInfo e ON e.EmployeeNumber = t.EmployeeNumber"
    " WHERE t.ExportID = 0 AND t.Approved = 1;\n"
    ".output stdout\n"
    "UPDATE JobTimeRecords SET ExportID = ExportID + 1, Approved = 2"
    " WHERE ExportID = 0 AND Approved = 1;\n";

// The window's road through its session: data set, ticks, "Select All Records", "Scan
// Database", both formats, and "Create File" into file (empty: stop after the scan).
struct SessionRun {
    bool ok = false;
    double scanSeconds = 0;
    tp::ExportJobResult result;
};

SessionRun exportThroughSession(const QString& database, const QString& file)
{
    SessionRun run;
    tp::cDAO db;
    if (!db.DB_Connect(database, QString(), QStringLiteral("Admin"), QString())) {
        std::fprintf(stderr, "cannot connect: %s\n", qPrintable(db.errorText));
        return run;
    }
    tp::ScriptedFeedback feedback;
    feedback.defaultYes = true;   // the question about more than 200 records
    tp::ExportSession session(db, feedback);
    session.offeredDataSets();
    if (!session.selectDataSet(tp::kListTime) || session.AvailabilityResult != 1)
        return run;
    for (const char* name : kFields)
        if (!session.tickField(session.fieldRow(QLatin1String(name)), true))
            return run;
    QElapsedTimer clock;
    clock.start();
    if (!session.selectAllRecords() || session.scanDatabase().kind != tp::ScanOutcome::Found)
        return run;
    run.scanSeconds = double(clock.nsecsElapsed()) / 1e9;
    if (!file.isEmpty()) {
        session.setDateFormat(true);
        session.setTimeFormat(true);
        run.result = session.saveExportFile(file);
    }
    db.DB_Close();
    run.ok = true;
    return run;
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    QTemporaryDir dir;
    const QString ours = QDir(dir.path()).filePath(QStringLiteral("ours.db"));
    const QString peer = QDir(dir.path()).filePath(QStringLiteral("peer.db"));
    const QString scan = QDir(dir.path()).filePath(QStringLiteral("scan.db"));
    tp::globals().SettingsFileName = QStringLiteral("KRV.ini");

    const tp::DemoOptions options = recordFreeDemo(kEmployees);
    QString error;
    if (!tp::createDemoDatabase(ours, options, &error) || !QFile::copy(ours, scan)
        || !fillTimeRecords(ours, kRecords, &error) || !QFile::copy(ours, peer)
        || !fillTimeRecords(scan, kScanRecords, &error)) {
        std::fprintf(stderr, "cannot build the databases: %s\n", qPrintable(error));
        return 1;
    }

    const SessionRun scanRun = exportThroughSession(scan, QString());
    if (!scanRun.ok) {
        std::fprintf(stderr, "the scan of %d records failed\n", kScanRecords);
        return 1;
    }
    std::printf("scan: %d waiting records, count and first 20 rows in %.3fs\n", kScanRecords,
                scanRun.scanSeconds);

    QElapsedTimer clock;
    clock.start();
    const QString oursTxt = QDir(dir.path()).filePath(QStringLiteral("ours.txt"));
    const SessionRun run = exportThroughSession(ours, oursTxt);
    const double oursSeconds = double(clock.nsecsElapsed()) / 1e9;
    if (!run.ok || run.result.outcome != tp::ExportJobResult::Completed || run.result.marked != kRecords
        || bench::countLines(oursTxt) != kRecords + 1) {
        std::fprintf(stderr, "our export failed: %s (marked %lld)\n", qPrintable(run.result.status),
                     static_cast<long long>(run.result.marked));
        return 1;
    }

    // The peer.
    const QString peerCsv = QDir(dir.path()).filePath(QStringLiteral("peer.csv"));
    const double peerSeconds = bench::runSqliteShell(peer, QString::fromLatin1(kPeerScript).arg(peerCsv));
    if (peerSeconds < 0)
        return 1;
    if (bench::countLines(peerCsv) != kRecords + 1) {
        std::fprintf(stderr, "the peer's file is incomplete\n");
        return 1;
    }

    std::printf("records=%d employees=%d file=%lld bytes (peer %lld bytes)\n", kRecords, kEmployees,
                static_cast<long long>(QFileInfo(oursTxt).size()),
                static_cast<long long>(QFileInfo(peerCsv).size()));
    std::printf("export-time: ours=%.3fs peer=%.3fs ratio=%.2f\n", oursSeconds, peerSeconds,
                oursSeconds / peerSeconds);
    return 0;
}
