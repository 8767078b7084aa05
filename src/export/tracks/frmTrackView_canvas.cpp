// The track view's picture: drawn on a worker thread, shown moved and scaled while the next one
// for a changed view is on its way.
#include "export/tracks/frmTrackView.h"

#include <QLocale>
#include <QMouseEvent>
#include <QPainter>
#include <QToolTip>
#include <QWheelEvent>
#include <cmath>

namespace tp {

namespace {

// The pointer's reach onto a fix, in pixels.
constexpr double kHoverReach = 6;
// One notch of the wheel (120 units) zooms by about a fifth.
constexpr double kZoomPerUnit = 1.0015;

} // namespace

TrackCanvas::TrackCanvas(QWidget* parent) : QWidget(parent), m_miles(tracks::usesMiles(QLocale()))
{
    setObjectName(QStringLiteral("trackCanvas"));
    setMinimumSize(240, 180);
    setFocusPolicy(Qt::StrongFocus);
    setCursor(Qt::OpenHandCursor);
    m_pool.setMaxThreadCount(1);
}

TrackCanvas::~TrackCanvas()
{
    if (m_stop)
        m_stop->store(true);
    m_pool.waitForDone();
}

void TrackCanvas::setTracks(std::shared_ptr<const tracks::TrackSet> set)
{
    m_set = std::move(set);
    m_view = tracks::TrackView(m_set->meanLatitude, size());
    fitAll();
}

void TrackCanvas::fitAll()
{
    if (!m_set)
        return;
    m_view.setSize(size());
    m_view.fit(*m_set, tracks::pictureMargins(*m_set, size()));
    m_fitted = true;
    viewChanged();
}

bool TrackCanvas::pictureReady() const
{
    return m_set && !m_drawing && !m_picture.isNull() && m_pictureView == m_view;
}

void TrackCanvas::viewChanged()
{
    update();
    if (!m_set || m_view.size().isEmpty())
        return;
    if (m_drawing) {
        // The picture being drawn is already out of date: stop it and draw the new view next.
        m_again = true;
        m_stop->store(true);
        return;
    }
    startDrawing();
}

void TrackCanvas::startDrawing()
{
    m_drawing = true;
    m_again = false;
    m_stop = std::make_shared<std::atomic<bool>>(false);
    // The worker gets its own copies; the set is shared and never changed.
    auto set = m_set;
    const tracks::TrackView view = m_view;
    const bool miles = m_miles;
    const qreal ratio = devicePixelRatioF();   // as sharp as the screen shows it
    auto stop = m_stop;
    m_pool.start([this, set, view, miles, stop, ratio] {
        QImage image(view.size() * ratio, QImage::Format_ARGB32_Premultiplied);
        image.setDevicePixelRatio(ratio);
        QPainter painter(&image);
        const tracks::PictureParts parts = tracks::paintTracks(painter, *set, view, miles, stop.get());
        painter.end();
        // Queued to the canvas: dropped with it if it is gone by then (it waits for this task).
        QMetaObject::invokeMethod(this, [this, image, parts, view] { drawn(image, parts, view); },
                                  Qt::QueuedConnection);
    });
}

void TrackCanvas::drawn(const QImage& image, const tracks::PictureParts& parts, const tracks::TrackView& view)
{
    m_drawing = false;
    if (!parts.stopped) {
        m_picture = image;
        m_parts = parts;
        m_pictureView = view;
        update();
    }
    if (m_again || m_pictureView != m_view)
        startDrawing();
    else
        emit pictureDrawn();
}

void TrackCanvas::drawNow()
{
    if (!m_set)
        return;
    m_view.setSize(size());
    QImage image(m_view.size() * devicePixelRatioF(), QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(devicePixelRatioF());
    QPainter painter(&image);
    m_parts = tracks::paintTracks(painter, *m_set, m_view, m_miles);
    painter.end();
    m_picture = image;
    m_pictureView = m_view;
    // A picture still on its way is of an older view.
    if (m_drawing) {
        m_again = false;
        m_stop->store(true);
    }
    update();
}

void TrackCanvas::paintEvent(QPaintEvent*)
{
    QPainter p(this);
    p.fillRect(rect(), tracks::kPaperColour);
    if (m_picture.isNull())
        return;
    if (m_pictureView == m_view) {
        p.drawImage(0, 0, m_picture);
        return;
    }
    // Until the new picture is drawn, the last one stands in, moved and scaled to the view.
    double scale = 1;
    QPointF offset;
    m_view.mapFrom(m_pictureView, scale, offset);
    p.setRenderHint(QPainter::SmoothPixmapTransform, scale < 4);
    p.translate(offset);
    p.scale(scale, scale);
    p.drawImage(0, 0, m_picture);
}

void TrackCanvas::resizeEvent(QResizeEvent*)
{
    if (!m_set)
        return;
    if (m_fitted) {
        fitAll();
        return;
    }
    m_view.setSize(size());
    viewChanged();
}

void TrackCanvas::wheelEvent(QWheelEvent* event)
{
    const int units = event->angleDelta().y();
    if (!m_set || units == 0) {
        event->ignore();
        return;
    }
    m_view.zoomAt(event->position(), std::pow(kZoomPerUnit, units));
    m_fitted = false;
    viewChanged();
    event->accept();
}

void TrackCanvas::mousePressEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton)
        return;
    m_dragging = true;
    m_dragFrom = event->position().toPoint();
    setCursor(Qt::ClosedHandCursor);
}

void TrackCanvas::mouseMoveEvent(QMouseEvent* event)
{
    if (!m_dragging || !m_set)
        return;
    const QPoint at = event->position().toPoint();
    if (at == m_dragFrom)
        return;
    m_view.pan(at - m_dragFrom);
    m_dragFrom = at;
    m_fitted = false;
    viewChanged();
}

void TrackCanvas::mouseReleaseEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton)
        return;
    m_dragging = false;
    setCursor(Qt::OpenHandCursor);
}

void TrackCanvas::mouseDoubleClickEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton)
        fitAll();
}

bool TrackCanvas::event(QEvent* event)
{
    if (event->type() != QEvent::ToolTip)
        return QWidget::event(event);
    auto* help = static_cast<QHelpEvent*>(event);
    const auto hit = m_set ? tracks::fixAt(*m_set, m_view, help->pos(), kHoverReach) : std::nullopt;
    if (hit)
        QToolTip::showText(help->globalPos(), tracks::describeFix(*m_set, *hit), this);
    else
        QToolTip::hideText();
    return true;
}

} // namespace tp
