#include "ui/status_bar.h"

#include <QLabel>
#include <QProgressBar>
#include <QStatusBar>

namespace tp::ui {

StatusBarAdapter::StatusBarAdapter(QStatusBar* bar)
    : m_bar(bar), m_text(new QLabel(bar)), m_progress(new QProgressBar(bar))
{
    // A permanent label keeps the text: temporary status messages would be wiped by hovering.
    m_text->setObjectName(QStringLiteral("StatBarText"));
    m_text->setTextFormat(Qt::PlainText);
    m_text->setMinimumWidth(0);
    m_bar->addWidget(m_text, 1);
    m_progress->setObjectName(QStringLiteral("StatBarProgress"));
    m_progress->setMaximumWidth(160);
    m_progress->setTextVisible(false);
    m_progress->hide();
    m_bar->addPermanentWidget(m_progress);
}

QString StatusBarAdapter::text() const { return m_text->text(); }

void StatusBarAdapter::setText(const QString& text) { m_text->setText(text); }

void StatusBarAdapter::setProgress(qint64 done, qint64 total)
{
    if (total <= 0) {
        m_progress->hide();
        return;
    }
    // QProgressBar counts in int; scale large totals down.
    const qint64 scale = total > 1000000 ? total / 1000000 + 1 : 1;
    m_progress->setRange(0, int(total / scale));
    m_progress->setValue(int(qBound<qint64>(0, done, total) / scale));
    m_progress->show();
}

bool StatusBarAdapter::progressVisible() const { return !m_progress->isHidden(); }

} // namespace tp::ui
