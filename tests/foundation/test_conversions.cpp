#include "foundation/conversions.h"
#include "foundation/globals.h"
#include "foundation/log.h"
#include "support/foundation_fixture.h"

#include <QDir>
#include <QFile>
#include <gtest/gtest.h>

using namespace tp;

namespace {

class DateTest : public ::testing::Test {
protected:
    void SetUp() override { globals().PrimaryDatabasePath = logDir.path(); }
    QByteArray logText() const
    {
        closeLog();
        return tp::test::readBytes(QDir(logDir.path()).filePath(QStringLiteral("tallyp.LOG")));
    }

    tp::test::ScopedFoundation scope;
    QTemporaryDir logDir;
};

TEST_F(DateTest, ConversionsMovePositionsWithoutChecks)
{
    const std::pair<const char*, const char*> toStandard[] = {
        {"20041231", "12/31/2004"}, {"  20040105 ", "01/05/2004"}, {"2004", "/04/2004"}, {"7", "/7/7"},
        {"20041399", "13/99/2004"},
        {"\t20041231", "41/31/\t200"}};   // only blanks are trimmed, as the old Trim did
    for (const auto& [field, standard] : toStandard)
        EXPECT_EQ(ConvertField2StandardDate(field), standard) << field;
    const std::pair<const char*, const char*> toField[] = {
        {"12/31/2004", "20041231"}, {" 01/05/2004  ", "20040105"}, {"1/5/2004", "20041//2"}, {"ab", "abab"}};
    for (const auto& [standard, field] : toField)
        EXPECT_EQ(ConvertStandard2FieldDate(standard), field) << standard;
    EXPECT_TRUE(logText().isEmpty());
}

TEST_F(DateTest, BlankArgumentsAreLoggedOnce)
{
    EXPECT_EQ(ConvertField2StandardDate(QString()), kInvalidParameter);
    EXPECT_EQ(ConvertField2StandardDate(QStringLiteral("    ")), kInvalidParameter);
    EXPECT_EQ(ConvertStandard2FieldDate(QStringLiteral(" ")), kInvalidParameter);
    const QByteArray log = logText();
    EXPECT_EQ(log.count("        Date_1:ConvertField2StandardDate:ERROR:Invalid Parameter\r\n"), 2);
    EXPECT_EQ(log.count("        Date_1:ConvertStandard2FieldDate:ERROR:Invalid Parameter\r\n"), 1);
    EXPECT_EQ(log.count("GMT  System:"), 3);
    EXPECT_TRUE(scope.feedback.shown.empty());
}

TEST(StoredTime, LayoutByDigitCountInBothClocks)
{
    const std::tuple<qint32, const char*, const char*> cases[] = {
        {0, "00:00:00", "00:00am"},      {5, "00:00:05", nullptr},     {45, "00:00:45", nullptr},
        {123, "00:01:23", nullptr},      {1234, "00:12:34", "00:12am"}, {93000, "9:30:00", "9:30am"},
        {113000, nullptr, "11:30am"},    {120000, nullptr, "12:00pm"},  {134500, nullptr, "1:45pm"},
        {235959, "23:59:59", "11:59pm"}, {1234567, "::", ":am"}};
    for (const auto& [stored, clock24, clock12] : cases) {
        if (clock24) {
            EXPECT_EQ(FormatStoredTime(stored, false), clock24) << stored;
        }
        if (clock12) {
            EXPECT_EQ(FormatStoredTime(stored, true), clock12) << stored;
        }
    }
}

class FileTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(dir.isValid());
        ASSERT_TRUE(tp::test::writeBytes(at("plain.txt"), "x"));
        ASSERT_TRUE(tp::test::writeBytes(at(".hidden"), "x"));
        ASSERT_TRUE(tp::test::writeBytes(at("locked.txt"), "x"));
        QFile::setPermissions(at("locked.txt"), QFile::ReadOwner | QFile::ReadGroup | QFile::ReadOther);
        ASSERT_TRUE(QDir(dir.path()).mkdir(QStringLiteral("folder")));
    }
    QString at(const char* name) const { return QDir(dir.path()).filePath(QString::fromLatin1(name)); }
    static QString backslashed(QString path) { return path.replace(QLatin1Char('/'), QLatin1Char('\\')); }

    QTemporaryDir dir;
};

