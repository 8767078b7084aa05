// The track view through the Export window's real widgets: Show Tracks after a GPS scan, the
// picture drawn off the GUI thread as the batch tool draws it, the wheel zooming at the pointer,
// a drag moving the picture, a double click fitting all again, and the hover text of a fix.
#include "export/tracks/frmTrackView.h"
#include "gps_window_fixture.h"

#include <QEventLoop>
#include <QLocale>
#include <QPointer>
#include <QToolTip>
#include <QWheelEvent>

namespace tp::test {
namespace {

const auto* const kTrackViewGui = ::testing::AddGlobalTestEnvironment(new GuiEnvironment);

// Lets the events run until ready, for at most a minute (a bound for a loaded machine, not a
// measure of anything).
bool waitFor(const std::function<bool()>& ready)
{
    QElapsedTimer clock;
    clock.start();
    while (!ready() && clock.elapsed() < 60000) {
        QEventLoop loop;
        QTimer::singleShot(5, &loop, &QEventLoop::quit);
        loop.exec();
    }
    return ready();
}

bool isColour(const QImage& image, QPointF p, const QColor& colour)
{
    const QColor c = image.pixelColor(QPoint(int(std::floor(p.x())), int(std::floor(p.y()))));
    return std::abs(c.red() - colour.red()) <= 6 && std::abs(c.green() - colour.green()) <= 6 &&
           std::abs(c.blue() - colour.blue()) <= 6;
}

class TrackViewWindow : public GpsWindowTest {
protected:
    // GPS Data, TrackID ticked, every subject, 03/02/2004 to 03/06/2004, scanned.
    void scanSample()
    {
        openGps();
        tick({window->session().fieldRow(QStringLiteral("TrackID"))});
        chooseSubjects({0});
        press("cmdDate");
        pickDate(button("cmdStart"), 2004, 3, 2);
        pickDate(button("cmdStop"), 2004, 3, 6);
        EXPECT_FALSE(button("cmdShowTracks")->isEnabled());
        press("cmdOK");
    }
    frmTrackView* showTracks()
    {
        press("cmdShowTracks");
        return window->findChild<frmTrackView*>();
    }
    static void wheel(QWidget* target, QPointF at, int units)
    {
        QWheelEvent event(at, target->mapToGlobal(at), QPoint(), QPoint(0, units), Qt::NoButton,
                          Qt::NoModifier, Qt::NoScrollPhase, false);
        QApplication::sendEvent(target, &event);
    }
    static QString hoverText(QWidget* target, QPointF at)
    {
        QHelpEvent help(QEvent::ToolTip, at.toPoint(), target->mapToGlobal(at.toPoint()));
        QApplication::sendEvent(target, &help);
        return QToolTip::text();
    }
};

TEST_F(TrackViewWindow, ShowTracksDrawsTheScanAndZoomsMovesAndFitsAgain)
{
    scanSample();
    ASSERT_TRUE(button("cmdShowTracks")->isVisible());
    frmTrackView* view = showTracks();
    ASSERT_NE(view, nullptr);
    EXPECT_EQ(view->windowModality(), Qt::WindowModal);
    TrackCanvas& canvas = view->canvas();
    ASSERT_TRUE(waitFor([&] { return view->loaded() && canvas.pictureReady(); })) << view->statusText().toStdString();
    EXPECT_TRUE(view->statusText().startsWith(
        QLatin1String("4 subjects, 5 tracks, 9 fixes (2 left out of the export).")))
        << view->statusText().toStdString();

    // The picture the batch tool would draw at this size, shown as it is.
    const tracks::TrackSet& set = *canvas.tracks();
    const QImage fitted = canvas.picture();
    EXPECT_EQ(fitted, tracks::drawTracks(set, canvas.size(), tracks::usesMiles(QLocale())));
    const tracks::Track& first = set.tracks.front();
    const QImage shown = canvas.grab().toImage();
    EXPECT_TRUE(isColour(shown, canvas.view().toPixel(first.fixes.front()), tracks::kStartColour));
    QStringList legend;
    for (const auto& row : canvas.parts().legend)
        legend << row.text;
    EXPECT_EQ(legend, QStringList({"UnAssigned Individual - GPS-205", "Ann - GPS-203", "Ann - GPS-205",
                                   "UnAssigned Individual - UnAssigned Tracker"}));

    // Resting on a fix tells its track, day, time and speed; on a left-out one, that too.
    const tracks::Track& t21 = set.tracks[2];
    ASSERT_EQ(t21.trackId, 21);
    EXPECT_EQ(hoverText(&canvas, canvas.view().toPixel(t21.fixes.front())),
              QStringLiteral("Track 21 (Ann - GPS-203)\n03/05/2004 8:00:00\nSpeed 0"));
    EXPECT_TRUE(hoverText(&canvas, canvas.view().toPixel(t21.leftOut.back()))
                    .endsWith(QLatin1String("8:00:30\nSpeed 14\nLeft out of the export: no usable position")));

    // Two notches of the wheel over track 23's fix: closer, the fix staying under the pointer.
    const tracks::Fix& anchor = set.tracks[3].fixes.front();
    const QPointF pointer = canvas.view().toPixel(anchor);
    const double scale = canvas.view().pixelsPerDegree();
    wheel(&canvas, pointer, 240);
    EXPECT_NEAR(canvas.view().pixelsPerDegree(), scale * std::pow(1.0015, 240), scale * 1e-9);
    EXPECT_NEAR((canvas.view().toPixel(anchor) - pointer).manhattanLength(), 0, 1e-6);
    ASSERT_TRUE(waitFor([&] { return canvas.pictureReady(); }));
    EXPECT_NE(canvas.picture(), fitted);
    EXPECT_TRUE(isColour(canvas.picture(), canvas.view().toPixel(anchor), tracks::kStartColour));

    // A drag moves the picture with the pointer.
    sendMouse(&canvas, QEvent::MouseButtonPress, QPoint(100, 100));
    sendMouse(&canvas, QEvent::MouseMove, QPoint(130, 80));
    sendMouse(&canvas, QEvent::MouseButtonRelease, QPoint(130, 80));
    EXPECT_NEAR((canvas.view().toPixel(anchor) - pointer - QPointF(30, -20)).manhattanLength(), 0, 1e-6);

    // A double click fits all again: the first picture, pixel for pixel.
    sendMouse(&canvas, QEvent::MouseButtonDblClick, QPoint(50, 50));
    ASSERT_TRUE(waitFor([&] { return canvas.pictureReady(); }));
    EXPECT_EQ(canvas.picture(), fitted);

    // A larger window shows the tracks fitted to its size.
    view->resize(view->width() + 120, view->height() + 60);
    ASSERT_TRUE(waitFor([&] { return canvas.pictureReady() && canvas.picture().size() == canvas.size(); }));
    EXPECT_EQ(canvas.picture(), tracks::drawTracks(set, canvas.size(), tracks::usesMiles(QLocale())));

    QPointer<frmTrackView> closing(view);
    pressButton(view, "cmdClose");
    EXPECT_TRUE(waitFor([&] { return closing.isNull(); }));
    // A selection dropped by Cancel offers no tracks until one is scanned again.
    EXPECT_TRUE(button("cmdShowTracks")->isEnabled());
    press("cmdCancelClose");
    EXPECT_FALSE(button("cmdShowTracks")->isEnabled());
}

TEST_F(TrackViewWindow, ClosedWhileReadingOrDrawingItStopsAndTheExportWindowGoesOn)
{
    scanSample();
    // Closed before its first track was read.
    QPointer<frmTrackView> view(showTracks());
    ASSERT_FALSE(view.isNull());
    pressKey(view, Qt::Key_Escape);
    EXPECT_TRUE(waitFor([&] { return view.isNull(); }));

    // Closed while a picture for a changed view is being drawn.
    view = showTracks();
    ASSERT_TRUE(waitFor([&] { return view->loaded() && view->canvas().pictureReady(); }));
    for (int i = 0; i < 5; ++i)
        wheel(&view->canvas(), QPointF(60 + i, 60), 120);
    EXPECT_FALSE(view->canvas().pictureReady());
    pressButton(view, "cmdClose");
    EXPECT_TRUE(waitFor([&] { return view.isNull(); }));

    press("cmdPreviewExport");
    EXPECT_EQ(window->preview().text(1, 2), QStringLiteral("24"));
}

} // namespace
} // namespace tp::test
