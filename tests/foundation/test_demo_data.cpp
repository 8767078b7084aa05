#include "demo_generator.h"
#include "foundation/dao.h"
#include "foundation/settings.h"
#include "support/foundation_fixture.h"
#include "support/programs.h"
#include "support/test_databases.h"

#include <QCryptographicHash>
#include <QDate>
#include <QDir>
#include <QFile>
#include <QSet>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <sqlite3.h>

using namespace tp;

namespace {

// Reads a generated file with the plain C API, independent of the program's own database code.
class Reader {
public:
    explicit Reader(const QString& file)
    {
        if (sqlite3_open_v2(QFile::encodeName(file).constData(), &m_db, SQLITE_OPEN_READONLY, nullptr) != SQLITE_OK) {
            sqlite3_close(m_db);
            m_db = nullptr;
        }
    }
    ~Reader() { sqlite3_close(m_db); }
    bool ok() const { return m_db != nullptr; }

    QList<QStringList> rows(const QString& sql) const
    {
        QList<QStringList> out;
        sqlite3_stmt* st = nullptr;
        if (!m_db || sqlite3_prepare_v2(m_db, sql.toUtf8().constData(), -1, &st, nullptr) != SQLITE_OK) {
            ADD_FAILURE() << "cannot run " << sql.toStdString();
            return out;
        }
        while (sqlite3_step(st) == SQLITE_ROW) {
            QStringList row;
            for (int c = 0; c < sqlite3_column_count(st); ++c)
                row << (sqlite3_column_type(st, c) == SQLITE_NULL
                            ? QStringLiteral("<null>")
                            : QString::fromUtf8(reinterpret_cast<const char*>(sqlite3_column_text(st, c))));
            out << row;
        }
        sqlite3_finalize(st);
        return out;
    }
    qint64 number(const QString& sql) const
    {
        const auto r = rows(sql);
        return r.isEmpty() || r.first().isEmpty() ? -1 : r.first().first().toLongLong();
    }
    QByteArray digest(const QString& table) const
    {
        QCryptographicHash hash(QCryptographicHash::Sha1);
        for (const QStringList& row : rows(QStringLiteral("SELECT * FROM %1 ORDER BY rowid").arg(table)))
            hash.addData(row.join(QChar(0x1f)).toUtf8() + '\n');
        return hash.result();
    }

private:
    sqlite3* m_db = nullptr;
};

const QStringList kTables = {"UserNames", "Permissions", "BranchInfo", "StatesAndProvinces",
                             "ValidTrackerSerialNumbers", "Extra2", "EmployeeInfo", "VehicleInfo",
                             "CustomerInfo", "CommonLocations", "JobTimeRecords", "InventoryHistory",
                             "EmployeeTrackActivity", "GPSCoordinates"};

DemoOptions smallOptions()
{
    DemoOptions o;
    o.employees = 12;
    o.vehicles = 8;
    o.customers = 6;
    o.locations = 5;
    o.timeRecords = 400;
    o.inventoryRecords = 150;
    o.tracks = 12;
    o.gpsPoints = 3000;
    o.seed = 5;
    return o;
}

class DemoDataTest : public ::testing::Test {
protected:
    QString make(const QString& name, const DemoOptions& o, DemoSummary* summary = nullptr)
    {
        const QString file = dir.filePath(name);
        QString error;
        EXPECT_TRUE(createDemoDatabase(file, o, &error, summary)) << error.toStdString();
        return file;
    }

