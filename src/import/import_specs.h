#pragma once
// The import data sets: what the list offers to whom, the table each one fills, and the
// field specifications that tell the operator which headings a file may carry.
#include <QString>
#include <QStringList>
#include <optional>
#include <vector>

namespace tp {

class cDAO;

enum class ImportDataType { Customers, Employees, Vehicles, MapLocations, Pinpoints };

inline const QString kImportListCustomers = QStringLiteral("Customer Data");
inline const QString kImportListEmployees = QStringLiteral("Employee Data");
inline const QString kImportListVehicles = QStringLiteral("Vehicle Data");
inline const QString kImportListMapLocations = QStringLiteral("Map Locations Data");
inline const QString kImportListPinpoints = QStringLiteral("Pinpoints Data");
inline const QString kImportNoSelection = QStringLiteral("No Selection Available");

inline const QString kImportTableCustomers = QStringLiteral("CustomerInfo");
inline const QString kImportTableEmployees = QStringLiteral("EmployeeInfo");
inline const QString kImportTableVehicles = QStringLiteral("VehicleInfo");
inline const QString kImportTableLocations = QStringLiteral("CommonLocations");

// One row of the specification grid. As text it is eight parts joined by "::":
// columns filled, grid row, required ("T"/"F"), initial tick, name, type, max length, format.
struct FieldSpec {
    int columns = 5;
    int row = 0;          // 1-based grid row
    bool required = false;
    bool ticked = false;
    QString name;         // also the heading the file must carry
    QString dataType;     // "Text" or "Number"
    QString maxLength;    // a number, or "Decimal"
    QString format;

    QString text() const;
    // The row a FieldSpec text describes; nothing when it has fewer than eight parts,
    // when part 0 or part 1 is not a number, or when part 0 is below 1 (such a text is skipped).
    static std::optional<FieldSpec> parse(const QString& text);
    // Part c+2 for grid column c (2..5); empty beyond the columns the text fills.
    QString columnText(int column) const;
};

struct ImportDataSetInfo {
    ImportDataType type;
    QString listText;
    QString table;               // the current table
    QString selectionCaption;    // lblSelection
    QString fileFormatCaption;   // lblFileFormat
};

const ImportDataSetInfo& ImportDataSet(ImportDataType type);

// The FieldSpec texts of a data set in grid order. Customers, employees and vehicles
// end with a required BranchNumber row only when a branch exists; map locations always
// carry BranchNumber in row 2, required only when a branch exists.
QStringList ImportSpecTexts(ImportDataType type, bool branchExists);
std::vector<FieldSpec> ImportSpecRows(ImportDataType type, bool branchExists);

// "Select top 1 * FROM BranchInfo", with " WHERE BranchNumber = " and the number unless it
// is -1 (then: does any branch exist). A number that is no whole number finds nothing.
bool BranchExists(cDAO& db, const QString& branchNumber = QStringLiteral("-1"));

// The list texts offered to the signed-in user under the active settings file, in list
// order: only Pinpoints without the "KRV.ini" file; all four others for an administrator;
// else those whose "IMP" right is held. Empty when none is offered.
QStringList OfferedImportDataSets();

// The data set behind a list index under the settings variant; nothing for other indexes.
std::optional<ImportDataType> ImportDataTypeAt(int listIndex, bool krvSettings);
// The data set behind a list text; nothing for other texts.
std::optional<ImportDataType> ImportDataTypeFor(const QString& listText);

// The ticked fields in grid order. The count and the names are what the heading check
// walks; formatLine() is the text that txtFormat shows for them.
class ImportSelection {
public:
    ImportSelection() = default;
    // Rows count as ticked when their tick is set; required rows are ticked by construction.
    static ImportSelection fromRows(const std::vector<FieldSpec>& rows);
    static ImportSelection fromNames(QStringList names);

    int count() const { return static_cast<int>(m_names.size()); }
    const QStringList& names() const { return m_names; }
    // 1-based, as the entries of the list are counted; empty outside 1..count().
    QString name(int entry) const;
    bool contains(const QString& name) const;   // compared without regard to case
    // ''A'' , ''B'' ; empty with nothing ticked.
    QString formatLine() const;

private:
    QStringList m_names;
};

} // namespace tp
