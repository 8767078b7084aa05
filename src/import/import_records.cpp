#include "import/import_records.h"

#include "foundation/conversions.h"

#include <QLocale>

namespace tp {

namespace {

// One of four things by table, in the order of RecordTable.
template <class T>
const T& pick(RecordTable table, const T& customers, const T& employees, const T& vehicles, const T& locations)
{
    const T* all[] = {&customers, &employees, &vehicles, &locations};
    return *all[int(table)];
}

constexpr CellKind T = CellKind::Text;
constexpr CellKind N = CellKind::Number;
constexpr CellKind D = CellKind::Real;

// The fields a confirmation line lists, in its order.
const std::vector<int>& sampleOrder(RecordTable table)
{
    static const std::vector<int> customers = {CuNumber, CuBranchNumber, CuCompanyName, CuLastName, CuMI,
                                               CuFirstName, CuAccountingID, CuAddress1, CuAddress2, CuCity,
                                               CuState, CuZipCode, CuMobilePhone, CuWorkPhone, CuHomePhone};
    static const std::vector<int> employees = {EmNumber, EmBranchNumber, EmLastName, EmMI, EmFirstName,
                                               EmAccountingID, EmAddress1, EmAddress2, EmCity, EmState,
                                               EmZipCode, EmMobilePhone, EmWorkPhone, EmHomePhone};
    static const std::vector<int> vehicles = {VeNumber, VeLicenseNumber, VeBranchNumber, VeVINNumber, VeYear,
                                              VeMake, VeModel, VeAccountingID, VeTrackerSerialNumber, VeGroupID};
    static const std::vector<int> locations = {LoBranchNumber, LoName, LoAddress1, LoAddress2, LoCity,
                                               LoState, LoZipCode, LoLongitude, LoLatitude};
    return pick(table, customers, employees, vehicles, locations);
}

} // namespace

RecordTable RecordTableOf(ImportDataType type)
{
    switch (type) {
    case ImportDataType::Customers: return RecordTable::Customers;
    case ImportDataType::Employees: return RecordTable::Employees;
    case ImportDataType::Vehicles: return RecordTable::Vehicles;
    case ImportDataType::MapLocations:
    case ImportDataType::Pinpoints: break;
    }
    return RecordTable::Locations;
}

const std::vector<RecordFieldInfo>& RecordLayout(RecordTable table)
{
    static const std::vector<RecordFieldInfo> customers = {
        {"CustomerNumber", N}, {"AccountingID", T}, {"BranchNumber", N}, {"CompanyName", T}, {"Address1", T},
        {"Address2", T}, {"City", T}, {"LastName", T}, {"MI", T}, {"FirstName", T}, {"State", T},
        {"ZipCode", T}, {"MobilePhone", T}, {"WorkPhone", T}, {"", T}, {"HomePhone", T}};
    static const std::vector<RecordFieldInfo> employees = {
        {"EmployeeNumber", N}, {"BranchNumber", N}, {"AccountingID", T}, {"Address1", T}, {"Address2", T},
        {"City", T}, {"LastName", T}, {"MI", T}, {"FirstName", T}, {"State", T}, {"ZipCode", T}, {"", T},
        {"", T}, {"", T}, {"", T}, {"MobilePhone", T}, {"WorkPhone", T}, {"", T}, {"HomePhone", T}, {"", T}};
    static const std::vector<RecordFieldInfo> vehicles = {
        {"VehicleNumber", N}, {"VINNumber", T}, {"LicenseNumber", T}, {"BranchNumber", N}, {"Year", N},
        {"Make", T}, {"Model", T}, {"AccountingID", T}, {"TrackerSerialNumber", T}, {"GroupID", T}};
    static const std::vector<RecordFieldInfo> locations = {
        {"", N}, {"BranchNumber", N}, {"LocationName", T}, {"Address1", T}, {"Address2", T}, {"City", T},
        {"State", T}, {"ZipCode", T}, {"Longitude", D}, {"Latitude", D}};
    return pick(table, customers, employees, vehicles, locations);
}

void ImportRecordList::reset(ImportDataType dataType)
{
    type = dataType;
    table = RecordTableOf(dataType);
    const size_t n = RecordLayout(table).size();
    present.assign(n, false);
    required.clear();
    records.assign(1, std::vector<ImportCell>(n));
    lastRecord = 0;
}

void ImportRecordList::grow(qint32 n)
{
    while (records.size() <= size_t(n))
        records.emplace_back(present.size());
}

bool ImportRecordList::isRequired(const QString& name) const
{
    return required.contains(TrimBlanks(name).toUpper());
}

QString PlainNumber(double value)
{
    if (value == 0)
        return QStringLiteral("0");
    return QString::number(value, 'f', QLocale::FloatingPointShortest);
}

QString ConfirmationText(const ImportRecordList& list, const QString& selectionLine)
{
    const QString crlf = QStringLiteral("\r\n");
    QString text = QStringLiteral("End of File Scanning.") + crlf +
                   QStringLiteral("Several Records are shown for final confirmation:") + crlf + selectionLine;
    const std::vector<RecordFieldInfo>& layout = RecordLayout(list.table);
    const qint32 shown = std::min<qint32>(list.lastRecord, 10);
    for (qint32 r = 1; r <= shown && size_t(r) < list.records.size(); ++r) {
        QStringList parts;
        for (const int f : sampleOrder(list.table)) {
            if (!list.isPresent(f))
                continue;
            const ImportCell& c = list.cell(r, f);
            parts << (layout[size_t(f)].kind == CellKind::Text
                          ? QStringLiteral("''") + TrimBlanks(c.text) + QStringLiteral("''")
                          : PlainNumber(c.number));
        }
        text += crlf + parts.join(QStringLiteral(" , "));
    }
    return text + crlf + QStringLiteral("e.t.c.");
}

} // namespace tp
