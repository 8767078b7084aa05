// Pictures of the Import window for the demo: a map-location import from files made in a
// scratch folder, scanned but never written.
#include "import/frmImport.h"

#include "foundation/feedback.h"
#include "ui/window_support.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QMessageBox>
#include <QTemporaryDir>

namespace tp {

namespace {

QString writeFile(const QDir& dir, const char* name, const QByteArray& bytes)
{
    const QString path = dir.filePath(QString::fromLatin1(name));
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
        return QString();
    return path;
}

} // namespace

QStringList frmImport::saveScreenshots(cDAO& db, QWidget* parent, const QString& folder)
{
    QStringList written;
    QTemporaryDir scratch;
    if (!scratch.isValid())
        return written;
    const QDir files(scratch.path());
    const QDir dir(folder);
    // Branch 1 is the demo site's first branch.
    const QString good = writeFile(files, "locations.txt",
                                   "LocationName,BranchNumber,Address1,City\r\n"
                                   "North Depot,1,12 Lake Shore Dr,Chicago\r\n"
                                   "Harbor Yard,1,400 Pier Rd,Milwaukee\r\n"
                                   "South Gate,1,9 Meridian St,Indianapolis\r\n");
    const QString bad = writeFile(files, "locations-bad.txt",
                                  "LocationName,BranchNumber,City,Address1\r\n"
                                  "North Depot,1,Chicago,12 Lake Shore Dr\r\n");

    ScriptedFeedback prompts;
    ui::ScriptedFileDialog dialogs;
    frmImport window(db, parent, &prompts, &dialogs);
    ui::savePicture(&window, dir.filePath(QStringLiteral("import-window-list.png")), written);
    if (good.isEmpty() || bad.isEmpty() || !window.chooseDataSet(kImportListMapLocations))
        return written;
    window.clickFieldBox(5, true);   // City
    // Taller than it opens, so that the pictures show more of the grid and the sample.
    window.resize(window.width(), window.height() * 3 / 2);
    dialogs.names = {bad};
    window.GetFile();
    ui::savePicture(&window, dir.filePath(QStringLiteral("import-window.png")), written);

    window.ScanFile();
    if (!prompts.messages().isEmpty()) {
        QMessageBox box(QMessageBox::Information, kBoxTitle,
                        ui::QtFeedback::displayText(prompts.messages().constLast()), QMessageBox::Ok,
                        &window);
        ui::savePicture(&box, dir.filePath(QStringLiteral("import-window-fault.png")), written);
        box.close();
    }

    dialogs.names = {good};
    window.GetFile();
    window.ScanFile();
    ui::savePicture(&window, dir.filePath(QStringLiteral("import-window-sample.png")), written);
    window.CancelClose();
    window.close();
    return written;
}

} // namespace tp
