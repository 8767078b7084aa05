// The built program itself: its exit status after a fatal start-up and its screenshot mode.
#include "support/demo_site.h"
#include "support/programs.h"

#include <QFileInfo>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace tp::test {
namespace {

class Program : public ::testing::Test {
protected:
    void SetUp() override
    {
        if (!QFileInfo(binary).isExecutable())
            GTEST_SKIP() << "build the tallyport target first";
        ASSERT_TRUE(site.ok()) << site.error().toStdString();
    }

    ProgramRun run(const QStringList& arguments) { return runProgram(binary, arguments, site.settingsFolder()); }

    const QString binary = QStringLiteral(TP_BINARY_DIR "/tallyport");
    DemoSite site;
    QTemporaryDir shots;
};

TEST_F(Program, ScreenshotModeSavesTheWindows)
{
    const ProgramRun r = run({"--screenshots", shots.path(), "x,KRV.ini,true,1"});
    ASSERT_EQ(r.exitCode, 0) << r.err.toStdString();
    const QStringList files = r.out.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    ASSERT_EQ(files.size(), 13) << r.out.toStdString();
    for (const QString& file : files) {
        EXPECT_TRUE(file.startsWith(shots.path()));
        EXPECT_GT(QFileInfo(file).size(), 1000) << file.toStdString();
    }
    EXPECT_TRUE(files.at(5).endsWith(QStringLiteral("export-window-preview.png")));
    // The GPS pictures (the subjects, the track view, the preview), then the import window's list,
    // grid, fault message and confirmation sample.
    QStringList names;
    for (const QString& file : files.mid(6))
        names << QFileInfo(file).fileName();
    EXPECT_EQ(names, (QStringList{"track-subjects.png", "track-view.png", "export-window-gps-preview.png",
                                  "import-window-list.png", "import-window.png", "import-window-fault.png",
                                  "import-window-sample.png"}));
}

// The desktop menu has no host line to pass: the window opens, says why its functions are off,
// and the same box stays silent for a host that passes a line without commas.
TEST_F(Program, LauncherExplainsWhatTheHostPasses)
{
    const QString explanation = QStringLiteral("Tallyport is opened by the fleet product");
    const ProgramRun fromMenu = run({"--screenshots", shots.path(), "--launcher"});
    ASSERT_EQ(fromMenu.exitCode, 0) << fromMenu.err.toStdString();
    EXPECT_TRUE(fromMenu.err.contains(explanation)) << fromMenu.err.toStdString();
    EXPECT_TRUE(fromMenu.out.contains(QStringLiteral("main-window.png"))) << fromMenu.out.toStdString();

    const ProgramRun bareLine = run({"--screenshots", shots.path(), "nocomma"});
    ASSERT_EQ(bareLine.exitCode, 0) << bareLine.err.toStdString();
    EXPECT_FALSE(bareLine.err.contains(explanation)) << bareLine.err.toStdString();
}

TEST_F(Program, FatalStartUpEndsWithAFailureStatus)
{
    site.writeSettings(QStringLiteral("KRV.ini"), "[PRIMARY]\r\nField2=primary.db\r\n");
    const ProgramRun r = run({"--screenshots", shots.path(), "x,KRV.ini,true,1"});
    EXPECT_EQ(r.exitCode, 1);
    EXPECT_TRUE(r.err.contains("Failed to locate Primary Database Path!")) << r.err.toStdString();
    EXPECT_TRUE(r.out.isEmpty());
}

} // namespace
} // namespace tp::test
