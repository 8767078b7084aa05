#include "export/assembler.h"

#include "foundation/feedback.h"

namespace tp {

bool ConfirmLongExport(Feedback& feedback, qint64 total, bool& cancel)
{
    if (total <= 200)
        return true;
    const short answer = feedback.ask(
        0, QStringLiteral("There are ") + QString::number(total) +
               QStringLiteral(" records to be exported. This may take some time. Do you wish to continue?"));
    cancel = answer != AnswerYes;
    return !cancel;
}

} // namespace tp
