#include "foundation/dao.h"

#include "foundation/conversions.h"
#include "foundation/dao_engine.h"
#include "foundation/feedback.h"
#include "foundation/globals.h"
#include "foundation/pg_location.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace tp {

bool Recordset::refuse()
{
    m_error = ErrReadOnly;
    m_errorText = QStringLiteral("Cannot update. Database or object is read-only.");
    return false;
}

cDAO::cDAO() : m_engine(std::make_unique<DbEngine>()) {}

cDAO::~cDAO()
{
    if (m_engine->conn)
        m_engine->conn->close();
}

void cDAO::clearStatus()
{
    error_code = 0;
    appError = 0;
    errorText.clear();
}

void cDAO::fail(qint16 status, qint32 code, const QString& text)
{
    error_code = code;
    appError = status;
    errorText = text;
    if (onError)
        onError(error_code, appError);
}

RecordsetPtr cDAO::open(const QVariant& sql, RecordsetKind kind, qint16 status)
{
    clearStatus();
    if (!m_engine->conn || !m_engine->conn->isOpen()) {
        fail(status, ErrNotConnected, QStringLiteral("The database is not open."));
        return nullptr;
    }
    DbError err;
    RecordsetPtr rs = kind == RecordsetKind::ForwardOnly
                          ? m_engine->conn->stream(jet::translate(sql.toString(), m_engine->conn->dialect()), err)
                          : openBuffered(m_engine->conn, sql.toString(), kind, err);
    if (!rs)
        fail(status, err.code, err.text);
    return rs;
}

RecordsetPtr cDAO::RecSet_Stat(const QVariant& sSQL) { return open(sSQL, RecordsetKind::Snapshot, StatusStat); }
RecordsetPtr cDAO::RecSet_Dyn(const QVariant& sSQL) { return open(sSQL, RecordsetKind::Dynaset, StatusDyn); }
RecordsetPtr cDAO::RecSet_Opt(const QVariant& sSQL) { return open(sSQL, RecordsetKind::Optimistic, StatusOpt); }
RecordsetPtr cDAO::RecSet_Forward(const QVariant& sSQL)
{
    return open(sSQL, RecordsetKind::ForwardOnly, StatusStat);
}

RecordsetPtr cDAO::RecSet_Idle(const QVariant& sSQL)
{
    // Every recordset reads afresh from the database, so there is no cache to refresh.
    return RecSet_Opt(sSQL);
}

QVariant cDAO::MaxID_Value(const QString& sTBLname, const QString& sIDname)
{
    RecordsetPtr rs = RecSet_Stat(QStringLiteral("Select max(") + sIDname + QStringLiteral(") as maxim from ") + sTBLname);
    if (!rs)
        return QVariant();
    const QVariant maxim = rs->value(QStringLiteral("maxim"));
    RS_Close(rs);
    if (maxim.isNull())
        return QVariant(qint64(1));
    switch (maxim.typeId()) {
    case QMetaType::LongLong:
        return QVariant(maxim.toLongLong() + 1);
    case QMetaType::Double:
        return QVariant(maxim.toDouble() + 1);
    default: {
        // A number kept as text counts as the number it spells.
        bool ok = false;
        const qint64 whole = maxim.toString().trimmed().toLongLong(&ok);
        if (ok)
            return QVariant(whole + 1);
        const double real = maxim.toString().trimmed().toDouble(&ok);
        if (ok)
            return QVariant(real + 1);
        fail(StatusStat, ErrTypeMismatch, QStringLiteral("Type mismatch: the largest %1 is not a number.").arg(sIDname));
        return QVariant();
    }
    }
}

bool cDAO::Records_Exist(const QVariant& sSQL)
{
    RecordsetPtr rs = RecSet_Stat(sSQL);
    if (!rs || rs->atEnd()) {
        if (rs)
            RS_Close(rs);
        return false;
    }
    rs->moveLast();
    rs->moveFirst();
    const qint32 count = rs->recordCount();
    RS_Close(rs);
    if (count > 32767)
        fail(StatusStat, ErrOverflow, QStringLiteral("Overflow: %1 rows do not fit the row count.").arg(count));
    else
        appError = qint16(count);
    return true;
}

