#include "batch/batch_commands.h"

#include "batch/batch_startup.h"
#include "batch/console_feedback.h"

#include <QFileInfo>

namespace tp::batch {

int importCommand(const Options& options, ConsoleFeedback& feedback, std::FILE*)
{
    const QFileInfo input(options.input);
    if (!input.isFile() || !input.isReadable()) {
        feedback.note(QStringLiteral("Cannot read the input file ") + options.input);
        return ExitFailure;
    }
    if (!startUp(options.settings, options.user) || !passGate(FunctionMode::Import))
        return ExitFailure;
    feedback.note(QStringLiteral("Import is not available in this version."));
    return ExitFailure;
}

} // namespace tp::batch
