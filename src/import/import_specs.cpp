#include "import/import_specs.h"

#include "foundation/dao.h"
#include "foundation/globals.h"
#include "foundation/permissions.h"
#include "foundation/sql_literal.h"
#include "startup/startup.h"

namespace tp {

namespace {

const QString kSeparator = QStringLiteral("::");

struct Row {
    const char* name;
    bool required;
    const char* type;
    const char* max;
    const char* format;
};

const char* const kChars = "Characters.";
const char* const kCharsSpaces = "Characters & Spaces.";
const char* const kAlnum = "Alphas, Numbers & Spaces.";
const char* const kState = "Two Characters Capitalized";
const char* const kZip = "#####- or #####-####";
const char* const kPhone = "(###) ###-####";
const char* const kBranch = "Number of Existing Branch.";
const char* const kUnique = "Unique Positive Number.";
const char* const kInitial = "1 Character Capitalized.";

QString specText(int row, const Row& r)
{
    const QString req = r.required ? QStringLiteral("T") : QStringLiteral("F");
    const QString tick = r.required ? QStringLiteral("1") : QStringLiteral("0");
    return QStringList{QStringLiteral("5"), QString::number(row), req, tick,
                       QString::fromLatin1(r.name), QString::fromLatin1(r.type),
                       QString::fromLatin1(r.max), QString::fromLatin1(r.format)}
        .join(kSeparator);
}

// The address rows every data set but the vehicles carries, from Address1 on.
std::vector<Row> addressRows(bool address1Required, const char* format, const char* cityFormat)
{
    return {{"Address1", address1Required, "Text", "30", format},
            {"Address2", false, "Text", "30", format},
            {"City", false, "Text", "20", cityFormat},
            {"State", false, "Text", "2", kState},
            {"ZipCode", false, "Text", "10", kZip}};
}

std::vector<Row> operator+(std::vector<Row> rows, const std::vector<Row>& more)
{
    rows.insert(rows.end(), more.begin(), more.end());
    return rows;
}

const std::vector<Row> kCoordinates = {{"Longitude", false, "Number", "Decimal", "-180 to +180."},
                                       {"Latitude", false, "Number", "Decimal", "-90 to +90."}};
const std::vector<Row> kPhones = {{"MobilePhone", false, "Text", "14", kPhone},
                                  {"WorkPhone", false, "Text", "14", kPhone},
                                  {"HomePhone", false, "Text", "14", kPhone}};

std::vector<Row> rowsOf(ImportDataType type, bool branch)
{
    switch (type) {
    case ImportDataType::MapLocations:
        // The branch row stays even without branches, then optional.
        return std::vector<Row>{{"LocationName", true, "Text", "30", kChars},
                                {"BranchNumber", branch, "Number", "9", kBranch}} +
               addressRows(true, kChars, kChars) + kCoordinates;
    case ImportDataType::Pinpoints:
        return std::vector<Row>{{"PinpointName", true, "Text", "20", kCharsSpaces}} +
               addressRows(false, kCharsSpaces, kCharsSpaces) + kCoordinates;
    default:
        break;
    }
    std::vector<Row> rows;
    if (type == ImportDataType::Vehicles) {
        rows = {{"VehicleNumber", true, "Number", "9", kUnique},
                {"LicenseNumber", true, "Text", "10", kAlnum},
                {"GroupID", true, "Text", "9", "Number of Existing Group."},
                {"VINNumber", false, "Text", "30", kAlnum},
                {"Year", false, "Number", "4", "#### ex.: 2001."},
                {"Make", false, "Text", "20", kAlnum},
                {"Model", false, "Text", "20", kAlnum},
                {"TrackerSerialNumber", false, "Text", "9", "Number of Existing Tracker Serial Number."}};
    } else if (type == ImportDataType::Employees) {
        rows = std::vector<Row>{{"EmployeeNumber", true, "Number", "9", kUnique},
                                {"LastName", true, "Text", "30", kAlnum},
                                {"MI", false, "Text", "1", kInitial},
                                {"FirstName", true, "Text", "20", kAlnum},
                                {"AccountingID", false, "Text", "20", kAlnum}} +
               addressRows(false, kChars, "Alphas,Numbers & Spaces.") + kPhones;
    } else {
        rows = std::vector<Row>{{"CustomerNumber", true, "Number", "9", kUnique},
                                {"CompanyName", true, "Text", "30", kAlnum},
                                {"LastName", true, "Text", "30", kAlnum},
                                {"MI", false, "Text", "1", kInitial},
                                {"FirstName", true, "Text", "20", kAlnum},
                                {"Accounting ID", false, "Text", "20", kAlnum}} +
               addressRows(false, kChars, kChars) + kPhones;
    }
    if (branch)
        rows.push_back({"BranchNumber", true, "Number", "9", kBranch});
    return rows;
}

} // namespace

QString FieldSpec::text() const
{
    return QStringList{QString::number(columns), QString::number(row),
                       required ? QStringLiteral("T") : QStringLiteral("F"),
                       ticked ? QStringLiteral("1") : QStringLiteral("0"), name, dataType,
                       maxLength, format}
        .join(kSeparator);
}

std::optional<FieldSpec> FieldSpec::parse(const QString& text)
{
    const QStringList parts = text.split(kSeparator);
    if (parts.size() < 8)
        return std::nullopt;
    bool columnsOk = false;
    bool rowOk = false;
    FieldSpec spec;
    spec.columns = parts[0].trimmed().toInt(&columnsOk);
    spec.row = parts[1].trimmed().toInt(&rowOk);
    if (!columnsOk || !rowOk || spec.columns < 1 || spec.row < 1)
        return std::nullopt;
    spec.columns = std::min(spec.columns, 5);
    spec.required = parts[2].toUpper() == QLatin1String("T");
    spec.ticked = parts[3].trimmed() == QLatin1String("1");
    spec.name = parts[4];
    spec.dataType = parts[5];
    spec.maxLength = parts[6];
    spec.format = parts[7];
    return spec;
}

QString FieldSpec::columnText(int column) const
{
    if (column > columns)
        return QString();
    switch (column) {
    case 2: return name;
    case 3: return dataType;
    case 4: return maxLength;
    case 5: return format;
    default: return QString();
    }
}

const ImportDataSetInfo& ImportDataSet(ImportDataType type)
{
    static const ImportDataSetInfo sets[] = {
        {ImportDataType::Customers, kImportListCustomers, kImportTableCustomers,
         QStringLiteral("Customer Data Fields"),
         QStringLiteral("Customer Data Fields To Save To The Database")},
        {ImportDataType::Employees, kImportListEmployees, kImportTableEmployees,
         QStringLiteral("Employee Data Fields"),
         QStringLiteral("Employee Data Fields To Save To The Database")},
        {ImportDataType::Vehicles, kImportListVehicles, kImportTableVehicles,
         QStringLiteral("Vehicle Data Fields"),
         QStringLiteral("Vehicle Data Fields To Save To The Database")},
        {ImportDataType::MapLocations, kImportListMapLocations, kImportTableLocations,
         QStringLiteral("Map Locations Data Fields"),
         QStringLiteral("Map Data Fields To Save To The Database")},
        {ImportDataType::Pinpoints, kImportListPinpoints, kImportTableLocations,
         QStringLiteral("Pinpoints Data Fields"),
         QStringLiteral("Pinpoints Data Fields To Save To The Database")},
    };
    return sets[static_cast<int>(type)];
}

QStringList ImportSpecTexts(ImportDataType type, bool branchExists)
{
    QStringList texts;
    int row = 0;
    for (const Row& r : rowsOf(type, branchExists))
        texts << specText(++row, r);
    return texts;
}

std::vector<FieldSpec> ImportSpecRows(ImportDataType type, bool branchExists)
{
    std::vector<FieldSpec> rows;
    for (const QString& text : ImportSpecTexts(type, branchExists)) {
        if (std::optional<FieldSpec> spec = FieldSpec::parse(text))
            rows.push_back(*spec);
    }
    return rows;
}

bool BranchExists(cDAO& db, const QString& branchNumber)
{
    QString sql = QStringLiteral("Select top 1 * FROM BranchInfo");
    if (branchNumber.trimmed() != QLatin1String("-1")) {
        const std::optional<QString> number = sql::wholeNumber(branchNumber.trimmed());
        if (!number)
            return false;
        sql += QStringLiteral(" WHERE BranchNumber = ") + *number;
    }
    return db.Records_Exist(sql);
}

QStringList OfferedImportDataSets()
{
    if (!IsKrvSettings())
        return {kImportListPinpoints};
    const QStringList all{kImportListCustomers, kImportListEmployees, kImportListVehicles,
                          kImportListMapLocations};
    if (IsAdministrator())
        return all;
    const int formIds[] = {2, 3, 12, 0};
    QStringList offered;
    for (int i = 0; i < all.size(); ++i) {
        if (CheckPermission(QStringLiteral("IMP"), formIds[i]))
            offered << all[i];
    }
    return offered;
}

std::optional<ImportDataType> ImportDataTypeAt(int listIndex, bool krvSettings)
{
    if (!krvSettings)
        return listIndex == 0 ? std::optional(ImportDataType::Pinpoints) : std::nullopt;
    static const ImportDataType krv[] = {ImportDataType::Customers, ImportDataType::Employees,
                                         ImportDataType::Vehicles, ImportDataType::MapLocations};
    if (listIndex < 0 || listIndex > 3)
        return std::nullopt;
    return krv[listIndex];
}

std::optional<ImportDataType> ImportDataTypeFor(const QString& listText)
{
    for (ImportDataType t : {ImportDataType::Customers, ImportDataType::Employees,
                             ImportDataType::Vehicles, ImportDataType::MapLocations,
                             ImportDataType::Pinpoints}) {
        if (ImportDataSet(t).listText == listText)
            return t;
    }
    return std::nullopt;
}

ImportSelection ImportSelection::fromRows(const std::vector<FieldSpec>& rows)
{
    ImportSelection selection;
    for (const FieldSpec& row : rows) {
        if (row.ticked || row.required)
            selection.m_names << row.name;
    }
    return selection;
}

ImportSelection ImportSelection::fromNames(QStringList names)
{
    ImportSelection selection;
    selection.m_names = std::move(names);
    return selection;
}

QString ImportSelection::name(int entry) const
{
    return entry >= 1 && entry <= count() ? m_names[entry - 1] : QString();
}

bool ImportSelection::contains(const QString& name) const
{
    return m_names.contains(name, Qt::CaseInsensitive);
}

QString ImportSelection::formatLine() const
{
    QString line;
    for (const QString& name : m_names) {
        if (!line.isEmpty())
            line += QStringLiteral(" , ");
        line += QStringLiteral("''") + name + QStringLiteral("''");
    }
    return line;
}

} // namespace tp
