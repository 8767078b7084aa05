// Every waiting time or inventory record ends up in exactly one complete file and is marked
// once, whatever runs at the same time, fails or is killed: the built tallyport-batch (and the
// session the Export window drives) on a demo database, on SQLite and on PostgreSQL.
#include "demo_generator.h"
#include "support/demo_site.h"
#include "support/programs.h"
#include "support/test_databases.h"

#include "export/export_catalogue.h"
#include "export/export_session.h"
#include "foundation/dao.h"
#include "foundation/feedback.h"
#include "foundation/globals.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QSet>
#include <QThread>
#include <gtest/gtest.h>
#include <memory>
#include <ostream>
#include <tuple>

namespace tp::test {
namespace {

const QString kBinary = QStringLiteral(TP_BINARY_DIR "/tallyport-batch");
const QByteArray kOldFile = "the file of an earlier night\r\n";

// A data set whose records wait for export and are marked by their own identity.
struct WaitingSet {
    const char* name;       // as --dataset takes it
    const char* table;
    const char* idColumn;
    const char* idField;    // the field that writes idColumn
};
const WaitingSet kTimeSet{"Time Data", "JobTimeRecords", "NewTimeRecordID", "TimeRecordID"};
const WaitingSet kInventorySet{"Inventory Data", "InventoryHistory", "InventoryHistoryID",
                               "InventoryHistoryID"};

void PrintTo(const WaitingSet& set, std::ostream* os)
{
    *os << set.name;
}

class ExactlyOnce : public ::testing::TestWithParam<std::tuple<bool, WaitingSet>> {
protected:
    static bool postgres() { return std::get<0>(GetParam()); }
    static const WaitingSet& set() { return std::get<1>(GetParam()); }
    static QString table() { return QLatin1String(set().table); }

    void SetUp() override
    {
        DemoOptions options;
        options.tracks = 0;
        options.gpsPoints = 0;
        options.inventoryRecords = options.timeRecords;
        const QString why = site.create(postgres(), options);
        if (why == QLatin1String(kPgSkipMessage))
            GTEST_SKIP() << kPgSkipMessage;
        ASSERT_TRUE(why.isEmpty()) << why.toStdString();
        location = site.location();
        pg = site.pg();
        ASSERT_TRUE(db.DB_Connect(location, QString(), QStringLiteral("Admin"), QString()));
        initial = ids(QStringLiteral("Approved = 1 AND ExportID = 0"));
        exportedBefore = ids(QStringLiteral("Approved = 2 AND ExportID = 1"));
        ASSERT_GT(initial.size(), 300);
    }

    QStringList arguments(const QString& file, const QStringList& extra = {}) const
    {
        return QStringList{"export", "--settings", "KRV.ini", "--user", "1", "--dataset",
                           QLatin1String(set().name), "--fields",
                           QLatin1String(set().idField) + QStringLiteral(",EmployeeLastName,Date,Time"),
                           "--yes", "--output", file} + extra;
    }
    std::unique_ptr<QProcess> start(const QString& file, const QString& fault = QString(),
                                    const QStringList& extra = {}, const QString& wait = QString())
    {
        auto p = std::make_unique<QProcess>();
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert(QStringLiteral("TALLYPORT_SETTINGS_DIR"), site.settingsFolder());
        env.remove(QStringLiteral("TALLYPORT_EXPORT_FAULT"));
        if (!fault.isEmpty())
            env.insert(QStringLiteral("TALLYPORT_EXPORT_FAULT"), fault);
        if (!wait.isEmpty())
            env.insert(QStringLiteral("TALLYPORT_EXPORT_WAIT"), wait);
        p->setProcessEnvironment(env);
        p->setWorkingDirectory(site.folder());
        p->start(kBinary, arguments(file, extra));
        EXPECT_TRUE(p->waitForStarted());
        return p;
    }
    static ProgramRun finish(QProcess& p)
    {
        ProgramRun r;
        if (!p.waitForFinished(60000))
            return r;
        r.exitCode = p.exitStatus() == QProcess::NormalExit ? p.exitCode() : -1;
        r.out = QString::fromLocal8Bit(p.readAllStandardOutput());
        r.err = QString::fromLocal8Bit(p.readAllStandardError());
        return r;
    }
    ProgramRun run(const QString& file, const QString& fault = QString())
    {
        auto p = start(file, fault);
        return finish(*p);
    }

