#pragma once
// The batch tool's track picture (--picture): the tracks of the GPS selection drawn into a PNG
// without a display, as the Export window's track view draws them.
#include <QCoreApplication>
#include <memory>

namespace tp {
class ExportSession;
}

namespace tp::batch {

struct Options;
class ConsoleFeedback;

inline const QString kPictureCompleted = QStringLiteral("Picture Completed Successfully");

// The application the run needs: drawing text takes a GUI application (with the offscreen
// platform: no display is ever needed), which only a run with --picture pays for.
std::unique_ptr<QCoreApplication> makeApplication(int& argc, char** argv);

// After the scan: reads the selection's tracks, draws them and writes the picture in place of
// --picture (a complete file or none). False after a refusal or failure, told on the console.
bool writeTrackPicture(ExportSession& session, const Options& options, ConsoleFeedback& feedback);

} // namespace tp::batch
