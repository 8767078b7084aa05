#include "export/availability.h"

#include "foundation/dao.h"
#include "foundation/feedback.h"
#include "foundation/sql_literal.h"

namespace tp::avail {

namespace {

enum class Found { Yes, No, Failed };

Found probe(cDAO& db, const QString& sql)
{
    if (db.Records_Exist(sql))
        return Found::Yes;
    // A failed query also answers "no rows"; only the status tells them apart.
    return (db.appError == StatusStat || db.error_code != 0) ? Found::Failed : Found::No;
}

qint16 failed(Feedback& feedback, const QString& firstLine, const QString& detail)
{
    feedback.message(0, detail.isEmpty() ? firstLine : firstLine + QLatin1Char('\r') + detail,
                     kBoxTitle);
    feedback.status(firstLine);
    feedback.busy(false);
    return -1;
}

qint16 waitingRecords(cDAO& db, Feedback& feedback, const QString& table, qint32 exportId,
                      qint32& exportRecordCount, const QString& errorText, bool withDetail)
{
    const QString sql = QStringLiteral("Select top 1 * from ") + table +
                        QStringLiteral(" WHERE ExportID = ") + sql::number(qint64(exportId)) +
                        QStringLiteral(" AND Approved = 1");
    switch (probe(db, sql)) {
    case Found::Yes:
        feedback.status(QString());
        exportRecordCount = 1;
        feedback.busy(false);
        return 1;
    case Found::No:
        feedback.status(kNoRecordsAvailable);
        exportRecordCount = 0;
        feedback.busy(false);
        return 0;
    case Found::Failed:
        break;
    }
    return failed(feedback, errorText, withDetail ? db.errorText : QString());
}

// Whether table holds any row at all. clearStatus: a found row also empties the status bar.
qint16 anyRow(cDAO& db, Feedback& feedback, const QString& table, bool clearStatus,
              const QString& errorText)
{
    switch (probe(db, QStringLiteral("Select top 1 * from ") + table)) {
    case Found::Yes:
        if (clearStatus)
            feedback.status(QString());
        feedback.busy(false);
        return 1;
    case Found::No:
        feedback.status(kNoRecordsAvailable);
        feedback.busy(false);
        return 0;
    case Found::Failed:
        break;
    }
    return failed(feedback, errorText, db.errorText);
}

} // namespace

qint16 LocationRecordsAvailable(cDAO& db, Feedback& feedback)
{
    return anyRow(db, feedback, QStringLiteral("CommonLocations"), false, kErrorLocations);
}

qint16 GpsPointsAvailable(cDAO& db, Feedback& feedback)
{
    feedback.busy(true);
    return anyRow(db, feedback, QStringLiteral("GPSCoordinates"), true, kErrorGps);
}

qint16 TimeRecordsAvailable(cDAO& db, Feedback& feedback, qint32 exportId, qint32& exportRecordCount)
{
    return waitingRecords(db, feedback, QStringLiteral("JobTimeRecords"), exportId,
                          exportRecordCount, kErrorTime, true);
}

qint16 InventoryRecordsAvailable(cDAO& db, Feedback& feedback, qint32 exportId,
                                 qint32& exportRecordCount)
{
    return waitingRecords(db, feedback, QStringLiteral("InventoryHistory"), exportId,
                          exportRecordCount, kErrorInventory, false);
}

} // namespace tp::avail