qint32 cDAO::Reco_Count(const QVariant& sSQL)
{
    RecordsetPtr rs = RecSet_Stat(sSQL);
    if (!rs)
        return 0;
    qint32 count = 0;
    if (!rs->atEnd()) {
        rs->moveLast();
        count = rs->recordCount();
    }
    RS_Close(rs);
    return count;
}

void cDAO::Exec(const QVariant& sSQL)
{
    clearStatus();
    if (!m_engine->conn || !m_engine->conn->isOpen()) {
        fail(StatusExec, ErrNotConnected, QStringLiteral("The database is not open."));
        return;
    }
    DbError err;
    if (!m_engine->conn->exec(jet::translate(sSQL.toString(), m_engine->conn->dialect()), err))
        fail(StatusExec, err.code, err.text);
}

void cDAO::ExecUnique(const QVariant& sSQL)
{
    clearStatus();
    if (!m_engine->conn || !m_engine->conn->isOpen())
        return;
    DbError ignored;   // a duplicate key, say, is expected and not an error here
    m_engine->conn->exec(jet::translate(sSQL.toString(), m_engine->conn->dialect()), ignored);
}

bool cDAO::DB_Connect(const QString& sAccess_Path, const QString& /*sSpace*/, const QString& /*sUser*/,
                      const QString& sPwd)
{
    clearStatus();
    if (m_engine->conn)
        DB_Close();
    DbError err;
    const bool pg = isPgLocation(sAccess_Path);
    m_engine->conn = pg ? openPostgres(sAccess_Path.trimmed(), sPwd, err) : openSqlite(NativePath(sAccess_Path), err);
    if (!m_engine->conn) {
        fail(StatusConnect, err.code, err.text);
        return false;
    }
    databaseFile = pg ? sAccess_Path.trimmed() : NativePath(sAccess_Path);
    mbDatabaseIsOpen = true;
    return true;
}

void cDAO::DB_Close()
{
    clearStatus();
    if (m_engine->conn)
        m_engine->conn->close();
    m_engine->conn.reset();
    mbDatabaseIsOpen = false;
}

void cDAO::RS_Close(RecordsetPtr& objRS)
{
    objRS.reset();
    error_code = 0;
}

qint32 cDAO::DB_Size()
{
    qint64 size = 0;
    if (m_engine->conn && m_engine->conn->isOpen())
        size = m_engine->conn->size();
    else if (!isPgLocation(databaseFile))
        size = QFileInfo(databaseFile).size();
    databaseSize = qint32(qMin<qint64>(size, std::numeric_limits<qint32>::max()));
    return databaseSize;
}

