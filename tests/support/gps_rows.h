#pragma once
// A small set of tracks and GPS points the GPS export tests share. In March 2004:
//   track 24: no employee (0) with vehicle 9205, two points
//   tracks 22 (03/02) and 21 (03/05): employee 9101 with vehicle 9203; track 21 also holds one
//     fix with longitude -1 and one with latitude -1; track 25 (04/10) is the same pairing later
//   track 23 (03/03): employee 9101 with another vehicle, 9205
//   track 26 (03/06): an employee (9102) and a vehicle (9207) that have no rows
// Employee 9101 is Ann Smith ("Ann Smith" as Name); vehicle 9203 has licence GPS-203 and
// identifier "Truck 203", vehicle 9205 GPS-205 and "Van 205".
#include <QStringList>

namespace tp::test {

// Statements that empty the track tables and add the set above (both engines).
QStringList gpsSampleStatements();

// The subjects' tracks in list order (employee, then vehicle): 24, 22, 23, 26.
inline const std::vector<qint32> kGpsSampleSubjects = {24, 22, 23, 26};

} // namespace tp::test
