#include "import/frmImport.h"

#include "foundation/feedback.h"
#include "foundation/settings.h"
#include "ui/window_support.h"

#include <QCoreApplication>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QStatusBar>
#include <QTableWidget>
#include <QTimer>
#include <QVBoxLayout>
#include <exception>

namespace tp {

frmImport::frmImport(cDAO& db, QWidget* parent, Feedback* prompts, ui::FileDialog* dialogs)
    : ui::SessionWindow(parent, prompts, QStringLiteral("frmImport"), QStringLiteral("Import")), m_session(db, *m_feedback)
{
    buildControls();
    start(StatBar, dialogs, [this] { load(); });
}

frmImport::~frmImport() = default;

void frmImport::buildControls()
{
    lblSelection = ui::named(new QLabel(kImportPrompt, this), "lblSelection");
    QFont bold = lblSelection->font();
    bold.setBold(true);
    lblSelection->setFont(bold);
    lblSelection->setWordWrap(true);   // the small first window is narrower than the prompt

    lstTables = ui::named(new QListWidget(this), "lstTables");
    lstTables->setMinimumSize(120, 60);
    lstTables->installEventFilter(this);
    lstTables->viewport()->installEventFilter(this);
    lblSelection->setBuddy(lstTables);

    m_dataPanel = new QWidget(this);
    auto* panel = new QVBoxLayout(m_dataPanel);
    panel->setContentsMargins(0, 0, 0, 0);
    panel->setSpacing(6);

    fpFields = ui::named(new QTableWidget(m_dataPanel), "fpFields");
    fpFields->setSelectionMode(QAbstractItemView::SingleSelection);
    fpFields->setEditTriggers(QAbstractItemView::NoEditTriggers);
    fpFields->verticalHeader()->setDefaultSectionSize(fpFields->fontMetrics().height() + 6);
    fpFields->horizontalHeader()->setHighlightSections(false);
    fpFields->horizontalHeader()->setSectionsClickable(true);
    fpFields->horizontalHeader()->setStretchLastSection(true);
    fpFields->setMinimumSize(200, 100);
    m_fields = new ui::GridAdapter(fpFields);
    m_fields->setMaxCols(5);
    const char* titles[] = {"Chck Field", "Field Name", "Data Type", "Max Length", "Format"};
    // The last column stretches over the rest; its own width is only its least.
    const int widths[] = {8, 18, 8, 9, 24};
    for (int c = 1; c <= 5; ++c) {
        m_fields->setText(c, 0, QString::fromLatin1(titles[c - 1]));
        m_fields->setColWidth(c, widths[c - 1]);
    }

    lblFileFormat = ui::named(new QLabel(m_dataPanel), "lblFileFormat");
    lblFileFormat->setFont(bold);
    txtFormat = ui::named(new QPlainTextEdit(m_dataPanel), "txtFormat");
    txtFormat->setReadOnly(true);
    txtFormat->setMinimumHeight(txtFormat->fontMetrics().height() * 3);
    lblFileFormat->setBuddy(txtFormat);

    lblPath = ui::named(new QLabel(QStringLiteral("File Path:"), m_dataPanel), "lblPath");
    lblFileName = ui::named(new QLabel(QStringLiteral("File Name:"), m_dataPanel), "lblFileName");
    txtPath = ui::named(new QLineEdit(m_dataPanel), "txtPath");
    txtName = ui::named(new QLineEdit(m_dataPanel), "txtName");
    for (QLineEdit* box : {txtPath, txtName}) {
        box->setReadOnly(true);
        box->setFont(bold);
        box->installEventFilter(this);
    }
    lblPath->setBuddy(txtPath);
    lblFileName->setBuddy(txtName);
    auto* file = new QHBoxLayout;
    file->addWidget(lblPath);
    file->addWidget(txtPath, 3);
    file->addWidget(lblFileName);
    file->addWidget(txtName, 2);

    cmdGetFile = ui::commandButton("cmdGetFile", QStringLiteral("&Browse Files for Import"), m_dataPanel);
    cmdGetDifferentTable = ui::commandButton("cmdGetDifferentTable", QStringLiteral("Change &Data Type"), m_dataPanel);
    cmdOk = ui::commandButton("cmdOk", QStringLiteral("&OK"), m_dataPanel);
    cmdImportToDB = ui::commandButton("cmdImportToDB", QStringLiteral("&Import to Database"), m_dataPanel);
    auto* choose = new QHBoxLayout;
    choose->addWidget(cmdGetFile);
    choose->addWidget(cmdGetDifferentTable);
    choose->addStretch(1);
    choose->addWidget(cmdOk);
    choose->addWidget(cmdImportToDB);

    panel->addWidget(fpFields, 3);
    panel->addWidget(lblFileFormat);
    panel->addWidget(txtFormat, 2);
    panel->addLayout(file);
    panel->addLayout(choose);

    cmdCancel = ui::commandButton("cmdCancel", kCaptionClose, this);
    auto* bottom = new QHBoxLayout;
    bottom->addStretch(1);
    bottom->addWidget(cmdCancel);

    StatBar = ui::named(new QStatusBar(this), "StatBar");
    StatBar->setSizeGripEnabled(true);

    auto* root = new QVBoxLayout(this);
    root->setContentsMargins(8, 8, 8, 0);
    root->setSpacing(6);
    root->addWidget(lblSelection);
    root->addWidget(lstTables, 1);
    root->addWidget(m_dataPanel, 1);
    root->addLayout(bottom);
    root->addWidget(StatBar);

    QWidget::setTabOrder(lstTables, fpFields);
    QWidget::setTabOrder(fpFields, txtFormat);
    QWidget::setTabOrder(txtFormat, txtPath);
    QWidget::setTabOrder(txtPath, txtName);
    QWidget::setTabOrder(txtName, cmdGetFile);
    QWidget::setTabOrder(cmdGetFile, cmdGetDifferentTable);
    QWidget::setTabOrder(cmdGetDifferentTable, cmdOk);
    QWidget::setTabOrder(cmdOk, cmdImportToDB);
    QWidget::setTabOrder(cmdImportToDB, cmdCancel);

    connect(m_fields, &ui::GridAdapter::buttonClicked, this, &frmImport::TickClicked);
    connect(fpFields->horizontalHeader(), &QHeaderView::sectionClicked, this, [this](int section) {
        if (section == 0)
            ToggleAllTicks();
    });
    connect(cmdGetFile, &QPushButton::clicked, this, &frmImport::GetFile);
    connect(cmdGetDifferentTable, &QPushButton::clicked, this, &frmImport::ChangeDataType);
    connect(cmdOk, &QPushButton::clicked, this, &frmImport::ScanFile);
    connect(cmdImportToDB, &QPushButton::clicked, this, &frmImport::ImportToDatabase);
    connect(cmdCancel, &QPushButton::clicked, this, &frmImport::CancelClose);
}

void frmImport::load()
{
    m_feedback->busy(true);
    resetImportControls();
    if (!SetGlobalsFromINIFile()) {
        // The settings file lost its database keys while the program ran: the message has
        // been shown, and the program ends as it would at start-up.
        m_feedback->busy(false);
        QCoreApplication::exit(1);
        return;
    }
    m_gridFilled = true;
    showChoiceState();
    ui::placeWindow(this, 3000, 3000, 3775, 3630);
    buildDataSetList();
    m_feedback->busy(false);
}

void frmImport::showChoiceState()
{
    lblSelection->setText(kImportPrompt);
    lstTables->show();
    m_dataPanel->hide();
    lblFileFormat->hide();
    fpFields->hide();
    cmdOk->hide();
    txtFormat->hide();
    hideFileControls(true);
    showFileChoiceControls(true);
    cmdOk->setEnabled(false);   // until a file is chosen
    cmdImportToDB->setEnabled(false);
    // The hidden panel must stop holding the window wide before the window is placed.
    layout()->activate();
}

void frmImport::resetImportControls()
{
    m_session.resetImportState();
    showFormat();
    cmdImportToDB->setEnabled(false);
    m_status->setText(QString());
}

QString frmImport::formatText() const
{
    return m_session.formatText();
}

void frmImport::showFormat()
{
    txtFormat->setPlainText(ui::QtFeedback::displayText(m_session.formatText()));
}

bool frmImport::eventFilter(QObject* watched, QEvent* event)
{
    if (dataSetListEvent(lstTables, watched, event, [this] { SelectDataSet(); }))
        return true;
    if ((watched == txtPath || watched == txtName) && event->type() == QEvent::MouseButtonRelease) {
        GetFile();
        return true;
    }
    return QDialog::eventFilter(watched, event);
}

void frmImport::showEvent(QShowEvent* event)
{
    QDialog::showEvent(event);
    // Nothing to offer: the window goes as soon as it comes up.
    if (m_offeredCount == 0)
        QTimer::singleShot(0, this, [this] { reject(); });
}

} // namespace tp
