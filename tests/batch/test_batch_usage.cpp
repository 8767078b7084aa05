// tallyport-batch's command line: usage errors, --help and --version.
#include "batch_fixture.h"

#include "version.h"

#include <QFile>

namespace tp::test {
namespace {

using BatchUsage = BatchTest;

QStringList exportArgs(const QStringList& extra)
{
    return QStringList{QStringLiteral("export"), QStringLiteral("--settings"), QStringLiteral("KRV.ini"),
                       QStringLiteral("--user"), QStringLiteral("2"), QStringLiteral("--dataset"),
                       QStringLiteral("Time Data")} +
           extra;
}

TEST_F(BatchUsage, MistakesInTheCommandExitWithTwoAndTouchNothing)
{
    const QStringList ok = {QStringLiteral("--fields"), QStringLiteral("Date"),
                            QStringLiteral("--output"), QStringLiteral("out.txt")};
    struct Case {
        QStringList arguments;
        const char* says;
    };
    const std::vector<Case> cases = {
        {{}, "no command given"},
        {{QStringLiteral("purge")}, "unknown command purge"},
        {exportArgs({QStringLiteral("--fields"), QStringLiteral("Date")}), "export needs --output"},
        {exportArgs({QStringLiteral("--output"), QStringLiteral("out.txt")}), "export needs --fields"},
        {exportArgs(ok + QStringList{QStringLiteral("--from"), QStringLiteral("01/01/2024")}),
         "--from and --to go together"},
        {exportArgs(ok + QStringList{QStringLiteral("--from"), QStringLiteral("13/01/2024"),
                                     QStringLiteral("--to"), QStringLiteral("01/31/2024")}),
         "13/01/2024 is not a date of the form MM/DD/YYYY"},
        {exportArgs(ok + QStringList{QStringLiteral("--from"), QStringLiteral("1/5/2024"),
                                     QStringLiteral("--to"), QStringLiteral("01/31/2024")}),
         "1/5/2024 is not a date"},
        {exportArgs(ok + QStringList{QStringLiteral("--encoding"), QStringLiteral("latin1")}),
         "--encoding must be windows-1252 or utf-8"},
        {exportArgs(ok + QStringList{QStringLiteral("--subject"), QStringLiteral("all")}),
         "--subject is for GPS Data only"},
        {exportArgs(ok + QStringList{QStringLiteral("--input"), QStringLiteral("x.txt")}),
         "--input is not an option of export"},
        {exportArgs(ok + QStringList{QStringLiteral("--yes"), QStringLiteral("--yes")}), "--yes given twice"},
        {exportArgs({QStringLiteral("--fields"), QStringLiteral("Date,Time,Date"), QStringLiteral("--output"),
                     QStringLiteral("out.txt")}),
         "--fields names Date twice"},
        {exportArgs({QStringLiteral("--fields"), QStringLiteral("Date,Nickname"), QStringLiteral("--output"),
                     QStringLiteral("out.txt")}),
         "Time Data has no field Nickname; its fields are: TimeRecordID, EmployeeNumber,"},
        {exportArgs({QStringLiteral("--fields"), QStringLiteral("Date"), QStringLiteral("--output")}),
         "--output needs a value"},
        {{QStringLiteral("export"), QStringLiteral("--settings"), QStringLiteral("KRV.ini"),
          QStringLiteral("--user"), QStringLiteral("2"), QStringLiteral("--dataset"), QStringLiteral("Time"),
          QStringLiteral("--fields"), QStringLiteral("Date"), QStringLiteral("--output"), QStringLiteral("o.txt")},
         "--dataset must be one of: Time Data, Inventory Data, GPS Data"},
        {{QStringLiteral("export"), QStringLiteral("--settings"), QStringLiteral("KRV.ini"),
          QStringLiteral("--user"), QStringLiteral("2"), QStringLiteral("--dataset"), QStringLiteral("GPS Data"),
          QStringLiteral("--fields"), QStringLiteral("TrackID"), QStringLiteral("--output"), QStringLiteral("o.txt"),
          QStringLiteral("--from"), QStringLiteral("01/01/2024"), QStringLiteral("--to"), QStringLiteral("01/02/2024")},
         "GPS Data needs --from, --to and --subject"},
        {{QStringLiteral("export"), QStringLiteral("--settings"), QStringLiteral("KRV.ini"),
          QStringLiteral("--user=1,2"), QStringLiteral("--dataset"), QStringLiteral("Time Data"),
          QStringLiteral("--fields"), QStringLiteral("Date"), QStringLiteral("--output"), QStringLiteral("o.txt")},
         "--settings and --user cannot hold a comma"},
        {exportArgs(ok + QStringList{QStringLiteral("--user"), QStringLiteral("1")}), "--user given twice"},
        {{QStringLiteral("import"), QStringLiteral("--settings"), QStringLiteral("KRV.ini"),
          QStringLiteral("--user"), QStringLiteral("2"), QStringLiteral("--dataset"), QStringLiteral("Vehicle Data")},
         "import needs --input"},
        {{QStringLiteral("import"), QStringLiteral("--settings"), QStringLiteral("KRV.ini"),
          QStringLiteral("--user"), QStringLiteral("2"), QStringLiteral("--dataset"), QStringLiteral("Time Data"),
          QStringLiteral("--input"), QStringLiteral("x.txt")},
         "--dataset must be one of: Customer Data"},
        {{QStringLiteral("import"), QStringLiteral("--settings"), QStringLiteral("KRV.ini"),
          QStringLiteral("--user"), QStringLiteral("2"), QStringLiteral("--dataset"), QStringLiteral("Vehicle Data"),
          QStringLiteral("--input"), QStringLiteral("x.txt"), QStringLiteral("--fields"), QStringLiteral("A=B")},
         "import --fields takes field names only"},
        {{QStringLiteral("--version"), QStringLiteral("export")}, "--version takes nothing else"},
    };
    for (const Case& c : cases) {
        const BatchRun r = run(c.arguments);
        const std::string shown = c.arguments.join(QLatin1Char(' ')).toStdString();
        EXPECT_EQ(r.exitCode, 2) << shown;
        EXPECT_TRUE(r.err.startsWith(QStringLiteral("tallyport-batch: ") + QLatin1String(c.says)))
            << shown << "\n" << r.err.toStdString();
        EXPECT_TRUE(r.err.contains(QStringLiteral("Usage:"))) << shown;
        EXPECT_TRUE(r.out.isEmpty()) << shown;
    }
    EXPECT_FALSE(QFile::exists(path(QStringLiteral("out.txt"))));
    EXPECT_EQ(waiting(), 4);
}

TEST_F(BatchUsage, HelpDocumentsEveryOptionWithAnExample)
{
    const BatchRun r = run({QStringLiteral("--help")});
    EXPECT_EQ(r.exitCode, 0);
    EXPECT_TRUE(r.err.isEmpty());
    for (const char* option : {"--settings", "--user", "--dataset", "--fields", "--output", "--input",
                               "--from", "--to", "--subject", "--format-date", "--format-time",
                               "--encoding", "--yes", "--help", "--version", "Exit status"})
        EXPECT_TRUE(r.out.contains(QLatin1String(option))) << option;
    EXPECT_TRUE(r.out.contains(QStringLiteral("Example: --fields EmployeeNumber=Emp,EmployeeLastName,Date")));

    // Asked for in the middle of a command, help still wins.
    EXPECT_EQ(run(exportArgs({QStringLiteral("--help")})).exitCode, 0);
}

TEST_F(BatchUsage, VersionComesFromTheBuild)
{
    const BatchRun r = run({QStringLiteral("--version")});
    EXPECT_EQ(r.exitCode, 0);
    EXPECT_EQ(r.out, QStringLiteral("tallyport-batch " TALLYPORT_VERSION "\n"));
}

} // namespace
} // namespace tp::test
