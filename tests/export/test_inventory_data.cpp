// The inventory export against real databases: the texts it tells, the question before a long
// export, the names it looks up, the fields it never writes and the rows it marks.
#include "export/export_catalogue.h"
#include "delivery/export_job.h"
#include "export/inventory_data.h"
#include "support/export_rows.h"
#include "time_fixture.h"

namespace tp::test {
namespace {

ExportRequest inventoryRequest(const QStringList& fields = {})
{
    ExportRequest r;
    r.table = kTableInventory;
    r.settingsFile = QStringLiteral("KRV.ini");
    r.fields = fields;
    return r;
}

ExportRequest datedInventory(const QString& start, const QString& stop)
{
    ExportRequest r = inventoryRequest();
    r.byDate = true;
    r.start = start;
    r.stop = stop;
    return r;
}

// The columns of the named catalogue fields, typed as the catalogue types them.
std::vector<OutputColumn> columns(const QStringList& names)
{
    std::vector<OutputColumn> out;
    for (const QString& name : names) {
        QString type = QStringLiteral("Number");
        for (const CatalogueField& f : DataSetInfo(ExportDataType::InventoryData).fields)
            if (f.name == name)
                type = f.type;
        out.push_back({name, type, name});
    }
    return out;
}

// Keeps what a load hands out; can change the table while the load runs.
struct KeepingSink : RecordSink {
    bool begin(qint64) override { return true; }
    bool record(const QStringList& values) override
    {
        lines << values.join(QLatin1Char('|'));
        if (onRecord)
            onRecord(lines.size());
        return true;
    }
    QStringList lines;
    std::function<void(qsizetype)> onRecord;
};

class InventoryExport : public TimeDbTest, public ::testing::WithParamInterface<bool> {
protected:
    InventoryExport() { usePostgres = GetParam(); }

    void addInventory(const std::vector<InventoryRow>& rows) { exec(insertInventoryRows(rows)); }
    // n waiting movements of employee 17, ids from firstId.
    void addMany(int n, qint64 firstId = 1)
    {
        std::vector<InventoryRow> rows;
        for (int i = 0; i < n; ++i)
            rows.push_back({.id = firstId + i, .time = 80000 + i});
        addInventory(rows);
    }
    ExportJobResult run(const QStringList& names, const ExportRequest& request = inventoryRequest())
    {
        ExportJob job;
        job.request = request;
        job.columns = columns(names);
        job.fileName = path(QStringLiteral("inventory.txt"));
        job.database = &db;
        return runExport(job, assembler, feedback, cancel);
    }
    QByteArray output() const { return readFile(path(QStringLiteral("inventory.txt"))); }
    // "id:Approved:ExportID" of every movement, in id order.
    QString marks()
    {
        QStringList out;
        RecordsetPtr rs = db.RecSet_Forward(QStringLiteral(
            "SELECT InventoryHistoryID, Approved, ExportID FROM InventoryHistory ORDER BY InventoryHistoryID"));
        for (; rs && !rs->atEnd(); rs->moveNext())
            out << QStringLiteral("%1:%2:%3").arg(rs->value(0).toLongLong()).arg(rs->value(1).toInt())
                       .arg(rs->value(2).toInt());
        if (rs)
            db.RS_Close(rs);
        return out.join(QLatin1Char(' '));
    }

