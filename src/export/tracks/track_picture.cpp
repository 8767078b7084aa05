#include "export/tracks/track_picture.h"

#include <QFont>
#include <QFontMetrics>
#include <QPainter>
#include <QPainterPath>
#include <cmath>

namespace tp::tracks {

namespace {

constexpr double kLineWidth = 2;
constexpr double kMarkerRadius = 5;
constexpr double kCrossArm = 3.5;
constexpr int kLegendMargin = 8;
constexpr int kSwatch = 18;
const QColor kInk(0x20, 0x20, 0x20);

// Distinct at a glance, and none of them green, red or grey.
const QRgb kPalette[] = {0x1f77b4, 0xff7f0e, 0x9467bd, 0x8c564b, 0xe377c2,
                         0x17becf, 0xbcbd22, 0x393b79, 0xe7ba52, 0x7b4173};

QPointF centre(QPoint p)
{
    return {p.x() + 0.5, p.y() + 0.5};
}

void drawStart(QPainter& p, QPointF at)
{
    p.setPen(QPen(Qt::white, 1.5));
    p.setBrush(kStartColour);
    p.drawEllipse(at, kMarkerRadius, kMarkerRadius);
}

void drawEnd(QPainter& p, QPointF at)
{
    p.setPen(QPen(Qt::white, 1.5));
    p.setBrush(kEndColour);
    p.drawRect(QRectF(at.x() - kMarkerRadius + 0.5, at.y() - kMarkerRadius + 0.5, 2 * kMarkerRadius - 1,
                      2 * kMarkerRadius - 1));
}

void drawCross(QPainter& p, QPointF at)
{
    p.drawLine(at + QPointF(-kCrossArm, -kCrossArm), at + QPointF(kCrossArm, kCrossArm));
    p.drawLine(at + QPointF(-kCrossArm, kCrossArm), at + QPointF(kCrossArm, -kCrossArm));
}

QPointF pixelCentre(const TrackView& view, const Fix& f)
{
    const QPointF p = view.toPixel(f);
    return {std::floor(p.x()) + 0.5, std::floor(p.y()) + 0.5};
}

bool inside(const TrackView& view, QPointF p, double margin)
{
    return p.x() >= -margin && p.y() >= -margin && p.x() <= view.size().width() + margin &&
           p.y() <= view.size().height() + margin;
}

// Crosses of left-out fixes, one per pixel however many land there.
void paintCrosses(QPainter& p, const TrackSet& set, const TrackView& view)
{
    const int w = view.size().width(), h = view.size().height();
    std::vector<bool> drawn(std::size_t(std::max(w, 0)) * std::size_t(std::max(h, 0)));
    p.setPen(QPen(kLeftOutColour, 2, Qt::SolidLine, Qt::FlatCap));
    for (const Track& t : set.tracks)
        for (const Fix& f : t.leftOut) {
            if (!f.placed())
                continue;
            const QPointF at = pixelCentre(view, f);
            if (!inside(view, at, kCrossArm + 1))
                continue;
            const int x = int(at.x()), y = int(at.y());
            if (x >= 0 && y >= 0 && x < w && y < h) {
                const std::size_t i = std::size_t(y) * std::size_t(w) + std::size_t(x);
                if (drawn[i])
                    continue;
                drawn[i] = true;
            }
            drawCross(p, at);
        }
}

void paintMarkers(QPainter& p, const TrackSet& set, const TrackView& view)
{
    // Ends first, so a track that starts where another ended shows its start.
    for (const Track& t : set.tracks)
        if (!t.fixes.empty() && inside(view, view.toPixel(t.fixes.back()), kMarkerRadius + 2))
            drawEnd(p, pixelCentre(view, t.fixes.back()));
    for (const Track& t : set.tracks)
        if (!t.fixes.empty() && inside(view, view.toPixel(t.fixes.front()), kMarkerRadius + 2))
            drawStart(p, pixelCentre(view, t.fixes.front()));
}

struct LegendRow {
    QString text;
    QColor colour;
    int symbol;   // 0 a subject's line, 1 start, 2 end, 3 cross, 4 none
};

struct Legend {
    QFont font;
    int rowHeight = 0;
    int textWidth = 0;
    std::vector<LegendRow> rows;
    QRect box;
};

Legend layoutLegend(const TrackSet& set, QSize size)
{
    Legend l;
    l.font.setPixelSize(12);
    const QFontMetrics metrics(l.font);
    l.rowHeight = metrics.height() + 4;
    // The subjects with a track in these days, in list order; the others are counted.
    std::vector<bool> drawn(set.subjects.size());
    for (const Track& t : set.tracks)
        if (t.subject >= 0 && t.subject < int(drawn.size()))
            drawn[std::size_t(t.subject)] = true;
    std::vector<int> subjects;
    for (std::size_t i = 0; i < drawn.size(); ++i)
        if (drawn[i])
            subjects.push_back(int(i));
    const int without = int(set.subjects.size() - subjects.size());
    const int keys = (set.leftOut > 0 ? 3 : 2) + (without > 0 ? 1 : 0);
    // As many subjects as the picture's height holds; the rest are counted.
    const int room = std::max(1, (size.height() - 2 * kLegendMargin - 8) / l.rowHeight - keys);
    const int count = int(subjects.size());
    const int shown = count <= room ? count : std::max(room - 1, 0);
    for (int i = 0; i < shown; ++i) {
        const int subject = subjects[std::size_t(i)];
        l.rows.push_back({set.subjects[std::size_t(subject)].name, subjectColour(subject), 0});
    }
    if (shown < count)
        l.rows.push_back({QStringLiteral("and %1 more subjects").arg(count - shown), kInk, 4});
    if (without > 0)
        l.rows.push_back({QStringLiteral("%1 chosen with no track in these days").arg(without), kInk, 4});
    l.rows.push_back({QStringLiteral("Start of a track"), kStartColour, 1});
    l.rows.push_back({QStringLiteral("End of a track"), kEndColour, 2});
    if (set.leftOut > 0)
        l.rows.push_back({QStringLiteral("Fix left out of the export"), kLeftOutColour, 3});
    for (const LegendRow& r : l.rows)   // a pixel to spare, or the widest would be cut
        l.textWidth = std::max(l.textWidth, metrics.horizontalAdvance(r.text) + 2);
    // A long name is cut rather than let the legend hide the tracks.
    l.textWidth = std::min(l.textWidth, std::max(size.width() / 3, 60));
    l.box = QRect(kLegendMargin, kLegendMargin, kSwatch + 14 + l.textWidth,
                  int(l.rows.size()) * l.rowHeight + 8);
    return l;
}

void paintLegend(QPainter& p, const Legend& l, PictureParts& parts)
{
    p.setFont(l.font);
    const QFontMetrics metrics(l.font);
    p.setPen(QColor(0xc8, 0xc8, 0xc8));
    p.setBrush(QColor(255, 255, 255, 225));
    p.drawRect(QRectF(l.box).adjusted(0.5, 0.5, -0.5, -0.5));
    parts.legendBox = l.box;
    for (std::size_t i = 0; i < l.rows.size(); ++i) {
        const LegendRow& r = l.rows[i];
        const int top = l.box.top() + 4 + int(i) * l.rowHeight;
        const QPointF mid(l.box.left() + 5 + kSwatch / 2.0, top + l.rowHeight / 2.0);
        switch (r.symbol) {
        case 0:
            p.setPen(QPen(r.colour, 3, Qt::SolidLine, Qt::RoundCap));
            p.drawLine(mid - QPointF(kSwatch / 2.0 - 2, 0), mid + QPointF(kSwatch / 2.0 - 2, 0));
            break;
        case 1: drawStart(p, mid); break;
        case 2: drawEnd(p, mid); break;
        case 3:
            p.setPen(QPen(kLeftOutColour, 2, Qt::SolidLine, Qt::FlatCap));
            drawCross(p, mid);
            break;
        default: break;
        }
        const QRect textRect(l.box.left() + 9 + kSwatch, top, l.textWidth, l.rowHeight);
        p.setPen(kInk);
        p.drawText(textRect, Qt::AlignLeft | Qt::AlignVCenter,
                   metrics.elidedText(r.text, Qt::ElideRight, l.textWidth));
        if (r.symbol == 0)
            parts.legend.push_back({r.text, r.colour, textRect});
    }
}

void paintScaleBar(QPainter& p, const TrackView& view, bool miles, PictureParts& parts)
{
    const ScaleBar bar = scaleBar(view, miles, std::max(view.size().width() / 4.0, 40.0));
    const QFontMetrics metrics(p.font());
    const double left = 12, base = view.size().height() - 12.5;
    const QRectF area(left - 6, base - metrics.height() - 10, bar.pixels + 12 +
                      std::max(0, metrics.horizontalAdvance(bar.text) - int(bar.pixels)), metrics.height() + 16);
    p.setPen(Qt::NoPen);
    p.setBrush(QColor(255, 255, 255, 200));
    p.drawRect(area);
    p.setPen(QPen(kInk, 1.5, Qt::SolidLine, Qt::FlatCap));
    p.drawLine(QPointF(left, base), QPointF(left + bar.pixels, base));
    p.drawLine(QPointF(left, base - 5), QPointF(left, base + 0.75));
    p.drawLine(QPointF(left + bar.pixels, base - 5), QPointF(left + bar.pixels, base + 0.75));
    p.drawText(QPointF(left, base - 6), bar.text);
    parts.scaleBarRect = area.toAlignedRect();
    parts.scaleText = bar.text;
}

} // namespace

QColor subjectColour(int subject)
{
    constexpr int n = int(sizeof kPalette / sizeof kPalette[0]);
    if (subject >= 0 && subject < n)
        return QColor(kPalette[subject]);
    // Beyond the palette: hues a golden angle apart, steering clear of green and red.
    double hue = std::fmod(std::max(subject, 0) * 137.508, 360.0);
    if (hue < 20 || hue > 340)
        hue += 25;
    if (hue > 95 && hue < 150)
        hue += 60;
    return QColor::fromHsvF(float(std::fmod(hue, 360.0) / 360.0), 0.7f, 0.75f);
}

PictureParts paintTracks(QPainter& p, const TrackSet& set, const TrackView& view, bool miles,
                         const std::atomic<bool>* stop)
{
    PictureParts parts;
    p.fillRect(QRect(QPoint(0, 0), view.size()), kPaperColour);
    p.setRenderHint(QPainter::Antialiasing, true);

    PathReducer reducer;
    std::vector<QPointF> centres;
    for (const Track& t : set.tracks) {
        if (stop && stop->load(std::memory_order_relaxed)) {
            parts.stopped = true;
            return parts;
        }
        const QColor colour = subjectColour(t.subject);
        // Flat ends and bevelled corners: at a pixel a segment they look as round ones do, and
        // are drawn several times faster.
        p.setPen(QPen(colour, kLineWidth, Qt::SolidLine, Qt::FlatCap, Qt::BevelJoin));
        reducer.reduce(t.fixes, view, [&](const QPoint* points, int count) {
            if (count == 2 && points[0] == points[1]) {   // a line within one pixel: a dot
                p.fillRect(QRectF(points[0].x() - 0.5, points[0].y() - 0.5, 2, 2), colour);
                return;
            }
            centres.resize(std::size_t(count));
            for (int i = 0; i < count; ++i)
                centres[std::size_t(i)] = centre(points[i]);
            p.drawPolyline(centres.data(), count);
        });
        parts.linePoints += reducer.pointsOut();
    }
    paintCrosses(p, set, view);
    paintMarkers(p, set, view);
    paintLegend(p, layoutLegend(set, view.size()), parts);
    paintScaleBar(p, view, miles, parts);
    return parts;
}

QMargins pictureMargins(const TrackSet& set, QSize size)
{
    const QRect legend = layoutLegend(set, size).box;
    // Beside the legend, and above the scale bar, unless that leaves too little room.
    const int left = legend.right() + 16 < size.width() / 2 ? legend.right() + 16 : kFitMargins.left();
    return QMargins(left, kFitMargins.top(), kFitMargins.right(), 44);
}

QImage drawTracks(const TrackSet& set, QSize size, bool miles, PictureParts* parts)
{
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    TrackView view(set.meanLatitude, size);
    view.fit(set, pictureMargins(set, size));
    QPainter painter(&image);
    const PictureParts drawn = paintTracks(painter, set, view, miles);
    painter.end();
    if (parts)
        *parts = drawn;
    return image;
}

} // namespace tp::tracks
