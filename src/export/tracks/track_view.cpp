#include "export/tracks/track_view.h"

#include "export/export_values.h"
#include "foundation/conversions.h"

#include <QLocale>
#include <algorithm>
#include <cmath>

namespace tp::tracks {

namespace {

// From the whole earth in a hundred pixels to a centimetre a pixel.
constexpr double kMinScale = 1e-2;
constexpr double kMaxScale = 1e7;
// A single place, or none, is shown this many metres across.
constexpr double kLonePlaceMetres = 2000;
// Lines reach this far past the picture's edge, so a wide pen is never cut short.
constexpr double kEdge = 4;

double clampScale(double s)
{
    return std::clamp(s, kMinScale, kMaxScale);
}

// Cuts the segment a-b to the rectangle; false when no part of it is inside.
bool clip(QPointF& a, QPointF& b, double left, double top, double right, double bottom)
{
    double t0 = 0, t1 = 1;
    const double dx = b.x() - a.x(), dy = b.y() - a.y();
    const double p[4] = {-dx, dx, -dy, dy};
    const double q[4] = {a.x() - left, right - a.x(), a.y() - top, bottom - a.y()};
    for (int i = 0; i < 4; ++i) {
        if (p[i] == 0) {
            if (q[i] < 0)
                return false;
            continue;
        }
        const double t = q[i] / p[i];
        if (p[i] < 0)
            t0 = std::max(t0, t);
        else
            t1 = std::min(t1, t);
        if (t0 > t1)
            return false;
    }
    const QPointF from = a;
    if (t1 < 1)
        b = QPointF(from.x() + t1 * dx, from.y() + t1 * dy);
    if (t0 > 0)
        a = QPointF(from.x() + t0 * dx, from.y() + t0 * dy);
    return true;
}

QPoint wholePixel(QPointF p)
{
    return {int(std::floor(p.x())), int(std::floor(p.y()))};
}

QString roundText(double value)
{
    return QString::number(value, 'g', 7);
}

} // namespace

TrackView::TrackView(double meanLatitude, QSize size)
    : m_size(size), m_cos(std::cos(std::clamp(meanLatitude, -89.0, 89.0) * M_PI / 180.0)),
      m_centreY(meanLatitude)
{
}

void TrackView::fit(const TrackSet& set, QMargins margins)
{
    double left = INFINITY, right = -INFINITY, bottom = INFINITY, top = -INFINITY;
    for (const Track& t : set.tracks)
        for (const std::vector<Fix>* fixes : {&t.fixes, &t.leftOut})
            for (const Fix& f : *fixes) {
                if (!f.placed())
                    continue;
                const double x = f.lon / kMicro * m_cos, y = f.lat / kMicro;
                left = std::min(left, x);
                right = std::max(right, x);
                bottom = std::min(bottom, y);
                top = std::max(top, y);
            }
    const double width = std::max(m_size.width() - margins.left() - margins.right(), 1);
    const double height = std::max(m_size.height() - margins.top() - margins.bottom(), 1);
    // The margins' centre, as a ground offset from the picture's centre.
    const double shiftX = (margins.left() - margins.right()) / 2.0;
    const double shiftY = (margins.top() - margins.bottom()) / 2.0;
    const double lone = clampScale(std::min(width, height) / (kLonePlaceMetres / kMetresPerDegree));
    if (left > right) {   // nothing placed
        m_centreX = 0;
        m_centreY = set.meanLatitude;
        m_scale = lone;
        return;
    }
    const double spanX = right - left, spanY = top - bottom;
    if (spanX <= 0 && spanY <= 0)
        m_scale = lone;
    else
        m_scale = clampScale(std::min(spanX > 0 ? width / spanX : INFINITY,
                                      spanY > 0 ? height / spanY : INFINITY));
    m_centreX = (left + right) / 2 - shiftX / m_scale;
    m_centreY = (bottom + top) / 2 + shiftY / m_scale;
}

void TrackView::zoomAt(QPointF pixel, double factor)
{
    const double dx = pixel.x() - m_size.width() / 2.0, dy = pixel.y() - m_size.height() / 2.0;
    const double groundX = m_centreX + dx / m_scale, groundY = m_centreY - dy / m_scale;
    m_scale = clampScale(m_scale * factor);
    m_centreX = groundX - dx / m_scale;
    m_centreY = groundY + dy / m_scale;
}

void TrackView::pan(QPointF delta)
{
    m_centreX -= delta.x() / m_scale;
    m_centreY += delta.y() / m_scale;
}

void TrackView::mapFrom(const TrackView& o, double& scale, QPointF& offset) const
{
    scale = m_scale / o.m_scale;
    offset = QPointF(m_size.width() / 2.0 + (o.m_centreX - m_centreX) * m_scale - o.m_size.width() / 2.0 * scale,
                     m_size.height() / 2.0 - (o.m_centreY - m_centreY) * m_scale -
                         o.m_size.height() / 2.0 * scale);
}

void PathReducer::reduce(const std::vector<Fix>& fixes, const TrackView& view, const Draw& draw)
{
    m_points.clear();
    m_open = false;
    m_pointsOut = 0;
    if (fixes.size() < 2)
        return;
    const double right = view.size().width() + kEdge, bottom = view.size().height() + kEdge;
    QPointF previous = view.toPixel(fixes.front());
    for (std::size_t i = 1; i < fixes.size(); ++i) {
        const QPointF from = previous, current = view.toPixel(fixes[i]);
        previous = current;
        QPointF a = from, b = current;
        if (!clip(a, b, -kEdge, -kEdge, right, bottom)) {
            flush(draw);
            continue;
        }
        // A segment that comes in from outside starts a line of its own.
        if (a != from)
            flush(draw);
        if (!m_open)
            add(wholePixel(a));
        add(wholePixel(b));
        if (b != current)   // and one that goes out ends it
            flush(draw);
    }
    flush(draw);
}

void PathReducer::add(QPoint p)
{
    if (m_open && p.x() == m_first.x()) {
        // The lowest and highest go out in the order they came.
        if (p.y() < m_low.y()) {
            m_low = p;
            m_lowFirst = false;
        }
        if (p.y() > m_high.y()) {
            m_high = p;
            m_lowFirst = true;
        }
        m_last = p;
        return;
    }
    closeColumn();
    m_open = true;
    m_first = m_low = m_high = m_last = p;
    m_lowFirst = true;
}

void PathReducer::closeColumn()
{
    if (!m_open)
        return;
    m_open = false;
    const QPoint order[4] = {m_first, m_lowFirst ? m_low : m_high, m_lowFirst ? m_high : m_low, m_last};
    for (const QPoint& p : order)
        if (m_points.empty() || m_points.back() != p)
            m_points.push_back(p);
}

void PathReducer::flush(const Draw& draw)
{
    closeColumn();
    if (m_points.size() == 1)   // all in one pixel: a dot
        m_points.push_back(m_points.front());
    if (!m_points.empty()) {
        draw(m_points.data(), int(m_points.size()));
        m_pointsOut += qint64(m_points.size());
    }
    m_points.clear();
}

std::optional<FixHit> fixAt(const TrackSet& set, const TrackView& view, QPointF pixel, double radius)
{
    std::optional<FixHit> best;
    double bestDistance = radius * radius;
    for (const Track& t : set.tracks)
        for (const bool leftOut : {false, true})
            for (const Fix& f : leftOut ? t.leftOut : t.fixes) {
                if (!f.placed())
                    continue;
                const QPointF p = view.toPixel(f) - pixel;
                const double d = p.x() * p.x() + p.y() * p.y();
                if (d <= bestDistance) {
                    bestDistance = d;
                    best = FixHit{&t, &f, leftOut};
                }
            }
    return best;
}

QString describeFix(const TrackSet& set, const FixHit& hit)
{
    const QString subject = hit.track->subject >= 0 && hit.track->subject < int(set.subjects.size())
                                ? set.subjects[std::size_t(hit.track->subject)].name
                                : QString();
    QString text = QStringLiteral("Track %1").arg(hit.track->trackId);
    if (!subject.isEmpty())
        text += QStringLiteral(" (") + subject + QLatin1Char(')');
    text += QLatin1Char('\n') + ConvertField2StandardDate(QString::number(hit.fix->date)) +
            QLatin1Char(' ') + formatStoredTimeText(QString::number(hit.fix->time)) +
            QStringLiteral("\nSpeed ") + roundText(double(hit.fix->speed));
    if (hit.leftOut)
        text += QStringLiteral("\nLeft out of the export: no usable position");
    return text;
}

QString describeSet(const TrackSet& set)
{
    const auto counted = [](qint64 n, const char* one, const char* many) {
        return QString::number(n) + QLatin1Char(' ') + QLatin1String(n == 1 ? one : many);
    };
    return counted(qint64(set.subjects.size()), "subject", "subjects") + QStringLiteral(", ") +
           counted(qint64(set.tracks.size()), "track", "tracks") + QStringLiteral(", ") +
           counted(fixCount(set), "fix", "fixes") + QStringLiteral(" (") + QString::number(set.leftOut) +
           QStringLiteral(" left out of the export)");
}

ScaleBar scaleBar(const TrackView& view, bool miles, double maxPixels)
{
    constexpr double kMetresPerMile = 1609.344, kMetresPerFoot = 0.3048;
    const double longest = maxPixels * view.metresPerPixel();
    // In the larger unit while a whole one fits, else in the smaller.
    const double big = miles ? kMetresPerMile : 1000.0, small = miles ? kMetresPerFoot : 1.0;
    const double unit = longest >= big ? big : small;
    const double fits = longest / unit;
    double round = std::pow(10.0, std::floor(std::log10(std::max(fits, 1e-9))));
    for (const double step : {5.0, 2.0})
        if (round * step <= fits) {
            round *= step;
            break;
        }
    ScaleBar bar;
    bar.pixels = round * unit / view.metresPerPixel();
    const QString name = unit == big ? (miles ? QStringLiteral("mi") : QStringLiteral("km"))
                                     : (miles ? QStringLiteral("ft") : QStringLiteral("m"));
    bar.text = roundText(round) + QLatin1Char(' ') + name;
    return bar;
}

bool usesMiles(const QLocale& locale)
{
    return locale.measurementSystem() != QLocale::MetricSystem;
}

} // namespace tp::tracks
