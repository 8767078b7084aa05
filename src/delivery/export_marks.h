#pragma once
// Marking exported time and inventory records, the same way for every data set that marks.
#include <QString>
#include <vector>

namespace tp {

class cDAO;

// ExportID one higher and Approved 2 for the records of table whose identity (idColumn) is
// in ids and that still match the selection (condition, "WHERE ..."): a record edited since
// it was read is still marked, and one that no longer waits, or that took the place of a
// deleted one, is not. Without ids: every record the condition matches. One statement, so it
// holds as a whole; the caller may keep it in a longer transaction. Returns the number of
// records marked, -1 after a failure (the database's error is in db).
qint64 markExported(cDAO& db, const QString& table, const QString& idColumn,
                    const QString& condition, const std::vector<qint64>* ids);

} // namespace tp
