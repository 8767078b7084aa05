#pragma once
// The GPS tracks of an export's selection, as the track picture draws them: every track of the
// chosen subjects in the date range, in the order the export writes them, with its usable fixes
// and the fixes the export leaves out (a longitude or latitude of -1, or none).
#include <QString>
#include <limits>
#include <vector>

namespace tp::tracks {

// Positions are kept in millionths of a degree: two million fixes fit in 40 MB.
constexpr double kMicro = 1e6;
constexpr qint32 kNoPosition = std::numeric_limits<qint32>::min();

struct Fix {
    qint32 lon = kNoPosition;   // millionths of a degree
    qint32 lat = kNoPosition;
    qint32 date = 0;            // RcvDate, YYYYMMDD
    qint32 time = 0;            // RcvTime, HHMMSS
    float speed = 0;
    bool placed() const { return lon != kNoPosition && lat != kNoPosition; }
};

struct Track {
    qint32 trackId = 0;
    int subject = 0;                // index into TrackSet::subjects
    std::vector<Fix> fixes;         // usable fixes, in the export's order
    // Fixes the export leaves out, placed where the track was at that moment: the coordinate
    // they carry, the missing one between the usable fixes before and after (the nearest one
    // at either end). Unplaced when the track has no usable fix to take it from.
    std::vector<Fix> leftOut;
};

struct Subject {
    qint32 trackId = 0;   // the track that names the subject
    QString name;         // as the subject list shows it
};

struct TrackSet {
    std::vector<Subject> subjects;
    std::vector<Track> tracks;
    qint64 usable = 0;
    qint64 leftOut = 0;
    // The mean latitude of every placed fix, in degrees: longitudes are scaled by its cosine so
    // that shapes are true.
    double meanLatitude = 0;

    bool hasPositions() const;
};

// The number of fixes (of both kinds) a set holds.
inline qint64 fixCount(const TrackSet& set)
{
    return set.usable + set.leftOut;
}

} // namespace tp::tracks
