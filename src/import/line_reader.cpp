#include "import/line_reader.h"

#include <QFile>
#include <QStringDecoder>

#include <algorithm>

namespace tp {

namespace {

constexpr qint64 kChunk = 64 * 1024;

QString decode1252(QByteArrayView bytes)
{
    // Opening a converter costs far more than decoding one field; a single-byte code keeps
    // no state between calls, so one per thread serves every field.
    thread_local QStringDecoder decoder("windows-1252", QStringConverter::Flag::Stateless);
    if (decoder.isValid())
        return decoder.decode(bytes);
    return QString::fromLatin1(bytes);
}

bool isValidUtf8(const char* text, qsizetype n)
{
    const auto* p = reinterpret_cast<const unsigned char*>(text);
    qsizetype i = 0;
    while (i < n) {
        const unsigned char c = p[i];
        if (c < 0x80) {
            ++i;
            continue;
        }
        int more;
        unsigned int code;
        if ((c & 0xE0) == 0xC0)
            more = 1, code = c & 0x1F;
        else if ((c & 0xF0) == 0xE0)
            more = 2, code = c & 0x0F;
        else if ((c & 0xF8) == 0xF0)
            more = 3, code = c & 0x07;
        else
            return false;
        for (int k = 1; k <= more; ++k) {
            if (i + k >= n || (p[i + k] & 0xC0) != 0x80)
                return false;
            code = (code << 6) | (p[i + k] & 0x3F);
        }
        // Overlong forms, surrogates and values past the last code point are not UTF-8.
        static const unsigned int least[] = {0, 0x80, 0x800, 0x10000};
        if (code < least[more] || code > 0x10FFFF || (code >= 0xD800 && code <= 0xDFFF))
            return false;
        i += more + 1;
    }
    return true;
}

} // namespace

void DelimitedLineReader::beginLine()
{
    // resize, not clear: the line's buffer keeps its room for the next line.
    m_bytes.resize(0);
    m_ends.clear();
    m_fieldStart = 0;
    m_fieldBytes = 0;
    m_fields = 0;
    m_lineHasBytes = false;
    m_blank = true;
    m_pendingCr = false;
    m_utf8 = true;
}

void DelimitedLineReader::endField()
{
    ++m_fields;
    if (m_ends.size() < size_t(kMaxFields))
        m_ends.push_back(m_bytes.size());
    m_fieldStart = m_bytes.size();
    m_fieldBytes = 0;
}

void DelimitedLineReader::addByte(char c)
{
    m_lineHasBytes = true;
    if (c == m_separator) {
        endField();
        return;
    }
    ++m_fieldBytes;
    if (c != ' ')
        m_blank = false;
    if (m_fieldBytes <= kMaxFieldBytes && m_bytes.size() < kMaxLineBytes && m_ends.size() < size_t(kMaxFields))
        m_bytes.append(c);
}

void DelimitedLineReader::addRun(const char* bytes, qsizetype n)
{
    m_lineHasBytes = true;
    for (qsizetype k = 0; m_blank && k < n; ++k)
        m_blank = bytes[k] == ' ';
    // As addByte keeps them: up to the field's and the line's limits, none past the last field kept.
    qsizetype keep = 0;
    if (m_ends.size() < size_t(kMaxFields))
        keep = std::min({n, std::max<qsizetype>(0, kMaxFieldBytes - m_fieldBytes),
                         std::max<qsizetype>(0, kMaxLineBytes - m_bytes.size())});
    m_fieldBytes += n;
    if (keep > 0)
        m_bytes.append(bytes, keep);
}

bool DelimitedLineReader::start(const std::function<void(DelimitedLineReader&)>& onLine)
{
    QFile file(m_fileName);
    if (file.open(QIODevice::ReadOnly))
        return start(file, onLine);
    m_stopped = false;
    m_lineNumber = -1;
    m_consumed = 0;
    m_fieldCount = 0;
    return false;
}

bool DelimitedLineReader::start(QIODevice& device, const std::function<void(DelimitedLineReader&)>& onLine)
{
    m_stopped = false;
    m_lineNumber = -1;
    m_consumed = 0;
    m_fieldCount = 0;
    m_size = device.isSequential() ? 0 : device.size() - device.pos();
    beginLine();

    m_chunk.resize(kChunk);
    bool anyLine = false;
    for (;;) {
        const qint64 got = device.read(m_chunk.data(), kChunk);
        if (got < 0)
            return false;
        if (got == 0)
            break;
        const char* p = m_chunk.constData();
        for (qint64 i = 0; i < got; ++i) {
            const char c = p[i];
            if (!m_pendingCr && c != '\n' && c != '\r' && c != m_separator) {
                // A run of plain bytes goes in at once.
                qint64 j = i + 1;
                while (j < got && p[j] != '\n' && p[j] != '\r' && p[j] != m_separator)
                    ++j;
                addRun(p + i, j - i);
                m_consumed += j - i;
                i = j - 1;
                continue;
            }
            ++m_consumed;
            if (c == '\n') {
                // A carriage return just before the line feed belongs to the line end.
                emitLine(onLine);
                anyLine = true;
                if (m_stopped)
                    return true;
                beginLine();
                continue;
            }
            if (m_pendingCr)
                addByte('\r');
            m_pendingCr = c == '\r';
            if (!m_pendingCr)
                addByte(c);
        }
    }
    // The last line counts without its line end; a file without any byte is one empty line.
    if (m_lineHasBytes || !anyLine)
        emitLine(onLine);
    return true;
}

void DelimitedLineReader::emitLine(const std::function<void(DelimitedLineReader&)>& onLine)
{
    ++m_lineNumber;
    if (m_lineHasBytes) {
        endField();
        m_fieldCount = int(std::min<qint64>(m_fields, INT_MAX));
    } else {
        m_fieldCount = 0;
    }
    m_utf8 = isValidUtf8(m_bytes.constData(), m_bytes.size());
    onLine(*this);
}

QString DelimitedLineReader::fieldText(int i) const
{
    if (i < 1 || i > m_fieldCount || size_t(i) > m_ends.size())
        return QString();
    const qsizetype from = i == 1 ? 0 : m_ends[size_t(i - 2)];
    const qsizetype to = m_ends[size_t(i - 1)];
    if (m_utf8)
        return QString::fromUtf8(m_bytes.constData() + from, to - from);
    return decode1252(QByteArrayView(m_bytes.constData() + from, to - from));
}

int DelimitedLineReader::percentDone() const
{
    if (m_size <= 0)
        return 100;
    return int(std::min<qint64>(100, m_consumed * 100 / m_size));
}

} // namespace tp
