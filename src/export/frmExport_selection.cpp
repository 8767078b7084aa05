// The Export window's record selection: all records or a date range picked in the calendar,
// and "Scan Database".
#include "export/frmExport.h"

#include "export/frmExportCalendar.h"
#include "export/frmTrackSubjects.h"
#include "foundation/globals.h"
#include "ui/window_support.h"

#include <QLabel>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPushButton>
#include <QTableWidget>

namespace tp {

namespace {
const QString kNoDate = QStringLiteral("00/00/0000");
const QString kStartPurpose = QStringLiteral("Export-Start");
const QString kStopPurpose = QStringLiteral("Export-Stop");
} // namespace

void frmExport::connectSelectionHandlers()
{
    connect(cmdAll, &QPushButton::clicked, this, &frmExport::SelectAllRecords);
    connect(cmdDate, &QPushButton::clicked, this, &frmExport::SelectRecordsByDate);
    connect(cmdStart, &QPushButton::clicked, this, &frmExport::PickStartDate);
    connect(cmdStop, &QPushButton::clicked, this, &frmExport::PickStopDate);
    connect(cmdOK, &QPushButton::clicked, this, &frmExport::ScanDatabase);
    txtStart->installEventFilter(this);
    txtStop->installEventFilter(this);
}

bool frmExport::dateBoxEvent(QObject* watched, QEvent* event)
{
    if ((watched != txtStart && watched != txtStop) || event->type() != QEvent::MouseButtonRelease)
        return false;
    if (static_cast<QMouseEvent*>(event)->button() != Qt::LeftButton)
        return false;
    // The boxes pick dates only while the date selection is open (their buttons enabled).
    if (watched == txtStart && cmdStart->isEnabled())
        PickStartDate();
    else if (watched == txtStop && cmdStop->isEnabled())
        PickStopDate();
    else
        return false;
    return true;
}

void frmExport::setDateBoxesPicking(bool picking)
{
    const QColor color = picking ? QColor(Qt::white) : ui::scrollBarColor(this);
    ui::setBoxColor(txtStart, color);
    ui::setBoxColor(txtStop, color);
}

void frmExport::SelectAllRecords()
{
    if (!m_session.selectAllRecords()) {
        cmdAll->setEnabled(false);
        cmdDate->setEnabled(false);
        return;
    }
    for (QPushButton* b : {cmdOK, cmdPreviewExport, cmdFormatDate, cmdFormatTime})
        b->setEnabled(false);
    txtStart->clear();
    txtStop->clear();
    cmdStart->setEnabled(false);
    cmdStop->setEnabled(false);
    setDateBoxesPicking(false);
    CalendarResult.clear();

    if (cmdAll->text() == kSelectUnit || cmdAll->text() == kSelectEmployee) {
        // GPS subjects are chosen in a window of their own; nothing chosen leaves the buttons
        // as they were.
        m_session.TrackSubjects.clear();
        frmTrackSubjects subjects(m_session.database(), *m_feedback, globals().SettingsFileName, this);
        subjects.exec();
        if (!subjects.choice() || !m_session.chooseTrackSubjects(*subjects.choice()))
            return;
        cmdAll->setEnabled(false);
        cmdDate->setEnabled(true);
        return;
    }

    ClearRecordGrid();
    for (QPushButton* b : {cmdFormatDate, cmdFormatTime, cmdDate, cmdPreviewExport, cmdAll})
        b->setEnabled(false);
    cmdOK->setEnabled(true);
    for (QWidget* w : std::initializer_list<QWidget*>{lblStart, lblStop, cmdStart, cmdStop})
        w->setEnabled(false);
    setDateBoxesPicking(false);
    cmdCancelClose->setVisible(true);
    cmdCancelClose->setText(QStringLiteral("Cancel"));
}

void frmExport::SelectRecordsByDate()
{
    if (!m_session.selectRecordsByDate()) {
        cmdAll->setEnabled(false);
        cmdDate->setEnabled(false);
        return;
    }
    for (QPushButton* b : {cmdFormatDate, cmdFormatTime, cmdPreviewExport, cmdOK})
        b->setEnabled(false);
    if (cmdFormatDate->text() == QLatin1String("Undo Date"))
        cmdFormatDate->setText(QStringLiteral("format Date"));
    if (cmdFormatTime->text() == QLatin1String("Undo Time"))
        cmdFormatTime->setText(QStringLiteral("format Time"));
    fpRecords->setEnabled(false);

    const QString& table = m_session.msTableSelected;
    if (table == kTableTime || table == kTableInventory || table == kTableGps) {
        ClearRecordGrid();
        for (QWidget* w : std::initializer_list<QWidget*>{cmdStart, cmdStop, lblStart, lblStop})
            w->setEnabled(true);
        setDateBoxesPicking(true);
        if (table == kTableGps)
            CalendarResult = kNoDate;
    }
    if (!txtStop->text().isEmpty())
        cmdOK->setVisible(true);
    cmdDate->setEnabled(false);
}

void frmExport::showCalendar()
{
    CalendarContext ctx;
    ctx.purpose = CalendarPurpose;
    ctx.table = m_session.msTableSelected;
    ctx.exportId = m_session.mlExportID;
    ctx.trackSubjects = m_session.TrackSubjects;
    ctx.currentTrackSubject = m_session.CurrentTrackSubject;
    ctx.settingsFile = globals().SettingsFileName;
    ctx.calendarHidden = &mbFrmCalendarHidden;
    mbFrmCalendarHidden = false;
    CancelFlag = true;
    frmExportCalendar cal(m_session.database(), *m_feedback, ctx, CalendarResult, CancelFlag, this);
    cal.exec();
    m_session.CurrentTrackSubject = cal.currentTrackSubject();
}

void frmExport::PickStartDate()
{
    CalendarPurpose = kStartPurpose;
    showCalendar();
    if (!CalendarResult.isEmpty() && CalendarResult != kNoDate)
        txtStart->setText(CalendarResult);
    CalendarResult.clear();

    if (!txtStart->text().isEmpty()) {
        const DateRange range = m_session.setStartDate(txtStart->text());
        txtStart->show();
        if (!txtStop->text().isEmpty())
            cmdOK->setEnabled(range == DateRange::Valid);
        cmdCancelClose->setText(QStringLiteral("Cancel"));
    }
    m_feedback->busy(false);
}

void frmExport::PickStopDate()
{
    CalendarPurpose = kStopPurpose;
    showCalendar();
    if (!CalendarResult.isEmpty() && CalendarResult != kNoDate)
        txtStop->setText(CalendarResult);
    else
        cmdOK->setEnabled(false);
    CalendarResult.clear();

    if (!txtStop->text().isEmpty()) {
        const DateRange range = m_session.setStopDate(txtStop->text());
        txtStop->show();
        if (!txtStart->text().isEmpty()) {
            cmdOK->setEnabled(range == DateRange::Valid);
            if (range == DateRange::Valid)
                cmdAll->setEnabled(false);
        }
        cmdCancelClose->setText(QStringLiteral("Cancel"));
    }
    m_feedback->busy(false);
}

void frmExport::ScanDatabase()
{
    cmdOK->setEnabled(false);
    fpRecords->setEnabled(false);
    fpFields->setEnabled(false);

    const bool dated = m_session.SelectionMode == kSelectionDate;
    if (!dated) {
        ClearRecordGrid();
        for (QWidget* w : std::initializer_list<QWidget*>{cmdFormatDate, cmdFormatTime, lblStart, lblStop,
                                                          cmdStart, cmdStop, cmdDate, cmdOK})
            w->setEnabled(false);
        setDateBoxesPicking(false);
    } else {
        for (QPushButton* b : {cmdAll, cmdStart, cmdStop})
            b->setEnabled(false);
    }
    cmdCancelClose->setText(QStringLiteral("Cancel"));
    cmdCancelClose->setVisible(true);

    const ScanOutcome out = m_session.scanDatabase();
    if (out.selectionReset)
        applyCancelledControls();
    switch (out.kind) {
    case ScanOutcome::Found:
        fpRecords->setEnabled(true);
        for (QPushButton* b : {cmdOK, cmdStart, cmdStop})
            b->setEnabled(false);
        cmdPreviewExport->setEnabled(true);
        cmdCancelClose->setVisible(true);
        if (out.dateFormat)
            cmdFormatDate->setEnabled(true);
        if (out.timeFormat)
            cmdFormatTime->setEnabled(true);
        break;
    case ScanOutcome::Cancelled:
        ClearRecordGrid();
        cmdStart->setEnabled(false);
        cmdStop->setEnabled(false);
        break;
    case ScanOutcome::Empty:
        cmdAll->setEnabled(true);
        break;
    case ScanOutcome::Refused:
        // Nothing ran: the selection stays as it was.
        cmdOK->setEnabled(true);
        fpRecords->setEnabled(true);
        fpFields->setEnabled(true);
        break;
    }
    showRecordGrid();
}

} // namespace tp
