// The delimited-line reader on good and bad files: line ends, empty and binary files, NUL
// bytes, text that is not UTF-8, a very long line, and stopping.
#include "import/import_fuzz.h"
#include "import/line_reader.h"
#include "support/foundation_fixture.h"

#include <QBuffer>
#include <QDir>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace tp::test {
namespace {

// Every line as its fields joined by "|", prefixed by the field count; from the file, or
// from device when one is given.
QStringList readAll(const QString& path, int stopAfter = -1, QList<int>* percents = nullptr,
                    QIODevice* device = nullptr)
{
    QStringList lines;
    DelimitedLineReader reader;
    reader.setFileName(path);
    const auto onLine = [&](DelimitedLineReader& r) {
        QStringList fields;
        for (int i = 1; i <= r.fieldCount(); ++i)
            fields << r.fieldText(i);
        lines << QString::number(r.fieldCount()) + QLatin1Char(':') + fields.join(QLatin1Char('|'));
        if (percents)
            percents->append(r.percentDone());
        if (r.lineNumber() + 1 == stopAfter)
            r.stop();
    };
    EXPECT_TRUE(device ? reader.start(*device, onLine) : reader.start(onLine));
    return lines;
}

QStringList readBytes(QByteArray bytes, int stopAfter = -1, QList<int>* percents = nullptr)
{
    QBuffer buffer(&bytes);
    EXPECT_TRUE(buffer.open(QIODevice::ReadOnly));
    return readAll(QString(), stopAfter, percents, &buffer);
}

class LineReader : public ::testing::Test {
protected:
    QString file(const QByteArray& bytes)
    {
        const QString path = QDir(dir.path()).filePath(QStringLiteral("f%1.txt").arg(++n));
        EXPECT_TRUE(writeBytes(path, bytes));
        return path;
    }
    QTemporaryDir dir;
    int n = 0;
};

TEST_F(LineReader, LinesAndFields)
{
    struct Case {
        QByteArray bytes;
        QStringList lines;
    };
    const Case cases[] = {
        {"a,b\r\nc,d\r\n", {"2:a|b", "2:c|d"}},
        {"a,b\nc,d", {"2:a|b", "2:c|d"}},
        {"a,b\n\n\nc", {"2:a|b", "0:", "0:", "1:c"}},
        {"", {"0:"}},
        {"\n", {"0:"}},
        {"\r\n\r\n", {"0:", "0:"}},
        {" \n,\n", {"1: ", "2:|"}},
        {"a\rb,c\n", {"2:a\rb|c"}},
        {"x,y\r", {"2:x|y"}},
        {QByteArray("a\0b,c\n", 6), {QStringLiteral("2:a") + QChar(0) + QStringLiteral("b|c")}},
        {"Caf\xc3\xa9,\xe2\x82\xac\n", {QStringLiteral("2:Caf\u00e9|\u20ac")}},
        {"Caf\xe9,\x80\n", {QStringLiteral("2:Caf\u00e9|\u20ac")}},   // Windows-1252
        {QByteArray("\xff\xfe\x00\x01,\x9d\n", 7), {QStringLiteral("2:\u00ff\u00fe") + QChar(0) + QChar(1) + QStringLiteral("|\u009d")}},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(readAll(file(c.bytes)), c.lines) << c.bytes.toStdString();
        EXPECT_EQ(readBytes(c.bytes), c.lines) << c.bytes.toStdString();
    }
}

TEST_F(LineReader, StopsAfterTheCurrentLineAndReportsProgress)
{
    QList<int> percents;
    EXPECT_EQ(readAll(file("aaaa\nbbbb\ncccc\ndddd\n"), 2, &percents), (QStringList{"1:aaaa", "1:bbbb"}));
    EXPECT_EQ(percents, (QList<int>{25, 50}));
    EXPECT_EQ(readAll(file("x")).size(), 1);

    // From a device: the same, and read from where it stands, measured against what is left.
    percents.clear();
    EXPECT_EQ(readBytes("aaaa\nbbbb\ncccc\ndddd\n", 2, &percents), (QStringList{"1:aaaa", "1:bbbb"}));
    EXPECT_EQ(percents, (QList<int>{25, 50}));
    QByteArray bytes("skip\naa\nbb\n");
    QBuffer buffer(&bytes);
    ASSERT_TRUE(buffer.open(QIODevice::ReadOnly));
    ASSERT_TRUE(buffer.seek(5));
    percents.clear();
    EXPECT_EQ(readAll(QString(), -1, &percents, &buffer), (QStringList{"1:aa", "1:bb"}));
    EXPECT_EQ(percents, (QList<int>{50, 100}));
}

TEST_F(LineReader, AVeryLongLineIsCountedButNotKeptWhole)
{
    QByteArray big(50 * 1024 * 1024, 'A');
    big[10] = ',';
    big += ",b\n";
    DelimitedLineReader reader;
    reader.setFileName(file(big));
    int lines = 0;
    ASSERT_TRUE(reader.start([&](DelimitedLineReader& r) {
        ++lines;
        EXPECT_EQ(r.fieldCount(), 3);
        EXPECT_EQ(r.fieldText(1), QString(10, QLatin1Char('A')));
        EXPECT_EQ(r.fieldText(2).size(), DelimitedLineReader::kMaxFieldBytes);
        EXPECT_EQ(r.fieldText(3), "b");
    }));
    EXPECT_EQ(lines, 1);

    QByteArray commas(3 * 1024 * 1024, ',');
    reader.setFileName(file(commas));
    ASSERT_TRUE(reader.start([&](DelimitedLineReader& r) {
        EXPECT_EQ(r.fieldCount(), commas.size() + 1);
        EXPECT_EQ(r.fieldText(r.fieldCount()), QString());
    }));
}

TEST_F(LineReader, AFileThatCannotBeOpenedIsRefused)
{
    DelimitedLineReader reader;
    reader.setFileName(QDir(dir.path()).filePath("missing.txt"));
    int lines = 0;
    EXPECT_FALSE(reader.start([&](DelimitedLineReader&) { ++lines; }));
    reader.setFileName(dir.path());
    EXPECT_FALSE(reader.start([&](DelimitedLineReader&) { ++lines; }));
    // A device that cannot be read.
    QByteArray bytes("a,b\n");
    QBuffer writeOnly(&bytes);
    ASSERT_TRUE(writeOnly.open(QIODevice::WriteOnly));
    EXPECT_FALSE(reader.start(writeOnly, [&](DelimitedLineReader&) { ++lines; }));
    EXPECT_EQ(lines, 0);
}

// The fuzzing entry runs every stage without a database: NUL bytes, more values than fields,
// a refused heading line, numbers no 32-bit field holds, a line wider than the reader keeps.
TEST(ImportFuzzEntry, SurvivesHostileFiles)
{
    const QByteArray inputs[] = {
        "",
        QByteArray("\0\0\0", 3),
        "LocationName,BranchNumber,Address1\nA,1,B,C,D,E,F,G,H,I,J,K\n",
        "x,y\n1,2\n,,,,,,,,,,,,,,,,,,,,,,,,,,,,,,,,,,,,,,,\n",
        "VehicleNumber,LicenseNumber,GroupID,VINNumber,Year\n1e999,\",'\",1,,99\n-0,\r\r,0x1,,2039\n",
        QByteArray(70000, ',') + "\n" + QByteArray(5000, 'A'),
    };
    for (const QByteArray& in : inputs)
        EXPECT_EQ(FuzzImportFile(reinterpret_cast<const std::uint8_t*>(in.constData()), std::size_t(in.size())), 0);
}

} // namespace
} // namespace tp::test
