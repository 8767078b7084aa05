#pragma once
// The subjects of a GPS export: each employee-vehicle pairing of the track table once, standing
// for its earliest track, and what choosing one (or all) leaves for the Export window.
#include <QString>
#include <optional>
#include <vector>

namespace tp {

class cDAO;
class Feedback;

inline const QString kAllSubjects = QStringLiteral("All Subjects");
inline const QString kTooManyTracks = QStringLiteral(
    "There are more than 2500 tracks to display.  You must purge some data in order to view.");
inline const QString kTrackActivityNotAvailable = QStringLiteral("Track activity not available.");
inline const QString kNoTrackActivity = QStringLiteral("There is no track activity to present.");
inline const QString kUnassignedIndividual = QStringLiteral("UnAssigned Individual");
inline const QString kUnassignedTracker = QStringLiteral("UnAssigned Tracker");
inline const QString kPleaseMakeASelection = QStringLiteral("Please Make a Selection");
inline const QString kCannotReadTracks = QStringLiteral("Cannot read track activity.");
// A track table this long is not listed (the limit itself is refused).
constexpr qint64 kTrackListLimit = 2500;

struct TrackSubjectEntry {
    QString text;
    qint32 trackId = 0;   // the item data: the pairing's earliest track; 0 for the other entries
};

// What OK leaves for the Export window. After one subject: CurrentTrackSubject is its track and
// TrackSubjects holds it at position 0. After "All Subjects": CurrentTrackSubject is the number
// of subjects n and TrackSubjects positions 1 to n hold their tracks (position 0 unused).
struct TrackSubjectChoice {
    qint32 CurrentTrackSubject = 0;
    std::vector<qint32> TrackSubjects;
};

class TrackSubjectList {
public:
    // Fills the entries for the settings file: "lumtrek.ini" shows employee Name and vehicle
    // VehicleIdentifier, any other file FirstName and LicenseNumber. False after a refusal or
    // a failed read (both told); the entries then say why.
    bool load(cDAO& db, Feedback& feedback, const QString& settingsFile);

    const std::vector<TrackSubjectEntry>& entries() const { return m_entries; }
    // The entry that stands for this track; -1 when none does.
    int entryOfTrack(qint32 trackId) const;
    // OK with the entry at index checked (-1: none, which is told and gives nothing).
    std::optional<TrackSubjectChoice> accept(int checked, Feedback& feedback) const;

private:
    std::vector<TrackSubjectEntry> m_entries;
    int m_subjects = 0;   // entries 1 to m_subjects are pairings
};

} // namespace tp