TEST_F(FileTest, FileExistsAndIsExistingFileDifferOnHiddenFilesFoldersAndWildcards)
{
    const std::tuple<QString, bool, bool> cases[] = {
        {at("plain.txt"), true, true},        {at("locked.txt"), true, true},
        {backslashed(at("plain.txt")), true, true},
        {at(".hidden"), false, true},         {backslashed(at(".hidden")), false, true},
        {at("folder"), true, false},          {at("folder") + "\\", false, false},
        {at("folder") + "/", false, false},   {at("*.txt"), false, true},
        {at("plain.tx?"), false, true},       {at("fold*"), false, false},
        {at("*.none"), false, false},         {at("missing.txt"), false, false},
        {QString(), false, false},            {".", false, false},
        {"..", false, false},                 {"C:", false, false}};
    for (const auto& [name, exists, isFile] : cases) {
        EXPECT_EQ(FileExists(name), exists) << name.toStdString();
        EXPECT_EQ(IsExistingFile(name), isFile) << name.toStdString();
    }
}

TEST(Numeric, PlatformNumericTest)
{
    for (const char* yes : {"0", "12", " 12 ", "-1.5", "+3", ".5", "1.", "  0042.10  "})
        EXPECT_TRUE(isNumericText(QString::fromLatin1(yes))) << yes;
    for (const char* no : {"", " ", "+", "-", ".", "1 2", "1e3", "--1", "12a", "1,5", "0x1F", "1.2.3", "- 1"})
        EXPECT_FALSE(isNumericText(QString::fromLatin1(no))) << no;
    EXPECT_FALSE(isNumericText(QStringLiteral("\uff11\uff12")));   // full-width digits
}

TEST(CodePage, EightBitBytes)
{
    EXPECT_EQ(toWindows1252(QStringLiteral("abc")), QByteArray("abc"));
    EXPECT_EQ(toWindows1252(QStringLiteral("\u00e9\u00ff\u20ac\u2122")), QByteArray("\xe9\xff\x80\x99"));
    EXPECT_EQ(toWindows1252(QStringLiteral("\u0081\u65e5\U0001F600.")), QByteArray("???."));
}

struct PhoneCase {
    const char* input;
    bool ok;
    const char* after;
};

TEST(Phone, CheckAndRewrite)
{
    const PhoneCase cases[] = {
        {"", true, ""},
        {"(555) 123-4567", true, "(555) 123-4567"},
        {"(___) 123-4567", true, "(000) 123-4567"},
        {"(5 5) 123-4567", false, "(5 5) 123-4567"},
        {"(555)123-4567", false, "(555)123-4567"},
        {"(555) 123-45678", false, "(555) 123-45678"},
        {"( __) 123-4567", true, "(___) 123-4567"},
        {"( 55) 123-4567", true, "( 55) 123-4567"},   // a leading blank is still a number
        {"(555) ___-____", false, "(555) ___-____"},
        {"(555) 12a-4567", false, "(555) 12a-4567"},
        {"555) 123-45678", false, "555) 123-45678"},
        {"(555)-123-4567", true, "(555)-123-4567"},
        {"x555x 123x4567", true, "x555x 123x4567"},   // separators are not checked
    };
    for (const PhoneCase& c : cases) {
        QString phone = QString::fromLatin1(c.input);
        EXPECT_EQ(CheckPhoneField(phone), c.ok) << c.input;
        EXPECT_EQ(phone, QString::fromLatin1(c.after)) << c.input;
    }
}

} // namespace
