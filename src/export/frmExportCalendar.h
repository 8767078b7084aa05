#pragma once
// The date calendar of the Export window: a month calendar beside 42 day buttons, of which only
// the days holding waiting records are enabled. The picked day goes back as "MM/DD/YYYY".
#include <QDialog>
#include <QString>
#include <array>
#include <vector>

class QCalendarWidget;
class QLabel;
class QPushButton;

namespace tp {

class cDAO;
class Feedback;

// What the Export window hands the calendar.
struct CalendarContext {
    QString purpose;                    // "Export-Start" or "Export-Stop"
    QString table;                      // the chosen data set's key
    qint32 exportId = 0;
    std::vector<qint32> trackSubjects;  // GPS subjects; position 0 unused when several
    qint32 currentTrackSubject = 0;
    QString settingsFile;               // "KRV.ini" or another settings file
    // The Export window's flag: while it is true, closing leaves the result alone. Optional.
    bool* calendarHidden = nullptr;
};

class frmExportCalendar : public QDialog {
    Q_OBJECT
public:
    // calendarResult: in, the date to show ("MM/DD/YYYY"); out, the picked date.
    // cancelFlag: set by the caller before showing; set by Cancel, cleared by OK for a stop date.
    frmExportCalendar(cDAO& db, Feedback& feedback, const CalendarContext& context,
                      QString& calendarResult, bool& cancelFlag, QWidget* parent = nullptr);
    ~frmExportCalendar() override;

    // The GPS step leaves the last subject it worked on here.
    qint32 currentTrackSubject() const { return m_context.currentTrackSubject; }
    QString selectedDate() const { return SelectedDate; }
    bool daysLoaded() const { return DaysLoaded; }

    // Fills the day buttons for the month shown; returns its first day as "M/1/YYYY".
    QString LoadDays();
    void ClearDays();
    void DisableDays();

protected:
    void done(int result) override;

private:
    void buildControls();
    void load();
    void monthChanged(int year, int month);
    void refreshDays(bool allSubjects, bool hourglassFirst);
    void runDaysWithData(const QString& fieldDate, bool allSubjects);
    void enableDays(const std::vector<int>& days);
    void dayClicked(int index);
    void returnDate();
    void cancel();
    // The calendar's day, clamped to the month as the old control did.
    void setCalendarDay(int day);
    void setCalendarMonth(int month);
    void setCalendarYear(int year);
    int calendarDay() const;
    int calendarMonth() const;
    int calendarYear() const;

    cDAO& m_db;
    Feedback& m_feedback;
    CalendarContext m_context;
    QString& CalendarResult;
    bool& CancelFlag;

    QCalendarWidget* Calendar1 = nullptr;
    QLabel* lblCalendarInfo = nullptr;
    std::array<QPushButton*, 43> cmdD{};   // 1 to 42
    QPushButton* cmdReturnDate = nullptr;
    QPushButton* cmdCancel = nullptr;

    bool DaysLoaded = false;
    int SelectedDay = 0, SelectedMonth = 0, SelectedYear = 0;
    QString SelectedDate;
    qint32 CalendarExportID = 0;
    int m_shownYear = 0, m_shownMonth = 0;
    bool m_closed = false;
};

} // namespace tp
