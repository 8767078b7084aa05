// The second half of the Export window's road, without the window: the record selection,
// the scan, the output formats and "Create File", each through the same session call the
// window's buttons make.
#include "batch/batch_commands.h"

#include "batch/batch_picture.h"
#include "batch/console_feedback.h"
#include "export/export_session.h"

#include <QFileInfo>

namespace tp::batch {

namespace {

const QString kSavingFile = QStringLiteral("Saving File ...");
const QString kProcessCancel = QStringLiteral("Process cancel");

bool selectRecords(ExportSession& session, const Options& options)
{
    if (!options.byDate())
        return session.selectAllRecords();
    if (!session.selectRecordsByDate())
        return false;
    // The calendar hands the dates over one after the other; a bad one is told as the
    // window tells it.
    if (session.setStartDate(options.from) == DateRange::Invalid)
        return false;
    return session.setStopDate(options.to) == DateRange::Valid;
}

} // namespace

int selectScanAndSave(ExportSession& session, const Options& options, ConsoleFeedback& feedback,
                      std::FILE* out)
{
    if (!selectRecords(session, options))
        return finishWithStatus(feedback, out, ExitFailure);

    const ScanOutcome scan = session.scanDatabase();
    if (scan.kind != ScanOutcome::Found) {
        // Here only a question answered No cancels a scan.
        feedback.note(scan.kind == ScanOutcome::Cancelled
                          ? QStringLiteral("The export was cancelled; nothing was written.")
                      : session.isTimeOrInventory()
                          ? QStringLiteral("No waiting records match the selection; nothing was written.")
                          : QStringLiteral("No records match the selection; nothing was written."));
        return finishWithStatus(feedback, out, ExitFailure);
    }
    // The format buttons are offered only for a ticked Date or Time field.
    session.setDateFormat(options.formatDate && scan.dateFormat);
    session.setTimeFormat(options.formatTime && scan.timeFormat);
    if (!options.picture.isEmpty()) {
        if (!writeTrackPicture(session, options, feedback))
            return finishWithStatus(feedback, out, ExitFailure);
        if (options.output.isEmpty())
            return finishWithStatus(feedback, out, ExitSuccess);
    }

    feedback.status(kSavingFile);
    // "-" is standard output, which then carries the file alone; the last word goes with the
    // messages.
    const bool toStdout = options.output == kStandardOutput;
    if (toStdout)
        out = stderr;
    const ExportJobResult result = session.saveExportFile(
        toStdout ? options.output : QFileInfo(options.output).absoluteFilePath(), options.encoding);
    switch (result.outcome) {
    case ExportJobResult::Completed:
        return finishWithStatus(feedback, out, ExitSuccess);
    case ExportJobResult::NothingLeft:
        break;
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
