#pragma once
// Draws a set of tracks as a picture: each track a line over its usable fixes in the colour of
// its subject, a start and an end marker per track, a grey cross where a fix the export leaves
// out was, a legend naming the subjects as the subject list does and a scale bar. The Export
// window's track view and the batch tool's --picture draw with it (QPainter on a QImage: it
// needs Qt Gui but no display and no widgets, and may run off the GUI thread).
#include "export/tracks/track_view.h"

#include <QColor>
#include <QImage>
#include <QRect>
#include <atomic>

class QPainter;

namespace tp::tracks {

inline const QColor kStartColour = QColor(0x1a, 0x96, 0x41);
inline const QColor kEndColour = QColor(0xd7, 0x19, 0x1c);
inline const QColor kLeftOutColour = QColor(0x80, 0x80, 0x80);
inline const QColor kPaperColour = QColor(0xf7, 0xf5, 0xf0);

// The colour of the subject at this place in the list; neighbours differ, and none is the
// markers' green or red or the crosses' grey.
QColor subjectColour(int subject);

// Where a picture put its parts.
struct PictureParts {
    struct LegendRow {
        QString text;
        QColor colour;   // the swatch's
        QRect textRect;
    };
    std::vector<LegendRow> legend;
    QRect legendBox;
    QRect scaleBarRect;
    QString scaleText;
    qint64 linePoints = 0;   // points the reduced lines were drawn through
    bool stopped = false;    // *stop was seen set: the picture is unfinished
};

// Draws on painter's device, which is view.size() large. stop, when given, is read between
// tracks.
PictureParts paintTracks(QPainter& painter, const TrackSet& set, const TrackView& view, bool miles,
                         const std::atomic<bool>* stop = nullptr);

// What a fitted picture keeps free of tracks: the legend's side and the scale bar's foot.
QMargins pictureMargins(const TrackSet& set, QSize size);

// A picture of size showing every track (fitted), in km or miles.
QImage drawTracks(const TrackSet& set, QSize size, bool miles, PictureParts* parts = nullptr);

} // namespace tp::tracks
