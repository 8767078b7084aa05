#include "demo_generator.h"
#include "foundation/dao.h"
#include "foundation/globals.h"
#include "foundation/permissions.h"
#include "support/foundation_fixture.h"
#include "support/test_databases.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>

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
        if (postgres()) {
            if (tp::test::pgTestUrl().isEmpty())
                GTEST_SKIP() << tp::test::kPgSkipMessage;
            scratch = std::make_unique<tp::test::PgScratchDatabase>();
            ASSERT_TRUE(scratch->ok()) << scratch->error().toStdString();
        }
        location = postgres() ? scratch->url() : dir.filePath(QStringLiteral("perm.db"));
        DemoOptions o;
        o.employees = 3, o.vehicles = 2, o.customers = 2, o.locations = 1;
        o.timeRecords = 4, o.inventoryRecords = 2, o.tracks = 1, o.gpsPoints = 3;
        QString error;
        ASSERT_TRUE(createDemoDatabase(location, o, &error)) << error.toStdString();
        auto db = std::make_unique<cDAO>();
        ASSERT_TRUE(db->DB_Connect(location, QString(), QStringLiteral("Admin"), QStringLiteral("MarlinGate")));
        setSharedDatabase(std::move(db));
    }

    // The program's connection goes before the scratch database is dropped.
    void TearDown() override { setSharedDatabase(nullptr); }

    // Changes the database behind the program's back, as the host product would.
    void run(const char* sql)
    {
        QString why;
        if (postgres())
            ASSERT_TRUE(scratch->run(QString::fromLatin1(sql), &why)) << why.toStdString();
        else
            ASSERT_FALSE(tp::test::makeSqliteDatabase(dir.path(), QString::fromLatin1(sql), "perm.db", &why).isEmpty())
                << why.toStdString();
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
    struct Case {
        const char* user;
        const char* code;
        int form;
        bool passes;
    };
    void expect(std::initializer_list<Case> cases)
    {
        for (const Case& c : cases)
            EXPECT_EQ(check(QString::fromLatin1(c.user), c.code, c.form), c.passes)
                << "user '" << c.user << "' " << c.code << " on form " << c.form;
    }

    tp::test::ScopedFoundation scope;
    QTemporaryDir dir;
    std::unique_ptr<tp::test::PgScratchDatabase> scratch;
    QString location;
};

TEST_P(PermissionTest, AdministratorPassesEveryCodeWhetherStoredAsMinusOneOrOne)
{
    for (const char* code : {"IMP", "EXP", "EXP2", "NOPE", ""})
        expect({{"1", code, 11, true}, {"1", code, 0, true}});
    run("UPDATE UserNames SET Administrator = 1 WHERE UserID = 1");
    expect({{"1", "IMP", 2, true}, {"1", "whatever", 2, true}});
    run("UPDATE UserNames SET Administrator = 0 WHERE UserID = 1");
    expect({{"1", "IMP", 2, false}, {"1", "EXP2", 11, false}});
}

TEST_P(PermissionTest, UserWithSomeRightsPassesOnlyThose)
{
    expect({{"2", "EXP2", 11, true},     // CanView on 31 (-1) and on 11 (1)
            {"2", "EXP", 11, true},   {"2", "EXP", 31, true},
            {"2", "EXP2", 20, false},    // only the row of form 31 matches
            {"2", "EXP", 20, false},
            {"2", "EXP", 12, false},     // import right, no view right
            {"2", "IMP", 12, true},   {"2", "IMP", 2, false},
            {"2", "IMP", 11, false},     // view only
            {"2", "imp", 12, false},     // codes compare exactly
            {"2", "EXP2 ", 11, false},  {"2", "ADMIN", 11, false}});
}

TEST_P(PermissionTest, UserWithoutRightsIsRefusedEverywhere)
{
    for (int form : {0, 2, 3, 4, 11, 12, 20, 26, 31})   // 12: CanAdd without CanModify; 99: no such user
        expect({{"3", "IMP", form, false}, {"3", "EXP", form, false}, {"3", "EXP2", form, false},
                {"99", "EXP", form, false}});
}

