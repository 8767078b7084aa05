#pragma once
// The status-bar control of a window: one text panel and a progress bar shown while a long
// loop runs.
#include <QString>

class QLabel;
class QProgressBar;
class QStatusBar;

namespace tp::ui {

class StatusBarAdapter {
public:
    explicit StatusBarAdapter(QStatusBar* bar);

    QStatusBar* widget() const { return m_bar; }
    QString text() const;
    void setText(const QString& text);
    // total 0 hides the bar.
    void setProgress(qint64 done, qint64 total);
    bool progressVisible() const;

private:
    QStatusBar* m_bar;
    QLabel* m_text;
    QProgressBar* m_progress;
};

} // namespace tp::ui
