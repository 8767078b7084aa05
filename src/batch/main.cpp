// tallyport-batch: the Export or Import window's work without a window, for jobs
// that run unattended. See --help and the "Batch tool" section of the README.
#include "batch/batch_commands.h"
#include "batch/batch_picture.h"
#include "batch/batch_startup.h"
#include "batch/console_feedback.h"
#include "version.h"

#include <QCoreApplication>
#include <cstdio>

using namespace tp::batch;

int main(int argc, char** argv)
{
    const std::unique_ptr<QCoreApplication> app = makeApplication(argc, argv);
    const ParseResult parsed = parseArguments(QCoreApplication::arguments().mid(1));
    if (!parsed.ok())
        return usageError(parsed.error);

    const Options& options = parsed.options;
    switch (options.command) {
    case Command::Help:
        std::fputs(helpText().toLocal8Bit().constData(), stdout);
        return ExitSuccess;
    case Command::Version:
        std::printf("tallyport-batch %s\n", TALLYPORT_VERSION);
        return ExitSuccess;
    case Command::Export:
    case Command::Import:
        break;
    }

    describeRun(options);
    ConsoleFeedback console(options.yes);
    console.setProgressLines(options.progress);
    tp::setFeedback(&console);
    const int status = options.command == Command::Export
                           ? exportCommand(options, console, stdout)
                           : importCommand(options, console, stdout);
    std::fflush(stdout);
    tp::setFeedback(nullptr);
    return status;
}
