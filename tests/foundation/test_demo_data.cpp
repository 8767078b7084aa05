#include "demo_generator.h"
#include "foundation/dao.h"
#include "foundation/settings.h"
#include "support/foundation_fixture.h"
#include "support/programs.h"
#include "support/test_databases.h"

#include <QCryptographicHash>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <sqlite3.h>

using namespace tp;

namespace {

// Reads a generated file with the plain C API, independent of the program's own database code:
// the first column of the first row, or with whole set a digest of every row.
QByteArray query(const QString& file, const QString& sql, bool wholeSet = false)
{
    sqlite3* db = nullptr;
    sqlite3_stmt* st = nullptr;
    QCryptographicHash hash(QCryptographicHash::Sha1);
    QByteArray first = "<none>";
    if (sqlite3_open_v2(QFile::encodeName(file).constData(), &db, SQLITE_OPEN_READONLY, nullptr) != SQLITE_OK
        || sqlite3_prepare_v2(db, sql.toUtf8().constData(), -1, &st, nullptr) != SQLITE_OK)
        ADD_FAILURE() << "cannot run " << sql.toStdString() << " on " << file.toStdString();
    for (bool firstRow = true; st && sqlite3_step(st) == SQLITE_ROW; firstRow = false) {
        for (int c = 0; c < sqlite3_column_count(st); ++c)
            hash.addData(QByteArray(reinterpret_cast<const char*>(sqlite3_column_text(st, c))) + '\x1f');
        if (firstRow)
            first = reinterpret_cast<const char*>(sqlite3_column_text(st, 0));
    }
    sqlite3_finalize(st);
    sqlite3_close(db);
    return wholeSet ? hash.result() : first;
}
qint64 number(const QString& file, const QString& sql) { return query(file, sql).toLongLong(); }

const QStringList kTables = {"UserNames", "Permissions", "BranchInfo", "StatesAndProvinces",
                             "ValidTrackerSerialNumbers", "Extra2", "EmployeeInfo", "VehicleInfo",
                             "CustomerInfo", "CommonLocations", "JobTimeRecords", "InventoryHistory",
                             "EmployeeTrackActivity", "GPSCoordinates"};

class DemoDataTest : public ::testing::Test {
protected:
    DemoDataTest()
    {
        o.employees = 12, o.vehicles = 8, o.customers = 6, o.locations = 5;
        o.timeRecords = 400, o.inventoryRecords = 150, o.tracks = 12, o.gpsPoints = 3000, o.seed = 5;
    }
    QString make(const QString& name, DemoSummary* summary = nullptr)
    {
        const QString file = dir.filePath(name);
        QString error;
        EXPECT_TRUE(createDemoDatabase(file, o, &error, summary)) << error.toStdString();
        return file;
    }

