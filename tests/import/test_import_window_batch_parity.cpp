// The Import window and tallyport-batch import, given the same file and choices on the same
// database, write the same rows.
#include "import_window_fixture.h"

#include "support/programs.h"

namespace tp::test {
namespace {

const auto* const kParityGui = ::testing::AddGlobalTestEnvironment(new GuiEnvironment);

struct ParityCase {
    const char* dataSet;
    const char* fileName;
    QByteArray content;
    std::vector<int> ticks;   // optional grid rows the window ticks
    const char* fields;       // the same rows for --fields
    std::deque<short> answers;
    const char* rows;         // the statement that reads back what the import wrote
    const char* undo;         // and the one that takes it out again
};

class ImportWindowBatchParity : public ImportWindowTest {};

TEST_F(ImportWindowBatchParity, SameFileAndChoicesWriteTheSameRows)
{
    const qint64 maxEmployee = site.scalar(QStringLiteral("Select max(EmployeeNumber) from EmployeeInfo"));
    const QString newEmployees = QStringLiteral(" from EmployeeInfo where EmployeeNumber > %1 or LastName like 'Par%'")
                                     .arg(maxEmployee);
    const QString employeeRows = QStringLiteral("Select EmployeeNumber, Name, LastName, FirstName, MI, AccountingID, "
                                                "BranchNumber, Address1, Address2, City, State, Zip, MobilePhone, "
                                                "WorkPhone, Phone, Pager") +
                                 newEmployees + QStringLiteral(" order by EmployeeNumber");
    const QString employeeUndo = QStringLiteral("Delete") + newEmployees;

    const ParityCase cases[] = {
        {"Employee Data", "employees.txt",
         "EmployeeNumber,LastName,FirstName,City,ZipCode,MobilePhone,BranchNumber\r\n"
         "1,Parker,Ann,Chicago,60601-,(312) 555-0101,1\r\n"
         "9001,Parisi,Luca,Milwaukee,53202-1234,,2\r\n"
         "9002,Parr,Mia,Gary,46402-,(219) 555-0199,1\r\n",
         {8, 10, 11},
         "City,ZipCode,MobilePhone",
         {AnswerYes},
         nullptr,
         nullptr},
        {"Map Locations Data", "locations.txt",
         "LocationName,BranchNumber,Address1,City,State,Longitude,Latitude\n"
         "Parity Depot,1,1 Main St,Chicago,IL,-87.6298,41.8781\n"
         "Parity O'Hare Lot,2,10000 W Balmoral Ave,Chicago,IL,-87.9073,41.9742",
         {5, 6, 8, 9},
         "City,State,Longitude,Latitude",
         {},
         "Select CommonLocationNumber, BranchNumber, LocationName, Address1, Address2, City, State, ZipCode, "
         "Longitude, Latitude from CommonLocations where LocationName like 'Parity%' order by CommonLocationNumber",
         "Delete from CommonLocations where LocationName like 'Parity%'"},
    };
    for (const ParityCase& c : cases) {
        SCOPED_TRACE(c.dataSet);
        const QString rows = c.rows ? QString::fromLatin1(c.rows) : employeeRows;
        const QString undo = c.undo ? QString::fromLatin1(c.undo) : employeeUndo;
        const QString before = site.rows(rows);

        openDataSet(QString::fromLatin1(c.dataSet));
        for (int r : c.ticks)
            tick({r});
        const QString file = fileToChoose(c.fileName, c.content);
        press("cmdGetFile");
        press("cmdOk");
        ASSERT_TRUE(button("cmdImportToDB")->isEnabled()) << foundation.feedback.messages().join("\n").toStdString();
        foundation.feedback.answers = c.answers;
        press("cmdImportToDB");
        const QString success =
            QStringLiteral("Importing File ''%1'' Completed Successfully").arg(QString::fromLatin1(c.fileName));
        ASSERT_EQ(status(), success);
        const QString windowRows = site.rows(rows);
        ASSERT_NE(windowRows, before);
        window.reset();
        resetGlobals();

        ASSERT_TRUE(site.exec(undo));
        ASSERT_EQ(site.rows(rows), before);
        QStringList arguments{QStringLiteral("import"), QStringLiteral("--settings"), QStringLiteral("KRV.ini"),
                              QStringLiteral("--user"), QStringLiteral("1"), QStringLiteral("--dataset"),
                              QString::fromLatin1(c.dataSet), QStringLiteral("--input"), file,
                              QStringLiteral("--fields"), QString::fromLatin1(c.fields)};
        if (!c.answers.empty())
            arguments << QStringLiteral("--yes");
        const ProgramRun batch = runProgram(QStringLiteral(TP_BINARY_DIR "/tallyport-batch"), arguments,
                                            site.settingsFolder());
        EXPECT_EQ(batch.exitCode, 0) << batch.err.toStdString();
        EXPECT_EQ(batch.out.trimmed(), success);
        EXPECT_EQ(site.rows(rows), windowRows);
    }
}

} // namespace
} // namespace tp::test
