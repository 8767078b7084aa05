#include "foundation/jet_sql.h"

#include <QHash>
#include <QMutex>
#include <QSet>

namespace tp::jet {

namespace {

bool isWordStart(QChar c) { return c.isLetter() || c == u'_'; }
bool isWordChar(QChar c) { return c.isLetterOrNumber() || c == u'_' || c == u'$'; }

// Reads a quoted run starting at i (the opening quote); a doubled closing quote stays inside.
qsizetype quotedEnd(const QString& s, qsizetype i, QChar close, bool doubling)
{
    qsizetype j = i + 1;
    while (j < s.size()) {
        if (s[j] == close) {
            if (doubling && j + 1 < s.size() && s[j + 1] == close) {
                j += 2;
                continue;
            }
            return j + 1;
        }
        ++j;
    }
    return s.size();   // unterminated: the rest belongs to it
}

qsizetype numberEnd(const QString& s, qsizetype i)
{
    qsizetype j = i;
    while (j < s.size() && (s[j].isDigit() || s[j] == u'.'))
        ++j;
    if (j < s.size() && (s[j] == u'e' || s[j] == u'E')) {
        qsizetype k = j + 1;
        if (k < s.size() && (s[k] == u'+' || s[k] == u'-'))
            ++k;
        if (k < s.size() && s[k].isDigit()) {
            while (k < s.size() && s[k].isDigit())
                ++k;
            j = k;
        }
    }
    return j;
}

const QSet<QString>& pgQuotedColumns()
{
    // Column names of the host schema that PostgreSQL would read as type names.
    static const QSet<QString> names{QStringLiteral("date"), QStringLiteral("time"),
                                     QStringLiteral("year")};
    return names;
}

class Translator {
public:
    Translator(const QString& sql, Dialect d) : m_in(tokenize(sql)), m_dialect(d) {}

    QString run()
    {
        m_limits.append(QString());
        for (qsizetype i = 0; i < m_in.size(); ++i)
            i = step(i);
        flushLimitAtEnd();
        QString result;
        for (const Token& t : m_out)
            result += t.text;
        return result;
    }

private:
    qsizetype nextSolid(qsizetype i) const
    {
        for (qsizetype j = i + 1; j < m_in.size(); ++j)
            if (m_in[j].kind != Token::Space)
                return j;
        return -1;
    }
    qsizetype lastSolidOut(qsizetype before) const
    {
        for (qsizetype j = before - 1; j >= 0; --j)
            if (m_out[j].kind != Token::Space)
                return j;
        return -1;
    }
    bool nextIs(qsizetype i, const QString& punct) const
    {
        const qsizetype n = nextSolid(i);
        return n >= 0 && m_in[n].kind == Token::Punct && m_in[n].text == punct;
    }
    QString prevOutWord() const
    {
        const qsizetype p = lastSolidOut(m_out.size());
        return p >= 0 && m_out[p].kind == Token::Word ? m_out[p].text.toLower() : QString();
    }

    qsizetype step(qsizetype i)
    {
        const Token& t = m_in[i];
        switch (t.kind) {
        case Token::Punct:
            return punct(i);
        case Token::Word:
            return word(i);
        case Token::QuotedName:
            m_out.append(quoted(t.text));
            return i;
        default:
            m_out.append(t);
            return i;
        }
    }

    qsizetype punct(qsizetype i)
    {
        const QString& p = m_in[i].text;
        if (p == u'(') {
            ++m_depth;
            while (m_limits.size() <= m_depth)
                m_limits.append(QString());
            m_limits[m_depth].clear();
        } else if (p == u')' && m_depth > 0) {
            appendLimit(m_depth);
            --m_depth;
        } else if (p == u'&') {
            m_out.append({Token::Punct, QStringLiteral("||")});
            return i;
        }
        m_out.append(m_in[i]);
        return i;
    }

    qsizetype word(qsizetype i)
    {
        const Token& t = m_in[i];
        const QString lower = t.text.toLower();
        const QString before = prevOutWord();
        const qsizetype n = nextSolid(i);

        if (lower == u"top" && (before == u"select" || before == u"distinct" || before == u"all")
            && n >= 0 && m_in[n].kind == Token::Number) {
            m_limits[m_depth] = m_in[n].text;
            qsizetype end = n;
            if (end + 1 < m_in.size() && m_in[end + 1].kind == Token::Space)
                ++end;   // the blank after the number goes with it
            if (!m_out.isEmpty() && m_out.last().kind == Token::Space && end == n)
                m_out.removeLast();
            return end;
        }
        if ((lower == u"true" || lower == u"false") && !nextIs(i, QStringLiteral("("))) {
            truth(lower == u"true");
            return i;
        }
        if (m_depth == 0 && lower == u"set")
            m_inSet = true;
        else if (lower == u"where")
            m_inSet = false;

        if (nextIs(i, QStringLiteral("("))) {
            if (lower == u"ucase") {
                m_out.append({Token::Word, QStringLiteral("upper")});
                return i;
            }
            if (lower == u"lcase") {
                m_out.append({Token::Word, QStringLiteral("lower")});
                return i;
            }
        } else if (m_dialect == Dialect::PostgreSQL && pgQuotedColumns().contains(lower)
                   && before != u"as" && !(n >= 0 && m_in[n].kind == Token::String)) {
            m_out.append({Token::QuotedName, QLatin1Char('"') + lower + QLatin1Char('"')});
            return i;
        }
        m_out.append(t);
        return i;
    }

