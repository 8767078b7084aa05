// Typing, number forms, line and preview texts, and the bytes the file writer leaves.
#include "export/export_values.h"
#include "delivery/export_writer.h"
#include "export/waiting_records.h"
#include "support/foundation_fixture.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <limits>

namespace tp {
namespace {

QByteArray bytesOf(const QString& file) { return test::readBytes(file); }

TEST(TypeValue, NumberBooleanDateAndTextRules)
{
    // Each value typed and written alone on a line.
    const std::pair<QString, const char*> numbers[] = {
        {"007", "7"}, {" -12.50 ", "-12.5"}, {".5", "0.5"}, {"+3", "3"},
        // Powers of ten come out in plain decimal.
        {"1e5", "100000"}, {"1E+21", "1000000000000000000000"}, {"1e-8", "0.00000001"},
        {"-2.5E-3", "-0.0025"}};
    for (const auto& [text, written] : numbers) {
        const ExportValue v = TypeValue(text, "NUMBER");
        EXPECT_EQ(v.kind, ExportValue::Number) << text.toStdString();
        EXPECT_EQ(exportLineText({v}), QLatin1String(written) + "\r\n");
    }
    const std::tuple<QString, const char*, QString> others[] = {
        {"True", "Boolean", "#TRUE#"}, {"False", "boolean", "#FALSE#"},
        {"01/31/2005", "Date", "#2005-01-31#"}, {"1/31/2005 14:05:00", "DATE", "#2005-01-31 14:05:00#"},
        // Not numeric, or not the exact form of its type: text.
        {"", "Number", "\"\""}, {"01/31/2005", "Number", "\"01/31/2005\""}, {"1e", "Number", "\"1e\""},
        {"e5", "Number", "\"e5\""}, {"1e+", "Number", "\"1e+\""}, {".e5", "Number", "\".e5\""},
        {"1,5", "Number", "\"1,5\""}, {"12a", "Number", "\"12a\""}, {"-", "Number", "\"-\""},
        {".", "Number", "\".\""}, {"09:30:00", "Number", "\"09:30:00\""}, {"17", "Text", "\"17\""},
        {"True", "Text", "\"True\""}, {"true", "Boolean", "\"true\""}, {"-1", "Boolean", "\"-1\""},
        {"20050131", "Date", "\"20050131\""}, {"not a date", "Date", "\"not a date\""},
        // More digits than a double holds: kept as written.
        {QString(400, '9'), "Number", '"' + QString(400, '9') + '"'}};
    for (const auto& [text, type, written] : others)
        EXPECT_EQ(exportLineText({TypeValue(text, type)}), written + "\r\n")
            << text.toStdString() << " as " << type;
}

TEST(ExportNumber, ShortestFormWithAtMostFifteenDigits)
{
    const std::pair<double, const char*> cases[] = {
        {20050131, "20050131"}, {12.5, "12.5"},   {-95.2, "-95.2"},     {7, "7"},
        {100000, "100000"},     {0.5, "0.5"},     {-0.25, "-0.25"},     {0.1 + 0.2, "0.3"},
        {1.0 / 3, "0.333333333333333"},           {2.0 / 3, "0.666666666666667"},
        {1e15, "1000000000000000"},               {123456789012345678.0, "123456789012346000"},
        {-0.0, "0"},            {0.000125, "0.000125"},                 {-180, "-180"},
        {33.123456, "33.123456"},
        // Plain decimal whatever the size: no exponent ever reaches the file.
        {1e21, "1000000000000000000000"},         {-1e21, "-1000000000000000000000"},
        {2.5e22, "25000000000000000000000"},      {1e-7, "0.0000001"},
        {1e-8, "0.00000001"},                     {-1.5e-9, "-0.0000000015"},
        {1.23456789012345e-12, "0.00000000000123456789012345"}};
    for (const auto& [d, text] : cases)
        EXPECT_EQ(formatExportNumber(d), QString::fromLatin1(text)) << text;
}

TEST(ExportNumber, StoredRealsOfAnySizeAreWrittenUnquoted)
{
    // A Number field's value as the loaders read it from a real column, typed and written.
    const std::pair<double, const char*> cases[] = {
        {1e21, "1000000000000000000000"}, {1e-8, "0.00000001"}, {-4.5e25, "-45000000000000000000000000"},
        {3e-10, "0.0000000003"}, {123.25, "123.25"}};
    for (const auto& [d, written] : cases) {
        const auto stored = storedText(QVariant(d), false);
        ASSERT_TRUE(stored.has_value());
        const ExportValue v = TypeValue(*stored, QStringLiteral("Number"));
        EXPECT_EQ(v.kind, ExportValue::Number) << written;
        EXPECT_EQ(exportLineText({v}), QLatin1String(written) + "\r\n");
    }
}

TEST(StoredTime, WholeNumberAsTheGetterReadsIt)
{
    // Halves go to the even neighbour; whole numbers of any size stay whole; no number is 0.
    const std::tuple<const char*, qint64, const char*> cases[] = {
        {"93000", 93000, "9:30:00"},         {"93000.5", 93000, "9:30:00"},
        {"93001.5", 93002, "9:30:02"},       {"93000.4", 93000, "9:30:00"},
        {" 143005 ", 143005, "14:30:05"},    {"5", 5, "00:00:05"},
        {"3000000000", 3000000000LL, "::"}, {"-7", -7, "00:00:-7"},
        {"", 0, "00:00:00"},                 {"abc", 0, "00:00:00"},
        {"1e30", std::numeric_limits<qint64>::max(), "::"}};
    for (const auto& [text, number, clock] : cases) {
        EXPECT_EQ(storedTimeNumber(QLatin1String(text)), number) << text;
        EXPECT_EQ(formatStoredTimeText(QLatin1String(text)), QLatin1String(clock)) << text;
    }
}

TEST(ExportLine, ValuesJoinedByCommasEndedByCrLf)
{
    const std::vector<ExportValue> values = {
        ExportValue::ofText("He said \"hi\""), ExportValue::ofText(""), ExportValue::ofNumber(12.5),
        ExportValue::ofTruth(true), ExportValue::ofTruth(false),
        ExportValue::ofDate(QDateTime(QDate(2005, 1, 31), QTime(0, 0)))};
    EXPECT_EQ(exportLineText(values),
              QStringLiteral("\"He said \"hi\"\",\"\",12.5,#TRUE#,#FALSE#,#2005-01-31#\r\n"));
    EXPECT_EQ(exportLineText({ExportValue::ofNumber(17)}), QStringLiteral("17\r\n"));
    EXPECT_EQ(exportHeaderText({"Emp", "", "Date"}), QStringLiteral("\"Emp\",\"\",\"Date\"\r\n"));
}

TEST(PreviewText, HeaderAndRecordRows)
{
    EXPECT_EQ(previewHeaderText({"Emp", "EmployeeLastName"}),
              QStringLiteral("''Emp'' , ''EmployeeLastName''"));
    // Not the last column: True/False get number signs whatever the type.
    EXPECT_EQ(previewRecordText({"007", "Smith", "True", "20050131"},
                                {"Number", "Text", "Text", "Number"}),
              QStringLiteral("007 , ''Smith'' , #True# , 20050131"));
    // The last column: number signs only for a Boolean field.
    EXPECT_EQ(previewRecordText({"17", "True"}, {"Number", "Text"}),
              QStringLiteral("17 , ''True''"));
    EXPECT_EQ(previewRecordText({"17", "False"}, {"Number", "boolean"}),
              QStringLiteral("17 , #False#"));
    EXPECT_EQ(previewRecordText({"01/31/2005"}, {"Number"}), QStringLiteral("''01/31/2005''"));
    EXPECT_EQ(previewRecordText({"", "12.50"}, {"Number", "NUMBER"}), QStringLiteral("'''' , 12.50"));
}

class WriterTest : public ::testing::Test {
protected:
    QString file(const QString& name) const { return QDir(dir.path()).filePath(name); }
    QTemporaryDir dir;
};

TEST_F(WriterTest, WindowsCodePageWithQuestionMarksForTheRest)
{
    ExportFileWriter w;
    ASSERT_TRUE(w.open(file("a.txt")));
    ASSERT_TRUE(w.writeHeader({QStringLiteral("Café")}));
    ASSERT_TRUE(w.writeLine({ExportValue::ofText(QStringLiteral("€ 中 \U0001F600 ü"))}));
    ASSERT_TRUE(w.finish() && w.putInPlace());
    w.commit();
    EXPECT_EQ(bytesOf(file("a.txt")), QByteArray("\"Caf\xE9\"\r\n\"\x80 ? ? \xFC\"\r\n"));
    EXPECT_EQ(w.linesWritten(), 1);
}

TEST_F(WriterTest, Utf8WithoutByteOrderMark)
{
    ExportFileWriter w(FileEncoding::Utf8);
    ASSERT_TRUE(w.open(file("u.txt")));
    ASSERT_TRUE(w.writeHeader({QStringLiteral("Café 中")}));
    ASSERT_TRUE(w.finish() && w.putInPlace());
    w.commit();
    EXPECT_EQ(bytesOf(file("u.txt")), QByteArray("\"Caf\xC3\xA9 \xE4\xB8\xAD\"\r\n"));
}

TEST_F(WriterTest, ManyLinesAndDiscardLeavesTheTargetAlone)
{
    {
        ExportFileWriter w;
        ASSERT_TRUE(w.open(file("big.txt")));
        w.writeHeader({"N"});
        for (int i = 0; i < 20000; ++i)
            ASSERT_TRUE(w.writeLine({ExportValue::ofNumber(i)}));
        ASSERT_TRUE(w.finish() && w.putInPlace());
        w.commit();
    }
    const QByteArray big = bytesOf(file("big.txt"));
    EXPECT_TRUE(big.startsWith("\"N\"\r\n0\r\n1\r\n"));
    EXPECT_TRUE(big.endsWith("\r\n19998\r\n19999\r\n"));
    EXPECT_EQ(big.count('\n'), 20001);

    {
        ExportFileWriter w;
        ASSERT_TRUE(w.open(file("big.txt")));
        w.writeHeader({"Other"});
        w.discard();
    }
    {
        ExportFileWriter w;   // destroyed unfinished: discarded too
        ASSERT_TRUE(w.open(file("big.txt")));
        w.writeHeader({"Other"});
    }
    EXPECT_EQ(bytesOf(file("big.txt")), big);
    EXPECT_EQ(QDir(dir.path()).entryList(QDir::Files | QDir::Hidden), QStringList{"big.txt"});
}

TEST_F(WriterTest, ReadOnlyFilesAreRecognised)
{
    EXPECT_FALSE(isReadOnlyFile(file("missing.txt")));
    QFile f(file("r.txt"));
    ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    f.close();
    EXPECT_FALSE(isReadOnlyFile(file("r.txt")));
    QFile::setPermissions(file("r.txt"), QFileDevice::ReadOwner);
    EXPECT_TRUE(isReadOnlyFile(file("r.txt")));
    EXPECT_FALSE(isReadOnlyFile(dir.path()));
    ExportFileWriter w;
    EXPECT_FALSE(w.open(file("missing/folder/x.txt")));
    EXPECT_FALSE(w.errorString().isEmpty());
}

} // namespace
} // namespace tp