    // The identities of the data set's records matching condition.
    QSet<qint64> ids(const QString& condition)
    {
        QSet<qint64> out;
        RecordsetPtr rs = db.RecSet_Forward(QStringLiteral("Select ") + QLatin1String(set().idColumn) +
                                            QStringLiteral(" from ") + table() +
                                            QStringLiteral(" where ") + condition);
        for (; rs && !rs->atEnd(); rs->moveNext())
            out.insert(rs->value(0).toLongLong());
        EXPECT_TRUE(rs != nullptr) << db.errorText.toStdString();
        return out;
    }
    QSet<qint64> waiting() { return ids(QStringLiteral("Approved = 1 AND ExportID = 0")); }
    QSet<qint64> markedOnce() { return ids(QStringLiteral("Approved = 2 AND ExportID = 1")) - exportedBefore; }
    // The records that waited at the start wait again.
    void unmark()
    {
        QStringList list;
        for (qint64 id : initial)
            list << QString::number(id);
        db.Exec(QStringLiteral("UPDATE ") + table() + QStringLiteral(" SET Approved = 1, ExportID = 0 WHERE ") +
                QLatin1String(set().idColumn) + QStringLiteral(" IN (") + list.join(',') + QLatin1Char(')'));
        ASSERT_EQ(db.appError, 0) << db.errorText.toStdString();
    }

    QString path(const QString& name) const { return QDir(site.folder()).filePath(name); }
    QByteArray bytes(const QString& name) const
    {
        QFile f(path(name));
        return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
    }
    // The ids of a complete export file (header first, every line whole); fails the test
    // for anything else.
    QList<qint64> fileIds(const QString& name) const
    {
        const QByteArray all = bytes(name);
        QList<qint64> out;
        EXPECT_TRUE(all.startsWith('"' + QByteArray(set().idField) +
                                   "\",\"EmployeeLastName\",\"Date\",\"Time\"\r\n"))
            << name.toStdString();
        EXPECT_TRUE(all.endsWith("\r\n")) << name.toStdString();
        const QList<QByteArray> lines = all.split('\n');
        for (qsizetype i = 1; i + 1 < lines.size(); ++i) {
            bool ok = false;
            out << lines[i].left(lines[i].indexOf(',')).toLongLong(&ok);
            EXPECT_TRUE(ok && lines[i].endsWith('\r') && lines[i].count(',') >= 3) << lines[i].constData();
        }
        return out;
    }
    void writeOld(const QString& name) const
    {
        QFile f(path(name));
        ASSERT_TRUE(f.open(QIODevice::WriteOnly) && f.write(kOldFile) == kOldFile.size());
    }
    QStringList leftovers() const
    {
        return QDir(site.folder()).entryList({QStringLiteral(".*.tp*")}, QDir::Files | QDir::Hidden);
    }
    // Until a run has counted its records and opened its temporary file.
    bool fileStarted() const
    {
        QElapsedTimer clock;
        clock.start();
        while (leftovers().isEmpty() && clock.elapsed() < 10000)
            QThread::msleep(20);
        return !leftovers().isEmpty();
    }
    // Every record waiting at the start (and any in extra) is in exactly one of the files and
    // marked exactly once; nothing waits any more.
    void expectEachOnce(const QStringList& names, const QSet<qint64>& extra = {})
    {
        QSet<qint64> seen;
        for (const QString& n : names)
            for (qint64 id : fileIds(n)) {
                EXPECT_FALSE(seen.contains(id)) << "record " << id << " written twice";
                seen.insert(id);
            }
        EXPECT_EQ(seen, initial + extra);
        EXPECT_EQ(markedOnce(), initial + extra);
        EXPECT_TRUE(waiting().isEmpty());
    }

