#include "foundation/globals.h"
#include "foundation/settings.h"
#include "support/foundation_fixture.h"

#include <QDir>
#include <QFile>
#include <gtest/gtest.h>

using namespace tp;

namespace {

class IniTest : public ::testing::Test {
protected:
    QString read(const QString& section, const QString& key, const QVariant& file = QVariant())
    {
        value = QStringLiteral("stale");
        return GetOneIniKey(section, key, value, file);
    }
    // The value of a key that must be found.
    QString found(const QString& section, const QString& key, const QVariant& file = QVariant())
    {
        EXPECT_EQ(read(section, key, file), QString()) << section.toStdString() << '/' << key.toStdString();
        return value;
    }

    tp::test::ScopedFoundation scope;
    tp::test::ScopedSettingsDir settings;
    QString value;
};

const QByteArray kKrv = "; written by the host product\r\n"
                        "[PRIMARY]\r\n"
                        "Field1=C:\\Velotrek\\Data\\\r\n"
                        "  Field2 =   velo.mdb   \r\n"
                        "Empty=\r\n"
                        "Quoted=\"  padded  \"\r\n"
                        "Single='x'\r\n"
                        "HalfQuoted=\"open\r\n"
                        ";Commented=yes\r\n"
                        "Field1=second wins not\r\n"
                        "[GPS]\r\n"
                        "GPSTargetAreaDeviation=0.25\r\n"
                        "[NoKeys]\r\n"
                        "[primary]\r\n"
                        "Later=ignored because the first PRIMARY section wins\r\n";

TEST_F(IniTest, ArgumentsAreCheckedInOrder)
{
    const QString nul(QChar(0));
    const std::tuple<QString, QString, QVariant, const char*> cases[] = {
        {QString(), QString(), 5, "Invalid section name"}, {nul + "PRIMARY", "Field1", {}, "Invalid section name"},
        {"PRIMARY", QString(), 5, "Invalid key name"},      {"PRIMARY", nul, {}, "Invalid key name"},
        {"PRIMARY", "Field1", 5, "Invalid file spec"},      {"PRIMARY", "Field1", QByteArray("KRV.ini"), "Invalid file spec"}};
    for (const auto& [section, key, file, status] : cases) {
        EXPECT_EQ(read(section, key, file), status) << section.toStdString() << '/' << key.toStdString();
        EXPECT_TRUE(value.isEmpty());
    }
}

TEST_F(IniTest, StatusTextsTellWhyTheValueIsEmpty)
{
    EXPECT_EQ(read("PRIMARY", "Field1"), "Ini file was not found");
    EXPECT_TRUE(value.isEmpty());

    settings.write("KRV.ini", kKrv);
    const char* const noSection = "Section was not found";
    const char* const noKey = "Key name was not found";
    const std::tuple<const char*, const char*, const char*> cases[] = {
        {"Nowhere", "Field1", noSection}, {"NoKeys", "Field1", noSection}, {"PRIMARY", "Missing", noKey},
        {"PRIMARY", "GPSTargetAreaDeviation", noKey}, {"PRIMARY", "Commented", noKey}, {"PRIMARY", "Later", noKey}};
    for (const auto& [section, key, status] : cases) {
        SCOPED_TRACE(std::string(section) + "/" + key);
        EXPECT_EQ(read(section, key), status);
        EXPECT_TRUE(value.isEmpty());
    }
}

TEST_F(IniTest, ValuesAreReadAsTheProfileReaderReturnsThem)
{
    settings.write("KRV.ini", kKrv);
    const std::tuple<const char*, const char*, const char*> cases[] = {
        {"PRIMARY", "Field1", "C:\\Velotrek\\Data\\"}, {"primary", "FIELD2", "velo.mdb"},
        {"PRIMARY", "Empty", ""}, {"PRIMARY", "Quoted", "  padded  "}, {"PRIMARY", "single", "x"},
        {"PRIMARY", "HalfQuoted", "\"open"}, {"gps", "gpstargetareadeviation", "0.25"}};
    for (const auto& [section, key, expected] : cases)
        EXPECT_EQ(found(section, key), QLatin1String(expected));
    EXPECT_EQ(found("PRIMARY", "Field2", QString()), "velo.mdb");   // an empty file name is the default one
}

TEST_F(IniTest, LongValuesAreCutToTheBuffer)
{
    const QByteArray longValue(3000, 'v');
    settings.write(QStringLiteral("KRV.ini"), "[PRIMARY]\nField1=" + longValue + "\nField2=x\n");
    EXPECT_EQ(found("PRIMARY", "Field1"), QString(2047, QLatin1Char('v')));
    EXPECT_EQ(found("PRIMARY", "Field2"), "x");
}

TEST_F(IniTest, KeyListBeyondItsBufferHidesEmptyKeys)
{
    // About 40,000 characters of key names: the last ones fall outside the 32767-character list.
    QByteArray body = "[BIG]\n";
    for (int i = 0; i < 4000; ++i)
        body += "Key" + QByteArray::number(100000 + i) + "=\n";
    body += "Valued=yes\n";
    settings.write(QStringLiteral("KRV.ini"), body);
    EXPECT_EQ(found("BIG", "Key100000"), "");
    EXPECT_EQ(read("BIG", "Key103999"), "Key name was not found");
    EXPECT_EQ(found("BIG", "Valued"), "yes");
}

TEST_F(IniTest, FileNamesAreFoundLikeTheProfileReaderFindsThem)
{
    settings.write("lumtrek.ini", "[PRIMARY]\nField1=lum\n");
    EXPECT_EQ(found("PRIMARY", "Field1", "lumtrek.ini"), "lum");
    // Without a name the host product's own file is meant.
    EXPECT_EQ(read("PRIMARY", "Field1"), "Ini file was not found");

    // A name with a folder part is taken as it stands, with either separator.
    QTemporaryDir elsewhere;
    const QString full = QDir(elsewhere.path()).filePath(QStringLiteral("KRV.ini"));
    tp::test::writeBytes(full, "[PRIMARY]\nField1=there\n");
    EXPECT_EQ(found("PRIMARY", "Field1", full), "there");
    EXPECT_EQ(found("PRIMARY", "Field1", QString(full).replace(u'/', u'\\')), "there");
    // A relative name with a folder part is not looked for in the settings folder.
    settings.write("KRV.ini", "[PRIMARY]\nField1=here\n");
    EXPECT_EQ(read("PRIMARY", "Field1", QStringLiteral("no-such-sub/KRV.ini")), "Ini file was not found");
}

TEST_F(IniTest, SettingsFolderFollowsTheEnvironment)
{
    EXPECT_EQ(SettingsFolder(), settings.path());
    const QByteArray saved = qgetenv("TALLYPORT_SETTINGS_DIR");
    const QByteArray savedXdg = qgetenv("XDG_CONFIG_HOME");
    const bool hadXdg = qEnvironmentVariableIsSet("XDG_CONFIG_HOME");
    qunsetenv("TALLYPORT_SETTINGS_DIR");
    qputenv("XDG_CONFIG_HOME", "/x/config");
    EXPECT_EQ(SettingsFolder(), QStringLiteral("/x/config/tallyport"));
    qunsetenv("XDG_CONFIG_HOME");
    EXPECT_EQ(SettingsFolder(), QDir::homePath() + QStringLiteral("/.config/tallyport"));
    if (hadXdg)
        qputenv("XDG_CONFIG_HOME", savedXdg);
    qputenv("TALLYPORT_SETTINGS_DIR", saved);
}

class LoaderTest : public IniTest {
protected:
    void load(const QByteArray& content, const QString& name = QStringLiteral("KRV.ini"))
    {
        settings.write(name, content);
        globals().SettingsFileName = name;
        result = SetGlobalsFromINIFile();
    }
    QByteArray primary() const
    {
        return "[PRIMARY]\nField1=" + QFile::encodeName(logDir.path()) + "\\\nField2=velo.db\n";
    }
    QByteArray logText() const { return tp::test::readBytes(QDir(logDir.path()).filePath("tallyp.LOG")); }

