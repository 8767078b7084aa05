#include "export/export_catalogue.h"

#include "export/availability.h"
#include "foundation/feedback.h"
#include "foundation/globals.h"
#include "foundation/permissions.h"

namespace tp {

namespace {

const QString N = QStringLiteral("Number");
const QString T = QStringLiteral("Text");
const QString B = QStringLiteral("Boolean");

std::vector<CatalogueField> fields(std::initializer_list<std::pair<const char*, const QString*>> list)
{
    std::vector<CatalogueField> out;
    out.reserve(list.size());
    for (const auto& [name, type] : list)
        out.push_back({QString::fromLatin1(name), *type});
    return out;
}

ExportDataSet timeData()
{
    return {ExportDataType::TimeData, kListTime, kTableTime,
            QStringLiteral("Time: Select the fields to export."), QString(), QString(),
            AvailabilityCheck::Time, true,
            fields({{"TimeRecordID", &N}, {"EmployeeNumber", &N}, {"VehicleNumber", &N},
                    {"EmployeeFirstName", &T}, {"EmployeeLastName", &T}, {"Date", &N},
                    {"Time", &N}, {"CustomerNumber", &N}, {"IsJobInRecord", &B},
                    {"IsTimeInRecord", &B}, {"IsJobOutRecord", &B}, {"IsTimeOutRecord", &B},
                    {"OdometerReading", &N}, {"Approved", &N}, {"ExportID", &N}})};
}

ExportDataSet inventoryData()
{
    return {ExportDataType::InventoryData, kListInventory, kTableInventory,
            QStringLiteral("Inventory: Select the fields to export."), QString(), QString(),
            AvailabilityCheck::Inventory, false,
            fields({{"InventoryHistoryID", &N}, {"InventoryNumber", &N}, {"EmployeeID", &N},
                    {"EmployeeFirstName", &T}, {"EmployeeLastName", &T}, {"CustomerID", &N},
                    {"UsedQuantity", &N}, {"Date", &N}, {"Time", &N}, {"Approved", &N},
                    {"ExportID", &N}})};
}

ExportDataSet gpsByEmployee()
{
    return {ExportDataType::GpsByEmployee, kListGps, kTableGps,
            QStringLiteral("GPS Coordinates: Select the fields to export."), kSelectEmployee,
            QString(), AvailabilityCheck::Gps, true,
            fields({{"EmployeeFirstName", &T}, {"EmployeeLastName", &T}, {"TrackID", &N},
                    {"Longitude", &N}, {"Latitude", &N}, {"Date", &N}, {"Time", &N},
                    {"Speed", &N}, {"LicenseNumber", &T}, {"VehicleID", &N}})};
}

ExportDataSet mapLocations()
{
    return {ExportDataType::MapLocations, kListMapLocations, kTableLocations,
            QStringLiteral("Map Locations Data: Select the fields to export."), QString(),
            QString(), AvailabilityCheck::Locations, false,
            fields({{"LocationNumber", &N}, {"LocationName", &T}, {"Address1", &T},
                    {"Address2", &T}, {"City", &T}, {"State", &T}, {"ZipCode", &T},
                    {"Longitude", &T}, {"Latitude", &T}, {"BranchNumber", &N}})};
}

ExportDataSet gpsByUnit()
{
    return {ExportDataType::GpsByUnit, kListGps, kTableGps,
            QStringLiteral("GPS Coordinates:  Select the fields to export."), kSelectUnit,
            QStringLiteral("Select Date"), AvailabilityCheck::Gps, false,
            fields({{"Assigned To", &T}, {"Unit Identifier", &T}, {"TrackID", &N},
                    {"Longitude", &N}, {"Latitude", &N}, {"Time", &N}, {"Date", &N},
                    {"Speed", &N}})};
}

ExportDataSet pinpoints()
{
    return {ExportDataType::Pinpoints, kListPinpoints, kTableLocations,
            QStringLiteral("Pinpoint Data: Select the fields to export."), kSelectAllRecords,
            QString(), AvailabilityCheck::Locations, false,
            fields({{"PinpointName", &T}, {"Address1", &T}, {"Address2", &T}, {"City", &T},
                    {"State", &T}, {"ZipCode", &T}, {"Longitude", &T}, {"Latitude", &T}})};
}

} // namespace

const ExportDataSet& DataSetInfo(ExportDataType type)
{
    static const ExportDataSet sets[] = {timeData(), inventoryData(), gpsByEmployee(),
                                         mapLocations(), gpsByUnit(), pinpoints()};
    return sets[static_cast<int>(type)];
}

const ExportDataSet* FindDataSet(const QString& listText, bool krvSettings)
{
    const std::initializer_list<ExportDataType> krv = {
        ExportDataType::TimeData, ExportDataType::InventoryData, ExportDataType::GpsByEmployee,
        ExportDataType::MapLocations};
    const std::initializer_list<ExportDataType> other = {ExportDataType::GpsByUnit,
                                                         ExportDataType::Pinpoints};
    for (ExportDataType t : krvSettings ? krv : other) {
        const ExportDataSet& set = DataSetInfo(t);
        if (set.listText == listText)
            return &set;
    }
    return nullptr;
}

QStringList OfferedDataSets(cDAO& db, Feedback& feedback)
{
    QStringList offered;
    if (!IsKrvSettings()) {
        offered << kListGps;
        if (avail::LocationRecordsAvailable(db, feedback) == 1)
            offered << kListPinpoints;
        return offered;
    }
    if (CheckPermission(QStringLiteral("EXP2"), 11))
        offered << kListTime;
    if (CheckPermission(QStringLiteral("EXP2"), 20))
        offered << kListInventory;
    if (CheckPermission(QStringLiteral("EXP2"), 26))
        offered << kListGps;
    if (CheckPermission(QStringLiteral("EXP2"), 0) &&
        avail::LocationRecordsAvailable(db, feedback) == 1)
        offered << kListMapLocations;
    return offered;
}

} // namespace tp
