#include "foundation/feedback.h"

namespace tp {

void ScriptedFeedback::status(const QString& text)
{
    statuses << text;
    lastStatus = text;
}

void ScriptedFeedback::progress(qint64 done, qint64 total)
{
    lastDone = done;
    lastTotal = total;
}

void ScriptedFeedback::message(short kind, const QString& text, const QString& title)
{
    shown.push_back({Shown::Message, kind, text, title});
    if (onShown)
        onShown(shown.back());
}

short ScriptedFeedback::ask(short kind, const QString& text)
{
    // Kinds other than Yes/No and Retry/Cancel show nothing, as the message routine does.
    if (kind != 0 && kind != 1)
        return AnswerNone;
    shown.push_back({Shown::Question, kind, text, kBoxTitle});
    if (onShown)
        onShown(shown.back());
    if (!answers.empty()) {
        const short answer = answers.front();
        answers.pop_front();
        return answer;
    }
    if (kind == 0)
        return defaultYes ? AnswerYes : AnswerNo;
    return defaultYes ? AnswerRetry : AnswerCancel;
}

void ScriptedFeedback::yield()
{
    ++yields;
    if (onYield)
        onYield();
}

QStringList ScriptedFeedback::messages() const
{
    QStringList out;
    for (const Shown& s : shown)
        if (s.kind == Shown::Message)
            out << s.text;
    return out;
}

QStringList ScriptedFeedback::questions() const
{
    QStringList out;
    for (const Shown& s : shown)
        if (s.kind == Shown::Question)
            out << s.text;
    return out;
}

namespace {
Feedback* g_sink = nullptr;

Feedback& defaultSink()
{
    static ScriptedFeedback sink;
    return sink;
}
} // namespace

Feedback& feedback()
{
    return g_sink ? *g_sink : defaultSink();
}

void setFeedback(Feedback* sink)
{
    g_sink = sink;
}

void ShowMessage(short kind, const QString& text)
{
    feedback().message(kind, text, kBoxTitle);
}

short AskUser(short kind, const QString& text)
{
    if (kind != 0 && kind != 1)
        return AnswerNone;
    return feedback().ask(kind, text);
}

} // namespace tp
