#include "foundation/sql_literal.h"

#include <charconv>
#include <cmath>
#include <limits>

namespace tp::sql {

namespace {

bool isBlank(QChar c)
{
    return c == QLatin1Char(' ') || c == QLatin1Char('\t');
}

bool isDigit(QChar c)
{
    return c >= QLatin1Char('0') && c <= QLatin1Char('9');
}

// The text between surrounding blanks, as ASCII; empty when anything else is non-ASCII.
QByteArray strippedAscii(const QString& value)
{
    qsizetype b = 0;
    qsizetype e = value.size();
    while (b < e && isBlank(value.at(b)))
        ++b;
    while (e > b && isBlank(value.at(e - 1)))
        --e;
    QByteArray out;
    out.reserve(e - b);
    for (qsizetype i = b; i < e; ++i) {
        if (value.at(i).unicode() > 0x7F)
            return QByteArray();
        out.append(char(value.at(i).unicode()));
    }
    return out;
}

qsizetype skipDigits(const QByteArray& s, qsizetype i, qsizetype* count)
{
    while (i < s.size() && isDigit(QLatin1Char(s.at(i)))) {
        ++i;
        ++*count;
    }
    return i;
}

} // namespace

QString text(const QString& value)
{
    QString out = value;
    out.replace(QLatin1Char('\''), QLatin1String("''"));
    return QLatin1Char('\'') + out + QLatin1Char('\'');
}

std::optional<QString> wholeNumber(const QString& value)
{
    const QByteArray s = strippedAscii(value);
    qsizetype i = 0;
    if (i < s.size() && (s.at(i) == '+' || s.at(i) == '-'))
        ++i;
    qsizetype digits = 0;
    if (skipDigits(s, i, &digits) != s.size() || digits == 0)
        return std::nullopt;
    // from_chars takes no plus sign.
    const char* first = s.constData() + (s.at(0) == '+' ? 1 : 0);
    const char* last = s.constData() + s.size();
    qint64 n = 0;
    const auto [end, ec] = std::from_chars(first, last, n);
    if (ec != std::errc() || end != last)
        return std::nullopt;
    return number(n);
}

QString number(qint64 value)
{
    return QString::number(value);
}

std::optional<QString> decimalNumber(const QString& value)
{
    const QByteArray s = strippedAscii(value);
    qsizetype i = 0;
    if (i < s.size() && (s.at(i) == '+' || s.at(i) == '-'))
        ++i;
    qsizetype digits = 0;
    i = skipDigits(s, i, &digits);
    if (i < s.size() && s.at(i) == '.')
        i = skipDigits(s, i + 1, &digits);
    if (digits == 0)
        return std::nullopt;
    if (i < s.size() && (s.at(i) == 'e' || s.at(i) == 'E')) {
        ++i;
        if (i < s.size() && (s.at(i) == '+' || s.at(i) == '-'))
            ++i;
        qsizetype expDigits = 0;
        i = skipDigits(s, i, &expDigits);
        if (expDigits == 0)
            return std::nullopt;
    }
    if (i != s.size())
        return std::nullopt;
    const char* first = s.constData() + (s.at(0) == '+' ? 1 : 0);
    double d = 0;
    const auto [end, ec] = std::from_chars(first, s.constData() + s.size(), d);
    if (ec != std::errc() || end != s.constData() + s.size() || !std::isfinite(d))
        return std::nullopt;
    return number(d);
}

QString number(double value)
{
    // No SQL literal stands for these; NULL keeps the statement's shape.
    if (!std::isfinite(value))
        return QStringLiteral("NULL");
    if (value == 0)
        return QStringLiteral("0");
    const double magnitude = std::fabs(value);
    const auto format = (magnitude >= 1e-7 && magnitude < 1e21) ? std::chars_format::fixed
                                                                  : std::chars_format::scientific;
    char buffer[400];
    const auto [end, ec] = std::to_chars(buffer, buffer + sizeof buffer, value, format);
    if (ec != std::errc())
        return QStringLiteral("NULL");
    return QString::fromLatin1(buffer, end - buffer);
}

} // namespace tp::sql
