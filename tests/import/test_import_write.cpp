// Writing scanned imports on both engines: renumbering, refusals, clashes, write-time checks
// that leave the earlier rows written, columns and their fixed defaults, hostile text.
#include "import/grouped_insert.h"
#include "import/import_writer.h"
#include "import_fixture.h"

namespace tp::test {
namespace {

template <class E>
class ImportWrite : public ImportTest<E> {};
TYPED_TEST_SUITE(ImportWrite, ImportEngines, EngineNames);

const QByteArray kEmployees = "EmployeeNumber,LastName,FirstName,BranchNumber\n";

TYPED_TEST(ImportWrite, TakenNumbersAreRenumberedToMaxPlusOneAndTwoOnYes)
{
    this->choose(ImportDataType::Employees);
    this->feedback.answers = {AnswerYes, AnswerYes};
    // Numbers are compared with the database only: 20 twice in the file is written twice.
    const ImportWriteOutcome out =
        this->scanAndWrite(kEmployees + "5,Lee,Ann,1\n20,Kim,Bo,2\n7,Ray,Cy,1\n20,Dee,Eve,1\n");
    EXPECT_EQ(out.result, 0);
    EXPECT_EQ(out.written, 4);
    EXPECT_EQ(out.status, "Importing File ''import.txt'' Completed Successfully");
    EXPECT_EQ(this->feedback.questions(),
              (QStringList{"EmployeeNumber = 5 is already in use.\rWould you like the system to select a number for you?",
                           "EmployeeNumber = 7 is already in use.\rWould you like the system to select a number for you?"}));
    EXPECT_EQ(this->rows("SELECT EmployeeNumber, LastName, BranchNumber FROM EmployeeInfo WHERE EmployeeNumber > 7 "
                         "ORDER BY EmployeeNumber, LastName"),
              "8|Lee|1\n9|Ray|1\n20|Dee|1\n20|Kim|2");
    EXPECT_EQ(this->session.lastRecordNumber(), 0);   // cannot be written twice
}

TYPED_TEST(ImportWrite, RefusalsAndClashesWriteNothing)
{
    struct Case {
        ImportDataType type;
        QByteArray file;
        std::deque<short> answers;
        const char* table;
        const char* shown;
    };
    const Case cases[] = {
        {ImportDataType::Employees, kEmployees + "30,Lee,Ann,1\n5,Kim,Bo,2\n", {AnswerNo}, "EmployeeInfo",
         "EmployeeNumber = 5 is already in use."},
        {ImportDataType::Customers, "CustomerNumber,CompanyName,LastName,FirstName,BranchNumber\n4,Acme,Lee,Ann,1\n",
         {AnswerNo}, "CustomerInfo",
         "Customer number = 4 is already in use.\rWould you like the system to select a number for you?."},
        {ImportDataType::Vehicles, "VehicleNumber,LicenseNumber,GroupID,BranchNumber\n40,TP 1,1,1\n41, abc 123 ,2,1\n",
         {}, "VehicleInfo", "Vehicle LicenseNumber = abc 123 is already in use.\rCheck your file and correct the problem."},
        {ImportDataType::Vehicles, "VehicleNumber,LicenseNumber,GroupID,BranchNumber\n3,TP 1,1,1\n", {AnswerNo},
         "VehicleInfo", "Vehicle number = 3 is already in use."},
        {ImportDataType::MapLocations, "LocationName,BranchNumber,Address1\nNew Yard,1,1 Main\nO'Brien Yard,1,2 Main\n",
         {AnswerNo}, "CommonLocations",
         "The provided name O'Brien Yard already\rexists in the database.\rWould you like to add it anyway?\r\r"
         "If you click No, the Import process will stop."},
        {ImportDataType::MapLocations, "LocationName,BranchNumber,Address1\ndepot,1,1 Main\n", {AnswerNo},
         "CommonLocations", "The provided name depot already"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.file.toStdString());
        const qint64 before = this->count(QLatin1String(c.table));
        this->feedback.shown.clear();
        this->feedback.answers = c.answers;
        this->choose(c.type);
        const ImportWriteOutcome out = this->scanAndWrite(c.file);
        EXPECT_EQ(out.result, -1);
        EXPECT_EQ(out.status, kImportErrorStatus);
        EXPECT_EQ(this->feedback.lastStatus, kImportErrorStatus);
        ASSERT_FALSE(this->feedback.shown.empty());
        EXPECT_TRUE(this->feedback.shown.back().text.startsWith(QString::fromUtf8(c.shown)))
            << this->feedback.shown.back().text.toStdString();
        EXPECT_EQ(this->count(QLatin1String(c.table)), before);
    }
}

TYPED_TEST(ImportWrite, DuplicateNamesAddedAnywayGetNewNumbers)
{
    this->choose(ImportDataType::MapLocations);
    this->feedback.answers = {AnswerYes, AnswerYes};
    const ImportWriteOutcome out =
        this->scanAndWrite("LocationName,BranchNumber,Address1\nDepot,1,1 Main\nO'Brien Yard,2,2 Main\nFresh,1,3 Main\n");
    EXPECT_EQ(out.result, 0);
    EXPECT_EQ(this->feedback.questions().size(), 2);
    EXPECT_EQ(this->rows("SELECT CommonLocationNumber, BranchNumber, LocationName, Address1 FROM CommonLocations "
                         "WHERE CommonLocationNumber > 2 ORDER BY CommonLocationNumber"),
              "3|1|Depot|1 Main\n4|2|O'Brien Yard|2 Main\n5|1|Fresh|3 Main");
}

// A branch fault of a BranchNumber the scan took as optional (an unticked row stood before
// it) and a blank first name both stop at their record; the records before stay written.
TYPED_TEST(ImportWrite, WriteTimeChecksLeaveEarlierRowsWritten)
{
    struct Case {
        ImportDataType type;
        QByteArray file;
        const char* table;
        const char* notice;
    };
    const Case cases[] = {
        {ImportDataType::Employees, kEmployees + "30,Lee,Ann,1\n31,Kim,Bo,9\n32,Ray,Cy,1\n", "EmployeeInfo",
         "BranchNumber = 0 in record # 2 is not a valid entry in the database.\r\n1 record(s) processed successfully."},
        {ImportDataType::Employees, kEmployees + "33,Lee,Ann,1\n34,Kim,Bo,1\n35,Ray, ,1\n", "EmployeeInfo",
         "FirstName = ''''  in record # 3 can not be an empty field.\r\n2 record(s) processed successfully."},
        {ImportDataType::Vehicles, "VehicleNumber,LicenseNumber,GroupID,Year,BranchNumber\n40,TP 1,1,2001,1\n41,TP 2,1,2001,7\n",
         "VehicleInfo",
         "BranchNumber = 0  in record # 2 is not a valid entry in the database.\r\n1  record(s) processed successfully."},
        {ImportDataType::Customers, "CustomerNumber,CompanyName,LastName,FirstName,ZipCode,BranchNumber\n"
                                    "40,Acme,Lee,Ann,12345,1\n41,Bolt,Kim,Bo,12345,5\n",
         "CustomerInfo", "BranchNumber = 0 is not a valid entry in the database.\r\n1 record(s) processed successfully."},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.file.toStdString());
        this->feedback.shown.clear();
        const qint64 before = this->count(QLatin1String(c.table));
        this->choose(c.type, c.type == ImportDataType::Vehicles ? QStringList{"Year"}
                             : c.type == ImportDataType::Customers ? QStringList{"ZipCode"} : QStringList{});
        const ImportWriteOutcome out = this->scanAndWrite(c.file);
        EXPECT_EQ(out.result, -1);
        EXPECT_EQ(this->feedback.messages(), QStringList{QString::fromUtf8(c.notice)});
        EXPECT_EQ(this->count(QLatin1String(c.table)), before + out.written);
        EXPECT_EQ(out.written, QString::fromUtf8(c.notice).section("\r\n", 1).section(' ', 0, 0).toInt());
    }
}

TYPED_TEST(ImportWrite, EmployeeDefaultsAndTheTwoZipForms)
{
    this->choose(ImportDataType::Employees);
    ASSERT_EQ(this->scanAndWrite(kEmployees + "50,Lee,Ann,1\n").result, 0);
    EXPECT_EQ(this->rows("SELECT Zip, MobilePhone, WorkPhone, Phone, Pager FROM EmployeeInfo WHERE EmployeeNumber = 50"),
              "     -    |(   )    -    |(   )    -    |(   )    -    |(   )    -    ");

    this->choose(ImportDataType::Employees, {"ZipCode", "MobilePhone", "HomePhone", "State", "MI"});
    ASSERT_EQ(this->scanAndWrite("EmployeeNumber,LastName,MI,FirstName,State,ZipCode,MobilePhone,HomePhone,BranchNumber\n"
                                 "51,Lee,Q,Ann,NY,12345,(555) 123-4567,(___) 765-4321,2\n")
                  .result,
              0);
    EXPECT_EQ(this->rows("SELECT MI, State, Zip, MobilePhone, WorkPhone, Phone, Pager, BranchNumber FROM EmployeeInfo "
                         "WHERE EmployeeNumber = 51"),
              "Q|NY|12345-|(555) 123-4567|(   )    -    |(000) 765-4321|(   )    -    |2");

    this->choose(ImportDataType::Customers, {"ZipCode", "HomePhone"});
    ASSERT_EQ(this->scanAndWrite("CustomerNumber,CompanyName,LastName,FirstName,ZipCode,HomePhone,BranchNumber\n"
                                 "60,Acme,Lee,Ann,12345,(555) 123-4567,1\n61,Bolt,Kim,Bo,     -    ,,1\n")
                  .result,
              0);
    EXPECT_EQ(this->rows("SELECT CustomerNumber, CompanyName, ContactLastName, ContactFirstName, Zip, Pager, MobilePhone "
                         "FROM CustomerInfo WHERE CustomerNumber >= 60 ORDER BY CustomerNumber"),
              "60|Acme|Lee|Ann|12345-    |(555) 123-4567|(   )    -    \n"
              "61|Bolt|Kim|Bo|-|(   )    -    |(   )    -    ");
}

TYPED_TEST(ImportWrite, VehicleColumnsAndPinpointsIntoLocationName)
{
    this->choose(ImportDataType::Vehicles, {"VINNumber", "Year", "Make", "TrackerSerialNumber"});
    ASSERT_EQ(this->scanAndWrite("VehicleNumber,LicenseNumber,GroupID,VINNumber,Year,Make,TrackerSerialNumber,BranchNumber\n"
                                 "44, tp 9 ,2,1FT 123,2039,Ford,310000002,2\n45,TP 10,1,,2040,,x,1\n")
                  .result,
              0);
    const QString today = ImportDateAcquired();
    EXPECT_EQ(today.size(), 8);
    EXPECT_EQ(this->rows("SELECT VehicleNumber, LicenseNumber, Field1, VINNumber, Year, Make, TrackerSerialNumber, "
                         "BranchNumber, VehicleDescription, DateAcquired FROM VehicleInfo WHERE VehicleNumber >= 44 "
                         "ORDER BY VehicleNumber"),
              "44|tp 9|2|1FT 123|2039|Ford|310000002|2|?|" + today + "\n45|TP 10|1||0|||1|?|" + today);

    this->choose(ImportDataType::Pinpoints, {"Longitude", "Latitude"});
    ASSERT_EQ(this->scanAndWrite("PinpointName,Longitude,Latitude\nGate 4,-87.5,41.25\n").result, 0);
    EXPECT_EQ(this->rows("SELECT CommonLocationNumber, BranchNumber, LocationName, Longitude, Latitude FROM CommonLocations "
                         "WHERE CommonLocationNumber = 3"),
              "3|0|Gate 4|-87.5|41.25");
}

TYPED_TEST(ImportWrite, HostileTextIsStoredAsItStands)
{
    this->choose(ImportDataType::Employees, {"Address1", "Address2"});
    const ImportWriteOutcome out = this->scanAndWrite(
        "EmployeeNumber,LastName,FirstName,Address1,Address2,BranchNumber\n"
        "70,DROP TABLE EmployeeInfo,Bobby,O'Hara \"x\" -- /* 1 OR 1 */ (1),x'); DELETE FROM EmployeeInfo; --,1\n");
    EXPECT_EQ(out.result, 0);
    EXPECT_EQ(this->rows("SELECT LastName, Address1, Address2 FROM EmployeeInfo WHERE EmployeeNumber = 70"),
              "DROP TABLE EmployeeInfo|O'Hara \"x\" -- /* 1 OR 1 */ (1)|");
    EXPECT_EQ(this->count("EmployeeInfo"), 3);
}

// A row the database refuses (here a trigger) stops the import there with every row before it
// written and none after, wherever it falls: in the first batch, or batches into a group that
// is not committed yet (which PostgreSQL then spoils, so its earlier rows are written again).
TYPED_TEST(ImportWrite, ARowTheDatabaseRefusesStopsTheImportThere)
{
    if (TypeParam::kPostgres) {
        this->db.Exec("CREATE FUNCTION refuse_boom() RETURNS trigger AS $$ BEGIN IF NEW.lastname = 'Boom' THEN "
                      "RAISE EXCEPTION 'boom'; END IF; RETURN NEW; END $$ LANGUAGE plpgsql");
        this->db.Exec("CREATE TRIGGER boom BEFORE INSERT ON employeeinfo FOR EACH ROW EXECUTE FUNCTION refuse_boom()");
    } else {
        this->db.Exec("CREATE TRIGGER boom BEFORE INSERT ON EmployeeInfo WHEN NEW.LastName = 'Boom' "
                      "BEGIN SELECT RAISE(ABORT, 'boom'); END");
    }
    ASSERT_EQ(this->db.appError, 0) << this->db.errorText.toStdString();
    for (const qint32 bad : {3, kImportBatchRows * 2 + 17}) {
        SCOPED_TRACE(bad);
        this->db.Exec("DELETE FROM EmployeeInfo WHERE EmployeeNumber >= 1000");
        QByteArray file = kEmployees;
        for (qint32 i = 1; i <= bad + 5; ++i)
            file += QByteArray::number(999 + i) + (i == bad ? ",Boom,Cy,1\n" : ",Lee,Ann,1\n");
        this->feedback.shown.clear();
        this->choose(ImportDataType::Employees);
        const ImportWriteOutcome out = this->scanAndWrite(file);
        EXPECT_EQ(out.result, -1);
        EXPECT_EQ(out.written, bad - 1);
        ASSERT_EQ(this->feedback.messages().size(), 1);
        EXPECT_TRUE(this->feedback.messages()[0].startsWith(QStringLiteral("Record # %1 could not be saved: ").arg(bad)));
        EXPECT_TRUE(this->feedback.messages()[0].endsWith(
            QStringLiteral("\r\n%1 record(s) processed successfully.").arg(bad - 1)));
        EXPECT_EQ(this->rows("SELECT count(*), min(EmployeeNumber), max(EmployeeNumber) FROM EmployeeInfo "
                             "WHERE EmployeeNumber >= 1000"),
                  QStringLiteral("%1|1000|%2").arg(bad - 1).arg(998 + bad));
    }
}

// A group the database refuses at its commit (a deferred check on the server) is undone as a
// whole: the notice names its first record and nothing of it is left.
TYPED_TEST(ImportWrite, AGroupRefusedAtItsCommitIsUndoneAndTold)
{
    if (!TypeParam::kPostgres)
        GTEST_SKIP() << "SQLite checks every row when it is added";
    this->db.Exec("CREATE FUNCTION refuse_late() RETURNS trigger AS $$ BEGIN IF NEW.lastname = 'Late' THEN "
                  "RAISE EXCEPTION 'late'; END IF; RETURN NULL; END $$ LANGUAGE plpgsql");
    this->db.Exec("CREATE CONSTRAINT TRIGGER late AFTER INSERT ON employeeinfo DEFERRABLE INITIALLY DEFERRED "
                  "FOR EACH ROW EXECUTE FUNCTION refuse_late()");
    ASSERT_EQ(this->db.appError, 0) << this->db.errorText.toStdString();
    this->choose(ImportDataType::Employees);
    const ImportWriteOutcome out = this->scanAndWrite(kEmployees + "80,Lee,Ann,1\n81,Late,Bo,1\n82,Ray,Di,1\n");
    EXPECT_EQ(out.result, -1);
    EXPECT_EQ(out.written, 0);
    ASSERT_EQ(this->feedback.messages().size(), 1);
    EXPECT_TRUE(this->feedback.messages()[0].startsWith("Record # 1 could not be saved: "));
    EXPECT_TRUE(this->feedback.messages()[0].contains("late"));
    EXPECT_EQ(this->rows("SELECT count(*) FROM EmployeeInfo WHERE EmployeeNumber >= 80"), "0");
}

TYPED_TEST(ImportWrite, NothingScannedIsAnError)
{
    this->choose(ImportDataType::Pinpoints);
    const ImportWriteOutcome out = this->session.importToDatabase(QStringLiteral("none.txt"));
    EXPECT_EQ(out.result, -1);
    EXPECT_EQ(out.status, "Error Importing File. Check your file");
}

} // namespace
} // namespace tp::test
