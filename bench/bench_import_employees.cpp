// Import of 100,000 employees with every field ticked (state, zip, phones and branch checked
// against the database) through the Import window's session, as the window drives it, with
// the questions answered by script; against the sqlite3 shell's .import of the same file into
// a scratch table of a copy of the same database, which checks nothing. While ours runs,
// another connection writes and reads a small table every 20 ms, as the product would, and the
// longest wait of each is printed.
// Last line: import-employees: ours=<s>s peer=<s>s ratio=<ours/peer>
#include "bench_demo.h"
#include "bench_peer.h"
#include "foundation/dao.h"
#include "foundation/feedback.h"
#include "foundation/globals.h"
#include "import/import_session.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>

#include <sqlite3.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <thread>

namespace {

constexpr int kEmployees = 100000;
constexpr int kFirstNumber = 100001;

bool writeFile(const QString& name)
{
    QFile f(name);
    if (!f.open(QIODevice::WriteOnly))
        return false;
    static const char* const states[] = {"IL", "WI", "IN", "CA", "NY", "TX"};
    static const char* const lastNames[] = {"Novak", "Okafor", "Schultz", "Moreno", "Hayes", "O Neill"};
    static const char* const firstNames[] = {"Elena", "Chidi", "Anton", "Lucia", "Dana", "Patrick"};
    QByteArray out = "EmployeeNumber,LastName,MI,FirstName,AccountingID,Address1,Address2,City,State,ZipCode,"
                     "MobilePhone,WorkPhone,HomePhone,BranchNumber\r\n";
    for (int i = 0; i < kEmployees; ++i) {
        const QByteArray n = QByteArray::number(kFirstNumber + i);
        const QByteArray four = QByteArray::number(1000 + i % 9000);
        out += n + ',' + lastNames[i % 6] + ',' + char('A' + i % 26) + ',' + firstNames[(i / 6) % 6] + ",EMP " + n +
               ',' + QByteArray::number(100 + i % 900) + " W Lake St,Suite " + QByteArray::number(i % 40 + 1) +
               ",Chicago," + states[i % 6] + ',' + (i % 2 ? "60601" : "60601-" + four) + ",(312) 555-" + four +
               ",(312) 556-" + four + ",(312) 557-" + four + ',' + QByteArray::number(1 + i % 3) + "\r\n";
        if (out.size() > (1 << 20)) {
            f.write(out);
            out.clear();
        }
    }
    return f.write(out) == out.size();
}

qint64 count(const QString& database, const QString& sql)
{
    tp::cDAO db;
    if (!db.DB_Connect(database, QString(), QStringLiteral("Admin"), QString()))
        return -1;
    tp::RecordsetPtr rs = db.RecSet_Forward(sql);
    const qint64 n = rs && !rs->atEnd() ? rs->value(0).toLongLong() : -1;
    if (rs)
        db.RS_Close(rs);
    db.DB_Close();
    return n;
}

// Another program on the same file: a one-row update and a read every 20 ms until told to stop.
struct Neighbour {
    std::atomic<bool> stop{false};
    double longestWrite = 0, longestRead = 0;   // milliseconds
    int writes = 0, failures = 0;

    void run(const QString& database)
    {
        sqlite3* db = nullptr;
        if (sqlite3_open(QFile::encodeName(database).constData(), &db) != SQLITE_OK)
            return;
        sqlite3_busy_timeout(db, 5000);
        using Clock = std::chrono::steady_clock;
        const auto ms = [](Clock::time_point from) {
            return std::chrono::duration<double, std::milli>(Clock::now() - from).count();
        };
        while (!stop) {
            auto t = Clock::now();
            if (sqlite3_exec(db, "UPDATE BranchInfo SET BranchName = BranchName WHERE BranchNumber = 1", nullptr,
                             nullptr, nullptr) != SQLITE_OK)
                ++failures;
            longestWrite = std::max(longestWrite, ms(t));
            t = Clock::now();
            if (sqlite3_exec(db, "SELECT count(*) FROM BranchInfo", nullptr, nullptr, nullptr) != SQLITE_OK)
                ++failures;
            longestRead = std::max(longestRead, ms(t));
            ++writes;
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
        }
        sqlite3_close(db);
    }
};

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    QTemporaryDir dir;
    const QString ours = QDir(dir.path()).filePath(QStringLiteral("ours.db"));
    const QString peer = QDir(dir.path()).filePath(QStringLiteral("peer.db"));
    const QString file = QDir(dir.path()).filePath(QStringLiteral("employees.txt"));
    tp::globals().SettingsFileName = QStringLiteral("KRV.ini");
    tp::globals().DatabaseOpen = true;

