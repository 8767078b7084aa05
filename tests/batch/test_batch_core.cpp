// The batch tool writes what the core's save flow writes for the same choices.
#include "batch_fixture.h"

#include "export/export_job.h"
#include "export/time_data.h"
#include "foundation/dao.h"
#include "foundation/feedback.h"

namespace tp::test {
namespace {

using BatchAgainstCore = BatchTest;

TEST_F(BatchAgainstCore, SameChoicesSameBytesSameMarks)
{
    addMany(30, 100);
    const QString core = path(QStringLiteral("core.txt"));
    {
        cDAO db;
        ASSERT_TRUE(db.DB_Connect(site.databaseFile(), QString(), QStringLiteral("Admin"), QString()));
        ScriptedFeedback prompts;
        TimeAssembler assembler(db, prompts);
        ExportJob job;
        job.request.table = kTableTime;
        job.request.byDate = true;
        job.request.start = QStringLiteral("20240110");
        job.request.stop = QStringLiteral("20240201");
        job.request.formatTime = true;
        job.request.settingsFile = QStringLiteral("KRV.ini");
        job.columns = {{QStringLiteral("EmployeeFirstName"), QStringLiteral("Text"), QStringLiteral("First")},
                       {QStringLiteral("Time"), QStringLiteral("Number"), QStringLiteral("Time")},
                       {QStringLiteral("IsJobInRecord"), QStringLiteral("Boolean"), QString()},
                       {QStringLiteral("OdometerReading"), QStringLiteral("Number"), QStringLiteral("Odometer")}};
        job.fileName = core;
        job.encoding = FileEncoding::Utf8;
        bool cancel = false;
        const ExportJobResult result = runExport(job, assembler, prompts, cancel);
        ASSERT_EQ(result.outcome, ExportJobResult::Completed) << result.status.toStdString();
        EXPECT_EQ(result.marked, 33);
        db.DB_Close();
    }
    const QString coreMarks = marks(2) + marks(3) + marks(5) + marks(1) + marks(129);
    exec(QStringLiteral("UPDATE JobTimeRecords SET Approved = 1, ExportID = 0 WHERE NewTimeRecordID <> 4 AND NewTimeRecordID <> 6"));

    const BatchRun r = exportTime(QStringLiteral("EmployeeFirstName=First,Time,IsJobInRecord=,OdometerReading=Odometer"),
                                  QStringLiteral("batch.txt"),
                                  {QStringLiteral("--from"), QStringLiteral("01/10/2024"), QStringLiteral("--to"),
                                   QStringLiteral("02/01/2024"), QStringLiteral("--format-time"),
                                   QStringLiteral("--encoding"), QStringLiteral("utf-8")});
    ASSERT_EQ(r.exitCode, 0) << r.err.toStdString();
    const QByteArray bytes = read(path(QStringLiteral("batch.txt")));
    EXPECT_EQ(bytes, read(core));
    EXPECT_TRUE(bytes.startsWith("\"First\",\"Time\",\"\",\"Odometer\"\r\n\"Andr\xc3\xa9\",\"14:30:05\",#FALSE#,1200\r\n"))
        << bytes.left(120).toStdString();
    EXPECT_EQ(marks(2) + marks(3) + marks(5) + marks(1) + marks(129), coreMarks);
    EXPECT_EQ(coreMarks, QStringLiteral("2/12/12/11/02/1"));
}

} // namespace
} // namespace tp::test
