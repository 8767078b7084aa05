#pragma once
// Writes an export text file: one file handle for the run, lines buffered and written whole.
// The lines go to a hidden file beside the target, which replaces the target when the run
// ends, so a cancelled run leaves the target as it was. After a write error the target holds
// what was written completely: the header line and the complete record lines before it.
#include "export/export_values.h"

#include <QFile>
#include <QString>
#include <QStringList>

namespace tp {

enum class FileEncoding { Windows1252, Utf8 };

inline const QString kReadOnlyFileMessage = QStringLiteral(
    "Sorry, cannot save to READ-ONLY file !\rTips:\r- Make this file writable;\r"
    "- Select another file;\r- Create new file.");

// The file exists and may not be written (its owner-write permission is off, or the
// process may not write it).
bool isReadOnlyFile(const QString& fileName);

class ExportFileWriter {
public:
    explicit ExportFileWriter(FileEncoding encoding = FileEncoding::Windows1252);
    ~ExportFileWriter();   // an open run not finished is discarded
    ExportFileWriter(const ExportFileWriter&) = delete;
    ExportFileWriter& operator=(const ExportFileWriter&) = delete;

    bool open(const QString& fileName);
    bool writeHeader(const QStringList& headers);
    bool writeLine(const std::vector<ExportValue>& values);
    // Writes what is buffered and puts the file in place. False after any error.
    bool finish();
    // Abandons the run: the target keeps what it held before.
    void discard();
    // After a failed write: keep the complete lines written so far as the target.
    void keepPartial();

    bool isOpen() const { return m_file.isOpen(); }
    qint64 linesWritten() const { return m_lines; }
    QString errorString() const { return m_error; }

private:
    bool flush();
    bool fail(const QString& error);
    QByteArray encode(const QString& text) const;
    bool putInPlace();

    FileEncoding m_encoding;
    QString m_target;
    QString m_workName;     // the file being written; the target itself when written directly
    bool m_direct = false;
    bool m_targetExisted = false;
    QFile m_file;
    QString m_pending;
    qint64 m_complete = 0;  // bytes of complete lines on disk
    qint64 m_lines = 0;
    QString m_error;
};

} // namespace tp
