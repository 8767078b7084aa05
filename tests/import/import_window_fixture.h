#pragma once
// The Import window on a demo site: start-up as the host runs it, the window with scripted
// prompts and file names, and helpers that press its buttons and tick its grid through the
// real widgets.
#include "foundation/dao.h"
#include "foundation/globals.h"
#include "import/frmImport.h"
#include "startup/startup.h"
#include "support/demo_site.h"
#include "support/foundation_fixture.h"
#include "support/gui_app.h"

#include <QDir>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTableWidget>
#include <gtest/gtest.h>
#include <memory>

namespace tp::test {

class ImportWindowTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(site.ok()) << site.error().toStdString();
        ASSERT_TRUE(files.isValid());
    }

    // Starts up as the host does and opens the window; it is shown, so an empty list closes it.
    frmImport& open(const char* commandLine = "x,KRV.ini,true,1")
    {
        const StartupOutcome outcome = RunStartup(QString::fromLatin1(commandLine));
        EXPECT_FALSE(outcome.fatal);
        EXPECT_NE(SharedDatabase(), nullptr);
        window = std::make_unique<frmImport>(*SharedDatabase(), nullptr, &foundation.feedback, &dialogs);
        window->show();
        QApplication::processEvents();
        return *window;
    }
    // Opens the window and chooses a data set with a click into the list.
    frmImport& openDataSet(const QString& listText, const char* commandLine = "x,KRV.ini,true,1")
    {
        open(commandLine);
        clickListItem(list(), listText);
        return *window;
    }

    template <class W>
    W* child(const char* name)
    {
        return window->findChild<W*>(QString::fromLatin1(name));
    }
    QPushButton* button(const char* name) { return child<QPushButton>(name); }
    QListWidget* list() { return child<QListWidget>("lstTables"); }
    QTableWidget* grid() { return child<QTableWidget>("fpFields"); }
    QLineEdit* box(const char* name) { return child<QLineEdit>(name); }
    QString label(const char* name) { return child<QLabel>(name)->text(); }
    // txtFormat as shown, line feeds between lines.
    QString shownFormat() { return child<QPlainTextEdit>("txtFormat")->toPlainText(); }
    QString status() { return window->statusBar().text(); }

    QStringList listTexts()
    {
        QStringList texts;
        for (int i = 0; i < list()->count(); ++i)
            texts << list()->item(i)->text();
        return texts;
    }

    void press(const char* name) { pressButton(window.get(), name); }
    void tick(std::initializer_list<int> rows)
    {
        for (int r : rows)
            clickCheckBox(grid(), 1, r);
    }
    void clickTickHeading()
    {
        QHeaderView* header = grid()->horizontalHeader();
        const QPoint at(header->sectionViewportPosition(0) + header->sectionSize(0) / 2, header->height() / 2);
        click(header->viewport(), at);
    }
    // The ticks of every grid row, "1" or "0", and the rows whose tick is locked.
    QString ticks()
    {
        QString out;
        for (int r = 1; r <= window->fields().maxRows(); ++r)
            out += window->fields().isChecked(1, r) ? QLatin1Char('1') : QLatin1Char('0');
        return out;
    }
    QString locks()
    {
        QString out;
        for (int r = 1; r <= window->fields().maxRows(); ++r)
            out += window->fields().isLocked(1, r) ? QLatin1Char('L') : QLatin1Char('-');
        return out;
    }

    // Writes a file into the scratch folder and answers the next file dialog with it.
    QString fileToChoose(const char* name, const QByteArray& content)
    {
        const QString path = QDir(files.path()).filePath(QString::fromLatin1(name));
        EXPECT_TRUE(writeBytes(path, content));
        dialogs.names.push_back(path);
        return path;
    }
    // Browses for the file, then presses OK.
    void scan(const char* name, const QByteArray& content)
    {
        fileToChoose(name, content);
        press("cmdGetFile");
        press("cmdOk");
    }

    ScopedFoundation foundation;
    DemoSite site;
    QTemporaryDir files;
    ui::ScriptedFileDialog dialogs;
    std::unique_ptr<frmImport> window;
};

} // namespace tp::test
