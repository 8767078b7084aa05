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
    const BatchRun r = exportTime(kFields, "time.txt");
    ASSERT_EQ(r.exitCode, 0) << r.err.toStdString();
    EXPECT_EQ(r.out, kCompleted);
    EXPECT_TRUE(r.err.isEmpty()) << r.err.toStdString();
    EXPECT_EQ(readBytes(path("time.txt")), expectedDefaultFile());

    for (qint64 id : {1, 2, 3, 5})
        EXPECT_EQ(marks(id), "2:1") << id;
    EXPECT_EQ(marks(4), "0:0");   // not approved: untouched
    EXPECT_EQ(marks(6), "2:1");   // exported earlier: untouched
    EXPECT_EQ(waiting(), 0);

    // The next night finds nothing, says so, and writes nothing.
    const BatchRun again = exportTime(kFields, "again.txt");
    EXPECT_EQ(again.exitCode, 1);
    EXPECT_EQ(again.out, "There are no records available.\n");
    EXPECT_TRUE(again.err.contains("There are no records available."));
    EXPECT_FALSE(QFile::exists(path("again.txt")));
    EXPECT_EQ(marks(1), "2:1");
}

// Both formats on together, and off, are compared with the window's file elsewhere.
TEST_F(BatchExport, DateFormatAloneLeavesTheTimeANumber)
{
    const BatchRun r = exportTime("Date,Time", "date-only.txt", {"--format-date"});
    ASSERT_EQ(r.exitCode, 0) << r.err.toStdString();
    EXPECT_EQ(readBytes(path("date-only.txt")),
              QByteArray("\"Date\",\"Time\"\r\n\"01/05/2024\",93000\r\n\"01/10/2024\",143005\r\n"
                         "\"01/15/2024\",80000\r\n\"01/31/2024\",235959\r\n"));
}

TEST_F(BatchExport, Utf8DiffersFromTheDefaultOnlyInTheAccentedName)
{
    const BatchRun ansi = exportTime(kFields, "ansi.txt", {"--encoding", "windows-1252"});
    ASSERT_EQ(ansi.exitCode, 0) << ansi.err.toStdString();
    unmark();
    const BatchRun utf8 = exportTime(kFields, "utf8.txt", {"--encoding=utf-8"});
    ASSERT_EQ(utf8.exitCode, 0) << utf8.err.toStdString();

    EXPECT_EQ(readBytes(path("ansi.txt")), expectedDefaultFile());
    QByteArray expected = expectedDefaultFile();
    expected.replace("\xe9", "\xc3\xa9");   // and no byte-order mark
    EXPECT_EQ(readBytes(path("utf8.txt")), expected);
}

TEST_F(BatchExport, RangeWithoutRecordsOrBackwardsWritesNothing)
{
    const BatchRun empty = exportTime("Date", "empty.txt", {"--from", "02/01/2023", "--to", "02/28/2023"});
    EXPECT_EQ(empty.exitCode, 1);
    // The window's scan ends through Cancel when nothing matches.
    EXPECT_EQ(empty.out, "Cancel\n");
    EXPECT_TRUE(empty.err.contains("nothing was written")) << empty.err.toStdString();
    EXPECT_FALSE(QFile::exists(path("empty.txt")));

    const BatchRun backwards = exportTime("Date", "back.txt", {"--from", "01/31/2024", "--to", "01/01/2024"});
    EXPECT_EQ(backwards.exitCode, 1);
    EXPECT_EQ(backwards.err, "Reset your time values!Invalid Time Entry.\n\n");
    EXPECT_FALSE(QFile::exists(path("back.txt")));
    EXPECT_EQ(waiting(), 4);
}