    // A stored truth value is any non-zero number, so comparisons become zero tests;
    // a bare literal (SET col = True, VALUES) is Jet's -1 or 0.
    void truth(bool value)
    {
        const qsizetype op = lastSolidOut(m_out.size());
        if (!m_inSet && op >= 0 && m_out[op].kind == Token::Punct
            && (m_out[op].text == u'=' || m_out[op].text == u"<>")) {
            const qsizetype lhs = lastSolidOut(op);
            if (lhs >= 0
                && (m_out[lhs].kind == Token::Word || m_out[lhs].kind == Token::QuotedName
                    || m_out[lhs].text == u')')) {
                const bool nonZero = (m_out[op].text == u'=') == value;
                m_out[op].text = nonZero ? QStringLiteral("<>") : QStringLiteral("=");
                m_out.append({Token::Number, QStringLiteral("0")});
                return;
            }
        }
        m_out.append({Token::Number, value ? QStringLiteral("-1") : QStringLiteral("0")});
    }

    Token quoted(const QString& text) const
    {
        const QString inner = text.mid(1, text.size() >= 2 ? text.size() - 2 : 0);
        if (text.startsWith(u'['))
            return {Token::QuotedName, quoteName(inner, m_dialect)};
        // Jet reads "..." as a text literal.
        QString value = inner;
        value.replace(QStringLiteral("\"\""), QStringLiteral("\""));
        value.replace(u'\'', QStringLiteral("''"));
        return {Token::String, QLatin1Char('\'') + value + QLatin1Char('\'')};
    }

    void appendLimit(qsizetype depth)
    {
        if (m_limits[depth].isEmpty())
            return;
        m_out.append({Token::Space, QStringLiteral(" ")});
        m_out.append({Token::Word, QStringLiteral("LIMIT")});
        m_out.append({Token::Space, QStringLiteral(" ")});
        m_out.append({Token::Number, m_limits[depth]});
        m_limits[depth].clear();
    }

    void flushLimitAtEnd()
    {
        if (m_limits[0].isEmpty())
            return;
        // Before trailing blanks and semicolons.
        QList<Token> tail;
        while (!m_out.isEmpty()
               && (m_out.last().kind == Token::Space || m_out.last().text == u';'))
            tail.prepend(m_out.takeLast());
        appendLimit(0);
        m_out.append(tail);
    }

