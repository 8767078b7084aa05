#pragma once
// Lets one export of a data set that marks its records run at a time, across processes and
// computers sharing the database: a run holds the lock from before it reads the waiting
// records until its marks are committed, so a second run reads only what the first left.
// SQLite: an advisory lock (flock) on a small file beside the database, dropped by the
// system when the holder dies. PostgreSQL: a session advisory lock, dropped by the server
// when the holder's connection ends. The wait is bounded; meanwhile the status says so and
// the user interface keeps running (a Cancel stops the wait).
#include <QString>

namespace tp {

class cDAO;
class Feedback;

class ExportLock {
public:
    enum class Outcome { Taken, Cancelled, TimedOut, Failed };

    ExportLock(cDAO& db, Feedback& feedback);
    ~ExportLock();   // releases
    ExportLock(const ExportLock&) = delete;
    ExportLock& operator=(const ExportLock&) = delete;

    // key names the data set (its table key). cancel is the owner's cancel flag.
    Outcome acquire(const QString& key, const bool& cancel);
    void release();
    // Why acquire did not take the lock, for the status line.
    QString errorString() const { return m_error; }

    // Seconds acquire waits for another run: TALLYPORT_EXPORT_WAIT, else 60.
    static int waitSeconds();
    // The lock file beside an SQLite database.
    static QString lockFileName(const QString& databaseFile, const QString& key);

private:
    bool tryOnce(bool& failed);

    cDAO& m_db;
    Feedback& m_feedback;
    QString m_key;
    int m_fd = -1;
    bool m_pgHeld = false;
    QString m_error;
};

} // namespace tp
