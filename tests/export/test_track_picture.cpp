// The track picture: the tracks of the GPS export's selection read from real databases (the
// fixes it leaves out placed where the track was), drawn offscreen and checked by their pixels,
// and the reduction that keeps millions of fixes cheap without losing a pixel of a line.
#include "export/gps_data.h"
#include "export/tracks/track_picture.h"
#include "export/tracks/track_reader.h"
#include "gps_fixture.h"
#include "support/gui_app.h"

#include <QLocale>
#include <QRandomGenerator>
#include <map>

namespace tp::test {
namespace {

const auto* const kPictureGui = ::testing::AddGlobalTestEnvironment(new GuiEnvironment);

using tracks::Fix;
using tracks::TrackSet;
using tracks::TrackView;

ExportRequest allSubjects(const QString& start = "20040301", const QString& stop = "20040331")
{
    ExportRequest r;
    r.table = kTableGps;
    r.byDate = true;
    r.start = start;
    r.stop = stop;
    r.trackSubjects = {0};
    r.trackSubjects.insert(r.trackSubjects.end(), kGpsSampleSubjects.begin(), kGpsSampleSubjects.end());
    r.currentTrackSubject = qint32(kGpsSampleSubjects.size());
    r.settingsFile = QStringLiteral("KRV.ini");
    return r;
}

Fix at(double lon, double lat)
{
    Fix f;
    f.lon = qint32(std::lround(lon * tracks::kMicro));
    f.lat = qint32(std::lround(lat * tracks::kMicro));
    return f;
}

QString place(const Fix& f)
{
    return QString::number(f.lon / tracks::kMicro, 'g', 10) + QLatin1Char(',') +
           QString::number(f.lat / tracks::kMicro, 'g', 10);
}

// A pixel within reach of p holds colour (each channel within a few steps: antialiasing).
bool colourNear(const QImage& image, QPointF p, const QColor& colour, int reach = 0)
{
    for (int dy = -reach; dy <= reach; ++dy)
        for (int dx = -reach; dx <= reach; ++dx) {
            const QPoint q(int(std::floor(p.x())) + dx, int(std::floor(p.y())) + dy);
            if (!image.rect().contains(q))
                continue;
            const QColor c = image.pixelColor(q);
            if (std::abs(c.red() - colour.red()) <= 6 && std::abs(c.green() - colour.green()) <= 6 &&
                std::abs(c.blue() - colour.blue()) <= 6)
                return true;
        }
    return false;
}

class TrackRead : public GpsDbTest {
protected:
    void SetUp() override
    {
        GpsDbTest::SetUp();
        if (!HasFatalFailure() && !IsSkipped())
            addSample();
    }
    ScriptedFeedback feedback;
};

TEST_P(TrackRead, TheExportsTracksInItsOrderWithTheLeftOutFixesWhereTheTrackWas)
{
    // Track 22 gains a later usable fix and, between the two, a fix with no position at all.
    exec("INSERT INTO GPSCoordinates (TrackID, Longitude, Latitude, RcvDate, RcvTime, Speed) VALUES "
         "(22, -1, -1, 20040302, 120010, 7), (22, -122, 45, 20040302, 120020, 8)");
    tracks::TrackReader reader(db, feedback);
    const auto set = reader.readAll(allSubjects());
    ASSERT_TRUE(set) << reader.error().toStdString();

    QStringList subjects;
    for (const tracks::Subject& s : set->subjects)
        subjects << s.name;
    EXPECT_EQ(subjects, QStringList({"UnAssigned Individual - GPS-205", "Ann - GPS-203", "Ann - GPS-205",
                                     "UnAssigned Individual - UnAssigned Tracker"}));
    // The export's tracks and usable fixes, in its order (not April's track 25).
    QStringList usable, leftOut;
    for (const tracks::Track& t : set->tracks) {
        for (const Fix& f : t.fixes)
            usable << QStringLiteral("%1/%2 %3 %4").arg(t.trackId).arg(t.subject).arg(f.time).arg(place(f));
        for (const Fix& f : t.leftOut)
            leftOut << QStringLiteral("%1 %2 %3").arg(t.trackId).arg(f.time).arg(place(f));
    }
    EXPECT_EQ(usable, QStringList({"24/0 70000 -120.5,44", "24/0 70030 -120.25,44.25", "22/1 120000 -122.125,45.125",
                                   "22/1 120020 -122,45", "21/1 80000 -122.75,45.5", "21/1 80010 -122.5,45.25",
                                   "23/2 90000 -121.5,44.5", "26/3 110000 -119.5,43.5"}));
    // Halfway in time between its neighbours; after the last usable fix, the coordinate it
    // lacks is the last one's, the one it carries its own.
    EXPECT_EQ(leftOut, QStringList({"22 120010 -122.0625,45.0625", "21 80020 -122.5,45.3", "21 80030 -122.8,45.25"}));
    EXPECT_EQ(set->usable, 8);
    EXPECT_EQ(set->leftOut, 3);
    GpsAssembler gps(db, feedback);
    EXPECT_EQ(gps.count(allSubjects()), set->usable) << "the picture and the export differ";

    // A read that fails is a failure, never an empty track.
    exec("DROP TABLE GPSCoordinates");
    EXPECT_FALSE(reader.readAll(allSubjects()));
    EXPECT_FALSE(reader.error().isEmpty());
}

INSTANTIATE_TEST_SUITE_P(Engines, TrackRead, ::testing::Bool(), gpsEngineName);

// The picture of the sample, read from SQLite.
using TrackPicture = TrackRead;

TEST_P(TrackPicture, MarkersCrossesColoursAndLegendWhereTheFixesAre)
{
    // A fix halfway along track 24 (the first subject's) and along track 21 (the second's).
    exec("INSERT INTO GPSCoordinates (TrackID, Longitude, Latitude, RcvDate, RcvTime) VALUES "
         "(24, -120.375, 44.125, 20040304, 70015), (21, -122.625, 45.375, 20040305, 80005)");
    tracks::TrackReader reader(db, feedback);
    const auto set = reader.readAll(allSubjects());
    ASSERT_TRUE(set) << reader.error().toStdString();
    const QSize size(640, 480);
    tracks::PictureParts parts;
    const QImage image = tracks::drawTracks(*set, size, false, &parts);
    TrackView view(set->meanLatitude, size);
    view.fit(*set, tracks::pictureMargins(*set, size));

    const tracks::Track& first = set->tracks.front();   // 24, the first subject's
    const tracks::Track& t21 = set->tracks[2];
    ASSERT_EQ(t21.trackId, 21);
    EXPECT_TRUE(colourNear(image, view.toPixel(first.fixes.front()), tracks::kStartColour)) << "start of 24";
    EXPECT_TRUE(colourNear(image, view.toPixel(first.fixes.back()), tracks::kEndColour)) << "end of 24";
    EXPECT_TRUE(colourNear(image, view.toPixel(t21.fixes.front()), tracks::kStartColour)) << "start of 21";
    EXPECT_TRUE(colourNear(image, view.toPixel(t21.leftOut.back()), tracks::kLeftOutColour)) << "cross";
    // Halfway along each line, the colour of its subject; the two differ.
    ASSERT_EQ(first.fixes.size(), 3u);
    ASSERT_EQ(t21.fixes.size(), 3u);
    EXPECT_NE(tracks::subjectColour(0), tracks::subjectColour(1));
    EXPECT_TRUE(colourNear(image, view.toPixel(first.fixes[1]), tracks::subjectColour(0)));
    EXPECT_TRUE(colourNear(image, view.toPixel(t21.fixes[1]), tracks::subjectColour(1)));
    EXPECT_FALSE(colourNear(image, view.toPixel(t21.fixes[1]), tracks::subjectColour(0), 1));
    // The picture's corners away from the legend and scale bar are paper.
    EXPECT_TRUE(colourNear(image, QPointF(size.width() - 2, 2), tracks::kPaperColour));

    // The legend names the subjects as the subject list does, each beside its colour, in ink.
    QStringList legend;
    for (const auto& row : parts.legend) {
        legend << row.text;
        const QPointF swatch(row.textRect.left() - 13, row.textRect.center().y());
        EXPECT_TRUE(colourNear(image, swatch, row.colour, 1)) << row.text.toStdString();
        int ink = 0;
        for (int y = row.textRect.top(); y <= row.textRect.bottom(); ++y)
            for (int x = row.textRect.left(); x <= row.textRect.right(); ++x)
                ink += qGray(image.pixel(x, y)) < 96 ? 1 : 0;
        EXPECT_GT(ink, 20) << row.text.toStdString();
    }
    EXPECT_EQ(legend, QStringList({"UnAssigned Individual - GPS-205", "Ann - GPS-203", "Ann - GPS-205",
                                   "UnAssigned Individual - UnAssigned Tracker"}));
    // No track under the legend.
    for (const tracks::Track& t : set->tracks)
        for (const Fix& f : t.fixes)
            EXPECT_FALSE(parts.legendBox.contains(view.toPixel(f).toPoint()));
    EXPECT_TRUE(parts.scaleText.endsWith(QLatin1String(" km"))) << parts.scaleText.toStdString();
}

INSTANTIATE_TEST_SUITE_P(Engines, TrackPicture, ::testing::Values(false), gpsEngineName);

TEST(TrackScale, RoundLengthsInTheLocalesUnit)
{
    struct Case {
        double metresPerPixel;
        bool miles;
        const char* text;
        double pixels;   // at most 100
    };
    const Case cases[] = {
        {12, false, "1 km", 1000 / 12.0},        {7, false, "500 m", 500 / 7.0},
        {0.06, false, "5 m", 5 / 0.06},          {1100, false, "100 km", 100000 / 1100.0},
        {10, true, "2000 ft", 2000 * 0.3048 / 10},
        {100, true, "5 mi", 5 * 1609.344 / 100},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.text);
        TrackView view(0, QSize(400, 300));
        view.zoomAt(QPointF(200, 150), (tracks::kMetresPerDegree / c.metresPerPixel) / view.pixelsPerDegree());
        const tracks::ScaleBar bar = tracks::scaleBar(view, c.miles, 100);
        EXPECT_EQ(bar.text, QLatin1String(c.text));
        EXPECT_NEAR(bar.pixels, c.pixels, 1e-6);
    }
    EXPECT_TRUE(tracks::usesMiles(QLocale(QStringLiteral("en_US"))));
    EXPECT_FALSE(tracks::usesMiles(QLocale(QStringLiteral("de_DE"))));
}

// Per pixel column, the reduced line reaches exactly as high and as low as every fix does, in
// the columns every fix reaches, with at most four points a column; lines are cut at the edge.
TEST(TrackReduction, EveryColumnKeepsItsExtentWithFewPoints)
{
    QRandomGenerator random(23);
    std::vector<Fix> walk;
    double lon = -100, lat = 40;
    for (int i = 0; i < 200000; ++i) {
        lon += random.bounded(2.0) * 1e-4 - 0.5e-4 + 2e-6;
        lat += random.bounded(2.0) * 1e-4 - 0.95e-4;
        walk.push_back(at(lon, lat));
    }
    TrackSet set;
    set.tracks.push_back({1, 0, walk, {}});
    set.meanLatitude = 40;
    for (const QSize size : {QSize(300, 200), QSize(1200, 900)}) {
        TrackView view(40, size);
        view.fit(set);
        std::map<int, std::pair<int, int>> all, reduced;
        const auto extend = [](std::map<int, std::pair<int, int>>& m, QPoint p) {
            auto [it, fresh] = m.try_emplace(p.x(), p.y(), p.y());
            it->second = {std::min(it->second.first, p.y()), std::max(it->second.second, p.y())};
        };
        for (const Fix& f : walk) {
            const QPointF p = view.toPixel(f);
            extend(all, QPoint(int(std::floor(p.x())), int(std::floor(p.y()))));
        }
        int runs = 1;   // stretches of fixes within one column
        for (std::size_t i = 1; i < walk.size(); ++i)
            runs += std::floor(view.toPixel(walk[i]).x()) != std::floor(view.toPixel(walk[i - 1]).x()) ? 1 : 0;
        tracks::PathReducer reducer;
        int lines = 0;
        reducer.reduce(walk, view, [&](const QPoint* points, int count) {
            ++lines;
            for (int i = 0; i < count; ++i)
                extend(reduced, points[i]);
        });
        EXPECT_EQ(lines, 1);
        EXPECT_EQ(reduced, all);
        EXPECT_LE(reducer.pointsOut(), 4 * runs);
        EXPECT_LT(reducer.pointsOut() * 10, qint64(walk.size()));

        // Zoomed far into the middle: only what crosses the picture, within its edges.
        view.zoomAt(QPointF(size.width() / 2.0, size.height() / 2.0), 1e4);
        bool inside = true;
        reducer.reduce(walk, view, [&](const QPoint* points, int count) {
            for (int i = 0; i < count; ++i)
                inside &= points[i].x() >= -5 && points[i].y() >= -5 && points[i].x() <= size.width() + 5 &&
                          points[i].y() <= size.height() + 5;
        });
        EXPECT_TRUE(inside);
        EXPECT_LT(reducer.pointsOut(), 20000);
    }
    // Two fixes far outside on either side still draw the line between them across the picture.
    TrackView view(0, QSize(100, 100));
    tracks::PathReducer reducer;
    std::vector<QPoint> line;
    reducer.reduce({at(-50, 0), at(50, 0)}, view, [&](const QPoint* p, int n) { line.assign(p, p + n); });
    ASSERT_EQ(line.size(), 2u);
    EXPECT_LE(line.front().x(), -3);
    EXPECT_GE(line.back().x(), 103);
    EXPECT_EQ(line.front().y(), 50);
}

} // namespace
} // namespace tp::test
