#include "delivery/export_marks.h"

#include "foundation/dao.h"

namespace tp {

namespace {
const QString kIdTable = QStringLiteral("tp_exported_ids");
} // namespace

qint64 markExported(cDAO& db, const QString& table, const QString& idColumn,
                    const QString& condition, const std::vector<qint64>* ids)
{
    QString sql = QStringLiteral("UPDATE ") + table +
                  QStringLiteral(" SET ExportID = ExportID + 1, Approved = 2 ") + condition;
    if (ids) {
        if (ids->empty())
            return 0;
        // The ids travel in a temporary table: the statement stays short whatever their number.
        if (!db.FillIdTable(kIdTable, *ids))
            return -1;
        sql += QStringLiteral(" AND ") + idColumn + QStringLiteral(" IN (Select id from ") + kIdTable +
               QLatin1Char(')');
    }
    return db.ExecCount(sql);
}

} // namespace tp
