#pragma once
// A real SQLite primary database with a few helpers to fill JobTimeRecords and EmployeeInfo,
// shared by the tests of the time-data export.
#include "export/assembler.h"
#include "foundation/dao.h"
#include "foundation/feedback.h"
#include "foundation/sql_literal.h"
#include "support/test_databases.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace tp::test {

struct TimeRow {
    qint64 id = 0;
    qint32 employee = 17;
    qint32 vehicle = 5;
    qint32 date = 20050131;
    qint32 time = 143005;
    qint32 customer = 300;
    int jobIn = -1, timeIn = 0, jobOut = 0, timeOut = 1;
    QString odometer = QStringLiteral("1200");
    int approved = 1;
    int exportId = 0;
};

class TimeDbTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(dir.isValid());
        if (usePostgres) {
            if (pgTestUrl().isEmpty())
                GTEST_SKIP() << kPgSkipMessage;
            pg = std::make_unique<PgScratchDatabase>(schemaScript(true));
            ASSERT_TRUE(pg->ok()) << pg->error().toStdString();
            ASSERT_TRUE(db.DB_Connect(pg->url(), QString(), QStringLiteral("Admin"), QString()))
                << db.errorText.toStdString();
            return;
        }
        QString error;
        dbFile = makeSqliteDatabase(dir.path(), schemaScript(false), QStringLiteral("primary.db"),
                                    &error);
        ASSERT_FALSE(dbFile.isEmpty()) << error.toStdString();
        ASSERT_TRUE(db.DB_Connect(dbFile, QString(), QStringLiteral("Admin"), QString()))
            << db.errorText.toStdString();
    }

    void exec(const QString& sql)
    {
        db.Exec(sql);
        ASSERT_EQ(db.appError, 0) << sql.toStdString() << ": " << db.errorText.toStdString();
    }

    void addTime(const TimeRow& r)
    {
        exec(QStringLiteral("INSERT INTO JobTimeRecords (NewTimeRecordID, EmployeeNumber, "
                            "VehicleBlock, Date, Time, CustomerNumber, IsJobInRecord, "
                            "IsTimeInRecord, IsJobOutRecord, IsTimeOutRecord, OdometerReading, "
                            "Approved, ExportID) VALUES (%1, %2, %3, %4, %5, %6, %7, %8, %9, %10, "
                            "%11, %12, %13)")
                 .arg(r.id)
                 .arg(r.employee)
                 .arg(r.vehicle)
                 .arg(r.date)
                 .arg(r.time)
                 .arg(r.customer)
                 .arg(r.jobIn)
                 .arg(r.timeIn)
                 .arg(r.jobOut)
                 .arg(r.timeOut)
                 .arg(r.odometer)
                 .arg(r.approved)
                 .arg(r.exportId));
    }

    // n waiting records with ids from firstId, all of one employee, one per day from date.
    void addMany(int n, qint64 firstId = 1, qint32 employee = 17)
    {
        exec(QStringLiteral("BEGIN"));
        for (int i = 0; i < n; ++i) {
            TimeRow r;
            r.id = firstId + i;
            r.employee = employee;
            r.time = 80000 + i;
            addTime(r);
        }
        exec(QStringLiteral("COMMIT"));
    }

    void addEmployee(qint32 number, const QString& first, const QString& last,
                     const QString& name = QString())
    {
        exec(QStringLiteral("INSERT INTO EmployeeInfo (EmployeeNumber, FirstName, LastName, Name) "
                            "VALUES (%1, %2, %3, %4)")
                 .arg(number)
                 .arg(sql::text(first), sql::text(last), sql::text(name)));
    }

    qint64 scalar(const QString& sql)
    {
        RecordsetPtr rs = db.RecSet_Forward(sql);
        if (!rs || rs->atEnd()) {
            ADD_FAILURE() << sql.toStdString() << ": " << db.errorText.toStdString();
            return -1;
        }
        const qint64 v = rs->value(0).toLongLong();
        db.RS_Close(rs);
        return v;
    }

    QString path(const QString& name) const { return QDir(dir.path()).filePath(name); }

    static QByteArray readFile(const QString& name)
    {
        QFile f(name);
        return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray("<missing>");
    }

    bool usePostgres = false;   // set by a derived fixture's constructor
    std::unique_ptr<PgScratchDatabase> pg;
    QTemporaryDir dir;
    QString dbFile;
    cDAO db;
    ScriptedFeedback feedback;
};

} // namespace tp::test
