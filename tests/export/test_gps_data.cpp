// The GPS export on real databases: subjects widened to every track of their pairing in the
// range, usable fixes only, names and unit texts under both settings files, subjects appended
// in order, and the scan and the load stopping between subjects.
#include "delivery/export_job.h"
#include "export/export_session.h"
#include "export/gps_data.h"
#include "foundation/globals.h"
#include "gps_fixture.h"

namespace tp::test {
namespace {

struct VectorSink : RecordSink {
    bool begin(qint64 total) override
    {
        expected = total;
        return true;
    }
    bool record(const QStringList& values) override
    {
        records.push_back(values);
        return true;
    }
    QStringList column(int c) const
    {
        QStringList out;
        for (const QStringList& r : records)
            out << r.at(c);
        return out;
    }
    qint64 expected = -1;
    std::vector<QStringList> records;
};

ExportRequest gpsRequest(const QStringList& fields, qint32 track,
                         const QString& settings = QStringLiteral("KRV.ini"))
{
    ExportRequest r;
    r.table = kTableGps;
    r.byDate = true;
    r.start = QStringLiteral("20040301");
    r.stop = QStringLiteral("20040331");
    r.fields = fields;
    r.currentTrackSubject = track;
    r.trackSubjects = {track};
    r.settingsFile = settings;
    return r;
}

ExportRequest subjectsRequest(const QStringList& fields, const std::vector<qint32>& tracks)
{
    ExportRequest r = gpsRequest(fields, qint32(tracks.size()));
    r.trackSubjects = {0};
    r.trackSubjects.insert(r.trackSubjects.end(), tracks.begin(), tracks.end());
    return r;
}

class GpsExport : public GpsDbTest {
protected:
    void SetUp() override
    {
        GpsDbTest::SetUp();
        if (!HasFatalFailure() && !IsSkipped())
            addSample();
    }
    // n more usable points on track 23.
    void addPoints(int n)
    {
        if (n == 0)
            return;
        QStringList rows;
        for (int i = 0; i < n; ++i)
            rows << QStringLiteral("(23, -121.5, 44.5, 20040303, %1)").arg(100000 + i);
        exec(QStringLiteral("INSERT INTO GPSCoordinates (TrackID, Longitude, Latitude, RcvDate, RcvTime) VALUES ") +
             rows.join(QLatin1Char(',')));
    }

