#pragma once
// Tracks and GPS points for the calendar's GPS days: employee 7 with vehicle 3 has usable
// points on 03/05/2004 and 04/01/2004 only; other pairings have one day each.
#include "time_fixture.h"

namespace tp::test {

class GpsCalendarDbTest : public TimeDbTest {
protected:
    void addTrack(qint32 track, qint32 employee, qint32 vehicle, qint32 date)
    {
        exec(QStringLiteral("INSERT INTO EmployeeTrackActivity (TrackID, EmployeeNumber, "
                            "VehicleNumber, TrackingDate) VALUES (%1, %2, %3, %4)")
                 .arg(track)
                 .arg(employee)
                 .arg(vehicle)
                 .arg(date));
    }
    void addPoint(qint32 track, qint32 date, double latitude = 45.5, double longitude = -122.6)
    {
        exec(QStringLiteral("INSERT INTO GPSCoordinates (TrackID, Latitude, Longitude, RcvDate, "
                            "RcvTime) VALUES (%1, %2, %3, %4, 120000)")
                 .arg(track)
                 .arg(latitude)
                 .arg(longitude)
                 .arg(date));
    }
    void addTracks()
    {
        exec("INSERT INTO EmployeeInfo (EmployeeNumber, Name, LastName, FirstName, MI) VALUES "
             "(7, 'Ann Smith', 'Smith', 'Ann', 'Q'), (9, '', '', '', '')");
        exec("INSERT INTO VehicleInfo (VehicleNumber, TrackerSerialNumber) VALUES (3, 'TS-3')");
        addTrack(1, 7, 3, 20040305);
        addPoint(1, 20040305);
        addPoint(1, 20040305);
        addTrack(2, 7, 3, 20040310);   // no usable fix
        addPoint(2, 20040310, -1, -122.6);
        addPoint(2, 20040310, 45.5, -1);
        addTrack(3, 7, 3, 20040312);   // points received the next day
        addPoint(3, 20040313);
        addTrack(4, 8, 3, 20040320);
        addPoint(4, 20040320);
        addTrack(5, 7, 3, 20040401);
        addPoint(5, 20040401);
        addTrack(6, 7, 5, 20040318);
        addPoint(6, 20040318);
        addTrack(7, 9, 3, 20040325);
        addPoint(7, 20040325);
    }
};

} // namespace tp::test
