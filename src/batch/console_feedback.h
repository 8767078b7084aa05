#pragma once
// The batch tool's Feedback: every box the window would show becomes a block on standard
// error, questions are answered from --yes, and the status bar is kept for the last word.
#include "foundation/feedback.h"

#include <QString>
#include <cstdio>

namespace tp::batch {

class ConsoleFeedback : public Feedback {
public:
    // answerYes: Yes/No questions get Yes (else No); Retry/Cancel questions get Retry at most
    // kMaxRetries times in a run (else Cancel), so a fault that persists cannot loop forever.
    explicit ConsoleFeedback(bool answerYes, std::FILE* blocks = stderr);

    void status(const QString& text) override;
    void progress(qint64 done, qint64 total) override;
    void message(short kind, const QString& text, const QString& title) override;
    short ask(short kind, const QString& text) override;

    // With it on, each progress call of a loop that has a total prints
    // "Records written: DONE of TOTAL" as a line of its own (the import calls it only after a
    // commit, so the line never tells of a row that is not in the database).
    void setProgressLines(bool on) { m_progressLines = on; }

    // A line of the tool's own (not a box of the window), printed as a block too.
    void note(const QString& text);

    QString lastStatus() const { return m_lastStatus; }
    int blocksShown() const { return m_blocks; }

    // A box's text as lines for a terminal: the carriage returns that separate its lines
    // become line feeds.
    static QString blockText(const QString& text);

    static constexpr int kMaxRetries = 3;

private:
    void print(const QString& block);

    bool m_answerYes;
    bool m_progressLines = false;
    std::FILE* m_out;
    QString m_lastStatus;
    int m_blocks = 0;
    int m_retries = 0;
};

} // namespace tp::batch
