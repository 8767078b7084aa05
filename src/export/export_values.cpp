#include "export/export_values.h"

#include "foundation/conversions.h"

#include <charconv>
#include <cmath>
#include <limits>

namespace tp {

namespace {

const QString kTrue = QStringLiteral("True");
const QString kFalse = QStringLiteral("False");

bool isTruthText(const QString& s)
{
    return s == kTrue || s == kFalse;
}

bool isDigit(QChar c)
{
    return c >= QLatin1Char('0') && c <= QLatin1Char('9');
}

// Dates as people and the old platform wrote them; a text that is none of these stays text.
QDateTime parseDate(const QString& s)
{
    static const char* const formats[] = {
        "M/d/yyyy h:mm:ss", "M/d/yyyy h:mm", "M/d/yyyy", "yyyy-MM-dd HH:mm:ss",
        "yyyy-MM-dd HH:mm", "yyyy-MM-dd", "yyyy-MM-ddTHH:mm:ss"};
    const QString t = s.trimmed();
    for (const char* f : formats) {
        const QDateTime d = QDateTime::fromString(t, QLatin1String(f));
        if (d.isValid())
            return d;
    }
    return {};
}

void appendValue(QString& out, const ExportValue& v)
{
    switch (v.kind) {
    case ExportValue::Text:
        out += QLatin1Char('"');
        out += v.text;
        out += QLatin1Char('"');
        break;
    case ExportValue::Number:
        out += formatExportNumber(v.number);
        break;
    case ExportValue::Truth:
        out += v.truth ? QLatin1String("#TRUE#") : QLatin1String("#FALSE#");
        break;
    case ExportValue::Date:
        out += QLatin1Char('#');
        out += v.date.date().toString(QStringLiteral("yyyy-MM-dd"));
        if (v.date.time() != QTime(0, 0)) {
            out += QLatin1Char(' ');
            out += v.date.time().toString(QStringLiteral("HH:mm:ss"));
        }
        out += QLatin1Char('#');
        break;
    }
}

} // namespace

bool isExportNumeric(const QString& s)
{
    qsizetype i = 0;
    qsizetype e = s.size();
    while (i < e && s.at(i) == QLatin1Char(' '))
        ++i;
    while (e > i && s.at(e - 1) == QLatin1Char(' '))
        --e;
    if (i < e && (s.at(i) == QLatin1Char('+') || s.at(i) == QLatin1Char('-')))
        ++i;
    qsizetype digits = 0;
    while (i < e && isDigit(s.at(i))) {
        ++i;
        ++digits;
    }
    if (i < e && s.at(i) == QLatin1Char('.')) {
        ++i;
        while (i < e && isDigit(s.at(i))) {
            ++i;
            ++digits;
        }
    }
    // A power of ten, as another program may have stored a very large or small real.
    if (digits > 0 && i < e && (s.at(i) == QLatin1Char('e') || s.at(i) == QLatin1Char('E'))) {
        ++i;
        if (i < e && (s.at(i) == QLatin1Char('+') || s.at(i) == QLatin1Char('-')))
            ++i;
        qsizetype exponentDigits = 0;
        while (i < e && isDigit(s.at(i))) {
            ++i;
            ++exponentDigits;
        }
        if (exponentDigits == 0)
            return false;
    }
    return digits > 0 && i == e;
}

FieldType fieldTypeOf(const QString& dataType)
{
    if (dataType.compare(QLatin1String("Number"), Qt::CaseInsensitive) == 0)
        return FieldType::Number;
    if (dataType.compare(QLatin1String("Boolean"), Qt::CaseInsensitive) == 0)
        return FieldType::Boolean;
    if (dataType.compare(QLatin1String("Date"), Qt::CaseInsensitive) == 0)
        return FieldType::Date;
    return FieldType::Other;
}

ExportValue TypeValue(const QString& s, const QString& dataType)
{
    return TypeValue(s, fieldTypeOf(dataType));
}

ExportValue TypeValue(const QString& s, FieldType type)
{
    const bool numeric = isExportNumeric(s);
    if (numeric && type == FieldType::Number) {
        const QString trimmed = s.trimmed();
        const QByteArray ascii = trimmed.toLatin1();
        const char* b = ascii.constData();
        if (*b == '+')
            ++b;
        double d = 0;
        const auto r = std::from_chars(b, ascii.constData() + ascii.size(), d);
        // Too many digits for a double: keep the digits as text rather than write a wrong number.
        if (r.ec == std::errc())
            return ExportValue::ofNumber(d);
        return ExportValue::ofText(s);
    }
    if (type == FieldType::Boolean && isTruthText(s))
        return ExportValue::ofTruth(s == kTrue);
    if (type == FieldType::Date && !numeric) {
        const QDateTime d = parseDate(s);
        if (d.isValid())
            return ExportValue::ofDate(d);
    }
    return ExportValue::ofText(s);
}

qint32 storedWholeNumber(const QString& text)
{
    bool ok = false;
    const double d = text.trimmed().toDouble(&ok);
    if (!ok || d >= 2147483647.5 || d < -2147483648.5)
        return 0;
    return qint32(qRound64(d));
}

QString formatExportNumber(double d)
{
    // Typed values come from finite decimal texts; anything else has no file form.
    if (d == 0 || !std::isfinite(d))
        return QStringLiteral("0");
    char buf[64];
    // Most numbers need no rounding and no exponent: their shortest plain form is the answer.
    if (const double a = std::abs(d); a >= 1e-7 && a < 1e15) {
        const auto plain = std::to_chars(buf, buf + sizeof buf, d, std::chars_format::fixed);
        int significant = 0;
        bool leading = true;
        for (const char* c = buf; c != plain.ptr; ++c) {
            if (*c < '0' || *c > '9' || (leading && *c == '0'))
                continue;
            leading = false;
            ++significant;
        }
        if (plain.ec == std::errc() && significant <= 15)
            return QString::fromLatin1(buf, qsizetype(plain.ptr - buf));
    }
    auto r = std::to_chars(buf, buf + sizeof buf, d, std::chars_format::scientific);
    std::string sci(buf, r.ptr);
    auto split = [](const std::string& text, bool& negative, std::string& digits, int& exponent) {
        std::size_t i = 0;
        negative = text[0] == '-';
        if (negative)
            ++i;
        digits.clear();
        for (; i < text.size() && text[i] != 'e'; ++i)
            if (text[i] != '.')
                digits += text[i];
        exponent = std::stoi(text.substr(i + 1));
    };
    bool negative = false;
    std::string digits;
    int exponent = 0;
    split(sci, negative, digits, exponent);
    if (digits.size() > 15) {
        r = std::to_chars(buf, buf + sizeof buf, d, std::chars_format::scientific, 14);
        split(std::string(buf, r.ptr), negative, digits, exponent);
    }
    while (digits.size() > 1 && digits.back() == '0')
        digits.pop_back();

    // Plain decimal whatever the size: a reader of the file never meets an exponent.
    std::string out = negative ? "-" : "";
    if (exponent >= 0) {
        const std::size_t whole = std::size_t(exponent) + 1;
        if (digits.size() <= whole) {
            out += digits + std::string(whole - digits.size(), '0');
        } else {
            out += digits.substr(0, whole) + '.' + digits.substr(whole);
        }
    } else {
        out += "0." + std::string(std::size_t(-exponent - 1), '0') + digits;
    }
    return QString::fromLatin1(out.data(), qsizetype(out.size()));
}

qint64 storedTimeNumber(const QString& text)
{
    const QString t = text.trimmed();
    bool ok = false;
    const qint64 whole = t.toLongLong(&ok);
    if (ok)
        return whole;
    const double d = t.toDouble(&ok);
    if (!ok || !std::isfinite(d))
        return 0;
    // Beyond 19 digits no clock text can come out of it: the largest whole number says so.
    if (std::fabs(d) >= 9.2e18)
        return d < 0 ? std::numeric_limits<qint64>::min() : std::numeric_limits<qint64>::max();
    return qint64(std::nearbyint(d));
}

QString formatStoredTimeText(const QString& text)
{
    return FormatStoredTime(storedTimeNumber(text), false);
}

void appendExportLine(QString& out, const std::vector<ExportValue>& values)
{
    for (std::size_t i = 0; i < values.size(); ++i) {
        if (i > 0)
            out += QLatin1Char(',');
        appendValue(out, values[i]);
    }
    out += QLatin1String("\r\n");
}

QString exportLineText(const std::vector<ExportValue>& values)
{
    QString out;
    appendExportLine(out, values);
    return out;
}

QString exportHeaderText(const QStringList& headers)
{
    std::vector<ExportValue> values;
    values.reserve(std::size_t(headers.size()));
    for (const QString& h : headers)
        values.push_back(ExportValue::ofText(h));
    return exportLineText(values);
}

QString previewHeaderText(const QStringList& headers)
{
    QStringList parts;
    for (const QString& h : headers)
        parts << QLatin1String("''") + h + QLatin1String("''");
    return parts.join(QLatin1String(" , "));
}

QString previewRecordText(const QStringList& cells, const QStringList& dataTypes)
{
    QString out;
    const qsizetype n = cells.size();
    for (qsizetype c = 0; c < n; ++c) {
        const QString& v = cells.at(c);
        const QString t = c < dataTypes.size() ? dataTypes.at(c).toUpper() : QString();
        const bool number = isExportNumeric(v) && t == QLatin1String("NUMBER");
        if (c + 1 < n) {
            // A "True" or "False" outside the last column gets number signs whatever its type.
            if (number)
                out += v;
            else if (!isTruthText(v))
                out += QLatin1String("''") + v + QLatin1String("''");
            else
                out += QLatin1Char('#') + v + QLatin1Char('#');
            out += QLatin1String(" , ");
        } else if (number) {
            out += v;
        } else if (isTruthText(v) && t == QLatin1String("BOOLEAN")) {
            out += QLatin1Char('#') + v + QLatin1Char('#');
        } else {
            out += QLatin1String("''") + v + QLatin1String("''");
        }
    }
    return out;
}

} // namespace tp
