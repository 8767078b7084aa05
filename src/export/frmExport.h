#pragma once
// The Export window. This file and frmExport.cpp build the window; frmExport_fields.cpp
// holds the data-set choice and the field selection, frmExport_selection.cpp the record
// selection, the calendar and the scan, frmExport_output.cpp the formats, the preview, the
// file and the Cancel/Close button.
#include "export/export_session.h"
#include "ui/grid_adapter.h"
#include "ui/session_window.h"

#include <memory>

class QLabel;
class QLineEdit;
class QListWidget;
class QPushButton;
class QStatusBar;
class QTableWidget;

namespace tp {

class cDAO;
class Feedback;

class frmExport : public ui::SessionWindow {
    Q_OBJECT
public:
    // prompts: receives the window's messages and questions (null: the process-wide sink).
    // dialogs: asks for file names (null: the platform's dialogs).
    frmExport(cDAO& db, QWidget* parent = nullptr, Feedback* prompts = nullptr,
              ui::FileDialog* dialogs = nullptr);
    ~frmExport() override;

    ExportSession& session() { return m_session; }
    Feedback& feedback() { return *m_feedback; }
    ui::FileDialog& fileDialog() { return *m_dialogs; }
    ui::GridAdapter& fields() { return *m_fields; }
    ui::GridAdapter& records() { return *m_records; }
    ui::GridAdapter& preview() { return *m_preview; }
    ui::StatusBarAdapter& statusBar() { return *m_status; }

    // Chooses the data set selected in the list, as Enter or a click on the list does.
    void SelectDataSet();
    // Selects the list item with this text and chooses it; false when the list lacks it.
    bool chooseDataSet(const QString& listText);
    // Ticks or unticks a field row as a click on its box does.
    void clickFieldBox(int row, bool ticked);

    // Shared with the selection, scan and writer stages.
    void ClearRecordGridHeaders();
    void ClearRecordGrid();
    void ClearRowBuffer();
    void ApplyFieldSelection();
    // Copies the session's record grid into fpRecords.
    void showRecordGrid();

    int lastFieldColumn() const { return m_lastFieldColumn; }

    // Record selection and scan (frmExport_selection.cpp).
    void SelectAllRecords();
    void SelectRecordsByDate();
    void PickStartDate();
    void PickStopDate();
    void ScanDatabase();

    // Formats, preview, file, Cancel and Close (frmExport_output.cpp).
    void FormatDateClicked();
    void FormatTimeClicked();
    void PreviewExport();
    void CreateExportFile();
    void CancelExport();
    void CloseExportWindow();
    // Opens the track view on the GPS selection (tracks/frmExport_tracks.cpp).
    void ShowTracks();

    // The date handed to and back from the calendar, "MM/DD/YYYY"; emptied after use.
    QString CalendarResult;
    QString CalendarPurpose;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void buildControls();
    void load();
    void buildDataSetList();
    void showFieldCatalogue();
    void showFieldOrders();
    void ToggleField(int column, int row, int buttonDown);
    void resetSelectionControls();
    void cancelCloseClicked();
    void previewExportClicked();
    void connectSelectionHandlers();
    void connectOutputHandlers();
    // A click into a date box opens the calendar as its button does; true when handled.
    bool dateBoxEvent(QObject* watched, QEvent* event);
    // Shows the calendar for CalendarPurpose; the picked day is left in CalendarResult.
    void showCalendar();
    // The controls as the Cancel button leaves them (the status is left to the caller).
    void applyCancelledControls();
    void setDateBoxesPicking(bool picking);
    // Show Tracks, offered while a scanned GPS selection may be previewed or written.
    QPushButton* buildShowTracks(QWidget* parent);

    ExportSession m_session;

    // Controls, named as the window knows them.
    QListWidget* lstTables = nullptr;
    QLabel* lblSelection = nullptr;
    QTableWidget* fpFields = nullptr;
    QTableWidget* fpRecords = nullptr;
    QTableWidget* previewTextFile = nullptr;
    QLabel* lblFilePreview = nullptr;
    QPushButton* cmdAll = nullptr;
    QPushButton* cmdDate = nullptr;
    QLabel* lblStart = nullptr;
    QLabel* lblStop = nullptr;
    QLineEdit* txtStart = nullptr;
    QLineEdit* txtStop = nullptr;
    QPushButton* cmdStart = nullptr;
    QPushButton* cmdStop = nullptr;
    QPushButton* cmdOK = nullptr;
    QPushButton* cmdFormatDate = nullptr;
    QPushButton* cmdFormatTime = nullptr;
    QPushButton* cmdPreviewExport = nullptr;
    QPushButton* cmdCancelClose = nullptr;
    QPushButton* cmdShowTracks = nullptr;
    QStatusBar* StatBar = nullptr;
    QWidget* m_selectionPanel = nullptr;   // the buttons right of the field grid
    QWidget* m_actionBar = nullptr;        // the buttons under the record grid

    ui::GridAdapter* m_fields = nullptr;
    ui::GridAdapter* m_records = nullptr;
    ui::GridAdapter* m_preview = nullptr;

    int m_lastFieldColumn = 0;
    int m_currentFieldColumn = 0;
    int m_currentFieldRow = 0;
    quint64 m_shownGridRevision = ~quint64(0);
    // Calendar flags: while hidden is true, closing the calendar leaves the result alone.
    bool mbFrmCalendarHidden = false;
    bool CancelFlag = true;
};

} // namespace tp
