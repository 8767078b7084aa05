#pragma once
// cDAO: the one way to the primary database. Takes Jet SQL texts and runs them on an
// SQLite file (C API) or a PostgreSQL server (QtSql QPSQL), chosen by the location.
#include <QString>
#include <QStringList>
#include <QVariant>
#include <QVector>
#include <functional>
#include <memory>
#include <vector>

namespace tp {

class Connection;
class DbEngine;
struct DbError;

enum class RecordsetKind {
    Snapshot,    // read-only static copy, both directions, exact count
    Dynaset,     // as snapshot plus add/edit/update of the single underlying table
    Optimistic,  // dynaset whose update fails if the row changed since it was read
    ForwardOnly  // streamed, read-only, moveNext only: for long exports
};

class Recordset {
public:
    virtual ~Recordset() = default;
    virtual RecordsetKind kind() const = 0;

    virtual bool atEnd() const = 0;     // EOF
    virtual bool atBegin() const = 0;   // BOF
    virtual void moveFirst() = 0;
    virtual void moveLast() = 0;
    virtual void moveNext() = 0;
    virtual void movePrevious() = 0;
    virtual qint32 recordCount() const = 0;   // exact for all but ForwardOnly (rows seen so far)

    virtual int fieldCount() const = 0;
    virtual QString fieldName(int index) const = 0;
    // Field lookup ignores letter case. Unknown name: invalid QVariant and lastError set.
    virtual int fieldIndex(const QString& name) const = 0;
    virtual QVariant value(int index) const = 0;
    QVariant value(const QString& name) const { return value(fieldIndex(name)); }

    // Dynaset kinds only; false (with lastError set) on other kinds or on failure.
    virtual bool addNew() { return refuse(); }
    virtual bool edit() { return refuse(); }
    virtual bool setValue(const QString& /*name*/, const QVariant& /*v*/) { return refuse(); }
    // Writes the pending add or edit. Optimistic: fails with an engine error if another
    // connection changed or deleted the row since it was read; nothing is overwritten.
    virtual bool update() { return refuse(); }
    virtual void cancelUpdate() {}

    qint32 lastError() const { return m_error; }
    QString lastErrorText() const { return m_errorText; }

protected:
    bool refuse();
    mutable qint32 m_error = 0;
    mutable QString m_errorText;
};

using RecordsetPtr = std::unique_ptr<Recordset>;

// Status codes left in appError.
enum DaoStatus : qint16 {
    StatusConnect = 10, StatusExec = 20, StatusStat = 30, StatusDyn = 31, StatusOpt = 32,
    StatusBackupOpen = 98, StatusBackupBad = 99
};

class cDAO {
public:
    cDAO();
    ~cDAO();
    cDAO(const cDAO&) = delete;
    cDAO& operator=(const cDAO&) = delete;

    RecordsetPtr RecSet_Stat(const QVariant& sSQL);
    RecordsetPtr RecSet_Dyn(const QVariant& sSQL);
    RecordsetPtr RecSet_Opt(const QVariant& sSQL);
    RecordsetPtr RecSet_Idle(const QVariant& sSQL);
    QVariant MaxID_Value(const QString& sTBLname, const QString& sIDname);
    bool Records_Exist(const QVariant& sSQL);
    qint32 Reco_Count(const QVariant& sSQL);
    void Exec(const QVariant& sSQL);
    void ExecUnique(const QVariant& sSQL);
    // sAccess_Path: an SQLite file path, or a PostgreSQL URL (see pg_location.h; sPwd is the
    // password unless the location carries one).
    bool DB_Connect(const QString& sAccess_Path, const QString& sSpace, const QString& sUser,
                    const QString& sPwd);
    void DB_Close();
    void RS_Close(RecordsetPtr& objRS);
    qint32 DB_Size();
    bool DB_Backup(const QString& sSrcPath, const QString& sNewDatabasePath);

    // Beyond the old interface: streamed reading and explicit transactions for bulk work.
    RecordsetPtr RecSet_Forward(const QVariant& sSQL);   // status 30 on failure
    bool BeginTrans();
    // BeginTrans that takes the write lock at once (SQLite's BEGIN IMMEDIATE): a group of
    // writes then never finds the lock taken half-way, and its holding time starts here.
    bool BeginWriteTrans();
    bool CommitTrans();
    void Rollback();
    bool isPostgres() const;
    // Exec that tells how many rows the statement changed; -1 after a failure (status 20).
    qint64 ExecCount(const QVariant& sSQL);
    // Fills the connection's temporary table `table` (column `id`) with ids, replacing what it
    // held, so that a statement can select by a long list of ids without spelling it out.
    bool FillIdTable(const QString& table, const std::vector<qint64>& ids);
    // Adds rows to table, each row a value per column, in order. The statement is prepared
    // once (SQLite) or carries many rows (PostgreSQL), so bulk writing costs no recordset per
    // row. Values are bound or quoted by the engine, never pasted. False when the database
    // refuses a row (status 20); which row is not told, and on PostgreSQL the open
    // transaction is then spoilt.
    bool InsertRows(const QString& table, const QStringList& columns, const std::vector<QVector<QVariant>>& rows);

    qint32 error_code = 0;
    qint16 appError = 0;
    QString errorText;          // the engine's description of the last failure
    bool mbDatabaseIsOpen = false;
    QString databaseFile;
    qint32 databaseSize = 0;

    // The error notification: raised with (error_code, appError) on every failure.
    std::function<void(qint32&, qint16&)> onError;

private:
    RecordsetPtr open(const QVariant& sql, RecordsetKind kind, qint16 status);
    void clearStatus();
    void fail(qint16 status, qint32 code, const QString& text);
    // The open connection after clearing the status; nullptr (and status 20) when closed.
    Connection* connection();
    // Runs op on the open connection; its failure becomes status 20.
    bool onConnection(const std::function<bool(Connection&, DbError&)>& op);
    std::unique_ptr<DbEngine> m_engine;
};

// Start-up: connects SharedDatabase() to PrimaryDatabasePath + PrimaryDatabaseName with user
// "Admin" and DatabasePassword. Returns false after showing "Cannot open the database":
// the caller ends the program. A second call does nothing and returns true.
bool OpenPrimaryDatabase();
// The engine's reason why the last OpenPrimaryDatabase failed (no password in it); empty after
// a success.
QString PrimaryOpenError();

} // namespace tp
