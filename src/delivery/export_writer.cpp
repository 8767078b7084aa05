#include "delivery/export_writer.h"

#include "foundation/conversions.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>
#include <QRegularExpression>

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tp {

namespace {

// Lines are collected to about this many characters before they go to the disk.
constexpr qsizetype kFlushChars = 1 << 16;

const QString kWorkMark = QStringLiteral(".tpw");    // the file being written
const QString kAsideMark = QStringLiteral(".tpb");   // the file being replaced

QString errnoText(int error)
{
    return QString::fromLocal8Bit(std::strerror(error));
}

QByteArray native(const QString& path)
{
    return QFile::encodeName(path);
}

// ".<name><mark><random>" in folder.
QString companionName(const QString& folder, const QString& name, const QString& mark)
{
    return folder + QStringLiteral("/.") + name + mark +
           QString::number(QRandomGenerator::global()->generate64() & 0xFFFFFFFFFFFFull, 36);
}

// The path a chain of symbolic links ends at, whether or not that file exists yet.
QString finalTarget(const QString& fileName)
{
    QString path = QFileInfo(fileName).absoluteFilePath();
    for (int hop = 0; hop < 40; ++hop) {
        char buffer[4096];
        const ssize_t n = ::readlink(native(path).constData(), buffer, sizeof buffer - 1);
        if (n <= 0)
            break;
        const QString link = QFile::decodeName(QByteArray(buffer, n));
        path = QDir::cleanPath(QFileInfo(link).isAbsolute()
                                   ? link
                                   : QFileInfo(path).absolutePath() + QLatin1Char('/') + link);
    }
    return path;
}

bool sameFile(const struct stat& a, const struct stat& b)
{
    return a.st_dev == b.st_dev && a.st_ino == b.st_ino;
}

void syncFolder(const QString& folder)
{
    const int fd = ::open(native(folder).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd < 0)
        return;
    ::fsync(fd);
    ::close(fd);
}

} // namespace

bool isReadOnlyFile(const QString& fileName)
{
    if (fileName == kStandardOutput)
        return false;
    const QFileInfo info(fileName);
    if (!info.exists() || info.isDir())
        return false;
    return !(info.permissions() & QFileDevice::WriteOwner) || !info.isWritable();
}

int removeAbandonedFiles(const QString& folder)
{
    static const QRegularExpression pattern(QStringLiteral("^\\..+\\.tp[wb][0-9a-z]{1,12}$"));
    int removed = 0;
    const QStringList names =
        QDir(folder).entryList(QDir::Files | QDir::Hidden | QDir::System | QDir::NoSymLinks);
    for (const QString& name : names) {
        if (!pattern.match(name).hasMatch())
            continue;
        const QString path = folder + QLatin1Char('/') + name;
        const int fd = ::open(native(path).constData(),
                              O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
        if (fd < 0)
            continue;
        struct stat held {}, named {};
        // A writer holds its files locked for as long as it lives.
        if (::fstat(fd, &held) == 0 && S_ISREG(held.st_mode) && ::flock(fd, LOCK_EX | LOCK_NB) == 0
            && ::stat(native(path).constData(), &named) == 0 && sameFile(held, named)) {
            bool drop = name.contains(kWorkMark);
            if (!drop) {
                // Kept aside for a run that died: only a second name of the file still in
                // place may go. Otherwise it is the only copy of the earlier file.
                const QString target = folder + QLatin1Char('/') +
                                       name.mid(1, name.lastIndexOf(kAsideMark) - 1);
                struct stat current {};
                drop = ::stat(native(target).constData(), &current) == 0 && sameFile(held, current);
            }
            if (drop && ::unlink(native(path).constData()) == 0)
                ++removed;
        }
        ::close(fd);
    }
    return removed;
}

ExportFileWriter::ExportFileWriter(FileEncoding encoding) : m_encoding(encoding) {}

ExportFileWriter::~ExportFileWriter()
{
    if (m_inPlace)
        restore();
    discard();
}

bool ExportFileWriter::fail(const QString& error)
{
    if (m_error.isEmpty())
        m_error = error;
    return false;
}

bool ExportFileWriter::failErrno(int error)
{
    return fail(errnoText(error));
}

QByteArray ExportFileWriter::encode(const QString& text) const
{
    return m_encoding == FileEncoding::Utf8 ? text.toUtf8() : toWindows1252(text);
}

bool ExportFileWriter::openTemporary(const QString& folder, const QString& name)
{
    for (int attempt = 0; attempt < 8; ++attempt) {
        const QString work = companionName(folder, name, kWorkMark);
        const int fd = ::open(native(work).constData(),
                              O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, 0666);
        if (fd < 0) {
            if (errno == EEXIST)
                continue;
            return false;
        }
        struct stat held {}, named {};
        // Another run's clean-up may have taken the name between the creation and the lock.
        if (::flock(fd, LOCK_EX | LOCK_NB) == 0 && ::fstat(fd, &held) == 0
            && ::stat(native(work).constData(), &named) == 0 && sameFile(held, named)) {
            m_fd = fd;
            m_workName = work;
            return true;
        }
        ::close(fd);
    }
    errno = EEXIST;
    return false;
}

bool ExportFileWriter::open(const QString& fileName)
{
    discard();
    m_error.clear();
    m_pending.clear();
    m_lines = 0;
    m_direct = m_inPlace = m_targetExisted = false;
    m_asideName.clear();
    m_ownFd = true;

    if (fileName == kStandardOutput) {
        m_target = fileName;
        m_fd = STDOUT_FILENO;
        m_ownFd = false;
        m_direct = true;
        return true;
    }
    m_target = finalTarget(fileName);
    const QByteArray target = native(m_target);
    struct stat st {};
    if (::stat(target.constData(), &st) == 0) {
        if (S_ISDIR(st.st_mode))
            return failErrno(EISDIR);
        if (!S_ISREG(st.st_mode)) {
            // A FIFO without a reader would block the open: that is an error here.
            m_fd = ::open(target.constData(), O_WRONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
            if (m_fd < 0)
                return failErrno(errno);
            ::fcntl(m_fd, F_SETFL, ::fcntl(m_fd, F_GETFL) & ~O_NONBLOCK);
            m_direct = true;
            return true;
        }
        m_targetExisted = true;
        m_mode = st.st_mode & 07777;
        m_uid = st.st_uid;
        m_gid = st.st_gid;
    }
    const QFileInfo info(m_target);
    const QString folder = info.absolutePath();
    removeAbandonedFiles(folder);
    if (openTemporary(folder, info.fileName()))
        return true;
    const int error = errno;
    // A folder we may not add files to, holding a file we may write: write the file itself.
    if (m_targetExisted && (error == EACCES || error == EPERM)) {
        m_fd = ::open(target.constData(), O_WRONLY | O_TRUNC | O_CLOEXEC);
        if (m_fd >= 0) {
            m_direct = true;
            return true;
        }
    }
    return failErrno(error);
}

bool ExportFileWriter::flush()
{
    if (!m_error.isEmpty())
        return false;
    if (m_pending.isEmpty())
        return true;
    const QByteArray bytes = encode(m_pending);
    m_pending.clear();
    return writeRaw(bytes);
}

bool ExportFileWriter::writeBytes(const QByteArray& bytes)
{
    if (m_fd < 0)
        return fail(QStringLiteral("File not open"));
    return flush() && writeRaw(bytes);
}

bool ExportFileWriter::writeRaw(const QByteArray& bytes)
{
    const char* p = bytes.constData();
    qint64 left = bytes.size();
    while (left > 0) {
        const ssize_t n = ::write(m_fd, p, std::size_t(left));
        if (n < 0) {
            if (errno == EINTR)
                continue;
            return failErrno(errno);
        }
        if (n == 0)
            return failErrno(ENOSPC);
        p += n;
        left -= n;
    }
    return true;
}

bool ExportFileWriter::writeHeader(const QStringList& headers)
{
    if (m_fd < 0)
        return fail(QStringLiteral("File not open"));
    m_pending += exportHeaderText(headers);
    return m_pending.size() < kFlushChars || flush();
}

bool ExportFileWriter::writeLine(const std::vector<ExportValue>& values)
{
    if (m_fd < 0)
        return fail(QStringLiteral("File not open"));
    appendExportLine(m_pending, values);
    ++m_lines;
    if (m_faults.afterLine(m_lines))
        return failErrno(ENOSPC);
    return m_pending.size() < kFlushChars || flush();
}

bool ExportFileWriter::finish()
{
    if (m_fd < 0)
        return fail(QStringLiteral("File not open"));
    if (!flush())
        return false;
    if (!m_workName.isEmpty() && m_targetExisted) {
        // The replacement belongs to whoever owned the file and keeps its mode (a root job
        // must not hand the payroll office a file it can no longer read).
        if (::fchown(m_fd, m_uid, m_gid) != 0 && errno != EPERM)
            return failErrno(errno);
        if (::fchmod(m_fd, m_mode) != 0)
            return failErrno(errno);
    }
    if (::fsync(m_fd) != 0 && errno != EINVAL && errno != EROFS && errno != ENOTSUP)
        return failErrno(errno);
    if (m_direct && m_ownFd) {
        const int fd = m_fd;
        m_fd = -1;
        if (::close(fd) != 0)
            return failErrno(errno);
    }
    return true;
}

bool ExportFileWriter::putInPlace()
{
    if (!m_error.isEmpty())
        return false;
    if (m_direct) {
        m_inPlace = true;
        return true;
    }
    if (m_workName.isEmpty() || m_fd < 0)
        return fail(QStringLiteral("File not open"));
    const QFileInfo info(m_target);
    const QString folder = info.absolutePath();
    const QByteArray target = native(m_target);
    if (m_targetExisted) {
        // A second name for the file being replaced, so that it can come back.
        const QString aside = companionName(folder, info.fileName(), kAsideMark);
        if (::link(target.constData(), native(aside).constData()) == 0
            || ::rename(target.constData(), native(aside).constData()) == 0)
            m_asideName = aside;
    }
    if (::rename(native(m_workName).constData(), target.constData()) != 0) {
        const int error = errno;
        if (!m_asideName.isEmpty() && ::access(target.constData(), F_OK) != 0)
            ::rename(native(m_asideName).constData(), target.constData());
        else if (!m_asideName.isEmpty())
            ::unlink(native(m_asideName).constData());
        m_asideName.clear();
        return failErrno(error);
    }
    m_workName.clear();
    closeFile();
    syncFolder(folder);
    m_inPlace = true;
    return true;
}

void ExportFileWriter::commit()
{
    if (!m_asideName.isEmpty())
        ::unlink(native(m_asideName).constData());
    m_asideName.clear();
    m_inPlace = false;
    closeFile();
}

bool ExportFileWriter::restore()
{
    if (!m_inPlace)
        return true;
    m_inPlace = false;
    if (m_direct)
        return false;
    const QByteArray target = native(m_target);
    bool ok = true;
    if (!m_asideName.isEmpty())
        ok = ::rename(native(m_asideName).constData(), target.constData()) == 0;
    else if (!m_targetExisted)
        ok = ::unlink(target.constData()) == 0;
    m_asideName.clear();
    syncFolder(QFileInfo(m_target).absolutePath());
    return ok;
}

QString ExportFileWriter::keepCopy(const QString& suffix)
{
    if (!m_inPlace || m_direct)
        return QString();
    const QString copy = m_target + suffix;
    ::unlink(native(copy).constData());
    if (::link(native(m_target).constData(), native(copy).constData()) != 0)
        return QString();
    syncFolder(QFileInfo(m_target).absolutePath());
    return copy;
}

void ExportFileWriter::closeFile()
{
    if (m_fd >= 0 && m_ownFd)
        ::close(m_fd);
    m_fd = -1;
}

void ExportFileWriter::discard()
{
    m_pending.clear();
    if (!m_workName.isEmpty())
        ::unlink(native(m_workName).constData());
    m_workName.clear();
    if (!m_inPlace)
        closeFile();
}

} // namespace tp
