// tallyport-batch on a PostgreSQL site against the same demo data in an SQLite file: the same
// choices give the same bytes and the same marks, and the tool ends cleanly on both engines.
#include "demo_generator.h"
#include "support/programs.h"
#include "support/test_databases.h"

#include "foundation/dao.h"

#include <QDir>
#include <QFile>
#include <gtest/gtest.h>

namespace tp::test {
namespace {

struct Site {
    QTemporaryDir settings;
    QString location;
};

// Without tracks unless options say otherwise.
bool makeSite(Site& site, const QString& location, const QString& dbFolder, const QString& dbName,
              QString* error, DemoOptions options = {.tracks = 0, .gpsPoints = 0})
{
    options.replaceExisting = true;
    site.location = location;
    return createDemoDatabase(location, options, error) &&
           writeDemoSettings(site.settings.path(), dbFolder, dbName, error);
}

// Approved:ExportID counts of a table, e.g. "2:1=80 1:0=528".
QString markCounts(const QString& location, const QString& table = QStringLiteral("JobTimeRecords"))
{
    cDAO db;
    if (!db.DB_Connect(location, QString(), QStringLiteral("Admin"), QString()))
        return QStringLiteral("cannot open");
    QStringList counts;
    RecordsetPtr rs = db.RecSet_Forward(QStringLiteral("Select Approved, ExportID, count(*) from ") + table +
                                        QStringLiteral(" group by Approved, ExportID order by Approved, ExportID"));
    for (; rs && !rs->atEnd(); rs->moveNext())
        counts << QStringLiteral("%1:%2=%3").arg(rs->value(0).toInt()).arg(rs->value(1).toInt())
                      .arg(rs->value(2).toLongLong());
    if (rs)
        db.RS_Close(rs);
    db.DB_Close();
    return counts.join(QLatin1Char(' '));
}

// The same demo data in an SQLite file and in a scratch PostgreSQL database, each with its
// settings folder, and the tool run with the same arguments on both.
class BatchOnPostgres : public ::testing::Test {
protected:
    void SetUp() override
    {
        if (!pg.ok() && pgTestUrl().isEmpty())
            GTEST_SKIP() << kPgSkipMessage;
        ASSERT_TRUE(pg.ok()) << pg.error().toStdString();
    }
    void makeSites(const DemoOptions& options = {.tracks = 0, .gpsPoints = 0})
    {
        QString error;
        const QString file = QDir(files.path()).filePath(QStringLiteral("demo.db"));
        ASSERT_TRUE(makeSite(sqlite, file, files.path(), QStringLiteral("demo.db"), &error, options))
            << error.toStdString();
        const qsizetype cut = pg.url().lastIndexOf(QLatin1Char('/')) + 1;
        ASSERT_TRUE(makeSite(postgres, pg.url(), pg.url().left(cut), pg.url().mid(cut), &error, options))
            << error.toStdString();
    }
    struct Both {
        QByteArray sqliteBytes, postgresBytes;
        QString postgresOut;
    };
    // Runs "export" with arguments and an output file of its own on each site.
    Both exportOnBoth(const QStringList& arguments, const QString& name)
    {
        Both both;
        const QString binary = QStringLiteral(TP_BINARY_DIR "/tallyport-batch");
        const QString liteOut = QDir(files.path()).filePath(QStringLiteral("sqlite-") + name);
        const QString pgOut = QDir(files.path()).filePath(QStringLiteral("postgres-") + name);
        const QStringList command = QStringList{QStringLiteral("export")} + arguments + QStringList{QStringLiteral("--output")};
        const ProgramRun onSqlite = runProgram(binary, command + QStringList{liteOut}, sqlite.settings.path());
        const ProgramRun onPostgres = runProgram(binary, command + QStringList{pgOut}, postgres.settings.path());
        // A crash while closing the connection at exit would show here as -1.
        EXPECT_EQ(onSqlite.exitCode, 0) << name.toStdString() << onSqlite.err.toStdString();
        EXPECT_EQ(onPostgres.exitCode, 0) << name.toStdString() << onPostgres.err.toStdString();
        QFile a(liteOut), b(pgOut);
        EXPECT_TRUE(a.open(QIODevice::ReadOnly) && b.open(QIODevice::ReadOnly)) << name.toStdString();
        both.sqliteBytes = a.readAll();
        both.postgresBytes = b.readAll();
        both.postgresOut = onPostgres.out;
        return both;
    }

