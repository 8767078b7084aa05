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

TEST_F(CommandLine, FourFieldsFillTheGlobals)
{
    EXPECT_EQ(ParseCommandLine(QStringLiteral("x,KRV.ini,true,7")), ParseResult::Accepted);
    EXPECT_EQ(globals().SettingsFileName, QStringLiteral("KRV.ini"));
    EXPECT_TRUE(globals().AllowExport);
    EXPECT_EQ(globals().UserID, QStringLiteral("7"));
    EXPECT_TRUE(messages().isEmpty());
}

TEST_F(CommandLine, FieldsKeepTheirBlanksAndExtraFieldsAreIgnored)
{
    EXPECT_EQ(ParseCommandLine(QStringLiteral("x, KRV.ini , true ,7 ,more")), ParseResult::Accepted);
    EXPECT_EQ(globals().SettingsFileName, QStringLiteral(" KRV.ini "));
    EXPECT_TRUE(globals().AllowExport);   // trimmed before the comparison
    EXPECT_EQ(globals().UserID, QStringLiteral("7 "));
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

TEST_F(Startup, OpensTheDatabaseNamedInTheSettings)
{
    const StartupOutcome outcome = RunStartup(QStringLiteral("x,KRV.ini,true,1"));
    EXPECT_FALSE(outcome.fatal);
    EXPECT_TRUE(outcome.importEnabled);
    EXPECT_TRUE(outcome.exportEnabled);
    EXPECT_TRUE(globals().DatabaseOpen);
    ASSERT_NE(SharedDatabase(), nullptr);
    EXPECT_TRUE(SharedDatabase()->mbDatabaseIsOpen);
    EXPECT_TRUE(foundation.feedback.messages().isEmpty());
}

TEST_F(Startup, ExportFlagFalseDisablesExportOnly)
{
    const StartupOutcome outcome = RunStartup(QStringLiteral("x,KRV.ini,False,1"));
    EXPECT_TRUE(outcome.importEnabled);
    EXPECT_FALSE(outcome.exportEnabled);
    EXPECT_TRUE(globals().DatabaseOpen);
}

TEST_F(Startup, EmptyDatabaseNameIsReportedButNotFatal)
{
    site.writeSettings(QStringLiteral("KRV.ini"), "[PRIMARY]\r\nField1=/nowhere/\r\nField2=\r\n");
    const StartupOutcome outcome = RunStartup(QStringLiteral("x,KRV.ini,true,1"));
    EXPECT_FALSE(outcome.fatal);
    EXPECT_TRUE(outcome.importEnabled);
    EXPECT_TRUE(outcome.exportEnabled);
    EXPECT_FALSE(globals().DatabaseOpen);
    EXPECT_EQ(SharedDatabase(), nullptr);
    ASSERT_EQ(foundation.feedback.shown.size(), 1u);
    EXPECT_EQ(foundation.feedback.shown[0].text, kCannotOpenDatabase);
    EXPECT_EQ(foundation.feedback.shown[0].code, 1);
}

TEST_F(Startup, MissingDatabaseKeyIsFatal)
{
    site.writeSettings(QStringLiteral("KRV.ini"), "[PRIMARY]\r\nField2=primary.db\r\n");
    const StartupOutcome outcome = RunStartup(QStringLiteral("x,KRV.ini,true,1"));
    EXPECT_TRUE(outcome.fatal);
    EXPECT_EQ(foundation.feedback.messages(), QStringList{QStringLiteral("Failed to locate Primary Database Path!")});
}

TEST_F(Startup, DatabaseThatCannotBeOpenedIsFatal)
{
    site.writeSettings(QStringLiteral("KRV.ini"),
                       "[PRIMARY]\r\nField1=/no/such/folder/\r\nField2=primary.db\r\n");
    const StartupOutcome outcome = RunStartup(QStringLiteral("x,KRV.ini,true,1"));
    EXPECT_TRUE(outcome.fatal);
    EXPECT_FALSE(globals().DatabaseOpen);
    EXPECT_TRUE(foundation.feedback.messages().contains(QStringLiteral("Cannot open the database")));
}

TEST_F(Startup, RefusedCommandLineSkipsSettingsAndDatabase)
{
    const StartupOutcome outcome = RunStartup(QString());
    EXPECT_FALSE(outcome.fatal);
    EXPECT_FALSE(outcome.importEnabled);
    EXPECT_FALSE(outcome.exportEnabled);
    EXPECT_EQ(SharedDatabase(), nullptr);
}

} // namespace
} // namespace tp
