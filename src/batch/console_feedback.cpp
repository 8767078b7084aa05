#include "batch/console_feedback.h"

namespace tp::batch {

ConsoleFeedback::ConsoleFeedback(bool answerYes, std::FILE* blocks)
    : m_answerYes(answerYes), m_out(blocks)
{
}

QString ConsoleFeedback::blockText(const QString& text)
{
    QString out = text;
    out.replace(QLatin1String("\r\n"), QLatin1String("\n"));
    out.replace(QLatin1Char('\r'), QLatin1Char('\n'));
    return out;
}

void ConsoleFeedback::status(const QString& text)
{
    m_lastStatus = text;
}

void ConsoleFeedback::progress(qint64 done, qint64 total)
{
    // Total 0 only hides the window's bar.
    if (!m_progressLines || total <= 0)
        return;
    std::fprintf(m_out, "Records written: %lld of %lld\n", static_cast<long long>(done), static_cast<long long>(total));
    std::fflush(m_out);
}

void ConsoleFeedback::message(short, const QString& text, const QString&)
{
    print(blockText(text));
}

short ConsoleFeedback::ask(short kind, const QString& text)
{
    // Other kinds show nothing, as the message routine does.
    if (kind != 0 && kind != 1)
        return AnswerNone;
    short answer;
    QString line;
    if (kind == 0) {
        answer = m_answerYes ? AnswerYes : AnswerNo;
        line = m_answerYes ? QStringLiteral("[Yes/No] Yes (--yes)")
                           : QStringLiteral("[Yes/No] No (give --yes to answer Yes)");
    } else {
        const bool retry = m_answerYes && m_retries < kMaxRetries;
        m_retries += retry ? 1 : 0;
        answer = retry ? AnswerRetry : AnswerCancel;
        line = retry ? QStringLiteral("[Retry/Cancel] Retry (--yes)")
                     : QStringLiteral("[Retry/Cancel] Cancel");
    }
    print(blockText(text) + QLatin1Char('\n') + line);
    return answer;
}

void ConsoleFeedback::note(const QString& text)
{
    print(text);
}

void ConsoleFeedback::print(const QString& block)
{
    // One block per box, an empty line after it, so that boxes of several lines stay apart.
    const QByteArray bytes = (block + QStringLiteral("\n\n")).toLocal8Bit();
    std::fwrite(bytes.constData(), 1, std::size_t(bytes.size()), m_out);
    std::fflush(m_out);
    ++m_blocks;
}

} // namespace tp::batch
