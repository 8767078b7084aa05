// Record selection (all records or a date range), the scan into the record grid and the
// output date and time formats of one export session.
#include "export/export_assemblers.h"
#include "export/export_session.h"
#include "export/export_values.h"

#include "foundation/conversions.h"
#include "foundation/feedback.h"
#include "foundation/globals.h"

#include <QDate>

namespace tp {

namespace {

const QString kRecordsFound = QStringLiteral("  Record(s) found");
const QString kDateField = QStringLiteral("Date");
const QString kTimeField = QStringLiteral("Time");

// "MM/DD/YYYY" as the calendar hands it out.
bool isStandardDate(const QString& text)
{
    return text.size() == 10 && QDate::fromString(text, QStringLiteral("MM/dd/yyyy")).isValid();
}

} // namespace

ExportAssembler* ExportSession::assembler()
{
    if (!m_assembler && !msTableSelected.isEmpty())
        m_assembler = MakeExportAssembler(msTableSelected, m_db, m_feedback);
    return m_assembler.get();
}

ExportRequest ExportSession::request() const
{
    ExportRequest r;
    r.table = msTableSelected;
    r.exportId = mlExportID;
    r.byDate = isDated();
    if (r.byDate) {
        r.start = ConvertStandard2FieldDate(m_startDate);
        r.stop = ConvertStandard2FieldDate(m_stopDate);
    }
    for (const OutputField& f : outputFields())
        r.fields << f.name;
    r.formatDate = m_formatDates;
    r.formatTime = m_formatTimes;
    r.trackSubjects = TrackSubjects;
    r.currentTrackSubject = CurrentTrackSubject;
    if (ExportRecordCount > 0)
        r.scannedCount = ExportRecordCount;
    r.settingsFile = globals().SettingsFileName;
    return r;
}

bool ExportSession::tickField(int row, bool ticked)
{
    if (!toggleField(row, ticked))
        return false;
    resetSelection();
    clearRecordGridHeaders();
    clearRecordGrid();
    clearRowBuffer();
    applyFieldSelection();
    return true;
}

void ExportSession::resetSelection()
{
    m_startDate.clear();
    m_stopDate.clear();
    StartDateNumber = StopDateNumber = 0;
    m_formatDates = m_formatTimes = false;
    SavedDateNumbers.clear();
    SavedTimeNumbers.clear();
}

bool ExportSession::selectAllRecords()
{
    CancelRequested = false;
    if (AvailabilityResult == 0) {
        m_feedback.status(QString::number(ExportRecordCount) + kRecordsFound);
        return false;
    }
    CurrentTrackSubject = 0;
    ExportRecordCount = 0;
    m_startDate.clear();
    m_stopDate.clear();
    StartDateNumber = StopDateNumber = 0;
    SelectionMode = kSelectionAll;
    clearRecordGrid();
    return true;
}

bool ExportSession::selectRecordsByDate()
{
    // A Cancel pressed before this selection must not end its scan.
    CancelRequested = false;
    if (AvailabilityResult == 0) {
        m_feedback.status(QString::number(ExportRecordCount) + kRecordsFound);
        return false;
    }
    SelectionMode = kSelectionDate;
    // A new date selection starts from stored numbers; the grid is emptied below.
    m_formatDates = m_formatTimes = false;
    if (isTimeOrInventory() || msTableSelected == kTableGps)
        clearRecordGrid();
    return true;
}

DateRange ExportSession::setDate(QString& box, qint32& number, const QString& date)
{
    const QString text = date.trimmed();
    if (text.isEmpty()) {
        box.clear();
        number = 0;
        return DateRange::Incomplete;
    }
    if (!isStandardDate(text)) {
        m_feedback.message(0, kInvalidTimeEntry, kBoxTitle);
        return DateRange::Invalid;
    }
    box = text;
    number = ConvertStandard2FieldDate(text).toInt();
    const DateRange range = dateRange();
    if (range == DateRange::Invalid)
        m_feedback.message(0, kInvalidTimeEntry, kBoxTitle);
    return range;
}

DateRange ExportSession::setStartDate(const QString& date)
{
    return setDate(m_startDate, StartDateNumber, date);
}

DateRange ExportSession::setStopDate(const QString& date)
{
    return setDate(m_stopDate, StopDateNumber, date);
}

DateRange ExportSession::dateRange() const
{
    if (!isDated())
        return DateRange::Incomplete;
    return StopDateNumber >= StartDateNumber ? DateRange::Valid : DateRange::Invalid;
}

bool ExportSession::tickedField(const QString& name) const
{
    for (const FieldRow& f : m_fields)
        if (f.ticked && f.name == name)
            return true;
    return false;
}

void ExportSession::fillRecordGrid(const PreviewResult& preview)
{
    m_grid.setRowCount(preview.gridRows);
    for (int i = 1; i <= preview.gridRows && i <= int(preview.rows.size()); ++i) {
        const QStringList& cells = preview.rows[std::size_t(i - 1)];
        m_grid.setText(1, i, QString::number(i));
        for (int c = 0; c < cells.size(); ++c)
            m_grid.setText(c + 2, i, cells.at(c));
    }
}

ScanOutcome ExportSession::scanDatabase()
{
    ScanOutcome out;
    ExportAssembler* source = assembler();
    const bool dated = SelectionMode == kSelectionDate;
    if (source && msTableSelected == kTableGps)
        return scanGpsDatabase();
    const bool locations = msTableSelected == kTableLocations;
    if (!source || (!isTimeOrInventory() && !locations))
        return out;
    if (dated && dateRange() != DateRange::Valid) {
        m_feedback.message(0, kInvalidTimeEntry, kBoxTitle);
        return out;
    }

    m_feedback.busy(true);
    if (!dated)
        clearRecordGrid();
    ExportRequest req = request();
    req.byDate = dated;
    const qint64 count = source->scanCount(req, CancelRequested);
    if (count > 0)
        ExportRecordCount = qint32(count);
    // Locations: a declined question ends as Cancel does; an empty or unreadable table shows
    // nothing and leaves the selection as it is.
    const bool nothing = dated      ? count < 1
                         : locations ? CancelRequested
                                     : (CancelRequested || count <= 0);
    if (nothing) {
        // Nothing to show: back to the state before the selection, as Cancel leaves it.
        cancelExport();
        out.selectionReset = true;
    } else if (count > 0) {
        fillRecordGrid(source->preview(req, count));
    }

    return finishScan(out);
}

ScanOutcome ExportSession::finishScan(ScanOutcome out)
{
    if (CancelRequested) {
        clearRecordGrid();
        m_feedback.status(kCancelStatus);
        CancelRequested = false;
        out.kind = ScanOutcome::Cancelled;
    } else if (ExportRecordCount < 1) {
        m_feedback.status(QString::number(ExportRecordCount) + QStringLiteral("  Record(s)"));
        out.kind = ScanOutcome::Empty;
    } else {
        m_grid.setLocked(true);
        out.dateFormat = tickedField(kDateField);
        out.timeFormat = tickedField(kTimeField);
        m_feedback.status(ExportRecordCount >= 20
                              ? QStringLiteral("First 20 records out of ") +
                                    QString::number(ExportRecordCount) + QStringLiteral(" found")
                              : QString::number(ExportRecordCount) + kRecordsFound);
        out.kind = ScanOutcome::Found;
    }
    m_feedback.busy(false);
    return out;
}

void ExportSession::formatColumn(const QString& name, std::vector<qint64>& saved, bool on)
{
    CatalogueReady = false;
    const int rows = m_grid.rowCount();
    if (on)
        saved.assign(std::size_t(rows) + 1, 0);
    for (int r = 1; r <= rows; ++r) {
        for (int c = 2; c <= OutputColumnCount; ++c) {
            if (m_grid.header(c) != name)
                continue;
            const QString cell = m_grid.text(c, r);
            if (on) {
                // Times are read as the getter reads them, so the grid shows what the file gets.
                if (name == kDateField) {
                    saved[std::size_t(r)] = storedWholeNumber(cell);
                    m_grid.setText(c, r, ConvertField2StandardDate(cell));
                } else {
                    saved[std::size_t(r)] = storedTimeNumber(cell);
                    m_grid.setText(c, r, formatStoredTimeText(cell));
                }
            } else {
                // A row the saved numbers do not cover cannot be restored: stop there.
                if (r >= int(saved.size())) {
                    CatalogueReady = true;
                    return;
                }
                m_grid.setText(c, r, QString::number(saved[std::size_t(r)]));
            }
        }
    }
    CatalogueReady = true;
}

void ExportSession::FormatGridDates()
{
    formatColumn(kDateField, SavedDateNumbers, true);
    m_formatDates = true;
}

void ExportSession::UndoGridDates()
{
    formatColumn(kDateField, SavedDateNumbers, false);
    m_formatDates = false;
}

void ExportSession::FormatGridTimes()
{
    formatColumn(kTimeField, SavedTimeNumbers, true);
    m_formatTimes = true;
}

void ExportSession::UndoGridTimes()
{
    formatColumn(kTimeField, SavedTimeNumbers, false);
    m_formatTimes = false;
}

void ExportSession::setDateFormat(bool on)
{
    if (on && !m_formatDates)
        FormatGridDates();
    else if (!on && m_formatDates)
        UndoGridDates();
}

void ExportSession::setTimeFormat(bool on)
{
    if (on && !m_formatTimes)
        FormatGridTimes();
    else if (!on && m_formatTimes)
        UndoGridTimes();
}

} // namespace tp
