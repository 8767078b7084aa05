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

ImportWriteResult WriteImportedRecords(cDAO& db, Feedback& feedback, ImportRecordList& list);

// The line that ends a notice about record `record`: CR LF and how many records before it
// were processed (with two blanks before "record(s)" where the vehicle notice has them).
QString ImportDoneLine(qint32 record, bool twoBlanks = false);

// Today as the eight digits YYYYMMDD that DateAcquired takes.
QString ImportDateAcquired();

} // namespace tp