    tp::test::ScopedFoundation scope;
    QTemporaryDir dir;
    DemoOptions o;
};

TEST_F(DemoDataTest, SameSeedMakesTheSameRowsAndTheSummaryCountsThem)
{
    DemoSummary s;
    const QString a = make("a.db", &s), b = make("b.db");
    o.seed = 6;
    const QString c = make("c.db");
    for (const QString& t : kTables) {
        const QString all = QStringLiteral("SELECT * FROM %1 ORDER BY rowid").arg(t);
        EXPECT_EQ(query(a, all, true), query(b, all, true)) << t.toStdString();
    }
    EXPECT_NE(query(a, "SELECT * FROM JobTimeRecords", true), query(c, "SELECT * FROM JobTimeRecords", true));

    const std::pair<const char*, qint64> counts[] = {
        {"EmployeeInfo", o.employees}, {"VehicleInfo", o.vehicles}, {"CustomerInfo", o.customers},
        {"CommonLocations", o.locations}, {"JobTimeRecords", o.timeRecords},
        {"InventoryHistory", o.inventoryRecords}, {"EmployeeTrackActivity", o.tracks},
        {"GPSCoordinates", o.gpsPoints},
        {"JobTimeRecords WHERE Approved = 1 AND ExportID = 0", s.timeWaiting},
        {"JobTimeRecords WHERE Approved = 2 AND ExportID = 1", s.timeExported},
        {"JobTimeRecords WHERE Approved = 0 AND ExportID = 0", s.timeUnapproved},
        {"JobTimeRecords WHERE Approved = 1 AND ExportID = 1", s.timeReapproved},
        {"InventoryHistory WHERE Approved = 1 AND ExportID = 0", s.inventoryWaiting},
        {"GPSCoordinates WHERE Longitude = -1 OR Latitude = -1", s.gpsUnusable}};
    for (const auto& [from, rows] : counts)
        EXPECT_EQ(number(a, QStringLiteral("SELECT count(*) FROM ") + from), rows) << from;
    EXPECT_EQ(s.timeRecords(), o.timeRecords);
    EXPECT_EQ(s.inventoryRecords(), o.inventoryRecords);
    EXPECT_GT(s.timeWaiting * s.timeExported * s.gpsUnusable, 0);
}

TEST_F(DemoDataTest, ExistingFilesAreKeptUnlessReplacingIsAsked)
{
    const QString file = dir.filePath("keep.db");
    ASSERT_TRUE(tp::test::writeBytes(file, "not a database"));
    QString error;
    EXPECT_FALSE(createDemoDatabase(file, o, &error));
    EXPECT_TRUE(error.contains(QStringLiteral("exists")));
    EXPECT_EQ(tp::test::readBytes(file), QByteArray("not a database"));
    o.replaceExisting = true;
    ASSERT_TRUE(createDemoDatabase(file, o, &error)) << error.toStdString();
    EXPECT_EQ(number(file, "SELECT count(*) FROM EmployeeInfo"), o.employees);
    o.months = 0;
    EXPECT_FALSE(createDemoDatabase(dir.filePath("bad.db"), o, &error));
    EXPECT_FALSE(QFile::exists(dir.filePath("bad.db")));
}

TEST_F(DemoDataTest, ProgramWritesTheSettingsAndRefusesToOverwriteWithoutForce)
{
    const QString program = QStringLiteral(TP_BINARY_DIR "/tallyport-demo-db");
    if (!QFile::exists(program))
        GTEST_SKIP() << "tallyport-demo-db is not built";
    const QString file = dir.filePath("prog.db"), settings = dir.filePath("settings");
    auto run = [&](const QStringList& args) { return tp::test::runProgram(program, args).exitCode; };
    ASSERT_EQ(run({"--employees", "3", "--gps-points", "50", "--settings-dir", settings, file}), 0);
    for (const char* name : {"KRV.ini", "lumtrek.ini"}) {
        QString value;
        const QString ini = settings + u'/' + QLatin1String(name);
        EXPECT_EQ(GetOneIniKey("PRIMARY", "Field1", value, ini), QString()) << name;
        EXPECT_EQ(value, dir.path() + u'/');
        EXPECT_EQ(GetOneIniKey("PRIMARY", "Field2", value, ini), QString()) << name;
        EXPECT_EQ(value, QStringLiteral("prog.db"));
        for (const char* key : {"SevereError", "MinorError", "FieldPSP", "Field6"})
            EXPECT_EQ(GetOneIniKey("PRIMARY", key, value, ini), QString()) << name << ' ' << key;
        EXPECT_EQ(GetOneIniKey("GPS", "GPSTargetAreaDeviation", value, ini), QString()) << name;
        EXPECT_GT(value.toDouble(), 0) << name;
    }
    EXPECT_EQ(run({"--employees", "5", file}), 1);
    EXPECT_EQ(number(file, "SELECT count(*) FROM EmployeeInfo"), 3);
    EXPECT_EQ(run({"--force", "--employees", "5", file}), 0);
    EXPECT_EQ(number(file, "SELECT count(*) FROM EmployeeInfo"), 5);
    EXPECT_EQ(run({"--employees", "many", file}), 2);
}

TEST_F(DemoDataTest, PostgresGetsTheSameCounts)
{
    if (tp::test::pgTestUrl().isEmpty())
        GTEST_SKIP() << tp::test::kPgSkipMessage;
    tp::test::PgScratchDatabase scratch;
    ASSERT_TRUE(scratch.ok()) << scratch.error().toStdString();
    o.gpsPoints = 400;
    DemoSummary onServer, inFile;
    QString error;
    ASSERT_TRUE(createDemoDatabase(scratch.url(), o, &error)) << error.toStdString();
    EXPECT_FALSE(createDemoDatabase(scratch.url(), o, &error));   // tables there already
    o.replaceExisting = true;
    ASSERT_TRUE(createDemoDatabase(scratch.url(), o, &error, &onServer)) << error.toStdString();
    const QString file = make("same.db", &inFile);
    EXPECT_EQ(onServer.describe().section(u'\n', 0, -2), inFile.describe().section(u'\n', 0, -2));

    cDAO pg;
    ASSERT_TRUE(pg.DB_Connect(scratch.url(), QString(), "Admin", "MarlinGate"));
    for (const QString& t : kTables)
        EXPECT_EQ(pg.Reco_Count(QStringLiteral("Select * from ") + t), number(file, "SELECT count(*) FROM " + t))
            << t.toStdString();
    pg.DB_Close();
}

} // namespace
