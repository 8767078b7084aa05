#include "batch/batch_startup.h"

#include "batch/batch_options.h"
#include "foundation/dao.h"
#include "foundation/feedback.h"
#include "foundation/globals.h"
#include "foundation/pg_location.h"
#include "foundation/settings.h"

#include <QFileInfo>
#include <cstdio>

namespace tp::batch {

namespace {

Options g_run;

void setupLine(const QString& text)
{
    const QByteArray bytes = (QStringLiteral("tallyport-batch: ") + text + QLatin1Char('\n')).toLocal8Bit();
    std::fwrite(bytes.constData(), 1, std::size_t(bytes.size()), stderr);
    std::fflush(stderr);
}

QString missingKey(const QString& settingsFile)
{
    for (const char* key : {"Field1", "Field2"}) {
        QString value;
        const QString status =
            GetOneIniKey(QStringLiteral("PRIMARY"), QString::fromLatin1(key), value, QVariant(settingsFile));
        if (!status.isEmpty())
            return QStringLiteral("[PRIMARY] %1: %2").arg(QString::fromLatin1(key), status);
    }
    return QString();
}

} // namespace

void describeRun(const Options& options)
{
    g_run = options;
}

QString startUpFailure(const QString& settingsFile)
{
    const QString path = SettingsFilePath(settingsFile.isEmpty() ? QStringLiteral("KRV.ini") : settingsFile);
    const QString absolute = QFileInfo(path).absoluteFilePath();
    if (!QFileInfo(path).isFile()) {
        QString where = QStringLiteral("a name with a folder part is used as it stands");
        if (IsBareSettingsName(settingsFile))
            where = QStringLiteral("a bare name is looked for in %1 ($TALLYPORT_SETTINGS_DIR, else "
                                   "$XDG_CONFIG_HOME/tallyport, else ~/.config/tallyport)")
                        .arg(QFileInfo(SettingsFolder()).absoluteFilePath());
        return QStringLiteral("settings file %1 not found (%2)").arg(absolute, where);
    }
    const QString key = missingKey(settingsFile);
    if (!key.isEmpty())
        return QStringLiteral("settings file %1: %2").arg(absolute, key);
    const Globals& g = globals();
    if (g.PrimaryDatabasePath.isEmpty() || g.PrimaryDatabaseName.isEmpty())
        return QStringLiteral("settings file %1 gives no database ([PRIMARY] Field1 or Field2 is empty)")
            .arg(absolute);
    if (!g.DatabaseOpen || !SharedDatabase()) {
        const QString location = isPgLocation(g.PrimaryDatabasePath)
                                     ? (g.PrimaryDatabasePath + g.PrimaryDatabaseName).trimmed()
                                     : QFileInfo(PrimaryDatabaseFile()).absoluteFilePath();
        QString line = QStringLiteral("cannot open the database %1 (from %2)").arg(maskPassword(location), absolute);
        const QString why = PrimaryOpenError().simplified();
        if (!why.isEmpty())
            line += QStringLiteral(": ") + why;
        return line;
    }
    return QString();
}

bool startUp(const QString& settingsFile, const QString& userId)
{
    // The host's command line: program, settings file, Export offered, user id.
    const QString commandLine = QStringLiteral("tallyport-batch,") + settingsFile +
                                QStringLiteral(",True,") + userId;
    const StartupOutcome outcome = RunStartup(commandLine);
    // Without a database the window would have nothing to work on ("Cannot open database"
    // has been shown).
    if (!outcome.fatal && outcome.exportEnabled && globals().DatabaseOpen && SharedDatabase())
        return true;
    const QString why = startUpFailure(settingsFile);
    if (!why.isEmpty())
        setupLine(why);
    return false;
}

bool passGate(FunctionMode mode)
{
    const AccessOutcome access = CheckFunctionAccess(mode);
    if (!access.message.isEmpty())
        ShowMessage(0, access.message);
    if (!access.allowed)
        setupLine(QStringLiteral("the %1 gate refused user %2 (data set \"%3\", settings %4)")
                      .arg(mode == FunctionMode::Export ? QStringLiteral("Export") : QStringLiteral("Import"),
                           globals().UserID, g_run.dataset, globals().SettingsFileName));
    return access.allowed;
}

} // namespace tp::batch
