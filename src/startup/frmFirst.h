#pragma once
// The main window: Import and Export behind their permission gates, File/Exit and About.
#include "startup/frmAbout.h"
#include "startup/startup.h"

#include <QMainWindow>
#include <QPointer>
#include <functional>

class QAction;
class QDialog;
class QLabel;
class QPushButton;

namespace tp {

class Feedback;
class cDAO;
namespace ui { class FileDialog; }

class frmFirst : public QMainWindow {
    Q_OBJECT
public:
    explicit frmFirst(QWidget* parent = nullptr);
    ~frmFirst() override;

    // The load handler: command line, settings, database, then the buttons' states.
    // outcome.fatal: the message has been shown and the program must end.
    StartupOutcome load(const QString& commandLine);

    // How the modal Import and Export windows are shown. Tests put their own function here
    // to look at the window instead of running its event loop.
    std::function<void(QDialog&)> showModal;
    // How the program ends (Exit, closing the window).
    std::function<void()> endProgram;
    // Answers for the Import and Export windows' prompts and file names; null: boxes and real
    // dialogs.
    Feedback* prompts = nullptr;
    ui::FileDialog* fileDialog = nullptr;

    frmAbout* aboutBox() const { return m_about; }

    // Screenshot mode: the main window, the About box, the Export window with "Time Data"
    // chosen and three fields ticked, and the Import window, saved as PNG files in folder.
    // Returns the files written.
    QStringList saveScreenshots(const QString& folder);

public slots:
    void importClicked();
    void exportClicked();
    void aboutClicked();
    void exitClicked();

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    bool gate(FunctionMode mode);
    // The shared database once the gate has passed; null (after any message) otherwise.
    cDAO* gatedDatabase(FunctionMode mode);

    QPushButton* m_cmdImport;
    QPushButton* m_cmdTime;
    QLabel* m_label1;
    QAction* m_mnuExit;
    QAction* m_mnuAbout;
    QPointer<frmAbout> m_about;
};

} // namespace tp
