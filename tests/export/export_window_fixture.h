#pragma once
// The Export window on a demo site whose time records the test chooses: start-up as the host
// runs it, the window with scripted prompts and file names, and helpers that press its
// buttons, tick fields and pick days in the calendar through the real widgets.
#include "export/frmExport.h"
#include "export/frmExportCalendar.h"
#include "foundation/dao.h"
#include "foundation/globals.h"
#include "startup/startup.h"
#include "support/demo_site.h"
#include "support/foundation_fixture.h"
#include "support/gui_app.h"
#include "support/time_rows.h"
#include "ui/window_support.h"

#include <QCalendarWidget>
#include <QDir>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTableWidget>
#include <QTimer>
#include <gtest/gtest.h>
#include <memory>

namespace tp::test {

struct WaitingTime {
    qint64 id;
    qint32 date;
    qint32 time = 93000;
    qint32 employee = 9001;
    int approved = 1;
    int exportId = 0;
};

class ExportFlowTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(site.ok()) << site.error().toStdString();
        ASSERT_TRUE(site.exec(QStringLiteral("Delete from JobTimeRecords")));
        ASSERT_TRUE(site.exec(QStringLiteral(
            "Insert into EmployeeInfo (EmployeeNumber, FirstName, LastName, Name) "
            "values (9001, 'Ann', 'O''Hara', 'Ann O''Hara')")));
        ASSERT_TRUE(out.isValid());
    }

    // Adds the rows in one statement.
    void addTimes(const std::vector<WaitingTime>& rows)
    {
        std::vector<TimeRow> timeRows;
        for (const WaitingTime& r : rows)
            timeRows.push_back({.id = r.id, .employee = r.employee, .vehicle = 7, .date = r.date, .time = r.time,
                                .jobIn = 1, .timeOut = 0, .odometer = QStringLiteral("1250"),
                                .approved = r.approved, .exportId = r.exportId});
        ASSERT_TRUE(site.exec(insertTimeRows(timeRows)));
    }
    // n waiting records with ids from firstId, on date, times 80000 upward.
    void addWaiting(int n, qint64 firstId = 1, qint32 date = 20050131)
    {
        std::vector<WaitingTime> rows;
        for (int i = 0; i < n; ++i)
            rows.push_back({firstId + i, date, 80000 + i});
        addTimes(rows);
    }

    frmExport& open(const char* commandLine = "x,KRV.ini,true,1")
    {
        const StartupOutcome outcome = RunStartup(QString::fromLatin1(commandLine));
        EXPECT_FALSE(outcome.fatal);
        EXPECT_NE(SharedDatabase(), nullptr);
        window = std::make_unique<frmExport>(*SharedDatabase(), nullptr, &foundation.feedback, &dialogs);
        window->show();
        return *window;
    }
    // Opens the window and chooses "Time Data" with a click into the list.
    frmExport& openTimeData()
    {
        open();
        clickListItem(child<QListWidget>("lstTables"), QStringLiteral("Time Data"));
        EXPECT_EQ(window->session().msTableSelected, QStringLiteral("JobTimeRecords"));
        return *window;
    }

    template <class W>
    W* child(const char* name)
    {
        return window->findChild<W*>(QString::fromLatin1(name));
    }
    QPushButton* button(const char* name) { return child<QPushButton>(name); }
    QTableWidget* fieldGrid() { return child<QTableWidget>("fpFields"); }
    QTableWidget* recordGrid() { return child<QTableWidget>("fpRecords"); }
    QTableWidget* previewGrid() { return child<QTableWidget>("previewTextFile"); }
    QLineEdit* box(const char* name) { return child<QLineEdit>(name); }
    QString status() { return window->statusBar().text(); }

    void press(const char* name) { pressButton(window.get(), name); }
    void tick(std::initializer_list<int> rows)
    {
        for (int r : rows)
            clickCheckBox(fieldGrid(), 1, r);
    }
    // The record grid's cells of one row, column 1 onward, up to the last output column.
    QStringList recordRow(int row)
    {
        QStringList cells;
        for (int c = 1; c <= window->session().OutputColumnCount; ++c)
            cells << window->records().text(c, row);
        return cells;
    }

    // Presses trigger (a button or a date box) and, in the calendar it opens, shows the month,
    // clicks the day and presses OK (or Cancel when day is 0). Returns the days the month
    // offered; empty when no calendar opened.
    std::vector<int> pickDate(QWidget* trigger, int year, int month, int day)
    {
        std::vector<int> offered;
        bool opened = false;
        QTimer timer;
        timer.setSingleShot(true);
        QObject::connect(&timer, &QTimer::timeout, [&] {
            auto* cal = qobject_cast<frmExportCalendar*>(QApplication::activeModalWidget());
            if (!cal)
                return;
            opened = true;
            cal->findChild<QCalendarWidget*>(QStringLiteral("Calendar1"))->setCurrentPage(year, month);
            QPushButton* chosen = nullptr;
            for (int i = 1; i <= 42; ++i) {
                auto* b = cal->findChild<QPushButton*>(QStringLiteral("cmdD%1").arg(i));
                if (b->isEnabled())
                    offered.push_back(b->text().toInt());
                if (day > 0 && b->text() == QString::number(day))
                    chosen = b;
            }
            if (chosen && chosen->isEnabled())
                click(chosen, chosen->rect().center());
            auto* close = cal->findChild<QPushButton*>(day > 0 ? QStringLiteral("cmdReturnDate")
                                                               : QStringLiteral("cmdCancel"));
            click(close, close->rect().center());
        });
        timer.start(0);
        if (qobject_cast<QLineEdit*>(trigger))
            sendMouse(trigger, QEvent::MouseButtonRelease, trigger->rect().center());
        else
            click(trigger, trigger->rect().center());
        timer.stop();
        EXPECT_TRUE(opened) << "no calendar opened";
        return offered;
    }

    qint64 markedCount() { return site.scalar(QStringLiteral("Select count(*) from JobTimeRecords where Approved = 2")); }

    QString outFile(const QString& name) const { return QDir(out.path()).filePath(name); }

    ScopedFoundation foundation;
    DemoSite site;
    QTemporaryDir out;
    ui::ScriptedFileDialog dialogs;
    std::unique_ptr<frmExport> window;
};

} // namespace tp::test
