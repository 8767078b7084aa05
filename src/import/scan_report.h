#pragma once
// What one scan of an import file keeps about its progress and its first fault, and the one
// message that reports the fault to the user.
#include <QString>

namespace tp {

// ScanResult codes that have a name of their own; the checks return the rest as numbers.
enum ScanCode : qint16 {
    ScanOk = 0,
    ScanHeadingOnly = -1,      // heading line accepted, no record yet
    ScanNotInFile = 1,         // a ticked field is missing or out of order
    ScanNotSelected = 2,       // a heading names a field that is not ticked
    ScanTooFewFields = 3,      // also a blank line ("Empty Row")
    ScanTooManyFields = 4,
    ScanNotInteger = 6,
    ScanTooLong = 7,
    ScanBranchMissing = 8,
    ScanBadFormat = 9,
    ScanStateMissing = 10,
    ScanYearRange = 11,
    ScanSerialMissing = 12,
    ScanGroupMissing = 13,
    ScanNoHeading = 15,
    ScanInvalidHeading = 16,
    ScanAlphanumeric = 21,
    ScanOneCapital = 22,
    ScanTwoCapitals = 23,
    ScanCharacters = 24,
    ScanQuoted = 25,
    ScanZipCode = 26,
    ScanBlank = 99
};

inline const QString kEmptyRow = QStringLiteral("Empty Row");
inline const QString kFieldNameNotFound = QStringLiteral("Field name not found");

struct ScanState {
    qint16 result = 0;          // ScanResult
    QString fieldText;          // F
    QString foundValue;         // V
    qint16 lengthLimit = 0;     // L
    qint16 headingCount = 0;    // H
    qint32 recordNumber = 0;    // R: the heading line is 0
    QString invalidHeading;     // G
    qint16 gridPosition = 0;
    qint16 gridRowCount = 0;

    // After the report: F, V, L, the result and the grid position are cleared.
    void clearAfterReport();
};

// The message for the state's result, with "Found Value = " V appended where the codes
// allow it. Lines are separated by CR LF.
QString ScanReportText(const ScanState& state);

} // namespace tp
