#include "batch_fixture.h"

#include "foundation/dao.h"
#include "foundation/sql_literal.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QProcessEnvironment>

namespace tp::test {

void BatchTest::SetUp()
{
    if (!QFileInfo(binary).isExecutable())
        GTEST_FAIL() << "tallyport-batch is not built: " << binary.toStdString();
    ASSERT_TRUE(site.ok()) << site.error().toStdString();
    ASSERT_TRUE(outDir.isValid());
    // Records of known content: 9001 has an accented last name, 9003 is not in EmployeeInfo.
    exec(QStringLiteral("DELETE FROM JobTimeRecords"));
    exec(QStringLiteral("INSERT INTO EmployeeInfo (EmployeeNumber, FirstName, LastName, Name) "
                        "VALUES (9001, ") + sql::text(QStringLiteral("Andr\u00e9")) + QStringLiteral(", ") +
         sql::text(QStringLiteral("B\u00e9ranger")) + QStringLiteral(", 'Andre B')"));
    exec(QStringLiteral("INSERT INTO EmployeeInfo (EmployeeNumber, FirstName, LastName, Name) "
                        "VALUES (9002, 'John', 'Smith', 'John Smith')"));
    addTime(1, 9001, 20240105, 93000, true);
    addTime(2, 9001, 20240110, 143005);
    addTime(3, 9002, 20240115, 80000);
    addTime(4, 9002, 20240120, 80000, false, 0);       // not approved
    addTime(5, 9003, 20240131, 235959);
    addTime(6, 9002, 20240131, 120000, false, 2, 1);   // exported before
}

BatchRun BatchTest::run(const QStringList& arguments) const
{
    QProcess process;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(QStringLiteral("TALLYPORT_SETTINGS_DIR"), site.settingsFolder());
    process.setProcessEnvironment(env);
    process.setWorkingDirectory(outDir.path());
    process.start(binary, arguments);
    BatchRun result;
    if (!process.waitForFinished(60000)) {
        process.kill();
        ADD_FAILURE() << "tallyport-batch did not finish";
        return result;
    }
    result.exitCode = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    result.out = QString::fromLocal8Bit(process.readAllStandardOutput());
    result.err = QString::fromLocal8Bit(process.readAllStandardError());
    return result;
}

BatchRun BatchTest::exportTime(const QString& fields, const QString& file, const QStringList& extra,
                               const QString& user) const
{
    return run(QStringList{QStringLiteral("export"), QStringLiteral("--settings"),
                           QStringLiteral("KRV.ini"), QStringLiteral("--user"), user,
                           QStringLiteral("--dataset"), QStringLiteral("Time Data"),
                           QStringLiteral("--fields"), fields, QStringLiteral("--output"), file} +
               extra);
}

void BatchTest::exec(const QString& sql)
{
    ASSERT_TRUE(site.exec(sql)) << sql.toStdString();
}

qint64 BatchTest::scalar(const QString& sql) const
{
    cDAO db;
    if (!db.DB_Connect(site.databaseFile(), QString(), QStringLiteral("Admin"), QString())) {
        ADD_FAILURE() << "cannot open " << site.databaseFile().toStdString();
        return -1;
    }
    qint64 value = -1;
    RecordsetPtr rs = db.RecSet_Forward(sql);
    if (rs && !rs->atEnd())
        value = rs->value(0).toLongLong();
    else
        ADD_FAILURE() << sql.toStdString() << ": " << db.errorText.toStdString();
    if (rs)
        db.RS_Close(rs);
    db.DB_Close();
    return value;
}

QString BatchTest::marks(qint64 id) const
{
    const QString where = QStringLiteral(" FROM JobTimeRecords WHERE NewTimeRecordID = ") + QString::number(id);
    return QString::number(scalar(QStringLiteral("SELECT Approved") + where)) + QLatin1Char('/') +
           QString::number(scalar(QStringLiteral("SELECT ExportID") + where));
}

qint64 BatchTest::waiting() const
{
    return scalar(QStringLiteral("SELECT COUNT(*) FROM JobTimeRecords WHERE Approved = 1 AND ExportID = 0"));
}

void BatchTest::addTime(qint64 id, qint32 employee, qint32 date, qint32 time, bool jobIn,
                        int approved, int exportId)
{
    exec(QStringLiteral("INSERT INTO JobTimeRecords (NewTimeRecordID, EmployeeNumber, VehicleBlock, "
                        "Date, Time, CustomerNumber, IsJobInRecord, IsTimeInRecord, IsJobOutRecord, "
                        "IsTimeOutRecord, OdometerReading, Approved, ExportID) VALUES "
                        "(%1, %2, 5, %3, %4, 300, %5, 0, 0, 0, 1200, %6, %7)")
             .arg(id)
             .arg(employee)
             .arg(date)
             .arg(time)
             .arg(jobIn ? -1 : 0)
             .arg(approved)
             .arg(exportId));
}

void BatchTest::addMany(int n, qint64 firstId)
{
    QString sql = QStringLiteral("INSERT INTO JobTimeRecords (NewTimeRecordID, EmployeeNumber, "
                                 "VehicleBlock, CustomerNumber, OdometerReading, Date, Time, Approved, ExportID) VALUES ");
    for (int i = 0; i < n; ++i)
        sql += QStringLiteral("%1(%2, 9002, 5, 300, 1200, 20240201, %3, 1, 0)")
                   .arg(i ? QStringLiteral(", ") : QString())
                   .arg(firstId + i)
                   .arg(80000 + i);
    exec(sql);
}

QString BatchTest::path(const QString& name) const
{
    return QDir(outDir.path()).filePath(name);
}

QByteArray BatchTest::read(const QString& file)
{
    QFile f(file);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray("<missing>");
}

QByteArray BatchTest::expectedDefaultFile()
{
    return QByteArray("\"Emp\",\"EmployeeLastName\",\"Date\",\"IsJobInRecord\"\r\n"
                      "9001,\"B\xe9ranger\",20240105,#TRUE#\r\n"
                      "9001,\"B\xe9ranger\",20240110,#FALSE#\r\n"
                      "9002,\"Smith\",20240115,#FALSE#\r\n"
                      "9003,\"Unknown\",20240131,#FALSE#\r\n");
}

} // namespace tp::test
