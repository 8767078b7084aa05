#include "import/import_fuzz.h"

#include "import/line_reader.h"
#include "import/record_scanner.h"
#include "import/scan_report.h"
#include "import/value_checks.h"

#include <QTemporaryFile>

namespace tp {

int FuzzImportFile(const std::uint8_t* data, std::size_t size)
{
    QTemporaryFile file;
    if (!file.open())
        return 0;
    file.write(reinterpret_cast<const char*>(data), qint64(size));
    file.flush();

    ImportLookups lookups;
    lookups.branches = {1, 2};
    lookups.groups = {1};
    lookups.states = {QStringLiteral("CA"), QStringLiteral("NY")};
    lookups.serials = {QStringLiteral("310000001")};

    for (const ImportDataType type : {ImportDataType::Customers, ImportDataType::Employees, ImportDataType::Vehicles,
                                      ImportDataType::MapLocations, ImportDataType::Pinpoints}) {
        std::vector<FieldSpec> rows = ImportSpecRows(type, true);
        for (FieldSpec& spec : rows)
            spec.ticked = true;
        const std::vector<int> ticked = TickedFields(type, rows);
        ImportRecordList list;
        list.reset(type);
        ScanState s;
        DelimitedLineReader reader;
        reader.setFileName(file.fileName());
        reader.start([&](DelimitedLineReader& line) {
            const int fields = line.fieldCount();
            if (line.lineNumber() == 0) {
                s.result = CheckHeadingLine(fields, [&line](int i) { return line.fieldText(i); }, rows, list, s);
                // A refused heading line still lets the values be tried, against every field.
                if (s.result != ScanHeadingOnly)
                    CompleteRecord(list, ticked);
                return;
            }
            if (line.lineNumber() > 200 || line.blankLine()) {
                line.stop();
                return;
            }
            const qint32 record = qint32(line.lineNumber());
            list.grow(record);
            for (int i = 1; i <= fields && i <= 64; ++i)
                if (ScanFieldValue(list, record, line.fieldText(i), lookups, true, s) != ScanOk)
                    break;
            CompleteRecord(list, ticked);
            list.lastRecord = record;
        });
        (void)ScanReportText(s);
        (void)ConfirmationText(list, QString());
    }
    return 0;
}

} // namespace tp
