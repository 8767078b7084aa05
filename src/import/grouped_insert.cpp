#include "import/grouped_insert.h"

#include "foundation/dao.h"
#include "foundation/feedback.h"
#include "import/import_writer.h"

#include <QThread>

namespace tp {


bool GroupedInsert::insertRange(qint32 from, qint32 to)
{
    std::vector<QVector<QVariant>> rows;
    rows.reserve(size_t(to - from + 1));
    for (qint32 i = from; i <= to; ++i)
        rows.push_back(m_row(i));
    return m_db.InsertRows(m_table, m_columns, rows);
}

bool GroupedInsert::begin()
{
    if (!m_db.BeginWriteTrans())
        return false;
    m_open = true;
    m_heldFor.start();
    return true;
}

bool GroupedInsert::insert(qint32 from, qint32 to)
{
    if (!m_open && !begin())
        return failed(from, m_db.errorText);
    if (insertRange(from, to)) {
        m_inserted = to;
    } else {
        // Which row was refused is not told, and PostgreSQL has spoilt the group: it is undone
        // and its rows are tried again one at a time to find the record at fault.
        QString why = m_db.errorText;
        m_db.Rollback();
        m_open = false;
        m_inserted = m_committed;
        const qint32 bad = firstRefusedRow(to, why);
        if (bad <= to) {
            if (bad > m_committed + 1) {
                if (!begin() || !insertRange(m_committed + 1, bad - 1))
                    return commitFailed();
                m_inserted = bad - 1;
                if (!commit())
                    return false;
            }
            return failed(bad, why);
        }
    }
    if (m_heldFor.elapsed() < kImportGroupMs)
        return true;
    if (!commit())
        return false;
    // SQLite has no queue for its lock: another program polls for it on its own schedule
    // and needs it free for a moment to get in. The server's row locks need no such gap.
    if (!m_db.isPostgres())
        QThread::msleep(kImportGapMs);
    return true;
}

qint32 GroupedInsert::firstRefusedRow(qint32 to, QString& why)
{
    const qint32 from = m_committed + 1;
    if (!begin()) {
        why = m_db.errorText;
        return from;
    }
    for (qint32 i = from; i <= to; ++i)
        if (!insertRange(i, i)) {
            why = m_db.errorText;
            m_db.Rollback();
            m_open = false;
            return i;
        }
    m_inserted = to;
    return to + 1;
}

bool GroupedInsert::commit()
{
    if (!m_open)
        return true;
    m_open = false;
    if (!m_db.CommitTrans())
        return commitFailed();
    m_committed = m_inserted;
    m_fb.progress(m_committed, m_total);
    return true;
}

bool GroupedInsert::commitFailed()
{
    const QString why = m_db.errorText;
    m_db.Rollback();
    m_open = false;
    m_inserted = m_committed;
    return failed(m_committed + 1, why);
}

bool GroupedInsert::failed(qint32 record, const QString& why)
{
    m_fb.message(1, QStringLiteral("Record # ") + QString::number(record) + QStringLiteral(" could not be saved: ") +
                        why + ImportDoneLine(record),
                 kBoxTitle);
    return false;
}

} // namespace tp