TEST_P(PermissionTest, TwoFormRuleCountsTheViewRowsOfFormThirtyOneAndTheForm)
{
    run("INSERT INTO UserNames (UserID, UserName, Administrator) VALUES (7, 'Seven', 0);"
        "INSERT INTO Permissions (UserID, FormID, CanAdd, CanModify, CanView) VALUES (7, 11, 0, 0, -1);"
        "INSERT INTO Permissions (UserID, FormID, CanAdd, CanModify, CanView) VALUES (7, 31, 0, 0, 0);"
        "INSERT INTO Permissions (UserID, FormID, CanAdd, CanModify, CanView) VALUES (8, 31, 0, 0, -1)");
    expect({{"7", "EXP2", 11, false}, {"7", "EXP", 11, true}, {"8", "EXP2", 31, false}, {"8", "EXP", 31, true}});
    run("UPDATE Permissions SET CanView = 1 WHERE UserID = 7 AND FormID = 31;"
        "INSERT INTO Permissions (UserID, FormID, CanAdd, CanModify, CanView) VALUES (8, 31, 0, 0, 1)");
    expect({{"7", "EXP2", 11, true}, {"8", "EXP2", 31, true}});
    run("INSERT INTO Permissions (UserID, FormID, CanAdd, CanModify, CanView) VALUES (8, 26, 0, 0, 1)");
    expect({{"8", "EXP2", 26, false}});   // rows of 31 and 26 make three
}

TEST_P(PermissionTest, ImportNeedsAddAndModifyTogether)
{
    run("INSERT INTO Permissions (UserID, FormID, CanAdd, CanModify, CanView) VALUES (9, 3, -1, 0, -1);"
        "INSERT INTO Permissions (UserID, FormID, CanAdd, CanModify, CanView) VALUES (9, 2, 0, 1, -1);"
        "INSERT INTO Permissions (UserID, FormID, CanAdd, CanModify, CanView) VALUES (9, 0, 1, -1, 0)");
    expect({{"9", "IMP", 3, false}, {"9", "IMP", 2, false}, {"9", "IMP", 0, true}, {"9", "EXP", 0, false}});
}

TEST_P(PermissionTest, UserIdMayCarryBlanksAndSignButNothingElse)
{
    expect({{" 1 ", "IMP", 2, true}, {"+2", "IMP", 12, true}, {"-2", "IMP", 12, false}, {"", "IMP", 12, false},
            {"two", "IMP", 12, false}, {"2.0", "IMP", 12, false}, {"99999999999999999999", "IMP", 12, false}});
}

TEST_P(PermissionTest, HostileUserIdsAreRefusedWithoutReachingTheDatabase)
{
    // Each would make an administrator of anybody, or worse, if it were pasted as it stands.
    for (const char* hostile : {"0 OR 1=1", "0 or Administrator<>0", "1; DROP TABLE UserNames",
                                "0 UNION SELECT -1", "2 --", "3)", "' OR ''='", "1\t;"}) {
        for (const char* code : {"IMP", "EXP", "EXP2", "ANY"})
            expect({{hostile, code, 12, false}});
    }
    EXPECT_EQ(rows("UserNames"), 3);
    EXPECT_EQ(rows("Permissions"), 5);
    EXPECT_EQ(SharedDatabase()->appError, 0);   // nothing ran, so nothing failed
    expect({{"1", "IMP", 2, true}});
}

TEST_P(PermissionTest, DatabaseFailuresRefuseAndChangedRightsCountAtTheNextCheck)
{
    expect({{"3", "IMP", 12, false}});
    run("UPDATE Permissions SET CanModify = -1 WHERE UserID = 3 AND FormID = 12");
    expect({{"3", "IMP", 12, true}});
    run("UPDATE UserNames SET Administrator = -1 WHERE UserID = 3");
    expect({{"3", "EXP2", 20, true}});
    run("DROP TABLE Permissions");
    // The administrator needs no Permissions row.
    expect({{"2", "IMP", 12, false}, {"2", "EXP2", 11, false}, {"1", "EXP", 4, true}});
    run("DROP TABLE UserNames");
    expect({{"1", "EXP", 4, false}});
    setSharedDatabase(nullptr);
    expect({{"1", "EXP", 4, false}});
}

INSTANTIATE_TEST_SUITE_P(Engines, PermissionTest, ::testing::Values(false, true),
                         [](const ::testing::TestParamInfo<bool>& info) {
                             return std::string(info.param ? "PostgreSQL" : "SQLite");
                         });

} // namespace
