// The export calendar window driven headless through its real widgets on a real SQLite file:
// month layout, enabled days per data set, month changes, picking, OK, Cancel and closing.
#include "export/frmExportCalendar.h"
#include "support/gui_app.h"
#include "ui/window_support.h"
#include "gps_calendar_fixture.h"

#include <QCalendarWidget>
#include <QDir>
#include <QLabel>
#include <QLocale>
#include <QPushButton>
#include <QScreen>
#include <QToolButton>

namespace tp::test {
namespace {

const auto* const kCalendarGui = ::testing::AddGlobalTestEnvironment(new GuiEnvironment);

class CalendarWindow : public GpsCalendarDbTest {
protected:
    std::unique_ptr<frmExportCalendar> open(const QString& purpose, const QString& table,
                                            const QString& shown)
    {
        result = shown;
        context.purpose = purpose;
        context.table = table;
        auto w = std::make_unique<frmExportCalendar>(db, feedback, context, result, cancelFlag);
        w->show();
        return w;
    }

    static QPushButton* day(QWidget* w, int index)
    {
        return w->findChild<QPushButton*>(QStringLiteral("cmdD%1").arg(index));
    }
    static QPushButton* button(QWidget* w, const char* name)
    {
        return w->findChild<QPushButton*>(QLatin1String(name));
    }
    static QString label(QWidget* w)
    {
        return w->findChild<QLabel*>(QStringLiteral("lblCalendarInfo"))->text();
    }
    static QCalendarWidget* calendar(QWidget* w)
    {
        return w->findChild<QCalendarWidget*>(QStringLiteral("Calendar1"));
    }
    // Button indexes with a caption, and the captions of the enabled buttons.
    static std::vector<int> captioned(QWidget* w)
    {
        std::vector<int> out;
        for (int i = 1; i <= 42; ++i)
            if (!day(w, i)->text().isEmpty())
                out.push_back(i);
        return out;
    }
    static std::vector<int> enabledDays(QWidget* w)
    {
        std::vector<int> out;
        for (int i = 1; i <= 42; ++i)
            if (day(w, i)->isEnabled())
                out.push_back(day(w, i)->text().toInt());
        return out;
    }
    static void press(QPushButton* b)
    {
        ASSERT_NE(b, nullptr);
        click(b, b->rect().center());
    }
    CalendarContext context;
    QString result;
    bool cancelFlag = true;
};

const QString kStart = QStringLiteral("Export-Start");
const QString kStop = QStringLiteral("Export-Stop");
const QString kTime = QStringLiteral("JobTimeRecords");

TEST_F(CalendarWindow, DayButtonsFollowTheWeekdayWithSundayFirst)
{
    QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));   // week starts on Monday
    auto w = open(kStart, kTime, QStringLiteral("02/10/2004"));
    QLocale::setDefault(QLocale::c());
    EXPECT_EQ(w->windowTitle(), QStringLiteral("Calendar"));
    EXPECT_TRUE(w->isModal());
    std::vector<int> expected;
    for (int i = 1; i <= 29; ++i)
        expected.push_back(i);
    EXPECT_EQ(captioned(w.get()), expected);
    EXPECT_EQ(day(w.get(), 29)->text(), QStringLiteral("29"));
    EXPECT_EQ(label(w.get()), QStringLiteral("Days Available for the Month of February  2004"));

    auto m = open(kStart, kTime, QStringLiteral("03/20/2004"));
    expected.clear();
    for (int i = 2; i <= 32; ++i)
        expected.push_back(i);
    EXPECT_EQ(captioned(m.get()), expected);
    EXPECT_EQ(day(m.get(), 2)->text(), QStringLiteral("1"));
    EXPECT_EQ(day(m.get(), 32)->text(), QStringLiteral("31"));
    EXPECT_EQ(label(m.get()), QStringLiteral("Days Available for the Month of March  2004"));
    EXPECT_EQ(m->findChild<QPushButton*>(QStringLiteral("cmdReturnDate"))->text(), "OK");
    EXPECT_EQ(m->findChild<QPushButton*>(QStringLiteral("cmdCancel"))->text(), "Cancel");
}

