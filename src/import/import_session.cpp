#include "import/import_session.h"

#include <QFileInfo>

#include "foundation/conversions.h"
#include "foundation/dao.h"
#include "foundation/feedback.h"
#include "foundation/globals.h"
#include "import/import_writer.h"
#include "import/line_reader.h"
#include "import/record_scanner.h"
#include "import/value_checks.h"

namespace tp {

ImportSession::ImportSession(cDAO& db, Feedback& feedback) : m_db(db), m_feedback(feedback) {}

QStringList ImportSession::offeredDataSets() const
{
    return OfferedImportDataSets();
}

bool ImportSession::selectDataSet(const QString& listText)
{
    const std::optional<ImportDataType> type = ImportDataTypeFor(listText);
    return type && selectDataSet(*type);
}

bool ImportSession::selectDataSet(ImportDataType type)
{
    m_feedback.busy(true);
    m_type = type;
    const bool needsBranch = type != ImportDataType::Pinpoints;
    m_rows = ImportSpecRows(type, needsBranch && BranchExists(m_db));
    m_toggleMark = false;
    resetImportState();
    rebuildSelection();
    m_feedback.busy(false);
    return true;
}

const ImportDataSetInfo* ImportSession::dataSet() const
{
    return m_type ? &ImportDataSet(*m_type) : nullptr;
}

void ImportSession::clearDataSet()
{
    m_type.reset();
    m_rows.clear();
    m_selection = ImportSelection();
    resetImportState();
}

int ImportSession::rowOf(const QString& name) const
{
    for (const FieldSpec& spec : m_rows)
        if (spec.name.compare(name, Qt::CaseInsensitive) == 0)
            return spec.row;
    return 0;
}

bool ImportSession::setTicked(int row, bool ticked)
{
    if (row < 1 || row > rowCount())
        return false;
    FieldSpec& spec = m_rows[size_t(row - 1)];
    spec.ticked = ticked || spec.required;
    resetImportState();
    rebuildSelection();
    if (!ticked)
        m_toggleMark = false;
    return true;
}

void ImportSession::toggleAllTicks()
{
    m_toggleMark = !m_toggleMark;
    for (FieldSpec& spec : m_rows)
        spec.ticked = spec.required || m_toggleMark;
}

void ImportSession::rebuildSelection()
{
    m_selection = ImportSelection::fromRows(m_rows);
    m_formatText = m_selection.formatLine();
}

void ImportSession::resetImportState()
{
    m_formatText.clear();
    m_feedback.status(QString());
    if (m_type)
        m_list.reset(*m_type);
    else
        m_list = ImportRecordList();
}

void ImportSession::abandonScan()
{
    m_formatText.clear();
    rebuildSelection();
    if (m_type)
        m_list.reset(*m_type);
}

ImportScanOutcome ImportSession::scanFile(const QString& fileName)
{
    ImportScanOutcome outcome;
    if (!m_type)
        return outcome;
    m_feedback.busy(true);
    m_formatText.clear();
    rebuildSelection();
    const QString selectionLine = m_formatText;

    if (fileName.isEmpty() || fileName.endsWith(QLatin1Char(':')) || fileName.endsWith(QLatin1Char('\\')) ||
        fileName.endsWith(QLatin1Char('/')) || !IsExistingFile(fileName)) {
        outcome.kind = ImportScanOutcome::MissingFile;
        outcome.report = kFileDoesNotExist + fileName;
        m_feedback.message(0, outcome.report, kBoxTitle);
        m_feedback.busy(false);
        return outcome;
    }

    ScanState s;
    s.gridRowCount = qint16(rowCount());
    m_list.reset(*m_type);
    ImportLookups lookups;
    lookups.load(m_db);
    const bool krv = IsKrvSettings();
    const std::vector<int> tickedFields = TickedFields(*m_type, m_rows);
    int shownPercent = -1;

    DelimitedLineReader reader;
    reader.setFileName(fileName);
    m_list.reserveText(QFileInfo(fileName).size());
    reader.setSeparator(',');
    const auto stopWith = [&](qint16 code) {
        s.result = code;
        reader.stop();
    };
    const bool read = reader.start([&](DelimitedLineReader& line) {
        const int fields = line.fieldCount();
        s.recordNumber = qint32(std::min<qint64>(line.lineNumber(), INT_MAX));
        if (line.lineNumber() == 0) {
            const qint16 r = CheckHeadingLine(fields, [&line](int i) { return line.fieldText(i); }, m_rows, m_list, s);
            if (r != ScanHeadingOnly)
                return stopWith(r);
            s.result = ScanHeadingOnly;
        } else {
            const bool blank = line.blankLine();
            if (blank) {
                s.foundValue = kEmptyRow;
                return stopWith(ScanTooFewFields);
            }
            if (s.headingCount != fields)
                return stopWith(s.headingCount > fields ? ScanTooFewFields : ScanTooManyFields);
            const qint32 record = s.recordNumber;
            m_list.grow(record);
            for (int i = 1; i <= fields; ++i) {
                const qint16 r = ScanFieldValue(m_list, record, line.fieldText(i), lookups, krv, s);
                if (r != ScanOk)
                    return stopWith(r);
            }
            const qint16 done = CompleteRecord(m_list, tickedFields);
            if (done == ScanTooFewFields || done == ScanTooManyFields) {
                m_feedback.message(0, kFieldNameNotFound, kBoxTitle);
                return stopWith(done);
            }
            m_list.lastRecord = record;
            s.result = ScanOk;
        }
        const int percent = line.percentDone();
        if (percent != shownPercent) {
            shownPercent = percent;
            m_feedback.status(QString::number(percent) + QStringLiteral(" % Completed"));
        }
    });
    if (!read && s.result == ScanOk) {
        // Gone or unreadable between the check and the reading.
        outcome.kind = ImportScanOutcome::MissingFile;
        outcome.report = kFileDoesNotExist + fileName;
        m_feedback.message(0, outcome.report, kBoxTitle);
        m_list.reset(*m_type);
        m_feedback.busy(false);
        return outcome;
    }

    if (s.result != ScanOk) {
        outcome.kind = ImportScanOutcome::Fault;
        outcome.result = s.result;
        outcome.report = ScanReportText(s);
        m_feedback.message(0, outcome.report, kBoxTitle);
        s.clearAfterReport();
        m_list.lastRecord = 0;
        m_feedback.busy(false);
        return outcome;
    }
    m_feedback.status(kScanGettingData);
    m_formatText = ConfirmationText(m_list, selectionLine);
    m_feedback.status(kScanReady);
    outcome.kind = ImportScanOutcome::Accepted;
    m_feedback.busy(false);
    return outcome;
}

ImportWriteOutcome ImportSession::importToDatabase(const QString& fileTitle)
{
    ImportWriteOutcome outcome;
    m_feedback.busy(true);
    if (m_type && m_list.lastRecord > 0 && globals().DatabaseOpen) {
        const ImportWriteResult r = WriteImportedRecords(m_db, m_feedback, m_list);
        outcome.result = r.result;
        outcome.written = r.written;
    }
    if (outcome.result == 0)
        outcome.status = QStringLiteral("Importing File ''") + fileTitle + QStringLiteral("'' Completed Successfully");
    else if (outcome.result == 7)
        outcome.status = kImportCancelDuplicate;
    else
        outcome.status = kImportErrorStatus;
    m_formatText.clear();
    m_feedback.status(outcome.status);
    m_feedback.busy(false);
    return outcome;
}

} // namespace tp
