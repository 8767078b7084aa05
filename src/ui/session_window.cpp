#include "ui/session_window.h"

#include "foundation/feedback.h"
#include "ui/window_support.h"

#include <QCoreApplication>
#include <QKeyEvent>
#include <QListWidget>

#include <exception>

namespace tp::ui {

SessionWindow::SessionWindow(QWidget* parent, Feedback* prompts, const QString& objectName, const QString& title)
    : QDialog(parent), m_feedback(std::make_unique<QtFeedback>(this, nullptr, prompts ? prompts : &tp::feedback()))
{
    setObjectName(objectName);
    setWindowTitle(title);
    setWindowIcon(programIcon());
    setModal(true);
}

SessionWindow::~SessionWindow() = default;

void SessionWindow::start(QStatusBar* bar, FileDialog* dialogs, const std::function<void()>& load)
{
    m_status = std::make_unique<StatusBarAdapter>(bar);
    m_feedback->setStatusBar(m_status.get());
    if (!dialogs) {
        m_dialogsOwned = std::make_unique<QtFileDialog>(this);
        dialogs = m_dialogsOwned.get();
    }
    m_dialogs = dialogs;
    try {
        load();
    } catch (const std::exception& e) {
        reportLoadFailure(*m_feedback, e);
    }
}

bool SessionWindow::dataSetListEvent(QListWidget* list, QObject* watched, QEvent* event,
                                     const std::function<void()>& choose)
{
    if (watched == list && event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent*>(event)->key();
        if (key == Qt::Key_Return || key == Qt::Key_Enter) {
            choose();
            return true;
        }
    }
    if (watched == list->viewport() && event->type() == QEvent::MouseButtonRelease) {
        // Let the list take the click first, then choose what it highlighted.
        list->viewport()->removeEventFilter(this);
        QCoreApplication::sendEvent(watched, event);
        list->viewport()->installEventFilter(this);
        choose();
        return true;
    }
    return false;
}

void SessionWindow::done(int result)
{
    m_feedback->busy(false);
    QDialog::done(result);
}

} // namespace tp::ui
