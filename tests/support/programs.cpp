#include "support/programs.h"

#include <QProcess>
#include <QProcessEnvironment>

namespace tp::test {

ProgramRun runProgram(const QString& binary, const QStringList& arguments, const QString& settingsFolder,
                      const QString& workDir)
{
    QProcess process;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    if (!settingsFolder.isEmpty())
        env.insert(QStringLiteral("TALLYPORT_SETTINGS_DIR"), settingsFolder);
    if (!env.contains(QStringLiteral("QT_QPA_PLATFORM")))
        env.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    process.setProcessEnvironment(env);
    if (!workDir.isEmpty())
        process.setWorkingDirectory(workDir);
    process.start(binary, arguments);
    ProgramRun result;
    if (!process.waitForFinished(60000)) {
        process.kill();
        process.waitForFinished();
        return result;
    }
    result.exitCode = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    result.out = QString::fromLocal8Bit(process.readAllStandardOutput());
    result.err = QString::fromLocal8Bit(process.readAllStandardError());
    return result;
}

} // namespace tp::test
