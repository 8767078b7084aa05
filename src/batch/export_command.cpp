#include "batch/batch_commands.h"

#include "batch/batch_startup.h"
#include "batch/console_feedback.h"
#include "export/export_session.h"
#include "foundation/globals.h"

namespace tp::batch {

namespace {

// A field the data set's catalogue lacks is a mistake in the command, caught before anything
// is opened.
QString unknownField(const ExportDataSet& set, const Options& options)
{
    QStringList names;
    for (const CatalogueField& f : set.fields)
        names << f.name;
    for (const FieldChoice& choice : options.fields)
        if (!names.contains(choice.name))
            return QStringLiteral("%1 has no field %2; its fields are: %3")
                .arg(set.listText, choice.name, names.join(QStringLiteral(", ")));
    return QString();
}

int refuseDataSet(ConsoleFeedback& feedback, std::FILE* out, const QStringList& offered)
{
    feedback.status(QString());
    ShowMessage(0, kRefusalText);
    feedback.note(offered.isEmpty() ? kNoSelectionAvailable
                                    : QStringLiteral("Data sets offered: ") +
                                          offered.join(QStringLiteral(", ")));
    return finishWithStatus(feedback, out, ExitFailure);
}

} // namespace

int finishWithStatus(ConsoleFeedback& feedback, std::FILE* out, int status)
{
    const QString text = feedback.lastStatus();
    if (!text.isEmpty()) {
        const QByteArray bytes = (text + QLatin1Char('\n')).toLocal8Bit();
        std::fwrite(bytes.constData(), 1, std::size_t(bytes.size()), out);
    }
    return status;
}

int exportCommand(const Options& options, ConsoleFeedback& feedback, std::FILE* out)
{
    const bool krv = options.settings == QLatin1String("KRV.ini");
    if (const ExportDataSet* set = FindDataSet(options.dataset, krv)) {
        const QString unknown = unknownField(*set, options);
        if (!unknown.isEmpty())
            return usageError(unknown);
    }

    if (!startUp(options.settings, options.user) || !passGate(FunctionMode::Export))
        return finishWithStatus(feedback, out, ExitFailure);

    ExportSession session(*SharedDatabase(), feedback);
    const QStringList offered = session.offeredDataSets();
    if (!offered.contains(options.dataset))
        return refuseDataSet(feedback, out, offered);

    session.selectDataSet(options.dataset);
    session.reportAvailability();
    if (session.AvailabilityResult != 1)
        return finishWithStatus(feedback, out, ExitFailure);

    // Ticked one after the other, as the clicks would: each tick is the next field order.
    for (const FieldChoice& choice : options.fields) {
        const int row = session.fieldRow(choice.name);
        if (row == 0 || !session.tickField(row, true))
            return usageError(QStringLiteral("%1 cannot be ticked").arg(choice.name));
        if (choice.header)
            session.setHeaderText(row, *choice.header);
    }
    if (options.dataset == kListGps && !chooseGpsSubjects(session, options, feedback))
        return finishWithStatus(feedback, out, ExitFailure);
    return selectScanAndSave(session, options, feedback, out);
}

} // namespace tp::batch
