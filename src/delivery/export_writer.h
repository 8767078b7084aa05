#pragma once
// Writes an export text file so that the chosen name only ever holds a complete file: the
// lines go to a temporary file beside the final target (a symbolic link is followed to it),
// which is flushed to disk and then renamed over the target; the file it replaces is kept
// aside until the caller commits, so that a failure after the rename can put it back. A
// target that exists and is not a regular file (a FIFO, a device) and "-" (standard output)
// are written directly. Temporary files of runs that were killed are removed by the next
// run that writes into the same folder.
#include "delivery/export_faults.h"
#include "export/export_values.h"

#include <QString>
#include <QStringList>
#include <vector>

namespace tp {

enum class FileEncoding { Windows1252, Utf8 };

inline const QString kReadOnlyFileMessage = QStringLiteral(
    "Sorry, cannot save to READ-ONLY file !\rTips:\r- Make this file writable;\r"
    "- Select another file;\r- Create new file.");

// The name that means standard output.
inline const QString kStandardOutput = QStringLiteral("-");

// The file exists and may not be written (its owner-write permission is off, or the
// process may not write it).
bool isReadOnlyFile(const QString& fileName);

// Removes the temporary files that killed runs left in folder: only files named as this
// writer names them and that no living writer holds. Returns how many went.
int removeAbandonedFiles(const QString& folder);

class ExportFileWriter {
public:
    explicit ExportFileWriter(FileEncoding encoding = FileEncoding::Windows1252);
    ~ExportFileWriter();   // whatever is not committed is undone
    ExportFileWriter(const ExportFileWriter&) = delete;
    ExportFileWriter& operator=(const ExportFileWriter&) = delete;

    bool open(const QString& fileName);
    bool writeHeader(const QStringList& headers);
    bool writeLine(const std::vector<ExportValue>& values);
    // Bytes as they stand (a picture), after the lines written so far.
    bool writeBytes(const QByteArray& bytes);
    // Writes what is buffered and flushes the file to disk. The chosen name is untouched.
    bool finish();
    // After finish: the file takes the chosen name (owner, group and mode of a file it
    // replaces kept), the folder flushed to disk. The replaced file stays aside.
    bool putInPlace();
    // The run stands: the replaced file is dropped.
    void commit();
    // Undoes putInPlace: the chosen name holds what it held before (or nothing).
    bool restore();
    // After putInPlace: the file also goes by the target's name plus suffix, which it keeps
    // after a restore. Returns that name, empty when it could not be made.
    QString keepCopy(const QString& suffix);
    // Abandons an unfinished or finished run before putInPlace.
    void discard();

    // Written straight into the target (standard output, a FIFO, a device): what was
    // written cannot be taken back.
    bool isDirect() const { return m_direct; }
    bool isOpen() const { return m_fd >= 0; }
    qint64 linesWritten() const { return m_lines; }
    QString errorString() const { return m_error; }
    // The file the lines end up in (a symbolic link's final target).
    QString targetPath() const { return m_target; }

private:
    bool flush();
    bool writeRaw(const QByteArray& bytes);
    bool fail(const QString& error);
    bool failErrno(int error);
    QByteArray encode(const QString& text) const;
    bool openTemporary(const QString& folder, const QString& name);
    void closeFile();

    FileEncoding m_encoding;
    ExportFaults m_faults;
    QString m_target;       // final target path
    QString m_workName;     // temporary file; empty when written directly
    QString m_asideName;    // the replaced file while the run is not committed
    int m_fd = -1;
    bool m_ownFd = true;
    bool m_direct = false;
    bool m_inPlace = false;
    bool m_targetExisted = false;
    unsigned m_mode = 0;
    unsigned m_uid = 0, m_gid = 0;
    QString m_pending;
    qint64 m_lines = 0;
    QString m_error;
};

} // namespace tp
