#include "export/frmExport.h"

#include "foundation/feedback.h"
#include "foundation/log.h"
#include "foundation/settings.h"
#include "ui/window_support.h"

#include <QCoreApplication>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QStatusBar>
#include <QTableWidget>
#include <QVBoxLayout>
#include <exception>

namespace tp {

namespace {

using ui::named;

QTableWidget* grid(const char* name, QWidget* parent)
{
    auto* t = named(new QTableWidget(parent), name);
    t->setSelectionMode(QAbstractItemView::SingleSelection);
    t->setSelectionBehavior(QAbstractItemView::SelectItems);
    t->setEditTriggers(QAbstractItemView::NoEditTriggers);
    t->verticalHeader()->setDefaultSectionSize(t->fontMetrics().height() + 6);
    t->verticalHeader()->setMinimumWidth(28);
    t->horizontalHeader()->setHighlightSections(false);
    t->setMinimumSize(120, 80);
    return t;
}

} // namespace

frmExport::frmExport(cDAO& db, QWidget* parent, Feedback* prompts, ui::FileDialog* dialogs)
    : ui::SessionWindow(parent, prompts, QStringLiteral("frmExport"), QStringLiteral("Export")), m_session(db, *m_feedback)
{
    buildControls();
    start(StatBar, dialogs, [this] { load(); });
}

frmExport::~frmExport() = default;

void frmExport::buildControls()
{
    lblSelection = named(new QLabel(QStringLiteral("Select the data to export:"), this), "lblSelection");
    QFont bold = lblSelection->font();
    bold.setBold(true);
    lblSelection->setFont(bold);

    lstTables = named(new QListWidget(this), "lstTables");
    lstTables->setMinimumSize(120, 80);
    lstTables->installEventFilter(this);
    lstTables->viewport()->installEventFilter(this);
    lblSelection->setBuddy(lstTables);

    fpFields = grid("fpFields", this);
    // Typing or a double click edits a header text, as in a spreadsheet.
    fpFields->setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::AnyKeyPressed);
    m_fields = new ui::GridAdapter(fpFields);
    m_fields->setMaxCols(5);
    const char* titles[] = {"Chck Field", "Field Order", "Field Name", "Data Type", "Text File Header"};
    const int widths[] = {8, 9, 17, 8, 15};
    for (int c = 1; c <= 5; ++c) {
        m_fields->setText(c, 0, QString::fromLatin1(titles[c - 1]));
        m_fields->setColWidth(c, widths[c - 1]);
    }
    fpFields->horizontalHeader()->setStretchLastSection(true);
    fpFields->hide();

    // Selection controls, under the field grid.
    m_selectionPanel = new QWidget(this);
    auto* panel = new QVBoxLayout(m_selectionPanel);
    panel->setContentsMargins(0, 0, 0, 0);
    panel->setSpacing(6);
    cmdAll = ui::commandButton("cmdAll", kSelectAllRecords, m_selectionPanel);
    cmdDate = ui::commandButton("cmdDate", kSelectRecordsByDate, m_selectionPanel);
    cmdOK = ui::commandButton("cmdOK", QStringLiteral("Scan Database"), m_selectionPanel);
    lblStart = named(new QLabel(QStringLiteral("Start Date:"), m_selectionPanel), "lblStart");
    lblStop = named(new QLabel(QStringLiteral("Stop Date:"), m_selectionPanel), "lblStop");
    txtStart = named(new QLineEdit(m_selectionPanel), "txtStart");
    txtStop = named(new QLineEdit(m_selectionPanel), "txtStop");
    for (QLineEdit* box : {txtStart, txtStop}) {
        box->setReadOnly(true);
        box->setPlaceholderText(QStringLiteral("MM/DD/YYYY"));
        box->setFixedWidth(box->fontMetrics().horizontalAdvance(QStringLiteral("00/00/00000")) + 14);
    }
    cmdStart = ui::commandButton("cmdStart", QStringLiteral("..."), m_selectionPanel);
    cmdStop = ui::commandButton("cmdStop", QStringLiteral("..."), m_selectionPanel);
    cmdStart->setToolTip(QStringLiteral("Pick the start date"));
    cmdStop->setToolTip(QStringLiteral("Pick the stop date"));
    for (QPushButton* b : {cmdStart, cmdStop})
        b->setFixedWidth(b->fontMetrics().horizontalAdvance(QStringLiteral("...")) + 20);
    lblStart->setBuddy(cmdStart);
    lblStop->setBuddy(cmdStop);
    auto* choose = new QHBoxLayout;
    choose->addWidget(cmdAll);
    choose->addWidget(cmdDate);
    choose->addStretch(1);
    choose->addWidget(cmdOK);
    auto* dates = new QHBoxLayout;
    dates->setSpacing(4);
    dates->addWidget(lblStart);
    dates->addWidget(txtStart);
    dates->addWidget(cmdStart);
    dates->addSpacing(18);
    dates->addWidget(lblStop);
    dates->addWidget(txtStop);
    dates->addWidget(cmdStop);
    dates->addStretch(1);
    panel->addLayout(choose);
    panel->addLayout(dates);
    m_selectionPanel->hide();