TEST_F(CalendarWindow, OnlyDaysWithWaitingTimeRecordsAreEnabled)
{
    addTimeOn(1, 20040305);
    addTimeOn(2, 20040305);
    addTimeOn(3, 20040331);
    addTimeOn(4, 20040312, 2);      // already exported
    addTimeOn(5, 20040314, 1, 1);   // another export identifier
    addTimeOn(6, 20040401);
    addTimeOn(7, 20040229);
    auto w = open(kStart, kTime, QStringLiteral("03/20/2004"));
    EXPECT_EQ(enabledDays(w.get()), (std::vector<int>{5, 31}));
    calendar(w.get())->setCurrentPage(2004, 2);
    EXPECT_EQ(enabledDays(w.get()), (std::vector<int>{29}));
    calendar(w.get())->setCurrentPage(2004, 5);
    EXPECT_TRUE(enabledDays(w.get()).empty());

    context.exportId = 1;
    auto other = open(kStart, kTime, QStringLiteral("03/20/2004"));
    EXPECT_EQ(enabledDays(other.get()), (std::vector<int>{14}));

    // Map locations have no days to pick.
    auto locations = open(kStart, QStringLiteral("CommonLocations"), QStringLiteral("03/20/2004"));
    EXPECT_TRUE(enabledDays(locations.get()).empty());
}

TEST_F(CalendarWindow, InventoryDaysAndAFailingQuery)
{
    exec("INSERT INTO InventoryHistory (InventoryHistoryID, Date, Approved, ExportID) VALUES "
         "(1, 20040302, 1, 0), (2, 20040302, 1, 0), (3, 20040309, 1, 0), (4, 20040310, 2, 0), "
         "(5, 20040311, 1, 3)");
    auto w = open(kStart, QStringLiteral("Inventory"), QStringLiteral("03/20/2004"));
    EXPECT_EQ(enabledDays(w.get()), (std::vector<int>{2, 9}));

    exec("DROP TABLE InventoryHistory");
    auto broken = open(kStart, QStringLiteral("Inventory"), QStringLiteral("03/20/2004"));
    EXPECT_TRUE(enabledDays(broken.get()).empty());
    EXPECT_EQ(captioned(broken.get()).size(), 31u);
}

TEST_F(CalendarWindow, ChangingTheMonthReloadsDaysAndLabel)
{
    addTimeOn(1, 20040305);
    addTimeOn(2, 20040401);
    addTimeOn(3, 20040430);
    addTimeOn(4, 20050415);
    auto w = open(kStart, kTime, QStringLiteral("03/31/2004"));
    ASSERT_EQ(enabledDays(w.get()), (std::vector<int>{5}));

    auto* next = calendar(w.get())->findChild<QToolButton*>(QStringLiteral("qt_calendar_nextmonth"));
    ASSERT_NE(next, nullptr);
    click(next, next->rect().center());
    EXPECT_EQ(label(w.get()), QStringLiteral("Days Available for the Month of April  2004"));
    EXPECT_EQ(day(w.get(), 5)->text(), QStringLiteral("1"));   // a Thursday
    EXPECT_EQ(captioned(w.get()).back(), 34);
    EXPECT_EQ(enabledDays(w.get()), (std::vector<int>{1, 30}));
    // The control keeps the last valid day when the month is shorter.
    EXPECT_EQ(calendar(w.get())->selectedDate(), QDate(2004, 4, 30));

    calendar(w.get())->setCurrentPage(2005, 4);   // the year alone
    EXPECT_EQ(label(w.get()), QStringLiteral("Days Available for the Month of April  2005"));
    EXPECT_EQ(enabledDays(w.get()), (std::vector<int>{15}));

    // A day picked in the new month carries its month and year.
    press(day(w.get(), 20));   // April 15th, 2005 is a Friday: button 6 + 14
    EXPECT_EQ(w->selectedDate(), QStringLiteral("04/15/2005"));
}

