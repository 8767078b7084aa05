#include "demo_generator.h"
#include "foundation/dao.h"
#include "foundation/globals.h"
#include "foundation/permissions.h"
#include "support/foundation_fixture.h"
#include "support/test_databases.h"

#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <sqlite3.h>

using namespace tp;

namespace {

// The demo database holds: user 1 administrator (-1); user 2 with CanView on forms 31 and 11
// and CanAdd + CanModify on form 12; user 3 with CanAdd only on 12 and an empty row for 11.
// Runs on SQLite, and on PostgreSQL when a test server is named.
class PermissionTest : public ::testing::TestWithParam<bool> {
protected:
    bool postgres() const { return GetParam(); }

    void SetUp() override
    {
        ASSERT_TRUE(dir.isValid());
        if (postgres()) {
            if (tp::test::pgTestUrl().isEmpty())
                GTEST_SKIP() << tp::test::kPgSkipMessage;
            scratch = std::make_unique<tp::test::PgScratchDatabase>();
            ASSERT_TRUE(scratch->ok()) << scratch->error().toStdString();
            location = scratch->url();
        } else {
            location = dir.filePath(QStringLiteral("perm.db"));
        }
        DemoOptions o;
        o.employees = 3;
        o.vehicles = 2;
        o.customers = 2;
        o.locations = 1;
        o.timeRecords = 4;
        o.inventoryRecords = 2;
        o.tracks = 1;
        o.gpsPoints = 3;
        QString error;
        ASSERT_TRUE(createDemoDatabase(location, o, &error)) << error.toStdString();
        connect();
    }

    // The program's connection goes before the scratch database is dropped.
    void TearDown() override { setSharedDatabase(nullptr); }

    void connect()
    {
        auto db = std::make_unique<cDAO>();
        ASSERT_TRUE(db->DB_Connect(location, QString(), QStringLiteral("Admin"), QStringLiteral("MarlinGate")));
        setSharedDatabase(std::move(db));
    }

    // Changes the database behind the program's back, as the host product would.
    void run(const char* sql)
    {
        if (postgres()) {
            QString why;
            ASSERT_TRUE(scratch->run(QString::fromLatin1(sql), &why)) << why.toStdString();
            return;
        }
        sqlite3* db = nullptr;
        ASSERT_EQ(sqlite3_open(QFile::encodeName(location).constData(), &db), SQLITE_OK);
        char* message = nullptr;
        const int rc = sqlite3_exec(db, sql, nullptr, nullptr, &message);
        const std::string why = message ? message : "";
        sqlite3_free(message);
        sqlite3_close(db);
        ASSERT_EQ(rc, SQLITE_OK) << why;
    }

    // Rows of a table, seen through a connection of its own.
    qint32 rows(const char* table)
    {
        cDAO other;
        if (!other.DB_Connect(location, QString(), QStringLiteral("Admin"), QStringLiteral("MarlinGate")))
            return -1;
        return other.Reco_Count(QStringLiteral("Select * from ") + QString::fromLatin1(table));
    }

    bool check(const QString& user, const char* code, int form)
    {
        globals().UserID = user;
        return CheckPermission(QString::fromLatin1(code), form);
    }

