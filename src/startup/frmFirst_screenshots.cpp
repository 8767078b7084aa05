// Screenshot mode of the main window: for machines without a screen (demo and review).
#include "export/frmExport.h"
#include "import/frmImport.h"
#include "startup/frmAbout.h"
#include "startup/frmFirst.h"
#include "startup/frmFirst_screenshots_gps.h"

#include "foundation/globals.h"
#include "ui/window_support.h"

#include <QDir>
#include <QListWidget>

namespace tp {

QStringList frmFirst::saveScreenshots(const QString& folder)
{
    QStringList written;
    QDir().mkpath(folder);
    const QDir dir(folder);
    ui::savePicture(this, dir.filePath(QStringLiteral("main-window.png")), written);

    aboutClicked();
    if (m_about) {
        ui::savePicture(m_about, dir.filePath(QStringLiteral("about-box.png")), written);
        m_about->close();
    }

    cDAO* db = SharedDatabase();
    if (!db)
        return written;
    frmExport window(*db, this, prompts, fileDialog);
    ui::savePicture(&window, dir.filePath(QStringLiteral("export-window-list.png")), written);
    if (window.chooseDataSet(QStringLiteral("Time Data"))) {
        for (int row : {2, 5, 6, 7})
            window.clickFieldBox(row, true);
        ui::savePicture(&window, dir.filePath(QStringLiteral("export-window.png")), written);
        // Scanned, dates and times formatted, previewed; no file is written.
        window.SelectAllRecords();
        window.ScanDatabase();
        ui::savePicture(&window, dir.filePath(QStringLiteral("export-window-scan.png")), written);
        window.FormatDateClicked();
        window.FormatTimeClicked();
        window.PreviewExport();
        ui::savePicture(&window, dir.filePath(QStringLiteral("export-window-preview.png")), written);
        window.CancelExport();
    }
    window.close();
    saveGpsScreenshots(*db, this, prompts, fileDialog, [&](QWidget* w, const QString& name) {
        ui::savePicture(w, dir.filePath(name), written);
    });
    written << frmImport::saveScreenshots(*db, this, folder);
    return written;
}

} // namespace tp
