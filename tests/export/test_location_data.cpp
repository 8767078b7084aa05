// Map locations and pinpoints against real databases: the empty table, the question before a
// long map location scan, the status texts, the pinpoint columns and the fields a map location
// file takes from the scan.
#include "delivery/export_job.h"
#include "export/location_data.h"
#include "support/export_rows.h"
#include "time_fixture.h"

namespace tp::test {
namespace {

ExportRequest locationRequest(const char* settings, const QStringList& fields)
{
    ExportRequest r;
    r.table = kTableLocations;
    r.settingsFile = QLatin1String(settings);
    r.fields = fields;
    return r;
}

const char* const kKrv = "KRV.ini";
const char* const kLumtrek = "lumtrek.ini";

class LocationExport : public TimeDbTest, public ::testing::WithParamInterface<bool> {
protected:
    LocationExport() { usePostgres = GetParam(); }

    void addLocations(const std::vector<LocationRow>& rows) { exec(insertLocationRows(rows)); }
    ExportJobResult run(const char* settings, const QStringList& names)
    {
        ExportJob job;
        job.request = locationRequest(settings, names);
        for (const QString& n : names)
            job.columns.push_back({n, QStringLiteral("Text"), n});
        job.fileName = path(QStringLiteral("locations.txt"));
        job.markAfterSuccess = false;
        return runExport(job, assembler, feedback, cancel);
    }
    QByteArray output() const { return readFile(path(QStringLiteral("locations.txt"))); }

