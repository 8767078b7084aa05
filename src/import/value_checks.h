#pragma once
// The checks every imported value goes through. Each returns 0 for a pass or the code of
// its fault, and leaves in the scan state what the report needs (F, V, L). Checks that trim
// or rewrite the value do so in place; the scanner stores what they leave.
#include "import/scan_report.h"

#include <QSet>
#include <QString>
#include <optional>

namespace tp {

class cDAO;

namespace check {

// Trimmed text reading as a decimal number: optional sign, digits, optional point and
// fraction, optional exponent.
bool isNumeric(const QString& text);
// The value as a number; nothing when it is not numeric.
std::optional<double> toNumber(const QString& text);
// The 32-bit whole number a number field stores: halves round to even; nothing when the
// value is not numeric or does not fit.
std::optional<qint32> toWholeNumber(const QString& text);

// Trims the value in place; true when it then begins or ends with a double quote or an
// apostrophe.
bool isQuoted(QString& value);

qint16 Characters(QString& value, const QString& name, int max, ScanState& s);
qint16 Alphanumeric(QString& value, const QString& name, int max, ScanState& s);
qint16 Capitals(const QString& value, const QString& name, int max, qint16 code, ScanState& s);
qint16 StateCode(const QString& value, const QString& name, qint16 code, ScanState& s);
qint16 NonNegativeNumber(QString& value, const QString& name, qint16 code, ScanState& s);
qint16 PositiveNumber(QString& value, const QString& name, qint16 code, ScanState& s);
qint16 Length(QString& value, const QString& name, int max, qint16 code, ScanState& s);
// number receives the value read as a number when it passes.
qint16 Range(const QString& value, const QString& name, double low, double high, double& number,
             ScanState& s);
qint16 Year(const QString& value, qint16 code, ScanState& s);
// The value padded or cut to ten characters first, by the caller; rewritten in place.
bool ZipCode(QString& value, ScanState& s);
// The phone field of the conversions; may rewrite the value.
bool PhoneNumber(QString& value);

// Pads with blanks or cuts to exactly `width` characters.
QString padOrCut(const QString& value, int width);

} // namespace check

// A column read once for look-ups: the whole numbers of the first column of sql (nulls and
// other values left out), and its texts trimmed and upper-cased (nulls left out). A statement
// that fails gives an empty set, as a failed query finds nothing.
QSet<qint64> ReadWholeNumbers(cDAO& db, const QString& sql);
QSet<QString> ReadUpperTexts(cDAO& db, const QString& sql);

// The look-ups used as checks, read once per scan instead of one query per value. Texts
// compare without regard to letter case, as the product's database engine compares them.
class ImportLookups {
public:
    // Reads branches, states, tracker serials and groups. A table that cannot be read
    // finds nothing, as a failed query would.
    void load(cDAO& db);

    bool anyBranch() const { return !branches.isEmpty(); }
    bool branchExists(double number) const;
    bool stateExists(const QString& value) const;   // trimmed and upper-cased first
    bool serialExists(const QString& value) const;
    bool groupExists(double number) const;

    // For tests and tools that fill them by hand.
    QSet<qint64> branches, groups;
    QSet<QString> states, serials;
};

} // namespace tp