    PgScratchDatabase pg;
    QTemporaryDir files;
    Site sqlite, postgres;
};

TEST_F(BatchOnPostgres, SameFileAndMarksAsOnSqliteAndACleanExit)
{
    makeSites();
    ASSERT_EQ(markCounts(sqlite.location), markCounts(postgres.location));
    const Both both = exportOnBoth(
        {"--settings", "KRV.ini", "--user", "1", "--dataset", "Time Data", "--fields",
         "EmployeeNumber=Emp,EmployeeFirstName,EmployeeLastName,Date,Time,OdometerReading,IsTimeInRecord",
         "--from", "01/15/2024", "--to", "01/31/2024", "--format-time", "--yes"},
        QStringLiteral("time.txt"));
    EXPECT_EQ(both.postgresOut, QStringLiteral("Export Completed Successfully\n"));
    EXPECT_GT(both.sqliteBytes.count("\r\n"), 50);
    EXPECT_EQ(both.postgresBytes, both.sqliteBytes);
    EXPECT_EQ(markCounts(postgres.location), markCounts(sqlite.location));
}

// Inventory, map locations (KRV.ini) and pinpoints (lumtrek.ini): the same bytes from both
// engines, and the same inventory marks.
TEST_F(BatchOnPostgres, OtherDataSetsGiveTheSameFilesAsOnSqlite)
{
    makeSites();
    const QString inventory = QStringLiteral("InventoryHistory");
    const QString before = markCounts(sqlite.location, inventory);
    ASSERT_EQ(markCounts(postgres.location, inventory), before);

    const std::pair<QStringList, const char*> runs[] = {
        {{"--settings", "KRV.ini", "--user", "1", "--dataset", "Inventory Data", "--fields",
          "InventoryHistoryID,EmployeeFirstName,EmployeeLastName,UsedQuantity,Date,Time", "--format-date", "--yes"},
         "inventory.txt"},
        {{"--settings", "KRV.ini", "--user", "1", "--dataset", "Map Locations Data", "--fields",
          "LocationNumber,LocationName,Address2,ZipCode,Longitude,Latitude,BranchNumber"},
         "map.txt"},
        {{"--settings", "lumtrek.ini", "--user", "3", "--dataset", "Pinpoint Data", "--fields",
          "PinpointName,Address1,City,Longitude,Latitude"},
         "pinpoints.txt"}};
    for (const auto& [arguments, name] : runs) {
        const Both both = exportOnBoth(arguments, QLatin1String(name));
        EXPECT_GT(both.sqliteBytes.count("\r\n"), 20) << name;
        EXPECT_EQ(both.postgresBytes, both.sqliteBytes) << name;
    }
    EXPECT_EQ(markCounts(postgres.location, inventory), markCounts(sqlite.location, inventory));
    // The waiting movements were marked on both.
    EXPECT_NE(markCounts(sqlite.location, inventory), before);
}

// The demo's tracks (a vehicle out without a driver, a driver with a second vehicle, lost fixes)
// exported for all subjects give the same file from both engines.
TEST_F(BatchOnPostgres, GpsDataOfAllSubjectsIsTheSameFileAsOnSqlite)
{
    makeSites({.timeRecords = 0, .inventoryRecords = 0, .tracks = 60, .gpsPoints = 3000});
    const Both both = exportOnBoth(
        {"--settings", "lumtrek.ini", "--user", "1", "--dataset", "GPS Data", "--fields",
         "Assigned To,Unit Identifier,TrackID,Longitude,Latitude,Time,Date,Speed", "--from", "11/01/2023",
         "--to", "02/29/2024", "--subject", "all", "--format-date", "--format-time", "--yes"},
        QStringLiteral("gps.txt"));
    const QByteArray& bytes = both.sqliteBytes;
    EXPECT_EQ(both.postgresOut, QStringLiteral("Export Completed Successfully\n"));
    // Every point but the lost fixes (about one in a hundred), and none of them.
    EXPECT_GT(bytes.count("\r\n"), 2900);
    EXPECT_LT(bytes.count("\r\n"), 3001);
    EXPECT_FALSE(bytes.contains(",-1,"));
    EXPECT_TRUE(bytes.contains("\"UnAssigned Individual\""));
    EXPECT_EQ(both.postgresBytes, bytes);
}

} // namespace
} // namespace tp::test
