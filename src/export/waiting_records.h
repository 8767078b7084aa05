#pragma once
// What time and inventory data have in common: records that wait under an export identifier
// (ExportID = id AND Approved = 1, optionally within a date range), read into fixed slots by
// the output columns' field names, with the employee's names looked up once per run of
// records of one employee. The two data sets differ only in their table, slots and texts.
#include "export/assembler.h"
#include "export/lookups.h"

#include <QHash>
#include <functional>
#include <optional>

namespace tp {

inline const QString kLumtrekSettings = QStringLiteral("lumtrek.ini");

// The text of a stored value; nullopt for a null, which the loaders cannot read. truth: a
// yes/no column, written "True" or "False".
std::optional<QString> storedText(const QVariant& v, bool truth);

// A data set's slots: field names in slot order and the table column of each.
struct SlotTable {
    QStringList names;
    QStringList columns;   // per slot; the name slots hold the employee column, "" never read
    int firstNameSlot = -1;
    int lastNameSlot = -1;
    int dateSlot = -1;
    int timeSlot = -1;
    int firstTruthSlot = -1, lastTruthSlot = -2;   // yes/no columns, a closed range

    int slotOf(const QString& fieldName) const { return int(names.indexOf(fieldName)); }
    bool isNameSlot(int slot) const { return slot >= 0 && (slot == firstNameSlot || slot == lastNameSlot); }
    bool isTruthSlot(int slot) const { return slot >= firstTruthSlot && slot <= lastTruthSlot; }
    // The getter: the stored slot text as the file gets it (Date and Time formatted on request).
    QString fieldText(int slot, const QString& stored, bool formatDate, bool formatTime) const;
};

// Where time and inventory differ in what they tell the user and how their loads run.
struct WaitingRecordsStyle {
    QString table;                    // "JobTimeRecords"
    QString idColumn;                 // the record's own identity, by which it is marked
    // PostgreSQL moves a row whenever it is updated, so its order names columns; SQLite reads
    // in stored order (rowid), by date for a range.
    QString postgresOrder, postgresDatedOrder;
    QString markNoneFound;            // status of a marking of all records that found none
    QString employeeColumn;           // whose names are looked up
    QString loadErrorAll;             // load and count failed, all waiting records
    QString previewErrorAll;          // preview failed, all waiting records
    QString errorDated;               // any failure of a date-range selection
    QString errorStatus;              // followed by the record being read (all records only)
    QString noneFound;                // status of an empty selection of all records
    bool datedProgress = false;       // a date-range load shows "Retrieving i"
    bool loadStartStatus = false;     // "Retrieving  ..." before an all-records load
    bool yields = false;              // the load lets the user interface run and can be cancelled
    std::function<QString(qint64)> previewDone;   // status after an all-records preview
    std::function<QString(qint64)> loadDone;      // status after an all-records load
    QString datedCondition;           // " AND Date >= %1 AND Date <= %2" as the data set words it
};

class WaitingRecordsAssembler : public ExportAssembler {
public:
    qint64 count(const ExportRequest& request) override;
    PreviewResult preview(const ExportRequest& request, qint64 recordCount,
                          int maxRows = 20) override;
    LoadResult load(const ExportRequest& request, RecordSink& sink, bool& cancel) override;
    qint64 mark(const ExportRequest& request, const ExportedRows* rows) override;

    Lookups& lookups() { return m_lookups; }

protected:
    WaitingRecordsAssembler(cDAO& db, Feedback& feedback, const SlotTable& slotTable,
                            const WaitingRecordsStyle& style);

    // "WHERE ..." of the selection; nullopt when the dates are not numbers.
    std::optional<QString> where(const ExportRequest& request) const;
    void readFailed(const ExportRequest& request, qint64 index, bool previewing);

    cDAO& m_db;
    Feedback& m_feedback;

private:
    struct CachedEmployee {
        bool found = false;
        QString first, last;
    };
    class Reader;

    // chunk: the next rows of an SQLite load after the position added to condition, with the
    // position's columns. top > 0: only the first top rows.
    QString selectSql(const ExportRequest& request, const Reader& reader,
                      const QString& condition, bool chunk = false, int top = 0) const;
    const CachedEmployee& employee(qint32 number, bool lumtrek);

    const SlotTable& m_slots;
    const WaitingRecordsStyle& m_style;
    Lookups m_lookups;
    QHash<qint32, CachedEmployee> m_employees;   // one pass's look-ups
};



} // namespace tp
