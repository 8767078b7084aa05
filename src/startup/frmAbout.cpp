#include "startup/frmAbout.h"

#include "foundation/feedback.h"
#include "ui/qt_feedback.h"
#include "ui/window_support.h"
#include "version.h"

#include <QFrame>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace tp {

QString AboutTitleText()
{
    return QStringLiteral("Tallyport Export \r"
                          "Tallyport Systems\r"
                          "1200 Harbor Road, Suite 4\r"
                          "Portland, OR 97201\r"
                          "Telephone (503) 555-0142");
}

QString AboutVersionText()
{
    return QStringLiteral("Version ") + QString::number(TALLYPORT_VERSION_MAJOR) +
           QLatin1Char('.') + QString::number(TALLYPORT_VERSION_MINOR) + QLatin1Char('.') +
           QString::number(TALLYPORT_VERSION_PATCH);
}

QString AboutDescriptionText()
{
    return QStringLiteral("The Tallyport Export/Import System is designed to allow\r"
                          "gathered Velotrek Data to be formatted and\r"
                          "exported/imported to/from a comma delimited text file.");
}

namespace {

QLabel* label(const QString& name, const QString& text, QWidget* parent)
{
    // Stored texts break lines with carriage returns; the label needs line feeds.
    auto* l = new QLabel(ui::QtFeedback::displayText(text), parent);
    l->setObjectName(name);
    l->setTextFormat(Qt::PlainText);
    return l;
}

} // namespace

frmAbout::frmAbout(QWidget* parent) : QDialog(parent)
{
    setObjectName(QStringLiteral("frmAbout"));
    setWindowTitle(QStringLiteral("About Tallyport Export/Import"));
    setWindowIcon(ui::programIcon());

    auto* picIcon = new QLabel(this);
    picIcon->setObjectName(QStringLiteral("picIcon"));
    picIcon->setPixmap(ui::programIcon().pixmap(48, 48));
    picIcon->setAlignment(Qt::AlignTop | Qt::AlignHCenter);

    QLabel* lblTitle = label(QStringLiteral("lblTitle"), AboutTitleText(), this);
    QFont bold = lblTitle->font();
    bold.setBold(true);
    lblTitle->setFont(bold);
    QLabel* lblVersion = label(QStringLiteral("lblVersion"), AboutVersionText(), this);
    QLabel* lblDescription = label(QStringLiteral("lblDescription"), AboutDescriptionText(), this);
    QLabel* lblDisclaimer = label(
        QStringLiteral("lblDisclaimer"),
        QStringLiteral("Warning: This program is protected by copyright law. Copying or passing "
                       "it on, in whole or in part, without the maker's written consent is not "
                       "permitted."),
        this);
    lblDisclaimer->setWordWrap(true);
    QFont small = lblDisclaimer->font();
    small.setPointSizeF(small.pointSizeF() * 0.9);
    lblDisclaimer->setFont(small);
    QLabel* label1 = label(QStringLiteral("Label1"), QStringLiteral("Tallyport Systems"), this);

    auto* line1 = new QFrame(this);
    line1->setObjectName(QStringLiteral("Line1"));
    line1->setFrameShape(QFrame::HLine);
    line1->setFrameShadow(QFrame::Sunken);

    auto* cmdOK = new QPushButton(QStringLiteral("OK"), this);
    cmdOK->setObjectName(QStringLiteral("cmdOK"));
    cmdOK->setDefault(true);
    auto* cmdSysInfo = new QPushButton(QStringLiteral("&System Info..."), this);
    cmdSysInfo->setObjectName(QStringLiteral("cmdSysInfo"));

    auto* texts = new QVBoxLayout;
    texts->setSpacing(8);
    texts->addWidget(lblTitle);
    texts->addWidget(lblVersion);
    texts->addWidget(lblDescription);

    auto* top = new QHBoxLayout;
    top->setSpacing(16);
    top->addWidget(picIcon, 0, Qt::AlignTop);
    top->addLayout(texts, 1);

    auto* buttons = new QVBoxLayout;
    buttons->addWidget(cmdOK);
    buttons->addWidget(cmdSysInfo);
    buttons->addStretch(1);

    auto* bottom = new QHBoxLayout;
    auto* bottomText = new QVBoxLayout;
    bottomText->addWidget(label1);
    bottomText->addWidget(lblDisclaimer);
    bottom->addLayout(bottomText, 1);
    bottom->addLayout(buttons);

    auto* root = new QVBoxLayout(this);
    root->setContentsMargins(16, 16, 16, 16);
    root->setSpacing(12);
    root->addLayout(top);
    root->addWidget(line1);
    root->addLayout(bottom);

    setTabOrder(cmdOK, cmdSysInfo);
    connect(cmdOK, &QPushButton::clicked, this, &QDialog::accept);
    connect(cmdSysInfo, &QPushButton::clicked, this, &frmAbout::StartSysInfo);
    setFixedWidth(460);
}

void frmAbout::StartSysInfo()
{
    ShowMessage(0, kSysInfoUnavailable);
}

} // namespace tp
