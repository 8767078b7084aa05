// The export typing and line writer: getter texts typed by any data type, numbers laid out,
// and the lines written through the file writer in both encodings.
#include "fuzz_input.h"

#include "export/export_values.h"
#include "delivery/export_writer.h"

#include <QDir>
#include <QTemporaryDir>
#include <cmath>

namespace {

const QTemporaryDir& folder()
{
    static QTemporaryDir dir(tp::fuzz::scratchTemplate());
    return dir;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    tp::fuzz::Input in(data, size);
    const double number = in.as<double>();
    const tp::FileEncoding encoding = in.byte() & 1 ? tp::FileEncoding::Utf8 : tp::FileEncoding::Windows1252;

    if (std::isfinite(number) && (number == 0 || (std::fabs(number) >= 1e-6 && std::fabs(number) < 1e20))) {
        const QString written = tp::formatExportNumber(number);
        if (!tp::isExportNumeric(written))
            tp::fuzz::finding("a number written in a form that does not read as a number");
    }

    static const QString types[] = {QStringLiteral("Number"), QStringLiteral("Text"),
                                    QStringLiteral("Boolean"), QStringLiteral("Date"),
                                    QStringLiteral("bOOLEAN"), QString()};
    std::vector<tp::ExportValue> values;
    QStringList cells, dataTypes, headers;
    while (!in.empty() && values.size() < 64) {
        const QString& type = types[in.byte() % std::size(types)];
        const QString text = in.text();
        values.push_back(tp::TypeValue(text, type));
        cells << text;
        dataTypes << type;
        headers << text;
    }
    values.push_back(tp::ExportValue::ofNumber(number));

    const QString line = tp::exportLineText(values);
    if (!line.endsWith(QLatin1String("\r\n")))
        tp::fuzz::finding("a line without its CR LF");
    (void)tp::exportHeaderText(headers);
    (void)tp::previewHeaderText(headers);
    (void)tp::previewRecordText(cells, dataTypes);

    tp::ExportFileWriter writer(encoding);
    if (!writer.open(QDir(folder().path()).filePath(QStringLiteral("out.txt"))))
        return 0;
    if (!writer.writeHeader(headers) || !writer.writeLine(values) || !writer.finish())
        tp::fuzz::finding("the writer failed on a writable file");
    return 0;
}
