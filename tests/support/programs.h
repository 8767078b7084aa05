#pragma once
// Runs a built program of the project the way a user's shell would.
#include <QString>
#include <QStringList>

namespace tp::test {

struct ProgramRun {
    int exitCode = -1;   // -1 when it crashed or did not finish within a minute
    QString out;         // standard output
    QString err;         // standard error
};

// settingsFolder, when given, becomes TALLYPORT_SETTINGS_DIR; workDir the working folder.
ProgramRun runProgram(const QString& binary, const QStringList& arguments,
                      const QString& settingsFolder = QString(), const QString& workDir = QString());

} // namespace tp::test
