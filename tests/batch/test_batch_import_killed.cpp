// An import killed at any moment, on SQLite and on PostgreSQL: the database stays whole, every
// row the run reported as written is there, and what is there is the file's first records,
// each row complete; nothing else changed. The built tallyport-batch is killed from outside
// (SIGKILL) at several points while it reads and writes a large employees file.
#include "support/demo_site.h"

#include "foundation/dao.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QThread>
#include <gtest/gtest.h>
#include <sqlite3.h>

#include <functional>

namespace tp::test {
namespace {

const QString kBinary = QStringLiteral(TP_BINARY_DIR "/tallyport-batch");
constexpr int kRecords = 60000;
constexpr qint64 kFirstNumber = 500001;   // past every employee of the demo
const QString kImported = QStringLiteral("EmployeeNumber >= %1").arg(kFirstNumber);

// Record i (from 0) of the file, in heading order; every value passes the checks on the demo
// database, and none is empty, so that a stored row shows each of them.
QStringList record(int i)
{
    struct Place {
        const char *city, *state, *zip, *area;
    };
    static const Place places[] = {{"Chicago", "IL", "60601", "312"},
                                   {"Milwaukee", "WI", "53202", "414"},
                                   {"Indianapolis", "IN", "46204", "317"}};
    static const char* const lastNames[] = {"Novak", "Okafor", "Schultz", "Moreno", "Hayes", "O Neill", "Kim"};
    static const char* const firstNames[] = {"Elena", "Chidi", "Anton", "Lucia", "Dana"};
    const Place& p = places[i % 3];
    const QString number = QString::number(kFirstNumber + i);
    const QString four = QString::number(1000 + i % 9000);
    const QString phone = QStringLiteral("(%1) 55%2-").arg(QLatin1String(p.area));
    return {number,
            QLatin1String(lastNames[i % 7]),
            QString(QChar(u'A' + i % 26)),
            QLatin1String(firstNames[i % 5]),
            QStringLiteral("EMP ") + number,
            QStringLiteral("%1 W Lake St").arg(100 + i % 900),
            QStringLiteral("Suite %1").arg(i % 40 + 1),
            QLatin1String(p.city),
            QLatin1String(p.state),
            QLatin1String(p.zip) + (i % 2 ? QString() : QLatin1Char('-') + four),
            phone.arg(5) + four,
            phone.arg(6) + four,
            phone.arg(7) + four,
            QString::number(1 + i % 3)};
}

const QString kHeadings = QStringLiteral("EmployeeNumber,LastName,MI,FirstName,AccountingID,Address1,Address2,City,"
                                         "State,ZipCode,MobilePhone,WorkPhone,HomePhone,BranchNumber");
const QString kOptional =
    QStringLiteral("MI,AccountingID,Address1,Address2,City,State,ZipCode,MobilePhone,WorkPhone,HomePhone");
// The stored columns, in the order of record()'s fields, and the one the file does not fill.
const QString kColumns = QStringLiteral("EmployeeNumber, LastName, MI, FirstName, AccountingID, Address1, Address2, "
                                        "City, State, Zip, MobilePhone, WorkPhone, Phone, BranchNumber, Pager");

// Record i as the writer stores it: a zip code without its last four digits keeps the dash,
// and the pager, which the file cannot give, is left blank.
QString storedRow(int i)
{
    QStringList values = record(i);
    if (!values[9].contains(QLatin1Char('-')))
        values[9] += QLatin1Char('-');
    values << QStringLiteral("(   )    -    ");
    return values.join(QLatin1Char('|'));
}

bool writeFile(const QString& path)
{
    QFile f(path);
    if (!f.open(QIODevice::WriteOnly))
        return false;
    QByteArray out = kHeadings.toLatin1() + "\r\n";
    for (int i = 0; i < kRecords; ++i) {
        out += record(i).join(QLatin1Char(',')).toLatin1() + "\r\n";
        if (out.size() > (1 << 20) && f.write(out) == out.size())
            out.clear();
    }
    return f.write(out) == out.size() && f.flush();
}

// A moment to kill the run at: after `lines` progress lines (or once the reported count
// reaches `share` of the file), or once `text` is on standard error; then `delayMs` later.
// A kill just after a line falls in the pause between groups; one a little later falls
// inside the next group's open transaction.
struct KillPoint {
    const char* name;
    int lines = 0;
    double share = 0;
    const char* text = nullptr;
    int delayMs = 0;
};

const KillPoint kKillPoints[] = {
    {.name = "while the file is read", .delayMs = 150},
    {.name = "at the confirmation sample", .text = "Several Records are shown for final confirmation"},
    {.name = "after the first group", .lines = 1},
    {.name = "inside the third group", .lines = 2, .delayMs = 35},
    {.name = "after the fifth group", .lines = 5},
    {.name = "inside a group past 30% of the file", .share = 0.3, .delayMs = 10},
};

// A run of the tool whose standard error is read as it comes.
class WatchedRun {
public:
    WatchedRun(const QString& settings, const QString& workDir, const QString& input)
    {
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert(QStringLiteral("TALLYPORT_SETTINGS_DIR"), settings);
        m_process.setProcessEnvironment(env);
        m_process.setWorkingDirectory(workDir);
        m_process.setReadChannel(QProcess::StandardError);
        m_process.start(kBinary, {"import", "--settings", "KRV.ini", "--user", "1", "--dataset", "Employee Data",
                                  "--input", input, "--fields", kOptional, "--progress"});
    }
    ~WatchedRun()
    {
        if (m_process.state() != QProcess::NotRunning) {
            m_process.kill();
            m_process.waitForFinished();
        }
    }

