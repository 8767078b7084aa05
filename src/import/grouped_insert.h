#pragma once
// The import's rows on their way into the database: batches inside groups, where a group is
// one transaction that holds the write lock for about kImportGroupMs and is then committed.
// Progress is told only after a commit, and a failure leaves the rows before the record at
// fault committed and none from it on.
#include <QElapsedTimer>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <QVector>
#include <functional>

namespace tp {

class cDAO;
class Feedback;

// Longest time a group of rows stays uncommitted, so that other users of the database wait
// no longer than about that.
constexpr int kImportGroupMs = 50;
// Pause after each group before the next one: another program waiting for the write lock
// retries on its own schedule and would miss a lock that is free only for a moment.
constexpr int kImportGapMs = 25;
// Rows given to the database in one call: enough to make a call's cost small per row, few
// enough that a group's time is measured finely.
constexpr int kImportBatchRows = 250;

class GroupedInsert {
public:
    using Row = std::function<QVector<QVariant>(qint32)>;
    // row gives record i's values, one per column; total is the number of records.
    GroupedInsert(cDAO& db, Feedback& fb, const QString& table, const QStringList& columns, Row row, qint32 total)
        : m_db(db), m_fb(fb), m_table(table), m_columns(columns), m_row(std::move(row)), m_total(total)
    {
    }

    qint32 committed() const { return m_committed; }
    // Adds the rows of records from..to (from follows the last row added) to the open group,
    // opening one when needed, and commits the group once it has been open long enough. On a
    // failure the rows before the record at fault are committed, none from it on, the notice
    // is given and false returned.
    bool insert(qint32 from, qint32 to);
    // Commits the open group; on failure all of it is undone and told.
    bool commit();

private:
    bool insertRange(qint32 from, qint32 to);
    bool begin();
    // After a refused batch: the rows since the last commit are tried one at a time. Returns
    // the first refused record (why then holds the reason), or to + 1 when every row went in
    // (the group is then open again).
    qint32 firstRefusedRow(qint32 to, QString& why);
    // Undoes what is not committed and tells the record after the committed ones.
    bool commitFailed();
    bool failed(qint32 record, const QString& why);

    cDAO& m_db;
    Feedback& m_fb;
    QString m_table;
    QStringList m_columns;
    Row m_row;
    qint32 m_total;
    qint32 m_committed = 0;   // rows made durable
    qint32 m_inserted = 0;    // rows added, the open group's included
    bool m_open = false;
    QElapsedTimer m_heldFor;
};

} // namespace tp
