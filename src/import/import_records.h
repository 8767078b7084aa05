#pragma once
// The records a scan fills: one fixed layout per target table, the heading record's presence
// markers and required list, and the confirmation sample built from them.
#include "import/import_specs.h"

#include <QString>
#include <QStringList>
#include <vector>

namespace tp {

enum class CellKind : quint8 { Text, Number, Real };

// One value of a record: text fields use `text`, number fields (32-bit) and coordinates
// use `number`.
struct ImportCell {
    QString text;
    double number = 0;
};

// Fields of the four layouts, in record order.
enum CustomerField {
    CuNumber, CuAccountingID, CuBranchNumber, CuCompanyName, CuAddress1, CuAddress2, CuCity,
    CuLastName, CuMI, CuFirstName, CuState, CuZipCode, CuMobilePhone, CuWorkPhone, CuSpare1,
    CuHomePhone, CustomerFieldCount
};
enum EmployeeField {
    EmNumber, EmBranchNumber, EmAccountingID, EmAddress1, EmAddress2, EmCity, EmLastName, EmMI,
    EmFirstName, EmState, EmZipCode, EmSpare1, EmSpare2, EmSpare3, EmSpare4, EmMobilePhone,
    EmWorkPhone, EmSpare5, EmHomePhone, EmSpare6, EmployeeFieldCount
};
enum VehicleField {
    VeNumber, VeVINNumber, VeLicenseNumber, VeBranchNumber, VeYear, VeMake, VeModel,
    VeAccountingID, VeTrackerSerialNumber, VeGroupID, VehicleFieldCount
};
enum LocationField {
    LoNumber, LoBranchNumber, LoName, LoAddress1, LoAddress2, LoCity, LoState, LoZipCode,
    LoLongitude, LoLatitude, LocationFieldCount
};

enum class RecordTable { Customers, Employees, Vehicles, Locations };

struct RecordFieldInfo {
    const char* name;
    CellKind kind;
};

RecordTable RecordTableOf(ImportDataType type);
// The layout of a table, in record order.
const std::vector<RecordFieldInfo>& RecordLayout(RecordTable table);

// The record list of the current data set. Element 0 is the heading record: its presence
// markers tell which fields the file supplies, its required list which headings stop the
// scan when their value fails.
struct ImportRecordList {
    ImportDataType type = ImportDataType::Customers;
    RecordTable table = RecordTable::Customers;
    std::vector<bool> present;                        // one marker per layout field
    QStringList required;                             // upper-cased headings
    std::vector<std::vector<ImportCell>> records;     // [0] the heading record, [n] record n
    qint32 lastRecord = 0;                            // records scanned and waiting

    // Empty: a heading record with no marker set and an empty required list.
    void reset(ImportDataType dataType);
    int fieldCount() const { return int(present.size()); }
    // Makes record n exist (empty cells).
    void grow(qint32 n);
    const ImportCell& cell(qint32 record, int field) const { return records[size_t(record)][size_t(field)]; }
    ImportCell& cell(qint32 record, int field) { return records[size_t(record)][size_t(field)]; }
    bool isPresent(int field) const { return present[size_t(field)]; }
    bool isRequired(const QString& name) const;
};

// txtFormat after a clean scan: "End of File Scanning.", the sample heading, the selection
// line, at most ten records and "e.t.c.", lines joined by CR LF.
QString ConfirmationText(const ImportRecordList& list, const QString& selectionLine);

// A number as the sample and the database get it: plain decimal, no exponent.
QString PlainNumber(double value);

} // namespace tp
