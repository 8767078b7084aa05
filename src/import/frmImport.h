#pragma once
// The Import window. This file and frmImport.cpp build the window and its states;
// frmImport_fields.cpp holds the data-set choice, the specification grid and its ticks;
// frmImport_file.cpp the file choice, the scan, the import and the Cancel/Close button.
// The session does the work; the window mirrors it into its widgets.
#include "import/import_session.h"
#include "ui/grid_adapter.h"
#include "ui/session_window.h"

#include <memory>

class QLabel;
class QLineEdit;
class QListWidget;
class QPlainTextEdit;
class QPushButton;
class QStatusBar;
class QTableWidget;

namespace tp {

class cDAO;
class Feedback;

inline const QString kImportPrompt = QStringLiteral("Select Data to Import to the Database");
inline const QString kImportFileFilter = QStringLiteral("Text Files (*.txt)|*.txt|All Files|*.*");
inline const QString kCaptionCancel = QStringLiteral("Cancel");
inline const QString kCaptionClose = QStringLiteral("&Close");

class frmImport : public ui::SessionWindow {
    Q_OBJECT
public:
    // prompts: receives the window's messages and questions (null: the process-wide sink).
    // dialogs: asks for the file name (null: the platform's dialog).
    frmImport(cDAO& db, QWidget* parent = nullptr, Feedback* prompts = nullptr,
              ui::FileDialog* dialogs = nullptr);
    ~frmImport() override;

    ImportSession& session() { return m_session; }
    ui::GridAdapter& fields() { return *m_fields; }
    ui::StatusBarAdapter& statusBar() { return *m_status; }
    // The number of data sets the list offers (0: the window closes when activated).
    int offeredCount() const { return m_offeredCount; }
    // txtFormat as the user reads it, lines separated by CR LF.
    QString formatText() const;

    // Chooses the highlighted data set, as Enter or a click on the list does.
    void SelectDataSet();
    // Highlights the list entry with this text and chooses it; false when the list lacks it.
    bool chooseDataSet(const QString& listText);
    // Ticks or unticks a grid row as a click on its box does (locked rows do not move).
    void clickFieldBox(int row, bool ticked);
    // The click on the tick column's heading.
    void ToggleAllTicks();

    // The buttons (frmImport_file.cpp).
    void GetFile();
    void ScanFile();
    void ImportToDatabase();
    void CancelClose();
    void ChangeDataType();

    // Pictures for the demo: the list, the grid with a file chosen, a fault message and the
    // confirmation sample, of a map-location import from files made in a scratch folder.
    static QStringList saveScreenshots(cDAO& db, QWidget* parent, const QString& folder);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void showEvent(QShowEvent* event) override;

private:
    void buildControls();
    void load();
    void buildDataSetList();
    void showSpecRows();
    void showTicks();
    void TickClicked(int column, int row, int buttonDown);
    void resetImportControls();
    // Controls of each window state.
    void showChoiceState();
    void showFileChoiceControls(bool choosing);
    void hideFileControls(bool clearTexts);
    void showFormat();

    ImportSession m_session;

    // Controls, named as the window knows them.
    QListWidget* lstTables = nullptr;
    QLabel* lblSelection = nullptr;
    QLabel* lblFileFormat = nullptr;
    QTableWidget* fpFields = nullptr;
    QPlainTextEdit* txtFormat = nullptr;
    QLabel* lblPath = nullptr;
    QLabel* lblFileName = nullptr;
    QLineEdit* txtPath = nullptr;
    QLineEdit* txtName = nullptr;
    QPushButton* cmdGetFile = nullptr;
    QPushButton* cmdGetDifferentTable = nullptr;
    QPushButton* cmdOk = nullptr;
    QPushButton* cmdImportToDB = nullptr;
    QPushButton* cmdCancel = nullptr;
    QStatusBar* StatBar = nullptr;
    QWidget* m_dataPanel = nullptr;   // everything that shows once a data set is chosen

    ui::GridAdapter* m_fields = nullptr;

    int m_offeredCount = 0;
    bool m_gridFilled = true;
};

} // namespace tp
