#pragma once
// Screenshot mode's pictures of the GPS export: the track-subject window with "All Subjects"
// checked, the track view of a month of the demo data, and the Export window previewing its
// points.
#include <QString>
#include <functional>

class QWidget;

namespace tp {

class cDAO;
class Feedback;
namespace ui {
class FileDialog;
}

// save(window, picture name) shows the window and writes its picture.
void saveGpsScreenshots(cDAO& db, QWidget* parent, Feedback* prompts, ui::FileDialog* dialogs,
                        const std::function<void(QWidget*, const QString&)>& save);

} // namespace tp
