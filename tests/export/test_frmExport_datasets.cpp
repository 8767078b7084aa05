// The Export window with the data sets beside time data, driven through its widgets: inventory
// and locations scan and show their records, the empty location table ends each scan its own
// way, and the window gives its grids the room it has.
#include "export_window_fixture.h"

#include "support/export_rows.h"

#include <QHeaderView>

namespace tp::test {
namespace {

const auto* const kDataSetsGui = ::testing::AddGlobalTestEnvironment(new GuiEnvironment);

class DataSetWindow : public ExportFlowTest {
protected:
    void choose(const char* commandLine, const QString& dataSet, std::initializer_list<int> rows)
    {
        open(commandLine);
        clickListItem(child<QListWidget>("lstTables"), dataSet);
        tick(rows);
        press("cmdAll");
    }
    void setLocations(const std::vector<LocationRow>& rows)
    {
        ASSERT_TRUE(site.exec(QStringLiteral("Delete from CommonLocations")));
        if (!rows.empty()) {
            ASSERT_TRUE(site.exec(insertLocationRows(rows)));
        }
    }
};

TEST_F(DataSetWindow, InventoryScanShowsTheFirstTwentyAndWritesItsFile)
{
    ASSERT_TRUE(site.exec(QStringLiteral("Delete from InventoryHistory")));
    std::vector<InventoryRow> rows;
    for (int i = 1; i <= 25; ++i)
        rows.push_back({.id = i, .employee = 9001, .quantity = i});
    ASSERT_TRUE(site.exec(insertInventoryRows(rows)));
    choose("x,KRV.ini,true,1", QStringLiteral("Inventory Data"), {1, 5, 7});   // id, last name, quantity
    EXPECT_EQ(window->session().msTableSelected, QStringLiteral("Inventory"));
    press("cmdOK");
    EXPECT_EQ(status(), QStringLiteral("First 20 records out of 25 found"));
    EXPECT_EQ(window->records().maxRows(), 20);
    EXPECT_EQ(recordRow(20), (QStringList{"20", "20", "O'Hara", "20"}));
    press("cmdPreviewExport");
    const QString file = outFile(QStringLiteral("inventory.txt"));
    dialogs.names.push_back(file);
    press("cmdPreviewExport");
    EXPECT_EQ(status(), QStringLiteral("Export Completed Successfully"));
    const QByteArray bytes = readBytes(file);
    EXPECT_EQ(bytes.count("\r\n"), 26);
    EXPECT_TRUE(bytes.endsWith("25,\"O'Hara\",25\r\n"));
    EXPECT_EQ(site.scalar(QStringLiteral("Select count(*) from InventoryHistory where Approved = 2 and ExportID = 1")), 25);
}

TEST_F(DataSetWindow, TwentyMapLocationsAndNineteenPinpoints)
{
    setLocations(manyLocations(20));
    choose("x,KRV.ini,true,1", QStringLiteral("Map Locations Data"), {2, 10});
    EXPECT_FALSE(button("cmdDate")->isEnabled());
    press("cmdOK");
    EXPECT_EQ(status(), QStringLiteral("First 20 records out of 20 found"));
    EXPECT_EQ(recordRow(20), (QStringList{"20", "Site 20", "2"}));
    EXPECT_TRUE(button("cmdPreviewExport")->isEnabled());
    EXPECT_TRUE(foundation.feedback.questions().isEmpty());
    window.reset();

    setLocations(manyLocations(19));
    choose("x,lumtrek.ini,true,3", QStringLiteral("Pinpoint Data"), {1, 4});
    press("cmdOK");
    EXPECT_EQ(status(), QStringLiteral("19  Record(s) found"));
    EXPECT_EQ(recordRow(19), (QStringList{"19", "Site 19", "Tulsa"}));
}

TEST_F(DataSetWindow, MoreThanTwoHundredMapLocationsAskAndNoEndsTheScan)
{
    setLocations(manyLocations(201));
    choose("x,KRV.ini,true,1", QStringLiteral("Map Locations Data"), {2});
    foundation.feedback.answers = {AnswerNo};
    press("cmdOK");
    EXPECT_EQ(foundation.feedback.questions().size(), 1);
    EXPECT_EQ(status(), QStringLiteral("Cancel"));
    EXPECT_EQ(window->records().maxRows(), 0);
    EXPECT_FALSE(button("cmdPreviewExport")->isEnabled());
    EXPECT_EQ(button("cmdCancelClose")->text(), QStringLiteral("Close"));
}

TEST_F(DataSetWindow, EmptyLocationTableAtTheScan)
{
    // The table empties after the window offered the data set.
    setLocations(manyLocations(3));
    choose("x,KRV.ini,true,1", QStringLiteral("Map Locations Data"), {2});
    setLocations({});
    press("cmdOK");
    EXPECT_EQ(foundation.feedback.messages(), QStringList{QStringLiteral("No records found.")});
    EXPECT_EQ(status(), QStringLiteral("0  Record(s)"));
    EXPECT_TRUE(button("cmdAll")->isEnabled());
    EXPECT_FALSE(button("cmdPreviewExport")->isEnabled());
    window.reset();

    foundation.feedback.shown.clear();
    setLocations(manyLocations(3));
    choose("x,lumtrek.ini,true,3", QStringLiteral("Pinpoint Data"), {1});
    setLocations({});
    press("cmdOK");
    EXPECT_EQ(foundation.feedback.messages(), QStringList{QStringLiteral("Cannot read Common Location Record(s)")});
    EXPECT_EQ(status(), QStringLiteral("0  Record(s)"));
    EXPECT_FALSE(button("cmdPreviewExport")->isEnabled());
}

TEST_F(DataSetWindow, GridsShowTenRecordsAndTakeTheRoomOfALargerWindow)
{
    addWaiting(12);
    openTimeData();
    tick({1});
    press("cmdAll");
    press("cmdOK");
    ASSERT_EQ(window->records().maxRows(), 12);
    QTableWidget* records = recordGrid();
    const int rowHeight = records->verticalHeader()->defaultSectionSize();
    EXPECT_GE(records->viewport()->height(), 10 * rowHeight);
    EXPECT_LE(window->height(), window->screen()->availableGeometry().height());

    const int fieldsBefore = fieldGrid()->height();
    const int recordsBefore = records->height();
    window->resize(window->width() + 200, window->height() + 240);
    QApplication::processEvents();
    EXPECT_GT(fieldGrid()->height(), fieldsBefore);
    EXPECT_GT(records->height(), recordsBefore);
    EXPECT_GT(records->width(), 0);

    press("cmdPreviewExport");
    const int previewBefore = previewGrid()->height();
    window->resize(window->width(), window->height() + 120);
    QApplication::processEvents();
    EXPECT_GT(previewGrid()->height(), previewBefore);
}

} // namespace
} // namespace tp::test