bool cDAO::DB_Backup(const QString& sSrcPath, const QString& sNewDatabasePath)
{
    clearStatus();
    if (mbDatabaseIsOpen) {
        fail(StatusBackupOpen, StatusBackupOpen, QStringLiteral("The database is open: close it before a backup."));
        return false;
    }
    if (sSrcPath.trimmed().isEmpty() || isPgLocation(sSrcPath)) {
        fail(StatusBackupBad, StatusBackupBad, QStringLiteral("There is no database file to back up."));
        return false;
    }
    // Either separator divides folders; doubled ones collapse and a trailing one goes.
    QString folder = QString(sNewDatabasePath).replace(u'\\', u'/') + u'/';
    while (folder.contains(QStringLiteral("//")))
        folder.replace(QStringLiteral("//"), QStringLiteral("/"));
    if (folder.size() > 1)
        folder.chop(1);
    if (sNewDatabasePath.trimmed().isEmpty() || !QFileInfo(folder).isDir()) {
        fail(StatusBackupBad, StatusBackupBad, QStringLiteral("The backup folder does not exist: %1").arg(sNewDatabasePath));
        return false;
    }
    const QString source = QString(sSrcPath).replace(u'\\', u'/');
    const QString fileName = source.mid(source.lastIndexOf(u'/') + 1);
    const qsizetype dot = fileName.indexOf(u'.');
    const QString base = dot < 0 ? fileName : fileName.left(dot);
    const QString extension = dot < 0 ? QString() : fileName.mid(dot);

    qint64 largest = 0;
    const QStringList names = QDir(folder).entryList({base + QStringLiteral("*")}, QDir::Files | QDir::Hidden);
    for (const QString& name : names) {
        if (!name.startsWith(base, Qt::CaseInsensitive))
            continue;
        QString rest = name.mid(base.size());
        if (rest.startsWith(u'_'))
            rest.remove(0, 1);
        rest = rest.left(rest.indexOf(u'.') < 0 ? rest.size() : rest.indexOf(u'.'));
        bool ok = false;
        const qint64 n = rest.trimmed().toLongLong(&ok);
        if (ok && n > largest)
            largest = n;
    }
    const QString target = folder + u'/' + base + u'_' + QString::number(largest + 1) + extension;
    if (QFileInfo::exists(target))
        return false;
    QFile::copy(NativePath(sSrcPath), target);
    return QFileInfo::exists(target);
}

Connection* cDAO::connection()
{
    clearStatus();
    if (!m_engine->conn || !m_engine->conn->isOpen()) {
        fail(StatusExec, ErrNotConnected, QStringLiteral("The database is not open."));
        return nullptr;
    }
    return m_engine->conn.get();
}

bool cDAO::onConnection(const std::function<bool(Connection&, DbError&)>& op)
{
    Connection* c = connection();
    if (!c)
        return false;
    DbError err;
    if (op(*c, err))
        return true;
    fail(StatusExec, err.code, err.text);
    return false;
}

bool cDAO::BeginTrans()
{
    return onConnection([](Connection& c, DbError& err) { return c.begin(err); });
}

bool cDAO::BeginWriteTrans()
{
    return onConnection([](Connection& c, DbError& err) { return c.beginWrite(err); });
}

bool cDAO::CommitTrans()
{
    return onConnection([](Connection& c, DbError& err) { return c.commit(err); });
}

void cDAO::Rollback()
{
    clearStatus();
    DbError err;
    if (m_engine->conn && !m_engine->conn->rollback(err))
        fail(StatusExec, err.code, err.text);
}

qint64 cDAO::ExecCount(const QVariant& sSQL)
{
    qint64 changed = -1;
    const bool ok = onConnection([&](Connection& c, DbError& err) {
        return c.execCount(jet::translate(sSQL.toString(), c.dialect()), changed, err);
    });
    return ok ? changed : -1;
}

bool cDAO::FillIdTable(const QString& table, const std::vector<qint64>& ids)
{
    return onConnection([&](Connection& c, DbError& err) { return c.fillIdTable(table, ids, err); });
}

bool cDAO::InsertRows(const QString& table, const QStringList& columns, const std::vector<QVector<QVariant>>& rows)
{
    return onConnection([&](Connection& c, DbError& err) { return c.insertRows(table, columns, rows, err); });
}

bool cDAO::isPostgres() const
{
    return m_engine->conn ? m_engine->conn->dialect() == jet::Dialect::PostgreSQL : isPgLocation(databaseFile);
}

namespace {
QString g_openError;
} // namespace

QString PrimaryOpenError()
{
    return g_openError;
}

bool OpenPrimaryDatabase()
{
    if (SharedDatabase())
        return true;
    auto db = std::make_unique<cDAO>();
    const Globals& g = globals();
    g_openError.clear();
    if (!db->DB_Connect(g.PrimaryDatabasePath + g.PrimaryDatabaseName, QString(), QStringLiteral("Admin"),
                        g.DatabasePassword)) {
        g_openError = maskPassword(db->errorText);
        ShowMessage(1, QStringLiteral("Cannot open the database"));
        return false;
    }
    setSharedDatabase(std::move(db));
    return true;
}

} // namespace tp
