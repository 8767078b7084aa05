// The Import window's file stage: choosing the file, the scan, the import and Cancel/Close.
#include "import/frmImport.h"

#include <QDir>
#include <QFileInfo>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>

namespace tp {

void frmImport::showFileChoiceControls(bool choosing)
{
    cmdGetFile->setVisible(choosing);
    cmdGetDifferentTable->setVisible(choosing);
}

void frmImport::hideFileControls(bool clearTexts)
{
    for (QWidget* w : {static_cast<QWidget*>(lblPath), static_cast<QWidget*>(lblFileName),
                       static_cast<QWidget*>(txtPath), static_cast<QWidget*>(txtName)})
        w->hide();
    if (clearTexts) {
        txtPath->clear();
        txtName->clear();
    }
}

void frmImport::GetFile()
{
    const QString chosen = m_dialogs->openFileName(QStringLiteral("Open"), kImportFileFilter);
    if (chosen.isEmpty())
        return;
    showFileChoiceControls(false);
    for (QWidget* w : {static_cast<QWidget*>(lblPath), static_cast<QWidget*>(lblFileName),
                       static_cast<QWidget*>(txtPath), static_cast<QWidget*>(txtName)})
        w->show();
    const QFileInfo file(chosen);
    txtPath->setText(QDir::toNativeSeparators(file.absolutePath() + QLatin1Char('/')));
    txtName->setText(file.fileName());
    cmdOk->setEnabled(true);
    cmdImportToDB->setEnabled(false);
    m_status->setText(QString());
}

void frmImport::ScanFile()
{
    m_feedback->busy(true);
    const QString fileName = QDir::fromNativeSeparators(txtPath->text()) + txtName->text();
    const ImportScanOutcome outcome = m_session.scanFile(fileName);
    showFormat();
    showTicks();
    switch (outcome.kind) {
    case ImportScanOutcome::Accepted:
        cmdImportToDB->setEnabled(true);
        m_status->setText(kScanReady);
        cmdOk->setEnabled(false);
        cmdCancel->setText(kCaptionCancel);
        break;
    case ImportScanOutcome::Fault:
        showFileChoiceControls(true);
        hideFileControls(false);
        break;
    case ImportScanOutcome::MissingFile:
    case ImportScanOutcome::Refused:
        break;
    }
    m_feedback->busy(false);
}

void frmImport::ImportToDatabase()
{
    m_feedback->busy(true);
    const ImportWriteOutcome outcome = m_session.importToDatabase(txtName->text());
    m_status->setText(outcome.status);
    showFormat();
    cmdImportToDB->setEnabled(false);
    if (!outcome.succeeded())
        cmdOk->setEnabled(false);
    showFileChoiceControls(true);
    cmdCancel->setText(kCaptionClose);
    hideFileControls(outcome.succeeded());
    m_feedback->busy(false);
}

void frmImport::CancelClose()
{
    txtFormat->clear();
    if (cmdCancel->text() != kCaptionCancel) {
        reject();
        return;
    }
    // The scanned file is abandoned; the data set and its ticks stay.
    m_session.abandonScan();
    showFormat();
    cmdImportToDB->setEnabled(false);
    showFileChoiceControls(true);
    hideFileControls(true);
    cmdCancel->setText(kCaptionClose);
}

} // namespace tp