    EngineDemoSite site;
    PgScratchDatabase* pg = nullptr;   // the site's, on PostgreSQL
    QString location;
    cDAO db;
    QSet<qint64> initial, exportedBefore;
};

TEST_P(ExactlyOnce, FourRunsAtOnceWriteEveryRecordIntoOneFileAndMarkItOnce)
{
    // The first run lingers in the middle of its file; the records approved meanwhile go to
    // whichever run reads after it.
    const QSet<qint64> later = ids(QStringLiteral("Approved = 0 AND ExportID = 0"));
    ASSERT_FALSE(later.isEmpty());
    std::vector<std::unique_ptr<QProcess>> runs;
    runs.push_back(start(QStringLiteral("out1.txt"), QStringLiteral("lines=100:sleep1500")));
    ASSERT_TRUE(fileStarted()) << "the first run never started its file";
    for (int i = 2; i <= 4; ++i)
        runs.push_back(start(QStringLiteral("out%1.txt").arg(i)));
    cDAO host;   // the product approving records while the exports run
    ASSERT_TRUE(host.DB_Connect(location, QString(), QStringLiteral("Admin"), QString()));
    host.Exec(QStringLiteral("UPDATE ") + table() +
              QStringLiteral(" SET Approved = 1 WHERE Approved = 0 AND ExportID = 0"));
    ASSERT_EQ(host.appError, 0) << host.errorText.toStdString();

    QStringList written;
    int completed = 0;
    for (int i = 0; i < 4; ++i) {
        const ProgramRun r = finish(*runs[std::size_t(i)]);
        const QString name = QStringLiteral("out%1.txt").arg(i + 1);
        if (r.exitCode == 0) {
            EXPECT_EQ(r.out, "Export Completed Successfully\n");
            written << name;
            ++completed;
        } else {
            EXPECT_EQ(r.exitCode, 1) << r.err.toStdString();
            EXPECT_EQ(r.out, "There are no records available.\n") << r.err.toStdString();
            EXPECT_FALSE(QFileInfo::exists(path(name)));
        }
    }
    EXPECT_GE(completed, 1);
    EXPECT_EQ(fileIds(QStringLiteral("out1.txt")).size(), initial.size());
    expectEachOnce(written, later);
    EXPECT_TRUE(leftovers().isEmpty()) << leftovers().join(' ').toStdString();
}

// The window's session (what "Create File" runs) against a batch run that holds the lock:
// it waits, says so, and then writes only what the batch run left.
TEST_P(ExactlyOnce, WindowExportAfterABatchRunWritesOnlyWhatIsLeft)
{
    globals().SettingsFileName = QStringLiteral("KRV.ini");
    ScriptedFeedback feedback;
    feedback.defaultYes = true;
    ExportSession session(db, feedback);
    session.offeredDataSets();
    ASSERT_TRUE(session.selectDataSet(QLatin1String(set().name)));
    for (const char* name : {set().idField, "EmployeeLastName", "Date", "Time"})
        ASSERT_TRUE(session.tickField(session.fieldRow(QLatin1String(name)), true));
    ASSERT_TRUE(session.selectAllRecords());
    ASSERT_EQ(session.scanDatabase().kind, ScanOutcome::Found);
    ASSERT_EQ(session.ExportRecordCount, initial.size());

    // The batch run takes January only and lingers before its marks.
    auto batch = start(QStringLiteral("batch.txt"), QStringLiteral("synced:sleep1500"),
                       {"--from", "01/01/2024", "--to", "01/31/2024"});
    ASSERT_TRUE(fileStarted()) << "the batch run never started its file";
    const ExportJobResult result = session.saveExportFile(path(QStringLiteral("window.txt")));
    const ProgramRun b = finish(*batch);
    ASSERT_EQ(b.exitCode, 0) << b.err.toStdString();
    EXPECT_EQ(result.outcome, ExportJobResult::Completed) << result.status.toStdString();
    EXPECT_TRUE(feedback.statuses.filter(QStringLiteral("Waiting for another export")).size() == 1)
        << feedback.statuses.join('|').toStdString();
    const qsizetype january = fileIds(QStringLiteral("batch.txt")).size();
    EXPECT_GT(january, 0);
    EXPECT_EQ(result.records, initial.size() - january);
    expectEachOnce({QStringLiteral("window.txt"), QStringLiteral("batch.txt")});

    // Nothing is left for a second try.
    const ExportJobResult again = session.saveExportFile(path(QStringLiteral("again.txt")));
    EXPECT_EQ(again.outcome, ExportJobResult::NothingLeft);
    EXPECT_EQ(feedback.lastStatus, QStringLiteral("There are no records available."));
    EXPECT_FALSE(QFileInfo::exists(path(QStringLiteral("again.txt"))));
}

// Killed at each step: the chosen name keeps the earlier file and nothing is marked, or the
// new file is complete; only a kill between the rename and the commit leaves a complete file
// whose records still wait. The next run cleans up and exports what waits, once.
TEST_P(ExactlyOnce, KilledAtEveryStepNeverMarksARecordThatIsNotInTheFile)
{
    struct Case {
        const char* fault;
        bool fileInPlace;   // the new file has the chosen name
        bool marked;
    };
    const Case cases[] = {{"lines=50:kill", false, false}, {"synced:kill", false, false},
                          {"marked:kill", false, false},   {"renamed:kill", true, false},
                          {"committed:kill", true, true}};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.fault);
        unmark();
        writeOld(QStringLiteral("night.txt"));
        const ProgramRun killed = run(QStringLiteral("night.txt"), QLatin1String(c.fault));
        EXPECT_EQ(killed.exitCode, -1);
        if (c.fileInPlace)
            EXPECT_EQ(fileIds(QStringLiteral("night.txt")).size(), initial.size());
        else
            EXPECT_EQ(bytes(QStringLiteral("night.txt")), kOldFile);
        EXPECT_EQ(markedOnce(), c.marked ? initial : QSet<qint64>());
        EXPECT_EQ(waiting(), c.marked ? QSet<qint64>() : initial);

