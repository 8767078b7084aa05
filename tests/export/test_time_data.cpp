// The time-data export against real SQLite files: counts, previews, streamed loads, the file
// the save flow writes and the marks it leaves.
#include "delivery/export_job.h"
#include "delivery/export_lock.h"
#include "export/time_data.h"
#include "time_fixture.h"

#include <QFileInfo>
#include <QElapsedTimer>
#include <QRegularExpression>
#include <QThread>
#include <atomic>
#include <thread>
#include <sys/resource.h>
#include <csignal>

namespace tp::test {
namespace {

OutputColumn col(const QString& name, const QString& header = QString())
{
    static const QHash<QString, QString> types = {
        {"EmployeeFirstName", "Text"}, {"EmployeeLastName", "Text"},
        {"IsJobInRecord", "Boolean"},  {"IsTimeInRecord", "Boolean"},
        {"IsJobOutRecord", "Boolean"}, {"IsTimeOutRecord", "Boolean"}};
    return {name, types.value(name, QStringLiteral("Number")), header.isNull() ? name : header};
}

ExportRequest timeRequest()
{
    ExportRequest r;
    r.table = kTableTime;
    r.settingsFile = QStringLiteral("KRV.ini");
    return r;
}

ExportRequest dated(const QString& start, const QString& stop)
{
    ExportRequest r = timeRequest();
    r.byDate = true;
    r.start = start;
    r.stop = stop;
    return r;
}

// Every case runs on SQLite, and on PostgreSQL when a test server is named.
class TimeExport : public TimeDbTest, public ::testing::WithParamInterface<bool> {
protected:
    TimeExport() { usePostgres = GetParam(); }

    ExportJobResult run(const std::vector<OutputColumn>& columns,
                        const ExportRequest& request = timeRequest(),
                        const QString& file = QStringLiteral("out.txt"))
    {
        ExportJob job;
        job.request = request;
        job.columns = columns;
        job.fileName = file.isEmpty() ? QString() : path(file);
        job.database = &db;
        return runExport(job, assembler, feedback, cancel);
    }
    QByteArray output() const { return readFile(path(QStringLiteral("out.txt"))); }

