// The Export window's first stage driven headless: the data-set list per user and settings
// file, the choice of a data set, ticking fields, header texts and the record grid columns.
#include "export_window_fixture.h"

namespace tp::test {
namespace {

const auto* const kGui = ::testing::AddGlobalTestEnvironment(new GuiEnvironment);

class ExportWindow : public ExportFlowTest {
protected:
    void SetUp() override
    {
        ExportFlowTest::SetUp();
        addWaiting(1);
    }

    QListWidget* list() { return child<QListWidget>("lstTables"); }
    QTableWidget* fields() { return fieldGrid(); }
    QTableWidget* records() { return recordGrid(); }

    QStringList listTexts()
    {
        QStringList out;
        for (int i = 0; i < list()->count(); ++i)
            out << list()->item(i)->text();
        return out;
    }
    // Chooses with the keyboard: select the item, press Enter in the list.
    void chooseWithEnter(const QString& text)
    {
        const auto items = list()->findItems(text, Qt::MatchExactly);
        ASSERT_FALSE(items.isEmpty()) << text.toStdString();
        list()->setCurrentItem(items.first());
        pressKey(list(), Qt::Key_Return, QStringLiteral("\r"));
    }
    void tick(int row) { clickCheckBox(fields(), 1, row); }
    QString order(int row) { return window->fields().text(2, row); }
    QStringList recordHeaders()
    {
        QStringList out;
        for (int c = 1; c <= window->records().maxCols(); ++c)
            out << window->records().text(c, 0);
        return out;
    }
};

TEST_F(ExportWindow, DataSetsOfferedToEachKindOfUser)
{
    const std::pair<const char*, QStringList> cases[] = {
        {"x,KRV.ini,true,1", {"Time Data", "Inventory Data", "GPS Data", "Map Locations Data"}},
        {"x,KRV.ini,true,2", {"Time Data"}},
        {"x,KRV.ini,true,3", {"No Selection Available"}},
    };
    for (const auto& [line, offered] : cases) {
        SCOPED_TRACE(line);
        window.reset();
        resetGlobals();
        open(line);
        EXPECT_EQ(listTexts(), offered);
    }
    // The last user has nothing: Enter on the disabled list chooses nothing.
    open("x,KRV.ini,true,3");
    EXPECT_FALSE(list()->isEnabled());
    list()->setCurrentRow(0);
    pressKey(list(), Qt::Key_Return, QStringLiteral("\r"));
    EXPECT_EQ(window->session().dataSet(), nullptr);
    EXPECT_TRUE(foundation.feedback.messages().isEmpty());

    // The GPS right alone offers GPS only.
    for (int form : {31, 26})
        ASSERT_TRUE(site.exec(QStringLiteral("Insert into Permissions (UserID, FormID, CanAdd, CanModify, CanView) "
                                             "values (3, %1, 0, 0, 1)").arg(form)));
    window.reset();
    resetGlobals();
    open("x,KRV.ini,true,3");
    EXPECT_EQ(listTexts(), QStringList{"GPS Data"});
}

TEST_F(ExportWindow, MapLocationsNeedLocationRows)
{
    ASSERT_TRUE(site.exec(QStringLiteral("Delete from CommonLocations")));
    open("x,KRV.ini,true,1");
    EXPECT_EQ(listTexts(), (QStringList{"Time Data", "Inventory Data", "GPS Data"}));
    EXPECT_EQ(window->statusBar().text(), QStringLiteral("There are no records available."));
    window.reset();
    resetGlobals();
    open("x,lumtrek.ini,true,3");
    EXPECT_EQ(listTexts(), QStringList{"GPS Data"});
}

TEST_F(ExportWindow, OpensSmallAndGrowsWhenADataSetIsChosen)
{
    open("x,KRV.ini,true,1");
    EXPECT_EQ(window->size(), QSize(211, 242));   // 3165 x 3630 twips
    EXPECT_EQ(window->pos(), QPoint(200, 200));
    EXPECT_FALSE(fields()->isVisible());
    EXPECT_FALSE(records()->isVisible());
    EXPECT_FALSE(button("cmdAll")->isVisible());

    chooseWithEnter(QStringLiteral("Time Data"));
    // 8700 x 6855 twips, taller where ten rows of the record grid need it.
    EXPECT_EQ(window->width(), 580);
    EXPECT_GE(window->height(), 457);
    EXPECT_EQ(window->pos(), QPoint(67, 67));
    EXPECT_FALSE(list()->isVisible());
    EXPECT_TRUE(fields()->isVisible());
    EXPECT_TRUE(fields()->isEnabled());
    EXPECT_EQ(child<QLabel>("lblSelection")->text(), QStringLiteral("Time: Select the fields to export."));
    EXPECT_EQ(window->session().msTableSelected, QStringLiteral("JobTimeRecords"));
    EXPECT_EQ(window->session().mlExportID, 0);
    EXPECT_EQ(window->session().AvailabilityResult, 1);
    EXPECT_EQ(window->session().AvailableCount, 1);
    EXPECT_EQ(window->session().ExportRecordCount, 1);
    EXPECT_EQ(window->statusBar().text(), QString());

    ui::GridAdapter& grid = window->fields();
    EXPECT_EQ(grid.maxCols(), 5);
    EXPECT_EQ(grid.maxRows(), 15);
    const QStringList titles = {QStringLiteral("Chck Field"), QStringLiteral("Field Order"),
                                QStringLiteral("Field Name"), QStringLiteral("Data Type"),
                                QStringLiteral("Text File Header")};
    for (int c = 1; c <= 5; ++c)
        EXPECT_EQ(grid.text(c, 0), titles.at(c - 1));
    EXPECT_EQ(grid.text(3, 1), QStringLiteral("TimeRecordID"));
    EXPECT_EQ(grid.text(3, 9), QStringLiteral("IsJobInRecord"));
    EXPECT_EQ(grid.text(4, 9), QStringLiteral("Boolean"));
    EXPECT_EQ(grid.text(5, 15), QStringLiteral("ExportID"));

    EXPECT_TRUE(records()->isVisible());
    EXPECT_FALSE(records()->isEnabled());
    EXPECT_EQ(window->records().maxCols(), 16);
    EXPECT_EQ(window->records().text(1, 0), QStringLiteral("Record Number"));
    EXPECT_TRUE(button("cmdAll")->isVisible());
    EXPECT_FALSE(button("cmdAll")->isEnabled());
    EXPECT_FALSE(button("cmdDate")->isEnabled());
    EXPECT_EQ(button("cmdAll")->text(), QStringLiteral("Select All Records"));
    EXPECT_TRUE(foundation.feedback.messages().isEmpty());
}

TEST_F(ExportWindow, MouseReleaseOverTheListChoosesAndSetsTheGpsCaptions)
{
    open("x,lumtrek.ini,true,3");
    clickListItem(list(), QStringLiteral("GPS Data"));
    ASSERT_NE(window->session().dataSet(), nullptr);
    EXPECT_EQ(child<QLabel>("lblSelection")->text(),
              QStringLiteral("GPS Coordinates:  Select the fields to export."));
    EXPECT_EQ(button("cmdAll")->text(), QStringLiteral("Select Unit"));
    EXPECT_EQ(button("cmdDate")->text(), QStringLiteral("Select Date"));
    EXPECT_EQ(window->fields().maxRows(), 8);
    EXPECT_EQ(window->fields().text(3, 1), QStringLiteral("Assigned To"));

    tick(3);
    EXPECT_EQ(button("cmdAll")->text(), QStringLiteral("Select Unit"));
    EXPECT_TRUE(button("cmdAll")->isEnabled());
    EXPECT_FALSE(button("cmdDate")->isEnabled());
}

TEST_F(ExportWindow, EmployeeGpsAndLocationsKeepTheirButtonRules)
{
    open("x,KRV.ini,true,1");
    chooseWithEnter(QStringLiteral("GPS Data"));
    EXPECT_EQ(child<QLabel>("lblSelection")->text(), QStringLiteral("GPS Coordinates: Select the fields to export."));
    EXPECT_EQ(button("cmdAll")->text(), QStringLiteral("Select Employee"));
    EXPECT_EQ(window->fields().maxRows(), 10);
    tick(1);
    EXPECT_EQ(button("cmdAll")->text(), QStringLiteral("Select Employee"));
    EXPECT_TRUE(button("cmdAll")->isEnabled());
    EXPECT_FALSE(button("cmdDate")->isEnabled());
    tick(1);   // unticked again: nothing to select
    EXPECT_FALSE(button("cmdAll")->isEnabled());
    window.reset();
    resetGlobals();

    open("x,KRV.ini,true,1");
    chooseWithEnter(QStringLiteral("Map Locations Data"));
    EXPECT_EQ(window->session().msTableSelected, QStringLiteral("CommonLocations"));
    tick(2);
    EXPECT_EQ(button("cmdAll")->text(), QStringLiteral("Select All Records"));
    EXPECT_TRUE(button("cmdAll")->isEnabled());
    EXPECT_FALSE(button("cmdDate")->isEnabled());
}

TEST_F(ExportWindow, TickUntickAndTickAgainKeepTheOrderWithoutGaps)
{
    open("x,KRV.ini,true,1");
    chooseWithEnter(QStringLiteral("Time Data"));
    tick(2);
    tick(5);
    tick(6);
    EXPECT_EQ(order(2), QStringLiteral("Field 1"));
    EXPECT_EQ(order(5), QStringLiteral("Field 2"));
    EXPECT_EQ(order(6), QStringLiteral("Field 3"));
    EXPECT_TRUE(button("cmdAll")->isEnabled());
    EXPECT_TRUE(button("cmdDate")->isEnabled());

    tick(5);   // untick the second
    EXPECT_FALSE(window->fields().isChecked(1, 5));
    EXPECT_EQ(order(5), QString());
    EXPECT_EQ(order(6), QStringLiteral("Field 2"));
    tick(1);
    EXPECT_EQ(order(1), QStringLiteral("Field 3"));
    EXPECT_EQ(order(2), QStringLiteral("Field 1"));

    // The record grid lists the ticked fields by their order, from column 2, by name.
    const QStringList headers = recordHeaders();
    ASSERT_EQ(headers.size(), 16);
    EXPECT_EQ(headers.mid(0, 5), (QStringList{QStringLiteral("Record Number"), QStringLiteral("EmployeeNumber"),
                                              QStringLiteral("Date"), QStringLiteral("TimeRecordID"), QString()}));
    EXPECT_EQ(window->session().OutputColumnCount, 4);
    const auto output = window->session().outputFields();
    ASSERT_EQ(output.size(), 3u);
    EXPECT_EQ(output[1].name, QStringLiteral("Date"));
    EXPECT_EQ(output[1].type, QStringLiteral("Number"));

    // Column widths: the name's length, at least 10 characters.
    EXPECT_EQ(window->records().colWidth(3), 10);                  // "Date"
    EXPECT_EQ(window->records().colWidth(2), 14);                  // "EmployeeNumber"
    EXPECT_EQ(window->records().colWidth(4), 12);                  // "TimeRecordID"
    EXPECT_GT(records()->columnWidth(1), records()->columnWidth(2));   // pixels follow characters

    for (int r : {1, 2, 6})
        tick(r);
    EXPECT_EQ(window->session().tickedCount(), 0);
    EXPECT_FALSE(button("cmdAll")->isEnabled());
    EXPECT_FALSE(button("cmdDate")->isEnabled());
    EXPECT_EQ(recordHeaders().mid(1).join(QString()), QString());
}

TEST_F(ExportWindow, HeaderTextsAreEditableOnlyAfterAClickInTheirColumn)
{
    open("x,KRV.ini,true,1");
    chooseWithEnter(QStringLiteral("Time Data"));
    QTableWidget* grid = fields();

    clickCell(grid, 4, 2);   // "Data Type"
    EXPECT_EQ(window->lastFieldColumn(), 4);
    pressKey(grid, Qt::Key_Right);   // the current cell moves to "Text File Header"
    EXPECT_EQ(grid->currentColumn(), 4);
    pressKey(grid, Qt::Key_Z, QStringLiteral("Z"));
    EXPECT_EQ(grid->indexWidget(grid->model()->index(1, 4)), nullptr);   // no editor opened
    EXPECT_EQ(window->fields().text(5, 2), QStringLiteral("EmployeeNumber"));
    EXPECT_EQ(window->fields().text(4, 2), QStringLiteral("Number"));

    clickCell(grid, 5, 2);
    EXPECT_EQ(window->lastFieldColumn(), 5);
    pressKey(grid, Qt::Key_E, QStringLiteral("E"));
    auto* editor = qobject_cast<QLineEdit*>(grid->indexWidget(grid->model()->index(1, 4)));
    ASSERT_NE(editor, nullptr);
    editor->setText(QStringLiteral("Emp"));
    pressKey(editor, Qt::Key_Return, QStringLiteral("\r"));
    QApplication::processEvents();   // the grid takes the text after the key
    EXPECT_EQ(window->fields().text(5, 2), QStringLiteral("Emp"));
    EXPECT_EQ(window->session().field(2).header, QStringLiteral("Emp"));

    // The name column never takes typing, even after a click into it.
    clickCell(grid, 3, 3);
    pressKey(grid, Qt::Key_Q, QStringLiteral("Q"));
    EXPECT_EQ(window->fields().text(3, 3), QStringLiteral("VehicleNumber"));
}

TEST_F(ExportWindow, TickAfterAScanEmptiesTheRecordGrid)
{
    open("x,KRV.ini,true,1");
    chooseWithEnter(QStringLiteral("Time Data"));
    tick(2);
    // What a scan leaves behind: rows in the grid, the preview offered, records counted.
    ExportSession& session = window->session();
    session.recordGrid().setRowCount(3);
    for (int r = 1; r <= 3; ++r) {
        session.recordGrid().setText(1, r, QString::number(r));
        session.recordGrid().setText(2, r, QString::number(100 + r));
    }
    session.ExportRecordCount = 3;
    window->showRecordGrid();
    button("cmdPreviewExport")->setEnabled(true);
    ASSERT_EQ(records()->rowCount(), 3);
    ASSERT_EQ(window->records().text(2, 3), QStringLiteral("103"));

    tick(7);
    EXPECT_EQ(records()->rowCount(), 0);
    EXPECT_EQ(session.ExportRecordCount, 0);
    EXPECT_FALSE(button("cmdPreviewExport")->isEnabled());
    EXPECT_TRUE(records()->isEnabled());
    EXPECT_FALSE(button("cmdOK")->isEnabled());
    EXPECT_EQ(recordHeaders().mid(1, 2), (QStringList{QStringLiteral("EmployeeNumber"), QStringLiteral("Time")}));
}

TEST_F(ExportWindow, NoWaitingRecordsLeaveTheFieldsDisabled)
{
    ASSERT_TRUE(site.exec(QStringLiteral("Update JobTimeRecords set Approved = 2")));
    open("x,KRV.ini,true,1");
    chooseWithEnter(QStringLiteral("Time Data"));
    EXPECT_EQ(window->session().AvailabilityResult, 0);
    EXPECT_EQ(window->session().ExportRecordCount, 0);
    EXPECT_FALSE(fields()->isEnabled());
    EXPECT_EQ(window->statusBar().text(), QStringLiteral("There are no records available."));
    ASSERT_EQ(foundation.feedback.shown.size(), 1u);
    EXPECT_EQ(foundation.feedback.shown[0].text, QStringLiteral("There are no records available."));
    EXPECT_EQ(foundation.feedback.shown[0].code, 0);
}

TEST_F(ExportWindow, UnreadableTableIsReported)
{
    open("x,KRV.ini,true,1");
    SharedDatabase()->Exec(QStringLiteral("Drop table InventoryHistory"));
    ASSERT_EQ(SharedDatabase()->appError, 0);
    chooseWithEnter(QStringLiteral("Inventory Data"));
    EXPECT_EQ(window->session().AvailabilityResult, -1);
    EXPECT_FALSE(fields()->isEnabled());
    EXPECT_FALSE(button("cmdPreviewExport")->isEnabled());
    EXPECT_EQ(window->statusBar().text(), QStringLiteral("Error opening Inventory data."));
    EXPECT_EQ(foundation.feedback.messages(),
              (QStringList{QStringLiteral("Error opening Inventory data."), QStringLiteral("Cannot read database.")}));
    // The catalogue is still shown, only locked away.
    EXPECT_EQ(window->fields().maxRows(), 11);
}

TEST_F(ExportWindow, UnreadableGpsTableNamesTheEngineError)
{
    open("x,KRV.ini,true,1");
    SharedDatabase()->Exec(QStringLiteral("Drop table GPSCoordinates"));
    chooseWithEnter(QStringLiteral("GPS Data"));
    EXPECT_EQ(window->session().AvailabilityResult, -1);
    const QStringList shown = foundation.feedback.messages();
    ASSERT_EQ(shown.size(), 2);
    EXPECT_TRUE(shown[0].startsWith(QStringLiteral("Error opening GPS data.\r"))) << shown[0].toStdString();
    EXPECT_GT(shown[0].size(), QStringLiteral("Error opening GPS data.\r").size());
    EXPECT_EQ(window->statusBar().text(), QStringLiteral("Error opening GPS data."));
}

TEST_F(ExportWindow, CloseButtonClosesAndForgetsTheDataSet)
{
    open("x,KRV.ini,true,1");
    chooseWithEnter(QStringLiteral("Time Data"));
    tick(1);
    QPushButton* close = button("cmdCancelClose");
    EXPECT_EQ(close->text(), QStringLiteral("Close"));
    close->click();
    EXPECT_FALSE(window->isVisible());
    EXPECT_EQ(window->session().msTableSelected, QString());
    EXPECT_EQ(window->session().FieldCount, 0);
}

} // namespace
} // namespace tp::test
