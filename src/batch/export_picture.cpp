#include "batch/batch_picture.h"

#include "batch/batch_options.h"
#include "batch/console_feedback.h"
#include "delivery/export_writer.h"
#include "delivery/protected_files.h"
#include "export/export_session.h"
#include "export/tracks/track_picture.h"
#include "export/tracks/track_reader.h"

#include <QBuffer>
#include <QFileInfo>
#include <QGuiApplication>
#include <QLocale>
#include <cstdio>
#include <cstring>

namespace tp::batch {

std::unique_ptr<QCoreApplication> makeApplication(int& argc, char** argv)
{
    bool picture = false;
    for (int i = 1; i < argc && !picture; ++i)
        picture = std::strcmp(argv[i], "--picture") == 0 || std::strncmp(argv[i], "--picture=", 10) == 0;
    if (!picture)
        return std::make_unique<QCoreApplication>(argc, argv);
    qputenv("QT_QPA_PLATFORM", "offscreen");
    // A job started by cron or a timer has no session folder; Qt's remark on that is no news.
    static const QtMessageHandler previous = qInstallMessageHandler(nullptr);
    qInstallMessageHandler([](QtMsgType type, const QMessageLogContext& context, const QString& text) {
        if (text.startsWith(QLatin1String("QStandardPaths: XDG_RUNTIME_DIR not set")))
            return;
        if (previous)
            previous(type, context, text);
        else
            std::fprintf(stderr, "%s\n", qPrintable(qFormatLogMessage(type, context, text)));
    });
    return std::make_unique<QGuiApplication>(argc, argv);
}

bool writeTrackPicture(ExportSession& session, const Options& options, ConsoleFeedback& feedback)
{
    auto refuse = [&](const QString& why) {
        feedback.status(QString());
        feedback.note(why);
        return false;
    };
    const QString file = QFileInfo(options.picture).absoluteFilePath();
    const QString kept = protectedFileAt(file);
    if (!kept.isEmpty())
        return refuse(QStringLiteral("The picture cannot be written to %1: it is %2.").arg(options.picture, kept));
    if (isReadOnlyFile(file)) {
        feedback.message(0, kReadOnlyFileMessage, kBoxTitle);
        return refuse(QStringLiteral("No picture was written."));
    }

    tracks::TrackReader reader(session.database(), feedback);
    const std::optional<tracks::TrackSet> set = reader.readAll(session.request());
    if (!set)
        return refuse(QStringLiteral("The tracks could not be read: ") + reader.error());
    const QImage image = tracks::drawTracks(*set, QSize(options.pictureWidth, options.pictureHeight),
                                            tracks::usesMiles(QLocale()));
    QByteArray png;
    QBuffer buffer(&png);
    buffer.open(QIODevice::WriteOnly);
    if (!image.save(&buffer, "PNG"))
        return refuse(QStringLiteral("The picture could not be made."));

    // The same road as an export file: a temporary file beside it, then the rename.
    ExportFileWriter writer;
    if (!writer.open(file) || !writer.writeBytes(png) || !writer.finish() || !writer.putInPlace()) {
        const QString error = writer.errorString();
        writer.discard();
        return refuse(QStringLiteral("The picture %1 could not be written: %2").arg(options.picture, error));
    }
    writer.commit();
    feedback.note(QStringLiteral("Track picture %1: %2.").arg(options.picture, tracks::describeSet(*set)));
    feedback.status(kPictureCompleted);
    return true;
}

} // namespace tp::batch
