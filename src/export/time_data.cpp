#include "export/time_data.h"

#include "export/availability.h"
#include "foundation/dao.h"
#include "foundation/feedback.h"
#include "foundation/sql_literal.h"

namespace tp {

namespace {

enum Slot {
    SlotId, SlotEmployee, SlotVehicle, SlotFirstName, SlotLastName, SlotDate, SlotTime,
    SlotCustomer, SlotJobIn, SlotTimeIn, SlotJobOut, SlotTimeOut, SlotOdometer, SlotApproved,
    SlotExportId, SlotCount
};

const QString kNoneFound = QStringLiteral("0 Record(s) found");

const WaitingRecordsStyle& style()
{
    static const WaitingRecordsStyle s{
        .table = "JobTimeRecords",
        .employeeColumn = "EmployeeNumber",
        .loadErrorAll = "Cannot read Time Record(s)",
        .previewErrorAll = "Cannot read Time Record(s)",
        .errorDated = "Cannot read Time record(s)",
        .errorStatus = "Error Retrieving Record at # ",
        .noneFound = kNoneFound,
        .datedProgress = true,
        .loadStartStatus = true,
        .yields = true,
        // "20 of " stands whatever the count.
        .previewDone = [](qint64 n) { return QStringLiteral("20 of %1  Record(s) found").arg(n); },
        .loadDone = [](qint64 n) { return QStringLiteral("%1  Record(s) found").arg(n); },
        .datedCondition = "  AND Date >= %1 AND Date <= %2"};
    return s;
}

} // namespace

const SlotTable& TimeAssembler::slotTable()
{
    // The two name slots are looked up by EmployeeNumber.
    static const SlotTable table{
        .names = {"TimeRecordID", "EmployeeNumber", "VehicleNumber", "EmployeeFirstName",
                  "EmployeeLastName", "Date", "Time", "CustomerNumber", "IsJobInRecord", "IsTimeInRecord",
                  "IsJobOutRecord", "IsTimeOutRecord", "OdometerReading", "Approved", "ExportID"},
        .columns = {"NewTimeRecordID", "EmployeeNumber", "VehicleBlock", "EmployeeNumber", "EmployeeNumber",
                    "Date", "Time", "CustomerNumber", "IsJobInRecord", "IsTimeInRecord", "IsJobOutRecord",
                    "IsTimeOutRecord", "OdometerReading", "Approved", "ExportId"},
        .firstNameSlot = SlotFirstName,
        .lastNameSlot = SlotLastName,
        .dateSlot = SlotDate,
        .timeSlot = SlotTime,
        .firstTruthSlot = SlotJobIn,
        .lastTruthSlot = SlotTimeOut};
    return table;
}

TimeAssembler::TimeAssembler(cDAO& db, Feedback& feedback)
    : WaitingRecordsAssembler(db, feedback, slotTable(), style())
{
}

QString TimeAssembler::keyExpression() const
{
    return m_db.isPostgres() ? QStringLiteral("ctid") : QStringLiteral("rowid");
}

QString TimeAssembler::orderBy(bool byDate) const
{
    // Records come in stored order (ordered by date for a range). SQLite's rowid order is the
    // stored order; PostgreSQL moves a row whenever it is updated, so it is ordered by the id.
    if (m_db.isPostgres())
        return byDate ? QStringLiteral(" ORDER BY Date, NewTimeRecordID, ctid")
                      : QStringLiteral(" ORDER BY NewTimeRecordID, ctid");
    return byDate ? QStringLiteral(" ORDER BY Date, rowid") : QString();
}

qint16 TimeAssembler::available(const ExportRequest& request)
{
    qint32 records = 0;
    return avail::TimeRecordsAvailable(m_db, m_feedback, request.exportId, records);
}

qint64 TimeAssembler::mark(const ExportRequest& request, const ExportedRows* rows)
{
    const auto condition = where(request);
    if (!condition)
        return -1;
    const QString update = QStringLiteral("UPDATE JobTimeRecords SET ExportID = ExportID + 1, Approved = 2 ") + *condition;
    const bool postgres = m_db.isPostgres();
    auto scalar = [&](const QString& sql, qint64& out) {
        RecordsetPtr rs = m_db.RecSet_Forward(sql);
        if (!rs || rs->atEnd())
            return false;
        out = rs->value(0).toLongLong();
        m_db.RS_Close(rs);
        return true;
    };
    // Runs one UPDATE over the condition extra and adds the rows it changed to marked.
    qint64 marked = 0;
    auto markWhere = [&](const QString& extra) {
        qint64 n = 0;
        if (postgres || !rows) {
            if (!scalar(QStringLiteral("Select COUNT(*) from JobTimeRecords ") + *condition + extra, n))
                return false;
        }
        m_db.Exec(update + extra);
        if (m_db.appError != 0 || m_db.error_code != 0)
            return false;
        if (!postgres && rows && !scalar(QStringLiteral("SELECT changes()"), n))
            return false;
        marked += n;
        return true;
    };

    if (!rows) {
        if (!m_db.BeginTrans())
            return -1;
        if (!markWhere(QString())) {
            m_db.Rollback();
            return -1;
        }
        if (!m_db.CommitTrans())
            return -1;
        if (marked == 0 && !request.byDate)
            m_feedback.status(kNoneFound);
        return marked;
    }
    if (rows->keys.empty())
        return 0;
    if (!m_db.BeginTrans())
        return -1;
    constexpr std::size_t kChunk = 4000;
    for (std::size_t b = 0; b < rows->keys.size(); b += kChunk) {
        QString in;
        in.reserve(qsizetype(kChunk * 10));
        const std::size_t e = std::min(rows->keys.size(), b + kChunk);
        for (std::size_t k = b; k < e; ++k) {
            if (k > b)
                in += QLatin1Char(',');
            const QVariant& key = rows->keys[k];
            in += postgres ? sql::text(key.toString()) : sql::number(key.toLongLong());
        }
        if (!markWhere(QStringLiteral(" AND ") + keyExpression() + QStringLiteral(" IN (") + in +
                       QLatin1Char(')'))) {
            m_db.Rollback();
            return -1;
        }
    }
    if (!m_db.CommitTrans())
        return -1;
    return marked;
}

} // namespace tp
