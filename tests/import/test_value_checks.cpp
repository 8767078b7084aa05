// The value checks at their pass and fail boundaries, and the report texts they lead to.
#include "import/scan_report.h"
#include "import/value_checks.h"

#include <gtest/gtest.h>

namespace tp::test {
namespace {

using CheckFn = std::function<qint16(QString&, ScanState&)>;

struct CheckCase {
    const char* what;
    CheckFn check;
    const char* value;
    qint16 result;
    const char* stored;   // the value as the check leaves it (pass) or V (fail); nullptr: not checked
};

TEST(ValueChecks, PassAndFailBoundaries)
{
    const auto characters = [](int max) {
        return [max](QString& v, ScanState& s) { return check::Characters(v, QStringLiteral("Name"), max, s); };
    };
    const auto alnum = [](QString& v, ScanState& s) { return check::Alphanumeric(v, QStringLiteral("Name"), 10, s); };
    const auto state = [](QString& v, ScanState& s) { return check::StateCode(v, QStringLiteral("State"), 23, s); };
    const auto capital = [](QString& v, ScanState& s) { return check::Capitals(v, QStringLiteral("MI"), 1, 22, s); };
    const auto positive = [](QString& v, ScanState& s) { return check::PositiveNumber(v, QStringLiteral("N"), 6, s); };
    const auto nonNeg = [](QString& v, ScanState& s) { return check::NonNegativeNumber(v, QStringLiteral("N"), 6, s); };
    const auto length = [](QString& v, ScanState& s) { return check::Length(v, QStringLiteral("Serial"), 9, 7, s); };
    const auto year = [](QString& v, ScanState& s) { return check::Year(v, 6, s); };
    const auto range = [](double limit) {
        return [limit](QString& v, ScanState& s) {
            double n = 0;
            return check::Range(v, QStringLiteral("Longitude"), -limit, limit, n, s);
        };
    };
    const auto zip = [](QString& v, ScanState& s) {
        v = check::padOrCut(v, 10);
        return check::ZipCode(v, s) ? qint16(0) : qint16(26);
    };
    const CheckCase cases[] = {
        {"blanks around are trimmed", characters(30), "  12 Main St.  ", 0, "12 Main St."},
        {"inner apostrophe and quote", characters(30), "O'Brien \"Big\" #4 (rear)", 0, "O'Brien \"Big\" #4 (rear)"},
        {"leading apostrophe", characters(30), " 'Brien", 25, "'Brien"},
        {"trailing quote", characters(30), "Brien\"", 25, "Brien\""},
        {"ampersand", characters(30), "A & B", 24, "A & B Unacceptable symbols"},
        {"semicolon", characters(30), "A;B", 24, "A;B Unacceptable symbols"},
        {"exactly the limit", characters(5), "ABCDE", 0, "ABCDE"},
        {"one over the limit", characters(5), "ABCDEF", 24, "ABCDEF Invalid length"},
        {"blank", characters(5), "   ", 99, "    Blank Field"},
        {"accented letter", characters(30), "Caf\u00e9", 24, nullptr},
        {"control character", characters(30), "A\tB", 24, nullptr},
        {"ampersand, alphanumeric", alnum, "A&B", 21, "A&B - Non AlphaNumeric symbols"},
        {"apostrophe inside, alphanumeric", alnum, "O'Brien", 21, nullptr},
        {"ten characters", alnum, "ABCDE 1234", 0, "ABCDE 1234"},
        {"eleven characters", alnum, "ABCDE 12345", 21, "ABCDE 12345 - Invalid Length"},
        {"two capitals", state, "CA", 0, "CA"},
        {"one capital", state, "C", 0, "C"},
        {"capital and digit", state, "C1", 23, "C1"},
        {"lower case", state, "ca", 23, "ca"},
        {"three capitals", state, "CAL", 23, "CAL"},
        {"empty state", state, "", 23, ""},
        {"middle initial", capital, "Q", 0, "Q"},
        {"two initials", capital, "QR", 22, "QR"},
        {"zero is not positive", positive, "0", 6, "0"},
        {"zero is not negative", nonNeg, "0", 0, "0"},
        {"nine digits", positive, "999999999", 0, "999999999"},
        {"ten digits", positive, "1234567890", 6, "1234567890"},
        {"ten digits, non-negative", nonNeg, "1234567890", 6, "1234567890"},
        {"negative", nonNeg, "-1", 6, "-1"},
        {"no number", positive, "12a", 6, "12a"},
        {"quoted number", positive, "\"12\"", 6, "\"12\""},
        {"exponent", positive, "1e3", 0, "1e3"},
        {"serial of nine", length, " 310000001 ", 0, "310000001"},
        {"serial of ten", length, "3100000012", 7, "3100000012"},
        {"quoted serial", length, "'31'", 9, "'31'"},
        {"year", year, "2039", 0, "2039"},
        {"two-digit year", year, "01", 6, "01"},
        {"year as text", year, "20x1", 6, "20x1"},
        {"longitude -180", range(180), "-180", 0, nullptr},
        {"longitude just above 180", range(180), "180.0001", 9, "180.0001"},
        {"latitude 90", range(90), "90", 0, nullptr},
        {"latitude -90.5", range(90), "-90.5", 9, "-90.5"},
        {"empty coordinate", range(90), "", 9, nullptr},
        {"five digits", zip, "12345", 0, "12345-    "},
        {"five digits and dash", zip, "12345-", 0, "12345-    "},
        {"nine digits with dash", zip, "12345-6789", 0, "12345-6789"},
        {"blank instead of dash", zip, "12345 6789", 0, "12345-6789"},
        {"blank zip", zip, "     -    ", 0, "     -    "},
        {"nine digits", zip, "123456789", 26, nullptr},
        {"four digits", zip, "1234", 26, nullptr},
        {"empty zip", zip, "", 26, nullptr},
        {"letters", zip, "ABCDE", 26, nullptr},
    };
    for (const CheckCase& c : cases) {
        SCOPED_TRACE(c.what);
        ScanState s;
        QString value = QString::fromUtf8(c.value);
        EXPECT_EQ(c.check(value, s), c.result);
        if (!c.stored)
            continue;
        EXPECT_EQ(c.result == 0 ? value : s.foundValue, QString::fromUtf8(c.stored));
    }
}

TEST(ValueChecks, NumbersConvertOrFail)
{
    EXPECT_EQ(check::toWholeNumber(" 42 "), 42);
    EXPECT_EQ(check::toWholeNumber("2.5"), 2);     // halves to even
    EXPECT_EQ(check::toWholeNumber("3.5"), 4);
    EXPECT_EQ(check::toWholeNumber("1e3"), 1000);
    EXPECT_EQ(check::toWholeNumber("2147483647"), 2147483647);
    EXPECT_FALSE(check::toWholeNumber("2147483648"));
    for (const char* bad : {"", " ", "abc", "1,5", "$5", "1e", "--1", ".", "inf", "nan", "0x10"})
        EXPECT_FALSE(check::toWholeNumber(QString::fromUtf8(bad))) << bad;
}

TEST(ScanReport, MessagesOfTheCodes)
{
    struct Case {
        qint16 code;
        const char* f;
        const char* v;
        qint16 l;
        const char* text;
    };
    const Case cases[] = {
        {-1, "", "", 0, "The field value '''' can not be empty.\r\nPlease enter the appropriate value for this field. "},
        {2, "City", "", 0,
         "The heading ''City'' exists in the text file but it is not selected.\r\n"
         "1. Each heading should match the field name you selected. \r\n"
         "2. Each heading should be seperated by commas (no spaces between the comma and the heading).\r\n"
         "3. The heading should be in the same order as your field selection.\r\n"
         "4. Modify your import file or select City from the grid and try again."},
        {3, "", "Empty Row", 0,
         "Expecting 4 fields  in record number 7 of your text file:\r\n"
         "1. The number of fields selected must match the number of fields in the text file. \r\n"
         "2. Each heading should match the field name you selected. \r\n"
         "3. Each heading should be seperated by commas (no spaces between the comma and the heading).\r\n"
         "4. The heading should be in the same order as your field selection.\r\n"
         "5. Modify your import file and try again.\r\nFound Value = Empty Row"},
        {7, "State", "CAL", 2, "Invalid field length: ''State'' must be less than or equal to 2 character(s) in length."},
        {7, "Serial", "3100000012", 9,
         "Invalid field type or length: ''Serial'' must be less than or equal to 9 characters and spaces in length."
         "\r\nFound Value = 3100000012"},
        {9, "MobilePhone", "", 0,
         "The field ''MobilePhone'' does not have the appropriate format.Check the grid for the appropriate format.\r\n"},
        {11, "Year", "2040", 0, "The field ''Year'' must be an integer value in the range 1950 - 2039.\r\nFound Value = 2040"},
        {14, "X", "", 0, "Data type mismatch, ''X''.  is the wrong format."},
        {15, "extra", "extra", 0,
         "The value, ''extra'' ,does not have a corresponding header.\r\nCheck your import text file.\r\nFound Value = extra"},
        {22, "MI", "QR", 1, "Invalid field provided: [MI] - must be 1 Capital Charachter in length.\r\nFound Value = QR"},
        {26, "ZipCode", "1234      \r\rValid formats are:\r", 0,
         "Zip Code format mismatch:\r\nFound Value = 1234      \r\rValid formats are:\r"},
        {99, "City", "    Blank Field", 20,
         "The field 'City' can not be empty.\r\nPlease enter the appropriate value for this field. "},
        {42, "Odd", "", 0,
         "The heading ''Odd'' has created an un-expected error.\r\n1. Check your import text file. \r\n"
         "2. Try selecting the fields again."},
    };
    for (const Case& c : cases) {
        ScanState s;
        s.result = c.code;
        s.fieldText = QString::fromUtf8(c.f);
        s.foundValue = QString::fromUtf8(c.v);
        s.lengthLimit = c.l;
        s.headingCount = 4;
        s.recordNumber = 7;
        EXPECT_EQ(ScanReportText(s), QString::fromUtf8(c.text)) << c.code;
    }
    ScanState invalid;
    invalid.result = 16;
    invalid.invalidHeading = QStringLiteral("Town");
    EXPECT_TRUE(ScanReportText(invalid).startsWith(
        "The heading ''Town'' in your file is invalid.\r\n1. Each heading should match the field name you selected. \r\n"
        "2. Each heading  should be seperated by commas"));
}

} // namespace
} // namespace tp::test
