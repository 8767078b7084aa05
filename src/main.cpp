// tallyport: the host passes one command line "x,SETTINGS.ini,ALLOWEXPORT,USERID".
// tallyport --screenshots FOLDER x,... saves pictures of the windows instead of waiting for
// the user (for machines without a screen).
// tallyport --launcher is what the desktop menu runs: no host, so the window says what it needs.
#include "foundation/feedback.h"
#include "startup/frmFirst.h"
#include "startup/startup.h"
#include "ui/qt_feedback.h"
#include "ui/window_support.h"

#include <QApplication>
#include <cstdio>

namespace {

const QString kLauncherText = QStringLiteral(
    "Tallyport is opened by the fleet product, which names the settings file and the signed-in user.\r"
    "Opened from the menu, Import and Export are not available.");

} // namespace

int main(int argc, char** argv)
{
    // Taken before QApplication removes the arguments it knows.
    QStringList arguments;
    for (int i = 1; i < argc; ++i)
        arguments << QString::fromLocal8Bit(argv[i]);

    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Tallyport"));
    QApplication::setWindowIcon(tp::ui::programIcon());

    QString screenshotFolder;
    if (arguments.size() >= 2 && arguments.first() == QLatin1String("--screenshots")) {
        screenshotFolder = arguments.at(1);
        arguments = arguments.mid(2);
    }
    const bool launcher = !arguments.isEmpty() && arguments.first() == QLatin1String("--launcher");
    if (launcher)
        arguments.removeFirst();

    // Without a screen nobody can press OK: boxes are printed instead.
    tp::ScriptedFeedback printed;
    printed.onShown = [](const tp::ScriptedFeedback::Shown& shown) {
        std::fprintf(stderr, "%s\n", qPrintable(tp::ui::QtFeedback::displayText(shown.text)));
    };
    tp::ui::QtFeedback boxes;
    const bool screenshots = !screenshotFolder.isEmpty();
    tp::setFeedback(screenshots ? static_cast<tp::Feedback*>(&printed) : &boxes);

    tp::frmFirst window;
    const tp::StartupOutcome outcome = window.load(tp::JoinArguments(arguments));
    if (outcome.fatal)
        return 1;
    window.show();
    if (launcher && arguments.isEmpty())
        tp::ShowMessage(0, kLauncherText);

    if (screenshots) {
        const QStringList files = window.saveScreenshots(screenshotFolder);
        for (const QString& file : files)
            std::printf("%s\n", qPrintable(file));
        tp::setFeedback(nullptr);
        return files.isEmpty() ? 1 : 0;
    }
    const int status = app.exec();
    tp::setFeedback(nullptr);
    return status;
}
