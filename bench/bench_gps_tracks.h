#pragma once
// The GPS benchmarks' data: 2,000,000 usable points (and 1 in 100 more with a -1 fix) received
// in March 2024 by 100 subjects, each an employee with a vehicle driving on 24 days (2,400
// tracks, under the subject list's limit of 2,500), and the Export window's road to them:
// "GPS Data", the fields, "All Subjects", the month, "Scan Database".
#include "bench_demo.h"
#include "export/export_session.h"
#include "export/track_subjects.h"
#include "foundation/dao.h"
#include "foundation/feedback.h"
#include "foundation/globals.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>
#include <QStringList>
#include <sqlite3.h>

#include <cmath>
#include <cstdio>
#include <vector>

namespace bench::gps {

constexpr int kSubjects = 100;
constexpr int kDaysDriven = 24;   // of the 31 days of March: 2,400 tracks, under the list's limit
constexpr qint64 kUsablePoints = 2000000;

inline std::vector<int> numbers(sqlite3* db, const char* sql)
{
    std::vector<int> out;
    sqlite3_stmt* st = nullptr;
    sqlite3_prepare_v2(db, sql, -1, &st, nullptr);
    while (sqlite3_step(st) == SQLITE_ROW)
        out.push_back(sqlite3_column_int(st, 0));
    sqlite3_finalize(st);
    return out;
}

inline bool fillTracks(const QString& file, QString* error)
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

// A demo database with enough employees and vehicles, and the tracks above.
inline bool buildDatabase(const QString& file, QString* error)
{
    tp::DemoOptions options = recordFreeDemo(kSubjects + 20);
    options.vehicles = kSubjects + 10;
    return tp::createDemoDatabase(file, options, error) && fillTracks(file, error);
}

// The database in folder, under "KRV.ini"; empty (told on standard error) when it could not be
// made.
inline QString makeDatabase(const QTemporaryDir& folder)
{
    const QString database = QDir(folder.path()).filePath(QStringLiteral("gps.db"));
    tp::globals().SettingsFileName = QStringLiteral("KRV.ini");
    QString error;
    if (buildDatabase(database, &error))
        return database;
    std::fprintf(stderr, "cannot build the database: %s\n", qPrintable(error));
    return QString();
}

// The window's road from choosing "GPS Data" to a scan of every subject's March; false when a
// step went otherwise. scanSeconds: how long the scan took.
inline bool scanMarch(tp::ExportSession& session, tp::Feedback& feedback, const QStringList& fields,
                      double& scanSeconds)
{
    session.offeredDataSets();
    if (!session.selectDataSet(tp::kListGps) || session.AvailabilityResult != 1)
        return false;
    for (const QString& name : fields)
        if (!session.tickField(session.fieldRow(name), true))
            return false;
    tp::TrackSubjectList subjects;
    if (!session.selectAllRecords() ||
        !subjects.load(session.database(), feedback, tp::globals().SettingsFileName))
        return false;
    const auto all = subjects.accept(0, feedback);
    if (!all || !session.chooseTrackSubjects(*all) || session.CurrentTrackSubject != kSubjects
        || !session.selectRecordsByDate())
        return false;
    session.setStartDate(QStringLiteral("03/01/2024"));
    QElapsedTimer clock;
    clock.start();
    if (session.setStopDate(QStringLiteral("03/31/2024")) != tp::DateRange::Valid
        || session.scanDatabase().kind != tp::ScanOutcome::Found)
        return false;
    scanSeconds = double(clock.nsecsElapsed()) / 1e9;
    return true;
}

} // namespace bench::gps
