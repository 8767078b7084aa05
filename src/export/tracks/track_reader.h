#pragma once
// Reads the tracks an export's selection covers (the chosen subjects, the date range) for the
// track picture, one track at a time so that a window can read between its events and the batch
// tool all at once. The tracks are those the GPS export writes, in its order; each track's
// fixes come with the ones the export leaves out.
#include "export/assembler.h"
#include "export/tracks/track_set.h"

#include <memory>
#include <optional>

namespace tp {
class cDAO;
class Feedback;
class GpsAssembler;
} // namespace tp

namespace tp::tracks {

class TrackReader {
public:
    // feedback hears what the subject list tells (a refused list, a failed read).
    TrackReader(cDAO& db, Feedback& feedback);
    ~TrackReader();

    // Names the subjects as the subject list does and finds their tracks in the range. False
    // after a failure (error() says why).
    bool begin(const ExportRequest& request);
    // Reads the fixes of the next track. False once every track is read or after a failure.
    bool readNext();
    bool finished() const { return m_error.isEmpty() && m_next >= m_pending.size(); }
    QString error() const { return m_error; }
    int tracksRead() const { return int(m_next); }
    int trackCount() const { return int(m_pending.size()); }
    // The set read so far; the reader is left empty.
    TrackSet take();

    // begin, then every track; nullopt after a failure.
    std::optional<TrackSet> readAll(const ExportRequest& request);

private:
    bool fail(const QString& why);

    cDAO& m_db;
    Feedback& m_feedback;
    std::unique_ptr<GpsAssembler> m_gps;
    TrackSet m_set;
    std::vector<std::pair<qint32, int>> m_pending;   // track, subject index
    std::size_t m_next = 0;
    double m_latitudeSum = 0;
    qint64 m_placed = 0;
    QString m_error;
};

} // namespace tp::tracks