TEST_F(CalendarWindow, GpsDaysOfOneOrEverySubject)
{
    addTracks();
    const QString gps = QStringLiteral("GPSCoordinates");
    context.trackSubjects = {1};
    context.currentTrackSubject = 1;
    auto one = open(kStart, gps, QStringLiteral("03/20/2004"));
    EXPECT_EQ(enabledDays(one.get()), (std::vector<int>{5}));

    // Every subject: position 0 is unused and the last subject stays current.
    context.trackSubjects = {0, 1, 4};
    context.currentTrackSubject = 2;
    auto all = open(kStart, gps, QStringLiteral("03/20/2005"));
    EXPECT_TRUE(enabledDays(all.get()).empty());
    EXPECT_EQ(all->currentTrackSubject(), 4);
    // A new year alone asks for the current subject only.
    calendar(all.get())->setCurrentPage(2004, 3);
    EXPECT_EQ(enabledDays(all.get()), (std::vector<int>{20}));
    // A new month asks for every subject again.
    calendar(all.get())->setCurrentPage(2004, 4);
    EXPECT_EQ(enabledDays(all.get()), (std::vector<int>{1}));
    calendar(all.get())->setCurrentPage(2004, 3);
    EXPECT_EQ(enabledDays(all.get()), (std::vector<int>{5, 20}));
    EXPECT_TRUE(feedback.messages().isEmpty());
}

TEST_F(CalendarWindow, PickedDayIsMarkedAndReturnedByOk)
{
    addTimeOn(1, 20040305);
    addTimeOn(2, 20040309);
    auto w = open(kStart, kTime, QStringLiteral("03/20/2004"));
    QPushButton* fifth = day(w.get(), 6);
    QPushButton* ninth = day(w.get(), 10);
    ASSERT_EQ(fifth->text(), QStringLiteral("5"));
    press(fifth);
    EXPECT_EQ(fifth->font().pointSize(), 18);
    EXPECT_TRUE(fifth->font().underline());
    EXPECT_EQ(fifth->palette().color(QPalette::ButtonText), QColor(255, 0, 0));
    press(ninth);
    EXPECT_EQ(fifth->font().pointSize(), 8);
    EXPECT_FALSE(fifth->font().underline());
    EXPECT_NE(fifth->palette().color(QPalette::ButtonText), QColor(255, 0, 0));
    EXPECT_EQ(ninth->font().pointSize(), 18);
    EXPECT_EQ(day(w.get(), 20)->font().pointSize(), 8);
    press(button(w.get(), "cmdReturnDate"));
    EXPECT_FALSE(w->isVisible());
    EXPECT_EQ(w->result(), QDialog::Accepted);
    EXPECT_EQ(result, QStringLiteral("03/09/2004"));

    // The stop date comes back through the closing rule; OK clears the cancel flag.
    bool hidden = false;
    context.calendarHidden = &hidden;
    cancelFlag = true;
    auto stop = open(kStop, kTime, QStringLiteral("03/09/2004"));
    press(day(stop.get(), 6));
    press(button(stop.get(), "cmdReturnDate"));
    EXPECT_EQ(result, QStringLiteral("03/05/2004"));
    EXPECT_FALSE(cancelFlag);
}

TEST_F(CalendarWindow, OkWithoutAPickedDayReturnsNothing)
{
    for (const QString& purpose : {kStart, kStop}) {
        cancelFlag = true;
        auto w = open(purpose, kTime, QStringLiteral("03/20/2004"));
        press(button(w.get(), "cmdReturnDate"));
        EXPECT_EQ(result, QString()) << purpose.toStdString();
    }
}

TEST_F(CalendarWindow, CancelKeepsTheStartAndEmptiesTheStop)
{
    addTimeOn(1, 20040305);
    auto start = open(kStart, kTime, QStringLiteral("03/20/2004"));
    press(day(start.get(), 6));
    press(button(start.get(), "cmdCancel"));
    EXPECT_EQ(start->result(), QDialog::Rejected);
    EXPECT_EQ(result, QStringLiteral("03/20/2004"));
    EXPECT_TRUE(cancelFlag);

    cancelFlag = false;
    auto stop = open(kStop, kTime, QStringLiteral("03/20/2004"));
    press(day(stop.get(), 6));
    press(button(stop.get(), "cmdCancel"));
    EXPECT_EQ(result, QString());
    EXPECT_TRUE(cancelFlag);
}

