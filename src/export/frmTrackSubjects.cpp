#include "export/frmTrackSubjects.h"

#include "foundation/feedback.h"
#include "ui/window_support.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

namespace tp {

frmTrackSubjects::frmTrackSubjects(cDAO& db, Feedback& feedback, const QString& settingsFile,
                                   QWidget* parent)
    : QDialog(parent), m_feedback(feedback)
{
    setObjectName(QStringLiteral("frmTrackSubjects"));
    setWindowTitle(QStringLiteral("Import/Export"));
    setWindowIcon(ui::programIcon());
    setModal(true);
    buildControls();
    m_feedback.busy(true);
    m_subjects.load(db, feedback, settingsFile);
    m_feedback.busy(false);
    for (const TrackSubjectEntry& e : m_subjects.entries()) {
        auto* item = new QListWidgetItem(e.text, lstTrackingSubject);
        item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsUserCheckable);
        item->setCheckState(Qt::Unchecked);
        item->setData(Qt::UserRole, e.trackId);
    }
    ui::centreWindow(this);
}

frmTrackSubjects::~frmTrackSubjects() = default;

void frmTrackSubjects::buildControls()
{
    Label1 = new QLabel(QStringLiteral("Make a selection from the listing"), this);
    Label1->setObjectName(QStringLiteral("Label1"));
    lstTrackingSubject = new QListWidget(this);
    lstTrackingSubject->setObjectName(QStringLiteral("lstTrackingSubject"));
    cmdOk = new QPushButton(QStringLiteral("OK"), this);
    cmdOk->setObjectName(QStringLiteral("cmdOk"));
    cmdOk->setDefault(true);
    cmdCancel = new QPushButton(QStringLiteral("Cancel"), this);
    cmdCancel->setObjectName(QStringLiteral("cmdCancel"));

    auto* buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(cmdOk);
    buttons->addWidget(cmdCancel);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(Label1);
    layout->addWidget(lstTrackingSubject, 1);   // the list takes whatever room the window gets
    layout->addLayout(buttons);
    resize(ui::twipsToPixels(4800), ui::twipsToPixels(4200));

    connect(lstTrackingSubject, &QListWidget::itemChanged, this, &frmTrackSubjects::itemChanged);
    connect(cmdOk, &QPushButton::clicked, this, &frmTrackSubjects::okClicked);
    connect(cmdCancel, &QPushButton::clicked, this, &QDialog::reject);
}

void frmTrackSubjects::itemChanged(QListWidgetItem* item)
{
    if (m_checking || item->checkState() != Qt::Checked)
        return;
    m_checking = true;
    for (int i = 0; i < lstTrackingSubject->count(); ++i)
        if (lstTrackingSubject->item(i) != item)
            lstTrackingSubject->item(i)->setCheckState(Qt::Unchecked);
    lstTrackingSubject->setCurrentItem(item);
    m_checking = false;
}

void frmTrackSubjects::okClicked()
{
    int checked = -1;
    for (int i = 0; i < lstTrackingSubject->count() && checked < 0; ++i)
        if (lstTrackingSubject->item(i)->checkState() == Qt::Checked)
            checked = i;
    m_choice = m_subjects.accept(checked, m_feedback);
    if (m_choice)
        accept();
}

} // namespace tp
