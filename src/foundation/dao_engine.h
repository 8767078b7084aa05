#pragma once
// Inside cDAO: one connection to SQLite or PostgreSQL, and the recordsets built on it.
#include "foundation/dao.h"
#include "foundation/jet_sql.h"

#include <QList>
#include <QStringList>
#include <QVector>
#include <memory>
#include <vector>

namespace tp {

// Error numbers of our own, where no engine reports one; Jet's numbers for the same cases.
enum DaoErrorNumber : qint32 {
    ErrNotConnected = 91,       // no database object
    ErrOverflow = 6,
    ErrTypeMismatch = 13,
    ErrNoCurrentRecord = 3021,
    ErrUpdateWithoutEdit = 3020,
    ErrReadOnly = 3027,
    ErrRowDeleted = 3167,
    ErrRowChanged = 3197,
    ErrNotSupported = 3251,
    ErrItemNotFound = 3265,
    ErrConnectFailed = 3151,
};

struct DbError {
    qint32 code = 0;
    QString text;
    void set(qint32 c, const QString& t) { code = c; text = t; }
};

struct ResultRows {
    QStringList names;
    QList<QVector<QVariant>> rows;
};

// One open connection. Statements given to it are already in its dialect.
class Connection : public std::enable_shared_from_this<Connection> {
public:
    virtual ~Connection() = default;
    virtual jet::Dialect dialect() const = 0;
    // The expression that names a row for as long as it is not changed.
    virtual QString rowKeyExpression() const = 0;
    // Placeholder text for a bound row key (PostgreSQL needs the type).
    virtual QString rowKeyParameter() const = 0;
    virtual bool isOpen() const = 0;
    virtual void close() = 0;

    // Runs a statement and copies every row it returns (none for action statements).
    virtual bool query(const QString& sql, const QVector<QVariant>& params, ResultRows& out,
                       DbError& err) = 0;
    virtual bool exec(const QString& sql, DbError& err) = 0;
    // As exec; changed gets the number of rows the statement changed.
    virtual bool execCount(const QString& sql, qint64& changed, DbError& err) = 0;
    // Makes the connection's temporary table `table` (one whole-number column `id`) hold
    // exactly ids (SQLite keeps each value once; a repeat does no harm to an IN list).
    virtual bool fillIdTable(const QString& table, const std::vector<qint64>& ids, DbError& err) = 0;
    // A ForwardOnly recordset streaming the rows.
    virtual RecordsetPtr stream(const QString& sql, DbError& err) = 0;
    // Adds rows (a value per column each) to table; false at the first refusal.
    virtual bool insertRows(const QString& table, const QStringList& columns,
                            const std::vector<QVector<QVariant>>& rows, DbError& err) = 0;
    virtual bool begin(DbError& err) = 0;
    // A transaction that holds the write lock from its start.
    virtual bool beginWrite(DbError& err) { return begin(err); }
    virtual bool commit(DbError& err) = 0;
    virtual bool rollback(DbError& err) = 0;
    virtual qint64 size() = 0;
};

// Rows one at a time; an engine supplies how to fetch the next row and read its cells.
class ForwardRecordset : public Recordset {
public:
    RecordsetKind kind() const override { return RecordsetKind::ForwardOnly; }
    bool atEnd() const override { return m_end; }
    bool atBegin() const override { return m_seen == 0; }
    void moveFirst() override;
    void moveLast() override { notSupported(); }
    void moveNext() override;
    void movePrevious() override { notSupported(); }
    qint32 recordCount() const override { return m_seen; }
    int fieldCount() const override { return int(m_names.size()); }
    QString fieldName(int index) const override { return m_names.value(index); }
    int fieldIndex(const QString& name) const override;
    QVariant value(int index) const override;

protected:
    // Makes the next row current; false at the end or on failure (error in err).
    virtual bool fetchNext(DbError& err) = 0;
    virtual QVariant cell(int index) const = 0;
    // Subclasses call this once their names are known, to read the first row.
    void start();
    QStringList m_names;

private:
    void advance();
    void notSupported();
    qint32 m_seen = 0;
    bool m_end = false;
};

// "INSERT INTO table (a, b) VALUES (?, ?)"; DEFAULT VALUES without columns.
QString insertStatement(const QString& table, const QStringList& columns);

std::shared_ptr<Connection> openSqlite(const QString& path, DbError& err);
std::shared_ptr<Connection> openPostgres(const QString& location, const QString& password,
                                         DbError& err);

// A snapshot, dynaset or optimistic recordset on a Jet statement.
RecordsetPtr openBuffered(const std::shared_ptr<Connection>& conn, const QString& jetSql,
                          RecordsetKind kind, DbError& err);

// What cDAO holds.
class DbEngine {
public:
    std::shared_ptr<Connection> conn;
};

} // namespace tp