    tp::test::ScopedFoundation scope;
    QTemporaryDir dir;
};

TEST_F(DemoDataTest, SameSeedMakesTheSameRowsAndOtherCountsLeaveOtherTablesAlone)
{
    DemoOptions o = smallOptions();
    const Reader a(make("a.db", o)), b(make("b.db", o));
    o.seed = 6;
    const Reader c(make("c.db", o));
    o.seed = 5;
    o.gpsPoints = 700;
    o.timeRecords = 40;
    const Reader d(make("d.db", o));
    ASSERT_TRUE(a.ok() && b.ok() && c.ok() && d.ok());
    for (const QString& t : kTables)
        EXPECT_EQ(a.digest(t), b.digest(t)) << t.toStdString();
    EXPECT_NE(a.digest("EmployeeInfo"), c.digest("EmployeeInfo"));
    EXPECT_NE(a.digest("GPSCoordinates"), c.digest("GPSCoordinates"));
    for (const char* t : {"EmployeeInfo", "VehicleInfo", "CustomerInfo", "CommonLocations", "EmployeeTrackActivity"})
        EXPECT_EQ(a.digest(t), d.digest(t)) << t;
}

TEST_F(DemoDataTest, RowCountsMatchTheOptionsAndTheSummary)
{
    DemoSummary s;
    const DemoOptions o = smallOptions();
    const Reader r(make("demo.db", o, &s));
    const std::pair<const char*, int> counts[] = {
        {"EmployeeInfo", o.employees},        {"VehicleInfo", o.vehicles},
        {"CustomerInfo", o.customers},        {"CommonLocations", o.locations},
        {"JobTimeRecords", o.timeRecords},    {"InventoryHistory", o.inventoryRecords},
        {"EmployeeTrackActivity", o.tracks},  {"GPSCoordinates", o.gpsPoints}};
    for (const auto& [table, rows] : counts)
        EXPECT_EQ(r.number(QStringLiteral("SELECT count(*) FROM ") + table), rows) << table;
    EXPECT_EQ(s.timeRecords(), o.timeRecords);
    EXPECT_EQ(s.inventoryRecords(), o.inventoryRecords);
    EXPECT_EQ(s.gpsPoints, o.gpsPoints);
    EXPECT_EQ(r.number("SELECT count(*) FROM JobTimeRecords WHERE Approved = 1 AND ExportID = 0"), s.timeWaiting);
    EXPECT_EQ(r.number("SELECT count(*) FROM JobTimeRecords WHERE Approved = 2 AND ExportID = 1"), s.timeExported);
    EXPECT_EQ(r.number("SELECT count(*) FROM JobTimeRecords WHERE Approved = 0 AND ExportID = 0"), s.timeUnapproved);
    EXPECT_EQ(r.number("SELECT count(*) FROM JobTimeRecords WHERE Approved = 1 AND ExportID = 1"), s.timeReapproved);
    EXPECT_EQ(r.number("SELECT count(*) FROM InventoryHistory WHERE Approved = 1 AND ExportID = 0"), s.inventoryWaiting);
    EXPECT_EQ(r.number("SELECT count(*) FROM GPSCoordinates WHERE Longitude = -1 OR Latitude = -1"), s.gpsUnusable);
    EXPECT_TRUE(s.describe().contains(QStringLiteral("3000 GPS points")));
}

TEST_F(DemoDataTest, EveryExportStateOccursAndRecentRecordsWait)
{
    DemoSummary s;
    const Reader r(make("demo.db", smallOptions(), &s));
    for (int n : {s.timeWaiting, s.timeExported, s.timeUnapproved, s.timeReapproved, s.inventoryWaiting,
                  s.inventoryExported, s.inventoryUnapproved, s.inventoryReapproved})
        EXPECT_GT(n, 0);
    for (const char* table : {"JobTimeRecords", "InventoryHistory"}) {
        EXPECT_EQ(r.number(QStringLiteral("SELECT count(*) FROM %1 WHERE NOT ((Approved = 1 AND ExportID IN (0, 1)) "
                                          "OR (Approved = 2 AND ExportID = 1) OR (Approved = 0 AND ExportID = 0))")
                               .arg(table)),
                  0)
            << table;
        // Waiting records are the newer ones: none older than the oldest exported one.
        EXPECT_GT(r.number(QStringLiteral("SELECT min(Date) FROM %1 WHERE Approved = 1 AND ExportID = 0").arg(table)),
                  r.number(QStringLiteral("SELECT min(Date) FROM %1 WHERE Approved = 2").arg(table)));
    }
    // The four truth columns: exactly one true per time record, stored as -1.
    EXPECT_EQ(r.number("SELECT count(*) FROM JobTimeRecords WHERE IsJobInRecord + IsTimeInRecord + IsJobOutRecord "
                       "+ IsTimeOutRecord <> -1"),
              0);
}

TEST_F(DemoDataTest, DatesAreWorkingDaysInRangeAndTimesAreClockNumbers)
{
    DemoSummary s;
    DemoOptions o = smallOptions();
    o.firstDate = 20041201;
    o.months = 2;
    const Reader r(make("demo.db", o, &s));
    EXPECT_EQ(s.firstDate, 20041201);
    EXPECT_EQ(s.lastDate, 20050131);
    const QString dated = QStringLiteral("SELECT Date, Time FROM JobTimeRecords UNION ALL SELECT Date, Time FROM "
                                         "InventoryHistory UNION ALL SELECT RcvDate, RcvTime FROM GPSCoordinates");
    QSet<QString> days;
    for (const QStringList& row : r.rows(dated)) {
        const QDate d = QDate::fromString(row[0], QStringLiteral("yyyyMMdd"));
        ASSERT_TRUE(d.isValid()) << row[0].toStdString();
        EXPECT_LE(d.dayOfWeek(), 5) << row[0].toStdString();
        EXPECT_GE(row[0].toInt(), 20041201);
        EXPECT_LE(row[0].toInt(), 20050131);
        const int t = row[1].toInt();
        EXPECT_EQ(row[1], QString::number(t));   // no leading zeros
        EXPECT_TRUE(t >= 0 && t / 10000 < 24 && t / 100 % 100 < 60 && t % 100 < 60) << t;
        days.insert(row[0]);
    }
    EXPECT_TRUE(days.contains(QStringLiteral("20041231")) || days.contains(QStringLiteral("20050103")));
    EXPECT_GT(days.size(), 30);
}

TEST_F(DemoDataTest, TracksHoldOrderedPointsOfTheirDayWithSomeUnusableFixes)
{
    DemoSummary s;
    const Reader r(make("demo.db", smallOptions(), &s));
    EXPECT_GT(s.gpsUnusable, 0);
    EXPECT_EQ(r.number("SELECT count(*) FROM GPSCoordinates g JOIN EmployeeTrackActivity t ON t.TrackID = g.TrackID "
                       "WHERE g.RcvDate <> t.TrackingDate"),
              0);
    EXPECT_EQ(r.number("SELECT count(*) FROM GPSCoordinates WHERE TrackStartStop = 1"), 12);
    EXPECT_EQ(r.number("SELECT count(DISTINCT TrackID) FROM GPSCoordinates"), 12);
    // Within a track the clock only moves forward.
    EXPECT_EQ(r.number("SELECT count(*) FROM GPSCoordinates a JOIN GPSCoordinates b ON b.TrackID = a.TrackID "
                       "AND b.rowid = a.rowid + 1 WHERE b.RcvTime < a.RcvTime"),
              0);
    EXPECT_EQ(r.number("SELECT count(*) FROM GPSCoordinates WHERE Longitude <> -1 AND Latitude <> -1 AND "
                       "(Longitude NOT BETWEEN -180 AND 180 OR Latitude NOT BETWEEN -90 AND 90)"),
              0);
    // Subjects for the track picker: a driverless vehicle, and a driver with two vehicles.
    EXPECT_GT(r.number("SELECT count(*) FROM EmployeeTrackActivity WHERE EmployeeNumber = 0"), 0);
    EXPECT_GT(r.number("SELECT count(*) FROM (SELECT EmployeeNumber FROM EmployeeTrackActivity WHERE EmployeeNumber > 0 "
                       "GROUP BY EmployeeNumber HAVING count(DISTINCT VehicleNumber) > 1)"),
              0);
    EXPECT_GT(r.number("SELECT max(n) FROM (SELECT count(*) n FROM EmployeeTrackActivity GROUP BY EmployeeNumber, "
                       "VehicleNumber)"),
              1);
}

TEST_F(DemoDataTest, MasterDataAgreesWithTheLookupTablesAndColumnWidths)
{
    const Reader r(make("demo.db", smallOptions()));
    EXPECT_EQ(r.number("SELECT count(*) FROM VehicleInfo WHERE TrackerSerialNumber NOT IN "
                       "(SELECT TrackerSerialNumber FROM ValidTrackerSerialNumbers)"),
              0);
    EXPECT_EQ(r.number("SELECT count(*) FROM VehicleInfo WHERE CAST(Field1 AS INTEGER) NOT IN (SELECT UniqueID FROM Extra2)"), 0);
    for (const char* table : {"EmployeeInfo", "CustomerInfo", "CommonLocations"}) {
        EXPECT_EQ(r.number(QStringLiteral("SELECT count(*) FROM %1 WHERE State NOT IN "
                                          "(SELECT GTKRVAbbreviation FROM StatesAndProvinces)").arg(table)), 0);
        EXPECT_EQ(r.number(QStringLiteral("SELECT count(*) FROM %1 WHERE BranchNumber NOT IN "
                                          "(SELECT BranchNumber FROM BranchInfo)").arg(table)), 0);
    }
    EXPECT_EQ(r.number("SELECT count(*) FROM StatesAndProvinces WHERE GTKRVAbbreviation <> upper(GTKRVAbbreviation) "
                       "OR length(GTKRVAbbreviation) <> 2"),
              0);
    EXPECT_EQ(r.number("SELECT count(*) FROM JobTimeRecords j JOIN EmployeeInfo e ON e.EmployeeNumber = j.EmployeeNumber "
                       "WHERE e.FirstName <> j.EmployeeFirstName OR e.LastName <> j.EmployeeLastName"),
              0);
    EXPECT_EQ(r.number("SELECT count(*) FROM EmployeeInfo WHERE Name <> FirstName || ' ' || LastName"), 0);
    // Every text fits the width its column declares, as the import expects.
    for (const QString& table : kTables) {
        for (const QStringList& col : r.rows(QStringLiteral("PRAGMA table_info(%1)").arg(table))) {
            const QString type = col[2];
            if (!type.startsWith(QLatin1String("VARCHAR(")))
                continue;
            const int width = type.mid(8).chopped(1).toInt();
            EXPECT_EQ(r.number(QStringLiteral("SELECT count(*) FROM %1 WHERE length(%2) > %3").arg(table, col[1]).arg(width)),
                      0)
                << table.toStdString() << '.' << col[1].toStdString();
        }
    }
    // Users: an administrator, one with some rights, one with none.
    EXPECT_EQ(r.rows("SELECT UserID, Administrator FROM UserNames ORDER BY UserID"),
              (QList<QStringList>{{"1", "-1"}, {"2", "0"}, {"3", "0"}}));
    EXPECT_EQ(r.number("SELECT count(*) FROM Permissions WHERE UserID = 2 AND CanView <> 0 AND FormID IN (31, 11)"), 2);
}

TEST_F(DemoDataTest, ExistingFilesAreKeptUnlessReplacingIsAsked)
{
    const QString file = dir.filePath("keep.db");
    ASSERT_TRUE(tp::test::writeBytes(file, "not a database"));
    QString error;
    EXPECT_FALSE(createDemoDatabase(file, smallOptions(), &error));
    EXPECT_TRUE(error.contains(QStringLiteral("exists")));
    EXPECT_EQ(tp::test::readBytes(file), QByteArray("not a database"));

    DemoOptions o = smallOptions();
    o.replaceExisting = true;
    ASSERT_TRUE(createDemoDatabase(file, o, &error)) << error.toStdString();
    EXPECT_EQ(Reader(file).number("SELECT count(*) FROM UserNames"), 3);

    EXPECT_FALSE(createDemoDatabase(dir.filePath("no/such/folder/x.db"), smallOptions(), &error));
    o.months = 0;
    EXPECT_FALSE(createDemoDatabase(dir.filePath("bad.db"), o, &error));
    EXPECT_FALSE(QFile::exists(dir.filePath("bad.db")));
    EXPECT_FALSE(QFile::exists(dir.filePath("bad.db.part")));
    EXPECT_EQ(Reader(file).number("SELECT count(*) FROM UserNames"), 3);
}

TEST_F(DemoDataTest, SettingsFilesPointAtTheDatabase)
{
    tp::test::ScopedSettingsDir settings;
    QString error;
    ASSERT_TRUE(writeDemoSettings(settings.path(), QStringLiteral("/srv/fleet"), QStringLiteral("fleet.db"), &error))
        << error.toStdString();
    for (const char* name : {"KRV.ini", "lumtrek.ini"}) {
        QString value;
        EXPECT_EQ(GetOneIniKey("PRIMARY", "Field1", value, QString::fromLatin1(name)), QString());
        EXPECT_EQ(value, QStringLiteral("/srv/fleet/"));
        EXPECT_EQ(GetOneIniKey("PRIMARY", "Field2", value, QString::fromLatin1(name)), QString());
        EXPECT_EQ(value, QStringLiteral("fleet.db"));
        for (const char* key : {"SevereError", "MinorError", "FieldPSP", "Field6"})
            EXPECT_EQ(GetOneIniKey("PRIMARY", key, value, QString::fromLatin1(name)), QString()) << key;
        EXPECT_EQ(GetOneIniKey("GPS", "GPSTargetAreaDeviation", value, QString::fromLatin1(name)), QString());
        EXPECT_GT(value.toDouble(), 0);
    }
    // A server address is not a folder: no separator is added to it.
    ASSERT_TRUE(writeDemoSettings(settings.path(), QStringLiteral("postgresql://fleet@db:5432/"), QStringLiteral("fleet")));
    QString value;
    GetOneIniKey("PRIMARY", "Field1", value);
    EXPECT_EQ(value, QStringLiteral("postgresql://fleet@db:5432/"));
}

TEST_F(DemoDataTest, ProgramRefusesToOverwriteWithoutForce)
{
    const QString program = QStringLiteral(TP_BINARY_DIR "/tallyport-demo-db");
    if (!QFile::exists(program))
        GTEST_SKIP() << "tallyport-demo-db is not built";
    auto run = [&](const QStringList& args, QString* output = nullptr) {
        const tp::test::ProgramRun r = tp::test::runProgram(program, args);
        if (output)
            *output = r.out + r.err;
        return r.exitCode;
    };
    const QString file = dir.filePath("prog.db"), settings = dir.filePath("settings");
    QString output;
    EXPECT_EQ(run({"--employees", "3", "--gps-points", "50", "--settings-dir", settings, file}, &output), 0) << output.toStdString();
    EXPECT_TRUE(output.contains(QStringLiteral("3 employees"))) << output.toStdString();
    EXPECT_TRUE(QFile::exists(settings + QStringLiteral("/KRV.ini")));
    EXPECT_TRUE(QFile::exists(settings + QStringLiteral("/lumtrek.ini")));
    EXPECT_EQ(run({"--employees", "5", file}, &output), 1);
    EXPECT_TRUE(output.contains(QStringLiteral("--force"))) << output.toStdString();
    EXPECT_EQ(Reader(file).number("SELECT count(*) FROM EmployeeInfo"), 3);
    EXPECT_EQ(run({"--force", "--employees", "5", file}), 0);
    EXPECT_EQ(Reader(file).number("SELECT count(*) FROM EmployeeInfo"), 5);
    EXPECT_EQ(run({"--employees", "many", file}), 2);
    EXPECT_EQ(run({"--employees", "0", file}), 2);
    EXPECT_EQ(run({}), 2);
}

// The same seed gives the same rows in PostgreSQL as in SQLite.
TEST_F(DemoDataTest, PostgresGetsTheSameRows)
{
    if (tp::test::pgTestUrl().isEmpty())
        GTEST_SKIP() << tp::test::kPgSkipMessage;
    tp::test::PgScratchDatabase scratch;
    ASSERT_TRUE(scratch.ok()) << scratch.error().toStdString();
    DemoOptions o = smallOptions();
    o.gpsPoints = 400;
    QString error;
    ASSERT_TRUE(createDemoDatabase(scratch.url(), o, &error)) << error.toStdString();
    EXPECT_FALSE(createDemoDatabase(scratch.url(), o, &error));   // tables there already
    o.replaceExisting = true;
    ASSERT_TRUE(createDemoDatabase(scratch.url(), o, &error)) << error.toStdString();
    const QString file = make("same.db", o);

    cDAO pg, lite;
    ASSERT_TRUE(pg.DB_Connect(scratch.url(), QString(), "Admin", "MarlinGate"));
    ASSERT_TRUE(lite.DB_Connect(file, QString(), "Admin", "MarlinGate"));
    const QStringList queries = {"Select * from EmployeeInfo Order By EmployeeNumber",
                                 "Select * from JobTimeRecords Order By NewTimeRecordID",
                                 "Select * from Permissions Order By UserID, FormID",
                                 "Select * from GPSCoordinates Order By TrackID, RcvTime"};
    for (const QString& q : queries) {
        RecordsetPtr a = pg.RecSet_Stat(q), b = lite.RecSet_Stat(q);
        ASSERT_TRUE(a && b) << q.toStdString();
        ASSERT_EQ(a->fieldCount(), b->fieldCount());
        int rows = 0;
        for (; !a->atEnd() && !b->atEnd(); a->moveNext(), b->moveNext(), ++rows)
            for (int c = 0; c < a->fieldCount(); ++c)
                ASSERT_EQ(a->value(c).toString(), b->value(c).toString())
                    << q.toStdString() << " row " << rows << " column " << b->fieldName(c).toStdString();
        EXPECT_TRUE(a->atEnd() && b->atEnd()) << q.toStdString();
        EXPECT_GT(rows, 0);
    }
    pg.DB_Close();
}

} // namespace
