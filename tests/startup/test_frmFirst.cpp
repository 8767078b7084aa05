// The main window driven headless: start-up states, the Import and Export gates for both
// settings files and for each kind of user, About and Exit.
#include "export/frmExport.h"
#include "foundation/dao.h"
#include "foundation/globals.h"
#include "startup/frmAbout.h"
#include "startup/frmFirst.h"
#include "support/demo_site.h"
#include "support/foundation_fixture.h"
#include "support/gui_app.h"
#include "version.h"

#include <QAction>
#include <QFile>
#include <QFileInfo>
#include <QMenu>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <gtest/gtest.h>

namespace tp {
namespace {

const auto* const kGui = ::testing::AddGlobalTestEnvironment(new test::GuiEnvironment);

QStringList listTexts(QDialog& window)
{
    QStringList out;
    auto* list = window.findChild<QListWidget*>(QStringLiteral("lstTables"));
    for (int i = 0; list && i < list->count(); ++i)
        out << list->item(i)->text();
    return out;
}

class MainWindow : public ::testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(site.ok()) << site.error().toStdString();
        window.prompts = &foundation.feedback;
        window.showModal = [this](QDialog& dialog) {
            ++modalShown;
            EXPECT_TRUE(dialog.isModal());
            EXPECT_EQ(dialog.parentWidget(), &window);
            (dialog.objectName() == QLatin1String("frmImport") ? importOffered : offered) = listTexts(dialog);
        };
        window.endProgram = [this] { ++ended; };
    }

    QPushButton* button(const char* name)
    {
        return window.findChild<QPushButton*>(QString::fromLatin1(name));
    }
    QAction* action(const char* name) { return window.findChild<QAction*>(QString::fromLatin1(name)); }
    QStringList messages() const { return foundation.feedback.messages(); }

    test::ScopedFoundation foundation;
    test::DemoSite site;
    frmFirst window;
    int modalShown = 0;
    int ended = 0;
    QStringList offered;
    QStringList importOffered;
};

TEST_F(MainWindow, CaptionsAndMenus)
{
    auto* file = window.findChild<QMenu*>(QStringLiteral("mnuFile"));
    ASSERT_NE(file, nullptr);
    EXPECT_EQ((QStringList{window.windowTitle(), button("cmdImport")->text(), button("cmdTime")->text(),
                           file->title(), action("mnuExit")->text(), action("mnuAbout")->text()}),
              (QStringList{"Import/Export ", "Import", "Export", "&File", "&Exit", "&About"}));
    EXPECT_FALSE(button("cmdImport")->icon().isNull() || window.windowIcon().isNull());
}

TEST_F(MainWindow, StartUpStatesOfTheButtons)
{
    const struct {
        const char* line;
        bool import, exportOn;
        int messages;
    } cases[] = {
        {"x,KRV.ini,true,1", true, true, 0}, {"x,KRV.ini,TRUE,1", true, true, 0},
        {"x,KRV.ini,True,1", true, true, 0}, {"x,KRV.ini,False,1", true, false, 0},
        {"x,KRV.ini,0,1", true, false, 0},   {"x,KRV.ini,yes,1", false, false, 1},
        {"x,KRV.ini,true", false, false, 1}, {"", false, false, 0},
    };
    for (const auto& c : cases) {
        resetGlobals();
        foundation.feedback.shown.clear();
        const StartupOutcome outcome = window.load(QString::fromLatin1(c.line));
        EXPECT_FALSE(outcome.fatal) << c.line;
        EXPECT_EQ(button("cmdImport")->isEnabled(), c.import) << c.line;
        EXPECT_EQ(button("cmdTime")->isEnabled(), c.exportOn) << c.line;
        EXPECT_EQ(int(foundation.feedback.shown.size()), c.messages) << c.line;
    }
}

TEST_F(MainWindow, UsersWithRightsPassBothGatesAndSeeTheirDataSets)
{
    const QStringList all = {"Time Data", "Inventory Data", "GPS Data", "Map Locations Data"};
    const QStringList allImports = {"Customer Data", "Employee Data", "Vehicle Data", "Map Locations Data"};
    const struct {
        const char* line;
        QStringList dataSets, imports;
    } cases[] = {
        {"x,KRV.ini,true,1", all, allImports},
        {"x,KRV.ini,true,2", {"Time Data"}, {"Vehicle Data"}},   // "IMP" on form 12, "EXP2" on form 11
        // The other settings file checks no rights; "krv.ini" is another settings file too.
        {"x,lumtrek.ini,true,3", {"GPS Data", "Pinpoint Data"}, {"Pinpoints Data"}},
        {"x,krv.ini,true,3", {"GPS Data", "Pinpoint Data"}, {"Pinpoints Data"}},
    };
    site.writeSettings("krv.ini", "[PRIMARY]\r\nField1=" +
                                      QFile::encodeName(QFileInfo(site.databaseFile()).absolutePath()) +
                                      "/\r\nField2=primary.db\r\n");
    for (const auto& [line, dataSets, imports] : cases) {
        SCOPED_TRACE(line);
        resetGlobals();
        modalShown = 0;
        window.load(QString::fromLatin1(line));
        button("cmdImport")->click();
        button("cmdTime")->click();
        EXPECT_TRUE(messages().isEmpty());
        EXPECT_EQ(modalShown, 2);
        EXPECT_EQ(offered, dataSets);
        EXPECT_EQ(importOffered, imports);
        EXPECT_TRUE(button("cmdImport")->isEnabled());
        EXPECT_TRUE(button("cmdTime")->isEnabled());
    }
}

