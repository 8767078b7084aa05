#include "export/tracks/frmTrackView.h"

#include "ui/window_support.h"

#include <QElapsedTimer>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace tp {

namespace {

// Reading goes on between the window's events in slices this long.
constexpr int kReadSliceMs = 25;

} // namespace

frmTrackView::frmTrackView(cDAO& db, Feedback& feedback, const ExportRequest& request, QWidget* parent)
    : QDialog(parent), m_request(request), m_reader(db, feedback)
{
    setObjectName(QStringLiteral("frmTrackView"));
    setWindowTitle(QStringLiteral("Tracks"));
    setSizeGripEnabled(true);

    m_canvas = new TrackCanvas(this);
    lblTracksStatus = ui::named(new QLabel(QStringLiteral("Reading the tracks ..."), this), "lblTracksStatus");
    lblTracksStatus->setWordWrap(true);
    cmdFit = ui::commandButton("cmdFit", QStringLiteral("Fit All"), this);
    cmdClose = ui::commandButton("cmdClose", QStringLiteral("Close"), this);
    cmdFit->setEnabled(false);

    auto* buttons = new QHBoxLayout;
    buttons->addWidget(lblTracksStatus, 1);
    buttons->addWidget(cmdFit);
    buttons->addWidget(cmdClose);
    auto* root = new QVBoxLayout(this);
    root->setContentsMargins(8, 8, 8, 8);
    root->addWidget(m_canvas, 1);
    root->addLayout(buttons);
    resize(900, 680);

    connect(cmdFit, &QPushButton::clicked, m_canvas, &TrackCanvas::fitAll);
    connect(cmdClose, &QPushButton::clicked, this, &QDialog::reject);
    connect(&m_reading, &QTimer::timeout, this, &frmTrackView::readSome);
    m_reading.start(0);
}

frmTrackView::~frmTrackView() = default;

QString frmTrackView::statusText() const
{
    return lblTracksStatus->text();
}

void frmTrackView::readSome()
{
    if (!m_begun) {
        m_begun = true;
        if (!m_reader.begin(m_request)) {
            showLoaded();
            return;
        }
    }
    QElapsedTimer slice;
    slice.start();
    while (slice.elapsed() < kReadSliceMs && m_reader.readNext()) {
    }
    if (m_reader.finished() || !m_reader.error().isEmpty()) {
        showLoaded();
        return;
    }
    lblTracksStatus->setText(QStringLiteral("Reading track %1 of %2 ...")
                                 .arg(m_reader.tracksRead() + 1)
                                 .arg(m_reader.trackCount()));
}

void frmTrackView::showLoaded()
{
    m_reading.stop();
    m_loaded = true;
    if (!m_reader.error().isEmpty()) {
        lblTracksStatus->setText(QStringLiteral("The tracks could not be read: ") + m_reader.error());
        return;
    }
    auto set = std::make_shared<tracks::TrackSet>(m_reader.take());
    lblTracksStatus->setText(tracks::describeSet(*set) +
                             QStringLiteral(". Wheel: zoom; drag: move; double click: fit all."));
    cmdFit->setEnabled(true);
    m_canvas->setTracks(std::move(set));
}

void frmTrackView::finishNow()
{
    if (!isVisible())
        show();
    if (!m_loaded) {
        if (!m_begun) {
            m_begun = true;
            if (!m_reader.begin(m_request)) {
                showLoaded();
                return;
            }
        }
        while (m_reader.readNext()) {
        }
        showLoaded();
    }
    m_canvas->drawNow();
}

} // namespace tp
