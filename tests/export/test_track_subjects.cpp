// The subject list of the GPS export: one entry per employee-vehicle pairing, standing for its
// earliest track, the track limit, the texts for missing rows, and what OK leaves behind.
#include "export/track_subjects.h"
#include "gps_fixture.h"

namespace tp::test {
namespace {

using Subjects = GpsDbTest;

QStringList texts(const TrackSubjectList& list)
{
    QStringList out;
    for (const TrackSubjectEntry& e : list.entries())
        out << e.text;
    return out;
}

std::vector<qint32> tracks(const TrackSubjectList& list)
{
    std::vector<qint32> out;
    for (const TrackSubjectEntry& e : list.entries())
        out.push_back(e.trackId);
    return out;
}

TEST_P(Subjects, TheLimitRefusesTwentyFiveHundredTracksButListsOneFewer)
{
    struct Case {
        int tracks;
        bool listed;
    };
    for (const Case c : {Case{2499, true}, Case{2500, false}}) {
        SCOPED_TRACE(c.tracks);
        exec(QStringLiteral("DELETE FROM EmployeeTrackActivity"));
        addTracks(c.tracks, 40);
        feedback.shown.clear();
        TrackSubjectList list;
        EXPECT_EQ(list.load(db, feedback, QStringLiteral("KRV.ini")), c.listed);
        if (c.listed) {
            EXPECT_TRUE(feedback.messages().isEmpty());
            ASSERT_EQ(list.entries().size(), 41u);
            EXPECT_EQ(list.entries()[0].text, kAllSubjects);
            // Employee 1 drove tracks 40, 80, ...: the entry stands for the earliest.
            EXPECT_EQ(list.entries()[1].trackId, 40);
            EXPECT_EQ(list.entries()[1].text, QStringLiteral("UnAssigned Individual - UnAssigned Tracker"));
        } else {
            EXPECT_EQ(feedback.messages(), QStringList{kTooManyTracks});
            EXPECT_EQ(texts(list), QStringList{kTrackActivityNotAvailable});
            // Nothing there to choose.
            EXPECT_EQ(list.accept(0, feedback)->CurrentTrackSubject, 0);
        }
    }
}

TEST_P(Subjects, EachPairingOnceWithItsEarliestTrackUnderBothSettingsFiles)
{
    addSample();
    // A first pairing of no employee and no vehicle is never listed, nor its later tracks.
    exec(QStringLiteral("INSERT INTO EmployeeTrackActivity (TrackID, EmployeeNumber, VehicleNumber, "
                        "TrackingDate) VALUES (30, 0, 0, 20040301), (31, 0, 0, 20040309)"));
    struct Case {
        QString settings;
        QStringList texts;
    };
    const Case cases[] = {
        {QStringLiteral("KRV.ini"),
         {kAllSubjects, "UnAssigned Individual - GPS-205", "Ann - GPS-203", "Ann - GPS-205",
          "UnAssigned Individual - UnAssigned Tracker"}},
        {QStringLiteral("lumtrek.ini"),
         {kAllSubjects, "UnAssigned Individual - Van 205", "Ann Smith - Truck 203", "Ann Smith - Van 205",
          "UnAssigned Individual - UnAssigned Tracker"}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.settings.toStdString());
        TrackSubjectList list;
        ASSERT_TRUE(list.load(db, feedback, c.settings));
        EXPECT_EQ(texts(list), c.texts);
        // Tracks 21, 22 and 25 share a pairing: the entry stands for 22, the earliest by date.
        EXPECT_EQ(tracks(list), (std::vector<qint32>{0, 24, 22, 23, 26}));
        EXPECT_EQ(list.entryOfTrack(22), 2);
        EXPECT_EQ(list.entryOfTrack(21), -1);
        EXPECT_EQ(list.entryOfTrack(30), -1);
    }
    EXPECT_TRUE(feedback.messages().isEmpty());
}

TEST_P(Subjects, OkLeavesOneSubjectOrAllOfThemOrAsksForAChoice)
{
    addSample();
    exec(QStringLiteral("INSERT INTO EmployeeTrackActivity (TrackID, EmployeeNumber, VehicleNumber, "
                        "TrackingDate) VALUES (27, 9101, 9207, 20040307)"));
    TrackSubjectList list;
    ASSERT_TRUE(list.load(db, feedback, QStringLiteral("KRV.ini")));
    ASSERT_EQ(list.entries().size(), 6u);   // "All Subjects" and five subjects

    const auto all = list.accept(0, feedback);
    ASSERT_TRUE(all);
    EXPECT_EQ(all->CurrentTrackSubject, 5);
    EXPECT_EQ(all->TrackSubjects, (std::vector<qint32>{0, 24, 22, 23, 27, 26}));

    const auto one = list.accept(3, feedback);
    ASSERT_TRUE(one);
    EXPECT_EQ(one->CurrentTrackSubject, 23);
    EXPECT_EQ(one->TrackSubjects, std::vector<qint32>{23});
    EXPECT_TRUE(feedback.messages().isEmpty());

    EXPECT_FALSE(list.accept(-1, feedback));
    EXPECT_EQ(feedback.messages(), QStringList{kPleaseMakeASelection});
}

TEST_P(Subjects, AnEmptyTrackTableOffersNothingToChoose)
{
    TrackSubjectList list;
    ASSERT_TRUE(list.load(db, feedback, QStringLiteral("lumtrek.ini")));
    EXPECT_EQ(texts(list), (QStringList{kAllSubjects, kNoTrackActivity}));
    const auto choice = list.accept(0, feedback);
    ASSERT_TRUE(choice);
    EXPECT_EQ(choice->CurrentTrackSubject, 0);
}

INSTANTIATE_TEST_SUITE_P(Engines, Subjects, ::testing::Bool(), gpsEngineName);

} // namespace
} // namespace tp::test