    tp::test::ScopedFoundation scope;
    QTemporaryDir dir;
    std::unique_ptr<tp::test::PgScratchDatabase> scratch;
    QString location;
};

TEST_P(PermissionTest, AdministratorPassesEveryCodeWhetherStoredAsMinusOneOrOne)
{
    for (const char* code : {"IMP", "EXP", "EXP2", "NOPE", ""}) {
        EXPECT_TRUE(check(QStringLiteral("1"), code, 11)) << code;
        EXPECT_TRUE(check(QStringLiteral("1"), code, 0)) << code;
    }
    run("UPDATE UserNames SET Administrator = 1 WHERE UserID = 1");
    EXPECT_TRUE(check(QStringLiteral("1"), "IMP", 2));
    EXPECT_TRUE(check(QStringLiteral("1"), "whatever", 2));
    run("UPDATE UserNames SET Administrator = 0 WHERE UserID = 1");
    EXPECT_FALSE(check(QStringLiteral("1"), "IMP", 2));
    EXPECT_FALSE(check(QStringLiteral("1"), "EXP2", 11));
}

TEST_P(PermissionTest, UserWithSomeRightsPassesOnlyThose)
{
    const QString user = QStringLiteral("2");
    EXPECT_TRUE(check(user, "EXP2", 11));    // CanView on 31 (-1) and on 11 (1)
    EXPECT_TRUE(check(user, "EXP", 11));
    EXPECT_TRUE(check(user, "EXP", 31));
    EXPECT_FALSE(check(user, "EXP2", 20));   // only the row of form 31 matches
    EXPECT_FALSE(check(user, "EXP", 20));
    EXPECT_FALSE(check(user, "EXP", 12));    // import right, no view right
    EXPECT_TRUE(check(user, "IMP", 12));
    EXPECT_FALSE(check(user, "IMP", 2));
    EXPECT_FALSE(check(user, "IMP", 11));    // view only
    EXPECT_FALSE(check(user, "imp", 12));    // codes compare exactly
    EXPECT_FALSE(check(user, "EXP2 ", 11));
    EXPECT_FALSE(check(user, "ADMIN", 11));
}

TEST_P(PermissionTest, UserWithoutRightsIsRefusedEverywhere)
{
    for (int form : {0, 2, 3, 4, 11, 12, 20, 26, 31}) {
        EXPECT_FALSE(check(QStringLiteral("3"), "IMP", form)) << form;   // 12: CanAdd without CanModify
        EXPECT_FALSE(check(QStringLiteral("3"), "EXP", form)) << form;
        EXPECT_FALSE(check(QStringLiteral("3"), "EXP2", form)) << form;
        EXPECT_FALSE(check(QStringLiteral("99"), "EXP", form)) << form;   // no such user
    }
}

TEST_P(PermissionTest, ViewOnTheFormWithoutFormThirtyOneFailsTheTwoFormRule)
{
    run("INSERT INTO UserNames (UserID, UserName, Administrator) VALUES (7, 'Seven', 0);"
        "INSERT INTO Permissions (UserID, FormID, CanAdd, CanModify, CanView) VALUES (7, 11, 0, 0, -1);"
        "INSERT INTO Permissions (UserID, FormID, CanAdd, CanModify, CanView) VALUES (7, 31, 0, 0, 0)");
    EXPECT_FALSE(check(QStringLiteral("7"), "EXP2", 11));
    EXPECT_TRUE(check(QStringLiteral("7"), "EXP", 11));
    run("UPDATE Permissions SET CanView = 1 WHERE UserID = 7 AND FormID = 31");
    EXPECT_TRUE(check(QStringLiteral("7"), "EXP2", 11));
}

TEST_P(PermissionTest, TwoFormRuleOnFormThirtyOneNeedsTwoRowsAndNotThree)
{
    run("INSERT INTO Permissions (UserID, FormID, CanAdd, CanModify, CanView) VALUES (8, 31, 0, 0, -1)");
    EXPECT_FALSE(check(QStringLiteral("8"), "EXP2", 31));
    EXPECT_TRUE(check(QStringLiteral("8"), "EXP", 31));
    run("INSERT INTO Permissions (UserID, FormID, CanAdd, CanModify, CanView) VALUES (8, 31, 0, 0, 1)");
    EXPECT_TRUE(check(QStringLiteral("8"), "EXP2", 31));
    run("INSERT INTO Permissions (UserID, FormID, CanAdd, CanModify, CanView) VALUES (8, 26, 0, 0, 1)");
    EXPECT_FALSE(check(QStringLiteral("8"), "EXP2", 26));   // rows of 31 and 26 make three
}

TEST_P(PermissionTest, ImportNeedsAddAndModifyTogether)
{
    run("INSERT INTO Permissions (UserID, FormID, CanAdd, CanModify, CanView) VALUES (9, 3, -1, 0, -1);"
        "INSERT INTO Permissions (UserID, FormID, CanAdd, CanModify, CanView) VALUES (9, 2, 0, 1, -1);"
        "INSERT INTO Permissions (UserID, FormID, CanAdd, CanModify, CanView) VALUES (9, 0, 1, -1, 0)");
    EXPECT_FALSE(check(QStringLiteral("9"), "IMP", 3));
    EXPECT_FALSE(check(QStringLiteral("9"), "IMP", 2));
    EXPECT_TRUE(check(QStringLiteral("9"), "IMP", 0));
    EXPECT_FALSE(check(QStringLiteral("9"), "EXP", 0));
}

TEST_P(PermissionTest, UserIdMayCarryBlanksAndSignButNothingElse)
{
    EXPECT_TRUE(check(QStringLiteral(" 1 "), "IMP", 2));
    EXPECT_TRUE(check(QStringLiteral("+2"), "IMP", 12));
    EXPECT_FALSE(check(QStringLiteral("-2"), "IMP", 12));
    EXPECT_FALSE(check(QString(), "IMP", 12));
    EXPECT_FALSE(check(QStringLiteral("two"), "IMP", 12));
    EXPECT_FALSE(check(QStringLiteral("2.0"), "IMP", 12));
    EXPECT_FALSE(check(QStringLiteral("99999999999999999999"), "IMP", 12));
}

TEST_P(PermissionTest, HostileUserIdsAreRefusedWithoutReachingTheDatabase)
{
    // Each would make an administrator of anybody, or worse, if it were pasted as it stands.
    for (const char* hostile : {"0 OR 1=1", "0 or Administrator<>0", "1; DROP TABLE UserNames",
                                "0 UNION SELECT -1", "2 --", "3)", "' OR ''='", "1\t;"}) {
        for (const char* code : {"IMP", "EXP", "EXP2", "ANY"})
            EXPECT_FALSE(check(QString::fromLatin1(hostile), code, 12)) << hostile << ' ' << code;
    }
    EXPECT_EQ(rows("UserNames"), 3);
    EXPECT_EQ(rows("Permissions"), 5);
    EXPECT_EQ(SharedDatabase()->appError, 0);   // nothing ran, so nothing failed
    EXPECT_TRUE(check(QStringLiteral("1"), "IMP", 2));
}

TEST_P(PermissionTest, DatabaseFailuresRefuse)
{
    run("DROP TABLE Permissions");
    EXPECT_FALSE(check(QStringLiteral("2"), "IMP", 12));
    EXPECT_FALSE(check(QStringLiteral("2"), "EXP2", 11));
    EXPECT_TRUE(check(QStringLiteral("1"), "EXP", 4));   // the administrator needs no Permissions row
    run("DROP TABLE UserNames");
    EXPECT_FALSE(check(QStringLiteral("1"), "EXP", 4));
    setSharedDatabase(nullptr);
    EXPECT_FALSE(check(QStringLiteral("1"), "EXP", 4));
}

TEST_P(PermissionTest, RightsChangedWhileRunningCountAtTheNextCheck)
{
    EXPECT_FALSE(check(QStringLiteral("3"), "IMP", 12));
    run("UPDATE Permissions SET CanModify = -1 WHERE UserID = 3 AND FormID = 12");
    EXPECT_TRUE(check(QStringLiteral("3"), "IMP", 12));
    run("UPDATE UserNames SET Administrator = -1 WHERE UserID = 3");
    EXPECT_TRUE(check(QStringLiteral("3"), "EXP2", 20));
}

INSTANTIATE_TEST_SUITE_P(Engines, PermissionTest, ::testing::Values(false, true),
                         [](const ::testing::TestParamInfo<bool>& info) {
                             return std::string(info.param ? "PostgreSQL" : "SQLite");
                         });

} // namespace