    GpsAssembler assembler{db, feedback};
    bool cancel = false;
};

TEST_P(GpsExport, ASubjectIsEveryTrackOfItsPairingInTheRangeWithUsableFixesOnly)
{
    const QStringList fields = {"TrackID", "Date", "Time", "Longitude", "Latitude"};
    // Track 21 names employee 9101 with vehicle 9203: its tracks 22 and 21 in date order, each
    // in time order; not the -1 fixes, not track 25 (April), not track 23 (another vehicle).
    const ExportRequest request = gpsRequest(fields, 21);
    EXPECT_EQ(assembler.count(request), 3);
    const std::vector<QStringList> expected = {{"22", "20040302", "120000", "-122.125", "45.125"},
                                               {"21", "20040305", "80000", "-122.75", "45.5"},
                                               {"21", "20040305", "80010", "-122.5", "45.25"}};
    const PreviewResult preview = assembler.preview(request, 3);
    EXPECT_FALSE(preview.failed);
    EXPECT_EQ(preview.gridRows, 3);
    EXPECT_EQ(preview.rows, expected);
    EXPECT_TRUE(preview.dateFilled && preview.timeFilled);
    EXPECT_EQ(feedback.lastStatus, QStringLiteral("3  Record(s) found"));

    VectorSink sink;
    EXPECT_EQ(assembler.load(request, sink, cancel).outcome, LoadOutcome::Completed);
    EXPECT_EQ(sink.expected, 3);
    EXPECT_EQ(sink.records, expected);
    EXPECT_EQ(assembler.mark(request, nullptr), 0);   // points carry no mark

    // The file, formatted, through the save flow.
    ExportJob job;
    job.request = request;
    job.request.formatDate = job.request.formatTime = true;
    job.columns = {{"TrackID", "Number", "Track"}, {"Date", "Number", "Date"},
                   {"Time", "Number", "Time"}, {"Longitude", "Number", "Lon"}};
    job.fileName = path(QStringLiteral("gps.txt"));
    job.markAfterSuccess = false;
    EXPECT_EQ(runExport(job, assembler, feedback, cancel).outcome, ExportJobResult::Completed);
    EXPECT_EQ(readFile(job.fileName), QByteArray("\"Track\",\"Date\",\"Time\",\"Lon\"\r\n"
                                                 "22,\"03/02/2004\",\"12:00:00\",-122.125\r\n"
                                                 "21,\"03/05/2004\",\"8:00:00\",-122.75\r\n"
                                                 "21,\"03/05/2004\",\"8:00:10\",-122.5\r\n"));
}

TEST_P(GpsExport, NamesAndUnitTextsFollowTheSettingsFile)
{
    struct Case {
        const char* settings;
        qint32 track;
        QStringList fields;
        QStringList first;   // the first point's texts
    };
    const Case cases[] = {
        // No employee: "UnAssigned Individual" under either file.
        {"KRV.ini", 24, {"EmployeeFirstName", "EmployeeLastName", "LicenseNumber", "VehicleID"},
         {"UnAssigned Individual", "", "GPS-205", "9205"}},
        {"lumtrek.ini", 24, {"Assigned To", "Unit Identifier"}, {"UnAssigned Individual", "Van 205"}},
        {"KRV.ini", 22, {"EmployeeFirstName", "EmployeeLastName", "LicenseNumber"}, {"Ann", "Smith", "GPS-203"}},
        // The licence is looked up under "KRV.ini" only.
        {"lumtrek.ini", 22, {"Assigned To", "Unit Identifier", "LicenseNumber"}, {"Ann Smith", "Truck 203", ""}},
        // Employee and vehicle without rows.
        {"KRV.ini", 26, {"EmployeeFirstName", "EmployeeLastName", "LicenseNumber", "VehicleID"},
         {"Unknown", "Unknown", "Unknown", "9207"}},
        {"lumtrek.ini", 26, {"Assigned To", "Unit Identifier"}, {"Unknown", "Unknown"}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string(c.settings) + " track " + std::to_string(c.track));
        const ExportRequest request = gpsRequest(c.fields, c.track, QString::fromLatin1(c.settings));
        const PreviewResult preview = assembler.preview(request, 1);
        ASSERT_FALSE(preview.rows.empty());
        EXPECT_EQ(preview.rows.front(), c.first);
        VectorSink sink;
        ASSERT_EQ(assembler.load(request, sink, cancel).outcome, LoadOutcome::Completed);
        ASSERT_FALSE(sink.records.empty());
        EXPECT_EQ(sink.records.front(), c.first);   // grid and file agree
    }
    EXPECT_TRUE(feedback.messages().isEmpty());
}

TEST_P(GpsExport, SubjectsAreAppendedInListOrderAndCancelStopsBetweenThem)
{
    const ExportRequest request = subjectsRequest({"TrackID", "Time"}, {24, 21});
    EXPECT_EQ(assembler.count(request), 5);
    VectorSink sink;
    EXPECT_EQ(assembler.load(request, sink, cancel).outcome, LoadOutcome::Completed);
    EXPECT_EQ(sink.column(0), (QStringList{"24", "24", "22", "21", "21"}));
    EXPECT_EQ(sink.column(1), (QStringList{"70000", "70030", "120000", "80000", "80010"}));
    PreviewResult preview = assembler.preview(request, 5, 3);
    EXPECT_EQ(preview.gridRows, 3);
    EXPECT_EQ(preview.rows.back(), (QStringList{"22", "120000"}));

    // Cancel pressed once the first subject is in.
    VectorSink stopped;
    feedback.onYield = [&] {
        if (stopped.records.size() == 2)
            cancel = true;
    };
    EXPECT_EQ(assembler.load(request, stopped, cancel).outcome, LoadOutcome::Cancelled);
    EXPECT_EQ(stopped.column(0), (QStringList{"24", "24"}));
    EXPECT_EQ(feedback.lastStatus, kCancelStatus);
}

TEST_P(GpsExport, ASubjectWhoseTrackIsGoneIsToldAndSkipped)
{
    struct Case {
        const char* settings;
        QString message;
    };
    for (const Case& c : {Case{"KRV.ini", "There are no records to obtain for  Unknown  Unknown."},
                          Case{"lumtrek.ini", "There are no records to obtain for  Unassigned Individual  ."}}) {
        SCOPED_TRACE(c.settings);
        feedback.shown.clear();
        ExportRequest request = subjectsRequest({"TrackID"}, {99, 23});
        request.settingsFile = QString::fromLatin1(c.settings);
        VectorSink sink;
        EXPECT_EQ(assembler.load(request, sink, cancel).outcome, LoadOutcome::Completed);
        EXPECT_EQ(sink.column(0), QStringList{"23"});
        EXPECT_EQ(feedback.messages(), QStringList{c.message});
    }

    // Without a subject there is no track to start from.
    feedback.shown.clear();
    const ExportRequest none = gpsRequest({"TrackID"}, 0);
    EXPECT_EQ(assembler.count(none), 0);
    VectorSink sink;
    EXPECT_EQ(assembler.load(none, sink, cancel).outcome, LoadOutcome::Failed);
    EXPECT_TRUE(sink.records.empty());
    EXPECT_EQ(feedback.messages(), (QStringList{kNoTrackForEmployee, kNoTrackForEmployee}));
}

TEST_P(GpsExport, MoreThanTwoHundredPointsAskFirst)
{
    addPoints(199);   // track 23 now holds 200
    struct Case {
        int extra;
        bool asked;
    };
    for (const Case c : {Case{0, false}, Case{1, true}}) {
        SCOPED_TRACE(c.extra);
        addPoints(c.extra);
        feedback.shown.clear();
        VectorSink sink;
        const LoadResult r = assembler.load(gpsRequest({"TrackID"}, 23), sink, cancel);   // answered No
        EXPECT_EQ(feedback.questions().size(), c.asked ? 1 : 0);
        EXPECT_EQ(r.outcome, c.asked ? LoadOutcome::Declined : LoadOutcome::Completed);
        EXPECT_EQ(sink.records.size(), c.asked ? 0u : 200u);
        EXPECT_EQ(cancel, c.asked);
    }
}

// "Scan Database" through the session, as the window and the batch tool run it.
class GpsScan : public GpsExport {
protected:
    void SetUp() override
    {
        GpsExport::SetUp();
        globals().SettingsFileName = QStringLiteral("KRV.ini");
    }
    void choose(const TrackSubjectChoice& subjects)
    {
        ASSERT_TRUE(session.selectDataSet(kListGps));
        ASSERT_EQ(session.AvailabilityResult, 1);
        for (const char* f : {"TrackID", "Date", "Time"})
            ASSERT_TRUE(session.tickField(session.fieldRow(QLatin1String(f)), true));
        ASSERT_TRUE(session.selectAllRecords());
        ASSERT_TRUE(session.chooseTrackSubjects(subjects));
        ASSERT_TRUE(session.selectRecordsByDate());
        session.setStartDate(QStringLiteral("03/01/2004"));
        ASSERT_EQ(session.setStopDate(QStringLiteral("03/31/2004")), DateRange::Valid);
    }
    static TrackSubjectChoice all()
    {
        return {4, {0, 24, 22, 23, 26}};
    }

