// tallyport-batch export of "Time Data", end to end: the built binary on a real SQLite site.
#include "batch_fixture.h"

#include <QFile>

namespace tp::test {
namespace {

const QString kFields = QStringLiteral("EmployeeNumber=Emp,EmployeeLastName,Date,IsJobInRecord");
const QString kCompleted = QStringLiteral("Export Completed Successfully\n");
const QString kRefusal = QStringLiteral("You do not have the appropriate user\n"
                                        "security rights for this functionality.\n"
                                        "Please, see your System Administrator.");

using BatchExport = BatchTest;

TEST_F(BatchExport, WritesTheFileByteForByteAndMarksWhatItWrote)
{
    const BatchRun r = exportTime(kFields, QStringLiteral("time.txt"));
    ASSERT_EQ(r.exitCode, 0) << r.err.toStdString();
    EXPECT_EQ(r.out, kCompleted);
    EXPECT_TRUE(r.err.isEmpty()) << r.err.toStdString();
    EXPECT_EQ(read(path(QStringLiteral("time.txt"))), expectedDefaultFile());

    for (qint64 id : {1, 2, 3, 5})
        EXPECT_EQ(marks(id), QStringLiteral("2/1")) << id;
    EXPECT_EQ(marks(4), QStringLiteral("0/0"));   // not approved: untouched
    EXPECT_EQ(marks(6), QStringLiteral("2/1"));   // exported earlier: untouched
    EXPECT_EQ(waiting(), 0);

    // The next night finds nothing, says so, and writes nothing.
    const BatchRun again = exportTime(kFields, QStringLiteral("again.txt"));
    EXPECT_EQ(again.exitCode, 1);
    EXPECT_EQ(again.out, QStringLiteral("There are no records available.\n"));
    EXPECT_TRUE(again.err.contains(QStringLiteral("There are no records available.")));
    EXPECT_FALSE(QFile::exists(path(QStringLiteral("again.txt"))));
    EXPECT_EQ(marks(1), QStringLiteral("2/1"));
}

TEST_F(BatchExport, FormatsDatesAndTimesOnlyWhenAsked)
{
    const BatchRun plain = exportTime(QStringLiteral("Date,Time"), QStringLiteral("plain.txt"));
    ASSERT_EQ(plain.exitCode, 0) << plain.err.toStdString();
    EXPECT_EQ(read(path(QStringLiteral("plain.txt"))),
              QByteArray("\"Date\",\"Time\"\r\n20240105,93000\r\n20240110,143005\r\n"
                         "20240115,80000\r\n20240131,235959\r\n"));

    exec(QStringLiteral("UPDATE JobTimeRecords SET Approved = 1, ExportID = 0 WHERE NewTimeRecordID IN (1, 2, 3, 5)"));
    const BatchRun formatted = exportTime(QStringLiteral("Date,Time"), QStringLiteral("formatted.txt"),
                                          {QStringLiteral("--format-date"), QStringLiteral("--format-time")});
    ASSERT_EQ(formatted.exitCode, 0) << formatted.err.toStdString();
    EXPECT_EQ(read(path(QStringLiteral("formatted.txt"))),
              // A five-digit time keeps its one-digit hour.
              QByteArray("\"Date\",\"Time\"\r\n\"01/05/2024\",\"9:30:00\"\r\n"
                         "\"01/10/2024\",\"14:30:05\"\r\n\"01/15/2024\",\"8:00:00\"\r\n"
                         "\"01/31/2024\",\"23:59:59\"\r\n"));

    exec(QStringLiteral("UPDATE JobTimeRecords SET Approved = 1, ExportID = 0 WHERE NewTimeRecordID IN (1, 2, 3, 5)"));
    const BatchRun dateOnly = exportTime(QStringLiteral("Date,Time"), QStringLiteral("date-only.txt"),
                                         {QStringLiteral("--format-date")});
    ASSERT_EQ(dateOnly.exitCode, 0);
    EXPECT_TRUE(read(path(QStringLiteral("date-only.txt"))).contains("\"01/05/2024\",93000\r\n"));
}

TEST_F(BatchExport, Utf8DiffersFromTheDefaultOnlyInTheAccentedName)
{
    const BatchRun ansi = exportTime(kFields, QStringLiteral("ansi.txt"),
                                     {QStringLiteral("--encoding"), QStringLiteral("windows-1252")});
    ASSERT_EQ(ansi.exitCode, 0) << ansi.err.toStdString();
    exec(QStringLiteral("UPDATE JobTimeRecords SET Approved = 1, ExportID = 0 WHERE NewTimeRecordID IN (1, 2, 3, 5)"));
    const BatchRun utf8 = exportTime(kFields, QStringLiteral("utf8.txt"),
                                     {QStringLiteral("--encoding=utf-8")});
    ASSERT_EQ(utf8.exitCode, 0) << utf8.err.toStdString();

    const QByteArray ansiBytes = read(path(QStringLiteral("ansi.txt")));
    const QByteArray utf8Bytes = read(path(QStringLiteral("utf8.txt")));
    EXPECT_EQ(ansiBytes, expectedDefaultFile());
    EXPECT_FALSE(utf8Bytes.startsWith("\xEF\xBB\xBF"));
    QByteArray expected = expectedDefaultFile();
    expected.replace("\xe9", "\xc3\xa9");
    EXPECT_EQ(utf8Bytes, expected);
}

TEST_F(BatchExport, DateRangeIncludesBothEndsAndMarksOnlyThatRange)
{
    const BatchRun r = exportTime(QStringLiteral("TimeRecordID,Date"), QStringLiteral("range.txt"),
                                  {QStringLiteral("--from"), QStringLiteral("01/10/2024"),
                                   QStringLiteral("--to"), QStringLiteral("01/15/2024")});
    ASSERT_EQ(r.exitCode, 0) << r.err.toStdString();
    EXPECT_EQ(r.out, kCompleted);
    EXPECT_EQ(read(path(QStringLiteral("range.txt"))),
              QByteArray("\"TimeRecordID\",\"Date\"\r\n2,20240110\r\n3,20240115\r\n"));
    EXPECT_EQ(marks(1), QStringLiteral("1/0"));
    EXPECT_EQ(marks(2), QStringLiteral("2/1"));
    EXPECT_EQ(marks(3), QStringLiteral("2/1"));
    EXPECT_EQ(marks(5), QStringLiteral("1/0"));

    const BatchRun day = exportTime(QStringLiteral("TimeRecordID"), QStringLiteral("day.txt"),
                                    {QStringLiteral("--from"), QStringLiteral("01/31/2024"),
                                     QStringLiteral("--to"), QStringLiteral("01/31/2024")});
    ASSERT_EQ(day.exitCode, 0) << day.err.toStdString();
    EXPECT_EQ(read(path(QStringLiteral("day.txt"))), QByteArray("\"TimeRecordID\"\r\n5\r\n"));
    EXPECT_EQ(marks(5), QStringLiteral("2/1"));
    EXPECT_EQ(marks(1), QStringLiteral("1/0"));
}

TEST_F(BatchExport, RangeWithoutRecordsOrBackwardsWritesNothing)
{
    const BatchRun empty = exportTime(QStringLiteral("Date"), QStringLiteral("empty.txt"),
                                      {QStringLiteral("--from"), QStringLiteral("02/01/2023"),
                                       QStringLiteral("--to"), QStringLiteral("02/28/2023")});
    EXPECT_EQ(empty.exitCode, 1);
    // The window's scan ends through Cancel when nothing matches.
    EXPECT_EQ(empty.out, QStringLiteral("Cancel\n"));
    EXPECT_TRUE(empty.err.contains(QStringLiteral("nothing was written"))) << empty.err.toStdString();
    EXPECT_FALSE(QFile::exists(path(QStringLiteral("empty.txt"))));

    const BatchRun backwards = exportTime(QStringLiteral("Date"), QStringLiteral("back.txt"),
                                          {QStringLiteral("--from"), QStringLiteral("01/31/2024"),
                                           QStringLiteral("--to"), QStringLiteral("01/01/2024")});
    EXPECT_EQ(backwards.exitCode, 1);
    EXPECT_EQ(backwards.err, QStringLiteral("Reset your time values!Invalid Time Entry.\n\n"));
    EXPECT_FALSE(QFile::exists(path(QStringLiteral("back.txt"))));
    EXPECT_EQ(waiting(), 4);
}

TEST_F(BatchExport, MoreThan200RecordsAskFirst)
{
    addMany(201, 100);   // 205 waiting
    QFile old(path(QStringLiteral("big.txt")));
    ASSERT_TRUE(old.open(QIODevice::WriteOnly));
    old.write("last night's file\r\n");
    old.close();

    const QString question = QStringLiteral("There are 205 records to be exported. This may take "
                                            "some time. Do you wish to continue?");
    const BatchRun no = exportTime(QStringLiteral("TimeRecordID"), QStringLiteral("big.txt"));
    EXPECT_EQ(no.exitCode, 1);
    EXPECT_TRUE(no.err.startsWith(question + QLatin1Char('\n'))) << no.err.toStdString();
    EXPECT_TRUE(no.err.contains(QStringLiteral("No")));
    EXPECT_EQ(no.out, QStringLiteral("Process cancel\n"));
    EXPECT_EQ(read(path(QStringLiteral("big.txt"))), QByteArray("last night's file\r\n"));
    EXPECT_EQ(waiting(), 205);

    const BatchRun yes = exportTime(QStringLiteral("TimeRecordID"), QStringLiteral("big.txt"),
                                    {QStringLiteral("--yes")});
    ASSERT_EQ(yes.exitCode, 0) << yes.err.toStdString();
    EXPECT_TRUE(yes.err.startsWith(question)) << yes.err.toStdString();
    EXPECT_EQ(yes.out, kCompleted);
    const QByteArray file = read(path(QStringLiteral("big.txt")));
    EXPECT_EQ(file.count("\r\n"), 206);
    EXPECT_TRUE(file.endsWith("\r\n300\r\n"));
    EXPECT_EQ(waiting(), 0);
    EXPECT_EQ(marks(300), QStringLiteral("2/1"));
}

TEST_F(BatchExport, ReadOnlyFileIsRefusedAndNothingMarked)
{
    const QString file = path(QStringLiteral("locked.txt"));
    QFile f(file);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    f.write("keep");
    f.close();
    ASSERT_TRUE(QFile::setPermissions(file, QFile::ReadOwner | QFile::ReadGroup));

    const BatchRun r = exportTime(kFields, file);
    EXPECT_EQ(r.exitCode, 1);
    EXPECT_EQ(r.err, QStringLiteral("Sorry, cannot save to READ-ONLY file !\nTips:\n"
                                    "- Make this file writable;\n- Select another file;\n"
                                    "- Create new file.\n\n"));
    EXPECT_TRUE(r.out.isEmpty()) << r.out.toStdString();
    EXPECT_EQ(read(file), QByteArray("keep"));
    EXPECT_EQ(waiting(), 4);
}

TEST_F(BatchExport, UnreadableRecordFailsTheRunAndMarksNothing)
{
    exec(QStringLiteral("UPDATE JobTimeRecords SET OdometerReading = NULL WHERE NewTimeRecordID = 3"));
    const BatchRun r = exportTime(QStringLiteral("TimeRecordID,OdometerReading"), QStringLiteral("fault.txt"));
    EXPECT_EQ(r.exitCode, 1);
    // Told once by the scan's first twenty rows and once by the save, as the window tells it.
    EXPECT_EQ(r.err, QStringLiteral("Cannot read Time Record(s)\n\nCannot read Time Record(s)\n\n"));
    EXPECT_EQ(r.out, QStringLiteral("Cannot read Time Record(s). Export unsuccessful\n"));
    // What was written completely stays, as the window leaves it; nothing is marked.
    EXPECT_EQ(read(path(QStringLiteral("fault.txt"))),
              QByteArray("\"TimeRecordID\",\"OdometerReading\"\r\n1,1200\r\n2,1200\r\n"));
    EXPECT_EQ(waiting(), 4);
}

TEST_F(BatchExport, GatesRefuseAsTheWindowsDo)
{
    // User 3 holds none of the export rights.
    const BatchRun guest = exportTime(kFields, QStringLiteral("guest.txt"), {}, QStringLiteral("3"));
    EXPECT_EQ(guest.exitCode, 1);
    EXPECT_EQ(guest.err, kRefusal + QStringLiteral("\n\n"));
    EXPECT_TRUE(guest.out.isEmpty());

    // A user id that is no number never reaches a statement.
    const BatchRun hostile = exportTime(kFields, QStringLiteral("hostile.txt"), {},
                                        QStringLiteral("0 OR 1=1"));
    EXPECT_EQ(hostile.exitCode, 1);
    EXPECT_TRUE(hostile.err.startsWith(kRefusal)) << hostile.err.toStdString();

    // Allowed to export, but not this data set.
    const BatchRun gps = run({QStringLiteral("export"), QStringLiteral("--settings"), QStringLiteral("KRV.ini"),
                              QStringLiteral("--user"), QStringLiteral("2"), QStringLiteral("--dataset"),
                              QStringLiteral("GPS Data"), QStringLiteral("--fields"), QStringLiteral("TrackID"),
                              QStringLiteral("--output"), QStringLiteral("gps.txt"), QStringLiteral("--from"),
                              QStringLiteral("01/01/2024"), QStringLiteral("--to"), QStringLiteral("01/31/2024"),
                              QStringLiteral("--subject"), QStringLiteral("all")});
    EXPECT_EQ(gps.exitCode, 1);
    EXPECT_TRUE(gps.err.startsWith(kRefusal));
    EXPECT_TRUE(gps.err.contains(QStringLiteral("Data sets offered: Time Data")));

    for (const QString& name : {QStringLiteral("guest.txt"), QStringLiteral("hostile.txt"),
                                QStringLiteral("gps.txt")})
        EXPECT_FALSE(QFile::exists(path(name))) << name.toStdString();
    EXPECT_EQ(waiting(), 4);
    EXPECT_EQ(scalar(QStringLiteral("SELECT COUNT(*) FROM JobTimeRecords")), 6);
}

TEST_F(BatchExport, DataSetsNotBuiltYetSaySo)
{
    const BatchRun r = run({QStringLiteral("export"), QStringLiteral("--settings"), QStringLiteral("KRV.ini"),
                            QStringLiteral("--user"), QStringLiteral("1"), QStringLiteral("--dataset"),
                            QStringLiteral("Inventory Data"), QStringLiteral("--fields"),
                            QStringLiteral("InventoryNumber,Date"), QStringLiteral("--output"),
                            QStringLiteral("inv.txt")});
    EXPECT_EQ(r.exitCode, 1);
    EXPECT_EQ(r.err, QStringLiteral("Inventory Data is not available in this version.\n\n"));
    EXPECT_FALSE(QFile::exists(path(QStringLiteral("inv.txt"))));
}

TEST_F(BatchExport, ImportChecksItsOptionsAndGateThenSaysItIsNotBuilt)
{
    QFile input(path(QStringLiteral("vehicles.txt")));
    ASSERT_TRUE(input.open(QIODevice::WriteOnly));
    input.write("VehicleNumber\r\n1\r\n");
    input.close();
    const QStringList base = {QStringLiteral("import"), QStringLiteral("--settings"), QStringLiteral("KRV.ini"),
                              QStringLiteral("--dataset"), QStringLiteral("Vehicle Data"),
                              QStringLiteral("--input"), QStringLiteral("vehicles.txt")};

    const BatchRun allowed = run(base + QStringList{QStringLiteral("--user"), QStringLiteral("2")});
    EXPECT_EQ(allowed.exitCode, 1);
    EXPECT_EQ(allowed.err, QStringLiteral("Import is not available in this version.\n\n"));

    const BatchRun guest = run(base + QStringList{QStringLiteral("--user"), QStringLiteral("3")});
    EXPECT_EQ(guest.exitCode, 1);
    EXPECT_EQ(guest.err, kRefusal + QStringLiteral("\n\n"));

    const BatchRun missing = run({QStringLiteral("import"), QStringLiteral("--settings"), QStringLiteral("KRV.ini"),
                                  QStringLiteral("--user"), QStringLiteral("2"), QStringLiteral("--dataset"),
                                  QStringLiteral("Vehicle Data"), QStringLiteral("--input"),
                                  QStringLiteral("nowhere.txt")});
    EXPECT_EQ(missing.exitCode, 1);
    EXPECT_TRUE(missing.err.contains(QStringLiteral("nowhere.txt")));
}

} // namespace
} // namespace tp::test
