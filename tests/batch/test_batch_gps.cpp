// tallyport-batch exporting "GPS Data": the subjects of --subject, the file byte for byte, and
// a track that stands for no subject refused before anything is written.
#include "batch_fixture.h"
#include "support/gps_rows.h"

#include <QFile>

namespace tp::test {
namespace {

class BatchGps : public BatchTest {
protected:
    void SetUp() override
    {
        BatchTest::SetUp();
        for (const QString& sql : gpsSampleStatements())
            exec(sql);
    }
    BatchRun exportGps(const QString& subject, const QString& file, const QString& settings = "KRV.ini",
                       const QString& fields = "EmployeeFirstName,EmployeeLastName,TrackID,Date,Time,"
                                               "Longitude,Latitude,Speed,LicenseNumber,VehicleID")
    {
        return run({"export", "--settings", settings, "--user", "1", "--dataset", "GPS Data", "--fields",
                    fields, "--from", "03/01/2004", "--to", "03/31/2004", "--subject", subject,
                    "--format-date", "--output", file});
    }
};

TEST_F(BatchGps, AllSubjectsWriteEveryUsablePointByteForByte)
{
    const BatchRun r = exportGps("all", path("all.txt"));
    ASSERT_EQ(r.exitCode, 0) << r.err.toStdString();
    EXPECT_EQ(r.out, QStringLiteral("Export Completed Successfully\n"));
    QFile f(path("all.txt"));
    ASSERT_TRUE(f.open(QIODevice::ReadOnly));
    EXPECT_EQ(f.readAll(),
              QByteArray("\"EmployeeFirstName\",\"EmployeeLastName\",\"TrackID\",\"Date\",\"Time\","
                         "\"Longitude\",\"Latitude\",\"Speed\",\"LicenseNumber\",\"VehicleID\"\r\n"
                         "\"UnAssigned Individual\",\"\",24,\"03/04/2004\",70000,-120.5,44,1,\"GPS-205\",9205\r\n"
                         "\"UnAssigned Individual\",\"\",24,\"03/04/2004\",70030,-120.25,44.25,2,\"GPS-205\",9205\r\n"
                         "\"Ann\",\"Smith\",22,\"03/02/2004\",120000,-122.125,45.125,30,\"GPS-203\",9203\r\n"
                         "\"Ann\",\"Smith\",21,\"03/05/2004\",80000,-122.75,45.5,0,\"GPS-203\",9203\r\n"
                         "\"Ann\",\"Smith\",21,\"03/05/2004\",80010,-122.5,45.25,12.5,\"GPS-203\",9203\r\n"
                         "\"Ann\",\"Smith\",23,\"03/03/2004\",90000,-121.5,44.5,5,\"GPS-205\",9205\r\n"
                         "\"Unknown\",\"Unknown\",26,\"03/06/2004\",110000,-119.5,43.5,4,\"Unknown\",9207\r\n"));
}

TEST_F(BatchGps, OneSubjectByItsTrackAndATrackOfNoSubjectRefused)
{
    // Track 22 stands for employee 9101 with vehicle 9203, under the other settings file too.
    BatchRun r = exportGps("22", path("one.txt"), "lumtrek.ini", "Assigned To,Unit Identifier,TrackID");
    ASSERT_EQ(r.exitCode, 0) << r.err.toStdString();
    QFile f(path("one.txt"));
    ASSERT_TRUE(f.open(QIODevice::ReadOnly));
    EXPECT_EQ(f.readAll(), QByteArray("\"Assigned To\",\"Unit Identifier\",\"TrackID\"\r\n"
                                      "\"Ann Smith\",\"Truck 203\",22\r\n"
                                      "\"Ann Smith\",\"Truck 203\",21\r\n"
                                      "\"Ann Smith\",\"Truck 203\",21\r\n"));

    // Track 21 is of that pairing but no entry stands for it; 99 does not exist.
    for (const char* track : {"21", "99"}) {
        SCOPED_TRACE(track);
        r = exportGps(QString::fromLatin1(track), path("refused.txt"));
        EXPECT_EQ(r.exitCode, 1);
        EXPECT_TRUE(r.err.contains(QStringLiteral("stands for no subject"))) << r.err.toStdString();
        EXPECT_FALSE(QFile::exists(path("refused.txt")));
    }
}

} // namespace
} // namespace tp::test
