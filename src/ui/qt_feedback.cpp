#include "ui/qt_feedback.h"

#include "ui/status_bar.h"

#include <QApplication>
#include <QMessageBox>

namespace tp::ui {

QtFeedback::QtFeedback(QWidget* parent, StatusBarAdapter* bar, Feedback* prompts)
    : m_parent(parent), m_bar(bar), m_prompts(prompts)
{
}

QtFeedback::~QtFeedback()
{
    busy(false);
}

QWidget* QtFeedback::owner() const
{
    return m_parent ? m_parent.data() : QApplication::activeWindow();
}

QString QtFeedback::displayText(const QString& text)
{
    QString out = text;
    out.replace(QLatin1String("\r\n"), QLatin1String("\n"));
    out.replace(QLatin1Char('\r'), QLatin1Char('\n'));
    return out;
}

void QtFeedback::status(const QString& text)
{
    if (m_bar)
        m_bar->setText(text);
    if (m_prompts)
        m_prompts->status(text);
}

void QtFeedback::progress(qint64 done, qint64 total)
{
    if (m_bar)
        m_bar->setProgress(done, total);
    if (m_prompts)
        m_prompts->progress(done, total);
}

void QtFeedback::message(short kind, const QString& text, const QString& title)
{
    // The hourglass must not hide the arrow over the box's button.
    const bool wasBusy = m_busy;
    busy(false);
    if (m_prompts) {
        m_prompts->message(kind, text, title);
    } else {
        QMessageBox box(kind == 0 ? QMessageBox::Information : QMessageBox::Critical, title,
                        displayText(text), QMessageBox::Ok, owner());
        box.exec();
    }
    busy(wasBusy);
}

short QtFeedback::ask(short kind, const QString& text)
{
    const bool wasBusy = m_busy;
    if (m_prompts) {
        busy(false);
        const short answer = m_prompts->ask(kind, text);
        busy(wasBusy);
        return answer;
    }
    if (kind != 0 && kind != 1)
        return AnswerNone;
    busy(false);
    const auto buttons = kind == 0 ? QMessageBox::Yes | QMessageBox::No
                                   : QMessageBox::Retry | QMessageBox::Cancel;
    QMessageBox box(QMessageBox::NoIcon, kBoxTitle, displayText(text), buttons, owner());
    const int pressed = box.exec();
    busy(wasBusy);
    switch (pressed) {
    case QMessageBox::Yes: return AnswerYes;
    case QMessageBox::No: return AnswerNo;
    case QMessageBox::Retry: return AnswerRetry;
    default: return kind == 0 ? AnswerNo : AnswerCancel;
    }
}

void QtFeedback::yield()
{
    QCoreApplication::processEvents();
    if (m_prompts)
        m_prompts->yield();
}

void QtFeedback::busy(bool on)
{
    if (m_prompts)
        m_prompts->busy(on);
    if (on == m_busy || !qApp)
        return;
    m_busy = on;
    if (on)
        QApplication::setOverrideCursor(Qt::WaitCursor);
    else
        QApplication::restoreOverrideCursor();
}

} // namespace tp::ui
