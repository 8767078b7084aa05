#pragma once
// Writing a scanned import: the duplicate pass (renumbering with the user's consent, plate
// and name clashes), then one row per record with its columns and defaults, stopping at the
// first record that fails a write-time check. Rows are committed in short groups: a notice,
// a question or a status never tells of a row that is not committed.
#include "import/import_records.h"

namespace tp {

class cDAO;
class Feedback;

struct ImportWriteResult {
    qint16 result = -1;    // 0 success, -1 failure
    qint32 written = 0;    // rows committed
};

// Longest time a group of rows stays uncommitted, so that other users of the database wait
// no longer than about that.
constexpr int kImportGroupMs = 50;
// Pause after each group before the next one: another program waiting for the write lock
// retries on its own schedule and would miss a lock that is free only for a moment.
constexpr int kImportGapMs = 25;

// Rows given to the database in one call: enough to make a call's cost small per row, few
// enough that a group's time is measured finely.
constexpr int kImportBatchRows = 250;

ImportWriteResult WriteImportedRecords(cDAO& db, Feedback& feedback, ImportRecordList& list);

// Today as the eight digits YYYYMMDD that DateAcquired takes.
QString ImportDateAcquired();

} // namespace tp
