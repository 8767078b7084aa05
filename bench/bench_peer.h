#pragma once
// What the export benchmarks share: the peer run (the sqlite3 shell fed a script on a
// database) and the line count that checks a written file is complete.
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QString>

#include <cstdio>

namespace bench {

inline qint64 countLines(const QString& file)
{
    QFile f(file);
    if (!f.open(QIODevice::ReadOnly))
        return -1;
    qint64 n = 0;
    while (!f.atEnd())
        n += f.read(1 << 20).count('\n');
    return n;
}

// Runs the sqlite3 shell on database with script as its input; the seconds it took, or -1
// (told on standard error) when it failed.
inline double runSqliteShell(const QString& database, const QString& script)
{
    QElapsedTimer clock;
    clock.start();
    QProcess shell;
    shell.start(QStringLiteral("sqlite3"), {database});
    shell.write(script.toUtf8());
    shell.closeWriteChannel();
    if (!shell.waitForFinished(600000) || shell.exitCode() != 0) {
        std::fprintf(stderr, "sqlite3 failed: %s\n", shell.readAllStandardError().constData());
        return -1;
    }
    return double(clock.nsecsElapsed()) / 1e9;
}

} // namespace bench
