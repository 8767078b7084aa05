#pragma once
// The domain state of one opening of the Import window: the chosen data set and its grid
// rows (ticks), the selection, the scan of a file with its record list and report, the
// confirmation sample and the writing. The window mirrors this state into its widgets; the
// batch tool drives the same calls without a window.
#include "import/import_records.h"
#include "import/import_specs.h"
#include "import/scan_report.h"

#include <QString>
#include <QStringList>
#include <optional>
#include <vector>

namespace tp {

class cDAO;
class Feedback;

inline const QString kScanGettingData = QStringLiteral("Getting Data to Import");
inline const QString kScanReady = QStringLiteral("Text File is ready to be imported.");
inline const QString kImportErrorStatus = QStringLiteral("Error Importing File. Check your file");
inline const QString kImportCancelDuplicate = QStringLiteral("Cancel Importing File. Duplicate Value");
inline const QString kFileDoesNotExist = QStringLiteral("File does not exist : ");

// How OK (the scan) ended.
struct ImportScanOutcome {
    enum Kind {
        Accepted,      // every line passed: the sample is in formatText(), Import is offered
        Fault,         // the report for `result` was shown; the file-choice controls return
        MissingFile,   // "File does not exist : " was shown
        Refused        // no data set chosen: nothing happened
    };
    Kind kind = Refused;
    qint16 result = 0;   // the scan result the report was built from (Fault)
    QString report;      // the message shown (Fault and MissingFile)
};

// How "Import to Database" ended.
struct ImportWriteOutcome {
    qint16 result = -1;   // 0 success, -1 failure, 7 (kept for its status text)
    QString status;       // the status text shown
    qint32 written = 0;   // rows committed by this import
    bool succeeded() const { return result == 0; }
};

class ImportSession {
public:
    ImportSession(cDAO& db, Feedback& feedback);

    cDAO& database() { return m_db; }
    Feedback& feedback() { return m_feedback; }

    // The list texts offered to the signed-in user; empty when none.
    QStringList offeredDataSets() const;

    // Chooses a data set: fills the grid rows from its specifications (asking once whether a
    // branch exists), rebuilds the selection and resets the import state. False, changing
    // nothing, for a text that names no data set.
    bool selectDataSet(const QString& listText);
    bool selectDataSet(ImportDataType type);
    std::optional<ImportDataType> dataType() const { return m_type; }
    const ImportDataSetInfo* dataSet() const;
    // Back to no data set ("Change Data Type").
    void clearDataSet();

    // The grid rows in grid order (FieldSpec::row is the 1-based grid row).
    const std::vector<FieldSpec>& rows() const { return m_rows; }
    int rowCount() const { return int(m_rows.size()); }
    // The row holding a field name (compared without regard to case), 0 when none.
    int rowOf(const QString& name) const;

    // A tick click on grid row `row`: a required row stays ticked. Resets the import state
    // and rebuilds the selection. False for a row out of range.
    bool setTicked(int row, bool ticked);
    // The click on the tick column's heading: ticks or unticks every optional row (required
    // rows stay ticked). Like the window, it does not rebuild the selection by itself.
    void toggleAllTicks();
    // The ticked names in grid order, and txtFormat's line for them.
    void rebuildSelection();
    const ImportSelection& selection() const { return m_selection; }

    // What txtFormat shows: empty, the selection line, or after an accepted scan the
    // confirmation sample.
    QString formatText() const { return m_formatText; }

    // Empties txtFormat and the record list; the Import button goes off.
    void resetImportState();

    // OK: reads `fileName` line by line, checks the headings and every value, and on a
    // clean scan builds the confirmation sample. Faults are reported through the feedback
    // with the report's message; progress goes to the status text.
    ImportScanOutcome scanFile(const QString& fileName);

    // The scanned records waiting to be written (0 after a success or when none).
    qint32 lastRecordNumber() const { return m_list.lastRecord; }
    bool readyToImport() const { return m_list.lastRecord > 0; }
    const ImportRecordList& records() const { return m_list; }

    // Import to Database: the duplicate pass (its questions through the feedback), then the
    // rows one after the other; a row failing a write-time check stops the import with its
    // notice, the rows before it staying written. `fileTitle` is the file's bare name for the
    // success status "Importing File ''name'' Completed Successfully".
    ImportWriteOutcome importToDatabase(const QString& fileTitle);

    // The Cancel button after a scan: the scanned file is abandoned.
    void abandonScan();

private:
    cDAO& m_db;
    Feedback& m_feedback;
    std::optional<ImportDataType> m_type;
    std::vector<FieldSpec> m_rows;
    bool m_toggleMark = false;   // the heading click's toggle mark
    ImportSelection m_selection;
    QString m_formatText;
    ImportRecordList m_list;
};

} // namespace tp
