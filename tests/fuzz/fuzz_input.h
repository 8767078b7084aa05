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
    int32_t int32()
    {
        uint32_t v = 0;
        for (int i = 0; i < 4; ++i)
            v = (v << 8) | byte();
        int32_t out;
        std::memcpy(&out, &v, sizeof out);
        return out;
    }
    double real()
    {
        uint64_t v = 0;
        for (int i = 0; i < 8; ++i)
            v = (v << 8) | byte();
        double out;
        std::memcpy(&out, &v, sizeof out);
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

// A finding of a target's own check: reported as a crash, as a sanitizer's would be.
[[noreturn]] inline void finding(const char* what)
{
    std::fprintf(stderr, "fuzz finding: %s\n", what);
    std::abort();
}

} // namespace tp::fuzz
