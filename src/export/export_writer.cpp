#include "export/export_writer.h"

#include "foundation/conversions.h"

#include <QDir>
#include <QFileInfo>
#include <QRandomGenerator>

#include <cerrno>
#include <cstdio>
#include <cstring>

namespace tp {

namespace {

// Lines are collected to about this many characters before they go to the disk.
constexpr qsizetype kFlushChars = 1 << 16;

} // namespace

bool isReadOnlyFile(const QString& fileName)
{
    const QFileInfo info(fileName);
    if (!info.exists() || info.isDir())
        return false;
    return !(info.permissions() & QFileDevice::WriteOwner) || !info.isWritable();
}

ExportFileWriter::ExportFileWriter(FileEncoding encoding) : m_encoding(encoding) {}

ExportFileWriter::~ExportFileWriter()
{
    if (m_file.isOpen())
        discard();
}

bool ExportFileWriter::fail(const QString& error)
{
    if (m_error.isEmpty())
        m_error = error;
    return false;
}

QByteArray ExportFileWriter::encode(const QString& text) const
{
    return m_encoding == FileEncoding::Utf8 ? text.toUtf8() : toWindows1252(text);
}

bool ExportFileWriter::open(const QString& fileName)
{
    m_target = fileName;
    m_error.clear();
    m_pending.clear();
    m_complete = 0;
    m_lines = 0;
    const QFileInfo target(fileName);
    m_targetExisted = target.exists();

    const QString work = target.absolutePath() + QStringLiteral("/.") + target.fileName() +
                         QStringLiteral(".tpw") +
                         QString::number(QRandomGenerator::global()->generate(), 36);
    m_file.setFileName(work);
    if (m_file.open(QIODevice::WriteOnly | QIODevice::NewOnly | QIODevice::Unbuffered)) {
        m_workName = work;
        m_direct = false;
        return true;
    }
    // A folder we may not add files to: write the target itself.
    m_file.setFileName(fileName);
    if (m_file.open(QIODevice::WriteOnly | QIODevice::Truncate | QIODevice::Unbuffered)) {
        m_workName = fileName;
        m_direct = true;
        return true;
    }
    return fail(m_file.errorString());
}

bool ExportFileWriter::flush()
{
    if (!m_error.isEmpty())
        return false;
    if (m_pending.isEmpty())
        return true;
    const QByteArray bytes = encode(m_pending);
    m_pending.clear();
    const qint64 n = m_file.write(bytes);
    if (n != bytes.size()) {
        const QString error = m_file.errorString();
        // Keep the lines that reached the disk whole; never leave half a line behind.
        const qint64 onDisk = std::min<qint64>(m_file.size() - m_complete, bytes.size());
        if (onDisk > 0) {
            const qsizetype lastEnd = bytes.lastIndexOf('\n', onDisk - 1);
            if (lastEnd >= 0)
                m_complete += lastEnd + 1;
        }
        m_file.resize(m_complete);
        return fail(error.isEmpty() ? QStringLiteral("Write error") : error);
    }
    m_complete += n;
    return true;
}

bool ExportFileWriter::writeHeader(const QStringList& headers)
{
    if (!m_file.isOpen())
        return fail(QStringLiteral("File not open"));
    m_pending += exportHeaderText(headers);
    return m_pending.size() < kFlushChars || flush();
}

bool ExportFileWriter::writeLine(const std::vector<ExportValue>& values)
{
    if (!m_file.isOpen())
        return fail(QStringLiteral("File not open"));
    appendExportLine(m_pending, values);
    ++m_lines;
    return m_pending.size() < kFlushChars || flush();
}

bool ExportFileWriter::putInPlace()
{
    if (m_direct)
        return true;
    if (m_targetExisted)
        QFile::setPermissions(m_workName, QFileInfo(m_target).permissions());
    // rename() replaces an existing target in one step.
    if (std::rename(QFile::encodeName(m_workName).constData(),
                    QFile::encodeName(m_target).constData()) != 0) {
        const QString error = QString::fromLocal8Bit(std::strerror(errno));
        QFile::remove(m_workName);
        return fail(error);
    }
    return true;
}

bool ExportFileWriter::finish()
{
    if (!m_file.isOpen())
        return fail(QStringLiteral("File not open"));
    if (!flush())
        return false;
    m_file.close();
    if (m_file.error() != QFileDevice::NoError)
        return fail(m_file.errorString());
    return putInPlace();
}

void ExportFileWriter::keepPartial()
{
    if (!m_file.isOpen())
        return;
    flush();   // the lines collected before a failure elsewhere are complete
    m_pending.clear();
    m_file.resize(m_complete);
    m_file.close();
    const QString error = m_error;
    putInPlace();
    m_error = error;
}

void ExportFileWriter::discard()
{
    if (!m_file.isOpen())
        return;
    m_pending.clear();
    m_file.close();
    if (!m_direct || !m_targetExisted)
        QFile::remove(m_workName);
}

} // namespace tp
