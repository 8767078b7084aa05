#include "foundation/log.h"

#include "foundation/conversions.h"
#include "foundation/feedback.h"
#include "foundation/globals.h"
#include "foundation/pg_location.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSysInfo>

#include <memory>

namespace tp {

namespace {

constexpr qint64 kRotateAt = 58501;
constexpr int kGenerations = 10;
constexpr qsizetype kPieceWidth = 68;
const QByteArray kIndent(8, ' ');
const QByteArray kLineEnd("\r\n");

// Names the host product fills in its own logs; this tool leaves them empty.
const QString LogSystemName;
const QString LogFormName;
const QString LogUserName;

std::unique_ptr<QFile> LogFileHandle;
QString g_stem;

QString generationName(const QString& folder, const QString& stem, int n)
{
    return folder + stem + QString::number(n) + QStringLiteral(".LOG");
}

bool rotate(const QString& folder, const QString& stem)
{
    LogFileHandle.reset();
    const QString oldest = generationName(folder, stem, kGenerations);
    if (IsExistingFile(oldest) && !QFile::remove(oldest))
        return false;
    for (int n = kGenerations - 1; n >= 1; --n) {
        const QString from = generationName(folder, stem, n);
        if (IsExistingFile(from) && !QFile::rename(from, generationName(folder, stem, n + 1)))
            return false;
    }
    return QFile::rename(folder + stem + QStringLiteral(".LOG"), generationName(folder, stem, 1));
}

bool openCurrent(const QString& fileName)
{
    auto file = std::make_unique<QFile>(fileName);
    if (!file->open(QIODevice::WriteOnly | QIODevice::Append))
        return false;
    LogFileHandle = std::move(file);
    return true;
}

QByteArray entryBytes(const QString& message, const QString& machine)
{
    const QString header = GmtNow().toString(QStringLiteral("MM/dd HH:mm:ss")) + QStringLiteral(" GMT  System:")
                           + LogSystemName + QStringLiteral("  Form: ") + LogFormName + QStringLiteral("  User: ")
                           + LogUserName + QStringLiteral("  Machine: ") + machine;
    QByteArray out = toWindows1252(header) + kLineEnd;
    // A piece ends at the message's end or at the first blank at least 68 places past its start.
    qsizetype s = 0;
    while (s < message.size()) {
        qsizetype p = s;
        while (p < message.size() - 1 && !(message.at(p) == QLatin1Char(' ') && p - s >= kPieceWidth))
            ++p;
        out += kIndent + toWindows1252(message.mid(s, p - s + 1)) + kLineEnd;
        s = p + 1;
    }
    return out;
}

void abandon()
{
    LogFileHandle.reset();
}

} // namespace

void setLogStem(const QString& stem)
{
    g_stem = stem;
}

QString logStem()
{
    if (!g_stem.isEmpty())
        return g_stem;
    if (QCoreApplication::instance()) {
        const QString base = QFileInfo(QCoreApplication::applicationFilePath()).completeBaseName();
        if (!base.isEmpty())
            return base.left(6);
    }
    return QStringLiteral("tallyp");
}

void closeLog()
{
    LogFileHandle.reset();
}

QString MachineName()
{
    // The old call had a 64-character buffer; a longer name did not fit.
    const QString name = QSysInfo::machineHostName();
    if (name.isEmpty() || name.size() > 63)
        return QStringLiteral("Unknown");
    return name;
}

QString LogFolder()
{
    const Globals& g = globals();
    if (!isPgLocation(g.PrimaryDatabasePath))
        return g.PrimaryDatabasePath;
    if (!g.LogFolder.isEmpty())
        return g.LogFolder;
    const QString xdg = qEnvironmentVariable("XDG_STATE_HOME");
    const QString folder = (xdg.isEmpty() ? QDir::homePath() + QStringLiteral("/.local/state") : xdg)
                           + QStringLiteral("/tallyport/");
    // The default folder is ours to make; a folder named in the settings is the site's.
    QDir().mkpath(folder);
    return folder;
}

void WriteLog(const QString& message)
{
    try {
        const QString machine = MachineName();
        const QString path = LogFolder();
        // Before the settings are read there is no folder; the root would be a poor guess.
        if (path.isEmpty())
            return;
        QString folder = NativePath(path);
        if (!folder.endsWith(QLatin1Char('/')))
            folder += QLatin1Char('/');
        const QString stem = logStem();
        const QString current = folder + stem + QStringLiteral(".LOG");

        // The handle is kept, but only for the file this call would open.
        if (LogFileHandle && QFileInfo(LogFileHandle->fileName()).absoluteFilePath()
                                 != QFileInfo(current).absoluteFilePath())
            LogFileHandle.reset();

        if (!LogFileHandle && !openCurrent(current)) {
            if (!QFileInfo(folder).isDir())
                feedback().message(1,
                                   QStringLiteral("Cannot access the path specified for the Primary System Path: ")
                                       + maskPassword(folder) + QStringLiteral(" ")
                                       + QStringLiteral("Please check this path and restart the program."),
                                   QStringLiteral("Cannot locate the Path"));
            return abandon();
        }
        if (LogFileHandle->size() >= kRotateAt) {
            if (!rotate(folder, stem) || !openCurrent(current))
                return abandon();
        }
        const QByteArray bytes = entryBytes(message, machine);
        if (LogFileHandle->write(bytes) != bytes.size() || !LogFileHandle->flush())
            return abandon();
    } catch (...) {
        abandon();
    }
}

} // namespace tp
