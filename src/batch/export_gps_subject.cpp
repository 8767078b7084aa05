// "GPS Data" on the command line: --subject chooses in the same subject list the track-subject
// window shows, "all" as "All Subjects", a track id as the entry that stands for that track.
#include "batch/batch_commands.h"

#include "batch/console_feedback.h"
#include "export/export_session.h"
#include "foundation/globals.h"

namespace tp::batch {

bool chooseGpsSubjects(ExportSession& session, const Options& options, ConsoleFeedback& feedback)
{
    // "Select Employee" / "Select Unit" first drops any earlier choice.
    if (!session.selectAllRecords())
        return false;
    session.TrackSubjects.clear();
    TrackSubjectList subjects;
    if (!subjects.load(session.database(), feedback, globals().SettingsFileName))
        return false;
    int entry = 0;   // "All Subjects"
    if (options.subject != QLatin1String("all")) {
        entry = subjects.entryOfTrack(options.subject.toInt());
        if (entry < 0) {
            feedback.status(QString());
            feedback.note(QStringLiteral("Track %1 stands for no subject; the subjects' tracks are the "
                                         "earliest track of each employee and vehicle.")
                              .arg(options.subject));
            return false;
        }
    }
    const auto choice = subjects.accept(entry, feedback);
    if (!choice || !session.chooseTrackSubjects(*choice)) {
        feedback.status(QString());
        feedback.note(QStringLiteral("There is no track activity to export."));
        return false;
    }
    return true;
}

} // namespace tp::batch
