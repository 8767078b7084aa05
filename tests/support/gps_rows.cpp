#include "support/gps_rows.h"

namespace tp::test {

QStringList gpsSampleStatements()
{
    return {
        QStringLiteral("DELETE FROM GPSCoordinates"),
        QStringLiteral("DELETE FROM EmployeeTrackActivity"),
        QStringLiteral("DELETE FROM EmployeeInfo WHERE EmployeeNumber IN (0, 9101, 9102)"),
        QStringLiteral("DELETE FROM VehicleInfo WHERE VehicleNumber IN (0, 9203, 9205, 9207)"),
        QStringLiteral("INSERT INTO EmployeeInfo (EmployeeNumber, Name, FirstName, LastName) "
                       "VALUES (9101, 'Ann Smith', 'Ann', 'Smith')"),
        QStringLiteral("INSERT INTO VehicleInfo (VehicleNumber, LicenseNumber, VehicleIdentifier, "
                       "TrackerSerialNumber) VALUES (9203, 'GPS-203', 'Truck 203', 'TS203'), "
                       "(9205, 'GPS-205', 'Van 205', 'TS205')"),
        QStringLiteral("INSERT INTO EmployeeTrackActivity (TrackID, EmployeeNumber, VehicleNumber, "
                       "TrackingDate) VALUES (21, 9101, 9203, 20040305), (22, 9101, 9203, 20040302), "
                       "(23, 9101, 9205, 20040303), (24, 0, 9205, 20040304), "
                       "(25, 9101, 9203, 20040410), (26, 9102, 9207, 20040306)"),
        QStringLiteral("INSERT INTO GPSCoordinates (TrackID, Longitude, Latitude, RcvDate, RcvTime, "
                       "Speed, TimeDeviation, PowerOnOff, TrackStartStop, DownloadID) VALUES "
                       "(21, -122.5, 45.25, 20040305, 80010, 12.5, 0, 1, NULL, 3), "
                       "(21, -1, 45.3, 20040305, 80020, 13, 0, 1, NULL, 3), "
                       "(21, -122.75, 45.5, 20040305, 80000, 0, 0, 1, 1, 3), "
                       "(21, -122.8, -1, 20040305, 80030, 14, 0, 1, 2, 3), "
                       "(22, -122.125, 45.125, 20040302, 120000, 30, 0, 1, 1, 2), "
                       "(23, -121.5, 44.5, 20040303, 90000, 5, 0, 1, 1, 2), "
                       "(24, -120.5, 44, 20040304, 70000, 1, 0, 1, 1, 2), "
                       "(24, -120.25, 44.25, 20040304, 70030, 2, 0, 1, 2, 2), "
                       "(25, -122, 45, 20040410, 100000, 3, 0, 1, 1, 4), "
                       "(26, -119.5, 43.5, 20040306, 110000, 4, 0, 1, 1, 2)"),
    };
}

} // namespace tp::test