    LocationAssembler assembler{db, feedback};
    bool cancel = false;
};

TEST_P(LocationExport, EmptyTableEndsEachScanItsOwnWay)
{
    const QStringList fields = {QStringLiteral("City")};
    EXPECT_EQ(assembler.available(locationRequest(kKrv, fields)), 0);

    // Map locations: a message, nothing counted.
    EXPECT_EQ(assembler.scanCount(locationRequest(kKrv, fields), cancel), 0);
    EXPECT_FALSE(cancel);
    EXPECT_EQ(feedback.messages(), QStringList{QStringLiteral("No records found.")});

    // Pinpoints: the count never looked for an empty table and fails on it.
    feedback.shown.clear();
    EXPECT_EQ(assembler.scanCount(locationRequest(kLumtrek, fields), cancel), -1);
    EXPECT_EQ(feedback.messages(), QStringList{QStringLiteral("Cannot read Common Location Record(s)")});
    EXPECT_EQ(feedback.lastStatus, QStringLiteral("Error Retrieving Record # 0"));
    EXPECT_TRUE(feedback.questions().isEmpty());

    // A save that finds the table emptied since the scan writes nothing.
    feedback.shown.clear();
    const ExportJobResult r = run(kLumtrek, fields);
    EXPECT_EQ(r.outcome, ExportJobResult::Failed);
    EXPECT_EQ(r.records, 0);
    EXPECT_EQ(feedback.messages(), QStringList{QStringLiteral("Cannot read Common Location Record(s)")});
}

TEST_P(LocationExport, OnlyMapLocationsAskBeforeMoreThanTwoHundred)
{
    addLocations(manyLocations(200));
    const QStringList fields = {QStringLiteral("City")};
    EXPECT_EQ(assembler.scanCount(locationRequest(kKrv, fields), cancel), 200);
    EXPECT_TRUE(feedback.questions().isEmpty());

    addLocations(manyLocations(1, 201));
    feedback.answers = {AnswerNo};
    EXPECT_EQ(assembler.scanCount(locationRequest(kKrv, fields), cancel), 0);
    EXPECT_TRUE(cancel);
    EXPECT_EQ(feedback.questions(),
              QStringList{QStringLiteral("There are 201 records to be exported. This may take some "
                                         "time. Do you wish to continue?")});
    feedback.answers = {AnswerYes};
    EXPECT_EQ(assembler.scanCount(locationRequest(kKrv, fields), cancel), 201);
    EXPECT_FALSE(cancel);
    EXPECT_EQ(feedback.lastStatus, QStringLiteral("First 20 records out of 201 found"));

    // Pinpoints never ask, in the scan or in the save.
    feedback.shown.clear();
    EXPECT_EQ(assembler.scanCount(locationRequest(kLumtrek, fields), cancel), 201);
    const ExportJobResult r = run(kLumtrek, fields);
    EXPECT_EQ(r.outcome, ExportJobResult::Completed);
    EXPECT_EQ(r.records, 201);
    EXPECT_EQ(r.marked, -1);   // locations are never marked
    EXPECT_TRUE(feedback.questions().isEmpty());
    EXPECT_TRUE(feedback.statuses.contains(QStringLiteral("201  Record(s) found")));
}

TEST_P(LocationExport, StatusAfterTwentyAndNineteenRows)
{
    const QStringList fields = {QStringLiteral("LocationName")};
    const std::tuple<int, const char*, const char*> cases[] = {
        {20, "First 20 records out of 20 found", "20  Record(s) found"},
        {19, "19  Record(s) found", "19  Record(s) found"}};
    for (const auto& [n, map, pinpoint] : cases) {
        exec("DELETE FROM CommonLocations");
        addLocations(manyLocations(n));
        EXPECT_EQ(assembler.scanCount(locationRequest(kKrv, fields), cancel), n);
        EXPECT_EQ(feedback.lastStatus, QLatin1String(map));
        const PreviewResult p = assembler.preview(locationRequest(kKrv, fields), n);
        EXPECT_EQ(p.rows.size(), std::size_t(n));
        EXPECT_EQ(feedback.lastStatus, QLatin1String(map));
        EXPECT_EQ(assembler.preview(locationRequest(kLumtrek, {QStringLiteral("PinpointName")}), n).gridRows, n);
        EXPECT_EQ(feedback.lastStatus, QLatin1String(pinpoint));
    }
    // More rows than the grid holds: 20 shown, the count told.
    addLocations(manyLocations(5, 100));
    const PreviewResult p = assembler.preview(locationRequest(kKrv, fields), 24);
    EXPECT_EQ(p.gridRows, 20);
    EXPECT_EQ(p.rows.size(), 20u);
    EXPECT_EQ(feedback.lastStatus, QStringLiteral("First 20 records out of 24 found"));
}

TEST_P(LocationExport, PinpointColumnsAndNoBranchNumber)
{
    addLocations({{.number = 7, .name = "North \"Yard\"", .branch = 3}, {.number = 12, .name = "Pier"}});
    const QStringList fields = {QStringLiteral("PinpointNumber"), QStringLiteral("PinpointName"),
                                QStringLiteral("City"), QStringLiteral("Longitude"),
                                QStringLiteral("BranchNumber")};
    const PreviewResult p = assembler.preview(locationRequest(kLumtrek, fields), 2);
    ASSERT_EQ(p.rows.size(), 2u);
    EXPECT_EQ(p.rows[0], QStringList({"7", "North \"Yard\"", "Tulsa", "-95.9928", ""}));

    run(kLumtrek, fields);
    EXPECT_EQ(output(), QByteArray("\"PinpointNumber\",\"PinpointName\",\"City\",\"Longitude\",\"BranchNumber\"\r\n"
                                   "\"7\",\"North \"Yard\"\",\"Tulsa\",\"-95.9928\",\"\"\r\n"
                                   "\"12\",\"Pier\",\"Tulsa\",\"-95.9928\",\"\"\r\n"));
    // Map locations carry their branch.
    const PreviewResult map = assembler.preview(
        locationRequest(kKrv, {QStringLiteral("LocationNumber"), QStringLiteral("BranchNumber")}), 2);
    EXPECT_EQ(map.rows[0], QStringList({"7", "3"}));
}

TEST_P(LocationExport, MapLocationFileTakesNumberNameAndBranchFromTheScan)
{
    addLocations({{.number = 1, .name = "Depot", .branch = 4}, {.number = 2, .name = "Yard", .branch = 5}});
    const QStringList fields = {QStringLiteral("LocationNumber"), QStringLiteral("LocationName"),
                                QStringLiteral("City"), QStringLiteral("BranchNumber")};
    ASSERT_EQ(assembler.scanCount(locationRequest(kKrv, fields), cancel), 2);
    // Between the scan and the save someone edits the table and adds a location.
    exec("UPDATE CommonLocations SET LocationName = 'Renamed', City = 'Tyler', BranchNumber = 9");
    addLocations({{.number = 3, .name = "New"}});

    const ExportJobResult r = run(kKrv, fields);
    EXPECT_EQ(r.records, 3);
    // The scan's number, name and branch; the city read again; a row the scan did not see has
    // none of the three.
    EXPECT_EQ(output(), QByteArray("\"LocationNumber\",\"LocationName\",\"City\",\"BranchNumber\"\r\n"
                                   "\"1\",\"Depot\",\"Tyler\",\"4\"\r\n\"2\",\"Yard\",\"Tyler\",\"5\"\r\n"
                                   "\"\",\"\",\"Tulsa\",\"\"\r\n"));
}

TEST_P(LocationExport, UnreadableRowIsAFailure)
{
    addLocations(manyLocations(3));
    exec("UPDATE CommonLocations SET City = NULL WHERE CommonLocationNumber = 2");
    const QStringList fields = {QStringLiteral("City")};
    EXPECT_EQ(assembler.scanCount(locationRequest(kKrv, fields), cancel), -1);
    EXPECT_EQ(feedback.messages(), QStringList{QStringLiteral("Cannot read Common Location record # 2")});
    EXPECT_EQ(feedback.lastStatus, QStringLiteral("Error Retrieving Record # 2"));
    feedback.shown.clear();
    EXPECT_TRUE(assembler.preview(locationRequest(kKrv, fields), 3).failed);
    EXPECT_EQ(feedback.messages(), QStringList{QStringLiteral("Cannot read Common Location Record # 2")});
    feedback.shown.clear();
    const ExportJobResult r = run(kLumtrek, fields);
    EXPECT_EQ(r.outcome, ExportJobResult::Failed);
    EXPECT_EQ(r.status, QStringLiteral("Cannot read Common Location Record(s)") + kExportUnsuccessful);
    EXPECT_EQ(feedback.messages(), QStringList{QStringLiteral("Cannot read Common Location Record(s)")});
}

std::string engineName(const ::testing::TestParamInfo<bool>& info)
{
    return info.param ? "PostgreSQL" : "SQLite";
}

INSTANTIATE_TEST_SUITE_P(Engines, LocationExport, ::testing::Bool(), engineName);

} // namespace
} // namespace tp::test
