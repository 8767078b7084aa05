// GPS export of 2,000,000 usable points (and 1 in 100 more with a -1 fix) received over a month
// by 100 subjects, each an employee with a vehicle driving on 24 days: All Subjects, 8 fields
// with both names and formatted date and time, through the Export session as the window drives
// it (subject list, "All Subjects", date range, scan, formats, "Create File"). Against the
// sqlite3 shell writing the same CSV from the equivalent join.
// Last line: export-gps: ours=<s>s peer=<s>s ratio=<ours/peer> max_rss_mb=<peak MB>
#include "bench_gps_tracks.h"
#include "bench_peer.h"

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

using bench::gps::kSubjects;
using bench::gps::kDaysDriven;
using bench::gps::kUsablePoints;

const char* const kFields[] = {"EmployeeFirstName", "EmployeeLastName", "TrackID", "Longitude",
                               "Latitude", "Date", "Time", "Speed"};

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
    QStringList fields;
    for (const char* name : kFields)
        fields << QLatin1String(name);
    if (!bench::gps::scanMarch(session, feedback, fields, scanSeconds))
        return failed;
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
    const QString database = bench::gps::makeDatabase(dir);
    if (database.isEmpty())
        return 1;

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
