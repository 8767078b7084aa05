#include "delivery/export_lock.h"

#include "foundation/dao.h"
#include "foundation/feedback.h"

#include <QDeadlineTimer>
#include <QFile>
#include <QThread>

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace tp {

namespace {

constexpr int kPollMs = 100;
constexpr qint32 kLockClass = 0x54504558;   // "TPEX": our own class of advisory locks

// A stable number for a key, the same in every process (qHash is seeded per process).
qint32 keyNumber(const QString& key)
{
    quint32 h = 2166136261u;
    for (const QChar c : key) {
        h ^= c.unicode();
        h *= 16777619u;
    }
    return qint32(h);
}

QString pgLockArguments(const QString& key)
{
    return QString::number(kLockClass) + QStringLiteral(", ") + QString::number(keyNumber(key));
}

} // namespace

ExportLock::ExportLock(cDAO& db, Feedback& feedback) : m_db(db), m_feedback(feedback) {}

ExportLock::~ExportLock()
{
    release();
}

int ExportLock::waitSeconds()
{
    bool ok = false;
    const int seconds = qEnvironmentVariableIntValue("TALLYPORT_EXPORT_WAIT", &ok);
    return ok && seconds >= 0 ? seconds : 60;
}

QString ExportLock::lockFileName(const QString& databaseFile, const QString& key)
{
    return databaseFile + QStringLiteral(".export-") + key + QStringLiteral(".lock");
}

bool ExportLock::tryOnce(bool& failed)
{
    failed = false;
    if (m_db.isPostgres()) {
        RecordsetPtr rs = m_db.RecSet_Forward(QStringLiteral("Select pg_try_advisory_lock(") +
                                              pgLockArguments(m_key) + QLatin1Char(')'));
        if (!rs || rs->atEnd()) {
            failed = true;
            m_error = m_db.errorText;
            return false;
        }
        m_pgHeld = rs->value(0).toBool() || rs->value(0).toLongLong() != 0;
        m_db.RS_Close(rs);
        return m_pgHeld;
    }
    if (m_fd < 0) {
        const QByteArray path = QFile::encodeName(lockFileName(m_db.databaseFile, m_key));
        m_fd = ::open(path.constData(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0666);
        if (m_fd < 0)   // a lock file someone else made, in a folder we may not write
            m_fd = ::open(path.constData(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW);
        if (m_fd < 0) {
            failed = true;
            m_error = QStringLiteral("Cannot open the export lock %1: %2")
                          .arg(QFile::decodeName(path), QString::fromLocal8Bit(std::strerror(errno)));
            return false;
        }
    }
    if (::flock(m_fd, LOCK_EX | LOCK_NB) == 0)
        return true;
    if (errno == EWOULDBLOCK || errno == EINTR)
        return false;
    failed = true;
    m_error = QStringLiteral("Cannot lock the export lock file: %1")
                  .arg(QString::fromLocal8Bit(std::strerror(errno)));
    ::close(m_fd);
    m_fd = -1;
    return false;
}

ExportLock::Outcome ExportLock::acquire(const QString& key, const bool& cancel)
{
    release();
    m_key = key;
    m_error.clear();
    const int seconds = waitSeconds();
    QDeadlineTimer deadline(qint64(seconds) * 1000);
    bool told = false;
    for (;;) {
        bool failed = false;
        if (tryOnce(failed)) {
            if (told)
                m_feedback.status(QString());
            return Outcome::Taken;
        }
        if (failed)
            return Outcome::Failed;
        if (deadline.hasExpired()) {
            m_error = QStringLiteral("Another export of these records is still running after %1 s")
                          .arg(seconds);
            return Outcome::TimedOut;
        }
        if (!told) {
            m_feedback.status(
                QStringLiteral("Waiting for another export of these records to finish (up to %1 s) ...")
                    .arg(seconds));
            told = true;
        }
        m_feedback.yield();
        if (cancel)
            return Outcome::Cancelled;
        QThread::msleep(kPollMs);
    }
}

void ExportLock::release()
{
    if (m_pgHeld) {
        RecordsetPtr rs = m_db.RecSet_Forward(QStringLiteral("Select pg_advisory_unlock(") +
                                              pgLockArguments(m_key) + QLatin1Char(')'));
        if (rs)
            m_db.RS_Close(rs);
        m_pgHeld = false;
    }
    if (m_fd >= 0) {
        ::flock(m_fd, LOCK_UN);
        ::close(m_fd);
        m_fd = -1;
    }
}

} // namespace tp
