#include "startup/frmFirst.h"

#include "export/frmExport.h"
#include "import/frmImport.h"
#include "foundation/feedback.h"
#include "foundation/globals.h"
#include "startup/frmAbout.h"
#include "ui/window_support.h"

#include <QApplication>
#include <QCloseEvent>
#include <QFrame>
#include <QHBoxLayout>
#include <QLabel>
#include <QMenuBar>
#include <QPushButton>
#include <QVBoxLayout>

namespace tp {

namespace {

QPushButton* functionButton(const QString& objectName, const QString& caption, const QIcon& icon,
                            QWidget* parent)
{
    auto* button = new QPushButton(icon, caption, parent);
    button->setObjectName(objectName);
    button->setIconSize(QSize(32, 32));
    button->setMinimumSize(132, 52);
    QFont f = button->font();
    f.setPointSizeF(f.pointSizeF() * 1.15);
    button->setFont(f);
    return button;
}

} // namespace

frmFirst::frmFirst(QWidget* parent) : QMainWindow(parent)
{
    setObjectName(QStringLiteral("frmFirst"));
    setWindowTitle(QStringLiteral("Import/Export "));
    setWindowIcon(ui::programIcon());

    auto* mnuFile = menuBar()->addMenu(QStringLiteral("&File"));
    mnuFile->setObjectName(QStringLiteral("mnuFile"));
    m_mnuExit = mnuFile->addAction(QStringLiteral("&Exit"));
    m_mnuExit->setObjectName(QStringLiteral("mnuExit"));
    m_mnuAbout = menuBar()->addAction(QStringLiteral("&About"));
    m_mnuAbout->setObjectName(QStringLiteral("mnuAbout"));

    auto* central = new QWidget(this);
    auto* layout = new QVBoxLayout(central);
    layout->setContentsMargins(18, 14, 18, 18);
    layout->setSpacing(10);

    m_label1 = new QLabel(QStringLiteral("Tallyport Systems"), central);
    m_label1->setObjectName(QStringLiteral("Label1"));
    QFont title = m_label1->font();
    title.setBold(true);
    title.setPointSizeF(title.pointSizeF() * 1.3);
    m_label1->setFont(title);
    m_label1->setAlignment(Qt::AlignCenter);
    layout->addWidget(m_label1);

    auto* line1 = new QFrame(central);
    line1->setObjectName(QStringLiteral("Line1"));
    line1->setFrameShape(QFrame::HLine);
    line1->setFrameShadow(QFrame::Sunken);
    layout->addWidget(line1);

    auto* buttons = new QHBoxLayout;
    buttons->setSpacing(14);
    m_cmdImport = functionButton(QStringLiteral("cmdImport"), QStringLiteral("Import"),
                                 ui::importIcon(), central);
    m_cmdTime = functionButton(QStringLiteral("cmdTime"), QStringLiteral("Export"),
                               ui::exportIcon(), central);
    buttons->addWidget(m_cmdImport);
    buttons->addWidget(m_cmdTime);
    layout->addLayout(buttons);
    setCentralWidget(central);
    setTabOrder(m_cmdImport, m_cmdTime);

    showModal = [](QDialog& window) { window.exec(); };
    endProgram = [] { QCoreApplication::exit(0); };

    connect(m_cmdImport, &QPushButton::clicked, this, &frmFirst::importClicked);
    connect(m_cmdTime, &QPushButton::clicked, this, &frmFirst::exportClicked);
    connect(m_mnuAbout, &QAction::triggered, this, &frmFirst::aboutClicked);
    connect(m_mnuExit, &QAction::triggered, this, &frmFirst::exitClicked);

    setFixedSize(sizeHint().expandedTo(QSize(330, 0)));
}

frmFirst::~frmFirst() = default;

StartupOutcome frmFirst::load(const QString& commandLine)
{
    m_cmdTime->setEnabled(true);
    m_cmdImport->setEnabled(true);
    const StartupOutcome outcome = RunStartup(commandLine);
    if (outcome.fatal)
        return outcome;
    m_cmdImport->setEnabled(outcome.importEnabled);
    m_cmdTime->setEnabled(outcome.exportEnabled);
    return outcome;
}

bool frmFirst::gate(FunctionMode mode)
{
    const AccessOutcome outcome = CheckFunctionAccess(mode);
    if (!outcome.message.isEmpty())
        ShowMessage(0, outcome.message);
    if (outcome.disableButton)
        (mode == FunctionMode::Import ? m_cmdImport : m_cmdTime)->setEnabled(false);
    return outcome.allowed;
}

cDAO* frmFirst::gatedDatabase(FunctionMode mode)
{
    if (!gate(mode))
        return nullptr;
    cDAO* db = SharedDatabase();
    if (!db)
        ShowMessage(1, kCannotOpenDatabase);
    return db;
}

void frmFirst::importClicked()
{
    if (cDAO* db = gatedDatabase(FunctionMode::Import)) {
        frmImport window(*db, this, prompts, fileDialog);
        showModal(window);
    }
}

void frmFirst::exportClicked()
{
    if (cDAO* db = gatedDatabase(FunctionMode::Export)) {
        frmExport window(*db, this, prompts, fileDialog);
        showModal(window);
    }
}

void frmFirst::aboutClicked()
{
    if (!m_about) {
        m_about = new frmAbout(this);
        m_about->setAttribute(Qt::WA_DeleteOnClose);
    }
    m_about->show();
    m_about->raise();
    m_about->activateWindow();
}

void frmFirst::exitClicked()
{
    endProgram();
}

void frmFirst::closeEvent(QCloseEvent* event)
{
    globals().DatabaseOpen = false;
    event->accept();
    endProgram();
}

} // namespace tp