    bool started() { return m_process.waitForStarted(); }
    bool running() const { return m_process.state() == QProcess::Running; }
    // Reads what standard error holds, waiting up to ms for more.
    void pump(int ms)
    {
        if (running())
            m_process.waitForReadyRead(ms);
        take();
    }
    // Until ready() holds or the run ends; false after a minute.
    bool waitUntil(const std::function<bool()>& ready)
    {
        QElapsedTimer clock;
        clock.start();
        while (!ready() && running() && clock.elapsed() < 60000)
            pump(5);
        return ready() || !running();
    }
    // SIGKILL, unless the run has ended already; true when it was killed.
    bool kill()
    {
        const bool wasRunning = running();
        if (wasRunning)
            m_process.kill();
        m_process.waitForFinished(10000);
        take();
        return wasRunning && m_process.exitStatus() == QProcess::CrashExit;
    }

    // After a run that ended on its own: its exit status and standard output.
    int exitCode() const { return m_process.exitStatus() == QProcess::NormalExit ? m_process.exitCode() : -1; }
    QByteArray out() { return m_process.readAllStandardOutput(); }
    const QByteArray& err() const { return m_err; }
    int progressLines() const { return m_lines; }
    qint64 lastReported() const { return m_reported; }
    // Each progress line's count was above the one before it, and each named the file's total.
    bool progressInOrder() const { return m_inOrder; }

private:
    void take()
    {
        m_err += m_process.readAllStandardError();
        static const QRegularExpression line(QStringLiteral("^Records written: (\\d+) of (\\d+)$"));
        for (qsizetype end; (end = m_err.indexOf('\n', m_parsed)) >= 0; m_parsed = end + 1) {
            const auto match = line.match(QString::fromLatin1(m_err.mid(m_parsed, end - m_parsed)));
            if (!match.hasMatch())
                continue;
            const qint64 done = match.captured(1).toLongLong();
            m_inOrder = m_inOrder && done > m_reported && match.captured(2).toLongLong() == kRecords;
            m_reported = done;
            ++m_lines;
        }
    }

    QProcess m_process;
    QByteArray m_err;
    qsizetype m_parsed = 0;
    int m_lines = 0;
    qint64 m_reported = 0;
    bool m_inOrder = true;
};

class KilledImport : public ::testing::TestWithParam<bool> {
protected:
    static bool postgres() { return GetParam(); }

