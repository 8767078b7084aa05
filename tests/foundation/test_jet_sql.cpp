// The Jet SQL translator: statements of the tool in both dialects, and the same statements
// run on real databases.
#include "foundation/dao.h"
#include "foundation/jet_sql.h"
#include "support/test_databases.h"

#include <gtest/gtest.h>

using tp::jet::Dialect;
using tp::jet::translate;

namespace {

struct Case {
    const char* jet;
    const char* sqlite;
    const char* postgres;
};

// The statements the tool runs are checked on both engines below; these are the forms only
// the translator sees.
const Case kCases[] = {
    {"Select * from T where A = False and B <> TRUE and C<>false",
     "Select * from T where A = 0 and B = 0 and C<>0",
     "Select * from T where A = 0 and B = 0 and C<>0"},
    {"Select distinct top 5 TrackID from GPSCoordinates order by TrackID",
     "Select distinct TrackID from GPSCoordinates order by TrackID LIMIT 5",
     "Select distinct TrackID from GPSCoordinates order by TrackID LIMIT 5"},
    {"Select * from T where X in (select top 1 Y from U order by Y) and Z = 1;",
     "Select * from T where X in (select Y from U order by Y LIMIT 1) and Z = 1;",
     "Select * from T where X in (select Y from U order by Y LIMIT 1) and Z = 1;"},
    {"UPDATE JobTimeRecords SET Approved = 2, IsJobInRecord = True WHERE IsTimeInRecord = True",
     "UPDATE JobTimeRecords SET Approved = 2, IsJobInRecord = -1 WHERE IsTimeInRecord <> 0",
     "UPDATE JobTimeRecords SET Approved = 2, IsJobInRecord = -1 WHERE IsTimeInRecord <> 0"},
    {"Select [Date], \"it's\" & Name from T", "Select \"Date\", 'it''s' || Name from T",
     "Select \"date\", 'it''s' || Name from T"},
    {"Select LCase(Name) from T", "Select lower(Name) from T", "Select lower(Name) from T"},
    {"Select VehicleInfo.Year, Make from VehicleInfo", "Select VehicleInfo.Year, Make from VehicleInfo",
     "Select VehicleInfo.\"year\", Make from VehicleInfo"},
    {"Select Date from JobTimeRecords ORDER BY Date", "Select Date from JobTimeRecords ORDER BY Date",
     "Select \"date\" from JobTimeRecords ORDER BY \"date\""},
};

TEST(JetTranslate, StatementsOfTheToolInBothDialects)
{
    for (const Case& c : kCases) {
        EXPECT_EQ(translate(QString::fromUtf8(c.jet), Dialect::SQLite), QString::fromUtf8(c.sqlite)) << c.jet;
        EXPECT_EQ(translate(QString::fromUtf8(c.jet), Dialect::PostgreSQL), QString::fromUtf8(c.postgres))
            << c.jet;
    }
}

TEST(JetTranslate, TextInsideLiteralsIsNeverTouched)
{
    const QString literals[] = {
        QStringLiteral("'Select top 1 = True'"), QStringLiteral("'O''Brien = true, Date, UCase('"),
        QStringLiteral("'[x] \"y\" & z'"), QStringLiteral("''''"), QStringLiteral("'a;b -- c'")};
    for (const QString& lit : literals) {
        const QString sql = QStringLiteral("Select * from T where Name = ") + lit + QStringLiteral(" and Date = 1");
        for (Dialect d : {Dialect::SQLite, Dialect::PostgreSQL}) {
            const QString out = translate(sql, d);
            EXPECT_TRUE(out.contains(QStringLiteral("Name = ") + lit + QStringLiteral(" and "))) << out.toStdString();
        }
    }
    // An unterminated literal swallows the rest unchanged.
    EXPECT_EQ(translate(QStringLiteral("Select * from T where A = 'x = True"), Dialect::PostgreSQL),
              QStringLiteral("Select * from T where A = 'x = True"));
}

// The server engine rebuilds statements from these tokens when it puts values in.
TEST(JetTranslate, TokensJoinBackToTheInput)
{
    const QString sql = QStringLiteral("Select top 10 a.[b c], 'x''y' ,1.5e3<>-2 from \"q\"\"r\" -- tail\n");
    QString joined;
    for (const auto& t : tp::jet::tokenize(sql))
        joined += t.text;
    EXPECT_EQ(joined, sql);
}

TEST(JetAnalyse, FindsTheSingleTableAndInsertsTheKey)
{
    auto s = tp::jet::analyseSelect(QStringLiteral("Select * from JobTimeRecords WHERE ExportID = 0 ORDER BY Date"),
                                    QStringLiteral("rowid"));
    EXPECT_TRUE(s.updatable);
    EXPECT_EQ(s.table, QStringLiteral("JobTimeRecords"));
    EXPECT_EQ(s.selectList, QStringLiteral("*"));
    EXPECT_EQ(s.keyed, QStringLiteral("Select rowid AS tp_rowkey__, * from JobTimeRecords WHERE ExportID = 0 "
                                      "ORDER BY Date"));

    s = tp::jet::analyseSelect(QStringLiteral("SELECT e.Name, e.City FROM EmployeeInfo AS e WHERE e.City = 'x'"),
                               QStringLiteral("ctid"));
    EXPECT_TRUE(s.updatable);
    EXPECT_EQ(s.table, QStringLiteral("EmployeeInfo"));
    EXPECT_EQ(s.fromClause, QStringLiteral("EmployeeInfo AS e"));
    EXPECT_EQ(s.selectList, QStringLiteral("e.Name, e.City"));

    const char* readOnly[] = {"Select * from A, B where A.x = B.x", "Select * from A inner join B on A.x = B.x",
                              "Select distinct x from A", "Select max(x) as maxim from A",
                              "Select x from A group by x", "Select * from (select * from A) q"};
    for (const char* sql : readOnly)
        EXPECT_FALSE(tp::jet::analyseSelect(QString::fromUtf8(sql), QStringLiteral("rowid")).updatable) << sql;
    EXPECT_FALSE(tp::jet::analyseSelect(QStringLiteral("Update A set x = 1"), QStringLiteral("rowid")).isSelect);
}

// The statements the tool runs, on a real database of each engine.
const char* const kRows = R"(
INSERT INTO UserNames (UserID, Administrator) VALUES (7, -1), (8, 0), (9, 1);
INSERT INTO Permissions (UserID, FormID, CanAdd, CanModify, CanView) VALUES (7, 11, -1, -1, -1), (7, 31, 0, 0, 1);
INSERT INTO JobTimeRecords (NewTimeRecordID, Date, Time, Approved, ExportID)
    VALUES (1, 20041231, 93000, 1, 0), (2, 20050115, 100000, 1, 0), (3, 20050201, 100000, 1, 0), (4, 20050101, 100000, 1, 1);
INSERT INTO VehicleInfo (VehicleNumber, LicenseNumber, Year) VALUES (12, ' abc 123 ', 2001);
INSERT INTO EmployeeTrackActivity (TrackID, EmployeeNumber, VehicleNumber, TrackingDate) VALUES (3, 5, 12, 20040101);
INSERT INTO GPSCoordinates (TrackID, Longitude, Latitude, RcvDate, RcvTime)
    VALUES (3, -81.5, 41.1, 20040101, 120000), (3, -1, 41.1, 20040101, 120100);
INSERT INTO EmployeeInfo (EmployeeNumber, Name, FirstName, LastName) VALUES (5, 'Pat', 'Pat', 'O''Neil');
)";

