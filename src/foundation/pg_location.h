#pragma once
// PostgreSQL locations: postgresql://[user[:password]@]host[:port]/dbname[?name=value&...]
// The host may be a bracketed IPv6 address ([::1]); the query may name connect_timeout,
// sslmode, host (a socket folder) and password.
#include <QString>

namespace tp {

bool isPgLocation(const QString& location);

struct PgLocation {
    QString user;
    QString password;
    QString host;         // without the brackets of an IPv6 address
    QString database;
    int port = -1;        // -1: libpq's default
    int connectTimeout = 5;   // seconds; a server that does not answer must not hang a run
    QString sslMode;      // empty: libpq's default

    // The driver's connect options ("connect_timeout=5;sslmode=require").
    QString connectOptions() const;
};

// False when the text is not a usable location (no database, a bad port or timeout, an
// unknown sslmode, an unclosed bracket).
bool parsePgLocation(const QString& location, PgLocation& out);

// The text with every password replaced by "***": the user:password of a PostgreSQL URL
// (also inside a longer message) and any "password=" query value. Every message, log line
// and error that shows a location goes through this.
QString maskPassword(const QString& text);

} // namespace tp