    void SetUp() override
    {
        DemoOptions options;
        options.timeRecords = 0;
        options.inventoryRecords = 0;
        options.tracks = 0;
        options.gpsPoints = 0;
        const QString why = site.create(postgres(), options);
        if (why == QLatin1String(kPgSkipMessage))
            GTEST_SKIP() << kPgSkipMessage;
        ASSERT_TRUE(why.isEmpty()) << why.toStdString();
        location = site.location();
        input = QDir(site.folder()).filePath(QStringLiteral("employees.txt"));
        ASSERT_TRUE(writeFile(input));
        before = snapshot();
        ASSERT_FALSE(before.isEmpty());
        ASSERT_EQ(query(QStringLiteral("SELECT count(*) FROM EmployeeInfo WHERE ") + kImported), "0");
    }

    // Every row of the query, columns joined by '|', rows by '\n'.
    QString query(const QString& sql) const { return queryRows(location, sql, QLatin1Char('|'), QLatin1Char('\n')); }

    // Everything but the imported employees: each table's row count and every earlier employee.
    QString snapshot() const
    {
        static const QRegularExpression create(QStringLiteral("CREATE TABLE (\\w+)"));
        QStringList parts;
        for (const auto& m : create.globalMatch(schemaScript(false))) {
            const QString table = m.captured(1);
            const QString where = table == QLatin1String("EmployeeInfo") ? QStringLiteral(" WHERE NOT (") + kImported + ')'
                                                                        : QString();
            parts << table + QLatin1Char('=') + query(QStringLiteral("SELECT count(*) FROM ") + table + where);
        }
        parts << query(QStringLiteral("SELECT ") + kColumns + QStringLiteral(" FROM EmployeeInfo WHERE NOT (") +
                       kImported + QStringLiteral(") ORDER BY EmployeeNumber"));
        return parts.join(QLatin1Char('\n'));
    }

    QString journal() const { return location + QStringLiteral("-journal"); }
    // A rollback journal the next connection must play back: one that begins with the magic
    // number SQLite writes once the journal is synced, before it changes the database. One
    // without it holds nothing to undo and is dropped by the next write.
    bool hotJournal() const
    {
        QFile f(journal());
        return f.open(QIODevice::ReadOnly) && f.read(8) == QByteArray::fromHex("d9d505f920a163d7");
    }

    // SQLite: the file is whole, and a journal the kill left is played back by the first
    // connection that reads.
    void expectSqliteWhole() const
    {
        sqlite3* db = nullptr;
        ASSERT_EQ(sqlite3_open_v2(QFile::encodeName(location).constData(), &db, SQLITE_OPEN_READWRITE, nullptr),
                  SQLITE_OK);
        QString verdict;
        sqlite3_stmt* st = nullptr;
        if (sqlite3_prepare_v2(db, "PRAGMA integrity_check", -1, &st, nullptr) == SQLITE_OK)
            while (sqlite3_step(st) == SQLITE_ROW)
                verdict += QString::fromUtf8(reinterpret_cast<const char*>(sqlite3_column_text(st, 0)));
        sqlite3_finalize(st);
        EXPECT_EQ(verdict, QStringLiteral("ok")) << sqlite3_errmsg(db);
        sqlite3_close(db);
        EXPECT_FALSE(hotJournal());
    }

    // PostgreSQL: until the killed run's session has ended, so that nothing of it can still
    // commit while the database is checked.
    void waitForOtherSessions() const
    {
        const QString others = QStringLiteral("SELECT count(*) FROM pg_stat_activity WHERE datname = "
                                              "current_database() AND pid <> pg_backend_pid() AND backend_type = 'client backend'");
        QElapsedTimer clock;
        clock.start();
        QString left;
        while ((left = query(others)) != QLatin1String("0") && clock.elapsed() < 20000)
            QThread::msleep(50);
        ASSERT_EQ(left, "0");
    }

