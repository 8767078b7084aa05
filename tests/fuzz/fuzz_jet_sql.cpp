// The Jet SQL translator and tokenizer on any statement text.
#include "fuzz_input.h"

#include "foundation/jet_sql.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const QString sql = QString::fromUtf8(reinterpret_cast<const char*>(data), qsizetype(size));
    QString joined;
    for (const tp::jet::Token& t : tp::jet::tokenize(sql))
        joined += t.text;
    if (joined != sql)
        tp::fuzz::finding("the tokens do not give the statement back");
    for (const auto dialect : {tp::jet::Dialect::SQLite, tp::jet::Dialect::PostgreSQL}) {
        const QString translated = tp::jet::translate(sql, dialect);
        (void)tp::jet::analyseSelect(translated, QStringLiteral("rowid"));
        (void)tp::jet::quoteName(sql.left(64), dialect);
    }
    return 0;
}
