#include "foundation/sql_literal.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <sqlite3.h>

#include <cmath>

using namespace tp;

namespace {

// A real SQLite file: literals must survive the engine's parser unchanged.
class SqlLiteralDb : public ::testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(dir.isValid());
        ASSERT_EQ(sqlite3_open((dir.path() + QStringLiteral("/t.db")).toUtf8().constData(), &db), SQLITE_OK);
        exec("CREATE TABLE t(id INTEGER, name TEXT, amount REAL)");
        exec("INSERT INTO t VALUES(1, 'one', 1.5)");
        exec("INSERT INTO t VALUES(2, 'two', 2.5)");
    }
    void TearDown() override { sqlite3_close(db); }

    int exec(const QString& sql)
    {
        return sqlite3_exec(db, sql.toUtf8().constData(), nullptr, nullptr, nullptr);
    }
    QString scalar(const QString& sql)
    {
        sqlite3_stmt* st = nullptr;
        QString out = QStringLiteral("<error>");
        if (sqlite3_prepare_v2(db, sql.toUtf8().constData(), -1, &st, nullptr) == SQLITE_OK
            && sqlite3_step(st) == SQLITE_ROW)
            out = QString::fromUtf8(reinterpret_cast<const char*>(sqlite3_column_text(st, 0)));
        sqlite3_finalize(st);
        return out;
    }

    QTemporaryDir dir;
    sqlite3* db = nullptr;
};

TEST_F(SqlLiteralDb, HostileTextsStayOneValue)
{
    const QString hostile[] = {
        QStringLiteral("O'Brien"),
        QStringLiteral("'; DROP TABLE t; --"),
        QStringLiteral("x' OR '1'='1"),
        QStringLiteral("''''"),
        QStringLiteral("back\\slash\\'"),
        QStringLiteral("line\r\nbreak -- /* comment"),
        QStringLiteral("\u00e9\u20ac\U0001F600\""),
        QString(),
    };
    for (const QString& value : hostile) {
        ASSERT_EQ(exec(QStringLiteral("INSERT INTO t(id, name) VALUES(9, ") + sql::text(value) + QStringLiteral(")")),
                  SQLITE_OK)
            << value.toStdString();
        EXPECT_EQ(scalar(QStringLiteral("SELECT name FROM t WHERE id = 9")), value);
        EXPECT_EQ(scalar(QStringLiteral("SELECT count(*) FROM t WHERE name = ") + sql::text(value)),
                  QStringLiteral("1"));
        exec(QStringLiteral("DELETE FROM t WHERE id = 9"));
    }
    EXPECT_EQ(scalar(QStringLiteral("SELECT count(*) FROM t")), QStringLiteral("2"));
    EXPECT_EQ(sql::text(QStringLiteral("a'b")), QStringLiteral("'a''b'"));
}

TEST_F(SqlLiteralDb, NumbersSelectOnlyWhatTheyMean)
{
    const auto id = sql::wholeNumber(QStringLiteral(" +2 "));
    ASSERT_TRUE(id.has_value());
    EXPECT_EQ(scalar(QStringLiteral("SELECT name FROM t WHERE id = ") + *id), QStringLiteral("two"));
    const auto amount = sql::decimalNumber(QStringLiteral("1.5"));
    ASSERT_TRUE(amount.has_value());
    EXPECT_EQ(scalar(QStringLiteral("SELECT id FROM t WHERE amount = ") + *amount), QStringLiteral("1"));
    EXPECT_EQ(scalar(QStringLiteral("SELECT id FROM t WHERE amount = ") + sql::number(2.5)), QStringLiteral("2"));
}

TEST(SqlLiteral, WholeNumbersAreCanonical)
{
    const std::pair<const char*, const char*> cases[] = {
        {"42", "42"}, {"  -7\t", "-7"}, {"+007", "7"}, {"-0", "0"},
        {"9223372036854775807", "9223372036854775807"}, {"-9223372036854775808", "-9223372036854775808"}};
    for (const auto& [text, literal] : cases)
        EXPECT_EQ(sql::wholeNumber(text), QString::fromLatin1(literal)) << text;
    EXPECT_EQ(sql::number(qint64(-12)), QStringLiteral("-12"));
}

TEST(SqlLiteral, WholeNumbersRefuseEverythingElse)
{
    const char* refused[] = {"0 OR 1=1", "7;", "1e3", "", "   ", "1.0", "0x10", "1 2", "--1", "- 1", "+",
                             "9223372036854775808", "-9223372036854775809", "12abc", "1;DROP TABLE t", "'1'"};
    for (const char* text : refused)
        EXPECT_FALSE(sql::wholeNumber(QString::fromLatin1(text)).has_value()) << text;
    EXPECT_FALSE(sql::wholeNumber(QStringLiteral("\uff11\uff12")).has_value());   // full-width digits
    EXPECT_FALSE(sql::wholeNumber(QStringLiteral("1\n; DELETE FROM t")).has_value());
}

TEST(SqlLiteral, DecimalNumbers)
{
    EXPECT_EQ(sql::decimalNumber(QStringLiteral(" -0.25 ")), QStringLiteral("-0.25"));
    EXPECT_EQ(sql::decimalNumber(QStringLiteral("1e3")), QStringLiteral("1000"));
    EXPECT_EQ(sql::decimalNumber(QStringLiteral(".5")), QStringLiteral("0.5"));
    EXPECT_EQ(sql::decimalNumber(QStringLiteral("12")), QStringLiteral("12"));
    const char* refused[] = {"1,5", "1.5; DROP TABLE t", "inf", "nan", ".", "1e", "1e400", "", "1.5.1",
                             "0x1p3", "1 OR 1=1", "e5"};
    for (const char* text : refused)
        EXPECT_FALSE(sql::decimalNumber(QString::fromLatin1(text)).has_value()) << text;
}

TEST(SqlLiteral, DoublesAreShortestWithoutExponent)
{
    const std::pair<double, const char*> cases[] = {
        {100000.0, "100000"}, {0.1, "0.1"},           {-2.5, "-2.5"},           {-0.0, "0"},
        {1e20, "100000000000000000000"},              {0.000123, "0.000123"},   {123456789.125, "123456789.125"},
        {std::nan(""), "NULL"}, {HUGE_VAL, "NULL"}};
    for (const auto& [d, literal] : cases)
        EXPECT_EQ(sql::number(d), QLatin1String(literal)) << literal;
    for (double d : {1.0 / 3, 2.0 / 3 * 1e9, 47.60621, -122.33207, 1e300, 5e-324}) {
        const QString text = sql::number(d);
        EXPECT_EQ(text.toDouble(), d) << text.toStdString();
        EXPECT_FALSE(text.contains(QLatin1Char(',')));
    }
}

} // namespace
