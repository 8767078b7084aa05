// The GPS side of the record selection: the subjects chosen in the track-subject window and
// the scan that counts and shows their points, one subject after the other.
#include "export/export_session.h"

#include "export/gps_data.h"
#include "foundation/feedback.h"

namespace tp {

bool ExportSession::chooseTrackSubjects(const TrackSubjectChoice& choice)
{
    CurrentTrackSubject = choice.CurrentTrackSubject;
    TrackSubjects = choice.TrackSubjects;
    return CurrentTrackSubject != 0;
}

ScanOutcome ExportSession::scanGpsDatabase()
{
    ScanOutcome out;
    auto* gps = dynamic_cast<GpsAssembler*>(assembler());
    // Points are always chosen by date; without a range there is nothing to scan.
    if (!gps || SelectionMode != kSelectionDate)
        return out;
    if (dateRange() != DateRange::Valid) {
        m_feedback.message(0, kInvalidTimeEntry, kBoxTitle);
        return out;
    }

    m_feedback.busy(true);
    clearRecordGrid();
    ExportRequest req = request();
    if (!hasTrackSubjectList()) {
        const qint64 count = gps->count(req);
        if (count < 1) {
            cancelExport();
            out.selectionReset = true;
        } else {
            ExportRecordCount = qint32(count);
            fillRecordGrid(gps->preview(req, count));
        }
        return finishScan(out);
    }

    const std::vector<qint32> tracks = GpsAssembler::subjectTracks(req);
    qint64 total = 0;
    for (qint32 track : tracks) {
        CurrentTrackSubject = track;
        total += std::max<qint64>(gps->countSubject(req, track), 0);
    }
    ExportRecordCount = qint32(total);
    PreviewResult rows;
    for (qint32 track : tracks) {
        CurrentTrackSubject = track;
        const bool read = gps->previewSubject(req, track, total, rows);
        fillRecordGrid(rows);
        m_feedback.yield();
        if (CancelRequested || !read || int(rows.rows.size()) >= 20)
            break;
    }
    return finishScan(out);
}

} // namespace tp