template <class Engine>
class JetOnEngine : public ::testing::Test {
protected:
    void SetUp() override
    {
        const QString why = engine.create(tp::test::schemaScript(Engine::kPostgres) + QString::fromUtf8(kRows));
        if (why == QString::fromLatin1(tp::test::kPgSkipMessage))
            GTEST_SKIP() << tp::test::kPgSkipMessage;
        ASSERT_TRUE(why.isEmpty()) << why.toStdString();
        ASSERT_TRUE(dao.DB_Connect(engine.location, QString(), QStringLiteral("Admin"), QString()))
            << dao.errorText.toStdString();
    }
    Engine engine;
    tp::cDAO dao;
};

using Engines = ::testing::Types<tp::test::SqliteTestEngine, tp::test::PgTestEngine>;
TYPED_TEST_SUITE(JetOnEngine, Engines, tp::test::EngineNames);

TYPED_TEST(JetOnEngine, StatementsOfTheToolRunAndSelectTheRightRows)
{
    struct Run {
        const char* sql;
        int rows;
    };
    const Run runs[] = {
        {"Select top 1 Administrator from UserNames where UserID=7", 1},
        {"Select top 1 * from Permissions Where FormID=11 And UserID=7 And CanAdd = True And CanModify = True", 1},
        {"Select top 1 * from Permissions Where FormID=31 And UserID=7 And CanAdd = True And CanModify = True", 0},
        {"Select  * from Permissions Where UserID=7 And CanView = True And FormID in (31,11)", 2},
        {"Select top 1 * from UserNames Where Administrator=true And UserID=7", 1},
        {"Select * from UserNames Where Administrator = True", 2},   // -1 and 1 are both true
        {"Select * from UserNames Where Administrator = False", 1},
        {"Select * from CommonLocations", 0},
        {"Select * from JobTimeRecords WHERE ExportID = 0 AND Approved = 1  AND Date >= 20041231 AND Date <= "
         "20050131 ORDER BY Date", 2},
        {"Select Date from JobTimeRecords WHERE ExportID = 0 AND Approved = 1  AND Date >= 20041231 AND Date <= "
         "20050131 ORDER BY Date", 2},
        {"Select * FROM InventoryHistory WHERE Approved = 1 AND ExportID = 0 AND Date >= 20041231 AND Date <= "
         "20050131 ORDER BY Date", 0},
        {"SELECT VehicleNumber FROM EmployeeTrackActivity WHERE TrackID = 3", 1},
        {"SELECT *  FROM VehicleInfo WHERE VehicleNumber = 12", 1},
        {"SELECT EmployeeInfo.* FROM EmployeeInfo WHERE EmployeeNumber   = 5 ORDER BY EmployeeInfo.EmployeeNumber", 1},
        {"SELECT VehicleInfo.*  FROM VehicleInfo WHERE VehicleNumber = 12 ORDER BY VehicleInfo.VehicleNumber", 1},
        {"SELECT * FROM EmployeeTrackActivity WHERE VehicleNumber = 12 AND EmployeeNumber = 5 AND TrackingDate >= "
         "20040101 AND TrackingDate  <= 20041231 Order BY TrackingDate", 1},
        {"SELECT * FROM GPSCoordinates   WHERE TrackID = 3 AND GPSCoordinates.Latitude <> -1 AND "
         "GPSCoordinates.Longitude <> -1 AND GPSCoordinates.RcvDate = 20040101", 1},
        {"Select * from GPSCoordinates WHERE TrackID = 3 AND Longitude <> -1 AND Latitude <> -1  Order By RcvDate, RcvTime", 1},
        {"Select * from EmployeeTrackActivity Order By EmployeeNumber,VehicleNumber, TrackingDate", 1},
        {"Select top 1 * from VehicleInfo where UCase(trim(LicenseNumber)) = 'ABC 123'", 1},
        {"Select top 1 * from CommonLocations where LocationName = 'O''Neil''s'", 0},
        {"Select top 1 * FROM BranchInfo WHERE BranchNumber = 4", 0},
        {"Select max(VehicleNumber) as maxim from VehicleInfo", 1},
        {"Select VehicleInfo.Year, Year from VehicleInfo where Year = 2001", 1},
    };
    for (const Run& r : runs) {
        EXPECT_EQ(this->dao.Reco_Count(QString::fromUtf8(r.sql)), r.rows) << r.sql;
        EXPECT_EQ(this->dao.appError, 0) << r.sql << ": " << this->dao.errorText.toStdString();
    }
    // Names are found whatever their letter case.
    tp::RecordsetPtr rs = this->dao.RecSet_Stat(QStringLiteral("Select * from VehicleInfo where vehiclenumber = 12"));
    ASSERT_TRUE(rs);
    EXPECT_EQ(rs->value(QStringLiteral("YEAR")).toLongLong(), 2001);
    EXPECT_EQ(rs->value(QStringLiteral("licensenumber")).toString(), QStringLiteral(" abc 123 "));
}

TYPED_TEST(JetOnEngine, UpdatesWithTruthLiteralsWriteJetValues)
{
    this->dao.Exec(QStringLiteral("UPDATE UserNames SET Administrator = True WHERE Administrator = False"));
    ASSERT_EQ(this->dao.appError, 0) << this->dao.errorText.toStdString();
    tp::RecordsetPtr rs = this->dao.RecSet_Stat(QStringLiteral("Select Administrator from UserNames where UserID = 8"));
    ASSERT_TRUE(rs);
    EXPECT_EQ(rs->value(0).toLongLong(), -1);
    EXPECT_EQ(this->dao.Reco_Count(QStringLiteral("Select * from UserNames Where Administrator = False")), 0);
}

} // namespace
