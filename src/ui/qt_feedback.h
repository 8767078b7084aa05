#pragma once
// Feedback for the windows: the status bar of the window, message boxes and the hourglass.
// Messages and questions can be handed to another Feedback instead of a box (tests script
// the answers that way), status texts go to both.
#include "foundation/feedback.h"

#include <QPointer>
#include <QWidget>

namespace tp::ui {

class StatusBarAdapter;

class QtFeedback : public Feedback {
public:
    // parent: owner of the boxes (the active window when null). bar: may be null.
    // prompts: when set, receives messages and questions instead of boxes being shown.
    explicit QtFeedback(QWidget* parent = nullptr, StatusBarAdapter* bar = nullptr,
                        Feedback* prompts = nullptr);
    ~QtFeedback() override;

    void status(const QString& text) override;
    void progress(qint64 done, qint64 total) override;
    void message(short kind, const QString& text, const QString& title) override;
    short ask(short kind, const QString& text) override;
    void yield() override;
    void busy(bool on) override;

    bool isBusy() const { return m_busy; }
    void setStatusBar(StatusBarAdapter* bar) { m_bar = bar; }

    // Carriage returns alone separate lines in stored texts; a box needs line feeds.
    static QString displayText(const QString& text);

private:
    QWidget* owner() const;

    QPointer<QWidget> m_parent;
    StatusBarAdapter* m_bar;
    Feedback* m_prompts;
    bool m_busy = false;
};

} // namespace tp::ui
