// The Import window on a PostgreSQL site: the list, a scan and an import land as on SQLite.
#include "demo_generator.h"
#include "foundation/dao.h"
#include "foundation/globals.h"
#include "import/frmImport.h"
#include "startup/startup.h"
#include "support/foundation_fixture.h"
#include "support/demo_site.h"
#include "support/gui_app.h"
#include "support/test_databases.h"

#include <QDir>
#include <QLineEdit>
#include <QPushButton>
#include <QTableWidget>
#include <gtest/gtest.h>

namespace tp::test {
namespace {

const auto* const kPgGui = ::testing::AddGlobalTestEnvironment(new GuiEnvironment);

QString readRows(const QString& location, const QString& sql)
{
    return queryRows(location, sql, QLatin1Char(':'), QLatin1Char('|'));
}

TEST(ImportWindowOnPostgres, MapLocationsScannedAndImportedWithApostrophesIntact)
{
    PgScratchDatabase pg;
    if (!pg.ok() && pgTestUrl().isEmpty())
        GTEST_SKIP() << kPgSkipMessage;
    ASSERT_TRUE(pg.ok()) << pg.error().toStdString();

    ScopedFoundation foundation;
    ScopedSettingsDir settings;
    DemoOptions options;
    options.employees = 6, options.vehicles = 4, options.customers = 4, options.locations = 3;
    options.timeRecords = 0, options.inventoryRecords = 0, options.tracks = 0, options.gpsPoints = 0;
    options.replaceExisting = true;
    QString error;
    ASSERT_TRUE(createDemoDatabase(pg.url(), options, &error)) << error.toStdString();
    const qsizetype cut = pg.url().lastIndexOf(QLatin1Char('/')) + 1;
    ASSERT_TRUE(writeDemoSettings(settings.path(), pg.url().left(cut), pg.url().mid(cut), &error))
        << error.toStdString();
    ASSERT_FALSE(RunStartup(QStringLiteral("x,KRV.ini,true,1")).fatal);
    ASSERT_NE(SharedDatabase(), nullptr);
    ASSERT_TRUE(SharedDatabase()->isPostgres());

    QTemporaryDir files;
    const QString file = QDir(files.path()).filePath(QStringLiteral("pg-locations.txt"));
    ASSERT_TRUE(writeBytes(file, "locationname,BRANCHNUMBER,Address1,City\r\n"
                                 "PG Depot,1,1 Main St,Chicago\r\n"
                                 "PG Bob's' OR 'a' -- x,2,2 Side St,Gary\r\n"));
    ui::ScriptedFileDialog dialogs;
    dialogs.names.push_back(file);
    frmImport window(*SharedDatabase(), nullptr, &foundation.feedback, &dialogs);
    window.show();
    QApplication::processEvents();
    ASSERT_EQ(window.offeredCount(), 4);
    ASSERT_TRUE(window.chooseDataSet(QStringLiteral("Map Locations Data")));
    EXPECT_EQ(window.fields().maxRows(), 9);
    EXPECT_TRUE(window.fields().isLocked(1, 2));   // the demo has branches
    clickCheckBox(window.findChild<QTableWidget*>(QStringLiteral("fpFields")), 1, 5);
    window.findChild<QPushButton*>(QStringLiteral("cmdGetFile"))->click();
    window.findChild<QPushButton*>(QStringLiteral("cmdOk"))->click();
    ASSERT_TRUE(foundation.feedback.messages().isEmpty()) << foundation.feedback.messages().join("\n").toStdString();
    EXPECT_TRUE(window.formatText().contains(QStringLiteral("2 , ''PG Bob's' OR 'a' -- x'' , "
                                                            "''2 Side St'' , ''Gary''")))
        << window.formatText().toStdString();
    auto* importButton = window.findChild<QPushButton*>(QStringLiteral("cmdImportToDB"));
    ASSERT_TRUE(importButton->isEnabled());
    importButton->click();
    EXPECT_EQ(window.statusBar().text(),
              QStringLiteral("Importing File ''pg-locations.txt'' Completed Successfully"));
    EXPECT_EQ(readRows(pg.url(), QStringLiteral("Select BranchNumber, LocationName, Address1, City from "
                                                "CommonLocations where LocationName like 'PG %' "
                                                "order by CommonLocationNumber")),
              QStringLiteral("1:PG Depot:1 Main St:Chicago|2:PG Bob's' OR 'a' -- x:2 Side St:Gary"));
    EXPECT_GT(readRows(pg.url(), QStringLiteral("Select count(*) from BranchInfo")).toInt(), 0);
    window.close();
    SharedDatabase()->DB_Close();
    resetGlobals();
}

} // namespace
} // namespace tp::test
