// The Import window's first stage through its widgets: the list per settings file and rights,
// the specification grid, locked required ticks, the heading toggle, Change Data Type and Close.
#include "import_window_fixture.h"

#include "ui/window_support.h"

namespace tp::test {
namespace {

const auto* const kFieldsGui = ::testing::AddGlobalTestEnvironment(new GuiEnvironment);

using ImportWindowFields = ImportWindowTest;

TEST_F(ImportWindowFields, ListOffersDataSetsPerSettingsFileAndRights)
{
    // The dispatcher also gets the map-location right; the customer right without CanModify
    // does not count.
    ASSERT_TRUE(site.exec(QStringLiteral(
        "Insert into Permissions (UserID, FormID, CanAdd, CanModify, CanView) values (2, 0, -1, -1, 0)")));
    ASSERT_TRUE(site.exec(QStringLiteral(
        "Insert into Permissions (UserID, FormID, CanAdd, CanModify, CanView) values (2, 2, -1, 0, 0)")));
    const struct {
        const char* commandLine;
        const char* entries;
        bool enabled;
    } cases[] = {
        {"x,KRV.ini,true,1", "Customer Data|Employee Data|Vehicle Data|Map Locations Data", true},
        {"x,KRV.ini,true,2", "Vehicle Data|Map Locations Data", true},
        {"x,KRV.ini,true,3", "No Selection Available", false},
        {"x,lumtrek.ini,true,3", "Pinpoints Data", true},
        {"x,lumtrek.ini,false,1", "Pinpoints Data", true},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.commandLine);
        open(c.commandLine);
        EXPECT_EQ(listTexts().join(QLatin1Char('|')), QString::fromLatin1(c.entries));
        EXPECT_EQ(list()->isEnabled(), c.enabled);
        EXPECT_EQ(window->offeredCount(), c.enabled ? int(listTexts().size()) : 0);
        // With nothing offered the window goes as soon as it is activated.
        EXPECT_EQ(window->isVisible(), c.enabled);
        if (!c.enabled) {
            EXPECT_EQ(window->result(), int(QDialog::Rejected));
        }
        EXPECT_EQ(label("lblSelection"), QStringLiteral("Select Data to Import to the Database"));
        EXPECT_TRUE(grid()->isHidden());
        EXPECT_EQ(window->size(), QSize(ui::twipsToPixels(3775), ui::twipsToPixels(3630)));
        window.reset();
        resetGlobals();
    }
}

struct ChoiceCase {
    const char* commandLine;
    const char* listText;
    bool branches;
    const char* selection;
    const char* fileFormat;
    const char* ticks;
    const char* lastRow;   // the last row's name, type, max length and format
};

TEST_F(ImportWindowFields, ChoosingADataSetFillsCaptionsGridTicksAndSelectionLine)
{
    const char* const customers = "Customer Data Fields To Save To The Database";
    const char* const employees = "Employee Data Fields To Save To The Database";
    const char* const vehicles = "Vehicle Data Fields To Save To The Database";
    const char* const map = "Map Data Fields To Save To The Database";
    const char* const branchRow = "BranchNumber|Number|9|Number of Existing Branch.";
    const char* const latitudeRow = "Latitude|Number|Decimal|-90 to +90.";
    const ChoiceCase cases[] = {
        {"x,KRV.ini,true,1", "Customer Data", true, "Customer Data Fields", customers, "111010000000001", branchRow},
        {"x,KRV.ini,true,1", "Employee Data", true, "Employee Data Fields", employees, "11010000000001", branchRow},
        {"x,KRV.ini,true,1", "Vehicle Data", true, "Vehicle Data Fields", vehicles, "111000001", branchRow},
        {"x,KRV.ini,true,1", "Map Locations Data", true, "Map Locations Data Fields", map, "111000000", latitudeRow},
        // The dispatcher's only entry stands first in the list: it is still the vehicles.
        {"x,KRV.ini,true,2", "Vehicle Data", true, "Vehicle Data Fields", vehicles, "111000001", branchRow},
        // Rows with branches come first: the rows below delete them.
        {"x,KRV.ini,true,1", "Customer Data", false, "Customer Data Fields", customers, "11101000000000",
         "HomePhone|Text|14|(###) ###-####"},
        {"x,KRV.ini,true,1", "Vehicle Data", false, "Vehicle Data Fields", vehicles, "11100000",
         "TrackerSerialNumber|Text|9|Number of Existing Tracker Serial Number."},
        {"x,KRV.ini,true,1", "Map Locations Data", false, "Map Locations Data Fields", map, "101000000", latitudeRow},
        {"x,lumtrek.ini,true,3", "Pinpoints Data", false, "Pinpoints Data Fields",
         "Pinpoints Data Fields To Save To The Database", "10000000", latitudeRow},
    };
    for (const ChoiceCase& c : cases) {
        SCOPED_TRACE(std::string(c.commandLine) + " " + c.listText + (c.branches ? " with branches" : " without"));
        if (!c.branches) {
            ASSERT_TRUE(site.exec(QStringLiteral("Delete from BranchInfo")));
        }
        openDataSet(QString::fromLatin1(c.listText), c.commandLine);
        EXPECT_EQ(label("lblSelection"), QString::fromLatin1(c.selection));
        EXPECT_EQ(label("lblFileFormat"), QString::fromLatin1(c.fileFormat));
        EXPECT_TRUE(list()->isHidden());
        EXPECT_TRUE(grid()->isVisible());
        EXPECT_TRUE(button("cmdOk")->isVisible());
        EXPECT_FALSE(button("cmdOk")->isEnabled());   // no file yet
        EXPECT_TRUE(button("cmdGetFile")->isVisible());
        EXPECT_TRUE(button("cmdGetDifferentTable")->isVisible());
        EXPECT_FALSE(button("cmdImportToDB")->isEnabled());
        EXPECT_EQ(window->size(), QSize(ui::twipsToPixels(8700), ui::twipsToPixels(5625)));

        const QString ticked = QString::fromLatin1(c.ticks);
        EXPECT_EQ(ticks(), ticked);
        QString locked = ticked;
        locked.replace(QLatin1Char('1'), QLatin1Char('L')).replace(QLatin1Char('0'), QLatin1Char('-'));
        EXPECT_EQ(locks(), locked);
        const int last = window->fields().maxRows();
        QStringList cells;
        for (int col = 2; col <= 5; ++col)
            cells << window->fields().text(col, last);
        EXPECT_EQ(cells.join(QLatin1Char('|')), QString::fromLatin1(c.lastRow));

        // The selection line names the ticked rows in grid order.
        QStringList expected;
        for (int r = 1; r <= last; ++r)
            if (ticked[r - 1] == QLatin1Char('1'))
                expected << QStringLiteral("''") + window->fields().text(2, r) + QStringLiteral("''");
        EXPECT_EQ(shownFormat(), expected.join(QStringLiteral(" , ")));
        EXPECT_EQ(window->session().selection().count(), expected.size());
        window.reset();
        resetGlobals();
    }
}

TEST_F(ImportWindowFields, GridHeadingsAndEnterKeyChoose)
{
    open();
    list()->setCurrentRow(1);
    pressKey(list(), Qt::Key_Return);
    EXPECT_EQ(label("lblSelection"), QStringLiteral("Employee Data Fields"));
    QStringList headings;
    for (int c = 1; c <= 5; ++c)
        headings << window->fields().text(c, 0);
    EXPECT_EQ(headings.join(QLatin1Char('|')), QStringLiteral("Chck Field|Field Name|Data Type|Max Length|Format"));
    EXPECT_EQ(window->fields().text(2, 8), QStringLiteral("City"));
    EXPECT_EQ(window->fields().text(5, 8), QStringLiteral("Alphas,Numbers & Spaces."));
}

TEST_F(ImportWindowFields, RequiredTicksStayAndTheHeadingClickTogglesOptionalRows)
{
    openDataSet(QStringLiteral("Map Locations Data"));
    ASSERT_EQ(ticks(), QStringLiteral("111000000"));

    // A click on a locked box changes nothing.
    tick({1, 3});
    EXPECT_EQ(ticks(), QStringLiteral("111000000"));

    tick({5});
    EXPECT_EQ(ticks(), QStringLiteral("111010000"));
    EXPECT_EQ(shownFormat(), QStringLiteral("''LocationName'' , ''BranchNumber'' , ''Address1'' , ''City''"));

    // First heading click ticks all, the second unticks the optional rows only. The selection
    // line waits for the next tick click.
    clickTickHeading();
    EXPECT_EQ(ticks(), QStringLiteral("111111111"));
    EXPECT_EQ(shownFormat(), QStringLiteral("''LocationName'' , ''BranchNumber'' , ''Address1'' , ''City''"));
    clickTickHeading();
    EXPECT_EQ(ticks(), QStringLiteral("111000000"));
    EXPECT_EQ(locks(), QStringLiteral("LLL------"));

    // Ticking all, then unticking one row by hand: the next heading click ticks all again.
    clickTickHeading();
    tick({7});
    EXPECT_EQ(ticks(), QStringLiteral("111111011"));
    EXPECT_EQ(shownFormat(), QStringLiteral("''LocationName'' , ''BranchNumber'' , ''Address1'' , ''Address2'' , "
                                            "''City'' , ''State'' , ''Longitude'' , ''Latitude''"));
    clickTickHeading();
    EXPECT_EQ(ticks(), QStringLiteral("111111111"));

    // Other heading cells do nothing.
    QHeaderView* header = grid()->horizontalHeader();
    click(header->viewport(), QPoint(header->sectionViewportPosition(2) + 5, header->height() / 2));
    EXPECT_EQ(ticks(), QStringLiteral("111111111"));
}

TEST_F(ImportWindowFields, ChangeDataTypeReturnsToTheListAndCloseEndsTheWindow)
{
    openDataSet(QStringLiteral("Vehicle Data"));
    tick({4});
    ASSERT_FALSE(shownFormat().isEmpty());
    press("cmdGetDifferentTable");
    EXPECT_EQ(label("lblSelection"), QStringLiteral("Select Data to Import to the Database"));
    EXPECT_TRUE(child<QLabel>("lblFileFormat")->isHidden());
    EXPECT_TRUE(grid()->isHidden());
    EXPECT_EQ(shownFormat(), QString());
    EXPECT_EQ(status(), QString());
    EXPECT_TRUE(list()->isVisible());
    EXPECT_EQ(listTexts().size(), 4);
    EXPECT_EQ(window->size(), QSize(ui::twipsToPixels(3775), ui::twipsToPixels(3630)));
    EXPECT_EQ(window->pos(), QPoint(ui::twipsToPixels(1000), ui::twipsToPixels(2000)));

    // Another data set then starts from its own field list.
    clickListItem(list(), QStringLiteral("Map Locations Data"));
    EXPECT_EQ(ticks(), QStringLiteral("111000000"));
    EXPECT_EQ(button("cmdCancel")->text(), QStringLiteral("&Close"));
    press("cmdCancel");
    EXPECT_FALSE(window->isVisible());
    EXPECT_EQ(window->result(), int(QDialog::Rejected));
}

TEST_F(ImportWindowFields, WindowGrowsWithTheGridAndTheFormatBox)
{
    openDataSet(QStringLiteral("Customer Data"));
    auto* format = child<QPlainTextEdit>("txtFormat");
    const QSize gridBefore = grid()->size();
    const QSize formatBefore = format->size();
    window->resize(window->width() + 200, window->height() + 200);
    QApplication::processEvents();
    EXPECT_GT(grid()->width(), gridBefore.width() + 150);
    EXPECT_GT(grid()->height(), gridBefore.height());
    EXPECT_GT(format->height(), formatBefore.height());
    // The extra height goes to the two of them, not to the buttons.
    EXPECT_GE(grid()->height() + format->height(), gridBefore.height() + formatBefore.height() + 190);
}

} // namespace
} // namespace tp::test
