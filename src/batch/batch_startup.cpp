#include "batch/batch_startup.h"

#include "foundation/feedback.h"
#include "foundation/globals.h"

namespace tp::batch {

bool startUp(const QString& settingsFile, const QString& userId)
{
    // The host's command line: program, settings file, Export offered, user id.
    const QString commandLine = QStringLiteral("tallyport-batch,") + settingsFile +
                                QStringLiteral(",True,") + userId;
    const StartupOutcome outcome = RunStartup(commandLine);
    if (outcome.fatal || !outcome.exportEnabled)
        return false;
    // Without a database the window would have nothing to work on ("Cannot open database"
    // has been shown).
    return globals().DatabaseOpen && SharedDatabase() != nullptr;
}

bool passGate(FunctionMode mode)
{
    const AccessOutcome access = CheckFunctionAccess(mode);
    if (!access.message.isEmpty())
        ShowMessage(0, access.message);
    return access.allowed;
}

} // namespace tp::batch
