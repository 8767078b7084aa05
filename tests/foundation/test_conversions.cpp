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

TEST_F(DateTest, FieldAndStandardDatesConvertBothWays)
{
    EXPECT_EQ(ConvertField2StandardDate(QStringLiteral("20041231")), QStringLiteral("12/31/2004"));
    EXPECT_EQ(ConvertStandard2FieldDate(QStringLiteral("12/31/2004")), QStringLiteral("20041231"));
    EXPECT_EQ(ConvertField2StandardDate(QStringLiteral("  20040105 ")), QStringLiteral("01/05/2004"));
    EXPECT_EQ(ConvertStandard2FieldDate(QStringLiteral(" 01/05/2004  ")), QStringLiteral("20040105"));
    EXPECT_TRUE(logText().isEmpty());
}

TEST_F(DateTest, PositionsOnlyWithoutChecks)
{
    EXPECT_EQ(ConvertField2StandardDate(QStringLiteral("2004")), QStringLiteral("/04/2004"));
    EXPECT_EQ(ConvertField2StandardDate(QStringLiteral("7")), QStringLiteral("/7/7"));
    EXPECT_EQ(ConvertField2StandardDate(QStringLiteral("20041399")), QStringLiteral("13/99/2004"));
    EXPECT_EQ(ConvertStandard2FieldDate(QStringLiteral("1/5/2004")), QStringLiteral("20041//2"));
    EXPECT_EQ(ConvertStandard2FieldDate(QStringLiteral("ab")), QStringLiteral("abab"));
    // Only blanks are trimmed, as the old Trim did.
    EXPECT_EQ(ConvertField2StandardDate(QStringLiteral("\t20041231")), QStringLiteral("41/31/\t200"));
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

TEST(StoredTime, TwentyFourHourLayoutByDigitCount)
{
    EXPECT_EQ(FormatStoredTime(0, false), QStringLiteral("00:00:00"));
    EXPECT_EQ(FormatStoredTime(5, false), QStringLiteral("00:00:05"));
    EXPECT_EQ(FormatStoredTime(7, false), QStringLiteral("00:00:07"));
    EXPECT_EQ(FormatStoredTime(45, false), QStringLiteral("00:00:45"));
    EXPECT_EQ(FormatStoredTime(123, false), QStringLiteral("00:01:23"));
    EXPECT_EQ(FormatStoredTime(1234, false), QStringLiteral("00:12:34"));
    EXPECT_EQ(FormatStoredTime(93000, false), QStringLiteral("9:30:00"));
    EXPECT_EQ(FormatStoredTime(235959, false), QStringLiteral("23:59:59"));
    EXPECT_EQ(FormatStoredTime(1234567, false), QStringLiteral("::"));
}

TEST(StoredTime, TwelveHourLayout)
{
    EXPECT_EQ(FormatStoredTime(235959, true), QStringLiteral("11:59pm"));
    EXPECT_EQ(FormatStoredTime(134500, true), QStringLiteral("1:45pm"));
    EXPECT_EQ(FormatStoredTime(93000, true), QStringLiteral("9:30am"));
    EXPECT_EQ(FormatStoredTime(120000, true), QStringLiteral("12:00pm"));
    EXPECT_EQ(FormatStoredTime(113000, true), QStringLiteral("11:30am"));
    EXPECT_EQ(FormatStoredTime(0, true), QStringLiteral("00:00am"));
    EXPECT_EQ(FormatStoredTime(1234, true), QStringLiteral("00:12am"));
    EXPECT_EQ(FormatStoredTime(1234567, true), QStringLiteral(":am"));
}

TEST(GmtNow, IsCurrentUtc)
{
    const QDateTime now = GmtNow();
    EXPECT_EQ(now.timeSpec(), Qt::UTC);
    EXPECT_LE(std::abs(now.msecsTo(QDateTime::currentDateTimeUtc())), 2000);
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

TEST_F(FileTest, FileExistsFindsOrdinaryFilesAndFolders)
{
    EXPECT_TRUE(FileExists(at("plain.txt")));
    EXPECT_TRUE(FileExists(at("locked.txt")));
    EXPECT_TRUE(FileExists(at("folder")));
    EXPECT_TRUE(FileExists(backslashed(at("plain.txt"))));
    EXPECT_FALSE(FileExists(at(".hidden")));
    EXPECT_FALSE(FileExists(at("missing.txt")));
    EXPECT_FALSE(FileExists(at("folder") + QStringLiteral("\\")));
    EXPECT_FALSE(FileExists(at("folder") + QStringLiteral("/")));
    EXPECT_FALSE(FileExists(at("*.txt")));
    EXPECT_FALSE(FileExists(at("plain.tx?")));
    EXPECT_FALSE(FileExists(QString()));
    EXPECT_FALSE(FileExists(QStringLiteral(".")));
    EXPECT_FALSE(FileExists(QStringLiteral("..")));
    EXPECT_FALSE(FileExists(QStringLiteral("C:")));
}

TEST_F(FileTest, IsExistingFileFindsEveryFileButNoFolder)
{
    EXPECT_TRUE(IsExistingFile(at("plain.txt")));
    EXPECT_TRUE(IsExistingFile(at(".hidden")));
    EXPECT_TRUE(IsExistingFile(at("locked.txt")));
    EXPECT_TRUE(IsExistingFile(backslashed(at(".hidden"))));
    EXPECT_TRUE(IsExistingFile(at("*.txt")));
    EXPECT_FALSE(IsExistingFile(at("fold*")));
    EXPECT_FALSE(IsExistingFile(at("*.none")));
    EXPECT_FALSE(IsExistingFile(at("folder")));
    EXPECT_FALSE(IsExistingFile(at("folder") + QStringLiteral("\\")));
    EXPECT_FALSE(IsExistingFile(at("missing.txt")));
    EXPECT_FALSE(IsExistingFile(QString()));
    EXPECT_FALSE(IsExistingFile(QStringLiteral("C:")));
}

TEST(Paths, NativePathTurnsBackslashes)
{
    EXPECT_EQ(NativePath(QStringLiteral("C:\\data\\")), QStringLiteral("C:/data/"));
    EXPECT_EQ(NativePath(QStringLiteral("/srv\\velo/x.db")), QStringLiteral("/srv/velo/x.db"));
    EXPECT_EQ(NativePath(QString()), QString());
}

TEST(Numeric, PlatformNumericTest)
{
    for (const char* yes : {"0", "12", " 12 ", "-1.5", "+3", ".5", "1.", "  0042.10  "})
        EXPECT_TRUE(isNumericText(QString::fromLatin1(yes))) << yes;
    for (const char* no : {"", " ", "+", "-", ".", "1 2", "1e3", "--1", "12a", "1,5", "0x1F", "1.2.3", "- 1"})
        EXPECT_FALSE(isNumericText(QString::fromLatin1(no))) << no;
    EXPECT_FALSE(isNumericText(QStringLiteral("\uff11\uff12")));   // full-width digits
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

TEST(CodePage, EightBitBytes)
{
    EXPECT_EQ(toWindows1252(QStringLiteral("abc")), QByteArray("abc"));
    EXPECT_EQ(toWindows1252(QStringLiteral("\u00e9\u00ff\u20ac\u2122")), QByteArray("\xe9\xff\x80\x99"));
    EXPECT_EQ(toWindows1252(QStringLiteral("\u0081\u65e5\U0001F600.")), QByteArray("???."));
}

} // namespace
