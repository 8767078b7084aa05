#pragma once
// The domain state of one opening of the Export window: the chosen data set, its field rows
// (ticks, order, header texts), the record grid model and the counts the later stages use.
// The window owns the widgets and mirrors this state into them.
#include "export/assembler.h"
#include "export/export_catalogue.h"
#include "delivery/export_job.h"
#include "export/record_grid.h"
#include "export/track_subjects.h"

#include <QString>
#include <QVariant>
#include <functional>
#include <memory>
#include <vector>

namespace tp {

class cDAO;
class Feedback;

inline const QString kCannotReadDatabase = QStringLiteral("Cannot read database.");
inline const QString kRecordNumber = QStringLiteral("Record Number");
inline const QString kSelectionAll = QStringLiteral("All");
inline const QString kSelectionDate = QStringLiteral("Date");
inline const QString kInvalidTimeEntry = QStringLiteral("Reset your time values!Invalid Time Entry.");
inline const QString kCancelStatus = QStringLiteral("Cancel");

// The two limits of a date selection.
enum class DateRange {
    Incomplete,   // a limit is missing
    Valid,        // stop on or after start
    Invalid       // stop before start, or a limit that is no date (the user was told)
};

// How "Scan Database" ended.
struct ScanOutcome {
    enum Kind {
        Found,        // records in the record grid, locked; the file may be previewed
        Cancelled,    // nothing found, a failure or a cancel: the selection was reset; status "Cancel"
        Empty,        // no records counted; status "0  Record(s)"
        Refused       // not scannable now (no assembler, no valid date range); nothing changed
    };
    Kind kind = Refused;
    // The scan reset the selection as the Cancel button does (the window follows suit).
    bool selectionReset = false;
    // The output-format buttons to enable (ticked "Date" and "Time" fields).
    bool dateFormat = false;
    bool timeFormat = false;
};

class ExportSession {
public:
    struct FieldRow {
        QString name;
        QString type;     // "Number", "Text" or "Boolean"
        QString header;   // the "Text File Header"
        bool ticked = false;
        int order = 0;    // position among the ticked fields, 0 when unticked
    };

    struct OutputField {
        QString name;
        QString type;
        QString header;
    };

    ExportSession(cDAO& db, Feedback& feedback);

    cDAO& database() { return m_db; }
    Feedback& feedback() { return m_feedback; }

    // Builds the list of data sets for the signed-in user (empty: none).
    QStringList offeredDataSets();

    // Chooses a data set by its list text: loads the catalogue, runs the availability check,
    // sizes the record grid and the row buffer. False, changing nothing, for a text that
    // names no data set.
    bool selectDataSet(const QString& listText);
    // Tells the user when the check found nothing or failed (the window calls it once it has
    // shown the chosen data set).
    void reportAvailability();

    const ExportDataSet* dataSet() const { return m_dataSet; }
    bool isTimeOrInventory() const;

    // Field rows are numbered from 1, as in the grid.
    int fieldCount() const { return FieldCount; }
    const FieldRow& field(int row) const { return m_fields.at(static_cast<size_t>(row - 1)); }
    QString fieldOrderText(int row) const;   // "Field 3", or "" when unticked
    int tickedCount() const;
    // The row holding the named field, 0 if none.
    int fieldRow(const QString& name) const;

    // A tick (true) gives the row the next order number; an untick closes the gap it leaves.
    // Ignored (false) while the catalogue is being loaded or for a row out of range.
    bool toggleField(int row, bool ticked);
    void setHeaderText(int row, const QString& text);

    // The output columns in order: record grid columns 2 to OutputColumnCount.
    std::vector<OutputField> outputFields() const;

    RecordGrid& recordGrid() { return m_grid; }
    const RecordGrid& recordGrid() const { return m_grid; }

    // Empties header cells 2..OutputColumnCount of the record grid.
    void clearRecordGridHeaders();
    // No rows, no records counted.
    void clearRecordGrid();
    void clearRowBuffer();
    // The ticked fields become the record grid's columns, in their order.
    void applyFieldSelection();

    // Closing the window: back to nothing chosen.
    void reset();

    // ---- Record selection, scan and output formats (export_selection.cpp) ----

    // The data set's assembler; nullptr for a data set without one yet.
    ExportAssembler* assembler();
    // The selection as it stands: dated when both dates are set, fields in output order,
    // formats as switched on.
    ExportRequest request() const;

    // A whole tick or untick as the window does it: the order changes, the date range and
    // output formats are dropped, the record grid is emptied and takes the ticked fields.
    bool tickField(int row, bool ticked);
    // Forgets the date range and switches the output formats off.
    void resetSelection();