TEST_F(CalendarWindow, ClosingTheWindowFollowsTheClosingRule)
{
    addTimeOn(1, 20040305);
    // A start calendar opened without the cancel flag hands back whatever was picked.
    cancelFlag = false;
    auto w = open(kStart, kTime, QStringLiteral("03/20/2004"));
    press(day(w.get(), 6));
    w->close();
    EXPECT_EQ(result, QStringLiteral("03/05/2004"));

    // With the cancel flag set, closing without a pick keeps the old start.
    cancelFlag = true;
    auto kept = open(kStart, kTime, QStringLiteral("03/20/2004"));
    kept->close();
    EXPECT_EQ(result, QStringLiteral("03/20/2004"));

    // While the Export window has the calendar hidden, closing leaves the result alone.
    bool hidden = true;
    context.calendarHidden = &hidden;
    auto quiet = open(kStop, kTime, QStringLiteral("03/20/2004"));
    press(day(quiet.get(), 6));
    quiet->close();
    EXPECT_EQ(result, QStringLiteral("03/20/2004"));
}

TEST_F(CalendarWindow, MalformedDatesShowTodaysMonth)
{
    const QDate today = QDate::currentDate();
    const QString todayLabel =
        QStringLiteral("Days Available for the Month of ") +
        QLocale(QLocale::English).monthName(today.month()) + QStringLiteral("  ") +
        QString::number(today.year());
    for (const char* shown : {"ab/10/2004", "03/xx/2004", "03/10/20x4", "13/10/2004", "3/5/2004",
                              ""}) {
        auto w = open(kStart, kTime, QLatin1String(shown));
        EXPECT_EQ(result, QStringLiteral("00/00/0000")) << shown;
        EXPECT_EQ(label(w.get()), todayLabel) << shown;
        EXPECT_EQ(calendar(w.get())->monthShown(), today.month()) << shown;
        // Cancel on a start date leaves the placeholder, which the Export window ignores.
        press(button(w.get(), "cmdCancel"));
        EXPECT_EQ(result, QStringLiteral("00/00/0000")) << shown;
    }
    // A day past the month's end is taken as its last day.
    auto w = open(kStart, kTime, QStringLiteral("02/31/2004"));
    EXPECT_EQ(label(w.get()), QStringLiteral("Days Available for the Month of February  2004"));
    EXPECT_EQ(result, QStringLiteral("02/31/2004"));
}

TEST_F(CalendarWindow, WindowIsCentredAndItsPictureReadable)
{
    addTimeOn(1, 20040305);
    addTimeOn(2, 20040316);
    addTimeOn(3, 20040322);
    auto w = open(kStart, kTime, QStringLiteral("03/16/2004"));
    press(day(w.get(), 17));
    const QRect screen = w->screen()->availableGeometry();
    const QRect frame = w->frameGeometry();
    // Placed before it was shown, when the frame's width was not known yet.
    const int frameSlack = (frame.width() - w->width()) / 2 + 1;
    EXPECT_NEAR(frame.left() - screen.left(), (screen.width() - frame.width()) / 2, frameSlack);
    EXPECT_NEAR(frame.top() - screen.top(), (screen.height() - frame.height()) / 2, frameSlack);

    const QImage shot = w->grab().toImage();
    ASSERT_EQ(shot.size(), w->size());
    QTemporaryDir out;
    const QString folder = qEnvironmentVariableIsSet("TP_SCREENSHOT_DIR")
                               ? qEnvironmentVariable("TP_SCREENSHOT_DIR")
                               : out.path();
    EXPECT_TRUE(shot.save(QDir(folder).filePath(QStringLiteral("calendar.png")), "PNG"));
}

TEST(CentreWindow, KeepsTheMarginWhereTheWindowDoesNotFit)
{
    QWidget wide;
    const QRect screen = wide.screen()->availableGeometry();
    wide.resize(screen.width() + 200, screen.height() / 2);
    ui::centreWindow(&wide);
    EXPECT_EQ(wide.pos().x() - screen.left(), ui::twipsToPixels(100));
    EXPECT_EQ(wide.pos().y() - screen.top(), (screen.height() - wide.height()) / 2);

    QWidget tall;
    tall.resize(200, screen.height() - 4);   // fits, but not with the margin
    ui::centreWindow(&tall);
    EXPECT_EQ(tall.pos().x() - screen.left(), (screen.width() - 200) / 2);
    EXPECT_EQ(tall.pos().y() - screen.top(), ui::twipsToPixels(100));
}

} // namespace
} // namespace tp::test
