#pragma once
// "GPS Data": the usable points of the tracks of one subject (an employee with a vehicle) or of
// several, in a date range. A subject is named by one of its tracks; it stands for every track
// of its pairing in the range, in TrackingDate order, each track's points in RcvDate, RcvTime
// order. A fix whose longitude or latitude is -1 is never counted, shown or exported.
#include "export/assembler.h"
#include "export/lookups.h"

#include <QHash>
#include <optional>

namespace tp {

inline const QString kNoTrackForEmployee = QStringLiteral("Could not obtain the track for this employee");

class GpsAssembler : public ExportAssembler {
public:
    // The 18 slots' field names; slot 6 has none.
    static const QStringList& fieldNames();
    // Slot of a field name (case counts); -1 for a name the data set does not know.
    static int slotOf(const QString& fieldName);
    // The getter: a stored slot text as the file gets it (Date and Time formatted on request).
    static QString fieldText(int slot, const QString& stored, bool formatDate, bool formatTime);
    // More than one subject is chosen ("All Subjects"): TrackSubjects positions 1 to n.
    static bool hasSubjectList(const ExportRequest& request);
    // The tracks that name the request's subjects, in order.
    static std::vector<qint32> subjectTracks(const ExportRequest& request);

    GpsAssembler(cDAO& db, Feedback& feedback);

    qint16 available(const ExportRequest& request) override;
    // All subjects' points; with no subject list, a current track below 1 is told and counts 0.
    qint64 count(const ExportRequest& request) override;
    PreviewResult preview(const ExportRequest& request, qint64 recordCount,
                          int maxRows = 20) override;
    // Streams every subject's points in order; more than 200 points (the scan's count when the
    // request has one) ask first. A subject of a
    // list whose track is gone is told ("There are no records to obtain for ...") and skipped.
    LoadResult load(const ExportRequest& request, RecordSink& sink, bool& cancel) override;
    // GPS points carry no export mark.
    qint64 mark(const ExportRequest& request, const ExportedRows* rows) override;

    // The points of the subject named by track in the request's range; -1 after a failure.
    qint64 countSubject(const ExportRequest& request, qint32 track);
    // Appends the subject's points to preview until it holds maxRows rows (gridRows follows).
    // False after a failure (shown).
    bool previewSubject(const ExportRequest& request, qint32 track, qint64 recordCount,
                        PreviewResult& preview, int maxRows = 20);

    Lookups& lookups() { return m_lookups; }

    // A subject's pairing and its tracks in the range (the track picture reads the same).
    struct Subject {
        bool failed = false;
        bool found = false;   // the naming track has a row
        qint32 employee = 0, vehicle = 0;
        std::vector<qint32> tracks;
    };
    Subject selectSubject(const ExportRequest& request, qint32 track);

private:
    // The per-subject values of the name and vehicle slots.
    struct SubjectTexts {
        QString first, last, license, unit, vehicle;
    };
    class Reader;

    SubjectTexts subjectTexts(const ExportRequest& request, const Subject& subject,
                              const Reader& reader);
    std::optional<qint64> countTrack(qint32 track);
    void readFailed(qint64 index);
    void tellNoRecords(const ExportRequest& request, qint32 track);

    cDAO& m_db;
    Feedback& m_feedback;
    Lookups m_lookups;
    QHash<qint64, std::pair<QString, QString>> m_employees;   // name look-ups, by number and file
};

} // namespace tp
