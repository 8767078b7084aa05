#pragma once
// The domain state of one opening of the Export window: the chosen data set, its field rows
// (ticks, order, header texts), the record grid model and the counts the later stages use.
// The window owns the widgets and mirrors this state into them.
#include "export/export_catalogue.h"
#include "export/record_grid.h"

#include <QString>
#include <QVariant>
#include <vector>

namespace tp {

class cDAO;
class Feedback;

inline const QString kCannotReadDatabase = QStringLiteral("Cannot read database.");
inline const QString kRecordNumber = QStringLiteral("Record Number");

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
    // Values of the line being written; indices 1 to FieldCount + 1 (index 0 unused).
    std::vector<QVariant> ExportRowBuffer;

private:
    void loadCatalogue();
    qint16 runAvailabilityCheck();

    cDAO& m_db;
    Feedback& m_feedback;
    const ExportDataSet* m_dataSet = nullptr;
    std::vector<FieldRow> m_fields;
    RecordGrid m_grid;
};

} // namespace tp
