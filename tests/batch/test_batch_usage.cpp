// tallyport-batch's command line: usage errors, --help and --version.
#include "batch_fixture.h"

#include "version.h"

#include <QFile>

namespace tp::test {
namespace {

using BatchUsage = BatchTest;

// "export" with settings, user and data set, then the words of rest (split at blanks).
QStringList exportArgs(const QString& rest, const QString& dataSet = QStringLiteral("Time Data"))
{
    return QStringList{"export", "--settings", "KRV.ini", "--user", "2", "--dataset", dataSet} +
           rest.split(' ', Qt::SkipEmptyParts);
}

QStringList importArgs(const QString& dataSet, const QString& rest = QString())
{
    return QStringList{"import", "--settings", "KRV.ini", "--user", "2", "--dataset", dataSet} +
           rest.split(' ', Qt::SkipEmptyParts);
}

TEST_F(BatchUsage, MistakesInTheCommandExitWithTwoAndTouchNothing)
{
    const QString ok = QStringLiteral("--fields Date --output out.txt ");
    const std::vector<std::pair<QStringList, const char*>> cases = {
        {{}, "no command given"},
        {{"purge"}, "unknown command purge"},
        {exportArgs("--fields Date"), "export needs --output"},
        {exportArgs("--output out.txt"), "export needs --fields"},
        {exportArgs(ok + "--from 01/01/2024"), "--from and --to go together"},
        {exportArgs(ok + "--from 13/01/2024 --to 01/31/2024"), "13/01/2024 is not a date of the form MM/DD/YYYY"},
        {exportArgs(ok + "--from 1/5/2024 --to 01/31/2024"), "1/5/2024 is not a date"},
        {exportArgs(ok + "--encoding latin1"), "--encoding must be windows-1252 or utf-8"},
        {exportArgs(ok + "--subject all"), "--subject is for GPS Data only"},
        {exportArgs(ok + "--input x.txt"), "--input is not an option of export"},
        {exportArgs(ok + "--progress"), "--progress is not an option of export"},
        {importArgs("Vehicle Data", "--input x.txt --progress=1"), "--progress takes no value"},
        {exportArgs(ok + "--yes --yes"), "--yes given twice"},
        {exportArgs("--fields Date,Time,Date --output out.txt"), "--fields names Date twice"},
        {exportArgs("--fields Date,Nickname --output out.txt"),
         "Time Data has no field Nickname; its fields are: TimeRecordID, EmployeeNumber,"},
        {exportArgs("--fields Date --output"), "--output needs a value"},
        {exportArgs(ok, "Time"), "--dataset must be one of: Time Data, Inventory Data, GPS Data"},
        {exportArgs("--fields TrackID --output o.txt --from 01/01/2024 --to 01/02/2024", "GPS Data"),
         "GPS Data needs --from, --to and --subject"},
        {{"export", "--settings", "KRV.ini", "--user=1,2", "--dataset", "Time Data", "--fields", "Date", "--output",
          "o.txt"},
         "--settings and --user cannot hold a comma"},
        {exportArgs(ok + "--user 1"), "--user given twice"},
        {importArgs("Vehicle Data"), "import needs --input"},
        {importArgs("Time Data", "--input x.txt"), "--dataset must be one of: Customer Data"},
        {importArgs("Vehicle Data", "--input x.txt --fields A=B"), "import --fields takes field names only"},
        {{"--version", "export"}, "--version takes nothing else"},
    };
    for (const auto& [arguments, says] : cases) {
        SCOPED_TRACE(arguments.join(' ').toStdString());
        const BatchRun r = run(arguments);
        EXPECT_EQ(r.exitCode, 2);
        EXPECT_TRUE(r.err.startsWith("tallyport-batch: " + QLatin1String(says))) << r.err.toStdString();
        EXPECT_TRUE(r.err.contains("Usage:"));
        EXPECT_TRUE(r.out.isEmpty());
    }
    EXPECT_FALSE(QFile::exists(path("out.txt")));
    EXPECT_EQ(waiting(), 4);
}

TEST_F(BatchUsage, HelpDocumentsEveryOptionWithAnExample)
{
    const BatchRun r = run({"--help"});
    EXPECT_EQ(r.exitCode, 0);
    EXPECT_TRUE(r.err.isEmpty());
    for (const char* option : {"--settings", "--user", "--dataset", "--fields", "--output", "--input",
                               "--from", "--to", "--subject", "--format-date", "--format-time",
                               "--encoding", "--yes", "--progress", "--help", "--version", "Exit status"})
        EXPECT_TRUE(r.out.contains(QLatin1String(option))) << option;
    EXPECT_TRUE(r.out.contains("Example: --fields EmployeeNumber=Emp,EmployeeLastName,Date"));

    // Asked for in the middle of a command, help still wins.
    EXPECT_EQ(run(exportArgs("--help")).exitCode, 0);
}

TEST_F(BatchUsage, VersionComesFromTheBuild)
{
    const BatchRun r = run({"--version"});
    EXPECT_EQ(r.exitCode, 0);
    EXPECT_EQ(r.out, "tallyport-batch " TALLYPORT_VERSION "\n");
}

} // namespace
} // namespace tp::test
