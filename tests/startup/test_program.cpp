// The built program itself: its exit status after a fatal start-up and its screenshot mode.
#include "support/demo_site.h"

#include <QFileInfo>
#include <QProcess>
#include <QProcessEnvironment>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace tp {
namespace {

class Program : public ::testing::Test {
protected:
    void SetUp() override
    {
        if (!QFileInfo(binary).isExecutable())
            GTEST_SKIP() << "build the tallyport target first";
        ASSERT_TRUE(site.ok()) << site.error().toStdString();
    }

    int run(const QStringList& arguments, QString* out, QString* err)
    {
        QProcess process;
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert(QStringLiteral("TALLYPORT_SETTINGS_DIR"), site.settingsFolder());
        env.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
        process.setProcessEnvironment(env);
        process.start(binary, arguments);
        if (!process.waitForFinished(60000)) {
            process.kill();
            return -1;
        }
        *out = QString::fromLocal8Bit(process.readAllStandardOutput());
        *err = QString::fromLocal8Bit(process.readAllStandardError());
        return process.exitCode();
    }

    const QString binary = QStringLiteral(TP_BINARY_DIR "/tallyport");
    test::DemoSite site;
    QTemporaryDir shots;
};

TEST_F(Program, ScreenshotModeSavesTheWindows)
{
    QString out, err;
    ASSERT_EQ(run({QStringLiteral("--screenshots"), shots.path(), QStringLiteral("x,KRV.ini,true,1")}, &out, &err), 0)
        << err.toStdString();
    const QStringList files = out.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    ASSERT_EQ(files.size(), 6) << out.toStdString();
    for (const QString& file : files) {
        EXPECT_TRUE(file.startsWith(shots.path()));
        EXPECT_GT(QFileInfo(file).size(), 1000) << file.toStdString();
    }
    EXPECT_TRUE(files.last().endsWith(QStringLiteral("export-window-preview.png")));
}

TEST_F(Program, FatalStartUpEndsWithAFailureStatus)
{
    site.writeSettings(QStringLiteral("KRV.ini"), "[PRIMARY]\r\nField2=primary.db\r\n");
    QString out, err;
    EXPECT_EQ(run({QStringLiteral("--screenshots"), shots.path(), QStringLiteral("x,KRV.ini,true,1")}, &out, &err), 1);
    EXPECT_TRUE(err.contains(QStringLiteral("Failed to locate Primary Database Path!"))) << err.toStdString();
    EXPECT_TRUE(out.isEmpty());
}

} // namespace
} // namespace tp
