// The Export window's Show Tracks button: the track view of the GPS selection as scanned.
#include "export/frmExport.h"

#include "export/tracks/frmTrackView.h"
#include "ui/window_support.h"

#include <QEvent>
#include <QPushButton>

namespace tp {

namespace {

// Show Tracks follows Preview File, which is enabled exactly while a scanned selection may be
// previewed or written (and not while a preview or a file is being made).
class FollowEnabled : public QObject {
public:
    FollowEnabled(QObject* parent, std::function<void()> update) : QObject(parent), m_update(std::move(update)) {}
    bool eventFilter(QObject*, QEvent* event) override
    {
        if (event->type() == QEvent::EnabledChange)
            m_update();
        return false;
    }

private:
    std::function<void()> m_update;
};

} // namespace

QPushButton* frmExport::buildShowTracks(QWidget* parent)
{
    cmdShowTracks = ui::commandButton("cmdShowTracks", QStringLiteral("Show Tracks"), parent);
    cmdShowTracks->setToolTip(QStringLiteral("Draw the chosen subjects' tracks of these days"));
    cmdShowTracks->setEnabled(false);
    cmdShowTracks->hide();
    connect(cmdShowTracks, &QPushButton::clicked, this, &frmExport::ShowTracks);
    cmdPreviewExport->installEventFilter(new FollowEnabled(cmdShowTracks, [this] {
        const bool gps = m_session.msTableSelected == kTableGps;
        cmdShowTracks->setVisible(gps);
        cmdShowTracks->setEnabled(gps && cmdPreviewExport->isEnabled());
    }));
    return cmdShowTracks;
}

void frmExport::ShowTracks()
{
    if (m_session.msTableSelected != kTableGps || m_session.ExportRecordCount < 1)
        return;
    // Window-modal without a loop of its own: the Export window waits, nothing else does.
    auto* view = new frmTrackView(m_session.database(), *m_feedback, m_session.request(), this);
    view->setAttribute(Qt::WA_DeleteOnClose);
    view->open();
}

} // namespace tp
