// The track-subject window and the Export window's GPS selection, headless through their
// real widgets: one checked entry at most, OK and Cancel, the list taking the room, and the
// captions and dated selection of the Export window.
#include "gps_window_fixture.h"

namespace tp::test {
namespace {

const auto* const kSubjectsGui = ::testing::AddGlobalTestEnvironment(new GuiEnvironment);

using TrackSubjectsWindow = GpsWindowTest;

TEST_F(TrackSubjectsWindow, OneEntryAtMostIsCheckedAndOkNeedsOne)
{
    open();
    frmTrackSubjects subjects(*SharedDatabase(), foundation.feedback, QStringLiteral("KRV.ini"));
    subjects.show();
    EXPECT_EQ(subjects.windowTitle(), QStringLiteral("Import/Export"));
    auto* list = subjects.findChild<QListWidget*>(QStringLiteral("lstTrackingSubject"));
    ASSERT_EQ(list->count(), 5);
    auto checked = [&] {
        std::vector<int> rows;
        for (int i = 0; i < list->count(); ++i)
            if (list->item(i)->checkState() == Qt::Checked)
                rows.push_back(i);
        return rows;
    };

    auto* ok = subjects.findChild<QPushButton*>(QStringLiteral("cmdOk"));
    click(ok, ok->rect().center());
    EXPECT_EQ(foundation.feedback.messages(), QStringList{kPleaseMakeASelection});
    EXPECT_TRUE(subjects.isVisible());
    EXPECT_FALSE(subjects.choice());

    clickListCheckBox(list, 1);
    EXPECT_EQ(checked(), std::vector<int>{1});
    clickListCheckBox(list, 3);   // checking another unchecks the first
    EXPECT_EQ(checked(), std::vector<int>{3});
    clickListCheckBox(list, 3);   // and a checked one can be unchecked again
    EXPECT_TRUE(checked().empty());
    clickListCheckBox(list, 2);
    click(ok, ok->rect().center());
    EXPECT_FALSE(subjects.isVisible());
    ASSERT_TRUE(subjects.choice());
    EXPECT_EQ(subjects.choice()->CurrentTrackSubject, 22);

    // The list takes the room a larger window gives.
    frmTrackSubjects larger(*SharedDatabase(), foundation.feedback, QStringLiteral("KRV.ini"));
    larger.show();
    auto* grown = larger.findChild<QListWidget*>(QStringLiteral("lstTrackingSubject"));
    const QSize before = grown->size();
    larger.resize(larger.width() + 200, larger.height() + 150);
    QApplication::processEvents();
    EXPECT_EQ(grown->width(), before.width() + 200);
    EXPECT_EQ(grown->height(), before.height() + 150);
}

TEST_F(TrackSubjectsWindow, ExportWindowChoosesSubjectsThenAlwaysADateRange)
{
    struct Case {
        const char* settings;
        QString allCaption, dateCaption;
        QStringList entries;
    };
    const Case cases[] = {
        {"KRV.ini", QStringLiteral("Select Employee"), QStringLiteral("Select Records by Date"),
         {"All Subjects", "UnAssigned Individual - GPS-205", "Ann - GPS-203", "Ann - GPS-205",
          "UnAssigned Individual - UnAssigned Tracker"}},
        {"lumtrek.ini", QStringLiteral("Select Unit"), QStringLiteral("Select Date"),
         {"All Subjects", "UnAssigned Individual - Van 205", "Ann Smith - Truck 203",
          "Ann Smith - Van 205", "UnAssigned Individual - UnAssigned Tracker"}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.settings);
        openGps(c.settings);
        const int trackRow = window->session().fieldRow(QStringLiteral("TrackID"));
        const int timeRow = window->session().fieldRow(QStringLiteral("Time"));
        tick({trackRow, timeRow});
        EXPECT_EQ(button("cmdAll")->text(), c.allCaption);
        EXPECT_EQ(button("cmdDate")->text(), c.dateCaption);
        EXPECT_FALSE(button("cmdDate")->isEnabled());

        // Cancel and an unchosen OK leave the buttons as they were.
        EXPECT_EQ(chooseSubjects({}, false), c.entries);
        EXPECT_TRUE(button("cmdAll")->isEnabled());
        EXPECT_FALSE(button("cmdDate")->isEnabled());

        chooseSubjects({0});   // All Subjects
        EXPECT_EQ(window->session().CurrentTrackSubject, 4);
        EXPECT_EQ(window->session().TrackSubjects, (std::vector<qint32>{0, 24, 22, 23, 26}));
        EXPECT_FALSE(button("cmdAll")->isEnabled());
        press("cmdDate");
        // Only the days with usable points of the subjects are offered.
        EXPECT_EQ(pickDate(button("cmdStart"), 2004, 3, 2), (std::vector<int>{2, 3, 4, 5, 6}));
        pickDate(button("cmdStop"), 2004, 3, 5);
        press("cmdOK");
        EXPECT_EQ(status(), QStringLiteral("6  Record(s) found"));
        QStringList tracks;
        for (int r = 1; r <= 6; ++r)
            tracks << recordRow(r).at(window->session().field(trackRow).order);
        EXPECT_EQ(tracks, (QStringList{"24", "24", "22", "21", "21", "23"}));
        EXPECT_TRUE(button("cmdPreviewExport")->isEnabled());
        EXPECT_TRUE(button("cmdFormatTime")->isEnabled());
        window.reset();
    }
}

} // namespace
} // namespace tp::test
