// The Import window's file stage through its widgets: browsing, a fault reported, the
// confirmation sample, Cancel, and imports that land in the database.
#include "import_window_fixture.h"

namespace tp::test {
namespace {

const auto* const kFileGui = ::testing::AddGlobalTestEnvironment(new GuiEnvironment);

using ImportWindowFile = ImportWindowTest;

const QByteArray kLocations = "LocationName,BranchNumber,Address1,City\r\n"
                              "Test Depot Alpha,1,12 Lake Shore Dr,Chicago\r\n"
                              "Test Yard O'Brien,2,400 Pier Rd,Milwaukee\r\n";

bool visible(QWidget* w)
{
    return w && w->isVisible();
}

TEST_F(ImportWindowFile, BrowsingShowsPathAndNameAndACancelledDialogChangesNothing)
{
    openDataSet(QStringLiteral("Map Locations Data"));
    EXPECT_FALSE(visible(box("txtPath")));
    press("cmdGetFile");   // nothing queued: the user cancelled
    EXPECT_EQ(dialogs.requests, QStringList{QStringLiteral("open:Text Files (*.txt)|*.txt|All Files|*.*")});
    EXPECT_TRUE(visible(button("cmdGetFile")));
    EXPECT_FALSE(visible(box("txtName")));

    const QString path = fileToChoose("locations.txt", kLocations);
    press("cmdGetFile");
    EXPECT_EQ(QDir::fromNativeSeparators(box("txtPath")->text()), QDir(files.path()).absolutePath() + QLatin1Char('/'));
    EXPECT_EQ(box("txtName")->text(), QStringLiteral("locations.txt"));
    EXPECT_TRUE(box("txtName")->font().bold());
    for (const char* shown : {"lblPath", "lblFileName"})
        EXPECT_TRUE(visible(child<QLabel>(shown))) << shown;
    EXPECT_TRUE(visible(box("txtPath")));
    EXPECT_FALSE(visible(button("cmdGetFile")));
    EXPECT_FALSE(visible(button("cmdGetDifferentTable")));
    EXPECT_TRUE(button("cmdOk")->isEnabled());
    EXPECT_FALSE(button("cmdImportToDB")->isEnabled());

    // A click into the name box browses again.
    fileToChoose("other.txt", kLocations);
    sendMouse(box("txtName"), QEvent::MouseButtonRelease, box("txtName")->rect().center());
    EXPECT_EQ(box("txtName")->text(), QStringLiteral("other.txt"));
    // So does one into the path box.
    dialogs.names.push_back(path);
    sendMouse(box("txtPath"), QEvent::MouseButtonRelease, box("txtPath")->rect().center());
    EXPECT_EQ(box("txtName")->text(), QStringLiteral("locations.txt"));
    EXPECT_EQ(dialogs.requests.size(), 4);
}

TEST_F(ImportWindowFile, AFaultIsReportedAndTheFileChoiceComesBack)
{
    openDataSet(QStringLiteral("Map Locations Data"));
    // City is not ticked.
    scan("locations.txt", kLocations);
    ASSERT_EQ(foundation.feedback.messages().size(), 1);
    EXPECT_EQ(foundation.feedback.messages().first(),
              QStringLiteral("The heading ''City'' exists in the text file but it is not selected.\r\n"
                             "1. Each heading should match the field name you selected. \r\n"
                             "2. Each heading should be seperated by commas (no spaces between the comma and the "
                             "heading).\r\n"
                             "3. The heading should be in the same order as your field selection.\r\n"
                             "4. Modify your import file or select City from the grid and try again."));
    EXPECT_EQ(foundation.feedback.shown.back().title, QStringLiteral("Tallyport Import/Export"));
    EXPECT_TRUE(visible(button("cmdGetFile")));
    EXPECT_TRUE(visible(button("cmdGetDifferentTable")));
    EXPECT_FALSE(visible(box("txtPath")));
    EXPECT_FALSE(visible(box("txtName")));
    EXPECT_EQ(box("txtName")->text(), QStringLiteral("locations.txt"));   // kept
    EXPECT_TRUE(button("cmdOk")->isEnabled());   // the file may be fixed and read again
    EXPECT_FALSE(button("cmdImportToDB")->isEnabled());
    EXPECT_EQ(button("cmdCancel")->text(), QStringLiteral("&Close"));

    // A record line one field short names the heading count and the record number.
    tick({5});
    scan("short.txt", "LocationName,BranchNumber,Address1,City\r\nTest Depot,1,12 Lake Shore Dr\r\n");
    ASSERT_EQ(foundation.feedback.messages().size(), 2);
    EXPECT_TRUE(foundation.feedback.messages().last().startsWith(
        QStringLiteral("Expecting 4 fields  in record number 1 of your text file:\r\n")))
        << foundation.feedback.messages().last().toStdString();

    // A file that is gone.
    dialogs.names.push_back(QDir(files.path()).filePath(QStringLiteral("gone.txt")));
    press("cmdGetFile");
    press("cmdOk");
    ASSERT_EQ(foundation.feedback.messages().size(), 3);
    EXPECT_TRUE(foundation.feedback.messages().last().startsWith(QStringLiteral("File does not exist : ")));
    EXPECT_TRUE(foundation.feedback.messages().last().endsWith(QStringLiteral("gone.txt")));
    EXPECT_FALSE(button("cmdImportToDB")->isEnabled());
    EXPECT_EQ(site.scalar(QStringLiteral("Select count(*) from CommonLocations where LocationName like 'Test %'")), 0);
}

TEST_F(ImportWindowFile, ACleanScanShowsTheSampleAndOffersTheImport)
{
    openDataSet(QStringLiteral("Map Locations Data"));
    tick({5});
    scan("locations.txt", kLocations);
    EXPECT_TRUE(foundation.feedback.messages().isEmpty()) << foundation.feedback.messages().join("\n").toStdString();
    EXPECT_EQ(window->formatText(),
              QStringLiteral("End of File Scanning.\r\n"
                             "Several Records are shown for final confirmation:\r\n"
                             "''LocationName'' , ''BranchNumber'' , ''Address1'' , ''City''\r\n"
                             "1 , ''Test Depot Alpha'' , ''12 Lake Shore Dr'' , ''Chicago''\r\n"
                             "2 , ''Test Yard O'Brien'' , ''400 Pier Rd'' , ''Milwaukee''\r\n"
                             "e.t.c."));
    EXPECT_EQ(shownFormat(), QString(window->formatText()).replace(QStringLiteral("\r\n"), QStringLiteral("\n")));
    EXPECT_EQ(status(), QStringLiteral("Text File is ready to be imported."));
    EXPECT_TRUE(foundation.feedback.statuses.contains(QStringLiteral("100 % Completed")))
        << foundation.feedback.statuses.join("|").toStdString();
    EXPECT_TRUE(button("cmdImportToDB")->isEnabled());
    EXPECT_FALSE(button("cmdOk")->isEnabled());
    EXPECT_EQ(button("cmdCancel")->text(), QStringLiteral("Cancel"));

    // A tick click resets: Import off, status and sample gone, OK back since a file is chosen.
    tick({6});
    EXPECT_FALSE(button("cmdImportToDB")->isEnabled());
    EXPECT_EQ(status(), QString());
    EXPECT_EQ(shownFormat(),
              QStringLiteral("''LocationName'' , ''BranchNumber'' , ''Address1'' , ''City'' , ''State''"));
    EXPECT_TRUE(button("cmdOk")->isEnabled());
    EXPECT_EQ(site.scalar(QStringLiteral("Select count(*) from CommonLocations where LocationName like 'Test %'")), 0);
}

TEST_F(ImportWindowFile, CancelAbandonsTheScannedFileThenCloseEndsTheWindow)
{
    openDataSet(QStringLiteral("Map Locations Data"));
    tick({5});
    scan("locations.txt", kLocations);
    ASSERT_TRUE(button("cmdImportToDB")->isEnabled());
    press("cmdCancel");
    EXPECT_TRUE(window->isVisible());
    EXPECT_EQ(button("cmdCancel")->text(), QStringLiteral("&Close"));
    EXPECT_FALSE(button("cmdImportToDB")->isEnabled());
    EXPECT_TRUE(visible(button("cmdGetFile")));
    EXPECT_TRUE(visible(button("cmdGetDifferentTable")));
    EXPECT_FALSE(visible(box("txtPath")));
    EXPECT_EQ(box("txtPath")->text(), QString());
    EXPECT_EQ(box("txtName")->text(), QString());
    EXPECT_EQ(shownFormat(), QStringLiteral("''LocationName'' , ''BranchNumber'' , ''Address1'' , ''City''"));
    EXPECT_EQ(site.scalar(QStringLiteral("Select count(*) from CommonLocations where LocationName like 'Test %'")), 0);
    press("cmdCancel");
    EXPECT_FALSE(window->isVisible());
}

TEST_F(ImportWindowFile, ImportWritesTheRowsAndReturnsToTheFileChoice)
{
    openDataSet(QStringLiteral("Map Locations Data"));
    tick({5});
    scan("locations.txt", kLocations);
    press("cmdImportToDB");
    EXPECT_EQ(status(), QStringLiteral("Importing File ''locations.txt'' Completed Successfully"));
    EXPECT_EQ(site.rows(QStringLiteral("Select LocationName, BranchNumber, Address1, City from CommonLocations "
                                       "where LocationName like 'Test %' order by CommonLocationNumber")),
              QStringLiteral("Test Depot Alpha:1:12 Lake Shore Dr:Chicago Test Yard O'Brien:2:400 Pier Rd:Milwaukee"));
    EXPECT_FALSE(button("cmdImportToDB")->isEnabled());
    EXPECT_TRUE(visible(button("cmdGetFile")));
    EXPECT_TRUE(visible(button("cmdGetDifferentTable")));
    EXPECT_EQ(button("cmdCancel")->text(), QStringLiteral("&Close"));
    EXPECT_FALSE(visible(box("txtName")));
    EXPECT_EQ(box("txtName")->text(), QString());
    EXPECT_EQ(window->session().lastRecordNumber(), 0);
}

TEST_F(ImportWindowFile, EmployeesRenumberedOnYesAndARefusalWritesNothing)
{
    const qint64 max = site.scalar(QStringLiteral("Select max(EmployeeNumber) from EmployeeInfo"));
    const qint64 before = site.scalar(QStringLiteral("Select count(*) from EmployeeInfo"));
    const QByteArray file = "EmployeeNumber,LastName,FirstName,BranchNumber\r\n"
                            "1,Okafor,Ada,1\r\n"
                            "900,Lindqvist,Per,2\r\n";

    // No: nothing is written, the import fails with its status.
    openDataSet(QStringLiteral("Employee Data"));
    scan("employees.txt", file);
    ASSERT_TRUE(button("cmdImportToDB")->isEnabled()) << foundation.feedback.messages().join("\n").toStdString();
    foundation.feedback.answers = {AnswerNo};
    press("cmdImportToDB");
    EXPECT_EQ(foundation.feedback.questions().size(), 1);
    EXPECT_EQ(status(), QStringLiteral("Error Importing File. Check your file"));
    EXPECT_FALSE(button("cmdImportToDB")->isEnabled());
    EXPECT_FALSE(button("cmdOk")->isEnabled());
    EXPECT_TRUE(visible(button("cmdGetFile")));
    EXPECT_EQ(box("txtName")->text(), QStringLiteral("employees.txt"));   // kept after a failure
    EXPECT_EQ(site.scalar(QStringLiteral("Select count(*) from EmployeeInfo")), before);

    // Scanned again and answered Yes: the clashing number becomes the maximum plus one, and
    // the columns the file lacks get their fixed defaults.
    scan("employees.txt", file);
    foundation.feedback.answers = {AnswerYes};
    press("cmdImportToDB");
    EXPECT_EQ(status(), QStringLiteral("Importing File ''employees.txt'' Completed Successfully"));
    EXPECT_EQ(site.rows(QStringLiteral("Select EmployeeNumber, LastName, FirstName, BranchNumber, Zip, MobilePhone, "
                                       "Pager from EmployeeInfo where EmployeeNumber > %1 order by EmployeeNumber")
                            .arg(max)),
              QStringLiteral("%1:Okafor:Ada:1:     -    :(   )    -    :(   )    -    "
                             " 900:Lindqvist:Per:2:     -    :(   )    -    :(   )    -    ")
                  .arg(max + 1));
}

TEST_F(ImportWindowFile, EverySampleFileImportsWithAllFieldsTicked)
{
    const struct {
        const char* commandLine;
        const char* dataSet;
        const char* file;
        const char* count;   // rows of the target table
    } cases[] = {
        {"x,KRV.ini,true,1", "Customer Data", "import_customers.txt", "Select count(*) from CustomerInfo"},
        {"x,KRV.ini,true,1", "Employee Data", "import_employees.txt", "Select count(*) from EmployeeInfo"},
        {"x,KRV.ini,true,2", "Vehicle Data", "import_vehicles.txt", "Select count(*) from VehicleInfo"},
        {"x,KRV.ini,true,1", "Map Locations Data", "import_map_locations.txt",
         "Select count(*) from CommonLocations"},
        {"x,lumtrek.ini,true,3", "Pinpoints Data", "import_pinpoints.txt", "Select count(*) from CommonLocations"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.dataSet);
        const QString sample = QStringLiteral(TP_SOURCE_DIR "/data/") + QString::fromLatin1(c.file);
        const QByteArray content = readBytes(sample);
        ASSERT_FALSE(content.isEmpty()) << sample.toStdString();
        const qint64 records = content.trimmed().count('\n');
        const qint64 before = site.scalar(QString::fromLatin1(c.count));
        foundation.feedback.shown.clear();

        openDataSet(QString::fromLatin1(c.dataSet), c.commandLine);
        clickTickHeading();
        dialogs.names.push_back(sample);
        press("cmdGetFile");
        press("cmdOk");
        ASSERT_TRUE(button("cmdImportToDB")->isEnabled())
            << foundation.feedback.messages().join("\n").toStdString();
        // The sample's selection line names the file's headings, every field being ticked.
        const QStringList sampleLines = window->formatText().split(QStringLiteral("\r\n"));
        ASSERT_GE(sampleLines.size(), 4);
        QString selectionLine = sampleLines[2];
        selectionLine.remove(QStringLiteral("''")).replace(QStringLiteral(" , "), QStringLiteral(","));
        EXPECT_EQ(selectionLine,
                  QString::fromLatin1(content.split('\n').first().trimmed()));
        EXPECT_EQ(sampleLines.size(), 4 + std::min<qint64>(records, 10));
        EXPECT_EQ(sampleLines.last(), QStringLiteral("e.t.c."));
        press("cmdImportToDB");
        EXPECT_EQ(status(),
                  QStringLiteral("Importing File ''%1'' Completed Successfully").arg(QString::fromLatin1(c.file)));
        EXPECT_EQ(site.scalar(QString::fromLatin1(c.count)), before + records);
        EXPECT_TRUE(foundation.feedback.messages().isEmpty());
        window.reset();
        resetGlobals();
    }
}

} // namespace
} // namespace tp::test
