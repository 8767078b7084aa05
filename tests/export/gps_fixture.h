#pragma once
// The GPS export tests' database: the shared sample of tracks and points, on SQLite and, when a
// test server is named, on PostgreSQL.
#include "support/gps_rows.h"
#include "time_fixture.h"

namespace tp::test {

class GpsDbTest : public TimeDbTest, public ::testing::WithParamInterface<bool> {
protected:
    GpsDbTest() { usePostgres = GetParam(); }

    void addSample()
    {
        for (const QString& sql : gpsSampleStatements())
            exec(sql);
    }
    // count tracks of employees 1..pairs with vehicle 1, dated in track order; one statement.
    void addTracks(int count, int pairs)
    {
        QStringList rows;
        for (int t = 1; t <= count; ++t)
            rows << QStringLiteral("(%1, %2, 1, %3)").arg(t).arg(1 + t % pairs).arg(20000000 + t);
        exec(QStringLiteral("INSERT INTO EmployeeTrackActivity (TrackID, EmployeeNumber, VehicleNumber, "
                            "TrackingDate) VALUES ") + rows.join(QLatin1Char(',')));
    }
};

inline std::string gpsEngineName(const ::testing::TestParamInfo<bool>& info)
{
    return info.param ? "PostgreSQL" : "SQLite";
}

} // namespace tp::test