    QTemporaryDir logDir;
    bool result = false;
};

TEST_F(LoaderTest, FillsEverySetting)
{
    load(primary() + "SevereError=S\nMinorError=M\nFieldPSP=P\nField6=true\n[GPS]\nGPSTargetAreaDeviation= 12.5\n",
         QStringLiteral("lumtrek.ini"));
    EXPECT_TRUE(result);
    const Globals& g = globals();
    EXPECT_EQ((QStringList{g.PrimaryDatabasePath, g.PrimaryDatabaseName, PrimaryDatabaseFile(), g.SevereErrorSetting,
                           g.MinorErrorSetting, g.FieldPSPSetting, g.DatabasePassword}),
              (QStringList{logDir.path() + "\\", "velo.db", logDir.path() + "/velo.db", "S", "M", "P", "MarlinGate"}));
    EXPECT_DOUBLE_EQ(g.GPSTargetAreaDeviation, 12.5);
    EXPECT_TRUE(g.Field6Flag);
    EXPECT_FALSE(IsKrvSettings());
    EXPECT_TRUE(scope.feedback.shown.empty());
    EXPECT_TRUE(logText().isEmpty());
}

TEST_F(LoaderTest, MissingOptionalKeysKeepTheirValues)
{
    globals().SevereErrorSetting = QStringLiteral("kept");
    globals().GPSTargetAreaDeviation = 3;
    globals().Field6Flag = true;
    load(primary());
    EXPECT_TRUE(result);
    EXPECT_TRUE(IsKrvSettings());
    globals().SettingsFileName = QStringLiteral("krv.ini");
    EXPECT_FALSE(IsKrvSettings());
    EXPECT_EQ(globals().SevereErrorSetting, QStringLiteral("kept"));
    EXPECT_DOUBLE_EQ(globals().GPSTargetAreaDeviation, 3);
    EXPECT_TRUE(globals().Field6Flag);
    EXPECT_EQ(globals().DatabasePassword, QStringLiteral("MarlinGate"));
}

TEST_F(LoaderTest, Field6AcceptsWordsAndNumbers)
{
    const std::pair<QByteArray, bool> cases[] = {{"TRUE", true}, {"False", false}, {"-1", true}, {"0", false},
                                                 {"2.5", true}, {" fAlSe ", false}};
    for (const auto& [text, expected] : cases) {
        globals().Field6Flag = !expected;
        load(primary() + "Field6=" + text + "\n");
        EXPECT_EQ(globals().Field6Flag, expected) << text.constData();
    }
    EXPECT_TRUE(logText().isEmpty());
}

TEST_F(LoaderTest, MissingPathOrNameIsFatalButEmptyOnesAreNot)
{
    const std::tuple<const char*, bool, const char*> cases[] = {
        {"[PRIMARY]\nField2=velo.db\n", false, "Failed to locate Primary Database Path!"},
        {"[PRIMARY]\nField1=C:\\data\\\n", false, "Failed to locate Primary Database!"},
        {"[OTHER]\nField1=x\n", false, "Failed to locate Primary Database Path!"},
        {"[PRIMARY]\nField1=\nField2=\n", true, nullptr},   // left to the database open
    };
    for (const auto& [content, loads, message] : cases) {
        SCOPED_TRACE(content);
        resetGlobals();
        scope.feedback.shown.clear();
        load(content);
        EXPECT_EQ(result, loads);
        EXPECT_EQ(scope.feedback.messages(), message ? QStringList{message} : QStringList());
        // The password is set only once both names were found.
        EXPECT_EQ(globals().DatabasePassword, loads ? "MarlinGate" : "");
        if (message) {
            ASSERT_EQ(scope.feedback.shown.size(), 1u);
            EXPECT_EQ(scope.feedback.shown[0].code, 1);
            EXPECT_EQ(scope.feedback.shown[0].title, kBoxTitle);
        }
    }
    EXPECT_EQ(globals().PrimaryDatabasePath, "");

    resetGlobals();
    scope.feedback.shown.clear();
    globals().SettingsFileName = QStringLiteral("lumtrek.ini");   // no such file
    EXPECT_FALSE(SetGlobalsFromINIFile());
    EXPECT_EQ(scope.feedback.messages(), QStringList{"Failed to locate Primary Database Path!"});
}

// A deviation that is not a number stops the rest of the loading; a bad Field6 only itself.
TEST_F(LoaderTest, UnconvertibleValuesAreLogged)
{
    load(primary() + "Field6=true\n[GPS]\nGPSTargetAreaDeviation=1,5\n");
    EXPECT_TRUE(result);
    EXPECT_TRUE(scope.feedback.shown.empty());
    EXPECT_DOUBLE_EQ(globals().GPSTargetAreaDeviation, 0);
    EXPECT_FALSE(globals().Field6Flag);
    EXPECT_TRUE(globals().DatabasePassword.isEmpty());
    EXPECT_TRUE(logText().endsWith("        Error occurred in SetGlobalsFromINIFile:Globals\r\n13\r\n"))
        << logText().constData();

    load(primary() + "Field6=yes\n[GPS]\nGPSTargetAreaDeviation=-0.5\n");
    EXPECT_TRUE(result);
    EXPECT_DOUBLE_EQ(globals().GPSTargetAreaDeviation, -0.5);
    EXPECT_FALSE(globals().Field6Flag);
    EXPECT_TRUE(globals().DatabasePassword.isEmpty());
    EXPECT_EQ(logText().count("Error occurred in SetGlobalsFromINIFile:Globals"), 2);
}

TEST(SettingsConversions, NumbersInExponentFormConvertAndOthersDoNot)
{
    const std::pair<const char*, double> numbers[] = {
        {"5E-4", 0.0005}, {" 1.5e+3 ", 1500}, {"-2E2", -200}, {".5e1", 5}, {"7.e0", 7}, {"12.5", 12.5}, {"-0.5", -0.5}};
    for (const auto& [text, expected] : numbers) {
        const auto d = SettingsNumber(QString::fromLatin1(text));
        ASSERT_TRUE(d.has_value()) << text;
        EXPECT_DOUBLE_EQ(*d, expected) << text;
    }
    for (const char* text : {"1,5", "E5", "5E", "5E+", "1e5x", "0x10", "inf", "nan", "", "  ", "1e999", "--1"})
        EXPECT_FALSE(SettingsNumber(QString::fromLatin1(text)).has_value()) << text;
    EXPECT_EQ(SettingsTruth(QStringLiteral("1E0")), std::optional<bool>(true));
    EXPECT_EQ(SettingsTruth(QStringLiteral("0e5")), std::optional<bool>(false));
    EXPECT_EQ(SettingsTruth(QStringLiteral("yes")), std::nullopt);
}

TEST_F(LoaderTest, ExponentDeviationLoadsEverySettingAndThePassword)
{
    load(primary() + "Field6=1E0\n[GPS]\nGPSTargetAreaDeviation=5E-4\n");
    EXPECT_TRUE(result);
    EXPECT_DOUBLE_EQ(globals().GPSTargetAreaDeviation, 0.0005);
    EXPECT_TRUE(globals().Field6Flag);
    EXPECT_EQ(globals().DatabasePassword, QStringLiteral("MarlinGate"));
    EXPECT_TRUE(logText().isEmpty()) << logText().constData();
}

// Notepad's "Unicode" (UTF-16 with a byte-order mark, either byte order) and files with lone
// CR line ends read exactly like the plain ones.
TEST_F(LoaderTest, EncodingsAndLineEndsAllReadAlike)
{
    const QString text = QStringLiteral("[PRIMARY]\nField1=C:\\Fleet\\Åsa\\\nField2=velo.db\nLogFolder=/var/log/tp\n"
                                        "Field6=True\n[GPS]\nGPSTargetAreaDeviation=2.5E-1\n");
    const QByteArray utf16le = QByteArray("\xFF\xFE") + QByteArray(reinterpret_cast<const char*>(text.utf16()),
                                                                   text.size() * 2);
    QByteArray utf16be = QByteArray("\xFE\xFF");
    for (const QChar c : text)
        utf16be += char(c.unicode() >> 8), utf16be += char(c.unicode() & 0xFF);
    const std::pair<const char*, QByteArray> files[] = {
        {"UTF-8, LF", text.toUtf8()},
        {"UTF-8 with BOM, CR LF", "\xEF\xBB\xBF" + text.toUtf8().replace("\n", "\r\n")},
        {"UTF-8, CR only", text.toUtf8().replace("\n", "\r")},
        {"Windows-1252, CR only", text.toLatin1().replace("\n", "\r")},
        {"UTF-16LE", utf16le},
        {"UTF-16BE", utf16be},
        {"UTF-16LE, CR only", QByteArray(utf16le).replace(QByteArray("\n\0", 2), QByteArray("\r\0", 2))},
    };
    for (const auto& [name, bytes] : files) {
        SCOPED_TRACE(name);
        resetGlobals();
        load(bytes);
        EXPECT_TRUE(result);
        const Globals& g = globals();
        EXPECT_EQ((QStringList{g.PrimaryDatabasePath, g.PrimaryDatabaseName, g.LogFolder, g.DatabasePassword}),
                  (QStringList{QStringLiteral("C:\\Fleet\\Åsa\\"), "velo.db", "/var/log/tp", "MarlinGate"}));
        EXPECT_DOUBLE_EQ(g.GPSTargetAreaDeviation, 0.25);
        EXPECT_TRUE(g.Field6Flag);
        EXPECT_EQ(ProfileStringFromBytes(bytes, "gps", "GPSTARGETAREADEVIATION"), "2.5E-1");
        // A key present with an empty value is still told apart from a missing one.
        EXPECT_EQ(read("PRIMARY", "Nothing"), "Key name was not found");
    }
}

TEST_F(IniTest, SettingsFilePathNamesWhereAFileIsLookedFor)
{
    EXPECT_EQ(SettingsFilePath("KRV.ini"), settings.path() + "/KRV.ini");
    EXPECT_EQ(SettingsFilePath("/etc/tp/KRV.ini"), "/etc/tp/KRV.ini");
    EXPECT_EQ(SettingsFilePath("conf\\KRV.ini"), "conf/KRV.ini");
}

} // namespace
