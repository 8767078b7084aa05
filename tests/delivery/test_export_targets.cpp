// Where the writer's bytes go: through symbolic links, straight into FIFOs and devices, over
// an existing file (its owner, group and mode kept, the old one back after an undo), and what
// it clears away of runs that were killed.
#include "delivery/export_writer.h"
#include "support/foundation_fixture.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tp {
namespace {

class TargetTest : public ::testing::Test {
protected:
    QString file(const QString& name) const { return QDir(dir.path()).filePath(name); }
    QByteArray bytes(const QString& name) const { return test::readBytes(file(name)); }
    void put(const QString& name, const QByteArray& content) const
    {
        ASSERT_TRUE(test::writeBytes(file(name), content));
    }
    // Writes one line "N" and 1..n through a writer to name; the writer is left as it ends.
    bool write(ExportFileWriter& w, const QString& name, int n = 2)
    {
        if (!w.open(name.startsWith('/') ? name : file(name)) || !w.writeHeader({"N"}))
            return false;
        for (int i = 1; i <= n; ++i)
            if (!w.writeLine({ExportValue::ofNumber(i)}))
                return false;
        return w.finish();
    }
    QStringList hidden(const QString& folder = QString()) const
    {
        return QDir(folder.isEmpty() ? dir.path() : folder).entryList({".*.tp*"}, QDir::Files | QDir::Hidden);
    }
    QTemporaryDir dir;
};

const QByteArray kNew = "\"N\"\r\n1\r\n2\r\n";

TEST_F(TargetTest, SymbolicLinksAreWrittenThroughAndStayLinks)
{
    ASSERT_TRUE(QDir(dir.path()).mkdir("real"));
    put("real/target.txt", "old\r\n");
    ASSERT_EQ(::symlink("real/target.txt", file("link.txt").toLocal8Bit().constData()), 0);
    ASSERT_EQ(::symlink("link.txt", file("chain.txt").toLocal8Bit().constData()), 0);
    ASSERT_EQ(::symlink("real/new.txt", file("dangling.txt").toLocal8Bit().constData()), 0);

    for (const char* name : {"chain.txt", "dangling.txt"}) {
        ExportFileWriter w;
        ASSERT_TRUE(write(w, name)) << w.errorString().toStdString();
        ASSERT_TRUE(w.putInPlace());
        w.commit();
    }
    EXPECT_EQ(bytes("real/target.txt"), kNew);
    EXPECT_EQ(bytes("real/new.txt"), kNew);
    for (const char* name : {"link.txt", "chain.txt", "dangling.txt"})
        EXPECT_TRUE(QFileInfo(file(name)).isSymLink()) << name;
    EXPECT_TRUE(hidden().isEmpty());
    EXPECT_TRUE(hidden(file("real")).isEmpty());
}

TEST_F(TargetTest, FifosAndDevicesAreWrittenDirectlyWithEveryErrorCaught)
{
    const QByteArray fifo = file("pipe").toLocal8Bit();
    ASSERT_EQ(::mkfifo(fifo.constData(), 0600), 0);
    {
        // Nobody reading: refused at once rather than hanging.
        ExportFileWriter w;
        EXPECT_FALSE(w.open(file("pipe")));
        EXPECT_EQ(w.errorString(), QStringLiteral("No such device or address"));
    }
    const int reader = ::open(fifo.constData(), O_RDONLY | O_NONBLOCK);
    ASSERT_GE(reader, 0);
    ExportFileWriter w;
    ASSERT_TRUE(write(w, "pipe")) << w.errorString().toStdString();
    EXPECT_TRUE(w.isDirect());
    ASSERT_TRUE(w.putInPlace());
    w.commit();
    char buffer[64] = {};
    const ssize_t n = ::read(reader, buffer, sizeof buffer);
    ::close(reader);
    EXPECT_EQ(QByteArray(buffer, int(n)), kNew);
    struct stat st {};
    ASSERT_EQ(::stat(fifo.constData(), &st), 0);
    EXPECT_TRUE(S_ISFIFO(st.st_mode));

    // Every write to this device fails; the line buffer meets it at the latest when flushed.
    ExportFileWriter full;
    EXPECT_FALSE(write(full, "/dev/full"));
    EXPECT_EQ(full.errorString(), QStringLiteral("No space left on device"));
    ASSERT_EQ(::stat("/dev/full", &st), 0);
    EXPECT_TRUE(S_ISCHR(st.st_mode));

    ExportFileWriter folder;
    EXPECT_FALSE(folder.open(dir.path()));
    EXPECT_EQ(folder.errorString(), QStringLiteral("Is a directory"));
}

TEST_F(TargetTest, ReplacingKeepsOwnerGroupAndModeAndAnUndoBringsTheOldFileBack)
{
    put("pay.txt", "old\r\n");
    const QByteArray name = file("pay.txt").toLocal8Bit();
    ASSERT_EQ(::chmod(name.constData(), 0640), 0);
    // Only root can give a file away; as anyone else the owner is ours anyway.
    const bool root = ::geteuid() == 0;
    if (root) {
        ASSERT_EQ(::chown(name.constData(), 4321, 4322), 0);
    }
    {
        ExportFileWriter w;
        ASSERT_TRUE(write(w, "pay.txt"));
        ASSERT_TRUE(w.putInPlace());
        EXPECT_EQ(bytes("pay.txt"), kNew);
        EXPECT_TRUE(w.restore());
    }
    EXPECT_EQ(bytes("pay.txt"), "old\r\n");
    EXPECT_TRUE(hidden().isEmpty()) << hidden().join(' ').toStdString();
    {
        ExportFileWriter w;   // put in place and never committed: undone when it goes
        ASSERT_TRUE(write(w, "pay.txt"));
        ASSERT_TRUE(w.putInPlace());
    }
    EXPECT_EQ(bytes("pay.txt"), "old\r\n");
    {
        ExportFileWriter w;
        ASSERT_TRUE(write(w, "pay.txt"));
        ASSERT_TRUE(w.putInPlace());
        w.commit();
    }
    EXPECT_EQ(bytes("pay.txt"), kNew);
    struct stat st {};
    ASSERT_EQ(::stat(name.constData(), &st), 0);
    EXPECT_EQ(st.st_mode & 07777, 0640u);
    if (root) {
        EXPECT_EQ(st.st_uid, 4321u);
        EXPECT_EQ(st.st_gid, 4322u);
    }
    EXPECT_TRUE(hidden().isEmpty());

    // A new name undone is no file at all.
    ExportFileWriter w;
    ASSERT_TRUE(write(w, "fresh.txt"));
    ASSERT_TRUE(w.putInPlace());
    EXPECT_TRUE(w.restore());
    EXPECT_FALSE(QFileInfo::exists(file("fresh.txt")));
}

TEST_F(TargetTest, OnlyFilesOfDeadRunsAreClearedAndNeverTheOnlyCopyOfAFile)
{
    put("x.txt", "current\r\n");
    put(".x.txt.tpwdead", "half a fi");
    put(".x.txt.tpwlive", "being written");
    put(".x.txt.tpbonly", "the file a killed run replaced\r\n");
    ASSERT_EQ(::link(file("x.txt").toLocal8Bit().constData(),
                     file(".x.txt.tpblink").toLocal8Bit().constData()), 0);
    put("x.txt.tpw1", "not hidden: not ours");
    put(".x.txt.tpwBAD!", "not our pattern");
    const int live = ::open(file(".x.txt.tpwlive").toLocal8Bit().constData(), O_RDONLY);
    ASSERT_GE(live, 0);
    ASSERT_EQ(::flock(live, LOCK_EX), 0);

    EXPECT_EQ(removeAbandonedFiles(dir.path()), 2);
    ::close(live);
    EXPECT_EQ(hidden(), QStringList({".x.txt.tpbonly", ".x.txt.tpwBAD!", ".x.txt.tpwlive"}));
    EXPECT_EQ(bytes("x.txt"), "current\r\n");
    EXPECT_TRUE(QFileInfo::exists(file("x.txt.tpw1")));

    // Opening a writer in the folder clears the one that is no longer held.
    ExportFileWriter w;
    ASSERT_TRUE(write(w, "x.txt"));
    EXPECT_EQ(hidden().filter(".x.txt.tpw").size(), 2);   // the BAD one and the writer's own
    EXPECT_FALSE(QFileInfo::exists(file(".x.txt.tpwlive")));
}

} // namespace
} // namespace tp
