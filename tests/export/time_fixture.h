#pragma once
// A real SQLite primary database with a few helpers to fill JobTimeRecords and EmployeeInfo,
// shared by the tests of the time-data export.
#include "export/assembler.h"
#include "foundation/dao.h"
#include "foundation/feedback.h"
#include "foundation/sql_literal.h"
#include "support/foundation_fixture.h"
#include "support/test_databases.h"
#include "support/time_rows.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace tp::test {

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

    void addTime(const TimeRow& r) { exec(insertTimeRows({r})); }

    // n waiting records of employee 17 with ids from firstId, times 80000 upward.
    void addMany(int n, qint64 firstId = 1)
    {
        std::vector<TimeRow> rows;
        for (int i = 0; i < n; ++i)
            rows.push_back({.id = firstId + i, .time = 80000 + i});
        exec(insertTimeRows(rows));
    }
    // A waiting (or, by approved and exportId, another) record on date.
    void addTimeOn(qint64 id, qint32 date, int approved = 1, int exportId = 0)
    {
        addTime({.id = id, .date = date, .approved = approved, .exportId = exportId});
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

    static QByteArray readFile(const QString& name) { return readBytes(name); }

    bool usePostgres = false;   // set by a derived fixture's constructor
    std::unique_ptr<PgScratchDatabase> pg;
    QTemporaryDir dir;
    QString dbFile;
    cDAO db;
    ScriptedFeedback feedback;
};

} // namespace tp::test
