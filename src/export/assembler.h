#pragma once
// What every export data set offers the Export window, the save flow and the batch tool:
// availability, count, a first-rows preview, a streamed load and marking as exported.
// Callers describe the selection with a plain ExportRequest; an assembler holds no window state.
#include "export/table_keys.h"

#include <QElapsedTimer>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <vector>

namespace tp {

class cDAO;
class Feedback;
class Recordset;

struct ExportRequest {
    QString table;              // msTableSelected: kTableTime, ...
    qint32 exportId = 0;        // mlExportID
    bool byDate = false;        // both date boxes filled
    QString start, stop;        // YYYYMMDD, used when byDate
    QStringList fields;         // output column field names, in column order (grid header texts)
    bool formatDate = false;    // "Undo Date" showing: Date values as MM/DD/YYYY
    bool formatTime = false;    // "Undo Time" showing: Time values as HH:MM:SS
    std::vector<qint32> trackSubjects;   // TrackSubjects: positions 1 to n when several
    qint32 currentTrackSubject = 0;      // CurrentTrackSubject: the one subject's track
    qint64 scannedCount = -1;            // what the scan counted (ExportRecordCount); -1: unknown
    QString settingsFile;       // "KRV.ini", "lumtrek.ini", ...
};

// The first rows of a selection, as the record grid shows them.
struct PreviewResult {
    bool failed = false;               // the failure has been shown
    int gridRows = 0;                  // rows the grid gets (at most maxRows)
    std::vector<QStringList> rows;     // one cell text per output column; "" for skipped names
    bool dateFilled = false;           // some "Date" cell got a value
    bool timeFilled = false;           // some "Time" cell got a value
};

// The records a load handed out, by their own identity (NewTimeRecordID, InventoryHistoryID),
// so that exactly those are marked afterwards.
struct ExportedRows {
    std::vector<qint64> ids;
};

enum class LoadOutcome {
    Completed,   // every selected record went to the sink
    Cancelled,   // the cancel flag was seen set; status "Cancel"
    Declined,    // the user answered No to the long-export question; cancel flag now set
    Failed,      // a read failed; message and status shown, error holds the message
    Aborted      // the sink refused a record (it reports its own error)
};

struct LoadResult {
    LoadOutcome outcome = LoadOutcome::Failed;
    qint64 count = 0;          // records handed to the sink
    QString error;
    ExportedRows rows;
};

// Receives the records of a load in selection order.
class RecordSink {
public:
    virtual ~RecordSink() = default;
    // Called once, after any question was answered Yes, before the first record (also for an
    // empty selection). total is the number of records expected. false stops the load.
    virtual bool begin(qint64 total) = 0;
    // One text per output column (the data set's getter texts, formatted as requested).
    virtual bool record(const QStringList& values) = 0;
};

class ExportAssembler {
public:
    virtual ~ExportAssembler() = default;
    // 1 records wait, 0 none, -1 the check failed (shown).
    virtual qint16 available(const ExportRequest& request) = 0;
    // Number of selected records; -1 after a failure (shown).
    virtual qint64 count(const ExportRequest& request) = 0;
    // The count "Scan Database" makes. A data set whose scan also loads (map locations) may
    // ask the long-export question there: on No it sets cancel and returns 0.
    virtual qint64 scanCount(const ExportRequest& request, bool& cancel)
    {
        (void)cancel;
        return count(request);
    }
    // The first min(recordCount, maxRows) records for the record grid.
    virtual PreviewResult preview(const ExportRequest& request, qint64 recordCount,
                                  int maxRows = 20) = 0;
    // Streams every selected record to sink, reading the selection afresh (an export of a
    // data set that marks runs with the data set's export lock held, so a second run reads
    // only what the first left). cancel is the owner's flag: tested between records after
    // letting the user interface run; set when the user declines.
    virtual LoadResult load(const ExportRequest& request, RecordSink& sink, bool& cancel) = 0;
    // Marks records as exported (see markExported): with rows, those records that still
    // match the selection; without, every record the selection matches now. Never begins or
    // commits a transaction: the save flow keeps the marks uncommitted until its file is in
    // place. Returns the number marked, -1 after a failure.
    virtual qint64 mark(const ExportRequest& request, const ExportedRows* rows) = 0;
};

// The question before a load of more than 200 records. True to go on (the cancel flag is then
// cleared); false when the user declined (the flag is set).
bool ConfirmLongExport(Feedback& feedback, qint64 total, bool& cancel);

// Lets a long loop report often enough for a person and rarely enough to stay fast:
// due() is true for the first and last item, every 256th, and when 50 ms have passed.
class ProgressThrottle {
public:
    ProgressThrottle() { m_clock.start(); }
    bool due(qint64 i, qint64 n)
    {
        if (i <= 1 || i >= n || (i & 255) == 0 || m_clock.elapsed() >= 50) {
            m_clock.restart();
            return true;
        }
        return false;
    }

private:
    QElapsedTimer m_clock;
};

} // namespace tp