    // "Select All Records" / "Select Records by Date". false when the data set has nothing
    // to export: the status then tells the count and nothing changes.
    bool selectAllRecords();
    bool selectRecordsByDate();
    // Date limits as "MM/DD/YYYY" ("" clears one). When both are set and the stop is before
    // the start, or a text is no date, the user is told "Reset your time values!Invalid Time
    // Entry." (a text that is no date is not taken).
    DateRange setStartDate(const QString& date);
    DateRange setStopDate(const QString& date);
    DateRange dateRange() const;
    QString startDate() const { return m_startDate; }
    QString stopDate() const { return m_stopDate; }
    // Both limits are set.
    bool isDated() const { return !m_startDate.isEmpty() && !m_stopDate.isEmpty(); }

    // "Scan Database": counts the selection and puts its first 20 records into the record grid.
    ScanOutcome scanDatabase();

    // ---- GPS subjects (export_selection_gps.cpp) ----

    // Takes what the track-subject window chose; false when nothing was chosen.
    bool chooseTrackSubjects(const TrackSubjectChoice& choice);
    // More than one subject is chosen: the scan and the save go through them in turn.
    bool hasTrackSubjectList() const { return TrackSubjects.size() > 1; }
    // Which output-format buttons a successful scan offers.
    bool tickedField(const QString& name) const;

    // Output formats. On: the grid's Date (Time) cells show MM/DD/YYYY (HH:MM:SS) and the file
    // gets them so; off: the stored numbers come back.
    void FormatGridDates();
    void UndoGridDates();
    void FormatGridTimes();
    void UndoGridTimes();
    void setDateFormat(bool on);
    void setTimeFormat(bool on);
    bool dateFormatOn() const { return m_formatDates; }
    bool timeFormatOn() const { return m_formatTimes; }

    // ---- Preview and file (export_output.cpp) ----

    // Rows of the text-file preview: row 1 the header, then one per record grid row.
    QString previewHeaderLine() const;
    QString previewRecordLine(int gridRow) const;
    int previewGridRows() const;   // min(ExportRecordCount, 20) + 1
    // Builds the preview row by row into show(previewRow, text), letting the user interface
    // run between rows. false when a cancel stopped it (status "Cancel").
    bool previewExport(const std::function<void(int, const QString&)>& show);
    // Writes the file: refuses a read-only file, loads and writes every selected record,
    // and marks time and inventory records once the file is complete.
    ExportJobResult saveExportFile(const QString& fileName,
                                   FileEncoding encoding = FileEncoding::Windows1252);
    // The Cancel button: stops a running loop and drops the selection and the scanned records.
    void cancelExport();
    // The Close button.
    void closeExportWindow();

    // State shared with the selection, scan and writer stages.
    QString msTableSelected;
    qint32 mlExportID = 0;
    int FieldCount = 0;
    int OutputColumnCount = 0;
    qint32 ExportRecordCount = 0;
    qint16 AvailabilityResult = 0;
    qint32 AvailableCount = 0;
    qint32 AllRecordsLimit = 200;
    bool CatalogueReady = false;
    bool CancelRequested = false;
    QString SelectionMode = QStringLiteral("All");
    qint32 StartDateNumber = 0;
    qint32 StopDateNumber = 0;
    qint32 CurrentTrackSubject = 0;
    std::vector<qint32> TrackSubjects;
    // Cell numbers of the record grid's Date and Time columns before formatting; index 0 unused.
    std::vector<qint64> SavedDateNumbers;
    std::vector<qint64> SavedTimeNumbers;
    // Values of the line being written; indices 1 to FieldCount + 1 (index 0 unused).
    std::vector<QVariant> ExportRowBuffer;

private:
    void loadCatalogue();
    qint16 runAvailabilityCheck();
    DateRange setDate(QString& box, qint32& number, const QString& date);
    void formatColumn(const QString& name, std::vector<qint64>& saved, bool on);
    void fillRecordGrid(const PreviewResult& preview);
    // The end every scan shares: the outcome, the status and the locked grid.
    ScanOutcome finishScan(ScanOutcome out);
    ScanOutcome scanGpsDatabase();

    cDAO& m_db;
    Feedback& m_feedback;
    const ExportDataSet* m_dataSet = nullptr;
    std::vector<FieldRow> m_fields;
    RecordGrid m_grid;
    std::unique_ptr<ExportAssembler> m_assembler;
    QString m_startDate, m_stopDate;   // txtStart, txtStop
    bool m_formatDates = false;        // "Undo Date" showing
    bool m_formatTimes = false;        // "Undo Time" showing
};

} // namespace tp
