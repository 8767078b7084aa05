#pragma once
// Reads a delimited text file as a stream and raises one event per line, on the caller's
// thread: line number (0 for the first), field count, field texts, percent done, stop.
// Never holds more than one line, and of a very long line only a bounded part.
#include <QByteArray>
#include <QString>
#include <QStringList>
#include <functional>

class QIODevice;

namespace tp {

class DelimitedLineReader {
public:
    // Bytes of one field kept for its text; the rest of an overlong field is counted only
    // (its text then ends where the cut was made, which is longer than any value accepted).
    static constexpr qsizetype kMaxFieldBytes = 4096;
    // Bytes of field text kept for one line in all; later fields of such a line keep none.
    static constexpr qsizetype kMaxLineBytes = 1 << 20;
    // Fields of one line whose text is kept; further ones are counted only.
    static constexpr qsizetype kMaxFields = 4096;

    void setFileName(const QString& fileName) { m_fileName = fileName; }
    QString fileName() const { return m_fileName; }
    // The text between fields; one character (a comma unless told otherwise).
    void setSeparator(char separator) { m_separator = separator; }

    // Reads from the first line, calling onLine once per line until the file ends or stop()
    // is called inside it. A file without any byte reads as one empty line; a last line
    // without a line end still counts. False when the file cannot be opened or read.
    bool start(const std::function<void(DelimitedLineReader&)>& onLine);
    // The same from a device open for reading, from where it stands; its size (0 for a
    // sequential one) is what percentDone() measures against.
    bool start(QIODevice& device, const std::function<void(DelimitedLineReader&)>& onLine);
    // Ends the reading after the current line event.
    void stop() { m_stopped = true; }
    bool stopped() const { return m_stopped; }

    qint64 lineNumber() const { return m_lineNumber; }
    // An empty line has no field; a line of blanks has one.
    int fieldCount() const { return m_fieldCount; }
    // Field i of the current line, counted from 1; empty outside 1..fieldCount(). Bytes
    // that are valid UTF-8 are read as such, any other line as Windows-1252.
    QString fieldText(int i) const;
    // No byte of the line other than blanks and separators (an empty line included).
    bool blankLine() const { return m_blank; }
    // Share of the file read so far, 0 to 100.
    int percentDone() const;

private:
    void beginLine();
    void endField();
    void addByte(char c);
    // n bytes of which none is a separator, a line feed or a carriage return.
    void addRun(const char* bytes, qsizetype n);
    void emitLine(const std::function<void(DelimitedLineReader&)>& onLine);

    QString m_fileName;
    QByteArray m_chunk;   // kept from one start to the next
    char m_separator = ',';
    bool m_stopped = false;
    qint64 m_lineNumber = -1;
    qint64 m_size = 0;
    qint64 m_consumed = 0;
    int m_fieldCount = 0;

    // The current line: kept bytes of every field, their ends, and whether the line is
    // valid UTF-8 so far.
    QByteArray m_bytes;
    std::vector<qsizetype> m_ends;
    qsizetype m_fieldStart = 0;
    qsizetype m_fieldBytes = 0;   // bytes seen of the current field, kept or not
    qint64 m_fields = 0;          // fields ended so far on this line
    bool m_pendingCr = false;     // a carriage return waiting to see whether a line feed follows
    bool m_lineHasBytes = false;
    bool m_blank = true;
    bool m_utf8 = true;
};

} // namespace tp