        const ProgramRun next = run(QStringLiteral("night.txt"));
        if (c.marked) {
            EXPECT_EQ(next.exitCode, 1);
            EXPECT_EQ(fileIds(QStringLiteral("night.txt")).size(), initial.size());
        } else {
            EXPECT_EQ(next.exitCode, 0) << next.err.toStdString();
            expectEachOnce({QStringLiteral("night.txt")});
        }
        // The file replaced in that instant is never deleted: nobody can tell whether the
        // marks of its records were committed.
        const QStringList left = leftovers();
        if (c.fileInPlace && !c.marked) {
            ASSERT_EQ(left.size(), 1);
            EXPECT_TRUE(left[0].startsWith(QStringLiteral(".night.txt.tpb"))) << left[0].toStdString();
            EXPECT_EQ(bytes(left[0]), kOldFile);
            QFile::remove(path(left[0]));
        } else {
            EXPECT_TRUE(left.isEmpty()) << left.join(' ').toStdString();
        }
    }
}

TEST_P(ExactlyOnce, SigkillFromOutsideMidFileLeavesTheOldFileAndFreesTheLock)
{
    writeOld(QStringLiteral("night.txt"));
    auto p = start(QStringLiteral("night.txt"), QStringLiteral("lines=200:sleep20000"));
    ASSERT_TRUE(fileStarted()) << "the run never started its file";
    QThread::msleep(200);
    p->kill();   // SIGKILL
    ASSERT_TRUE(p->waitForFinished(5000));
    EXPECT_EQ(bytes(QStringLiteral("night.txt")), kOldFile);
    EXPECT_EQ(waiting(), initial);
    EXPECT_EQ(leftovers().size(), 1);

    // The lock died with the process: the next run does not wait for it.
    QElapsedTimer clock;
    clock.start();
    auto next = start(QStringLiteral("night.txt"), QString(), {}, QStringLiteral("3"));
    const ProgramRun r = finish(*next);
    EXPECT_EQ(r.exitCode, 0) << r.err.toStdString();
    EXPECT_LT(clock.elapsed(), 3000);
    expectEachOnce({QStringLiteral("night.txt")});
    EXPECT_TRUE(leftovers().isEmpty()) << leftovers().join(' ').toStdString();
}

