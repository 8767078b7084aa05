// GPS export of 2,000,000 usable points (and 1 in 100 more with a -1 fix) received over a month
// by 100 subjects, each an employee with a vehicle driving on 24 days: All Subjects, 8 fields
// with both names and formatted date and time, through the Export session as the window drives
// it (subject list, "All Subjects", date range, scan, formats, "Create File"). Against the
// sqlite3 shell writing the same CSV from the equivalent join.
// Last line: export-gps: ours=<s>s peer=<s>s ratio=<ours/peer> max_rss_mb=<peak MB>
#include "bench_peer.h"
#include "demo_generator.h"
#include "export/export_session.h"
#include "export/track_subjects.h"
#include "foundation/dao.h"
#include "foundation/feedback.h"
#include "foundation/globals.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <sqlite3.h>
#include <sys/resource.h>

#include <cstdio>
#include <vector>

namespace {

constexpr int kSubjects = 100;
constexpr int kDaysDriven = 24;   // of the 31 days of March: 2,400 tracks, under the list's limit
constexpr qint64 kUsablePoints = 2000000;
const char* const kFields[] = {"EmployeeFirstName", "EmployeeLastName", "TrackID", "Longitude",
                               "Latitude", "Date", "Time", "Speed"};

std::vector<int> numbers(sqlite3* db, const char* sql)
{
    std::vector<int> out;
    sqlite3_stmt* st = nullptr;
    sqlite3_prepare_v2(db, sql, -1, &st, nullptr);
    while (sqlite3_step(st) == SQLITE_ROW)
        out.push_back(sqlite3_column_int(st, 0));
    sqlite3_finalize(st);
    return out;
}

bool fillTracks(const QString& file, QString* error)
{
    sqlite3* db = nullptr;
    if (sqlite3_open(QFile::encodeName(file).constData(), &db) != SQLITE_OK) {
        *error = QStringLiteral("cannot open ") + file;
        return false;
    }
    const std::vector<int> employees = numbers(db, "SELECT EmployeeNumber FROM EmployeeInfo ORDER BY EmployeeNumber");
    const std::vector<int> vehicles = numbers(db, "SELECT VehicleNumber FROM VehicleInfo ORDER BY VehicleNumber");
    if (employees.size() < std::size_t(kSubjects) || vehicles.size() < std::size_t(kSubjects)) {
        *error = QStringLiteral("the demo database has too few employees or vehicles");
        sqlite3_close(db);
        return false;
    }
    sqlite3_exec(db, "DELETE FROM GPSCoordinates; DELETE FROM EmployeeTrackActivity; BEGIN", nullptr, nullptr, nullptr);
    sqlite3_stmt* track = nullptr;
    sqlite3_stmt* point = nullptr;
    sqlite3_prepare_v2(db, "INSERT INTO EmployeeTrackActivity (TrackID, EmployeeNumber, VehicleNumber, "
                           "TrackingDate) VALUES (?, ?, ?, ?)", -1, &track, nullptr);
    sqlite3_prepare_v2(db, "INSERT INTO GPSCoordinates (TrackID, Longitude, Latitude, RcvDate, RcvTime, "
                           "Speed, TimeDeviation, PowerOnOff, TrackStartStop, DownloadID) "
                           "VALUES (?, ?, ?, ?, ?, ?, 0, 1, ?, 1)", -1, &point, nullptr);
    const int tracks = kSubjects * kDaysDriven;
    int trackId = 0;
    for (int s = 0; s < kSubjects; ++s) {
        for (int d = 0; d < kDaysDriven; ++d) {
            ++trackId;
            const int date = 20240301 + (d * 31 / kDaysDriven + s) % 31;
            sqlite3_bind_int(track, 1, trackId);
            sqlite3_bind_int(track, 2, employees[std::size_t(s)]);
            sqlite3_bind_int(track, 3, vehicles[std::size_t(s)]);
            sqlite3_bind_int(track, 4, date);
            sqlite3_step(track);
            sqlite3_reset(track);
            const qint64 usable = kUsablePoints / tracks + (trackId <= kUsablePoints % tracks ? 1 : 0);
            double lat = 40.0 + s * 0.01, lon = -100.0 - d * 0.01;
            qint64 written = 0;
            for (int j = 0; written < usable; ++j) {
                const bool lost = j % 100 == 99;   // the receiver lost its fix
                const int second = 6 * 3600 + j * 30;
                lat += 0.0001;
                lon -= 0.0001;
                sqlite3_bind_int(point, 1, trackId);
                sqlite3_bind_double(point, 2, lost && j % 2 ? -1 : std::round(lon * 1e6) / 1e6);
                sqlite3_bind_double(point, 3, lost && !(j % 2) ? -1 : std::round(lat * 1e6) / 1e6);
                sqlite3_bind_int(point, 4, date);
                sqlite3_bind_int(point, 5, (second / 3600) * 10000 + (second / 60 % 60) * 100 + second % 60);
                sqlite3_bind_double(point, 6, (j % 700) / 10.0);
                if (j == 0)
                    sqlite3_bind_int(point, 7, 1);
                else
                    sqlite3_bind_null(point, 7);
                sqlite3_step(point);
                sqlite3_reset(point);
                written += lost ? 0 : 1;
            }
        }
    }
    sqlite3_finalize(track);
    sqlite3_finalize(point);
    const bool ok = sqlite3_exec(db, "COMMIT", nullptr, nullptr, nullptr) == SQLITE_OK;
    sqlite3_close(db);
    if (!ok)
        *error = QStringLiteral("cannot fill the track tables");
    return ok;
}

// The same file through the sqlite3 shell: every subject's tracks of the month in order.
const char* const kPeerScript =
    ".mode csv\n"
    ".headers on\n"
    ".output %1\n"
    "SELECT coalesce(nullif(e.FirstName, ''), 'Unknown') AS EmployeeFirstName,"
    " coalesce(nullif(e.LastName, ''), 'Unknown') AS EmployeeLastName, g.TrackID, g.Longitude,"
    " g.Latitude,"
    " substr(g.RcvDate, 5, 2) || '/' || substr(g.RcvDate, 7, 2) || '/' || substr(g.RcvDate, 1, 4) AS Date,"
    " printf('%d:%02d:%02d', g.RcvTime / 10000, g.RcvTime / 100 % 100, g.RcvTime % 100) AS Time,"
    " g.Speed"
    " FROM EmployeeTrackActivity t JOIN GPSCoordinates g ON g.TrackID = t.TrackID"
    " LEFT JOIN EmployeeInfo e ON e.EmployeeNumber = t.EmployeeNumber"
    " WHERE t.TrackingDate >= 20240301 AND t.TrackingDate <= 20240331"
    " AND g.Longitude <> -1 AND g.Latitude <> -1"
    " ORDER BY t.EmployeeNumber, t.VehicleNumber, t.TrackingDate, t.TrackID, g.RcvDate, g.RcvTime;\n";

// The window's road through its session, from choosing "GPS Data" to "Create File".
tp::ExportJobResult exportThroughSession(const QString& database, const QString& file,
                                         double& scanSeconds)
{
    tp::ExportJobResult failed;
    tp::cDAO db;
    if (!db.DB_Connect(database, QString(), QStringLiteral("Admin"), QString())) {
        std::fprintf(stderr, "cannot connect: %s\n", qPrintable(db.errorText));
        return failed;
    }
    tp::ScriptedFeedback feedback;
    feedback.defaultYes = true;   // the question about more than 200 records
    tp::ExportSession session(db, feedback);
    session.offeredDataSets();
    if (!session.selectDataSet(tp::kListGps) || session.AvailabilityResult != 1)
        return failed;
    for (const char* name : kFields)
        if (!session.tickField(session.fieldRow(QLatin1String(name)), true))
            return failed;
    tp::TrackSubjectList subjects;
    if (!session.selectAllRecords() || !subjects.load(db, feedback, tp::globals().SettingsFileName))
        return failed;
    const auto all = subjects.accept(0, feedback);
    if (!all || !session.chooseTrackSubjects(*all) || session.CurrentTrackSubject != kSubjects
        || !session.selectRecordsByDate())
        return failed;
    session.setStartDate(QStringLiteral("03/01/2024"));
    QElapsedTimer clock;
    clock.start();
    if (session.setStopDate(QStringLiteral("03/31/2024")) != tp::DateRange::Valid
        || session.scanDatabase().kind != tp::ScanOutcome::Found)
        return failed;
    scanSeconds = double(clock.nsecsElapsed()) / 1e9;
    session.setDateFormat(true);
    session.setTimeFormat(true);
    tp::ExportJobResult result = session.saveExportFile(file);
    db.DB_Close();
    return result;
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    QTemporaryDir dir;
    const QString database = QDir(dir.path()).filePath(QStringLiteral("gps.db"));
    tp::globals().SettingsFileName = QStringLiteral("KRV.ini");

    tp::DemoOptions options;
    options.employees = kSubjects + 20;
    options.vehicles = kSubjects + 10;
    options.timeRecords = 0;
    options.inventoryRecords = 0;
    options.tracks = 0;
    options.gpsPoints = 0;
    QString error;
    if (!tp::createDemoDatabase(database, options, &error) || !fillTracks(database, &error)) {
        std::fprintf(stderr, "cannot build the database: %s\n", qPrintable(error));
        return 1;
    }

    QElapsedTimer clock;
    clock.start();
    const QString oursTxt = QDir(dir.path()).filePath(QStringLiteral("ours.txt"));
    double scanSeconds = 0;
    const tp::ExportJobResult run = exportThroughSession(database, oursTxt, scanSeconds);
    const double oursSeconds = double(clock.nsecsElapsed()) / 1e9;
    if (run.outcome != tp::ExportJobResult::Completed || run.records != kUsablePoints
        || bench::countLines(oursTxt) != kUsablePoints + 1) {
        std::fprintf(stderr, "our export failed: %s (%lld records)\n", qPrintable(run.status),
                     static_cast<long long>(run.records));
        return 1;
    }

    const QString peerCsv = QDir(dir.path()).filePath(QStringLiteral("peer.csv"));
    const double peerSeconds = bench::runSqliteShell(database, QString::fromLatin1(kPeerScript).arg(peerCsv));
    if (peerSeconds < 0)
        return 1;
    if (bench::countLines(peerCsv) != kUsablePoints + 1) {
        std::fprintf(stderr, "the peer's file is incomplete\n");
        return 1;
    }

    rusage usage {};
    getrusage(RUSAGE_SELF, &usage);
    std::printf("scan (count and first 20 rows of all subjects): %.3fs\n", scanSeconds);
    std::printf("points=%lld subjects=%d tracks=%d file=%lld bytes (peer %lld bytes)\n",
                static_cast<long long>(kUsablePoints), kSubjects, kSubjects * kDaysDriven,
                static_cast<long long>(QFileInfo(oursTxt).size()),
                static_cast<long long>(QFileInfo(peerCsv).size()));
    std::printf("export-gps: ours=%.3fs peer=%.3fs ratio=%.2f max_rss_mb=%.1f\n", oursSeconds,
                peerSeconds, oursSeconds / peerSeconds, double(usage.ru_maxrss) / 1024.0);
    return 0;
}
