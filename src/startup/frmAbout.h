#pragma once
// The About box: title, version, description, the maker's lines, and System Info.
#include <QDialog>

class QLabel;
class QPushButton;

namespace tp {

inline const QString kSysInfoUnavailable =
    QStringLiteral("System Information Is Unavailable At This Time");

// Texts of the box; lines are separated by single carriage returns.
QString AboutTitleText();
QString AboutVersionText();
QString AboutDescriptionText();

class frmAbout : public QDialog {
    Q_OBJECT
public:
    explicit frmAbout(QWidget* parent = nullptr);

public slots:
    // Finds and starts the operating system's system-information tool. This platform has
    // none, so the user is told so.
    void StartSysInfo();
};

} // namespace tp
