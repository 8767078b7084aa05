#include "batch/batch_export.h"

#include "batch/batch_commands.h"
#include "batch/console_feedback.h"
#include "export/export_job.h"
#include "export/time_data.h"
#include "foundation/conversions.h"
#include "foundation/globals.h"

#include <QFileInfo>

namespace tp::batch {

namespace {

const QString kInvalidTimeEntry = QStringLiteral("Reset your time values!Invalid Time Entry.");
const QString kSavingFile = QStringLiteral("Saving File ...");
const QString kProcessCancel = QStringLiteral("Process cancel");
const QString kNoneFound = QStringLiteral("0 Record(s) found");

// The selection the window's save flow hands the assembler: the session's choices plus what
// the date boxes and the format buttons would hold.
ExportRequest exportRequest(const ExportChoices& choices, const Options& options)
{
    ExportRequest request;
    request.table = choices.table;
    request.exportId = choices.exportId;
    request.byDate = options.byDate();
    if (request.byDate) {
        request.start = ConvertStandard2FieldDate(options.from);
        request.stop = ConvertStandard2FieldDate(options.to);
    }
    for (const ExportChoices::Column& c : choices.columns)
        request.fields << c.name;
    request.formatDate = options.formatDate;
    request.formatTime = options.formatTime;
    request.settingsFile = globals().SettingsFileName;
    return request;
}

} // namespace

int scanAndSave(const ExportChoices& choices, const Options& options, ConsoleFeedback& feedback,
                bool& cancelRequested, std::FILE* out)
{
    const ExportRequest request = exportRequest(choices, options);
    if (request.byDate && request.stop.toLongLong() < request.start.toLongLong()) {
        ShowMessage(0, kInvalidTimeEntry);
        return finishWithStatus(feedback, out, ExitFailure);
    }

    TimeAssembler assembler(*SharedDatabase(), feedback);
    const qint64 found = assembler.count(request);
    if (found < 0)
        return finishWithStatus(feedback, out, ExitFailure);
    if (found == 0) {
        // The window's scan would end here, with nothing to preview or write.
        feedback.status(kNoneFound);
        return finishWithStatus(feedback, out, ExitFailure);
    }

    ExportJob job;
    job.request = request;
    for (const ExportChoices::Column& c : choices.columns)
        job.columns.push_back({c.name, c.type, c.header});
    job.fileName = QFileInfo(options.output).absoluteFilePath();
    job.encoding = options.encoding;
    job.markAfterSuccess = true;

    feedback.status(kSavingFile);
    const ExportJobResult result = runExport(job, assembler, feedback, cancelRequested);
    switch (result.outcome) {
    case ExportJobResult::Completed:
        if (result.marked < 0)
            feedback.note(QStringLiteral("The exported records could not be marked as exported; "
                                         "they will be offered again."));
        return finishWithStatus(feedback, out, ExitSuccess);
    case ExportJobResult::NoFileName:
    case ExportJobResult::Cancelled:
    case ExportJobResult::Declined:
        feedback.status(kProcessCancel);
        break;
    case ExportJobResult::ReadOnlyRefused:
        // The window would wait for another file name; here the message is the last word.
        feedback.status(QString());
        break;
    case ExportJobResult::Failed:
        break;
    }
    return finishWithStatus(feedback, out, ExitFailure);
}

} // namespace tp::batch