    InventoryAssembler assembler{db, feedback};
    bool cancel = false;
};

TEST_P(InventoryExport, EveryCatalogueFieldButNeverJobRecordID)
{
    addEmployee(17, QStringLiteral("John"), QStringLiteral("Smith"));
    addInventory({{.id = 41, .jobRecord = 987654}});
    QStringList all;
    for (const CatalogueField& f : DataSetInfo(ExportDataType::InventoryData).fields)
        all << f.name;
    EXPECT_FALSE(all.contains(QStringLiteral("JobRecordID")));

    const ExportJobResult r = run(all);
    EXPECT_EQ(r.status, kExportCompleted);
    EXPECT_EQ(output(), QByteArray("\"InventoryHistoryID\",\"InventoryNumber\",\"EmployeeID\","
                                   "\"EmployeeFirstName\",\"EmployeeLastName\",\"CustomerID\","
                                   "\"UsedQuantity\",\"Date\",\"Time\",\"Approved\",\"ExportID\"\r\n"
                                   "41,1001,17,\"John\",\"Smith\",300,3,20050131,143005,1,0\r\n"));
    EXPECT_EQ(r.marked, 1);
    EXPECT_EQ(marks(), QStringLiteral("41:2:1"));

    // Even asked for by name, the slot stays empty: the job record is never read.
    exec("UPDATE InventoryHistory SET Approved = 1, ExportID = 0");
    run({QStringLiteral("JobRecordID"), QStringLiteral("InventoryHistoryID")});
    EXPECT_EQ(output(), QByteArray("\"JobRecordID\",\"InventoryHistoryID\"\r\n\"\",41\r\n"));
    EXPECT_FALSE(output().contains("987654"));
}

TEST_P(InventoryExport, StatusTextsOfLoadsAndPreviews)
{
    // Load: 20 records and more say "First 20 ... found"; fewer give the count.
    const std::pair<int, const char*> loads[] = {{19, "19  Record(s) found"},
                                                 {20, "First 20 records out of 20 found"}};
    qint64 firstId = 1;
    for (const auto& [n, text] : loads) {
        addMany(n, firstId);
        firstId += n;
        feedback.statuses.clear();
        const ExportJobResult r = run({QStringLiteral("InventoryHistoryID")});
        EXPECT_EQ(r.records, n);
        EXPECT_TRUE(feedback.statuses.contains(QLatin1String(text))) << n;
        EXPECT_TRUE(feedback.statuses.contains(QStringLiteral("Retrieving Record # %1 Of %1").arg(n)));
        EXPECT_EQ(feedback.lastStatus, kExportCompleted);
    }

    // Preview: the grid takes at most 20 rows; note the two blanks on each side of "out of".
    addMany(25, 100);
    const ExportRequest all = inventoryRequest({QStringLiteral("InventoryHistoryID")});
    EXPECT_EQ(assembler.count(all), 25);
    PreviewResult p = assembler.preview(all, 25);
    EXPECT_EQ(p.gridRows, 20);
    EXPECT_EQ(p.rows.size(), 20u);
    EXPECT_EQ(feedback.lastStatus, QStringLiteral("20  out of 25  Records"));
    exec("UPDATE InventoryHistory SET Approved = 2 WHERE InventoryHistoryID > 106");
    p = assembler.preview(all, 7);
    EXPECT_EQ(p.rows.size(), 7u);
    EXPECT_EQ(p.rows.back(), QStringList{QStringLiteral("106")});
    EXPECT_EQ(feedback.lastStatus, QStringLiteral("7  Record(s) found"));

    // Nothing waiting: the count says so with two blanks.
    exec("UPDATE InventoryHistory SET Approved = 2");
    EXPECT_EQ(assembler.count(all), 0);
    EXPECT_EQ(feedback.lastStatus, QStringLiteral("0  Record(s) found"));
    // A date range tells nothing at all.
    feedback.statuses.clear();
    exec("UPDATE InventoryHistory SET Approved = 1, ExportID = 0 WHERE InventoryHistoryID < 4");
    ExportRequest dated = datedInventory("20050101", "20050131");
    dated.fields = all.fields;
    EXPECT_EQ(assembler.count(dated), 3);
    EXPECT_EQ(assembler.preview(dated, 3).rows.size(), 3u);
    KeepingSink sink;
    EXPECT_EQ(assembler.load(dated, sink, cancel).outcome, LoadOutcome::Completed);
    EXPECT_EQ(sink.lines, QStringList({"1", "2", "3"}));
    EXPECT_TRUE(feedback.statuses.isEmpty()) << feedback.statuses.join('|').toStdString();
}

TEST_P(InventoryExport, AsksBeforeMoreThanTwoHundredAndNeverYields)
{
    addMany(200);
    ExportJobResult r = run({QStringLiteral("InventoryHistoryID")});
    EXPECT_TRUE(feedback.questions().isEmpty());
    EXPECT_EQ(r.records, 200);
    EXPECT_EQ(r.marked, 200);

    addMany(201, 1001);
    feedback.answers = {AnswerNo};
    r = run({QStringLiteral("InventoryHistoryID")});
    ASSERT_EQ(feedback.questions(),
              QStringList{QStringLiteral("There are 201 records to be exported. This may take some "
                                         "time. Do you wish to continue?")});
    EXPECT_EQ(r.outcome, ExportJobResult::Declined);
    EXPECT_TRUE(cancel);
    EXPECT_EQ(scalar("SELECT COUNT(*) FROM InventoryHistory WHERE Approved = 1"), 201);

    feedback.answers = {AnswerYes};
    r = run({QStringLiteral("InventoryHistoryID")});
    EXPECT_FALSE(cancel);
    EXPECT_EQ(r.records, 201);
    EXPECT_EQ(r.marked, 201);
    // The inventory loads run to the end without letting the window in, so Cancel cannot stop them.
    EXPECT_EQ(feedback.yields, 0);
}

TEST_P(InventoryExport, NamesOfEmployeeIDWithOneLookupPerEmployee)
{
    addEmployee(17, QStringLiteral("John"), QStringLiteral("Smith"), QStringLiteral("J. Smith"));
    addEmployee(18, QStringLiteral(""), QStringLiteral("Doe"));
    const qint32 employees[] = {17, 17, 17, 18, 18, 99};
    for (int i = 0; i < 6; ++i)
        addInventory({{.id = i + 1, .employee = employees[i]}});
    const QStringList names = {QStringLiteral("EmployeeID"), QStringLiteral("EmployeeFirstName"),
                               QStringLiteral("EmployeeLastName")};
    run(names);
    EXPECT_EQ(output(), QByteArray("\"EmployeeID\",\"EmployeeFirstName\",\"EmployeeLastName\"\r\n"
                                   "17,\"John\",\"Smith\"\r\n17,\"John\",\"Smith\"\r\n17,\"John\",\"Smith\"\r\n"
                                   "18,\"Unknown\",\"Doe\"\r\n18,\"Unknown\",\"Doe\"\r\n"
                                   "99,\"Unknown\",\"Unknown\"\r\n"));
    // One look-up for each run of records of one employee.
    EXPECT_EQ(assembler.lookups().queriesRun(), 3);

    // "lumtrek.ini": the one Name, and "Unknown" for the last name in the file.
    exec("UPDATE InventoryHistory SET Approved = 1, ExportID = 0");
    ExportRequest lumtrek = inventoryRequest();
    lumtrek.settingsFile = QStringLiteral("lumtrek.ini");
    run(names, lumtrek);
    EXPECT_TRUE(output().startsWith("\"EmployeeID\",\"EmployeeFirstName\",\"EmployeeLastName\"\r\n"
                                    "17,\"J. Smith\",\"Unknown\"\r\n"))
        << output().toStdString();
}

TEST_P(InventoryExport, MarksExactlyTheRowsItWroteByTheirIds)
{
    addMany(4);
    addInventory({{.id = 9, .approved = 2, .exportId = 1}});
    KeepingSink sink;
    // While the load runs: a new movement starts to wait and the one just written is withdrawn.
    sink.onRecord = [&](qsizetype n) {
        if (n == 1) {
            db.Exec(insertInventoryRows({{.id = 3000}}));
            db.Exec("UPDATE InventoryHistory SET Approved = 0 WHERE InventoryHistoryID = 1");
        }
    };
    const ExportRequest request = inventoryRequest({QStringLiteral("InventoryNumber")});
    const LoadResult load = assembler.load(request, sink, cancel);
    ASSERT_EQ(load.outcome, LoadOutcome::Completed);
    ASSERT_EQ(load.rows.ids.size(), 4u);
    for (int i = 0; i < 4; ++i)
        EXPECT_EQ(load.rows.ids[std::size_t(i)], i + 1);

    EXPECT_EQ(assembler.mark(request, &load.rows), 3);
    // Written and still waiting: marked. Withdrawn since, new since, exported before: untouched.
    EXPECT_EQ(marks(), QStringLiteral("1:0:0 2:2:1 3:2:1 4:2:1 9:2:1 3000:1:0"));
    // A second mark of the same rows finds them no longer waiting.
    EXPECT_EQ(assembler.mark(request, &load.rows), 0);
    EXPECT_EQ(marks(), QStringLiteral("1:0:0 2:2:1 3:2:1 4:2:1 9:2:1 3000:1:0"));

    // Without rows every waiting movement of the selection is marked.
    EXPECT_EQ(assembler.mark(request, nullptr), 1);
    EXPECT_EQ(assembler.mark(request, nullptr), 0);
    EXPECT_EQ(feedback.lastStatus, QStringLiteral("0 Record(s) found"));
}

TEST_P(InventoryExport, DateRangeIsInclusiveInDateOrderAndMarksItsRows)
{
    const qint32 dates[] = {20041231, 20050101, 20050115, 20050131, 20050201};
    for (int i = 0; i < 5; ++i)
        addInventory({{.id = 10 - i, .date = dates[i]}});
    const ExportJobResult r = run({QStringLiteral("InventoryHistoryID"), QStringLiteral("Date")},
                                  datedInventory("20050101", "20050131"));
    EXPECT_EQ(output(), QByteArray("\"InventoryHistoryID\",\"Date\"\r\n9,20050101\r\n8,20050115\r\n"
                                   "7,20050131\r\n"));
    EXPECT_EQ(r.marked, 3);
    EXPECT_EQ(marks(), QStringLiteral("6:1:0 7:2:1 8:2:1 9:2:1 10:1:0"));
}

TEST_P(InventoryExport, FailuresTellTheirOwnTexts)
{
    addMany(3);
    exec("UPDATE InventoryHistory SET UsedQuantity = NULL WHERE InventoryHistoryID = 2");
    const QStringList fields = {QStringLiteral("InventoryHistoryID"), QStringLiteral("UsedQuantity")};

    ExportJobResult r = run(fields);
    EXPECT_EQ(r.outcome, ExportJobResult::Failed);
    EXPECT_EQ(r.status, QStringLiteral("Cannot read Inventory record") + kExportUnsuccessful);
    EXPECT_EQ(feedback.messages(), QStringList{QStringLiteral("Cannot read Inventory record")});
    EXPECT_TRUE(feedback.statuses.contains(QStringLiteral("Error retrieving record at # 2")));
    EXPECT_EQ(scalar("SELECT COUNT(*) FROM InventoryHistory WHERE Approved = 1"), 3);

    feedback.shown.clear();
    EXPECT_TRUE(assembler.preview(inventoryRequest(fields), 3).failed);
    EXPECT_EQ(feedback.messages(), QStringList{QStringLiteral("Cannot read Inventory record(s)")});
    EXPECT_EQ(feedback.lastStatus, QStringLiteral("Error retrieving record at # 2"));

    feedback.shown.clear();
    feedback.statuses.clear();
    r = run(fields, datedInventory("20050101", "20050131"));
    EXPECT_EQ(r.outcome, ExportJobResult::Failed);
    EXPECT_EQ(feedback.messages(), QStringList{QStringLiteral("Cannot read Inventory record(s)")});
    EXPECT_FALSE(feedback.statuses.join('|').contains(QStringLiteral("Error retrieving")));
}

TEST_P(InventoryExport, FormatsApplyToDateAndTime)
{
    addInventory({{.id = 1, .time = 93000}});
    ExportRequest r = inventoryRequest();
    r.formatDate = r.formatTime = true;
    run({QStringLiteral("Date"), QStringLiteral("Time"), QStringLiteral("UsedQuantity")}, r);
    EXPECT_EQ(output(), QByteArray("\"Date\",\"Time\",\"UsedQuantity\"\r\n\"01/31/2005\",\"9:30:00\",3\r\n"));
}

std::string engineName(const ::testing::TestParamInfo<bool>& info)
{
    return info.param ? "PostgreSQL" : "SQLite";
}

INSTANTIATE_TEST_SUITE_P(Engines, InventoryExport, ::testing::Bool(), engineName);

} // namespace
} // namespace tp::test
