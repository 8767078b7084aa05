#pragma once
// The track-subject window: a check-box list of the employee-vehicle pairings of the track
// table, "All Subjects" first; OK hands the choice back, Cancel leaves it as it was.
#include "export/track_subjects.h"

#include <QDialog>
#include <optional>

class QLabel;
class QListWidget;
class QListWidgetItem;
class QPushButton;

namespace tp {

class cDAO;
class Feedback;

class frmTrackSubjects : public QDialog {
    Q_OBJECT
public:
    frmTrackSubjects(cDAO& db, Feedback& feedback, const QString& settingsFile,
                     QWidget* parent = nullptr);
    ~frmTrackSubjects() override;

    // What OK chose; empty after Cancel or while the window is open.
    const std::optional<TrackSubjectChoice>& choice() const { return m_choice; }
    const TrackSubjectList& subjects() const { return m_subjects; }

private:
    void buildControls();
    void itemChanged(QListWidgetItem* item);
    void okClicked();

    Feedback& m_feedback;
    TrackSubjectList m_subjects;
    std::optional<TrackSubjectChoice> m_choice;
    bool m_checking = false;

    QLabel* Label1 = nullptr;
    QListWidget* lstTrackingSubject = nullptr;
    QPushButton* cmdOk = nullptr;
    QPushButton* cmdCancel = nullptr;
};

} // namespace tp