// Failures end the run with status 1 and the cause, the chosen name as it was, nothing marked.
TEST_P(ExactlyOnce, FailedWritesMarksAndWaitsLeaveTheNameAsItWas)
{
    writeOld(QStringLiteral("night.txt"));
    // A marking the database refuses.
    const QString trigger =
        postgres() ? QStringLiteral(
                         "CREATE FUNCTION tp_refuse() RETURNS trigger AS $$ BEGIN RAISE EXCEPTION "
                         "'marking refused'; END $$ LANGUAGE plpgsql;"
                         "CREATE TRIGGER tp_refuse BEFORE UPDATE ON %1 FOR EACH ROW "
                         "EXECUTE FUNCTION tp_refuse()").arg(table())
                   : QStringLiteral("CREATE TRIGGER tp_refuse BEFORE UPDATE ON %1 "
                                    "BEGIN SELECT RAISE(ABORT, 'marking refused'); END").arg(table());
    if (postgres())
        ASSERT_TRUE(pg->run(trigger));
    else {
        db.Exec(trigger);
        ASSERT_EQ(db.appError, 0) << db.errorText.toStdString();
    }
    ProgramRun r = run(QStringLiteral("night.txt"));
    EXPECT_EQ(r.exitCode, 1);
    // The database's own words, on one line.
    EXPECT_TRUE(r.out == QStringLiteral("ERROR:  marking refused. Export unsuccessful\n") ||
                r.out == QStringLiteral("marking refused. Export unsuccessful\n"))
        << r.out.toStdString();
    EXPECT_EQ(bytes(QStringLiteral("night.txt")), kOldFile);
    EXPECT_EQ(waiting(), initial);
    if (postgres())
        ASSERT_TRUE(pg->run(QStringLiteral("DROP TRIGGER tp_refuse ON ") + table()));
    else
        db.Exec(QStringLiteral("DROP TRIGGER tp_refuse"));

    // A failure at each step of the save is the export job's own test; here a device that is
    // always full.
    r = run(QStringLiteral("/dev/full"));
    EXPECT_EQ(r.exitCode, 1);
    EXPECT_EQ(r.out, "No space left on device. Export unsuccessful\n");
    EXPECT_FALSE(QFileInfo(QStringLiteral("/dev/full")).isFile());
    EXPECT_EQ(waiting(), initial);

    // Another run holding the lock past the wait.
    auto holder = start(QStringLiteral("holder.txt"), QStringLiteral("synced:sleep4000"));
    ASSERT_TRUE(fileStarted()) << "the holder never started its file";
    auto p = start(QStringLiteral("night.txt"), QString(), {}, QStringLiteral("1"));
    r = finish(*p);
    EXPECT_EQ(r.exitCode, 1);
    EXPECT_EQ(r.out, "Another export of these records is still running after 1 s. Export unsuccessful\n");
    EXPECT_EQ(bytes(QStringLiteral("night.txt")), kOldFile);
    EXPECT_EQ(finish(*holder).exitCode, 0);
    expectEachOnce({QStringLiteral("holder.txt")});
    EXPECT_TRUE(leftovers().isEmpty()) << leftovers().join(' ').toStdString();
}

// The server goes away between the rename and the commit: whether the marks were committed
// cannot be known, so the chosen name keeps the earlier file and the new one is kept beside it.
TEST_P(ExactlyOnce, ServerLostAtTheCommitKeepsBothFiles)
{
    if (!postgres())
        GTEST_SKIP() << "an SQLite commit either happens or reports that it did not";
    writeOld(QStringLiteral("night.txt"));
    auto p = start(QStringLiteral("night.txt"), QStringLiteral("renamed:sleep2000"));
    QThread::msleep(1200);
    ASSERT_TRUE(pg->run(QStringLiteral("SELECT pg_terminate_backend(pid) FROM pg_stat_activity "
                                       "WHERE datname = current_database() AND pid <> pg_backend_pid() "
                                       "AND state = 'idle in transaction'")));
    const ProgramRun r = finish(*p);
    EXPECT_EQ(r.exitCode, 1);
    const QString kept = path(QStringLiteral("night.txt.unconfirmed"));
    EXPECT_TRUE(r.out.contains(QStringLiteral("; the records may have been marked: the file written is kept as ") + kept))
        << r.out.toStdString();
    EXPECT_TRUE(r.out.endsWith(QStringLiteral(". Export unsuccessful\n")));
    EXPECT_EQ(bytes(QStringLiteral("night.txt")), kOldFile);
    EXPECT_EQ(fileIds(QStringLiteral("night.txt.unconfirmed")).size(), initial.size());
    EXPECT_EQ(waiting(), initial);   // here the commit never reached the server
}

TEST_P(ExactlyOnce, StandardOutputCarriesTheFileAndTheStatusGoesToStandardError)
{
    const ProgramRun r = run(QStringLiteral("-"));
    ASSERT_EQ(r.exitCode, 0) << r.err.toStdString();
    EXPECT_TRUE(r.err.endsWith(QStringLiteral("Export Completed Successfully\n")));
    QFile f(path(QStringLiteral("stdout.txt")));
    ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    f.write(r.out.toLocal8Bit());
    f.close();
    expectEachOnce({QStringLiteral("stdout.txt")});
}

INSTANTIATE_TEST_SUITE_P(EnginesAndDataSets, ExactlyOnce,
                         ::testing::Combine(::testing::Bool(), ::testing::Values(kTimeSet, kInventorySet)),
                         [](const auto& info) {
                             return std::string(std::get<0>(info.param) ? "PostgreSQL" : "SQLite") +
                                    (std::get<1>(info.param).table == kTimeSet.table ? "_Time" : "_Inventory");
                         });

} // namespace
} // namespace tp::test