TEST_F(MainWindow, NoRightsGetTheRefusalAndLoseTheButtons)
{
    window.load(QStringLiteral("x,KRV.ini,true,3"));
    button("cmdImport")->click();
    ASSERT_EQ(foundation.feedback.shown.size(), 1u);
    const auto& refusal = foundation.feedback.shown[0];
    EXPECT_EQ(refusal.code, 0);
    EXPECT_EQ(refusal.title, QStringLiteral("Tallyport Import/Export"));
    EXPECT_EQ(refusal.text, QStringLiteral("You do not have the appropriate user\rsecurity rights for "
                                           "this functionality.\rPlease, see your System Administrator."));
    EXPECT_FALSE(button("cmdImport")->isEnabled());
    EXPECT_TRUE(button("cmdTime")->isEnabled());

    button("cmdTime")->click();
    EXPECT_EQ(messages(), (QStringList{kRefusalText, kRefusalText}));
    EXPECT_FALSE(button("cmdTime")->isEnabled());
    EXPECT_EQ(modalShown, 0);
}

TEST_F(MainWindow, RightsAreReadAgainAtEveryClick)
{
    window.load(QStringLiteral("x,KRV.ini,true,2"));
    button("cmdTime")->click();
    EXPECT_EQ(modalShown, 1);
    ASSERT_TRUE(SharedDatabase());
    SharedDatabase()->Exec(QStringLiteral("Delete from Permissions where UserID=2"));
    ASSERT_EQ(SharedDatabase()->appError, 0);
    button("cmdTime")->click();
    EXPECT_EQ(modalShown, 1);
    EXPECT_EQ(messages(), QStringList{kRefusalText});
    EXPECT_FALSE(button("cmdTime")->isEnabled());
}

TEST_F(MainWindow, OtherSettingsFileNeedsLocationsForExport)
{
    ASSERT_TRUE(site.exec(QStringLiteral("Delete from CommonLocations")));
    window.load(QStringLiteral("x,lumtrek.ini,true,1"));
    button("cmdTime")->click();
    EXPECT_EQ(modalShown, 0);
    ASSERT_EQ(foundation.feedback.shown.size(), 1u);
    EXPECT_EQ(foundation.feedback.shown[0].text, QStringLiteral("There are no Common Location Records Available."));
    EXPECT_EQ(foundation.feedback.shown[0].code, 0);
    EXPECT_TRUE(button("cmdTime")->isEnabled());
    // Import opens without a gate.
    button("cmdImport")->click();
    EXPECT_EQ(foundation.feedback.shown.size(), 1u);
    EXPECT_EQ(modalShown, 1);
    EXPECT_EQ(importOffered, QStringList{"Pinpoints Data"});
}

TEST_F(MainWindow, HostileUserIdNeverPasses)
{
    window.load(QStringLiteral("x,KRV.ini,true,3 or 1=1"));
    EXPECT_FALSE(IsAdministrator());
    button("cmdImport")->click();
    EXPECT_EQ(messages(), QStringList{kRefusalText});
}

TEST_F(MainWindow, ClosingEndsTheProgramAndClearsTheDatabaseFlag)
{
    window.load(QStringLiteral("x,KRV.ini,true,1"));
    window.show();
    EXPECT_TRUE(globals().DatabaseOpen);
    window.close();
    EXPECT_FALSE(globals().DatabaseOpen);
    EXPECT_EQ(ended, 1);
}

// About and Exit work even after a refused start.
TEST_F(MainWindow, AboutBoxAndExitAfterARefusedStart)
{
    window.load(QString());
    action("mnuAbout")->trigger();
    frmAbout* about = window.aboutBox();
    ASSERT_NE(about, nullptr);
    EXPECT_TRUE(about->isVisible());
    EXPECT_FALSE(about->isModal());
    EXPECT_EQ(about->windowTitle(), QStringLiteral("About Tallyport Export/Import"));
    auto text = [about](const char* name) {
        auto* label = about->findChild<QLabel*>(QString::fromLatin1(name));
        return label ? label->text() : QStringLiteral("<missing>");
    };
    EXPECT_EQ(text("lblVersion"), QStringLiteral("Version %1.%2.%3")
                                      .arg(TALLYPORT_VERSION_MAJOR)
                                      .arg(TALLYPORT_VERSION_MINOR)
                                      .arg(TALLYPORT_VERSION_PATCH));
    EXPECT_EQ(AboutDescriptionText(),
              QStringLiteral("The Tallyport Export/Import System is designed to allow\rgathered Velotrek "
                             "Data to be formatted and\rexported/imported to/from a comma delimited text file."));
    // Shown one line per stored line.
    EXPECT_EQ(text("lblDescription").split(QLatin1Char('\n')).size(), 3);
    EXPECT_TRUE(AboutTitleText().startsWith(QStringLiteral("Tallyport Export \r")));
    EXPECT_TRUE(text("lblDisclaimer").startsWith(QStringLiteral("Warning: ")));

    auto* sysInfo = about->findChild<QPushButton*>(QStringLiteral("cmdSysInfo"));
    ASSERT_NE(sysInfo, nullptr);
    EXPECT_EQ(sysInfo->text(), QStringLiteral("&System Info..."));
    sysInfo->click();
    ASSERT_EQ(foundation.feedback.shown.size(), 1u);
    EXPECT_EQ(foundation.feedback.shown[0].text, QStringLiteral("System Information Is Unavailable At This Time"));
    EXPECT_EQ(foundation.feedback.shown[0].code, 0);

    about->findChild<QPushButton*>(QStringLiteral("cmdOK"))->click();
    EXPECT_FALSE(about->isVisible());
    action("mnuExit")->trigger();
    EXPECT_EQ(ended, 1);
}

} // namespace
} // namespace tp
