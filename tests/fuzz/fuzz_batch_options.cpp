// The batch tool's option parser on any argument list (arguments split at NUL bytes).
#include "fuzz_input.h"

#include "batch/batch_options.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    tp::fuzz::Input in(data, size);
    const QStringList arguments = in.texts();
    const tp::batch::ParseResult parsed = tp::batch::parseArguments(arguments);
    if (parsed.ok()) {
        const tp::batch::Options& o = parsed.options;
        if (o.byDate() && (!tp::batch::isValidBoxDate(o.from) || !tp::batch::isValidBoxDate(o.to)))
            tp::fuzz::finding("a date range accepted with a date that is not a calendar day");
    }
    for (const QString& a : arguments)
        (void)tp::batch::isValidBoxDate(a);
    return 0;
}
