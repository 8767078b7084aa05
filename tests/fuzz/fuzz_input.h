#pragma once
// Cutting a fuzzer's bytes into the texts and numbers a target feeds the code under test.
#include <QByteArray>
#include <QString>
#include <QStringList>
#include <cstddef>
#include <cstdio>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <unistd.h>

namespace tp::fuzz {

class Input {
public:
    Input(const uint8_t* data, size_t size) : m_data(reinterpret_cast<const char*>(data)), m_size(size) {}

    bool empty() const { return m_pos >= m_size; }
    QByteArray rest() const { return QByteArray(m_data + m_pos, qsizetype(m_size - m_pos)); }

    uint8_t byte()
    {
        return m_pos < m_size ? uint8_t(m_data[m_pos++]) : 0;
    }
    // The next sizeof(T) bytes, big-endian, as a T (missing bytes count as zero).
    template <class T>
    T as()
    {
        uint64_t v = 0;
        for (size_t i = 0; i < sizeof(T); ++i)
            v = (v << 8) | byte();
        T out;
        if constexpr (sizeof(T) == 4) {
            const uint32_t narrow = uint32_t(v);
            std::memcpy(&out, &narrow, sizeof out);
        } else {
            std::memcpy(&out, &v, sizeof out);
        }
        return out;
    }
    // UTF-8 text up to the next NUL byte (or the end).
    QString text()
    {
        const size_t start = m_pos;
        while (m_pos < m_size && m_data[m_pos] != '\0')
            ++m_pos;
        const QString out = QString::fromUtf8(m_data + start, qsizetype(m_pos - start));
        if (m_pos < m_size)
            ++m_pos;
        return out;
    }
    QStringList texts()
    {
        QStringList out;
        while (!empty())
            out << text();
        return out;
    }

private:
    const char* m_data;
    size_t m_size;
    size_t m_pos = 0;
};

// Scratch files go to memory where the machine has it: a disk would make file-writing targets
// a hundred times slower.
inline QString scratchTemplate()
{
    const char* shm = "/dev/shm";
    return QString::fromLatin1(access(shm, W_OK) == 0 ? shm : "/tmp") + QStringLiteral("/tallyport-fuzz-XXXXXX");
}

// A finding of a target's own check: reported as a crash, as a sanitizer's would be.
[[noreturn]] inline void finding(const char* what)
{
    std::fprintf(stderr, "fuzz finding: %s\n", what);
    std::abort();
}

} // namespace tp::fuzz
