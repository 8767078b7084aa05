#include "delivery/protected_files.h"

#include "foundation/globals.h"
#include "foundation/log.h"
#include "foundation/settings.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <sys/stat.h>

namespace tp {

namespace {

// A path as the file system resolves it: the folder's links followed, and the file's own when
// it exists.
QString resolved(const QString& path)
{
    const QFileInfo info(path);
    if (info.exists())
        return info.canonicalFilePath();
    const QString folder = QFileInfo(info.absolutePath()).canonicalFilePath();
    return folder.isEmpty() ? QDir::cleanPath(info.absoluteFilePath())
                            : folder + QLatin1Char('/') + info.fileName();
}

bool sameFile(const QString& a, const QString& b)
{
    struct stat sa {}, sb {};
    if (::stat(QFile::encodeName(a).constData(), &sa) == 0 && ::stat(QFile::encodeName(b).constData(), &sb) == 0)
        return sa.st_dev == sb.st_dev && sa.st_ino == sb.st_ino;
    return resolved(a) == resolved(b);
}

} // namespace

QString protectedFileAt(const QString& target)
{
    struct Kept {
        QString path;
        const char* what;
    };
    std::vector<Kept> kept;
    const QString database = PrimaryDatabaseFile();
    // A PostgreSQL location names no file here.
    if (!database.isEmpty() && !database.contains(QStringLiteral("://")))
        for (const char* suffix : {"", "-journal", "-wal", "-shm"})
            kept.push_back({database + QLatin1String(suffix), "the database"});
    if (!globals().SettingsFileName.isEmpty())
        kept.push_back({SettingsFilePath(globals().SettingsFileName), "the settings file"});
    const QString logs = LogFolder();
    if (!logs.isEmpty()) {
        const QString stem = logs + QLatin1Char('/') + logStem();
        kept.push_back({stem + QStringLiteral(".LOG"), "the program log"});
        for (int generation = 1; generation <= 10; ++generation)
            kept.push_back({stem + QString::number(generation) + QStringLiteral(".LOG"), "the program log"});
    }
    for (const Kept& k : kept)
        if (sameFile(target, k.path))
            return QString::fromLatin1(k.what);
    return QString();
}

} // namespace tp
