#pragma once
// What part of the ground a track picture shows, and what the picture needs from the tracks at
// that view: each track's line reduced to the points its pixels need, the fix under the pointer,
// the scale bar. Ground positions are projected as x = longitude × cos(mean latitude),
// y = latitude, so that shapes near the tracks are true.
#include "export/tracks/track_set.h"

#include <QMargins>
#include <QPoint>
#include <QPointF>
#include <QSize>
#include <QString>
#include <functional>
#include <optional>

class QLocale;

namespace tp::tracks {

// The mean radius of the earth makes a degree of latitude this long.
constexpr double kMetresPerDegree = 111195.08;
constexpr QMargins kFitMargins(28, 28, 28, 28);

class TrackView {
public:
    TrackView() = default;
    TrackView(double meanLatitude, QSize size);

    QSize size() const { return m_size; }
    // The ground at the centre stays; the picture gets the new size.
    void setSize(QSize size) { m_size = size; }
    // Every placed fix in sight, inside the margins; a set without one shows a few kilometres
    // around its mean latitude.
    void fit(const TrackSet& set, QMargins margins = kFitMargins);
    // Zooms by factor (above 1: closer), keeping the ground under pixel where it is.
    void zoomAt(QPointF pixel, double factor);
    // Moves what the picture shows by delta pixels (a drag).
    void pan(QPointF delta);

    QPointF toPixel(const Fix& fix) const { return toPixel(fix.lon, fix.lat); }
    QPointF toPixel(qint32 lon, qint32 lat) const
    {
        return {m_size.width() / 2.0 + (lon / kMicro * m_cos - m_centreX) * m_scale,
                m_size.height() / 2.0 - (lat / kMicro - m_centreY) * m_scale};
    }
    double metresPerPixel() const { return kMetresPerDegree / m_scale; }
    double pixelsPerDegree() const { return m_scale; }

    // A picture made for other moves to p · scale + offset in this view.
    void mapFrom(const TrackView& other, double& scale, QPointF& offset) const;

    bool operator==(const TrackView& o) const
    {
        return m_size == o.m_size && m_cos == o.m_cos && m_centreX == o.m_centreX &&
               m_centreY == o.m_centreY && m_scale == o.m_scale;
    }
    bool operator!=(const TrackView& o) const { return !(*this == o); }

private:
    QSize m_size;
    double m_cos = 1;         // cosine of the mean latitude
    double m_centreX = 0;     // projected ground at the picture's centre, degrees
    double m_centreY = 0;
    double m_scale = 1000;    // pixels per projected degree
};

// Hands a track's line to draw as polylines of whole pixels: only what crosses the picture,
// and within each pixel column no more than its first, lowest, highest and last point, so a
// line of a million fixes costs what its pixels cost.
class PathReducer {
public:
    using Draw = std::function<void(const QPoint* points, int count)>;
    void reduce(const std::vector<Fix>& fixes, const TrackView& view, const Draw& draw);
    // Points handed out by the last reduce.
    qint64 pointsOut() const { return m_pointsOut; }

private:
    void add(QPoint p);
    void closeColumn();
    void flush(const Draw& draw);

    std::vector<QPoint> m_points;
    bool m_open = false;           // a column is being gathered
    QPoint m_first, m_low, m_high, m_last;
    bool m_lowFirst = true;        // the lowest came before the highest
    qint64 m_pointsOut = 0;
};

struct FixHit {
    const Track* track = nullptr;
    const Fix* fix = nullptr;
    bool leftOut = false;
};

// The placed fix nearest to pixel within radius pixels.
std::optional<FixHit> fixAt(const TrackSet& set, const TrackView& view, QPointF pixel, double radius);
// The hover text of a fix: subject and track, date and time, speed.
QString describeFix(const TrackSet& set, const FixHit& hit);
// "4 subjects, 5 tracks, 9 fixes (2 left out of the export)".
QString describeSet(const TrackSet& set);

struct ScaleBar {
    double pixels = 0;
    QString text;   // "2 km", "500 m", "5 mi", "200 ft"
};
// The longest round length (1, 2 or 5 times a power of ten) that fits in maxPixels.
ScaleBar scaleBar(const TrackView& view, bool miles, double maxPixels);
// Miles where the locale measures in them.
bool usesMiles(const QLocale& locale);

} // namespace tp::tracks
