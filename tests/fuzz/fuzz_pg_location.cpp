// PostgreSQL locations: the parser on any text, and the masking that must hide every password
// it finds.
#include "fuzz_input.h"

#include "foundation/pg_location.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const QString text = QString::fromUtf8(reinterpret_cast<const char*>(data), qsizetype(size));
    const QString location = QStringLiteral("postgresql://") + text;
    const QString masked = tp::maskPassword(location);
    (void)tp::maskPassword(text);

    tp::PgLocation loc;
    if (!tp::parsePgLocation(location, loc))
        return 0;
    if (loc.connectTimeout < 1 || loc.port == 0 || loc.port > 65535)
        tp::fuzz::finding("a location accepted with an unusable port or timeout");
    // A password given in the user part must not survive the masking where it stood.
    const qsizetype at = location.lastIndexOf(QLatin1Char('@'), location.indexOf(QLatin1Char('/'), 13));
    const QString userInfo = at > 13 ? location.mid(13, at - 13) : QString();
    const qsizetype colon = userInfo.indexOf(QLatin1Char(':'));
    if (colon >= 0 && colon + 1 < userInfo.size()) {
        const QString shown = QStringLiteral(":") + userInfo.mid(colon + 1) + QStringLiteral("@");
        const QString maskedAuthority = masked.left(masked.indexOf(QLatin1Char('/'), 13));
        if (userInfo.mid(colon + 1) != QLatin1String("***") && maskedAuthority.contains(shown))
            tp::fuzz::finding("a password shown by the masking");
    }
    (void)loc.connectOptions();
    return 0;
}
