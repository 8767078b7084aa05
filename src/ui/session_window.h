#pragma once
// What the Export and Import windows share around their sessions: the Feedback that turns a
// session's messages, questions and statuses into boxes and the status bar, and the file
// dialogs. The window's own controls and its session stay in the window.
#include "ui/file_dialog.h"
#include "ui/qt_feedback.h"
#include "ui/status_bar.h"

#include <QDialog>
#include <functional>
#include <memory>

class QListWidget;
class QStatusBar;

namespace tp {
class Feedback;
}

namespace tp::ui {

class SessionWindow : public QDialog {
public:
    // prompts: receives the window's messages and questions (null: the process-wide sink).
    SessionWindow(QWidget* parent, Feedback* prompts, const QString& objectName, const QString& title);
    ~SessionWindow() override;

    // Made before the window's members, so the session (one of them) can report through it.
    std::unique_ptr<QtFeedback> m_feedback;
    std::unique_ptr<StatusBarAdapter> m_status;
    std::unique_ptr<FileDialog> m_dialogsOwned;
    FileDialog* m_dialogs = nullptr;

protected:
    // Once the controls are built: the status bar joins the feedback, the file dialogs are
    // settled (null: the platform's own) and load runs. A load that throws, which none is
    // expected to, is reported and the window kept.
    void start(QStatusBar* bar, FileDialog* dialogs, const std::function<void()>& load);
    // The data-set list's events: Enter, or a click once the list has taken it, runs choose.
    // True when the event was handled.
    bool dataSetListEvent(QListWidget* list, QObject* watched, QEvent* event, const std::function<void()>& choose);
    // Closing ends the hourglass a long step may have left.
    void done(int result) override;
};

} // namespace tp::ui
