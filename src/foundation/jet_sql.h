#pragma once
// The one translator from the tool's Jet SQL to the dialect of the engine underneath.
// Works on tokens, so text inside '...' literals is never touched.
#include <QList>
#include <QString>

namespace tp::jet {

enum class Dialect { SQLite, PostgreSQL };

// Name of the hidden row-key column that dynasets fetch in front of the select list.
inline const QString kRowKeyColumn = QStringLiteral("tp_rowkey__");

struct Token {
    enum Kind { Space, Word, Number, String, QuotedName, Punct } kind;
    QString text;
};

// Splits a statement into tokens; joining every token's text gives the input back.
QList<Token> tokenize(const QString& sql);

// Jet -> dialect: TOP n -> LIMIT n, truth literals -> integer tests, UCase/LCase -> upper/lower,
// [names] and reserved column names quoted, "texts" -> 'texts', & -> ||. Results are cached.
QString translate(const QString& jetSql, Dialect dialect);

// A quoted identifier for the dialect (PostgreSQL: folded to lower case like an unquoted one).
QString quoteName(const QString& name, Dialect dialect);

// What a dynaset needs of a (translated) SELECT to write its rows back.
struct SelectShape {
    bool isSelect = false;
    bool updatable = false;   // one table, no DISTINCT, GROUP BY, UNION or aggregate
    QString table;            // the table as written in the FROM clause
    QString selectList;       // the select list
    QString fromClause;       // FROM's table (with alias), for re-reading one row
    QString keyed;            // the statement with "<key> AS tp_rowkey__, " before the select list
};
SelectShape analyseSelect(const QString& translatedSql, const QString& keyExpression);

} // namespace tp::jet
