#pragma once
// How the core talks to whoever is watching: a window, a test, or the batch tool.
#include <QString>
#include <QStringList>
#include <deque>
#include <functional>

namespace tp {

inline const QString kBoxTitle = QStringLiteral("Tallyport Import/Export");

// Answers of AskUser, as the old message-box API numbered them.
enum AskAnswer : short { AnswerNone = 0, AnswerCancel = 2, AnswerRetry = 4, AnswerYes = 6, AnswerNo = 7 };

class Feedback {
public:
    virtual ~Feedback() = default;
    // Status-bar text.
    virtual void status(const QString& text) = 0;
    // Progress of a long loop; total 0 hides the bar.
    virtual void progress(qint64 done, qint64 total) = 0;
    // A box with OK. kind 0: information icon, else critical. title is normally kBoxTitle.
    virtual void message(short kind, const QString& text, const QString& title) = 0;
    // kind 0: Yes/No, kind 1: Retry/Cancel. Returns an AskAnswer.
    virtual short ask(short kind, const QString& text) = 0;
    // Let pending user-interface events run (a Cancel click, say).
    virtual void yield() {}
    // Hourglass on/off.
    virtual void busy(bool /*on*/) {}
};

// Records everything and answers questions from a queue; for tests and the batch tool.
class ScriptedFeedback : public Feedback {
public:
    struct Shown {
        enum Kind { Status, Message, Question } kind;
        short code;      // message or question kind
        QString text;
        QString title;
    };
    void status(const QString& text) override;
    void progress(qint64 done, qint64 total) override;
    void message(short kind, const QString& text, const QString& title) override;
    short ask(short kind, const QString& text) override;
    void yield() override;

    // Answers handed out in order; when empty, defaultAnswer decides (Yes/No questions get No
    // unless defaultYes, Retry/Cancel questions get Cancel unless defaultYes).
    std::deque<short> answers;
    bool defaultYes = false;
    // Called at every yield; tests use it to press Cancel in the middle of a loop.
    std::function<void()> onYield;
    // Called whenever a message or question is shown (the batch tool prints them).
    std::function<void(const Shown&)> onShown;

    std::vector<Shown> shown;        // messages and questions, in order
    QStringList statuses;            // every status text, in order
    QString lastStatus;
    qint64 lastDone = 0, lastTotal = 0;
    int yields = 0;

    QStringList messages() const;    // texts of the boxes only
    QStringList questions() const;   // texts of the questions only
};

// The process-wide sink used by ShowMessage/AskUser/WriteLog. Never null: defaults to a
// ScriptedFeedback that answers No, so nothing blocks without a screen.
Feedback& feedback();
// Installs a sink (not owned); nullptr restores the default.
void setFeedback(Feedback* sink);

// Message routines of the whole tool; every box is titled kBoxTitle.
void ShowMessage(short kind, const QString& text);
short AskUser(short kind, const QString& text);

} // namespace tp
