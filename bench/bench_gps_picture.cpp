// The track picture of 2,000,000 usable GPS fixes (and 1 in 100 more left out of the export):
// March of 100 subjects chosen as the Export window chooses them, read as the track view reads
// them and drawn as the view and the batch tool draw them (1200 by 900 pixels, fitted), then
// once more zoomed in at the middle as a turn of the wheel would.
// Last line: gps-picture: points=<usable fixes> seconds=<drawing> max_rss_mb=<peak MB>
// ("seconds" is the fitted picture's drawing; reading the fixes is told on a line of its own).
#include "bench_gps_tracks.h"
#include "export/tracks/track_picture.h"
#include "export/tracks/track_reader.h"

#include <QDir>
#include <QElapsedTimer>
#include <QGuiApplication>
#include <QPainter>
#include <QTemporaryDir>
#include <sys/resource.h>

#include <cstdio>

namespace {

double seconds(const QElapsedTimer& clock)
{
    return double(clock.nsecsElapsed()) / 1e9;
}

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    QTemporaryDir dir;
    const QString database = bench::gps::makeDatabase(dir);
    if (database.isEmpty())
        return 1;

    tp::cDAO db;
    if (!db.DB_Connect(database, QString(), QStringLiteral("Admin"), QString())) {
        std::fprintf(stderr, "cannot connect: %s\n", qPrintable(db.errorText));
        return 1;
    }
    tp::ScriptedFeedback feedback;
    tp::ExportSession session(db, feedback);
    double scanSeconds = 0;
    if (!bench::gps::scanMarch(session, feedback, {QStringLiteral("TrackID")}, scanSeconds)) {
        std::fprintf(stderr, "the scan of March failed: %s\n", qPrintable(feedback.lastStatus));
        return 1;
    }

    QElapsedTimer clock;
    clock.start();
    tp::tracks::TrackReader reader(db, feedback);
    const std::optional<tp::tracks::TrackSet> set = reader.readAll(session.request());
    const double readSeconds = seconds(clock);
    if (!set || set->usable != bench::gps::kUsablePoints) {
        std::fprintf(stderr, "reading the tracks failed: %s\n", qPrintable(reader.error()));
        return 1;
    }

    const QSize size(1200, 900);
    clock.restart();
    tp::tracks::PictureParts parts;
    const QImage picture = tp::tracks::drawTracks(*set, size, false, &parts);
    const double drawSeconds = seconds(clock);
    if (picture.isNull() || parts.legend.empty()) {
        std::fprintf(stderr, "the picture was not drawn\n");
        return 1;
    }

    // Closer in, as the wheel brings it: fewer fixes in sight, longer lines between them.
    tp::tracks::TrackView view(set->meanLatitude, size);
    view.fit(*set, tp::tracks::pictureMargins(*set, size));
    view.zoomAt(QPointF(600, 450), 8);
    QImage zoomed(size, QImage::Format_ARGB32_Premultiplied);
    clock.restart();
    QPainter painter(&zoomed);
    const tp::tracks::PictureParts zoomedParts = tp::tracks::paintTracks(painter, *set, view, false);
    painter.end();
    const double zoomSeconds = seconds(clock);

    rusage usage {};
    getrusage(RUSAGE_SELF, &usage);
    std::printf("read: subjects=%zu tracks=%zu fixes=%lld (left out %lld) seconds=%.3f\n",
                set->subjects.size(), set->tracks.size(), static_cast<long long>(tp::tracks::fixCount(*set)),
                static_cast<long long>(set->leftOut), readSeconds);
    std::printf("fitted: line points drawn=%lld; zoomed 8x: line points drawn=%lld seconds=%.3f\n",
                static_cast<long long>(parts.linePoints), static_cast<long long>(zoomedParts.linePoints),
                zoomSeconds);
    std::printf("gps-picture: points=%lld seconds=%.3f max_rss_mb=%.1f\n",
                static_cast<long long>(set->usable), drawSeconds, double(usage.ru_maxrss) / 1024.0);
    return 0;
}
