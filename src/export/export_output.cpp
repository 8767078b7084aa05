// The text-file preview, the save flow, Cancel and Close of one export session.
#include "export/export_session.h"

#include "export/export_values.h"
#include "foundation/feedback.h"

namespace tp {

QString ExportSession::previewHeaderLine() const
{
    QStringList headers;
    for (const OutputField& f : outputFields())
        headers << f.header;
    return previewHeaderText(headers);
}

QString ExportSession::previewRecordLine(int gridRow) const
{
    QStringList cells, types;
    for (int c = 2; c <= OutputColumnCount; ++c) {
        cells << m_grid.text(c, gridRow);
        const int row = fieldRow(m_grid.header(c));
        types << (row > 0 ? field(row).type : QString());
    }
    return previewRecordText(cells, types);
}

int ExportSession::previewGridRows() const
{
    return qMin<qint32>(qMax<qint32>(ExportRecordCount, 0), 20) + 1;
}

bool ExportSession::previewExport(const std::function<void(int, const QString&)>& show)
{
    show(1, previewHeaderLine());
    bool cancelled = false;
    const int rows = m_grid.rowCount();
    for (int r = 1; r <= rows && r <= m_grid.rowCount(); ++r) {
        show(r + 1, previewRecordLine(r));
        m_feedback.status(QStringLiteral("Preview ") + QString::number(r) +
                          QStringLiteral(" Record(s) out Of ") + QString::number(ExportRecordCount));
        m_feedback.progress(r, rows);
        m_feedback.yield();
        if (CancelRequested) {
            m_feedback.status(kCancelStatus);
            cancelled = true;
            break;
        }
    }
    m_feedback.progress(0, 0);
    CancelRequested = false;
    return !cancelled;
}

ExportJobResult ExportSession::saveExportFile(const QString& fileName, FileEncoding encoding)
{
    ExportAssembler* source = assembler();
    if (!source) {
        ExportJobResult refused;
        refused.status = QStringLiteral("No export for this data set") + kExportUnsuccessful;
        m_feedback.status(refused.status);
        return refused;
    }
    ExportJob job;
    job.request = request();
    for (const OutputField& f : outputFields())
        job.columns.push_back({f.name, f.type, f.header});
    job.fileName = fileName;
    job.encoding = encoding;
    job.markAfterSuccess = isTimeOrInventory();
    job.database = &m_db;

    m_feedback.busy(true);
    ExportRecordCount = 0;
    ExportJobResult result = runExport(job, *source, m_feedback, CancelRequested);
    if (result.outcome == ExportJobResult::Completed)
        ExportRecordCount = qint32(result.records);
    m_feedback.busy(false);
    return result;
}

void ExportSession::cancelExport()
{
    CancelRequested = true;
    resetSelection();
    m_feedback.status(QString());
    m_feedback.busy(false);
    clearRecordGrid();
}

void ExportSession::closeExportWindow()
{
    reset();
    CurrentTrackSubject = 0;
    TrackSubjects.clear();
    resetSelection();
    m_assembler.reset();
}

} // namespace tp
