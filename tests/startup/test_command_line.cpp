// The command line the host passes, and the start-up order that follows it.
#include "foundation/dao.h"
#include "foundation/globals.h"
#include "startup/startup.h"
#include "support/demo_site.h"
#include "support/foundation_fixture.h"

#include <gtest/gtest.h>

namespace tp {
namespace {

class CommandLine : public ::testing::Test {
protected:
    test::ScopedFoundation foundation;
    QStringList messages() const { return foundation.feedback.messages(); }
};

TEST_F(CommandLine, FieldsKeepTheirBlanksAndExtraFieldsAreIgnored)
{
    EXPECT_EQ(ParseCommandLine(QStringLiteral("x, KRV.ini , true ,7 ,more")), ParseResult::Accepted);
    EXPECT_EQ(globals().SettingsFileName, QStringLiteral(" KRV.ini "));
    EXPECT_TRUE(globals().AllowExport);   // trimmed before the comparison
    EXPECT_EQ(globals().UserID, QStringLiteral("7 "));
    EXPECT_TRUE(messages().isEmpty());
}

TEST_F(CommandLine, ExportFlagIgnoresLetterCaseAndAcceptsNumbers)
{
    const struct {
        const char* field;
        bool allowExport;
    } cases[] = {{"TRUE", true}, {"True", true}, {"tRuE", true}, {"False", false},
                 {"FALSE", false}, {"0", false}, {"1", false}, {"-1", false}, {"2.5", false}};
    for (const auto& c : cases) {
        resetGlobals();
        const QString line = QStringLiteral("x,KRV.ini,%1,7").arg(QLatin1String(c.field));
        EXPECT_EQ(ParseCommandLine(line), ParseResult::Accepted) << c.field;
        EXPECT_EQ(globals().AllowExport, c.allowExport) << c.field;
    }
    EXPECT_TRUE(messages().isEmpty());
}

TEST_F(CommandLine, BadOrMissingFieldsAreRefusedWithTheCriticalMessage)
{
    for (const char* line : {"x,KRV.ini,yes,7", "x,KRV.ini,true", "x,KRV.ini", "x,KRV.ini,,7"}) {
        foundation.feedback.shown.clear();
        EXPECT_EQ(ParseCommandLine(QString::fromLatin1(line)), ParseResult::Refused) << line;
        ASSERT_EQ(foundation.feedback.shown.size(), 1u) << line;
        EXPECT_EQ(foundation.feedback.shown[0].text, kCriticalCondition);
        EXPECT_EQ(foundation.feedback.shown[0].code, 0);
        EXPECT_EQ(foundation.feedback.shown[0].title, kBoxTitle);
    }
}

TEST_F(CommandLine, NoCommaIsRefusedSilently)
{
    EXPECT_EQ(ParseCommandLine(QString()), ParseResult::Refused);
    EXPECT_EQ(ParseCommandLine(QStringLiteral("KRV.ini true 7")), ParseResult::Refused);
    EXPECT_TRUE(messages().isEmpty());
    EXPECT_TRUE(globals().SettingsFileName.isEmpty());
}

TEST(JoinArguments, SingleBlanksBetweenTheArguments)
{
    EXPECT_EQ(JoinArguments({QStringLiteral("x,KRV.ini,true,7")}), QStringLiteral("x,KRV.ini,true,7"));
    EXPECT_EQ(JoinArguments({QStringLiteral("x,KRV.ini,"), QStringLiteral("true,7")}),
              QStringLiteral("x,KRV.ini, true,7"));
    EXPECT_EQ(JoinArguments({}), QString());
}

class Startup : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(site.ok()) << site.error().toStdString(); }
    test::ScopedFoundation foundation;
    test::DemoSite site;
};

// Start-ups that open the database are run by every window test.
TEST_F(Startup, SettingsThatNameNoUsableDatabase)
{
    const std::tuple<QByteArray, bool, QString, qint32> cases[] = {
        // An empty name is reported, and the program goes on without a database.
        {"[PRIMARY]\r\nField1=/nowhere/\r\nField2=\r\n", false, kCannotOpenDatabase, 1},
        {"[PRIMARY]\r\nField2=primary.db\r\n", true, "Failed to locate Primary Database Path!", 1},
        {"[PRIMARY]\r\nField1=/no/such/folder/\r\nField2=primary.db\r\n", true, "Cannot open the database", 1},
    };
    for (const auto& [settings, fatal, message, code] : cases) {
        SCOPED_TRACE(settings.constData());
        resetGlobals();
        foundation.feedback.shown.clear();
        site.writeSettings(QStringLiteral("KRV.ini"), settings);
        const StartupOutcome outcome = RunStartup(QStringLiteral("x,KRV.ini,true,1"));
        EXPECT_EQ(outcome.fatal, fatal);
        if (!fatal) {
            EXPECT_TRUE(outcome.importEnabled && outcome.exportEnabled);
        }
        EXPECT_FALSE(globals().DatabaseOpen);
        EXPECT_EQ(SharedDatabase(), nullptr);
        const auto& shown = foundation.feedback.shown;
        const auto box = std::find_if(shown.begin(), shown.end(), [&](const auto& b) { return b.text == message; });
        ASSERT_NE(box, shown.end());
        EXPECT_EQ(box->code, code);
    }
}

} // namespace
} // namespace tp
