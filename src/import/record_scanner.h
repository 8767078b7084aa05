#pragma once
// Record lines of an import file: the heading line matched against the ticked grid rows,
// then each value of a record line given to its field, checked and stored.
#include "import/import_records.h"
#include "import/scan_report.h"

#include <functional>

namespace tp {

class ImportLookups;

// The layout field a grid name (a heading) fills for a data set; -1 when none.
int RecordFieldFor(ImportDataType type, const QString& gridName);

// The heading line: every heading matched in turn against the rows from the grid position
// on. Sets the presence markers and the required list. Returns the scan result: -1 when the
// line is accepted, else the fault (F or G and the grid position set).
qint16 CheckHeadingLine(int fieldCount, const std::function<QString(int)>& heading,
                        const std::vector<FieldSpec>& rows, ImportRecordList& list, ScanState& s);

// One value of record `record`: the first field whose marker is still set takes it (the
// marker is cleared), its check and look-up run, and the value is stored. A required field's
// fault is returned; an optional field's fault stores the field empty (or 0) and gives 0.
qint16 ScanFieldValue(ImportRecordList& list, qint32 record, const QString& value,
                      const ImportLookups& lookups, bool krvSettings, ScanState& s);

// The layout fields of the ticked rows, in grid order (asked once per scan).
std::vector<int> TickedFields(ImportDataType type, const std::vector<FieldSpec>& rows);

// After the last value of a line: the markers of the ticked rows' fields are set again. 4
// when no ticked row names a field of the data set.
qint16 CompleteRecord(ImportRecordList& list, const std::vector<int>& tickedFields);

} // namespace tp