    QList<Token> m_in;
    QList<Token> m_out;
    Dialect m_dialect;
    qsizetype m_depth = 0;
    QStringList m_limits;   // pending LIMIT per bracket depth
    bool m_inSet = false;
};

QString joinText(const QList<Token>& tokens, qsizetype from, qsizetype to)
{
    QString s;
    for (qsizetype i = from; i < to && i < tokens.size(); ++i)
        s += tokens[i].text;
    return s.trimmed();
}

} // namespace

QList<Token> tokenize(const QString& s)
{
    QList<Token> out;
    qsizetype i = 0;
    while (i < s.size()) {
        const QChar c = s[i];
        qsizetype j = i + 1;
        Token::Kind kind = Token::Punct;
        if (c.isSpace()) {
            while (j < s.size() && s[j].isSpace())
                ++j;
            kind = Token::Space;
        } else if (c == u'\'') {
            j = quotedEnd(s, i, u'\'', true);
            kind = Token::String;
        } else if (c == u'"') {
            j = quotedEnd(s, i, u'"', true);
            kind = Token::QuotedName;
        } else if (c == u'[') {
            j = quotedEnd(s, i, u']', false);
            kind = Token::QuotedName;
        } else if (c.isDigit() || (c == u'.' && i + 1 < s.size() && s[i + 1].isDigit())) {
            j = numberEnd(s, i);
            kind = Token::Number;
        } else if (isWordStart(c)) {
            while (j < s.size() && isWordChar(s[j]))
                ++j;
            kind = Token::Word;
        } else if (i + 1 < s.size()) {
            static const QStringList pairs{QStringLiteral("<>"), QStringLiteral("<="),
                                           QStringLiteral(">="), QStringLiteral("!="),
                                           QStringLiteral("||"), QStringLiteral("::")};
            if (pairs.contains(s.mid(i, 2)))
                j = i + 2;
        }
        out.append({kind, s.mid(i, j - i)});
        i = j;
    }
    return out;
}

QString translate(const QString& jetSql, Dialect dialect)
{
    static QMutex mutex;
    static QHash<QString, QString> cache[2];
    const int slot = dialect == Dialect::SQLite ? 0 : 1;
    {
        QMutexLocker lock(&mutex);
        auto it = cache[slot].constFind(jetSql);
        if (it != cache[slot].constEnd())
            return *it;
    }
    const QString result = Translator(jetSql, dialect).run();
    QMutexLocker lock(&mutex);
    if (cache[slot].size() > 2000)   // statements carry values, so the set is open-ended
        cache[slot].clear();
    cache[slot].insert(jetSql, result);
    return result;
}

QString quoteName(const QString& name, Dialect dialect)
{
    QString n = dialect == Dialect::PostgreSQL ? name.toLower() : name;
    n.replace(u'"', QStringLiteral("\"\""));
    return QLatin1Char('"') + n + QLatin1Char('"');
}

SelectShape analyseSelect(const QString& sql, const QString& keyExpression)
{
    SelectShape shape;
    const QList<Token> tk = tokenize(sql);
    auto solid = [&](qsizetype i) {
        while (i < tk.size() && tk[i].kind == Token::Space)
            ++i;
        return i;
    };
    auto isWord = [&](qsizetype i, QStringView w) {
        return i < tk.size() && tk[i].kind == Token::Word && tk[i].text.compare(w, Qt::CaseInsensitive) == 0;
    };
    qsizetype i = solid(0);
    if (!isWord(i, u"select"))
        return shape;
    shape.isSelect = true;
    bool plain = true;
    qsizetype listStart = solid(i + 1);
    if (isWord(listStart, u"distinct")) {
        plain = false;
        listStart = solid(listStart + 1);
    } else if (isWord(listStart, u"all")) {
        listStart = solid(listStart + 1);
    }

    static const QSet<QString> aggregates{"max", "min", "count", "sum", "avg", "first", "last"};
    static const QSet<QString> clauseEnds{"where", "order", "group", "having", "limit", "union",
                                          "intersect", "except", "offset", "window", "for"};
    static const QSet<QString> joins{"join", "inner", "left", "right", "outer", "cross",
                                     "natural", "on", "using"};
    qsizetype depth = 0, from = -1;
    for (qsizetype j = listStart; j < tk.size(); ++j) {
        const Token& t = tk[j];
        if (t.kind == Token::Punct && t.text == u'(')
            ++depth;
        else if (t.kind == Token::Punct && t.text == u')')
            --depth;
        else if (depth == 0 && t.kind == Token::Word) {
            const QString w = t.text.toLower();
            if (w == u"from") {
                from = j;
                break;
            }
            if (aggregates.contains(w) && solid(j + 1) < tk.size() && tk[solid(j + 1)].text == u'(')
                plain = false;
        }
    }
    if (from < 0)
        return shape;
    shape.selectList = joinText(tk, listStart, from);

    qsizetype fromEnd = tk.size();
    QStringList parts;    // solid tokens of the FROM clause
    for (qsizetype j = from + 1; j < tk.size(); ++j) {
        const Token& t = tk[j];
        if (t.kind == Token::Word && clauseEnds.contains(t.text.toLower())) {
            fromEnd = j;
            break;
        }
        if (t.text == u';') {
            fromEnd = j;
            break;
        }
        if (t.kind == Token::Space)
            continue;
        if (t.text == u',' || t.text == u'(' || (t.kind == Token::Word && joins.contains(t.text.toLower())))
            plain = false;
        parts.append(t.text);
    }
    shape.fromClause = joinText(tk, from + 1, fromEnd);
    for (qsizetype j = fromEnd; j < tk.size(); ++j) {
        if (tk[j].kind != Token::Word)
            continue;
        const QString w = tk[j].text.toLower();
        if (w == u"group" || w == u"having" || w == u"union" || w == u"intersect" || w == u"except")
            plain = false;
    }
    // table [AS alias] | table alias | schema.table ...
    qsizetype nameEnd = 1;
    if (parts.size() >= 3 && parts[1] == u'.')
        nameEnd = 3;
    if (parts.isEmpty())
        plain = false;
    else {
        shape.table = parts.mid(0, nameEnd).join(QString());
        const qsizetype rest = parts.size() - nameEnd;
        const bool aliasOk = rest == 0 || rest == 1
                             || (rest == 2 && parts[nameEnd].compare(u"as", Qt::CaseInsensitive) == 0);
        if (!aliasOk)
            plain = false;
    }
    shape.updatable = plain;
    if (plain)
        shape.keyed = joinText(tk, 0, listStart) + QLatin1Char(' ') + keyExpression + QStringLiteral(" AS ")
                      + kRowKeyColumn + QStringLiteral(", ") + joinText(tk, listStart, tk.size());
    return shape;
}

} // namespace tp::jet
