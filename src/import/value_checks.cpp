#include "import/value_checks.h"

#include "foundation/conversions.h"
#include "foundation/dao.h"

#include <QVarLengthArray>

#include <cfenv>
#include <charconv>
#include <cmath>

namespace tp {

namespace check {

namespace {

bool isDigit(QChar c)
{
    return c >= QLatin1Char('0') && c <= QLatin1Char('9');
}

// Characters allowed below "0" by the Characters check.
bool allowedPunctuation(QChar c)
{
    switch (c.unicode()) {
    case ' ': case '!': case '"': case '#': case '%': case '\'': case '(': case ')': case '*': case '-': case '.':
    case '/':
        return true;
    default:
        return false;
    }
}

const QString kZipFormats = QStringLiteral(
    "\r\rValid formats are:\r5NUMBERS, DASH, 4NUMBERS  or\r5NUMBERS, DASH, 4SPACES  or\r"
    "5SPACES,  DASH, 4SPACES  or\r5NUMBERS, DASH or\r5NUMBERS\r");

const QString kBlankZip = QStringLiteral("     -    ");

} // namespace

bool isNumeric(const QString& text)
{
    const QStringView t = TrimBlanks(QStringView(text));
    qsizetype i = 0;
    const qsizetype n = t.size();
    if (i < n && (t[i] == QLatin1Char('+') || t[i] == QLatin1Char('-')))
        ++i;
    qsizetype digits = 0;
    while (i < n && isDigit(t[i]))
        ++i, ++digits;
    if (i < n && t[i] == QLatin1Char('.')) {
        ++i;
        while (i < n && isDigit(t[i]))
            ++i, ++digits;
    }
    if (digits == 0)
        return false;
    if (i < n && (t[i] == QLatin1Char('e') || t[i] == QLatin1Char('E'))) {
        ++i;
        if (i < n && (t[i] == QLatin1Char('+') || t[i] == QLatin1Char('-')))
            ++i;
        qsizetype exp = 0;
        while (i < n && isDigit(t[i]))
            ++i, ++exp;
        if (exp == 0)
            return false;
    }
    return i == n;
}

std::optional<double> toNumber(const QString& text)
{
    if (!isNumeric(text))
        return std::nullopt;
    // Only sign, digits, point and exponent are left, all ASCII.
    QStringView t = TrimBlanks(QStringView(text));
    if (t.startsWith(QLatin1Char('+')))
        t = t.mid(1);
    QVarLengthArray<char, 64> ascii(t.size());   // on the stack for any usual number
    for (qsizetype k = 0; k < t.size(); ++k)
        ascii[k] = char(t.at(k).unicode());
    double v = 0;
    const char* const last = ascii.constData() + ascii.size();
    const auto [end, error] = std::from_chars(ascii.constData(), last, v);
    if (error != std::errc() || end != last || !std::isfinite(v))
        return std::nullopt;
    return v;
}

std::optional<qint32> toWholeNumber(const QString& text)
{
    const std::optional<double> v = toNumber(text);
    if (!v)
        return std::nullopt;
    const int saved = std::fegetround();
    std::fesetround(FE_TONEAREST);
    const double r = std::nearbyint(*v);
    std::fesetround(saved);
    if (r < -2147483648.0 || r > 2147483647.0)
        return std::nullopt;
    return qint32(r);
}

bool isQuoted(QString& value)
{
    if (value.startsWith(QLatin1Char(' ')) || value.endsWith(QLatin1Char(' ')))
        value = TrimBlanks(value);
    if (value.isEmpty())
        return false;
    // Read through a const view: the value's text is often shared, and writing access would copy it.
    const QStringView v(value);
    const auto quote = [](QChar c) { return c == QLatin1Char('"') || c == QLatin1Char('\''); };
    return quote(v.front()) || quote(v.back());
}

namespace {

// What the Characters and Alphanumeric checks differ in: the code of a long or odd value,
// the characters allowed, and the texts the found value gets.
struct TextCheck {
    qint16 code;
    bool (*allowed)(QChar);
    const char* blank;      // appended on a blank value; nullptr: V is left as it was
    const char* tooLong;
    bool longQuotesOriginal;   // V of a long value is the value before trimming
    const char* badSymbol;
};

bool characterAllowed(QChar c)
{
    return !(c > QLatin1Char('z') || (c < QLatin1Char('a') && c > QLatin1Char('Z')) ||
             (c < QLatin1Char('A') && c > QLatin1Char('9')) || (c < QLatin1Char('0') && !allowedPunctuation(c)));
}

bool alphanumericAllowed(QChar c)
{
    return (c >= QLatin1Char('A') && c <= QLatin1Char('Z')) || (c >= QLatin1Char('a') && c <= QLatin1Char('z')) ||
           isDigit(c) || c == QLatin1Char(' ');
}

// The found values are built only on a failure: which text V holds depends on the step that
// failed, and building it for every passing value would cost more than the check.
qint16 textCheck(const TextCheck& rule, QString& value, const QString& name, int max, ScanState& s)
{
    s.fieldText = name;
    s.lengthLimit = qint16(max);
    if (TrimBlanks(value).isEmpty()) {
        if (rule.blank)
            s.foundValue = value + QLatin1String(rule.blank);
        return ScanBlank;
    }
    const QString original = value;
    if (isQuoted(value)) {
        s.foundValue = value;
        return ScanQuoted;
    }
    if (value.size() > max) {
        s.foundValue = (rule.longQuotesOriginal ? original : value) + QLatin1String(rule.tooLong);
        return rule.code;
    }
    for (const QChar c : std::as_const(value))
        if (!rule.allowed(c)) {
            s.foundValue = value + QLatin1String(rule.badSymbol);
            return rule.code;
        }
    return ScanOk;
}

} // namespace

qint16 Characters(QString& value, const QString& name, int max, ScanState& s)
{
    static const TextCheck rule{ScanCharacters, characterAllowed, " Blank Field", " Invalid length", true,
                                " Unacceptable symbols"};
    return textCheck(rule, value, name, max, s);
}

qint16 Alphanumeric(QString& value, const QString& name, int max, ScanState& s)
{
    static const TextCheck rule{ScanAlphanumeric, alphanumericAllowed, nullptr, " - Invalid Length", false,
                                " - Non AlphaNumeric symbols"};
    return textCheck(rule, value, name, max, s);
}

qint16 Capitals(const QString& value, const QString& name, int max, qint16 code, ScanState& s)
{
    s.fieldText = name;
    s.foundValue = value;
    s.lengthLimit = qint16(max);
    if (value.isEmpty() || value.size() > max)
        return code;
    for (const QChar c : value)
        if (c < QLatin1Char('A') || c > QLatin1Char('Z'))
            return code;
    return ScanOk;
}

qint16 StateCode(const QString& value, const QString& name, qint16 code, ScanState& s)
{
    return Capitals(value, name, 2, code, s);
}

namespace {

qint16 nonNegative(QString& value, const QString& name, qint16 code, ScanState& s, double& number)
{
    s.fieldText = name;
    s.foundValue = value;
    if (isQuoted(value) || value.size() > 9)
        return code;
    const std::optional<double> v = toNumber(value);
    if (!v || *v < 0)
        return code;
    number = *v;
    return ScanOk;
}

} // namespace

qint16 NonNegativeNumber(QString& value, const QString& name, qint16 code, ScanState& s)
{
    double number = 0;
    return nonNegative(value, name, code, s, number);
}

qint16 PositiveNumber(QString& value, const QString& name, qint16 code, ScanState& s)
{
    double number = 0;
    const qint16 r = nonNegative(value, name, code, s, number);
    if (r != ScanOk)
        return r;
    return number == 0 ? code : qint16(ScanOk);
}

qint16 Length(QString& value, const QString& name, int max, qint16 code, ScanState& s)
{
    s.fieldText = name;
    s.lengthLimit = qint16(max);
    const bool quoted = isQuoted(value);
    s.foundValue = value;
    if (quoted)
        return ScanBadFormat;
    return value.size() > max ? code : qint16(ScanOk);
}

qint16 Range(const QString& value, const QString& name, double low, double high, double& number,
             ScanState& s)
{
    s.fieldText = name;
    s.lengthLimit = 0;
    s.foundValue = value;
    if (TrimBlanks(value).isEmpty())
        return ScanBadFormat;
    const std::optional<double> v = toNumber(value);
    if (!v)
        return ScanBadFormat;
    s.foundValue = QString::number(*v, 'g', 17);
    if (*v < low || *v > high)
        return ScanBadFormat;
    number = *v;
    return ScanOk;
}

qint16 Year(const QString& value, qint16 code, ScanState& s)
{
    s.fieldText = QStringLiteral("Year");
    s.foundValue = value;
    s.lengthLimit = 0;
    if (!isNumeric(value) || value.size() != 4 || toNumber(value).value_or(-1) < 0)
        return code;
    return ScanOk;
}

QString padOrCut(const QString& value, int width)
{
    return value.size() >= width ? value.left(width) : value.leftJustified(width, QLatin1Char(' '));
}

bool ZipCode(QString& value, ScanState& s)
{
    if (value == kBlankZip)
        return true;
    const auto fail = [&s, &value] {
        s.fieldText = QStringLiteral("ZipCode");
        s.foundValue = value + kZipFormats;
        return false;
    };
    const QString v = padOrCut(value, 10);
    // The usual forms, five digits with or without a dash and four digits, copy nothing.
    const auto digits = [&v](qsizetype from, qsizetype count) {
        for (qsizetype k = from; k < from + count; ++k)
            if (!isDigit(v.at(k)))
                return false;
        return true;
    };
    if (digits(0, 5) && v.at(5) == QLatin1Char('-') && digits(6, 4)) {
        value = v;
        return true;
    }
    const QString first = v.left(5);
    const QString firstTrimmed = TrimBlanks(first);
    if (firstTrimmed.size() != 5 || !isNumeric(firstTrimmed))
        return fail();
    const QString last = v.right(4);
    if (TrimBlanks(last).isEmpty()) {
        value = first + QStringLiteral("-    ");
        return true;
    }
    const QString lastTrimmed = TrimBlanks(last);
    if (lastTrimmed.size() == 4 && isNumeric(lastTrimmed)) {
        value = first + QLatin1Char('-') + last;
        return true;
    }
    return fail();
}

bool PhoneNumber(QString& value)
{
    return CheckPhoneField(value);
}

} // namespace check

namespace {

// Every value of the first column of a statement without parameters, nulls left out.
template <class Add>
void readColumn(cDAO& db, const QString& sql, Add add)
{
    RecordsetPtr rs = db.RecSet_Forward(sql);
    for (; rs && !rs->atEnd(); rs->moveNext()) {
        const QVariant v = rs->value(0);
        if (!v.isNull())
            add(v);
    }
    if (rs)
        db.RS_Close(rs);
}

bool wholeIn(const QSet<qint64>& set, double number)
{
    return std::isfinite(number) && number == std::floor(number) && std::fabs(number) < 9e15 &&
           set.contains(qint64(number));
}

} // namespace

QSet<qint64> ReadWholeNumbers(cDAO& db, const QString& sql)
{
    QSet<qint64> out;
    readColumn(db, sql, [&out](const QVariant& v) {
        bool ok = false;
        const double d = v.toDouble(&ok);
        if (ok && std::isfinite(d) && d == std::floor(d) && std::fabs(d) < 9e15)
            out.insert(qint64(d));
    });
    return out;
}

QSet<QString> ReadUpperTexts(cDAO& db, const QString& sql)
{
    QSet<QString> out;
    readColumn(db, sql, [&out](const QVariant& v) { out.insert(TrimBlanks(v.toString()).toUpper()); });
    return out;
}

void ImportLookups::load(cDAO& db)
{
    branches = ReadWholeNumbers(db, QStringLiteral("Select BranchNumber FROM BranchInfo"));
    groups = ReadWholeNumbers(db, QStringLiteral("Select UniqueID FROM Extra2"));
    states = ReadUpperTexts(db, QStringLiteral("Select GTKRVAbbreviation FROM StatesAndProvinces"));
    serials = ReadUpperTexts(db, QStringLiteral("Select TrackerSerialNumber FROM ValidTrackerSerialNumbers"));
}

bool ImportLookups::branchExists(double number) const
{
    if (number == -1)
        return anyBranch();
    return wholeIn(branches, number);
}

bool ImportLookups::stateExists(const QString& value) const
{
    return states.contains(TrimBlanks(value).toUpper());
}

bool ImportLookups::serialExists(const QString& value) const
{
    return serials.contains(value.toUpper());
}

bool ImportLookups::groupExists(double number) const
{
    return wholeIn(groups, number);
}

} // namespace tp
