#pragma once
// The export data sets: what the list offers, the key each one selects, and the fields
// each one can write.
#include "export/table_keys.h"

#include <QString>
#include <QStringList>
#include <vector>

namespace tp {

class cDAO;
class Feedback;

enum class ExportDataType { TimeData, InventoryData, GpsByEmployee, MapLocations, GpsByUnit, Pinpoints };

enum class AvailabilityCheck { Time, Inventory, Gps, Locations };

struct CatalogueField {
    QString name;   // as the loaders and the writer know it
    QString type;   // "Number", "Text" or "Boolean"
};

struct ExportDataSet {
    ExportDataType type;
    QString listText;           // text in the data-set list
    QString tableKey;           // msTableSelected
    QString selectionCaption;   // lblSelection
    QString allCaption;         // cmdAll; empty: the caption stays as it is
    QString dateCaption;        // cmdDate; empty: the caption stays as it is
    AvailabilityCheck check;
    bool loadBeforeCheck;       // catalogue into the grid before the availability check
    std::vector<CatalogueField> fields;

    int fieldCount() const { return static_cast<int>(fields.size()); }
};

inline const QString kListTime = QStringLiteral("Time Data");
inline const QString kListInventory = QStringLiteral("Inventory Data");
inline const QString kListGps = QStringLiteral("GPS Data");
inline const QString kListMapLocations = QStringLiteral("Map Locations Data");
inline const QString kListPinpoints = QStringLiteral("Pinpoint Data");
inline const QString kNoSelectionAvailable = QStringLiteral("No Selection Available");

inline const QString kSelectAllRecords = QStringLiteral("Select All Records");
inline const QString kSelectEmployee = QStringLiteral("Select Employee");
inline const QString kSelectUnit = QStringLiteral("Select Unit");
inline const QString kSelectRecordsByDate = QStringLiteral("Select Records by Date");

const ExportDataSet& DataSetInfo(ExportDataType type);

// The data set behind a list text under the given settings variant; nullptr for other texts.
const ExportDataSet* FindDataSet(const QString& listText, bool krvSettings);

// The list texts the signed-in user may choose, in list order, under the active settings
// file; empty when there is none. Runs the permission checks and the locations check.
QStringList OfferedDataSets(cDAO& db, Feedback& feedback);

} // namespace tp
