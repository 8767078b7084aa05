#include "export/frmExportCalendar.h"

#include "export/calendar_days.h"
#include "export/calendar_gps_days.h"
#include "foundation/feedback.h"
#include "ui/window_support.h"

#include <QCalendarWidget>
#include <QDate>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLocale>
#include <QPushButton>
#include <QVBoxLayout>

namespace tp {

namespace {

const QString kStart = QStringLiteral("Export-Start");
const QString kNoDate = QStringLiteral("00/00/0000");
constexpr int kDayFontSize = 8;
constexpr int kPickedFontSize = 18;

QString pad2(int n)
{
    return QStringLiteral("%1").arg(n, 2, 10, QLatin1Char('0'));
}

// A part of a date text as the old control took it: a number, or nothing.
bool numberPart(const QString& text, int& value)
{
    bool ok = false;
    value = text.trimmed().toInt(&ok);
    return ok;
}

void setDayFont(QPushButton* button, int pointSize, bool underline)
{
    QFont f = button->font();
    f.setPointSize(pointSize);
    f.setUnderline(underline);
    button->setFont(f);
}

} // namespace

frmExportCalendar::frmExportCalendar(cDAO& db, Feedback& feedback, const CalendarContext& context,
                                     QString& calendarResult, bool& cancelFlag, QWidget* parent)
    : QDialog(parent), m_db(db), m_feedback(feedback), m_context(context),
      CalendarResult(calendarResult), CancelFlag(cancelFlag)
{
    setObjectName(QStringLiteral("frmExportCalendar"));
    setWindowTitle(QStringLiteral("Calendar"));
    setWindowIcon(ui::programIcon());
    setModal(true);
    buildControls();
    load();
}

frmExportCalendar::~frmExportCalendar() = default;

void frmExportCalendar::buildControls()
{
    Calendar1 = new QCalendarWidget(this);
    Calendar1->setObjectName(QStringLiteral("Calendar1"));
    // English names and Sunday first, whatever the system's language and week.
    Calendar1->setLocale(QLocale(QLocale::English, QLocale::UnitedStates));
    Calendar1->setFirstDayOfWeek(Qt::Sunday);
    Calendar1->setVerticalHeaderFormat(QCalendarWidget::NoVerticalHeader);
    Calendar1->setHorizontalHeaderFormat(QCalendarWidget::ShortDayNames);
    Calendar1->setGridVisible(true);
    connect(Calendar1, &QCalendarWidget::currentPageChanged, this,
            &frmExportCalendar::monthChanged);
    connect(Calendar1, &QCalendarWidget::clicked, this, [this] { DaysLoaded = true; });

    lblCalendarInfo = new QLabel(this);
    lblCalendarInfo->setObjectName(QStringLiteral("lblCalendarInfo"));
    lblCalendarInfo->setAlignment(Qt::AlignCenter);
    QFont bold = lblCalendarInfo->font();
    bold.setBold(true);
    lblCalendarInfo->setFont(bold);

    auto* days = new QGridLayout;
    days->setSpacing(3);
    static const char* const weekdays[7] = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
    for (int c = 0; c < 7; ++c) {
        auto* head = new QLabel(QLatin1String(weekdays[c]), this);
        head->setAlignment(Qt::AlignCenter);
        days->addWidget(head, 0, c);
    }
    for (int i = 1; i <= 42; ++i) {
        auto* b = new QPushButton(this);
        b->setObjectName(QStringLiteral("cmdD%1").arg(i));
        b->setFixedSize(44, 36);
        b->setAutoDefault(false);
        b->setFocusPolicy(Qt::TabFocus);
        b->setEnabled(false);
        setDayFont(b, kDayFontSize, false);
        connect(b, &QPushButton::clicked, this, [this, i] { dayClicked(i); });
        days->addWidget(b, 1 + (i - 1) / 7, (i - 1) % 7);
        cmdD[std::size_t(i)] = b;
    }

    cmdReturnDate = new QPushButton(QStringLiteral("OK"), this);
    cmdReturnDate->setObjectName(QStringLiteral("cmdReturnDate"));
    cmdReturnDate->setDefault(true);
    connect(cmdReturnDate, &QPushButton::clicked, this, &frmExportCalendar::returnDate);
    cmdCancel = new QPushButton(QStringLiteral("Cancel"), this);
    cmdCancel->setObjectName(QStringLiteral("cmdCancel"));
    cmdCancel->setAutoDefault(false);
    connect(cmdCancel, &QPushButton::clicked, this, &frmExportCalendar::cancel);
    for (QPushButton* b : {cmdReturnDate, cmdCancel})
        b->setMinimumWidth(90);

    auto* right = new QVBoxLayout;
    right->addWidget(lblCalendarInfo);
    right->addSpacing(4);
    right->addLayout(days);
    right->addStretch(1);

    auto* body = new QHBoxLayout;
    body->setSpacing(16);
    body->addWidget(Calendar1, 0, Qt::AlignTop);
    body->addLayout(right);

    auto* buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(cmdReturnDate);
    buttons->addWidget(cmdCancel);

    auto* top = new QVBoxLayout(this);
    top->setContentsMargins(12, 12, 12, 12);
    top->setSpacing(12);
    top->addLayout(body);
    top->addLayout(buttons);
    top->setSizeConstraint(QLayout::SetFixedSize);
}

// The control's day, month and year are those of its selected date; setting one keeps the others
// and, like the old control, a day past the month's end becomes its last day.
int frmExportCalendar::calendarDay() const { return Calendar1->selectedDate().day(); }
int frmExportCalendar::calendarMonth() const { return Calendar1->selectedDate().month(); }
int frmExportCalendar::calendarYear() const { return Calendar1->selectedDate().year(); }

void frmExportCalendar::setCalendarDay(int day)
{
    const QDate d = Calendar1->selectedDate();
    Calendar1->setSelectedDate(QDate(d.year(), d.month(), qBound(1, day, d.daysInMonth())));
}

void frmExportCalendar::setCalendarMonth(int month)
{
    const QDate d = Calendar1->selectedDate();
    const QDate first(d.year(), month, 1);
    Calendar1->setSelectedDate(QDate(d.year(), month, qMin(d.day(), first.daysInMonth())));
}

void frmExportCalendar::setCalendarYear(int year)
{
    const QDate d = Calendar1->selectedDate();
    const QDate first(year, d.month(), 1);
    Calendar1->setSelectedDate(QDate(year, d.month(), qMin(d.day(), first.daysInMonth())));
}

void frmExportCalendar::load()
{
    DaysLoaded = false;
    SelectedDate.clear();
    SelectedDay = SelectedMonth = SelectedYear = 0;

    if (CalendarResult.size() == 10) {
        int month = 0, day = 0, year = 0;
        // A part that is no number, or a month or year the control cannot show, means no date.
        const bool valid = numberPart(CalendarResult.mid(0, 2), month) && month >= 1 &&
                           month <= 12 && numberPart(CalendarResult.mid(3, 2), day) &&
                           numberPart(CalendarResult.mid(6, 4), year) &&
                           QDate(year, 1, 1) >= Calendar1->minimumDate() &&
                           QDate(year, 12, 31) <= Calendar1->maximumDate();
        if (valid) {
            setCalendarMonth(month);
            setCalendarDay(day);
            setCalendarYear(year);
        } else {
            CalendarResult = kNoDate;
        }
    } else {
        CalendarResult = kNoDate;
    }
    if (CalendarResult == kNoDate) {
        const QDate today = QDate::currentDate();
        setCalendarMonth(today.month());
        setCalendarDay(today.day());
        setCalendarYear(today.year());
    }

    // The size is known only once the style has polished the controls.
    ensurePolished();
    layout()->activate();
    adjustSize();
    ui::centreWindow(this);

    const QString firstDay = LoadDays();
    CalendarExportID = m_context.exportId;
    const QString fieldDate =
        CalendarResult == kNoDate ? ToMonthStartFieldDate(firstDay) : ToFieldDate(CalendarResult);
    runDaysWithData(fieldDate, true);
    lblCalendarInfo->setText(calendarInfoText(calendarYear(), calendarMonth()));
}

QString frmExportCalendar::LoadDays()
{
    DaysLoaded = false;
    setCalendarDay(1);
    const MonthLayout layout = monthLayout(calendarYear(), calendarMonth());
    setCalendarDay(31);   // the month's last day
    for (int i = 1; i <= 42; ++i) {
        const int day = layout.day[std::size_t(i)];
        cmdD[std::size_t(i)]->setText(day ? QString::number(day) : QString());
    }
    m_shownYear = calendarYear();
    m_shownMonth = calendarMonth();
    DaysLoaded = true;
    return layout.firstDayText();
}

void frmExportCalendar::ClearDays()
{
    for (int i = 1; i <= 42; ++i) {
        cmdD[std::size_t(i)]->setEnabled(false);
        cmdD[std::size_t(i)]->setText(QString());
    }
}

void frmExportCalendar::DisableDays()
{
    for (int i = 1; i <= 42; ++i)
        cmdD[std::size_t(i)]->setEnabled(false);
}

void frmExportCalendar::enableDays(const std::vector<int>& days)
{
    for (int day : days)
        for (int i = 1; i <= 42; ++i) {
            QPushButton* b = cmdD[std::size_t(i)];
            if (!b->text().isEmpty() && b->text().toInt() == day)
                b->setEnabled(true);
        }
}

void frmExportCalendar::runDaysWithData(const QString& fieldDate, bool allSubjects)
{
    const QString& table = m_context.table;
    if (table == QLatin1String("JobTimeRecords") || table == QLatin1String("Inventory")) {
        const DaysWithData found = daysWithData(m_db, table, CalendarExportID, fieldDate);
        if (!found.ok)
            return;   // the buttons stay as they were
        if (found.days.empty())
            DisableDays();
        else
            enableDays(std::vector<int>(found.days.begin(), found.days.end()));
        return;
    }
    if (table != QLatin1String("GPSCoordinates")) {
        DisableDays();
        return;
    }

    m_feedback.busy(true);
    auto runFor = [&](qint32 subject) {
        m_context.currentTrackSubject = subject;
        const DaysWithData found =
            gpsDaysWithData(m_db, m_feedback, subject, m_context.settingsFile, fieldDate);
        enableDays(std::vector<int>(found.days.begin(), found.days.end()));
    };
    const auto& subjects = m_context.trackSubjects;
    if (allSubjects && subjects.size() > 1) {
        for (std::size_t i = 1; i < subjects.size(); ++i)
            runFor(subjects[i]);
    } else {
        runFor(m_context.currentTrackSubject);
    }
    m_feedback.busy(false);
}

void frmExportCalendar::monthChanged(int year, int month)
{
    if (!DaysLoaded)
        return;
    // The old control moved its date with the page and kept the day where the month allowed.
    const QDate d = Calendar1->selectedDate();
    const QDate first(year, month, 1);
    Calendar1->setSelectedDate(QDate(year, month, qMin(d.day(), first.daysInMonth())));

    // A new month (also across a year's end) runs the GPS step for every picked subject; a new
    // year alone runs it for the current subject only.
    if (month != m_shownMonth)
        refreshDays(true, true);
    else if (year != m_shownYear)
        refreshDays(false, false);
}

void frmExportCalendar::refreshDays(bool allSubjects, bool hourglassFirst)
{
    ClearDays();
    const QString fieldDate = ToFieldDate(LoadDays());
    lblCalendarInfo->setText(calendarInfoText(calendarYear(), calendarMonth()));
    if (hourglassFirst)
        m_feedback.busy(true);
    runDaysWithData(fieldDate, allSubjects);
    if (hourglassFirst)
        m_feedback.busy(false);
}

void frmExportCalendar::dayClicked(int index)
{
    for (int i = 1; i <= 42; ++i) {
        QPushButton* b = cmdD[std::size_t(i)];
        setDayFont(b, kDayFontSize, false);
        b->setPalette(QPalette());
    }
    QPushButton* picked = cmdD[std::size_t(index)];
    SelectedDay = picked->text().toInt();
    SelectedMonth = calendarMonth();
    SelectedYear = calendarYear();
    SelectedDate = pad2(SelectedMonth) + QLatin1Char('/') + pad2(SelectedDay) + QLatin1Char('/') +
                   QString::number(SelectedYear);
    QPalette red = picked->palette();
    red.setColor(QPalette::ButtonText, QColor(255, 0, 0));
    picked->setPalette(red);
    setDayFont(picked, kPickedFontSize, true);
}

void frmExportCalendar::returnDate()
{
    if (m_context.purpose == kStart)
        CalendarResult = SelectedDate;
    else
        CancelFlag = false;
    if (m_context.calendarHidden)
        *m_context.calendarHidden = false;
    accept();
}

void frmExportCalendar::cancel()
{
    SelectedDate.clear();
    CancelFlag = true;
    reject();
}

void frmExportCalendar::done(int result)
{
    // Every way of closing comes through here: the buttons, Escape and the window's close box.
    if (!m_closed && !(m_context.calendarHidden && *m_context.calendarHidden)) {
        m_closed = true;
        if (m_context.purpose == kStart) {
            if (CancelFlag) {
                if (!SelectedDate.isEmpty())
                    CalendarResult = SelectedDate;
            } else if (DaysLoaded) {
                CalendarResult = SelectedDate;
            }
        } else if (CancelFlag || DaysLoaded) {
            CalendarResult = SelectedDate;
        }
    }
    QDialog::done(result);
}

} // namespace tp