    ScopedFoundation foundation;
    ExportSession session{db, feedback};
};

TEST_P(GpsScan, AllSubjectsAreCountedAndShownInOrderAndCancelStopsBetweenThem)
{
    choose(all());
    ScanOutcome out = session.scanDatabase();
    EXPECT_EQ(out.kind, ScanOutcome::Found);
    EXPECT_TRUE(out.dateFormat && out.timeFormat);
    EXPECT_EQ(session.ExportRecordCount, 7);
    EXPECT_EQ(feedback.lastStatus, QStringLiteral("7  Record(s) found"));
    QStringList tracks;
    for (int r = 1; r <= session.recordGrid().rowCount(); ++r)
        tracks << session.recordGrid().text(2, r);
    EXPECT_EQ(tracks, (QStringList{"24", "24", "22", "21", "21", "23", "26"}));

    // The file holds what the grid showed.
    ASSERT_EQ(session.saveExportFile(path(QStringLiteral("all.txt"))).outcome, ExportJobResult::Completed);
    EXPECT_EQ(readFile(path(QStringLiteral("all.txt"))),
              QByteArray("\"TrackID\",\"Date\",\"Time\"\r\n24,20040304,70000\r\n24,20040304,70030\r\n"
                         "22,20040302,120000\r\n21,20040305,80000\r\n21,20040305,80010\r\n"
                         "23,20040303,90000\r\n26,20040306,110000\r\n"));

    // Cancel pressed while the first subject's rows are shown.
    choose(all());
    feedback.onYield = [&] { session.CancelRequested = true; };
    out = session.scanDatabase();
    EXPECT_EQ(out.kind, ScanOutcome::Cancelled);
    EXPECT_EQ(session.recordGrid().rowCount(), 0);
    EXPECT_EQ(feedback.lastStatus, kCancelStatus);
    EXPECT_FALSE(session.CancelRequested);
}

TEST_P(GpsScan, OneSubjectWithoutPointsInTheRangeEndsLikeCancel)
{
    choose({25, {25}});
    session.setStartDate(QStringLiteral("03/01/2004"));
    session.setStopDate(QStringLiteral("03/02/2004"));   // track 22 only: a point on 03/02
    EXPECT_EQ(session.scanDatabase().kind, ScanOutcome::Found);
    EXPECT_EQ(session.ExportRecordCount, 1);

    choose({23, {23}});
    session.setStopDate(QStringLiteral("03/02/2004"));   // track 23 is on 03/03
    const ScanOutcome out = session.scanDatabase();
    EXPECT_EQ(out.kind, ScanOutcome::Cancelled);
    EXPECT_TRUE(out.selectionReset);
}

INSTANTIATE_TEST_SUITE_P(Engines, GpsExport, ::testing::Bool(), gpsEngineName);
INSTANTIATE_TEST_SUITE_P(Engines, GpsScan, ::testing::Bool(), gpsEngineName);

} // namespace
} // namespace tp::test