    TimeAssembler assembler{db, feedback};
    bool cancel = false;
};

TEST_P(TimeExport, WritesTheDocumentedExampleAndMarksTheRecords)
{
    addEmployee(17, QStringLiteral("John"), QStringLiteral("Smith"));
    addTime({});
    const ExportJobResult r = run({col("EmployeeNumber", "Emp"), col("EmployeeLastName"),
                                   col("Date"), col("IsJobInRecord")});
    EXPECT_EQ(r.outcome, ExportJobResult::Completed);
    EXPECT_EQ(r.status, kExportCompleted);
    EXPECT_EQ(feedback.lastStatus, kExportCompleted);
    EXPECT_EQ(output(), QByteArray("\"Emp\",\"EmployeeLastName\",\"Date\",\"IsJobInRecord\"\r\n"
                                   "17,\"Smith\",20050131,#TRUE#\r\n"));
    EXPECT_EQ(r.records, 1);
    EXPECT_EQ(r.marked, 1);
    EXPECT_EQ(scalar("SELECT Approved FROM JobTimeRecords"), 2);
    EXPECT_EQ(scalar("SELECT ExportID FROM JobTimeRecords"), 1);
    // Marked records are not offered again.
    EXPECT_EQ(assembler.count(timeRequest()), 0);
    EXPECT_EQ(assembler.available(timeRequest()), 0);
}

TEST_P(TimeExport, FieldChoicesShapeEveryLine)
{
    addEmployee(17, QStringLiteral("John"), QStringLiteral("Smith"));
    if (usePostgres)   // the product may keep tenths; SQLite keeps them in any column
        exec("ALTER TABLE JobTimeRecords ALTER COLUMN OdometerReading TYPE double precision");
    addTime({.id = 41, .vehicle = 9, .odometer = "12.50"});
    addTime({.id = 42, .vehicle = 9, .jobIn = 0, .timeOut = 0, .odometer = "-95.2"});

    // One field: no comma anywhere.
    run({col("TimeRecordID")});
    EXPECT_EQ(output(), QByteArray("\"TimeRecordID\"\r\n41\r\n42\r\n"));

    exec("UPDATE JobTimeRecords SET Approved = 1, ExportID = 0");
    run({col("VehicleNumber", ""), col("OdometerReading", "Odo \"km\""), col("IsTimeOutRecord"),
         col("EmployeeFirstName")});
    EXPECT_EQ(output(), QByteArray("\"\",\"Odo \"km\"\",\"IsTimeOutRecord\",\"EmployeeFirstName\"\r\n"
                                   "9,12.5,#TRUE#,\"John\"\r\n9,-95.2,#FALSE#,\"John\"\r\n"));

    // A truth value in a column typed Text stays text; Approved and ExportID as they were read.
    exec("UPDATE JobTimeRecords SET Approved = 1, ExportID = 0");
    run({{"IsJobInRecord", "Text", "J"}, col("Approved"), col("ExportID")});
    EXPECT_EQ(output(), QByteArray("\"J\",\"Approved\",\"ExportID\"\r\n\"True\",1,0\r\n\"False\",1,0\r\n"));
}

// Only a run that another run overtook can find nothing: it writes no file at all.
TEST_P(TimeExport, NoWaitingRecordsLeftWritesNoFile)
{
    addTime({.approved = 2, .exportId = 1});
    addTime({.id = 2, .exportId = 1});   // exported once and approved again: not offered
    const ExportJobResult r = run({col("Date")});
    EXPECT_EQ(r.outcome, ExportJobResult::NothingLeft);
    EXPECT_EQ(r.status, QStringLiteral("There are no records available."));
    EXPECT_FALSE(QFileInfo::exists(path("out.txt")));
    EXPECT_TRUE(feedback.statuses.contains(QStringLiteral("0 Record(s) found")));
    EXPECT_EQ(r.marked, -1);
    EXPECT_EQ(scalar("SELECT SUM(ExportID) FROM JobTimeRecords"), 2);
}

TEST_P(TimeExport, NamesComeFromEmployeeInfoWithOneLookupPerEmployee)
{
    addEmployee(17, QStringLiteral("John"), QStringLiteral("Smith"));
    addEmployee(18, QStringLiteral(""), QStringLiteral("Doe"));
    const qint32 employees[] = {17, 17, 17, 18, 18, 99, 17};
    for (int i = 0; i < 7; ++i)
        addTime({.id = i + 1, .employee = employees[i]});
    run({col("EmployeeNumber"), col("EmployeeFirstName"), col("EmployeeLastName")});
    EXPECT_EQ(output(), QByteArray("\"EmployeeNumber\",\"EmployeeFirstName\",\"EmployeeLastName\"\r\n"
                                   "17,\"John\",\"Smith\"\r\n17,\"John\",\"Smith\"\r\n"
                                   "17,\"John\",\"Smith\"\r\n18,\"Unknown\",\"Doe\"\r\n"
                                   "18,\"Unknown\",\"Doe\"\r\n99,\"Unknown\",\"Unknown\"\r\n"
                                   "17,\"John\",\"Smith\"\r\n"));
    // Consecutive records of one employee share a look-up; no employee is looked up twice.
    EXPECT_EQ(assembler.lookups().queriesRun(), 3);
    EXPECT_TRUE(feedback.messages().isEmpty());
}

TEST_P(TimeExport, LumtrekTakesTheSingleNameAndNoLastName)
{
    addEmployee(17, QStringLiteral("John"), QStringLiteral("Smith"), QStringLiteral("J. Smith"));
    addTime({});
    ExportRequest r = timeRequest();
    r.settingsFile = QStringLiteral("lumtrek.ini");
    run({col("EmployeeFirstName"), col("EmployeeLastName")}, r);
    EXPECT_EQ(output(), QByteArray("\"EmployeeFirstName\",\"EmployeeLastName\"\r\n"
                                   "\"J. Smith\",\"Unknown\"\r\n"));

    // The grid shows the name as the look-up leaves it: no "Unknown" for the last name.
    exec("UPDATE JobTimeRecords SET Approved = 1, ExportID = 0");
    addTime({.id = 2, .employee = 99});
    r.fields = QStringList{"EmployeeFirstName", "EmployeeLastName"};
    const PreviewResult p = assembler.preview(r, 2);
    ASSERT_EQ(p.rows.size(), 2u);
    EXPECT_EQ(p.rows[0], QStringList({"J. Smith", ""}));
    EXPECT_EQ(p.rows[1], QStringList({"", ""}));
}

TEST_P(TimeExport, DateRangesIncludeBothEnds)
{
    const qint32 dates[] = {20041231, 20050101, 20050115, 20050131, 20050201};
    for (int i = 0; i < 5; ++i)
        addTimeOn(10 - i, dates[i]);   // stored in reverse date order: the range sorts by date
    EXPECT_EQ(assembler.count(dated("20050101", "20050131")), 3);
    EXPECT_EQ(assembler.count(dated("20050115", "20050115")), 1);
    EXPECT_EQ(assembler.count(dated("20041231", "20050131")), 4);

    const ExportJobResult r = run({col("TimeRecordID"), col("Date")}, dated("20050101", "20050131"));
    EXPECT_EQ(output(), QByteArray("\"TimeRecordID\",\"Date\"\r\n9,20050101\r\n8,20050115\r\n"
                                   "7,20050131\r\n"));
    EXPECT_EQ(r.marked, 3);
    EXPECT_EQ(scalar("SELECT COUNT(*) FROM JobTimeRecords WHERE Approved = 1"), 2);
    // The date-range load reports its own way.
    EXPECT_TRUE(feedback.statuses.contains(QStringLiteral("Retrieving 3")));
    EXPECT_FALSE(feedback.statuses.contains(QStringLiteral("3  Record(s) found")));
}

TEST_P(TimeExport, AskBeforeMoreThanTwoHundredRecords)
{
    addMany(200);
    ExportJobResult r = run({col("TimeRecordID")});
    EXPECT_TRUE(feedback.questions().isEmpty());
    EXPECT_EQ(r.records, 200);
    EXPECT_TRUE(feedback.statuses.contains(QStringLiteral("Retrieving  ...")));
    EXPECT_TRUE(feedback.statuses.contains(QStringLiteral("Retrieving Record # 200 Of 200")));
    EXPECT_TRUE(feedback.statuses.contains(QStringLiteral("200  Record(s) found")));
    EXPECT_TRUE(feedback.statuses.contains(QStringLiteral("Saving Record # 200 Of 200")));

    addMany(201, 1001);
    const QByteArray before = output();
    feedback.answers = {AnswerNo};
    r = run({col("TimeRecordID")});
    ASSERT_EQ(feedback.questions().size(), 1);
    EXPECT_EQ(feedback.questions().at(0),
              QStringLiteral("There are 201 records to be exported. This may take some time. Do "
                             "you wish to continue?"));
    EXPECT_EQ(r.outcome, ExportJobResult::Declined);
    EXPECT_EQ(r.status, kFileNameEmpty);
    EXPECT_EQ(r.records, 0);
    EXPECT_TRUE(cancel);
    EXPECT_EQ(output(), before);   // the chosen file is left as it was
    EXPECT_EQ(scalar("SELECT COUNT(*) FROM JobTimeRecords WHERE Approved = 1"), 201);

    feedback.answers = {AnswerYes};
    r = run({col("TimeRecordID")});
    EXPECT_FALSE(cancel);
    EXPECT_EQ(r.records, 201);
    EXPECT_EQ(r.marked, 201);
}

TEST_P(TimeExport, CancelStopsTheLoadAndLeavesFileAndRecords)
{
    addMany(600);
    feedback.answers = {AnswerYes};
    feedback.onYield = [&] {
        if (feedback.yields > 1)
            cancel = true;
    };
    const ExportJobResult r = run({col("TimeRecordID")});
    EXPECT_EQ(r.outcome, ExportJobResult::Cancelled);
    EXPECT_EQ(r.status, kFileNameEmpty);
    EXPECT_TRUE(feedback.statuses.contains(QStringLiteral("Cancel")));
    EXPECT_FALSE(QFileInfo::exists(path("out.txt")));
    QStringList left = QDir(dir.path()).entryList(QDir::Files | QDir::Hidden);
    left = left.filter(QRegularExpression("^(?!primary\\.db)"));
    EXPECT_TRUE(left.isEmpty()) << left.join(' ').toStdString();
    EXPECT_EQ(scalar("SELECT COUNT(*) FROM JobTimeRecords WHERE Approved = 1"), 600);
}

TEST_P(TimeExport, NullValueFailsTheLoadAndMarksNothing)
{
    addMany(3);
    exec("UPDATE JobTimeRecords SET CustomerNumber = NULL WHERE NewTimeRecordID = 2");
    const ExportJobResult r = run({col("TimeRecordID"), col("CustomerNumber")});
    EXPECT_EQ(r.outcome, ExportJobResult::Failed);
    EXPECT_EQ(r.status, QStringLiteral("Cannot read Time Record(s). Export unsuccessful"));
    EXPECT_EQ(feedback.messages(), QStringList{"Cannot read Time Record(s)"});
    EXPECT_TRUE(feedback.statuses.contains(QStringLiteral("Error Retrieving Record at # 2")));
    EXPECT_FALSE(QFileInfo::exists(path("out.txt")));
    EXPECT_EQ(scalar("SELECT COUNT(*) FROM JobTimeRecords WHERE Approved = 1"), 3);
}

TEST_P(TimeExport, WriteErrorNamesTheCauseLeavesTheOldFileAndMarksNothing)
{
    addMany(3000);
    const QByteArray old = "the file of an earlier night\r\n";
    ASSERT_TRUE(writeBytes(path("out.txt"), old));
    feedback.answers = {AnswerYes};
    // A file-size limit makes the disk refuse the export part-way.
    std::signal(SIGXFSZ, SIG_IGN);
    rlimit before{};
    getrlimit(RLIMIT_FSIZE, &before);
    rlimit small = before;
    small.rlim_cur = 20000;
    setrlimit(RLIMIT_FSIZE, &small);
    const ExportJobResult r = run({col("TimeRecordID"), col("EmployeeNumber"), col("Date")});
    setrlimit(RLIMIT_FSIZE, &before);

    EXPECT_EQ(r.outcome, ExportJobResult::Failed);
    EXPECT_EQ(r.status, QStringLiteral("File too large. Export unsuccessful"));
    EXPECT_EQ(r.marked, -1);
    EXPECT_EQ(scalar("SELECT COUNT(*) FROM JobTimeRecords WHERE Approved = 1"), 3000);
    EXPECT_EQ(output(), old);
    EXPECT_EQ(QDir(dir.path()).entryList({"*.txt*"}, QDir::Files | QDir::Hidden), QStringList{"out.txt"});
}

// Stopped by a failure at each step of the save: the chosen name keeps the earlier file, no
// record is marked and no file of the run is left behind; after the commit nothing is undone.
TEST_P(TimeExport, FailureAtEachStepLeavesTheNameAsItWasAndMarksNothing)
{
    addMany(5);
    const QByteArray old = "the file of an earlier night\r\n";
    const char* const points[] = {"lines=3:fail", "synced:fail", "marked:fail", "renamed:fail"};
    for (const char* point : points) {
        SCOPED_TRACE(point);
        ASSERT_TRUE(writeBytes(path("out.txt"), old));
        qputenv("TALLYPORT_EXPORT_FAULT", point);
        const ExportJobResult r = run({col("TimeRecordID")});
        qunsetenv("TALLYPORT_EXPORT_FAULT");
        EXPECT_EQ(r.outcome, ExportJobResult::Failed);
        EXPECT_EQ(r.status, QString::fromLatin1(point).startsWith("lines")
                                ? QStringLiteral("No space left on device. Export unsuccessful")
                                : QStringLiteral("Injected failure. Export unsuccessful"));
        EXPECT_EQ(output(), old);
        EXPECT_EQ(scalar("SELECT COUNT(*) FROM JobTimeRecords WHERE Approved = 1 AND ExportID = 0"), 5);
        EXPECT_EQ(QDir(dir.path()).entryList({"*.txt*"}, QDir::Files | QDir::Hidden), QStringList{"out.txt"});
    }
    qputenv("TALLYPORT_EXPORT_FAULT", "committed:fail");
    const ExportJobResult r = run({col("TimeRecordID")});
    qunsetenv("TALLYPORT_EXPORT_FAULT");
    EXPECT_EQ(r.outcome, ExportJobResult::Completed);
    EXPECT_EQ(output(), QByteArray("\"TimeRecordID\"\r\n1\r\n2\r\n3\r\n4\r\n5\r\n"));
    EXPECT_EQ(scalar("SELECT COUNT(*) FROM JobTimeRecords WHERE Approved = 2 AND ExportID = 1"), 5);
}

// Marks go to the records written, by their identity, while they still wait: one the product
// edits after the load is marked; one it stops or starts approving meanwhile is not.
TEST_P(TimeExport, MarksFollowTheRecordsIdentityAndTheSelection)
{
    addTime({.id = 1, .approved = 0});
    addMany(4, 2);
    feedback.onYield = [&] {
        db.Exec("UPDATE JobTimeRecords SET Approved = 1 WHERE NewTimeRecordID = 1");
        db.Exec("UPDATE JobTimeRecords SET OdometerReading = 99, CustomerNumber = 7 WHERE NewTimeRecordID = 2");
        db.Exec("UPDATE JobTimeRecords SET Approved = 0 WHERE NewTimeRecordID = 3");
    };
    const ExportJobResult r = run({col("TimeRecordID")});
    EXPECT_EQ(output(), QByteArray("\"TimeRecordID\"\r\n2\r\n3\r\n4\r\n5\r\n"));
    EXPECT_EQ(r.records, 4);
    EXPECT_EQ(r.marked, 3);
    EXPECT_EQ(scalar("SELECT Approved * 10 + ExportID FROM JobTimeRecords WHERE NewTimeRecordID = 1"), 10);
    EXPECT_EQ(scalar("SELECT Approved * 10 + ExportID FROM JobTimeRecords WHERE NewTimeRecordID = 2"), 21);
    EXPECT_EQ(scalar("SELECT Approved * 10 + ExportID FROM JobTimeRecords WHERE NewTimeRecordID = 3"), 0);
    EXPECT_EQ(scalar("SELECT COUNT(*) FROM JobTimeRecords WHERE Approved = 2 AND ExportID = 1"), 3);
}

// A long export reads in pieces: every record once and in order across the pieces, by date
// and not, and the product can write meanwhile (here while the export waits mid-file).
TEST_P(TimeExport, LongLoadsReadEveryRecordOnceAndLetTheProductWrite)
{
    addMany(4500);
    exec("UPDATE JobTimeRecords SET Date = 20050130 WHERE NewTimeRecordID > 3900");
    feedback.defaultYes = true;
    std::atomic<bool> midFile{false};
    std::atomic<qint64> writeMs{-1};
    feedback.onYield = [&] {
        if (feedback.lastDone >= 2500)
            midFile = true;
    };
    const QString location = usePostgres ? pg->url() : dbFile;
    std::thread product([&] {
        while (!midFile)
            QThread::msleep(5);
        cDAO other;
        if (!other.DB_Connect(location, QString(), QStringLiteral("Admin"), QString()))
            return;
        QElapsedTimer clock;
        clock.start();
        other.Exec("INSERT INTO EmployeeInfo (EmployeeNumber, Name) VALUES (77, 'New')");
        if (other.appError == 0)
            writeMs = clock.elapsed();
        other.DB_Close();
    });
    qputenv("TALLYPORT_EXPORT_FAULT", "lines=3000:sleep1500");
    ExportJobResult r = run({col("TimeRecordID")});
    qunsetenv("TALLYPORT_EXPORT_FAULT");
    product.join();
    EXPECT_GE(writeMs, 0);
    EXPECT_LT(writeMs, 1000);   // a reader holding the database would keep it for the 1.5 s pause

    QByteArray expected = "\"TimeRecordID\"\r\n";
    for (int id = 1; id <= 4500; ++id)
        expected += QByteArray::number(id) + "\r\n";
    EXPECT_EQ(r.records, 4500);
    EXPECT_EQ(output(), expected);
    EXPECT_EQ(r.marked, 4500);

    // By date: the later date's records first go last, each once.
    exec("UPDATE JobTimeRecords SET Approved = 1, ExportID = 0");
    r = run({col("TimeRecordID")}, dated("20050101", "20050131"));
    expected = "\"TimeRecordID\"\r\n";
    for (int id = 3901; id <= 4500; ++id)
        expected += QByteArray::number(id) + "\r\n";
    for (int id = 1; id <= 3900; ++id)
        expected += QByteArray::number(id) + "\r\n";
    EXPECT_EQ(output(), expected);
    EXPECT_EQ(r.marked, 4500);
}

// Another export holding the data set's lock: the run waits, saying so, and the Cancel button
// or the end of the wait stops it with nothing written or marked; once free, it runs.
TEST_P(TimeExport, AnotherExportsLockIsWaitedForWithinBounds)
{
    addMany(3);
    cDAO other;
    ASSERT_TRUE(other.DB_Connect(usePostgres ? pg->url() : dbFile, QString(), QStringLiteral("Admin"), QString()));
    ScriptedFeedback otherFeedback;
    ExportLock held(other, otherFeedback);
    const bool never = false;
    ASSERT_EQ(held.acquire(kTableTime, never), ExportLock::Outcome::Taken);

    feedback.onYield = [&] { cancel = feedback.yields > 3; };
    ExportJobResult r = run({col("TimeRecordID")});
    EXPECT_EQ(r.outcome, ExportJobResult::Cancelled);
    EXPECT_EQ(r.status, kFileNameEmpty);
    EXPECT_TRUE(feedback.statuses.contains(
        QStringLiteral("Waiting for another export of these records to finish (up to 60 s) ...")));

    cancel = false;
    feedback.onYield = nullptr;
    qputenv("TALLYPORT_EXPORT_WAIT", "1");
    r = run({col("TimeRecordID")});
    qunsetenv("TALLYPORT_EXPORT_WAIT");
    EXPECT_EQ(r.outcome, ExportJobResult::Failed);
    EXPECT_EQ(r.status, QStringLiteral("Another export of these records is still running after 1 s. Export unsuccessful"));
    EXPECT_FALSE(QFileInfo::exists(path("out.txt")));
    EXPECT_EQ(scalar("SELECT COUNT(*) FROM JobTimeRecords WHERE Approved = 1"), 3);

    held.release();
    r = run({col("TimeRecordID")});
    EXPECT_EQ(r.outcome, ExportJobResult::Completed);
    EXPECT_EQ(r.marked, 3);
}

// The read-only refusal is checked through the Export window and the batch tool.
TEST_P(TimeExport, NoNameOrNoFolderEndsTheSaveWithoutMarks)
{
    addTime({});
    ExportJobResult r = run({col("Date")}, timeRequest(), QString());
    EXPECT_EQ(r.outcome, ExportJobResult::NoFileName);
    EXPECT_EQ(feedback.lastStatus, kFileNameEmpty);
    EXPECT_EQ(scalar("SELECT COUNT(*) FROM JobTimeRecords WHERE Approved = 1"), 1);

    // A folder that does not exist: the engine's description, then the outcome.
    r = run({col("Date")}, timeRequest(), "no/such/folder/out.txt");
    EXPECT_EQ(r.outcome, ExportJobResult::Failed);
    EXPECT_TRUE(r.status.endsWith(". Export unsuccessful"));
    EXPECT_EQ(scalar("SELECT COUNT(*) FROM JobTimeRecords WHERE Approved = 1"), 1);
}

TEST_P(TimeExport, ExistingFileIsReplacedWithItsPermissionsKept)
{
    addTime({});
    const QString file = path("out.txt");
    ASSERT_TRUE(writeBytes(file, "a much longer old content than the new file will have\r\n"));
    QFile::setPermissions(file, QFileDevice::ReadOwner | QFileDevice::WriteOwner);
    run({col("Date")});
    EXPECT_EQ(output(), QByteArray("\"Date\"\r\n20050131\r\n"));
    const auto ownerGroupOther = QFileDevice::Permissions::fromInt(0x7077);
    EXPECT_EQ(QFileInfo(file).permissions() & ownerGroupOther,
              QFileDevice::ReadOwner | QFileDevice::WriteOwner);
}

class TimeScan : public TimeExport {};

TEST_P(TimeScan, CountsAndPreviewsFillAtMostTwentyRows)
{
    addEmployee(17, QStringLiteral("John"), QStringLiteral("Smith"));
    addMany(37);
    ExportRequest r = timeRequest();
    r.fields = QStringList{"TimeRecordID", "EmployeeLastName", "Time", "Nonsense"};
    EXPECT_EQ(assembler.count(r), 37);
    PreviewResult p = assembler.preview(r, 37);
    EXPECT_FALSE(p.failed);
    EXPECT_EQ(p.gridRows, 20);
    ASSERT_EQ(p.rows.size(), 20u);
    EXPECT_EQ(p.rows[19], QStringList({"20", "Smith", "80019", ""}));
    EXPECT_TRUE(p.timeFilled);
    EXPECT_FALSE(p.dateFilled);
    EXPECT_EQ(feedback.lastStatus, QStringLiteral("20 of 37  Record(s) found"));
    EXPECT_TRUE(feedback.statuses.contains(QStringLiteral("Retrieving Record # 20 Of 37")));

    exec("DELETE FROM JobTimeRecords WHERE NewTimeRecordID > 5");
    EXPECT_EQ(assembler.count(r), 5);
    p = assembler.preview(r, 5);
    EXPECT_EQ(p.gridRows, 5);
    EXPECT_EQ(p.rows.size(), 5u);
    EXPECT_EQ(feedback.lastStatus, QStringLiteral("20 of 5  Record(s) found"));

    r = dated("20050131", "20050131");
    r.fields = QStringList{"Date"};
    p = assembler.preview(r, 5);
    EXPECT_EQ(p.rows.size(), 5u);
    EXPECT_TRUE(p.dateFilled);
    EXPECT_FALSE(p.timeFilled);
    EXPECT_EQ(feedback.lastStatus, QStringLiteral("Retrieving 5"));
}

TEST_P(TimeScan, EmptySelectionsAndFailures)
{
    ExportRequest r = timeRequest();
    EXPECT_EQ(assembler.count(r), 0);
    EXPECT_EQ(feedback.lastStatus, QStringLiteral("0 Record(s) found"));
    feedback.statuses.clear();
    EXPECT_EQ(assembler.count(dated("20050101", "20050131")), 0);
    EXPECT_TRUE(feedback.statuses.isEmpty());

    // Without the table every operation fails the documented way.
    exec("DROP TABLE JobTimeRecords");
    EXPECT_EQ(assembler.count(r), -1);
    EXPECT_EQ(feedback.messages().last(), QStringLiteral("Cannot read Time Record(s)"));
    EXPECT_EQ(feedback.lastStatus, QStringLiteral("Error Retrieving Record at # 0"));
    EXPECT_EQ(assembler.count(dated("20050101", "20050131")), -1);
    EXPECT_EQ(feedback.messages().last(), QStringLiteral("Cannot read Time record(s)"));
    r.fields = QStringList{"Date"};
    EXPECT_TRUE(assembler.preview(r, 3).failed);
    EXPECT_EQ(assembler.mark(r, nullptr), -1);
    EXPECT_EQ(assembler.available(r), -1);
}

TEST_P(TimeScan, PreviewHoldsNamesBetweenCellsAsTheGridAlwaysDid)
{
    addEmployee(17, QStringLiteral("John"), QStringLiteral("Smith"));
    addEmployee(18, QStringLiteral("Ann"), QStringLiteral("Lee"));
    addTime({.id = 1});
    addTime({.id = 2, .employee = 18});
    addTime({.id = 3, .employee = 99});
    ExportRequest r = timeRequest();
    r.fields = QStringList{"EmployeeFirstName", "EmployeeLastName"};
    PreviewResult p = assembler.preview(r, 3);
    ASSERT_EQ(p.rows.size(), 3u);
    EXPECT_EQ(p.rows[0], QStringList({"John", "Smith"}));
    EXPECT_EQ(p.rows[1], QStringList({"Ann", "Lee"}));
    EXPECT_EQ(p.rows[2], QStringList({"Unknown", "Unknown"}));

    // Last name first: the first name's look-up leaves a last name held for the next row.
    r.fields = QStringList{"EmployeeLastName", "EmployeeFirstName"};
    p = assembler.preview(r, 3);
    ASSERT_EQ(p.rows.size(), 3u);
    EXPECT_EQ(p.rows[0], QStringList({"Smith", "John"}));
    EXPECT_EQ(p.rows[1], QStringList({"Smith", "Ann"}));
    EXPECT_EQ(p.rows[2], QStringList({"Lee", "Unknown"}));
}

TEST_P(TimeScan, MarkWithoutRowsTakesTheWholeSelection)
{
    addMany(4);
    addTimeOn(50, 20050301);
    EXPECT_EQ(assembler.mark(dated("20050101", "20050131"), nullptr), 4);
    EXPECT_EQ(scalar("SELECT COUNT(*) FROM JobTimeRecords WHERE Approved = 2 AND ExportID = 1"), 4);
    feedback.statuses.clear();
    EXPECT_EQ(assembler.mark(dated("20050101", "20050131"), nullptr), 0);
    EXPECT_TRUE(feedback.statuses.isEmpty());
    EXPECT_EQ(assembler.mark(timeRequest(), nullptr), 1);
    EXPECT_EQ(assembler.mark(timeRequest(), nullptr), 0);
    EXPECT_EQ(feedback.lastStatus, QStringLiteral("0 Record(s) found"));
}

std::string engineName(const ::testing::TestParamInfo<bool>& info)
{
    return info.param ? "PostgreSQL" : "SQLite";
}

INSTANTIATE_TEST_SUITE_P(Engines, TimeExport, ::testing::Bool(), engineName);
INSTANTIATE_TEST_SUITE_P(Engines, TimeScan, ::testing::Bool(), engineName);

} // namespace
} // namespace tp::test
