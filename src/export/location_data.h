#pragma once
// "Map Locations Data" ("KRV.ini") and "Pinpoint Data" (any other settings file): every row of
// CommonLocations, without approval, export identifier or date range. The two differ in the
// names of their first two fields and in BranchNumber, which only map locations carry.
//
// The scan of map locations loads the rows and keeps LocationNumber, LocationName and
// BranchNumber; the save reads the table again as pinpoints do and takes those three fields
// from what the scan kept, row by row. A map location file therefore carries the three
// fields as the scan saw them.
#include "export/assembler.h"

#include <array>

namespace tp {

class LocationAssembler : public ExportAssembler {
public:
    // Field names in slot order (slots 0 to 9) of each data set; pinpoints have no slot 9.
    static const QStringList& mapLocationFields();
    static const QStringList& pinpointFields();
    // The slot of a field name of either data set (the getter's rule); -1 for other names.
    static int slotOf(const QString& fieldName);

    LocationAssembler(cDAO& db, Feedback& feedback);

    qint16 available(const ExportRequest& request) override;
    // The rows of the table. Pinpoints: an empty table is a failure, as the count always was.
    qint64 count(const ExportRequest& request) override;
    // Map locations: the scan's load (the question over 200 rows, the kept fields, "No records
    // found." for an empty table); pinpoints: the count.
    qint64 scanCount(const ExportRequest& request, bool& cancel) override;
    PreviewResult preview(const ExportRequest& request, qint64 recordCount,
                          int maxRows = 20) override;
    // Streams every row; never asks and cannot be cancelled.
    LoadResult load(const ExportRequest& request, RecordSink& sink, bool& cancel) override;
    // Locations are never marked.
    qint64 mark(const ExportRequest& request, const ExportedRows* rows) override;

private:
    // The three map location fields only the scan fills, per row from 1.
    using Kept = std::array<QString, 3>;

    qint64 loadMapLocations(const ExportRequest& request, bool& cancel);
    qint64 rowCount();
    void failed(const QString& message, qint64 index);

    cDAO& m_db;
    Feedback& m_feedback;
    std::vector<Kept> m_kept;   // index 0 is row 1
};

} // namespace tp
