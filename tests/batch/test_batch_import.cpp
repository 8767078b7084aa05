// tallyport-batch import end to end: the shipped sample files import into a demo database,
// faults print the window's report, renumbering needs --yes, and the gates still hold.
#include "batch_fixture.h"

#include <QDir>

namespace tp::test {
namespace {

class BatchImport : public BatchTest {
protected:
    BatchRun import(const QString& settings, const QString& user, const QString& dataSet, const QString& input,
                    const QStringList& extra = {}) const
    {
        return run(QStringList{"import", "--settings", settings, "--user", user, "--dataset", dataSet, "--input",
                               input} +
                   extra);
    }
    QString sample(const char* name) const { return QStringLiteral(TP_SOURCE_DIR "/data/") + QLatin1String(name); }
};

TEST_F(BatchImport, EverySampleFileImportsIntoTheDemoDatabase)
{
    struct Case {
        const char* settings;
        const char* dataSet;
        const char* file;
        const char* fields;
        const char* check;   // the imported rows, as the site reads them
        const char* rows;
    };
    const Case cases[] = {
        {"KRV.ini", "Customer Data", "import_customers.txt",
         "MI,Accounting ID,Address1,Address2,City,State,ZipCode,MobilePhone,WorkPhone,HomePhone",
         "SELECT CustomerNumber, ContactMI, AccountingID, Zip, Pager FROM CustomerInfo WHERE CustomerNumber > 6000 "
         "ORDER BY 1",
         "6001:A:CUST 6001:60610-    :(312) 555-0192 6002:K:CUST 6002:53203-1011:(   )    -     "
         "6003::CUST 6003:46204-    :(317) 555-0165"},
        {"KRV.ini", "Employee Data", "import_employees.txt",
         "MI,AccountingID,Address1,Address2,City,State,ZipCode,MobilePhone,WorkPhone,HomePhone",
         "SELECT EmployeeNumber, LastName, Zip, WorkPhone, BranchNumber FROM EmployeeInfo WHERE EmployeeNumber BETWEEN 5001 AND 5999 "
         "ORDER BY 1",
         "5001:Novak:60601-:(312) 555-0142:1 5002:O Neill:53202-2233:(   )    -    :2 5003:Okafor:46204-:(317) 555-0151:3"},
        {"KRV.ini", "Vehicle Data", "import_vehicles.txt", "VINNumber,Year,Make,Model,TrackerSerialNumber",
         "SELECT VehicleNumber, LicenseNumber, Field1, Year, TrackerSerialNumber FROM VehicleInfo "
         "WHERE VehicleNumber > 7000 ORDER BY 1",
         "7001:TP 7001:1:2021:310000011 7002:TP 7002:2:2022:310000012 7003:TP 7003:3:2019:310000013"},
        {"KRV.ini", "Map Locations Data", "import_map_locations.txt",
         "Address2,City,State,ZipCode,Longitude,Latitude",
         "SELECT LocationName, BranchNumber, ZipCode, Latitude FROM CommonLocations WHERE BranchNumber > 0 "
         "AND LocationName IN ('Lakefront Storage', 'Kim''s Body Shop', 'Ridge Road Depot') ORDER BY CommonLocationNumber",
         "Lakefront Storage:1:60616-    :41.8486 Kim's Body Shop:2:53204-    :43.0232 Ridge Road Depot:3:46217-5112:39.6345"},
        {"lumtrek.ini", "Pinpoints Data", "import_pinpoints.txt",
         "Address1,Address2,City,State,ZipCode,Longitude,Latitude",
         "SELECT LocationName, BranchNumber, Address2 FROM CommonLocations WHERE LocationName IN "
         "('Gate 7 North', 'O''Hare Cargo Lot', 'Pump Station 2') ORDER BY CommonLocationNumber",
         "Gate 7 North:0: O'Hare Cargo Lot:0:Lot F Pump Station 2:0:"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.file);
        const BatchRun r = import(c.settings, "1", c.dataSet, sample(c.file), {"--fields", c.fields});
        EXPECT_EQ(r.exitCode, 0) << r.err.toStdString();
        EXPECT_EQ(r.out, QStringLiteral("Importing File ''%1'' Completed Successfully\n").arg(c.file));
        EXPECT_TRUE(r.err.startsWith("End of File Scanning.\nSeveral Records are shown for final confirmation:\n"))
            << r.err.toStdString();
        EXPECT_EQ(site.rows(c.check).toStdString(), c.rows);
    }
}

// --progress adds a line per committed group to standard error and nothing to standard output;
// without it no such line appears.
TEST_F(BatchImport, ProgressLinesGoToStandardErrorOnlyWhenAskedFor)
{
    const QStringList vehicles = {"--fields", "VINNumber,Year,Make,Model,TrackerSerialNumber"};
    const BatchRun quiet = import("KRV.ini", "1", "Vehicle Data", sample("import_vehicles.txt"), vehicles);
    ASSERT_EQ(quiet.exitCode, 0) << quiet.err.toStdString();
    EXPECT_FALSE(quiet.err.contains("Records written")) << quiet.err.toStdString();
    exec("DELETE FROM VehicleInfo WHERE VehicleNumber > 7000");

    const BatchRun told =
        import("KRV.ini", "1", "Vehicle Data", sample("import_vehicles.txt"), vehicles + QStringList{"--progress"});
    ASSERT_EQ(told.exitCode, 0) << told.err.toStdString();
    EXPECT_EQ(told.out, quiet.out);
    EXPECT_EQ(told.out, "Importing File ''import_vehicles.txt'' Completed Successfully\n");
    // After everything the quiet run said, counting up to the whole file.
    ASSERT_TRUE(told.err.startsWith(quiet.err)) << told.err.toStdString();
    const QStringList lines = told.err.mid(quiet.err.size()).split('\n', Qt::SkipEmptyParts);
    ASSERT_FALSE(lines.isEmpty());
    for (const QString& line : lines)
        EXPECT_TRUE(line.startsWith("Records written: ") && line.endsWith(" of 3")) << line.toStdString();
    EXPECT_EQ(lines.last(), "Records written: 3 of 3");
    EXPECT_TRUE(told.err.endsWith('\n'));
    EXPECT_EQ(site.scalar("SELECT count(*) FROM VehicleInfo WHERE VehicleNumber > 7000"), 3);
}

TEST_F(BatchImport, AFaultPrintsTheReportAndWritesNothing)
{
    ASSERT_TRUE(writeBytes(path("vehicles.txt"), "VehicleNumber,LicenseNumber,GroupID,BranchNumber\r\n7101,TP 1,1,1\r\n"
                                                 "7102,TP 2,99,1\r\n"));
    const BatchRun r = import("KRV.ini", "2", "Vehicle Data", "vehicles.txt");
    EXPECT_EQ(r.exitCode, 1);
    EXPECT_EQ(r.err, "The field ''GROUPID'' is not a valid entry in the database.\n"
                     "1. Enter the appropriate value in the text file or\n"
                     "2. Delete this field from the text file and  uncheck it from the grid.\n"
                     "Found Value = 99\n\n");
    EXPECT_EQ(site.scalar("SELECT count(*) FROM VehicleInfo WHERE VehicleNumber > 7100"), 0);

    const BatchRun missing = import("KRV.ini", "2", "Vehicle Data", "nowhere.txt");
    EXPECT_EQ(missing.exitCode, 1);
    EXPECT_EQ(missing.err, "File does not exist : " + QDir(outDir.path()).filePath("nowhere.txt") + "\n\n");
}

TEST_F(BatchImport, RenumberingIsAnsweredYesOnlyWithYes)
{
    ASSERT_TRUE(writeBytes(path("employees.txt"), "EmployeeNumber,LastName,FirstName,BranchNumber\n1,Lee,Ann,1\n"));
    const qint64 before = site.scalar("SELECT count(*) FROM EmployeeInfo");
    const qint64 next = site.scalar("SELECT max(EmployeeNumber) + 1 FROM EmployeeInfo");
    const QString question =
        "EmployeeNumber = 1 is already in use.\nWould you like the system to select a number for you?\n";

    const BatchRun no = import("KRV.ini", "1", "Employee Data", "employees.txt");
    EXPECT_EQ(no.exitCode, 1);
    EXPECT_TRUE(no.err.endsWith(question + "[Yes/No] No (give --yes to answer Yes)\n\n")) << no.err.toStdString();
    EXPECT_EQ(no.out, "Error Importing File. Check your file\n");
    EXPECT_EQ(site.scalar("SELECT count(*) FROM EmployeeInfo"), before);

    const BatchRun yes = import("KRV.ini", "1", "Employee Data", "employees.txt", {"--yes"});
    EXPECT_EQ(yes.exitCode, 0) << yes.err.toStdString();
    EXPECT_TRUE(yes.err.endsWith(question + "[Yes/No] Yes (--yes)\n\n"));
    EXPECT_EQ(site.rows(QStringLiteral("SELECT LastName FROM EmployeeInfo WHERE EmployeeNumber = %1").arg(next)), "Lee");
}

TEST_F(BatchImport, GatesAndFieldNamesAreChecked)
{
    ASSERT_TRUE(writeBytes(path("vehicles.txt"), "VehicleNumber,LicenseNumber,GroupID,BranchNumber\n7201,TP 1,1,1\n"));
    const BatchRun guest = import("KRV.ini", "3", "Vehicle Data", "vehicles.txt");
    EXPECT_EQ(guest.exitCode, 1);
    EXPECT_TRUE(guest.err.startsWith("You do not have the appropriate user")) << guest.err.toStdString();

    const BatchRun notOffered = import("KRV.ini", "2", "Customer Data", "vehicles.txt");
    EXPECT_EQ(notOffered.exitCode, 1);
    EXPECT_EQ(notOffered.err, "Data sets offered: Vehicle Data\n\n");

    const BatchRun unknown = import("KRV.ini", "2", "Vehicle Data", "vehicles.txt", {"--fields", "Colour"});
    EXPECT_EQ(unknown.exitCode, 2);
    EXPECT_TRUE(unknown.err.startsWith("tallyport-batch: Vehicle Data has no field Colour; its fields are: "
                                       "VehicleNumber, LicenseNumber, GroupID,"))
        << unknown.err.toStdString();
    EXPECT_EQ(site.scalar("SELECT count(*) FROM VehicleInfo WHERE VehicleNumber = 7201"), 0);
}

} // namespace
} // namespace tp::test
