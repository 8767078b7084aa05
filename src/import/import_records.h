#pragma once
// The records a scan fills: one fixed layout per target table, the heading record's presence
// markers and required list, and the confirmation sample built from them.
#include "import/import_specs.h"

#include <QString>
#include <QStringList>
#include <vector>

namespace tp {

enum class CellKind : quint8 { Text, Number, Real };


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

// The record list of the current data set. Record 0 is the heading record: its presence
// markers tell which fields the file supplies, its required list which headings stop the
// scan when their value fails. A text field holds text, a number field (32-bit) or a
// coordinate a number. The texts of all records lie one after the other in one buffer, so a
// record costs about its text and eight bytes a field, not an allocation per value.
struct ImportRecordList {
    ImportDataType type = ImportDataType::Customers;
    RecordTable table = RecordTable::Customers;
    std::vector<bool> present;                        // one marker per layout field
    QStringList required;                             // upper-cased headings
    qint32 lastRecord = 0;                            // records scanned and waiting

    // Empty: a heading record with no marker set and an empty required list.
    void reset(ImportDataType dataType);
    int fieldCount() const { return int(present.size()); }
    // Makes records up to n exist (empty cells).
    void grow(qint32 n);
    QString text(qint32 record, int field) const;
    // The text without a copy; good until the next setText.
    QStringView textView(qint32 record, int field) const;
    double number(qint32 record, int field) const;
    // Texts longer than kMaxText are cut there; no value that passes a check comes near it.
    void setText(qint32 record, int field, const QString& text);
    void setNumber(qint32 record, int field, double number);
    bool isPresent(int field) const { return present[size_t(field)]; }
    CellKind kind(int field) const { return m_kinds[size_t(field)]; }
    bool isRequired(const QString& name) const;
    // Room for about this many characters of text, so that the buffer is not copied as it
    // grows; capped, as it is only a guess from the file's size.
    void reserveText(qint64 characters);

    static constexpr qsizetype kMaxText = 0xFFFF;

private:
    // A number's bits, or where its text lies in m_texts: offset << 16 | length.
    quint64& slot(qint32 record, int field) { return m_cells[size_t(record) * present.size() + size_t(field)]; }
    quint64 slot(qint32 record, int field) const { return m_cells[size_t(record) * present.size() + size_t(field)]; }

    std::vector<CellKind> m_kinds;   // the layout's, kept at hand for every value
    std::vector<quint64> m_cells;
    QString m_texts;
};

// txtFormat after a clean scan: "End of File Scanning.", the sample heading, the selection
// line, at most ten records and "e.t.c.", lines joined by CR LF.
QString ConfirmationText(const ImportRecordList& list, const QString& selectionLine);

// A number as the sample and the database get it: plain decimal, no exponent.
QString PlainNumber(double value);

} // namespace tp
