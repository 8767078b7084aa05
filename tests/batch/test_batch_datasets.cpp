// tallyport-batch export of inventory, map locations and pinpoints: the built binary on a real
// SQLite site, byte for byte, under both settings files.
#include "batch_fixture.h"

#include "support/export_rows.h"

#include <QFile>

namespace tp::test {
namespace {

const QString kCompleted = QStringLiteral("Export Completed Successfully\n");

class BatchDataSets : public BatchTest {
protected:
    BatchRun exportSet(const char* settings, const char* user, const char* dataSet, const QString& fields,
                       const QString& file, const QStringList& extra = {}) const
    {
        return run(QStringList{"export", "--settings", settings, "--user", user, "--dataset", dataSet,
                               "--fields", fields, "--output", file} +
                   extra);
    }
    void setLocations(const std::vector<LocationRow>& rows)
    {
        exec("DELETE FROM CommonLocations");
        exec(insertLocationRows(rows));
    }
    QString inventoryMarks() const
    {
        return site.rows("SELECT InventoryHistoryID, Approved, ExportID FROM InventoryHistory ORDER BY InventoryHistoryID");
    }
};

TEST_F(BatchDataSets, InventoryFileAndMarks)
{
    exec("DELETE FROM InventoryHistory");
    exec(insertInventoryRows({{.id = 1, .employee = 9001, .quantity = 4, .date = 20240105, .time = 93000},
                              {.id = 2, .employee = 9001, .date = 20240110},
                              {.id = 3, .employee = 9003, .quantity = 12, .date = 20240115},
                              {.id = 4, .employee = 9002, .approved = 0},
                              {.id = 5, .employee = 9002, .approved = 2, .exportId = 1}}));
    const BatchRun r = exportSet("KRV.ini", "1", "Inventory Data",
                                 "InventoryHistoryID=Id,EmployeeLastName,UsedQuantity,Date,Time", "inv.txt",
                                 {"--format-time"});
    ASSERT_EQ(r.exitCode, 0) << r.err.toStdString();
    EXPECT_EQ(r.out, kCompleted);
    EXPECT_EQ(readBytes(path("inv.txt")),
              QByteArray("\"Id\",\"EmployeeLastName\",\"UsedQuantity\",\"Date\",\"Time\"\r\n"
                         "1,\"B\xe9ranger\",4,20240105,\"9:30:00\"\r\n"
                         "2,\"B\xe9ranger\",3,20240110,\"14:30:05\"\r\n"
                         "3,\"Unknown\",12,20240115,\"14:30:05\"\r\n"));
    EXPECT_EQ(inventoryMarks(), QStringLiteral("1:2:1 2:2:1 3:2:1 4:0:0 5:2:1"));

    const BatchRun again = exportSet("KRV.ini", "1", "Inventory Data", "InventoryHistoryID", "again.txt");
    EXPECT_EQ(again.exitCode, 1);
    EXPECT_EQ(again.out, "There are no records available.\n");
    EXPECT_FALSE(QFile::exists(path("again.txt")));
}

TEST_F(BatchDataSets, MapLocationsUnderKrvAskOverTwoHundred)
{
    setLocations({{.number = 3, .name = "Depot", .branch = 1}, {.number = 8, .name = "Caf\u00e9 Yard", .city = "Tyler"}});
    const BatchRun r = exportSet("KRV.ini", "1", "Map Locations Data",
                                 "LocationNumber=No,LocationName,City,Latitude,BranchNumber", "map.txt");
    ASSERT_EQ(r.exitCode, 0) << r.err.toStdString();
    EXPECT_EQ(r.out, kCompleted);
    EXPECT_EQ(readBytes(path("map.txt")),
              QByteArray("\"No\",\"LocationName\",\"City\",\"Latitude\",\"BranchNumber\"\r\n"
                         "3,\"Depot\",\"Tulsa\",\"36.154\",1\r\n"
                         "8,\"Caf\xe9 Yard\",\"Tyler\",\"36.154\",2\r\n"));

    setLocations(manyLocations(201));
    const BatchRun no = exportSet("KRV.ini", "1", "Map Locations Data", "LocationNumber", "big.txt");
    EXPECT_EQ(no.exitCode, 1);
    EXPECT_TRUE(no.err.startsWith("There are 201 records to be exported.")) << no.err.toStdString();
    EXPECT_TRUE(no.err.endsWith("\n\nThe export was cancelled; nothing was written.\n\n")) << no.err.toStdString();
    EXPECT_EQ(no.out, "Cancel\n");
    EXPECT_FALSE(QFile::exists(path("big.txt")));
    const BatchRun yes = exportSet("KRV.ini", "1", "Map Locations Data", "LocationNumber", "big.txt", {"--yes"});
    ASSERT_EQ(yes.exitCode, 0) << yes.err.toStdString();
    const QByteArray big = readBytes(path("big.txt"));
    EXPECT_EQ(big.count("\r\n"), 202);
    EXPECT_TRUE(big.endsWith("\r\n201\r\n"));

    // Locations have no date range.
    const BatchRun dated = exportSet("KRV.ini", "1", "Map Locations Data", "LocationNumber", "dated.txt",
                                     {"--from", "01/01/2024", "--to", "01/31/2024"});
    EXPECT_EQ(dated.exitCode, 2);
    EXPECT_TRUE(dated.err.contains("--from and --to are not offered")) << dated.err.toStdString();
}

TEST_F(BatchDataSets, PinpointsUnderLumtrekNeverAsk)
{
    std::vector<LocationRow> rows = manyLocations(250);
    rows[0].name = QStringLiteral("North \"Pier\"");
    setLocations(rows);
    const BatchRun r = exportSet("lumtrek.ini", "3", "Pinpoint Data", "PinpointName,State,Longitude=Lon", "pin.txt");
    ASSERT_EQ(r.exitCode, 0) << r.err.toStdString();
    EXPECT_TRUE(r.err.isEmpty()) << r.err.toStdString();
    EXPECT_EQ(r.out, kCompleted);
    const QByteArray bytes = readBytes(path("pin.txt"));
    EXPECT_TRUE(bytes.startsWith("\"PinpointName\",\"State\",\"Lon\"\r\n"
                                 "\"North \"Pier\"\",\"OK\",\"-95.9928\"\r\n"
                                 "\"Site 2\",\"OK\",\"-95.9928\"\r\n"))
        << bytes.left(200).toStdString();
    EXPECT_EQ(bytes.count("\r\n"), 251);

    // The pinpoint catalogue has no BranchNumber.
    const BatchRun branch = exportSet("lumtrek.ini", "3", "Pinpoint Data", "BranchNumber", "branch.txt");
    EXPECT_EQ(branch.exitCode, 2);
}

} // namespace
} // namespace tp::test