    // The imported rows are records 0..k-1 of the file, each whole, and k covers every row
    // reported; everything else is as before. Returns k.
    qint64 expectPrefix(qint64 reported)
    {
        const QStringList numbers = query(QStringLiteral("SELECT EmployeeNumber FROM EmployeeInfo WHERE ") + kImported +
                                          QStringLiteral(" ORDER BY EmployeeNumber"))
                                        .split(QLatin1Char('\n'), Qt::SkipEmptyParts);
        const qint64 k = numbers.size();
        EXPECT_GE(k, reported);
        EXPECT_LE(k, kRecords);
        qint64 gaps = 0;
        for (qint64 i = 0; i < k; ++i)
            gaps += numbers[i] != QString::number(kFirstNumber + i) ? 1 : 0;
        EXPECT_EQ(gaps, 0) << "the imported numbers are not the file's first " << k;
        // Whole rows: the first, one in the middle and the last written, column by column, and
        // no imported row missing a value the file gives.
        for (const qint64 i : {qint64(0), k / 2, k - 1}) {
            if (i < 0 || i >= k)
                continue;
            EXPECT_EQ(query(QStringLiteral("SELECT ") + kColumns + QStringLiteral(" FROM EmployeeInfo WHERE EmployeeNumber = ") +
                            QString::number(kFirstNumber + i)),
                      storedRow(int(i)));
        }
        QStringList missing;
        for (const QString& column : kColumns.split(QStringLiteral(", ")))
            missing << column + QStringLiteral(" IS NULL");
        EXPECT_EQ(query(QStringLiteral("SELECT count(*) FROM EmployeeInfo WHERE ") + kImported +
                        QStringLiteral(" AND (") + missing.join(QStringLiteral(" OR ")) + QLatin1Char(')')),
                  "0");
        EXPECT_EQ(snapshot(), before);
        return k;
    }

    void removeImported() const
    {
        cDAO db;
        ASSERT_TRUE(db.DB_Connect(location, QString(), QStringLiteral("Admin"), QString()));
        db.Exec(QStringLiteral("DELETE FROM EmployeeInfo WHERE ") + kImported);
        ASSERT_EQ(db.appError, 0) << db.errorText.toStdString();
        db.DB_Close();
    }

    EngineDemoSite site;
    QString location, input, before;
};

TEST_P(KilledImport, EveryReportedRowIsWrittenAndTheRowsAreTheFilesFirst)
{
    int killedWhileWriting = 0;
    for (const KillPoint& point : kKillPoints) {
        SCOPED_TRACE(point.name);
        WatchedRun run(site.settingsFolder(), site.folder(), input);
        ASSERT_TRUE(run.started());
        ASSERT_TRUE(run.waitUntil([&] {
            return run.progressLines() >= point.lines &&
                   run.lastReported() >= qint64(point.share * kRecords) &&
                   (!point.text || run.err().contains(point.text));
        })) << "the run never got there: " << run.err().toStdString();
        if (point.delayMs > 0)
            QThread::msleep(point.delayMs);
        const bool killed = run.kill();
        EXPECT_TRUE(run.progressInOrder()) << run.err().toStdString();

        const bool hot = !postgres() && hotJournal();
        if (postgres())
            waitForOtherSessions();
        else
            expectSqliteWhole();
        const qint64 k = expectPrefix(run.lastReported());
        if (!killed) {
            // Too fast to be caught there: then the whole file went in, as a finished run says.
            EXPECT_EQ(run.exitCode(), 0) << run.err().toStdString();
            EXPECT_EQ(run.out(), "Importing File ''employees.txt'' Completed Successfully\n");
            EXPECT_EQ(run.lastReported(), kRecords);
            EXPECT_EQ(k, kRecords);
        }
        if (killed && k > 0 && k < kRecords)
            ++killedWhileWriting;
        std::printf("[          ] killed %s: %s, %d progress lines, last %lld, rows %lld%s\n", point.name,
                    killed ? "yes" : "no (it had ended)", run.progressLines(),
                    static_cast<long long>(run.lastReported()), static_cast<long long>(k),
                    hot ? ", a hot journal played back" : "");
        removeImported();
        // Writing again leaves no journal behind, whatever the kill left.
        EXPECT_FALSE(!postgres() && QFile::exists(journal()));
    }
    // Only a note: how the kills fell depends on the machine's speed, the rule above does not.
    std::printf("[          ] %d of %zu kills fell while rows were being written\n", killedWhileWriting,
                std::size(kKillPoints));
}

INSTANTIATE_TEST_SUITE_P(Engines, KilledImport, ::testing::Bool(),
                         [](const auto& info) { return std::string(info.param ? "PostgreSQL" : "SQLite"); });

} // namespace
} // namespace tp::test
