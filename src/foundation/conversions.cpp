#include "foundation/conversions.h"

#include "foundation/log.h"

#include <QDir>
#include <QFileInfo>

#include <initializer_list>

namespace tp {

namespace {

// The old string functions count from 1 and never fail on short texts.
QString mid(const QString& s, int start1, int count)
{
    if (start1 - 1 >= s.size())
        return QString();
    return s.mid(start1 - 1, count);
}

QString logInvalid(const QString& procedure)
{
    WriteLog(QStringLiteral("Date_1:") + procedure + QStringLiteral(":") + kInvalidParameter);
    return kInvalidParameter;
}

// Everything up to and including the last separator or drive colon.
int folderPartLength(const QString& path)
{
    const int cut = std::max({path.lastIndexOf(QLatin1Char('/')), path.lastIndexOf(QLatin1Char('\\')),
                              path.lastIndexOf(QLatin1Char(':'))});
    return cut + 1;
}

bool hasWildcard(const QString& s)
{
    return s.contains(QLatin1Char('?')) || s.contains(QLatin1Char('*'));
}

bool endsInSeparator(const QString& s)
{
    return s.endsWith(QLatin1Char('\\')) || s.endsWith(QLatin1Char('/'));
}

} // namespace

QStringView TrimBlanks(QStringView text)
{
    qsizetype b = 0;
    qsizetype e = text.size();
    while (b < e && text.at(b) == QLatin1Char(' '))
        ++b;
    while (e > b && text.at(e - 1) == QLatin1Char(' '))
        --e;
    return text.mid(b, e - b);
}

QString TrimBlanks(const QString& text)
{
    // Untrimmed text comes back shared, not copied.
    const QStringView trimmed = TrimBlanks(QStringView(text));
    return trimmed.size() == text.size() ? text : trimmed.toString();
}

QString ConvertField2StandardDate(const QString& s)
{
    const QString t = TrimBlanks(s);
    if (t.isEmpty())
        return logInvalid(QStringLiteral("ConvertField2StandardDate"));
    return mid(t, 5, 2) + QLatin1Char('/') + t.right(2) + QLatin1Char('/') + t.left(4);
}

QString ConvertStandard2FieldDate(const QString& s)
{
    const QString t = TrimBlanks(s);
    if (t.isEmpty())
        return logInvalid(QStringLiteral("ConvertStandard2FieldDate"));
    return t.right(4) + t.left(2) + mid(t, 4, 2);
}

QString FormatStoredTime(qint64 t, bool twelveHour)
{
    const QString d = QString::number(t);
    QString hours, minutes, seconds;
    switch (d.size()) {
    case 1: hours = QStringLiteral("00"); minutes = QStringLiteral("00"); seconds = QLatin1Char('0') + d; break;
    case 2: hours = QStringLiteral("00"); minutes = QStringLiteral("00"); seconds = d; break;
    case 3: hours = QStringLiteral("00"); minutes = QLatin1Char('0') + mid(d, 1, 1); seconds = mid(d, 2, 2); break;
    case 4: hours = QStringLiteral("00"); minutes = mid(d, 1, 2); seconds = mid(d, 3, 2); break;
    case 5: hours = mid(d, 1, 1); minutes = mid(d, 2, 2); seconds = mid(d, 4, 2); break;
    case 6: hours = mid(d, 1, 2); minutes = mid(d, 3, 2); seconds = mid(d, 5, 2); break;
    default: break;
    }
    if (!twelveHour)
        return hours + QLatin1Char(':') + minutes + QLatin1Char(':') + seconds;

    const int h = hours.toInt();   // 0 when empty, as Val gives
    QString suffix;
    if (h == 12) {
        suffix = QStringLiteral("pm");
    } else if (h < 12) {
        suffix = QStringLiteral("am");
    } else {
        hours = QString::number(h - 12);
        suffix = QStringLiteral("pm");
    }
    return hours + QLatin1Char(':') + minutes + suffix;
}

QDateTime GmtNow()
{
    return QDateTime::currentDateTimeUtc();
}

QString NativePath(const QString& path)
{
    QString out = path;
    out.replace(QLatin1Char('\\'), QLatin1Char('/'));
    return out;
}

bool FileExists(const QString& path)
{
    if (path.isEmpty() || hasWildcard(path) || endsInSeparator(path) || path == QLatin1String(".")
        || path == QLatin1String("..") || path.endsWith(QLatin1Char(':')))
        return false;
    const QString native = NativePath(path);
    const QFileInfo info(native);
    if (!info.exists())
        return false;
    // Hidden entries are those whose own name starts with a period.
    return !info.fileName().startsWith(QLatin1Char('.'));
}

bool IsExistingFile(const QString& path)
{
    if (path.isEmpty() || path.endsWith(QLatin1Char(':')) || endsInSeparator(path))
        return false;
    const QString native = NativePath(path);
    const int folderLength = folderPartLength(native);
    const QString folder = native.left(folderLength);
    const QString name = native.mid(folderLength);
    if (hasWildcard(name)) {
        // A listing of files only: the first match is a file by construction.
        const QDir dir(folder.isEmpty() ? QStringLiteral(".") : folder);
        return !dir.entryList({name}, QDir::Files | QDir::Hidden | QDir::System, QDir::Name).isEmpty();
    }
    const QFileInfo info(native);
    return info.exists() && !info.isDir();
}

bool isNumericText(const QString& text)
{
    const QString t = TrimBlanks(text);
    qsizetype i = 0;
    if (i < t.size() && (t.at(i) == QLatin1Char('+') || t.at(i) == QLatin1Char('-')))
        ++i;
    qsizetype digits = 0;
    while (i < t.size() && t.at(i) >= QLatin1Char('0') && t.at(i) <= QLatin1Char('9')) {
        ++i;
        ++digits;
    }
    if (i < t.size() && t.at(i) == QLatin1Char('.')) {
        ++i;
        while (i < t.size() && t.at(i) >= QLatin1Char('0') && t.at(i) <= QLatin1Char('9')) {
            ++i;
            ++digits;
        }
    }
    return digits > 0 && i == t.size();
}

bool CheckPhoneField(QString& phone)
{
    if (phone.isEmpty())
        return true;
    if (phone.size() != 14)
        return false;
    // The usual case, ten digits in their places, needs no piece copied.
    const auto digitsAt = [&phone](std::initializer_list<qsizetype> from, qsizetype count) {
        for (const qsizetype b : from)
            for (qsizetype k = b; k < b + count; ++k)
                if (phone.at(k) < QLatin1Char('0') || phone.at(k) > QLatin1Char('9'))
                    return false;
        return true;
    };
    if (digitsAt({1, 6}, 3) && digitsAt({10}, 4))
        return true;
    const QString area = mid(phone, 2, 3);
    const QString exchange = mid(phone, 7, 3);
    const QString number = mid(phone, 11, 4);
    if (isNumericText(area + exchange + number))
        return true;
    if (mid(phone, 1, 5) == QLatin1String("(___)")) {
        phone = QStringLiteral("(000) ") + mid(phone, 7, 8);
        return true;
    }
    if (phone.at(0) == QLatin1Char('(') && phone.at(4) == QLatin1Char(')')) {
        if (phone.at(1) == QLatin1Char(' ')) {
            phone = QStringLiteral("(___") + phone.mid(4);
            return true;
        }
        return isNumericText(number) && isNumericText(exchange) && isNumericText(area);
    }
    return false;
}

QByteArray toWindows1252(const QString& text)
{
    // 0x80..0x9F of the code page; 0 marks the five unassigned bytes.
    static const char16_t high[32] = {
        0x20AC, 0, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
        0x2039, 0x0152, 0, 0x017D, 0, 0, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013,
        0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0, 0x017E, 0x0178};
    QByteArray out;
    out.reserve(text.size());
    for (qsizetype i = 0; i < text.size(); ++i) {
        const char16_t c = text.at(i).unicode();
        if (c < 0x80 || (c >= 0xA0 && c <= 0xFF)) {
            out.append(char(c));
            continue;
        }
        char byte = '?';
        for (int k = 0; k < 32; ++k) {
            if (high[k] != 0 && high[k] == c) {
                byte = char(0x80 + k);
                break;
            }
        }
        // A surrogate pair is one character: one "?".
        if (QChar::isHighSurrogate(c) && i + 1 < text.size() && text.at(i + 1).isLowSurrogate())
            ++i;
        out.append(byte);
    }
    return out;
}

} // namespace tp
