#include "import/import_fuzz.h"

#include "import/line_reader.h"
#include "import/record_scanner.h"
#include "import/scan_report.h"
#include "import/value_checks.h"

#include <QBuffer>

#include <array>

namespace tp {

namespace {

// Record lines checked after the heading line; more only repeat what these reach.
constexpr qint64 kMaxRecordLines = 200;
// Values of one line given to the checks; a data set has fewer fields than that.
constexpr int kMaxValues = 64;

// The grid of one data set with every field ticked: the same for every input, so made once.
struct DataSetGrid {
    ImportDataType type;
    std::vector<FieldSpec> rows;
    std::vector<int> ticked;
};

const std::array<DataSetGrid, 5>& grids()
{
    static const std::array<DataSetGrid, 5> all = [] {
        std::array<DataSetGrid, 5> out;
        const ImportDataType types[] = {ImportDataType::Customers, ImportDataType::Employees,
                                        ImportDataType::Vehicles, ImportDataType::MapLocations,
                                        ImportDataType::Pinpoints};
        for (size_t k = 0; k < out.size(); ++k) {
            out[k].type = types[k];
            out[k].rows = ImportSpecRows(types[k], true);
            for (FieldSpec& spec : out[k].rows)
                spec.ticked = true;
            out[k].ticked = TickedFields(types[k], out[k].rows);
        }
        return out;
    }();
    return all;
}

const ImportLookups& lookups()
{
    static const ImportLookups filled = [] {
        ImportLookups l;
        l.branches = {1, 2};
        l.groups = {1};
        l.states = {QStringLiteral("CA"), QStringLiteral("NY")};
        l.serials = {QStringLiteral("310000001")};
        return l;
    }();
    return filled;
}

} // namespace

int FuzzImportFile(const std::uint8_t* data, std::size_t size)
{
    // Read in place: no copy of the input, no file.
    QByteArray bytes = QByteArray::fromRawData(reinterpret_cast<const char*>(data), qsizetype(size));
    QBuffer buffer(&bytes);
    if (!buffer.open(QIODevice::ReadOnly))
        return 0;

    // One reading of the file feeds all five data sets, each with its own list and state.
    const auto& all = grids();
    struct Scan {
        ImportRecordList list;
        ScanState state;
    };
    std::array<Scan, 5> scans;
    for (size_t k = 0; k < all.size(); ++k)
        scans[k].list.reset(all[k].type);

    static DelimitedLineReader reader;   // keeps its read buffer from one input to the next
    QStringList values;
    reader.start(buffer, [&](DelimitedLineReader& line) {
        const int fields = line.fieldCount();
        if (line.lineNumber() == 0) {
            for (size_t k = 0; k < all.size(); ++k) {
                Scan& scan = scans[k];
                scan.state.result = CheckHeadingLine(fields, [&line](int i) { return line.fieldText(i); },
                                                     all[k].rows, scan.list, scan.state);
                // A refused heading line still lets the values be tried, against every field.
                if (scan.state.result != ScanHeadingOnly)
                    CompleteRecord(scan.list, all[k].ticked);
            }
            return;
        }
        if (line.lineNumber() > kMaxRecordLines || line.blankLine()) {
            line.stop();
            return;
        }
        values.clear();
        for (int i = 1; i <= fields && i <= kMaxValues; ++i)
            values << line.fieldText(i);
        const qint32 record = qint32(line.lineNumber());
        for (size_t k = 0; k < all.size(); ++k) {
            Scan& scan = scans[k];
            scan.list.grow(record);
            for (const QString& value : values)
                if (ScanFieldValue(scan.list, record, value, lookups(), true, scan.state) != ScanOk)
                    break;
            CompleteRecord(scan.list, all[k].ticked);
            scan.list.lastRecord = record;
        }
    });
    for (const Scan& scan : scans) {
        (void)ScanReportText(scan.state);
        (void)ConfirmationText(scan.list, QString());
    }
    return 0;
}

} // namespace tp
