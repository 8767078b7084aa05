#include "startup/frmFirst_screenshots_gps.h"

#include "export/frmExport.h"
#include "export/frmExportCalendar.h"
#include "export/frmTrackSubjects.h"
#include "export/tracks/frmTrackView.h"

#include <QApplication>
#include <QCalendarWidget>
#include <QDate>
#include <QListWidget>
#include <QPushButton>
#include <QTimer>

namespace tp {

namespace {

// The pickers are modal: act on the next one of kind W once its event loop runs.
template <class W>
void onNextModal(std::function<void(W*)> act)
{
    QTimer::singleShot(0, [act] {
        if (auto* w = qobject_cast<W*>(QApplication::activeModalWidget()))
            act(w);
    });
}

void press(QPushButton* button)
{
    if (button)
        button->click();
}

// Picks the first (or last) day the calendar offers, from the demo data's first month on.
void pickOfferedDay(frmExportCalendar* calendar, bool last)
{
    auto* month = calendar->findChild<QCalendarWidget*>(QStringLiteral("Calendar1"));
    QDate shown(2023, 11, 1);   // the demo database's tracks start in November 2023
    for (int tries = 0; month && tries < 48; ++tries, shown = shown.addMonths(1)) {
        month->setCurrentPage(shown.year(), shown.month());
        QPushButton* chosen = nullptr;
        for (int i = 1; i <= 42; ++i) {
            auto* day = calendar->findChild<QPushButton*>(QStringLiteral("cmdD%1").arg(i));
            if (day && day->isEnabled() && (!chosen || last))
                chosen = day;
        }
        if (chosen) {
            press(chosen);
            break;
        }
    }
    press(calendar->findChild<QPushButton*>(QStringLiteral("cmdReturnDate")));
}

} // namespace

void saveGpsScreenshots(cDAO& db, QWidget* parent, Feedback* prompts, ui::FileDialog* dialogs,
                        const std::function<void(QWidget*, const QString&)>& save)
{
    frmExport window(db, parent, prompts, dialogs);
    if (!window.chooseDataSet(QStringLiteral("GPS Data")))
        return;
    const QStringList fields = {"EmployeeFirstName", "Assigned To", "Unit Identifier", "TrackID",
                                "Date", "Time", "Longitude", "Latitude", "Speed"};
    for (const QString& name : fields)
        if (const int row = window.session().fieldRow(name))
            window.clickFieldBox(row, true);

    onNextModal<frmTrackSubjects>([&save](frmTrackSubjects* subjects) {
        auto* list = subjects->findChild<QListWidget*>(QStringLiteral("lstTrackingSubject"));
        if (list && list->count() > 0)
            list->item(0)->setCheckState(Qt::Checked);   // "All Subjects"
        save(subjects, QStringLiteral("track-subjects.png"));
        press(subjects->findChild<QPushButton*>(QStringLiteral("cmdOk")));
    });
    window.SelectAllRecords();
    if (window.session().CurrentTrackSubject == 0)
        return;
    window.SelectRecordsByDate();
    onNextModal<frmExportCalendar>([](frmExportCalendar* c) { pickOfferedDay(c, false); });
    window.PickStartDate();
    onNextModal<frmExportCalendar>([](frmExportCalendar* c) { pickOfferedDay(c, true); });
    window.PickStopDate();
    window.ScanDatabase();
    // The track view of the scanned selection, read and drawn at once.
    window.ShowTracks();
    if (auto* view = window.findChild<frmTrackView*>()) {
        view->finishNow();
        save(view, QStringLiteral("track-view.png"));
        view->reject();
    }
    window.FormatDateClicked();
    window.FormatTimeClicked();
    window.PreviewExport();
    save(&window, QStringLiteral("export-window-gps-preview.png"));
    window.CancelExport();
    window.close();
}

} // namespace tp
