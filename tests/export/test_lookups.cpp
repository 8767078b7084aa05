// The loaders' look-ups of track, vehicle and employee facts.
#include "export/lookups.h"
#include "time_fixture.h"

namespace tp::test {
namespace {

class LookupsTest : public TimeDbTest {
protected:
    Lookups lookups{db, feedback};
};

TEST_F(LookupsTest, FoundMissingAndFailed)
{
    exec("INSERT INTO EmployeeTrackActivity (TrackID, EmployeeNumber, VehicleNumber, TrackingDate) "
         "VALUES (7, 17, 5, 20050131)");
    exec("INSERT INTO VehicleInfo (VehicleNumber, LicenseNumber, TrackerSerialNumber, "
         "VehicleIdentifier) VALUES (5, 'ABC 123', 'T0001', 'Van 5')");
    addEmployee(17, "John", "O'Neil", "John O.");
    exec("INSERT INTO EmployeeInfo (EmployeeNumber, FirstName, LastName) VALUES (18, NULL, '')");

    EXPECT_EQ(lookups.VehicleOfTrack(7), 5);
    EXPECT_EQ(lookups.EmployeeOfTrack(7), 17);
    EXPECT_EQ(lookups.VehicleOfTrack(8), 0);
    EXPECT_EQ(lookups.EmployeeOfTrack(8), 0);
    EXPECT_EQ(lookups.VehicleLicense(5), QStringLiteral("ABC 123"));
    EXPECT_EQ(lookups.VehicleLicense(6), QStringLiteral("Unknown"));
    QString identifier;
    EXPECT_EQ(lookups.VehicleIdentity(5, identifier), QStringLiteral("T0001"));
    EXPECT_EQ(identifier, QStringLiteral("Van 5"));
    EXPECT_EQ(lookups.VehicleIdentity(6, identifier), QStringLiteral("Unknown"));
    EXPECT_EQ(identifier, QStringLiteral("Unknown"));

    QString name = QStringLiteral("before");
    EXPECT_TRUE(lookups.EmployeeName(17, name));
    EXPECT_EQ(name, QStringLiteral("John O."));
    name = QStringLiteral("before");
    EXPECT_FALSE(lookups.EmployeeName(99, name));
    EXPECT_EQ(name, QStringLiteral("before"));   // a missing employee leaves it as it was

    QString first, last;
    EXPECT_TRUE(lookups.EmployeeFirstLast(17, first, last));
    EXPECT_EQ(first + "|" + last, QStringLiteral("John|O'Neil"));
    EXPECT_TRUE(lookups.EmployeeFirstLast(18, first, last));
    EXPECT_EQ(first + "|" + last, QStringLiteral("Unknown|Unknown"));
    EXPECT_FALSE(lookups.EmployeeFirstLast(99, first, last));
    EXPECT_EQ(first + "|" + last, QStringLiteral("Unknown|Unknown"));
    EXPECT_TRUE(feedback.messages().isEmpty());
    EXPECT_EQ(lookups.queriesRun(), 13);

    exec("DROP TABLE EmployeeTrackActivity");
    exec("DROP TABLE VehicleInfo");
    exec("DROP TABLE EmployeeInfo");
    EXPECT_EQ(lookups.VehicleOfTrack(7), 0);
    EXPECT_EQ(lookups.EmployeeOfTrack(7), 0);
    EXPECT_EQ(lookups.VehicleLicense(5), QStringLiteral("Unknown"));
    EXPECT_EQ(lookups.VehicleIdentity(5, identifier), QStringLiteral("Unknown"));
    name = QStringLiteral("before");
    EXPECT_FALSE(lookups.EmployeeName(17, name));
    EXPECT_EQ(name, QStringLiteral("before"));
    EXPECT_FALSE(lookups.EmployeeFirstLast(17, first, last));
    EXPECT_EQ(first, QStringLiteral("Unknown"));
    EXPECT_EQ(feedback.messages(),
              QStringList({"Cannot read Vehicle record", "Cannot read Employee record",
                           "Cannot read Vehicle record", "Cannot read Vehicle record",
                           "Cannot read Employee record", "Cannot read Employee record"}));
}

} // namespace
} // namespace tp::test
