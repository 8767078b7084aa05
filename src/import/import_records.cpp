#include "import/import_records.h"

#include <algorithm>
#include <bit>

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
    m_kinds.clear();
    for (const RecordFieldInfo& f : RecordLayout(table))
        m_kinds.push_back(f.kind);
    // Fresh storage: the last import's memory goes back.
    std::vector<quint64>(n, 0).swap(m_cells);
    m_texts = QString();
    lastRecord = 0;
}

void ImportRecordList::grow(qint32 n)
{
    const size_t cells = (size_t(n) + 1) * present.size();
    if (m_cells.size() < cells)
        m_cells.resize(cells, 0);
}

QString ImportRecordList::text(qint32 record, int field) const
{
    return textView(record, field).toString();
}

QStringView ImportRecordList::textView(qint32 record, int field) const
{
    const quint64 bits = slot(record, field);
    return QStringView(m_texts).mid(qsizetype(bits >> 16), qsizetype(bits & 0xFFFF));
}

void ImportRecordList::reserveText(qint64 characters)
{
    // Untouched room costs address space only, but not without end.
    constexpr qint64 kMostReserved = 64 * 1024 * 1024;
    m_texts.reserve(qsizetype(std::clamp<qint64>(characters, 0, kMostReserved)));
}

double ImportRecordList::number(qint32 record, int field) const
{
    return std::bit_cast<double>(slot(record, field));
}

void ImportRecordList::setText(qint32 record, int field, const QString& text)
{
    const qsizetype size = std::min(text.size(), kMaxText);
    const qsizetype at = m_texts.size();
    m_texts.append(QStringView(text).left(size));
    slot(record, field) = quint64(at) << 16 | quint64(size);
}

void ImportRecordList::setNumber(qint32 record, int field, double number)
{
    slot(record, field) = std::bit_cast<quint64>(number);
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
    for (qint32 r = 1; r <= shown; ++r) {
        QStringList parts;
        for (const int f : sampleOrder(list.table)) {
            if (!list.isPresent(f))
                continue;
            parts << (layout[size_t(f)].kind == CellKind::Text
                          ? QStringLiteral("''") + TrimBlanks(list.text(r, f)) + QStringLiteral("''")
                          : PlainNumber(list.number(r, f)));
        }
        text += crlf + parts.join(QStringLiteral(" , "));
    }
    return text + crlf + QStringLiteral("e.t.c.");
}

} // namespace tp
