// The Export window's output stage: the date and time formats, the text-file preview, the
// file itself, and the Cancel/Close button.
#include "export/frmExport.h"

#include "ui/window_support.h"

#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTableWidget>

namespace tp {

namespace {
const QString kExportFileFilter = QStringLiteral("Text files (*.txt) | *.txt");
const QString kPreviewFile = QStringLiteral("Preview File");
const QString kCreateFile = QStringLiteral("Create File");
const QString kCancel = QStringLiteral("Cancel");
const QString kClose = QStringLiteral("Close");
} // namespace

void frmExport::connectOutputHandlers()
{
    connect(cmdFormatDate, &QPushButton::clicked, this, &frmExport::FormatDateClicked);
    connect(cmdFormatTime, &QPushButton::clicked, this, &frmExport::FormatTimeClicked);
    connect(cmdPreviewExport, &QPushButton::clicked, this, &frmExport::previewExportClicked);
    connect(cmdCancelClose, &QPushButton::clicked, this, &frmExport::cancelCloseClicked);
}

void frmExport::FormatDateClicked()
{
    if (cmdFormatDate->text() != QLatin1String("Undo Date")) {
        m_session.FormatGridDates();
        cmdFormatDate->setText(QStringLiteral("Undo Date"));
    } else {
        m_session.UndoGridDates();
        cmdFormatDate->setText(QStringLiteral("Format Date"));
    }
    showRecordGrid();
}

void frmExport::FormatTimeClicked()
{
    if (cmdFormatTime->text() != QLatin1String("Undo Time")) {
        m_session.FormatGridTimes();
        cmdFormatTime->setText(QStringLiteral("Undo Time"));
    } else {
        m_session.UndoGridTimes();
        cmdFormatTime->setText(QStringLiteral("Format Time"));
    }
    showRecordGrid();
}

void frmExport::previewExportClicked()
{
    if (cmdPreviewExport->text() == kPreviewFile)
        PreviewExport();
    else if (cmdPreviewExport->text() == kCreateFile)
        CreateExportFile();
}

void frmExport::cancelCloseClicked()
{
    if (cmdCancelClose->text() == kCancel)
        CancelExport();
    else if (cmdCancelClose->text() == kClose)
        CloseExportWindow();
}

void frmExport::PreviewExport()
{
    for (QPushButton* b : {cmdPreviewExport, cmdAll, cmdDate, cmdOK, cmdFormatDate, cmdFormatTime})
        b->setEnabled(false);
    lblFilePreview->show();
    previewTextFile->show();
    fpRecords->hide();

    m_preview->clearCells();
    m_preview->setMaxRows(m_session.previewGridRows());
    const bool completed = m_session.previewExport([this](int row, const QString& text) {
        if (row > m_preview->maxRows())
            m_preview->setMaxRows(row);
        m_preview->setText(1, row, text);
    });

    if (completed) {
        cmdPreviewExport->setText(kCreateFile);
        cmdPreviewExport->setEnabled(true);
        cmdCancelClose->setText(kCancel);
        // The previewed layout is what the file gets: no ticks or header edits from here on.
        m_fields->setAllLocked(true);
        m_fields->setAllBackColor(ui::buttonFaceColor(this));
    } else {
        cmdCancelClose->setText(kClose);
    }
    cmdCancelClose->setEnabled(true);
    m_feedback->busy(false);
}

void frmExport::CreateExportFile()
{
    cmdPreviewExport->setEnabled(false);
    m_feedback->status(QStringLiteral("Saving File ..."));
    const QString fileName = m_dialogs->saveFileName(QStringLiteral("Export File"), kExportFileFilter);
    const ExportJobResult result = m_session.saveExportFile(fileName);
    if (result.outcome == ExportJobResult::ReadOnlyRefused) {
        // The user may choose another file.
        cmdPreviewExport->setEnabled(true);
        return;
    }

    const QColor face = ui::buttonFaceColor(this);
    for (int r = 1; r <= m_preview->maxRows(); ++r) {
        m_preview->setLocked(1, r, true);
        m_preview->setBackColor(1, r, face);
    }
    switch (result.outcome) {
    case ExportJobResult::NoFileName:
    case ExportJobResult::Cancelled:
    case ExportJobResult::Declined:
        // Abandoned: back to the state before the preview.
        if (cmdCancelClose->text() == kCancel)
            CancelExport();
        m_feedback->status(QStringLiteral("Process cancel"));
        break;
    case ExportJobResult::Completed:
        cmdPreviewExport->setEnabled(false);
        cmdCancelClose->setText(kClose);
        break;
    case ExportJobResult::ReadOnlyRefused:
    case ExportJobResult::Failed:
    case ExportJobResult::NothingLeft:
        cmdCancelClose->setText(kClose);
        break;
    }
    cmdCancelClose->setEnabled(true);
    m_session.CancelRequested = false;
    m_feedback->busy(false);
}

void frmExport::CancelExport()
{
    m_session.cancelExport();
    applyCancelledControls();
}

void frmExport::applyCancelledControls()
{
    for (int r = 1; r <= m_fields->maxRows(); ++r) {
        m_fields->setLocked(1, r, false);
        m_fields->setLocked(5, r, false);
    }
    m_fields->setAllBackColor(Qt::white);
    m_preview->setAllBackColor(Qt::white);

    if (m_session.isTimeOrInventory())
        cmdDate->setEnabled(true);
    if (m_session.AvailableCount <= m_session.AllRecordsLimit)
        cmdAll->setEnabled(true);
    fpFields->setEnabled(true);
    cmdStart->setEnabled(false);
    cmdStop->setEnabled(false);
    txtStart->clear();
    txtStop->clear();
    setDateBoxesPicking(false);
    fpRecords->show();
    previewTextFile->hide();
    lblFilePreview->hide();
    cmdOK->setEnabled(false);
    cmdPreviewExport->setText(kPreviewFile);
    cmdCancelClose->setText(kClose);
    cmdFormatDate->setEnabled(false);
    cmdFormatTime->setEnabled(false);
    cmdFormatDate->setText(QStringLiteral("Format Date"));
    cmdFormatTime->setText(QStringLiteral("Format Time"));
    m_feedback->busy(false);
    ClearRecordGrid();
}

void frmExport::CloseExportWindow()
{
    m_session.closeExportWindow();
    m_currentFieldColumn = m_currentFieldRow = 0;
    accept();
}

} // namespace tp
