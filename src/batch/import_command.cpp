#include "batch/batch_commands.h"

#include "batch/batch_startup.h"
#include "batch/console_feedback.h"
#include "foundation/globals.h"
#include "import/import_session.h"

#include <QFileInfo>

namespace tp::batch {

int importCommand(const Options& options, ConsoleFeedback& feedback, std::FILE* out)
{
    if (!startUp(options.settings, options.user) || !passGate(FunctionMode::Import))
        return finishWithStatus(feedback, out, ExitFailure);

    ImportSession session(*SharedDatabase(), feedback);
    const QStringList offered = session.offeredDataSets();
    if (!offered.contains(options.dataset)) {
        feedback.note(offered.isEmpty() ? kImportNoSelection
                                        : QStringLiteral("Data sets offered: ") + offered.join(QStringLiteral(", ")));
        return finishWithStatus(feedback, out, ExitFailure);
    }
    session.selectDataSet(options.dataset);

    // The optional fields are ticked as clicks would tick them; required ones are ticked already.
    for (const FieldChoice& choice : options.fields) {
        const int row = session.rowOf(choice.name);
        if (row == 0) {
            QStringList names;
            for (const FieldSpec& spec : session.rows())
                names << spec.name;
            return usageError(QStringLiteral("%1 has no field %2; its fields are: %3")
                                  .arg(options.dataset, choice.name, names.join(QStringLiteral(", "))));
        }
        session.setTicked(row, true);
    }

    const ImportScanOutcome scan = session.scanFile(QFileInfo(options.input).absoluteFilePath());
    if (scan.kind != ImportScanOutcome::Accepted)
        return finishWithStatus(feedback, out, ExitFailure);
    feedback.note(ConsoleFeedback::blockText(session.formatText()));
    const ImportWriteOutcome written = session.importToDatabase(QFileInfo(options.input).fileName());
    return finishWithStatus(feedback, out, written.succeeded() ? ExitSuccess : ExitFailure);
}

} // namespace tp::batch
