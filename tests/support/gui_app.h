#pragma once
// Window tests: one QApplication per test program (created before the first test, so that no
// plain QCoreApplication gets there first), and real mouse and key events for widgets.
// Header-only: only the programs that link the widgets include it.
#include <QApplication>
#include <QDir>
#include <QKeyEvent>
#include <QListWidget>
#include <QMouseEvent>
#include <QPushButton>
#include <QStyle>
#include <QStyleOptionViewItem>
#include <QTableWidget>
#include <gtest/gtest.h>
#include <ostream>

// Failed comparisons of texts print the text.
inline void PrintTo(const QString& text, std::ostream* os)
{
    *os << '"' << text.toStdString() << '"';
}

namespace tp::test {

inline QApplication& guiApp()
{
    if (auto* app = qobject_cast<QApplication*>(QCoreApplication::instance()))
        return *app;
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    if (qEnvironmentVariableIsEmpty("XDG_RUNTIME_DIR")) {
        const QString runtime = QDir::temp().filePath(QStringLiteral("tallyport-test-runtime"));
        QDir().mkpath(runtime);
        QFile::setPermissions(runtime, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        qputenv("XDG_RUNTIME_DIR", QFile::encodeName(runtime));
    }
    static int argc = 1;
    static char arg0[] = "tallyport-gui-tests";
    static char* argv[] = {arg0, nullptr};
    static QApplication* app = new QApplication(argc, argv);
    return *app;
}

// Register once per program: AddGlobalTestEnvironment(new GuiEnvironment).
class GuiEnvironment : public ::testing::Environment {
public:
    void SetUp() override { guiApp(); }
};

inline void sendMouse(QWidget* target, QEvent::Type type, const QPoint& pos)
{
    QMouseEvent event(type, QPointF(pos), target->mapToGlobal(QPointF(pos)), Qt::LeftButton,
                      type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::LeftButton,
                      Qt::NoModifier);
    QApplication::sendEvent(target, &event);
}

// Press and release at pos of target.
inline void click(QWidget* target, const QPoint& pos)
{
    sendMouse(target, QEvent::MouseButtonPress, pos);
    sendMouse(target, QEvent::MouseButtonRelease, pos);
}

// A click on the window's button of that object name, which must be there, enabled and shown.
inline void pressButton(QWidget* window, const char* name)
{
    auto* b = window->findChild<QPushButton*>(QString::fromLatin1(name));
    ASSERT_NE(b, nullptr) << name;
    ASSERT_TRUE(b->isEnabled()) << name << " is disabled";
    ASSERT_TRUE(b->isVisible()) << name << " is hidden";
    click(b, b->rect().center());
}

inline void pressKey(QWidget* target, int key, const QString& text = QString())
{
    QKeyEvent press(QEvent::KeyPress, key, Qt::NoModifier, text);
    QApplication::sendEvent(target, &press);
    QKeyEvent release(QEvent::KeyRelease, key, Qt::NoModifier, text);
    QApplication::sendEvent(target, &release);
}

// Grid cells are numbered from 1 (column, row) as the windows number them.
inline QRect cellRect(QTableWidget* table, int column, int row)
{
    table->scrollTo(table->model()->index(row - 1, column - 1));
    return table->visualRect(table->model()->index(row - 1, column - 1));
}

inline void clickCell(QTableWidget* table, int column, int row)
{
    click(table->viewport(), cellRect(table, column, row).center());
}

// A click on the check box drawn in a cell, where the style puts it.
inline void clickCheckBox(QTableWidget* table, int column, int row)
{
    QStyleOptionViewItem option;
    option.initFrom(table->viewport());
    option.rect = cellRect(table, column, row);
    option.features = QStyleOptionViewItem::HasCheckIndicator;
    option.state |= QStyle::State_Enabled;
    const QRect box = table->style()->subElementRect(QStyle::SE_ItemViewItemCheckIndicator, &option, table);
    click(table->viewport(), box.center());
}

inline void clickListItem(QListWidget* list, const QString& text)
{
    const auto items = list->findItems(text, Qt::MatchExactly);
    if (items.isEmpty())
        return;
    click(list->viewport(), list->visualItemRect(items.first()).center());
}

} // namespace tp::test
