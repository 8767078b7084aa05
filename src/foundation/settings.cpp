#include "foundation/settings.h"

#include "foundation/conversions.h"
#include "foundation/feedback.h"
#include "foundation/globals.h"
#include "foundation/log.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QStringDecoder>

#include <optional>

namespace tp {

namespace {

constexpr qsizetype kValueBuffer = 2048;
constexpr qsizetype kKeyListBuffer = 32767;
constexpr int kTypeMismatch = 13;

struct IniKey {
    QString name;
    QString value;
};

struct IniSection {
    QString name;
    QList<IniKey> keys;
};

bool isProfileSpace(QChar c)
{
    return c == QLatin1Char(' ') || c == QLatin1Char('\t') || c == QLatin1Char('\r') || c == QLatin1Char('\f')
           || c == QLatin1Char('\v');
}

QString trimProfile(const QString& s)
{
    qsizetype b = 0;
    qsizetype e = s.size();
    while (b < e && isProfileSpace(s.at(b)))
        ++b;
    while (e > b && isProfileSpace(s.at(e - 1)))
        --e;
    return s.mid(b, e - b);
}

} // namespace

bool IsBareSettingsName(const QString& fileName)
{
    return !fileName.contains(QLatin1Char('/')) && !fileName.contains(QLatin1Char('\\'))
           && !fileName.contains(QLatin1Char(':'));
}

QString SettingsFilePath(const QString& fileName)
{
    if (!IsBareSettingsName(fileName))
        return NativePath(fileName);
    QString folder = SettingsFolder();
    if (!folder.endsWith(QLatin1Char('/')) && !folder.endsWith(QLatin1Char('\\')))
        folder += QLatin1Char('/');
    return NativePath(folder) + fileName;
}

namespace {

QString decode(const QByteArray& bytes)
{
    QByteArray data = bytes;
    // Notepad saves "Unicode" as UTF-16 with a byte-order mark.
    if (data.startsWith("\xFF\xFE") || data.startsWith("\xFE\xFF")) {
        QStringDecoder utf16(data.startsWith("\xFF\xFE") ? QStringDecoder::Utf16LE : QStringDecoder::Utf16BE);
        return utf16(data.mid(2));
    }
    if (data.startsWith("\xEF\xBB\xBF"))
        data.remove(0, 3);
    QStringDecoder utf8(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    QString text = utf8(data);
    if (!utf8.hasError())
        return text;
    // Not UTF-8: the file was written in the old 8-bit code page.
    QStringDecoder ansi("windows-1252");
    return ansi.isValid() ? QString(ansi(data)) : QString::fromLatin1(data);
}

// Sections in file order; keys before the first section belong to none and are never found.
QList<IniSection> parseSections(const QByteArray& bytes)
{
    // CR LF, LF or a lone CR (old Mac editors) all end a line.
    QString text = decode(bytes);
    text.replace(QLatin1String("\r\n"), QLatin1String("\n"));
    text.replace(QLatin1Char('\r'), QLatin1Char('\n'));
    QList<IniSection> sections;
    IniSection* current = nullptr;
    for (const QString& raw : text.split(QLatin1Char('\n'))) {
        const QString line = trimProfile(raw);
        if (line.isEmpty() || line.startsWith(QLatin1Char(';')))
            continue;
        if (line.startsWith(QLatin1Char('['))) {
            const qsizetype close = line.lastIndexOf(QLatin1Char(']'));
            if (close > 0) {
                sections.append({line.mid(1, close - 1), {}});
                current = &sections.last();
            }
            continue;
        }
        if (!current)
            continue;
        const qsizetype eq = line.indexOf(QLatin1Char('='));
        if (eq < 0)
            current->keys.append({line, QString()});
        else
            current->keys.append({trimProfile(line.left(eq)), trimProfile(line.mid(eq + 1))});
    }
    return sections;
}

std::optional<QList<IniSection>> load(const QString& fullName)
{
    QFile file(fullName);
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    return parseSections(file.readAll());
}

const IniSection* findSection(const QList<IniSection>& sections, const QString& name)
{
    for (const IniSection& s : sections)
        if (s.name.compare(name, Qt::CaseInsensitive) == 0)
            return &s;
    return nullptr;
}

// The reader's answer: the value as the 2048-character buffer receives it.
QString profileString(const QList<IniSection>& sections, const QString& section, const QString& key)
{
    const IniSection* s = findSection(sections, section);
    if (!s)
        return QString();
    for (const IniKey& k : s->keys) {
        if (k.name.compare(key, Qt::CaseInsensitive) != 0)
            continue;
        QString value = k.value;
        if (value.size() >= 2 && (value.front() == QLatin1Char('"') || value.front() == QLatin1Char('\''))
            && value.back() == value.front())
            value = value.mid(1, value.size() - 2);
        return value.left(kValueBuffer - 1);
    }
    return QString();
}

// The section's key names, each ended by character 0, as far as the 32767-character buffer holds.
QString keyNameList(const QList<IniSection>& sections, const QString& section)
{
    const IniSection* s = findSection(sections, section);
    if (!s)
        return QString();
    QString list;
    for (const IniKey& k : s->keys)
        list += k.name + QChar(0);
    return list.left(kKeyListBuffer - 2);
}

struct ConversionError {};

double toDouble(const QString& text)
{
    const auto d = SettingsNumber(text);
    if (!d)
        throw ConversionError{};
    return *d;
}

bool toBoolean(const QString& text)
{
    const auto b = SettingsTruth(text);
    if (!b)
        throw ConversionError{};
    return *b;
}

} // namespace

std::optional<double> SettingsNumber(const QString& text)
{
    // The plain numeric text, or one with an exponent (5E-4, 1.5e+3), as the old conversion took.
    static const QRegularExpression exponentForm(
        QStringLiteral("^[+-]?([0-9]+\\.?[0-9]*|\\.[0-9]+)[eE][+-]?[0-9]+$"));
    if (!isNumericText(text) && !exponentForm.match(TrimBlanks(text)).hasMatch())
        return std::nullopt;
    bool ok = false;
    const double d = TrimBlanks(text).toDouble(&ok);
    if (!ok)
        return std::nullopt;   // out of range
    return d;
}

std::optional<bool> SettingsTruth(const QString& text)
{
    const QString t = TrimBlanks(text);
    if (t.compare(QLatin1String("True"), Qt::CaseInsensitive) == 0)
        return true;
    if (t.compare(QLatin1String("False"), Qt::CaseInsensitive) == 0)
        return false;
    const auto d = SettingsNumber(t);
    if (!d)
        return std::nullopt;
    return *d != 0;
}

QString SettingsFolder()
{
    const QString own = qEnvironmentVariable("TALLYPORT_SETTINGS_DIR");
    if (!own.isEmpty())
        return own;
    const QString xdg = qEnvironmentVariable("XDG_CONFIG_HOME");
    if (!xdg.isEmpty())
        return xdg + QStringLiteral("/tallyport");
    return QDir::homePath() + QStringLiteral("/.config/tallyport");
}

QString ProfileStringFromBytes(const QByteArray& bytes, const QString& section, const QString& key)
{
    return profileString(parseSections(bytes), section, key);
}

QString GetOneIniKey(const QString& section, const QString& key, QString& value, const QVariant& fileName)
{
    value.clear();
    if (section.isEmpty() || section.front() == QChar(0))
        return QStringLiteral("Invalid section name");
    if (key.isEmpty() || key.front() == QChar(0))
        return QStringLiteral("Invalid key name");
    if (fileName.isValid() && fileName.metaType().id() != QMetaType::QString)
        return QStringLiteral("Invalid file spec");
    QString name = fileName.isValid() ? fileName.toString() : QString();
    if (name.isEmpty())
        name = QStringLiteral("KRV.ini");

    const QString fullName = SettingsFilePath(name);
    const auto sections = load(fullName);
    if (sections)
        value = profileString(*sections, section, key);
    if (!value.isEmpty())
        return QString();

    if (!FileExists(fullName))
        return QStringLiteral("Ini file was not found");
    const QString list = sections ? keyNameList(*sections, section) : QString();
    if (list.isEmpty())
        return QStringLiteral("Section was not found");
    const QString wanted = QChar(0) + key + QChar(0);
    if ((QChar(0) + list).contains(wanted, Qt::CaseInsensitive))
        return QString();
    return QStringLiteral("Key name was not found");
}

bool SetGlobalsFromINIFile()
{
    Globals& g = globals();
    const QVariant file(g.SettingsFileName);
    QString value;

    if (!GetOneIniKey(QStringLiteral("PRIMARY"), QStringLiteral("Field1"), value, file).isEmpty()) {
        ShowMessage(1, QStringLiteral("Failed to locate Primary Database Path!"));
        return false;
    }
    g.PrimaryDatabasePath = value;
    if (!GetOneIniKey(QStringLiteral("PRIMARY"), QStringLiteral("Field2"), value, file).isEmpty()) {
        ShowMessage(1, QStringLiteral("Failed to locate Primary Database!"));
        return false;
    }
    g.PrimaryDatabaseName = value;
    if (GetOneIniKey(QStringLiteral("PRIMARY"), QStringLiteral("LogFolder"), value, file).isEmpty())
        g.LogFolder = value;

    try {
        if (GetOneIniKey(QStringLiteral("PRIMARY"), QStringLiteral("SevereError"), value, file).isEmpty())
            g.SevereErrorSetting = value;
        if (GetOneIniKey(QStringLiteral("PRIMARY"), QStringLiteral("MinorError"), value, file).isEmpty())
            g.MinorErrorSetting = value;
        if (GetOneIniKey(QStringLiteral("PRIMARY"), QStringLiteral("FieldPSP"), value, file).isEmpty())
            g.FieldPSPSetting = value;
        if (GetOneIniKey(QStringLiteral("GPS"), QStringLiteral("GPSTargetAreaDeviation"), value, file).isEmpty())
            g.GPSTargetAreaDeviation = toDouble(value);
        if (GetOneIniKey(QStringLiteral("PRIMARY"), QStringLiteral("Field6"), value, file).isEmpty())
            g.Field6Flag = toBoolean(value);
        g.DatabasePassword = QStringLiteral("MarlinGate");
    } catch (const ConversionError&) {
        WriteLog(QStringLiteral("Error occurred in SetGlobalsFromINIFile:Globals") + QStringLiteral("\r\n")
                 + QString::number(kTypeMismatch));
    }
    return true;
}

} // namespace tp
