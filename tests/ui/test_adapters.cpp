// The adapters the windows stand on: what a user does reaches the window once, what the
// program does never looks like a user's doing, and prompts can be scripted.
#include "support/gui_app.h"
#include "ui/file_dialog.h"
#include "ui/grid_adapter.h"
#include "ui/qt_feedback.h"
#include "ui/status_bar.h"

#include <QStatusBar>
#include <QTableWidget>
#include <gtest/gtest.h>
#include <tuple>
#include <vector>

namespace tp {
namespace {

const auto* const kGui = ::testing::AddGlobalTestEnvironment(new test::GuiEnvironment);

class Grid : public ::testing::Test {
protected:
    void SetUp() override
    {
        table.resize(400, 200);
        grid.setMaxCols(3);
        grid.setMaxRows(4);
        for (int r = 1; r <= 4; ++r)
            grid.setCellType(1, r, ui::GridAdapter::CellType::CheckBox);
        QObject::connect(&grid, &ui::GridAdapter::buttonClicked, [this](int c, int r, int down) {
            clicks.emplace_back(c, r, down);
        });
        table.show();
    }

    QTableWidget table;
    ui::GridAdapter grid{&table};
    std::vector<std::tuple<int, int, int>> clicks;
};

TEST_F(Grid, CellsAreNumberedFromOneWithTheHeaderInRowZero)
{
    grid.setText(2, 0, QStringLiteral("Name"));
    grid.setText(3, 4, QStringLiteral("last"));
    EXPECT_EQ(table.horizontalHeaderItem(1)->text(), QStringLiteral("Name"));
    EXPECT_EQ(table.item(3, 2)->text(), QStringLiteral("last"));
    EXPECT_EQ(grid.text(3, 4), QStringLiteral("last"));
    // Outside the grid: nothing read, nothing written, nothing created.
    grid.setText(4, 1, QStringLiteral("x"));
    grid.setText(1, 5, QStringLiteral("x"));
    EXPECT_EQ(grid.text(4, 1), QString());
    EXPECT_EQ(table.columnCount(), 3);
    EXPECT_EQ(table.rowCount(), 4);
}

TEST_F(Grid, ClicksOnBoxesAreReportedAndProgramTicksAreNot)
{
    grid.setChecked(1, 2, true);
    EXPECT_TRUE(grid.isChecked(1, 2));
    EXPECT_TRUE(clicks.empty());

    test::clickCheckBox(&table, 1, 3);
    test::clickCheckBox(&table, 1, 2);
    ASSERT_EQ(clicks.size(), 2u);
    EXPECT_EQ(clicks[0], std::make_tuple(1, 3, 1));
    EXPECT_EQ(clicks[1], std::make_tuple(1, 2, 0));
    EXPECT_FALSE(grid.isChecked(1, 2));

    // A text change in a box cell is not a click.
    grid.setText(1, 3, QStringLiteral("label"));
    table.item(2, 0)->setText(QStringLiteral("typed"));
    EXPECT_EQ(clicks.size(), 2u);
}

TEST_F(Grid, LockedBoxesCannotBeTicked)
{
    grid.setLocked(1, 1, true);
    test::clickCheckBox(&table, 1, 1);
    EXPECT_FALSE(grid.isChecked(1, 1));
    EXPECT_TRUE(clicks.empty());
    grid.setLocked(1, 1, false);
    test::clickCheckBox(&table, 1, 1);
    EXPECT_TRUE(grid.isChecked(1, 1));
    EXPECT_EQ(clicks.size(), 1u);
}

TEST_F(Grid, TypedTextIsReportedAndStaticTextCannotBeEdited)
{
    std::vector<std::tuple<int, int, QString>> edits;
    QObject::connect(&grid, &ui::GridAdapter::textEdited,
                     [&](int c, int r, const QString& t) { edits.emplace_back(c, r, t); });
    grid.setText(2, 1, QStringLiteral("program"));
    EXPECT_TRUE(edits.empty());
    table.item(0, 1)->setText(QStringLiteral("user"));   // what an editor commits
    ASSERT_EQ(edits.size(), 1u);
    EXPECT_EQ(edits[0], std::make_tuple(2, 1, QStringLiteral("user")));

    grid.setCellType(3, 1, ui::GridAdapter::CellType::StaticText);
    EXPECT_FALSE(table.item(0, 2)->flags() & Qt::ItemIsEditable);
    EXPECT_TRUE(table.item(0, 1)->flags() & Qt::ItemIsEditable);
    grid.setAllLocked(true);
    EXPECT_FALSE(table.item(0, 1)->flags() & Qt::ItemIsEditable);
}

TEST_F(Grid, KeyFilterDiscardsCharactersButNotNavigation)
{
    int asked = 0;
    grid.setKeyFilter([&](const QKeyEvent&) {
        ++asked;
        return false;
    });
    table.setEditTriggers(QAbstractItemView::AnyKeyPressed);
    table.setCurrentCell(0, 1);
    test::pressKey(&table, Qt::Key_A, QStringLiteral("a"));
    EXPECT_EQ(table.indexWidget(table.model()->index(0, 1)), nullptr);
    test::pressKey(&table, Qt::Key_Down);
    EXPECT_EQ(table.currentRow(), 1);
    EXPECT_EQ(asked, 1);
}

TEST(QtFeedback, PromptsCanBeScriptedAndStatusReachesTheBar)
{
    QStatusBar bar;
    ui::StatusBarAdapter status(&bar);
    ScriptedFeedback script;
    script.answers = {AnswerYes, AnswerRetry};
    ui::QtFeedback feedback(nullptr, &status, &script);

    feedback.status(QStringLiteral("Saving File ..."));
    EXPECT_EQ(status.text(), QStringLiteral("Saving File ..."));
    EXPECT_EQ(script.lastStatus, QStringLiteral("Saving File ..."));
    feedback.message(1, QStringLiteral("a\rb"), kBoxTitle);
    EXPECT_EQ(script.messages(), QStringList{QStringLiteral("a\rb")});
    EXPECT_EQ(feedback.ask(0, QStringLiteral("Continue?")), AnswerYes);
    EXPECT_EQ(feedback.ask(1, QStringLiteral("Again?")), AnswerRetry);
    EXPECT_EQ(feedback.ask(5, QStringLiteral("never shown")), AnswerNone);
    EXPECT_EQ(script.questions().size(), 2);
    // Carriage returns become line breaks on screen.
    EXPECT_EQ(ui::QtFeedback::displayText(QStringLiteral("a\rb\r\nc\nd")), QStringLiteral("a\nb\nc\nd"));
}

TEST(QtFeedback, BusyCursorIsNotLeftBehindNorShownWhileTheUserReadsABox)
{
    ScriptedFeedback script;
    bool hourglassDuringBox = true;
    script.onShown = [&](const ScriptedFeedback::Shown&) {
        hourglassDuringBox = QApplication::overrideCursor() != nullptr;
    };
    ui::QtFeedback feedback(nullptr, nullptr, &script);
    feedback.busy(true);
    feedback.busy(true);
    EXPECT_EQ(QApplication::overrideCursor()->shape(), Qt::WaitCursor);
    feedback.message(0, QStringLiteral("There are no records available."), kBoxTitle);
    EXPECT_FALSE(hourglassDuringBox);
    EXPECT_NE(QApplication::overrideCursor(), nullptr);   // back once the box is gone
    {
        ui::QtFeedback other;
    }
    EXPECT_NE(QApplication::overrideCursor(), nullptr);
    feedback.busy(false);
    EXPECT_EQ(QApplication::overrideCursor(), nullptr);
}

TEST(FileDialogs, FiltersTakeTheQtForm)
{
    EXPECT_EQ(ui::QtFilter(QStringLiteral("Text files (*.txt) | *.txt")), QStringLiteral("Text files (*.txt)"));
    EXPECT_EQ(ui::QtFilter(QStringLiteral("Text|*.txt|All files|*.*")),
              QStringLiteral("Text (*.txt);;All files (*.*)"));
}

} // namespace
} // namespace tp