    const tp::DemoOptions options = recordFreeDemo();
    QString error;
    if (!tp::createDemoDatabase(ours, options, &error) || !QFile::copy(ours, peer) || !writeFile(file)) {
        std::fprintf(stderr, "cannot build the databases or the file: %s\n", qPrintable(error));
        return 1;
    }
    const qint64 before = count(ours, QStringLiteral("SELECT count(*) FROM EmployeeInfo"));

    // Ours: the window's road, every optional field ticked by the heading click.
    QElapsedTimer clock;
    clock.start();
    tp::cDAO db;
    if (!db.DB_Connect(ours, QString(), QStringLiteral("Admin"), QString())) {
        std::fprintf(stderr, "cannot connect: %s\n", qPrintable(db.errorText));
        return 1;
    }
    struct CountingFeedback : tp::ScriptedFeedback {
        int commits = 0;
        void progress(qint64 done, qint64 total) override
        {
            ++commits;
            tp::ScriptedFeedback::progress(done, total);
        }
    } feedback;
    feedback.defaultYes = true;
    tp::ImportSession session(db, feedback);
    Neighbour neighbour;
    std::thread other([&] { neighbour.run(ours); });
    session.selectDataSet(tp::ImportDataType::Employees);
    session.toggleAllTicks();
    const tp::ImportScanOutcome scan = session.scanFile(file);
    const double scanSeconds = double(clock.nsecsElapsed()) / 1e9;
    if (scan.kind != tp::ImportScanOutcome::Accepted) {
        std::fprintf(stderr, "the scan failed: %s\n", qPrintable(scan.report));
        return 1;
    }
    const tp::ImportWriteOutcome written = session.importToDatabase(QStringLiteral("employees.txt"));
    db.DB_Close();
    const double oursSeconds = double(clock.nsecsElapsed()) / 1e9;
    neighbour.stop = true;
    other.join();
    if (!written.succeeded() || count(ours, QStringLiteral("SELECT count(*) FROM EmployeeInfo")) != before + kEmployees) {
        std::fprintf(stderr, "our import failed: %s\n", qPrintable(written.status));
        return 1;
    }

    // The peer: the shell makes a scratch table from the heading line and loads every line.
    const double peerSeconds =
        bench::runSqliteShell(peer, QStringLiteral(".import --csv %1 EmployeeImport\n").arg(file));
    if (peerSeconds < 0)
        return 1;
    if (count(peer, QStringLiteral("SELECT count(*) FROM EmployeeImport")) != kEmployees) {
        std::fprintf(stderr, "the peer's table is incomplete\n");
        return 1;
    }

    std::printf("employees=%d scan=%.3fs write=%.3fs rows committed=%d in %d groups\n", kEmployees, scanSeconds,
                oursSeconds - scanSeconds, written.written, feedback.commits);
    std::printf("another connection meanwhile: %d writes and reads, %d failed, longest write %.0f ms, "
                "longest read %.0f ms\n",
                neighbour.writes, neighbour.failures, neighbour.longestWrite, neighbour.longestRead);
    std::printf("import-employees: ours=%.3fs peer=%.3fs ratio=%.2f\n", oursSeconds, peerSeconds,
                oursSeconds / peerSeconds);
    return 0;
}
