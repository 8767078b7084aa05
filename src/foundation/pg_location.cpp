#include "foundation/pg_location.h"

#include <QRegularExpression>
#include <QStringList>
#include <QUrl>

namespace tp {

namespace {

const QString kScheme = QStringLiteral("postgresql://");
const QString kMask = QStringLiteral("***");

QString decoded(const QString& text)
{
    return QUrl::fromPercentEncoding(text.toUtf8());
}

bool isSslMode(const QString& mode)
{
    static const QStringList modes{QStringLiteral("disable"), QStringLiteral("allow"),
                                   QStringLiteral("prefer"), QStringLiteral("require"),
                                   QStringLiteral("verify-ca"), QStringLiteral("verify-full")};
    return modes.contains(mode);
}

bool wholeNumber(const QString& text, int low, int high, int& out)
{
    static const QRegularExpression digits(QStringLiteral("^[0-9]{1,9}$"));
    if (!digits.match(text).hasMatch())
        return false;
    out = text.toInt();
    return out >= low && out <= high;
}

// host, [v6host], host:port or [v6host]:port
bool parseHostPort(const QString& hostPort, PgLocation& out)
{
    QString portText;
    if (hostPort.startsWith(u'[')) {
        const qsizetype close = hostPort.indexOf(u']');
        if (close < 0)
            return false;
        out.host = hostPort.mid(1, close - 1);
        const QString after = hostPort.mid(close + 1);
        if (!after.isEmpty()) {
            if (!after.startsWith(u':'))
                return false;
            portText = after.mid(1);
        }
        if (out.host.isEmpty() || !out.host.contains(u':'))
            return false;
    } else {
        const qsizetype colon = hostPort.lastIndexOf(u':');
        out.host = decoded(colon < 0 ? hostPort : hostPort.left(colon));
        if (colon >= 0)
            portText = hostPort.mid(colon + 1);
        if (out.host.contains(u':'))
            return false;   // an IPv6 address needs its brackets
    }
    if (hostPort.contains(u'[') != hostPort.startsWith(u'['))
        return false;
    if (portText.isEmpty())
        return !hostPort.endsWith(u':');
    return wholeNumber(portText, 1, 65535, out.port);
}

bool applyParameter(const QString& pair, PgLocation& out)
{
    const qsizetype eq = pair.indexOf(u'=');
    const QString name = pair.left(eq);
    const QString value = eq < 0 ? QString() : decoded(pair.mid(eq + 1));
    if (name == QLatin1String("host"))
        out.host = value;
    else if (name == QLatin1String("password"))
        out.password = value;
    else if (name == QLatin1String("connect_timeout"))
        return wholeNumber(value, 1, 3600, out.connectTimeout);
    else if (name == QLatin1String("sslmode")) {
        if (!isSslMode(value))
            return false;
        out.sslMode = value;
    }
    return true;
}

} // namespace

bool isPgLocation(const QString& location)
{
    return location.trimmed().startsWith(kScheme, Qt::CaseInsensitive);
}

QString PgLocation::connectOptions() const
{
    QString options = QStringLiteral("connect_timeout=%1").arg(connectTimeout);
    if (!sslMode.isEmpty())
        options += QStringLiteral(";sslmode=") + sslMode;
    return options;
}

bool parsePgLocation(const QString& location, PgLocation& out)
{
    out = PgLocation();
    if (!isPgLocation(location))
        return false;
    QString rest = location.trimmed().mid(kScheme.size());
    QString queryPart;
    const qsizetype q = rest.indexOf(u'?');
    if (q >= 0) {
        queryPart = rest.mid(q + 1);
        rest = rest.left(q);
    }
    const qsizetype slash = rest.indexOf(u'/');
    if (slash < 0)
        return false;
    out.database = decoded(rest.mid(slash + 1));
    QString authority = rest.left(slash);
    const qsizetype at = authority.lastIndexOf(u'@');
    if (at >= 0) {
        const QString userInfo = authority.left(at);
        authority = authority.mid(at + 1);
        const qsizetype colon = userInfo.indexOf(u':');
        // An "@" of the user name must be written %40; the password may hold one as it is.
        if (userInfo.left(colon).contains(u'@'))
            return false;
        out.user = decoded(userInfo.left(colon));
        if (colon >= 0)
            out.password = decoded(userInfo.mid(colon + 1));
    }
    if (!parseHostPort(authority, out))
        return false;
    for (const QString& pair : queryPart.split(u'&', Qt::SkipEmptyParts))
        if (!applyParameter(pair, out))
            return false;
    return !out.database.isEmpty() && !out.database.contains(u'/');
}

QString maskPassword(const QString& text)
{
    QString out = text;
    // password=VALUE anywhere after a question mark or an ampersand.
    static const QRegularExpression queryPassword(QStringLiteral("([?&]password=)[^&]*"),
                                                  QRegularExpression::CaseInsensitiveOption);
    out.replace(queryPassword, QStringLiteral("\\1") + kMask);

    // user:password@ after the scheme, up to the last "@" before the next location: a password
    // holding "@", "/", blanks or line ends is hidden whole. Hiding too much (a later "@" in
    // the message) is better than hiding too little.
    qsizetype from = 0;
    while ((from = out.indexOf(kScheme, from, Qt::CaseInsensitive)) >= 0) {
        const qsizetype start = from + kScheme.size();
        // Not bounded by a line end: a password may hold one.
        const qsizetype next = out.indexOf(kScheme, start, Qt::CaseInsensitive);
        const qsizetype end = next >= 0 ? next : out.size();
        const qsizetype at = end > start ? out.lastIndexOf(u'@', end - 1) : -1;
        // The user name holds no "@": the password's colon comes before the first one.
        const qsizetype firstAt = out.indexOf(u'@', start);
        const qsizetype colon = at >= start ? out.indexOf(u':', start) : -1;
        if (at >= start && colon >= 0 && colon < firstAt) {
            out.replace(colon + 1, at - colon - 1, kMask);
            from = colon + 1 + kMask.size();
        } else {
            from = start;
        }
    }
    return out;
}

} // namespace tp
