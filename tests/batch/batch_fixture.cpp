#include "batch_fixture.h"

#include "foundation/sql_literal.h"
#include "support/time_rows.h"

#include <QFileInfo>

namespace tp::test {

namespace {

TimeRow row(qint64 id, qint32 employee, qint32 date, qint32 time, int jobIn = 0, int approved = 1,
            int exportId = 0)
{
    return {.id = id, .employee = employee, .date = date, .time = time, .jobIn = jobIn, .timeOut = 0,
            .approved = approved, .exportId = exportId};
}

} // namespace

void BatchTest::SetUp()
{
    if (!QFileInfo(binary).isExecutable())
        GTEST_FAIL() << "tallyport-batch is not built: " << binary.toStdString();
    ASSERT_TRUE(site.ok()) << site.error().toStdString();
    ASSERT_TRUE(outDir.isValid());
    // Records of known content: 9001 has an accented last name, 9003 is not in EmployeeInfo.
    exec("DELETE FROM JobTimeRecords");
    exec("INSERT INTO EmployeeInfo (EmployeeNumber, FirstName, LastName, Name) VALUES (9001, " +
         sql::text(QStringLiteral("Andr\u00e9")) + ", " + sql::text(QStringLiteral("B\u00e9ranger")) + ", 'Andre B')");
    exec("INSERT INTO EmployeeInfo (EmployeeNumber, FirstName, LastName, Name) "
         "VALUES (9002, 'John', 'Smith', 'John Smith')");
    exec(insertTimeRows({row(1, 9001, 20240105, 93000, -1), row(2, 9001, 20240110, 143005),
                         row(3, 9002, 20240115, 80000),
                         row(4, 9002, 20240120, 80000, 0, 0),        // not approved
                         row(5, 9003, 20240131, 235959),
                         row(6, 9002, 20240131, 120000, 0, 2, 1)}));   // exported before
}

BatchRun BatchTest::run(const QStringList& arguments) const
{
    return runProgram(binary, arguments, site.settingsFolder(), outDir.path());
}

BatchRun BatchTest::exportTime(const QString& fields, const QString& file, const QStringList& extra,
                               const QString& user) const
{
    return run(QStringList{"export", "--settings", "KRV.ini", "--user", user, "--dataset", "Time Data",
                           "--fields", fields, "--output", file} +
               extra);
}

QString BatchTest::marks(qint64 id) const
{
    return site.rows("SELECT Approved, ExportID FROM JobTimeRecords WHERE NewTimeRecordID = " + QString::number(id));
}

qint64 BatchTest::waiting() const
{
    return site.scalar("SELECT COUNT(*) FROM JobTimeRecords WHERE Approved = 1 AND ExportID = 0");
}

void BatchTest::addMany(int n, qint64 firstId)
{
    std::vector<TimeRow> rows;
    for (int i = 0; i < n; ++i)
        rows.push_back(row(firstId + i, 9002, 20240201, 80000 + i));
    exec(insertTimeRows(rows));
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
