// tallyport-batch exporting "GPS Data": the subjects of --subject, the file byte for byte, a
// track that stands for no subject refused before anything is written, and the track picture
// (--picture) drawn without a display, alone or beside the file, never over a file it must keep.
#include "batch_fixture.h"
#include "export/tracks/track_picture.h"
#include "support/gps_rows.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImage>

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
    // Every subject's March drawn into picture; extra after the rest.
    BatchRun drawMarch(const QString& picture, const QStringList& extra = {})
    {
        return run(QStringList{"export", "--settings", "KRV.ini", "--user", "1", "--dataset", "GPS Data",
                               "--fields", "TrackID", "--from", "03/01/2004", "--to", "03/31/2004",
                               "--subject", "all", "--picture", picture} +
                   extra);
    }
    QStringList folderFiles() const
    {
        return QDir(outDir.path()).entryList(QDir::Files | QDir::Hidden | QDir::System, QDir::Name);
    }
};

QByteArray fileBytes(const QString& name)
{
    QFile f(name);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

// Pixels within a few steps of colour.
int pixelsOf(const QImage& image, const QColor& colour)
{
    int n = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x) {
            const QColor c = image.pixelColor(x, y);
            n += std::abs(c.red() - colour.red()) <= 6 && std::abs(c.green() - colour.green()) <= 6 &&
                         std::abs(c.blue() - colour.blue()) <= 6
                     ? 1
                     : 0;
        }
    return n;
}

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

TEST_F(BatchGps, APictureAloneWritesNoExportFileAndBesideOneLeavesTheFileAsItWas)
{
    BatchRun r = drawMarch(path("march.png"), {"--picture-size", "400x300"});
    ASSERT_EQ(r.exitCode, 0) << r.err.toStdString();
    EXPECT_EQ(r.out, QStringLiteral("Picture Completed Successfully\n"));
    EXPECT_TRUE(r.err.contains(QStringLiteral("march.png: 4 subjects, 5 tracks, 9 fixes (2 left out of the export)")))
        << r.err.toStdString();
    EXPECT_EQ(folderFiles(), QStringList{"march.png"}) << "no export file, no temporary file";
    const QImage image(path("march.png"));
    ASSERT_EQ(image.size(), QSize(400, 300));
    for (const QColor& c : {tracks::kStartColour, tracks::kEndColour, tracks::kLeftOutColour,
                            tracks::subjectColour(0), tracks::subjectColour(1)})
        EXPECT_GT(pixelsOf(image, c), 0) << c.name().toStdString();

    // With --output too: the same file as without the picture, and the picture replaced whole.
    ASSERT_EQ(exportGps("all", path("plain.txt")).exitCode, 0);
    r = run({"export", "--settings", "KRV.ini", "--user", "1", "--dataset", "GPS Data", "--fields",
             "EmployeeFirstName,EmployeeLastName,TrackID,Date,Time,Longitude,Latitude,Speed,LicenseNumber,VehicleID",
             "--from", "03/01/2004", "--to", "03/31/2004", "--subject", "all", "--format-date", "--output",
             path("with.txt"), "--picture", path("march.png")});
    ASSERT_EQ(r.exitCode, 0) << r.err.toStdString();
    EXPECT_EQ(r.out, QStringLiteral("Export Completed Successfully\n"));
    EXPECT_EQ(fileBytes(path("with.txt")), fileBytes(path("plain.txt")));
    EXPECT_EQ(QImage(path("march.png")).size(), QSize(1200, 900));
    EXPECT_EQ(folderFiles(), QStringList({"march.png", "plain.txt", "with.txt"}));
}

TEST_F(BatchGps, APictureIsNeverWrittenOverTheDatabaseTheSettingsOrAReadOnlyFile)
{
    const QString database = site.databaseFile();
    const QString settings = QDir(site.settingsFolder()).filePath("KRV.ini");
    ASSERT_TRUE(QFile::link(database, path("fleet-link.png")));
    QFile kept(path("kept.png"));
    ASSERT_TRUE(kept.open(QIODevice::WriteOnly));
    kept.write("an earlier picture");
    kept.close();
    kept.setPermissions(QFileDevice::ReadOwner);
    struct Case {
        QString target;
        const char* told;
    };
    const Case cases[] = {
        {path("fleet-link.png"), "it is the database"},
        {database + "-journal", "it is the database"},
        {settings, "it is the settings file"},
        {QFileInfo(database).dir().filePath("tallyp.LOG"), "it is the program log"},
        {path("kept.png"), "READ-ONLY"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.target.toStdString());
        const QByteArray before = QCryptographicHash::hash(fileBytes(c.target), QCryptographicHash::Sha256);
        const bool existed = QFile::exists(c.target);
        const BatchRun r = drawMarch(c.target);
        EXPECT_EQ(r.exitCode, 1);
        EXPECT_TRUE(r.err.contains(QLatin1String(c.told))) << r.err.toStdString();
        EXPECT_EQ(r.out, QString());
        EXPECT_EQ(QFile::exists(c.target), existed);
        EXPECT_EQ(QCryptographicHash::hash(fileBytes(c.target), QCryptographicHash::Sha256), before);
    }
    EXPECT_EQ(site.scalar("SELECT COUNT(*) FROM GPSCoordinates"), 10) << "the database still reads";
}

TEST_F(BatchGps, PictureOptionsThatCannotGoTogetherAreUsageErrors)
{
    const QStringList gps = {"export", "--settings", "KRV.ini", "--user", "1", "--dataset", "GPS Data", "--fields",
                             "TrackID", "--from", "03/01/2004", "--to", "03/31/2004", "--subject", "all"};
    struct Case {
        QStringList arguments;
        const char* told;
    };
    const Case cases[] = {
        {{"export", "--settings", "KRV.ini", "--user", "1", "--dataset", "Time Data", "--fields", "TimeRecordID",
          "--picture", "t.png"},
         "--picture is for GPS Data only"},
        {gps + QStringList{"--output", "g.txt", "--picture-size", "400x300"}, "--picture-size goes with --picture"},
        {gps + QStringList{"--picture", "g.png", "--picture-size", "40x300"}, "--picture-size must be"},
        {gps + QStringList{"--picture", "g.png", "--picture-size", "5000x300"}, "--picture-size must be"},
        {gps + QStringList{"--picture", "same", "--output", "./same"}, "name the same file"},
        {gps + QStringList{"--picture", "-"}, "--picture needs a file name"},
        {gps, "export needs --output"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.told);
        const BatchRun r = run(c.arguments);
        EXPECT_EQ(r.exitCode, 2);
        EXPECT_TRUE(r.err.contains(QLatin1String(c.told))) << r.err.toStdString();
    }
    EXPECT_TRUE(folderFiles().isEmpty());
}

} // namespace
} // namespace tp::test
