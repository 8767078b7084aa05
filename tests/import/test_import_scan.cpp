// Scanning import files through the session on both engines: headings, record lines, the
// checks with their look-ups, optional faults and the confirmation sample.
#include "import_fixture.h"

namespace tp::test {
namespace {

template <class E>
class ImportScan : public ImportTest<E> {};
TYPED_TEST_SUITE(ImportScan, ImportEngines, EngineNames);

struct Case {
    const char* file;
    qint16 result;         // 0: accepted
    const char* report;    // a part of the report that must be there
};

// Map locations with a branch in the database: LocationName, BranchNumber and Address1 are
// required and ticked; City is ticked on top for these cases.
TYPED_TEST(ImportScan, HeadingsAndRecordLinesOfMapLocations)
{
    const Case cases[] = {
        {"locationname,BRANCHNUMBER,Address1,city\nYard,1,1 Main St,Reno\n", 0, ""},
        {"LocationName,BranchNumber,Address1\nYard,1,1 Main St\n", 1,
         "The heading ''City'' is selected but does not exist in the text file or is in the wrong order."},
        {"LocationName,LocationName,BranchNumber,Address1,City\n", 16, "The heading ''LocationName'' in your file is invalid."},
        {"LocationName,Address1,BranchNumber,City\n", 1, "The heading ''BranchNumber'' is selected"},
        {"LocationName,BranchNumber,Address1,Address2,City\n", 2,
         "The heading ''Address2'' exists in the text file but it is not selected."},
        {"LocationName,BranchNumber,Address1,Town\n", 16, "The heading ''Town'' in your file is invalid."},
        {"LocationName,BranchNumber, Address1,City\n", 16, "The heading '' Address1'' in your file is invalid."},
        {"LocationName,BranchNumber,Address1,City\nYard,1,1 Main St\n", 3,
         "Expecting 4 fields  in record number 1 of your text file:"},
        {"LocationName,BranchNumber,Address1,City\nYard,1,1 Main St,Reno,x\n", 4, "Expecting 4 fields  in record number 1"},
        {"LocationName,BranchNumber,Address1,City\r\nYard,1,1 Main St,Reno\r\n\r\nLot,1,2 Main St,Reno\r\n", 3,
         "in record number 2 of your text file:"},
        {"LocationName,BranchNumber,Address1,City\nYard,1,1 Main St,Reno\n\n", 3, "\r\nFound Value = Empty Row"},
        {"LocationName,BranchNumber,Address1,City\n , , , \n", 3, "Found Value = Empty Row"},
        {"LocationName,BranchNumber,Address1,City\n", -1, "The field value '''' can not be empty."},
        {"LocationName,BranchNumber,Address1,City", -1, "The field value '''' can not be empty."},
        {"", 1, "The heading ''LocationName'' is selected but does not exist"},
        {"LocationName,BranchNumber,Address1,City\nYard,9,1 Main St,Reno\n", 8,
         "The field ''BranchNumber'' is not a valid entry in the database.\r\n1. Enter the appropriate value"},
        {"LocationName,BranchNumber,Address1,City\nYard,x1,1 Main St,Reno\n", 6,
         "Data type mismatch: ''BranchNumber'' must be an integer value .\r\nFound Value = x1"},
        {"LocationName,BranchNumber,Address1,City\nABCDEFGHIJKLMNOPQRSTUVWXYZABCDE,1,1 Main St,Reno\n", 24,
         "Found Value = ABCDEFGHIJKLMNOPQRSTUVWXYZABCDE Invalid length"},
        {"LocationName,BranchNumber,Address1,City\n'Yard,1,1 Main St,Reno\n", 25,
         "Invalid field provided: [LocationName] - cannot contain single or double quotes\r\nFound Value = 'Yard"},
        {"LocationName,BranchNumber,Address1,City\n   ,1,1 Main St,Reno\n", 99,
         "The field 'LocationName' can not be empty.\r\nPlease enter the appropriate value for this field. "},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.file);
        this->feedback.shown.clear();
        this->choose(ImportDataType::MapLocations, {QStringLiteral("City")});
        const ImportScanOutcome out = this->scan(c.file);
        if (c.result == 0) {
            EXPECT_EQ(out.kind, ImportScanOutcome::Accepted) << out.report.toStdString();
            EXPECT_TRUE(this->feedback.messages().isEmpty());
            continue;
        }
        EXPECT_EQ(out.kind, ImportScanOutcome::Fault);
        EXPECT_EQ(out.result, c.result);
        EXPECT_TRUE(out.report.contains(QString::fromUtf8(c.report))) << out.report.toStdString();
        EXPECT_EQ(this->feedback.messages(), QStringList{out.report});
        EXPECT_FALSE(this->session.readyToImport());
    }
}

TYPED_TEST(ImportScan, OptionalFaultsAreStoredEmptyAndTheSampleShowsThem)
{
    this->choose(ImportDataType::MapLocations, {"City", "State", "ZipCode", "Longitude", "Latitude"});
    const ImportScanOutcome out = this->scan(
        "LocationName,BranchNumber,Address1,City,State,ZipCode,Longitude,Latitude\n"
        "  Yard  ,1,1 Main St,A & B,ZZ,12345,-180,90\n"
        "Lot,2,O'Hara \"Rd\" 5,Reno,ca,1234,180.0001,-90\n"
        "Hut,2,3 Elm,Reno,TX,12345 6789,1.5e1,0\n");
    ASSERT_EQ(out.kind, ImportScanOutcome::Accepted) << out.report.toStdString();
    EXPECT_TRUE(this->feedback.messages().isEmpty());
    EXPECT_EQ(this->session.lastRecordNumber(), 3);
    EXPECT_EQ(this->session.formatText(),
              "End of File Scanning.\r\nSeveral Records are shown for final confirmation:\r\n"
              "''LocationName'' , ''BranchNumber'' , ''Address1'' , ''City'' , ''State'' , ''ZipCode'' , ''Longitude'' , ''Latitude''\r\n"
              "1 , ''Yard'' , ''1 Main St'' , '''' , '''' , ''12345-'' , -180 , 90\r\n"
              "2 , ''Lot'' , ''O'Hara \"Rd\" 5'' , ''Reno'' , '''' , '''' , 0 , -90\r\n"
              "2 , ''Hut'' , ''3 Elm'' , ''Reno'' , ''TX'' , ''12345-6789'' , 15 , 0\r\n"
              "e.t.c.");
    EXPECT_EQ(this->feedback.lastStatus, kScanReady);
    EXPECT_TRUE(this->feedback.statuses.contains(QStringLiteral("100 % Completed")));
}

TYPED_TEST(ImportScan, VehicleChecksAndLookUps)
{
    const Case cases[] = {
        {"VehicleNumber,LicenseNumber,GroupID,Year,TrackerSerialNumber,BranchNumber\n1,TP 1,1,1949,310000003,1\n", 0, ""},
        {"VehicleNumber,LicenseNumber,GroupID,Year,TrackerSerialNumber,BranchNumber\n1,TP 1,9,2001,310000001,1\n", 13,
         "The field ''GROUPID'' is not a valid entry in the database."},
        {"VehicleNumber,LicenseNumber,GroupID,Year,TrackerSerialNumber,BranchNumber\n0,TP 1,1,2001,310000001,1\n", 6,
         "''VehicleNumber''"},
        {"VehicleNumber,LicenseNumber,GroupID,Year,TrackerSerialNumber,BranchNumber\nseven,TP 1,1,2001,310000001,1\n", 6,
         "Found Value = seven"},
        {"VehicleNumber,LicenseNumber,GroupID,Year,TrackerSerialNumber,BranchNumber\n1234567890,TP 1,1,2001,310000001,1\n", 6,
         "Found Value = 1234567890"},
        {"VehicleNumber,LicenseNumber,GroupID,Year,TrackerSerialNumber,BranchNumber\n1,TP-1,1,2001,310000001,1\n", 21,
         "Invalid field provided: [LicenseNumber] - must be less than or equal to 10 Alphas,Numbers & Spaces in length."
         "\r\nFound Value = TP-1 - Non AlphaNumeric symbols"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.file);
        this->choose(ImportDataType::Vehicles, {"Year", "TrackerSerialNumber"});
        const ImportScanOutcome out = this->scan(c.file);
        if (c.result == 0) {
            ASSERT_EQ(out.kind, ImportScanOutcome::Accepted) << out.report.toStdString();
            // Optional Year 1949 and an unknown serial are dropped without a word.
            EXPECT_TRUE(this->session.formatText().endsWith("\r\n1 , ''TP 1'' , 1 , 0 , '''' , ''1''\r\ne.t.c."))
                << this->session.formatText().toStdString();
            continue;
        }
        EXPECT_EQ(out.result, c.result);
        EXPECT_TRUE(out.report.contains(QString::fromUtf8(c.report))) << out.report.toStdString();
    }
}

TYPED_TEST(ImportScan, CustomerHeadingsNeedTheBlankInAccountingId)
{
    this->choose(ImportDataType::Customers, {"Accounting ID"});
    EXPECT_EQ(this->scan("CustomerNumber,CompanyName,LastName,FirstName,AccountingID,BranchNumber\n").result, 16);
    const ImportScanOutcome out =
        this->scan("customernumber,CompanyName,LastName,FirstName,ACCOUNTING ID,BranchNumber\n11,Acme,Lee,Ann,AC 1,2\n");
    ASSERT_EQ(out.kind, ImportScanOutcome::Accepted) << out.report.toStdString();
    EXPECT_TRUE(this->session.formatText().contains("\r\n11 , 2 , ''Acme'' , ''Lee'' , ''Ann'' , ''AC 1''\r\n"))
        << this->session.formatText().toStdString();
}

TYPED_TEST(ImportScan, TenRecordsAtMostInTheSample)
{
    this->choose(ImportDataType::Pinpoints);
    QByteArray content = "PinpointName\n";
    for (int i = 1; i <= 25; ++i)
        content += "Pin " + QByteArray::number(i) + "\n";
    ASSERT_EQ(this->scan(content).kind, ImportScanOutcome::Accepted);
    const QStringList lines = this->session.formatText().split("\r\n");
    EXPECT_EQ(lines.size(), 3 + 10 + 1);
    EXPECT_EQ(lines[3], "''Pin 1''");
    EXPECT_EQ(lines.last(), "e.t.c.");
    EXPECT_EQ(this->session.lastRecordNumber(), 25);
}

// A blank required row after an optional, unticked one is not on the required list: its
// fault is dropped like an optional one's.
TYPED_TEST(ImportScan, RequiredListFollowsTheRowAfterTheLastMatch)
{
    this->choose(ImportDataType::Employees);
    const ImportScanOutcome out = this->scan("EmployeeNumber,LastName,FirstName,BranchNumber\n12,Lee,,1\n");
    ASSERT_EQ(out.kind, ImportScanOutcome::Accepted) << out.report.toStdString();
    EXPECT_EQ(this->session.records().required, (QStringList{"EMPLOYEENUMBER", "LASTNAME"}));
    EXPECT_EQ(this->scan("EmployeeNumber,LastName,FirstName,BranchNumber\n12,,Ann,1\n").result, 99);
}

// Whatever the bytes, a scan ends in a report or in records to import.
TYPED_TEST(ImportScan, BadFilesEndInAReportOrImport)
{
    QByteArray longLine = "PinpointName\n" + QByteArray(50 * 1024 * 1024, 'x') + "\n";
    const struct {
        const char* what;
        QByteArray bytes;
        qint16 result;   // 0: accepted
        qint32 records;
    } cases[] = {
        {"empty", "", 1, 0},
        {"binary", QByteArray("\x7f" "ELF\x02\x01\x01\0\0\0\n\xff\xfe,\x01", 16), 16, 0},
        {"NUL in a value", QByteArray("PinpointName\nGate\0 4\n", 22), 24, 0},
        {"invalid UTF-8", "PinpointName\nGate \xc3\x28\n", 24, 0},
        {"Windows-1252 text", "PinpointName\nCaf\xe9 Lot\n", 24, 0},
        {"UTF-8 text", "PinpointName\nCaf\xc3\xa9 Lot\n", 24, 0},
        {"CRLF", "PinpointName\r\nGate 4\r\nGate 5\r\n", 0, 2},
        {"LF, no final line end", "PinpointName\nGate 4\nGate 5", 0, 2},
        {"a 50 MB line", longLine, 24, 0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        this->feedback.shown.clear();
        this->choose(ImportDataType::Pinpoints);
        const ImportScanOutcome out = this->scan(c.bytes);
        EXPECT_EQ(out.result, c.result) << out.report.toStdString();
        EXPECT_EQ(out.kind, c.result ? ImportScanOutcome::Fault : ImportScanOutcome::Accepted);
        EXPECT_EQ(this->feedback.messages().size(), c.result ? 1 : 0);
        EXPECT_EQ(this->session.lastRecordNumber(), c.records);
    }
}

} // namespace
} // namespace tp::test