TEST_F(BatchExport, MoreThan200RecordsAskFirst)
{
    addMany(201, 100);   // 205 waiting
    ASSERT_TRUE(writeBytes(path("big.txt"), "last night's file\r\n"));

    const QString question = QStringLiteral("There are 205 records to be exported. This may take "
                                            "some time. Do you wish to continue?");
    const BatchRun no = exportTime("TimeRecordID", "big.txt");
    EXPECT_EQ(no.exitCode, 1);
    EXPECT_TRUE(no.err.startsWith(question + '\n')) << no.err.toStdString();
    EXPECT_TRUE(no.err.contains("No"));
    EXPECT_EQ(no.out, "Process cancel\n");
    EXPECT_EQ(readBytes(path("big.txt")), QByteArray("last night's file\r\n"));
    EXPECT_EQ(waiting(), 205);

    const BatchRun yes = exportTime("TimeRecordID", "big.txt", {"--yes"});
    ASSERT_EQ(yes.exitCode, 0) << yes.err.toStdString();
    EXPECT_TRUE(yes.err.startsWith(question)) << yes.err.toStdString();
    EXPECT_EQ(yes.out, kCompleted);
    const QByteArray file = readBytes(path("big.txt"));
    EXPECT_EQ(file.count("\r\n"), 206);
    EXPECT_TRUE(file.endsWith("\r\n300\r\n"));
    EXPECT_EQ(waiting(), 0);
    EXPECT_EQ(marks(300), "2:1");
}

TEST_F(BatchExport, ReadOnlyFileIsRefusedAndNothingMarked)
{
    const QString file = path("locked.txt");
    ASSERT_TRUE(writeBytes(file, "keep"));
    ASSERT_TRUE(QFile::setPermissions(file, QFile::ReadOwner | QFile::ReadGroup));

    const BatchRun r = exportTime(kFields, file);
    EXPECT_EQ(r.exitCode, 1);
    EXPECT_EQ(r.err, "Sorry, cannot save to READ-ONLY file !\nTips:\n- Make this file writable;\n"
                     "- Select another file;\n- Create new file.\n\n");
    EXPECT_TRUE(r.out.isEmpty()) << r.out.toStdString();
    EXPECT_EQ(readBytes(file), QByteArray("keep"));
    EXPECT_EQ(waiting(), 4);
}

TEST_F(BatchExport, UnreadableRecordFailsTheRunAndMarksNothing)
{
    exec("UPDATE JobTimeRecords SET OdometerReading = NULL WHERE NewTimeRecordID = 3");
    const BatchRun r = exportTime("TimeRecordID,OdometerReading", "fault.txt");
    EXPECT_EQ(r.exitCode, 1);
    // Told once by the scan's first twenty rows and once by the save, as the window tells it.
    EXPECT_EQ(r.err, "Cannot read Time Record(s)\n\nCannot read Time Record(s)\n\n");
    EXPECT_EQ(r.out, "Cannot read Time Record(s). Export unsuccessful\n");
    // The chosen name is left as it was (no file), nothing is marked.
    EXPECT_FALSE(QFileInfo::exists(path("fault.txt")));
    EXPECT_EQ(QDir(outDir.path()).entryList(QDir::Files | QDir::Hidden), QStringList());
    EXPECT_EQ(waiting(), 4);
}

TEST_F(BatchExport, GatesRefuseAsTheWindowsDo)
{
    // User 3 holds none of the export rights.
    const BatchRun guest = exportTime(kFields, "guest.txt", {}, "3");
    EXPECT_EQ(guest.exitCode, 1);
    EXPECT_TRUE(guest.err.startsWith(kRefusal + "\n\n")) << guest.err.toStdString();
    EXPECT_TRUE(guest.out.isEmpty());

    // A user id that is no number never reaches a statement.
    const BatchRun hostile = exportTime(kFields, "hostile.txt", {}, "0 OR 1=1");
    EXPECT_EQ(hostile.exitCode, 1);
    EXPECT_TRUE(hostile.err.startsWith(kRefusal)) << hostile.err.toStdString();

    // Allowed to export, but not this data set.
    const BatchRun gps = run({"export", "--settings", "KRV.ini", "--user", "2", "--dataset", "GPS Data",
                              "--fields", "TrackID", "--output", "gps.txt", "--from", "01/01/2024", "--to",
                              "01/31/2024", "--subject", "all"});
    EXPECT_EQ(gps.exitCode, 1);
    EXPECT_TRUE(gps.err.startsWith(kRefusal));
    EXPECT_TRUE(gps.err.contains("Data sets offered: Time Data"));

    for (const char* name : {"guest.txt", "hostile.txt", "gps.txt"})
        EXPECT_FALSE(QFile::exists(path(name))) << name;
    EXPECT_EQ(waiting(), 4);
    EXPECT_EQ(site.scalar("SELECT COUNT(*) FROM JobTimeRecords"), 6);
}

} // namespace
} // namespace tp::test