    fpRecords = grid("fpRecords", this);
    m_records = new ui::GridAdapter(fpRecords);
    fpRecords->hide();
    lblFilePreview = named(new QLabel(QStringLiteral("Text File Preview"), this), "lblFilePreview");
    lblFilePreview->hide();
    previewTextFile = grid("previewTextFile", this);
    m_preview = new ui::GridAdapter(previewTextFile);
    m_preview->setMaxCols(1);
    previewTextFile->horizontalHeader()->setStretchLastSection(true);
    previewTextFile->horizontalHeader()->hide();   // one column of whole lines: no title
    previewTextFile->hide();

    m_actionBar = new QWidget(this);
    auto* actions = new QHBoxLayout(m_actionBar);
    actions->setContentsMargins(0, 0, 0, 0);
    cmdFormatDate = ui::commandButton("cmdFormatDate", QStringLiteral("Format Date"), m_actionBar);
    cmdFormatTime = ui::commandButton("cmdFormatTime", QStringLiteral("Format Time"), m_actionBar);
    cmdPreviewExport = ui::commandButton("cmdPreviewExport", QStringLiteral("Preview File"), m_actionBar);
    cmdCancelClose = ui::commandButton("cmdCancelClose", QStringLiteral("Close"), m_actionBar);
    actions->addWidget(cmdFormatDate);
    actions->addWidget(cmdFormatTime);
    actions->addStretch(1);
    actions->addWidget(buildShowTracks(m_actionBar));
    actions->addWidget(cmdPreviewExport);
    actions->addWidget(cmdCancelClose);
    m_actionBar->hide();

    StatBar = named(new QStatusBar(this), "StatBar");
    StatBar->setSizeGripEnabled(false);

    auto* root = new QVBoxLayout(this);
    root->setContentsMargins(8, 8, 8, 0);
    root->setSpacing(6);
    root->addWidget(lblSelection);
    root->addWidget(lstTables, 3);
    root->addWidget(fpFields, 3);
    root->addWidget(m_selectionPanel);
    root->addWidget(fpRecords, 3);
    root->addWidget(lblFilePreview);
    root->addWidget(previewTextFile, 3);
    root->addWidget(m_actionBar);
    root->addWidget(StatBar);

    for (QPushButton* b : {cmdAll, cmdDate, cmdStart, cmdStop, cmdOK, cmdFormatDate, cmdFormatTime,
                           cmdPreviewExport})
        b->setEnabled(false);
    QWidget::setTabOrder(lstTables, fpFields);
    QWidget::setTabOrder(fpFields, cmdAll);
    QWidget::setTabOrder(cmdAll, cmdDate);
    QWidget::setTabOrder(cmdDate, cmdStart);
    QWidget::setTabOrder(cmdStart, cmdStop);
    QWidget::setTabOrder(cmdStop, cmdOK);
    QWidget::setTabOrder(cmdOK, fpRecords);
    QWidget::setTabOrder(fpRecords, previewTextFile);
    QWidget::setTabOrder(previewTextFile, cmdFormatDate);
    QWidget::setTabOrder(cmdFormatDate, cmdFormatTime);
    QWidget::setTabOrder(cmdFormatTime, cmdPreviewExport);
    QWidget::setTabOrder(cmdPreviewExport, cmdCancelClose);

    connect(m_fields, &ui::GridAdapter::buttonClicked, this, &frmExport::ToggleField);
    connect(m_fields, &ui::GridAdapter::cellClicked, this,
            [this](int column, int) { m_lastFieldColumn = column; });
    connect(m_fields, &ui::GridAdapter::textEdited, this, [this](int column, int row, const QString& text) {
        if (column == 5)
            m_session.setHeaderText(row, text);
    });
    // Typing reaches the grid only after a click into the "Text File Header" column.
    m_fields->setKeyFilter([this](const QKeyEvent&) { return m_lastFieldColumn == 5; });
    connectSelectionHandlers();
    connectOutputHandlers();
}

void frmExport::load()
{
    m_session.AllRecordsLimit = 200;
    m_feedback->busy(true);
    if (!SetGlobalsFromINIFile()) {
        // The settings file lost its database keys while the program ran: the message has
        // been shown, and the program ends as it would at start-up.
        m_feedback->busy(false);
        QCoreApplication::exit(1);
        return;
    }
    cmdAll->setText(kSelectAllRecords);
    buildDataSetList();
    ui::placeWindow(this, 3000, 3000, 3165, 3630);
    m_feedback->busy(false);
}

bool frmExport::eventFilter(QObject* watched, QEvent* event)
{
    if (dateBoxEvent(watched, event))
        return true;
    if (dataSetListEvent(lstTables, watched, event, [this] { SelectDataSet(); }))
        return true;
    return QDialog::eventFilter(watched, event);
}

} // namespace tp
