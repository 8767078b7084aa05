// The settings-file reader on any bytes: every key the start-up reads, the status of a key
// named by the input, and the number and truth conversions of what comes back.
#include "fuzz_input.h"

#include "foundation/settings.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <cmath>

namespace {

const QTemporaryDir& folder()
{
    static QTemporaryDir dir(tp::fuzz::scratchTemplate());
    return dir;
}

void convert(const QString& value)
{
    if (value.size() > 2047)
        tp::fuzz::finding("a value longer than the reader's buffer");
    if (const auto d = tp::SettingsNumber(value); d && !std::isfinite(*d))
        tp::fuzz::finding("a settings number that is not finite");
    (void)tp::SettingsTruth(value);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char*>(data), qsizetype(size));
    // The deviation is the one read that converts a number; Field6 a truth value.
    convert(tp::ProfileStringFromBytes(bytes, QStringLiteral("GPS"), QStringLiteral("GPSTargetAreaDeviation")));
    convert(tp::ProfileStringFromBytes(bytes, QStringLiteral("PRIMARY"), QStringLiteral("Field6")));

    // The whole reader through the file, with a section and key taken from the input's end.
    const QString file = QDir(folder().path()).filePath(QStringLiteral("fuzz.ini"));
    QFile out(file);
    if (!out.open(QIODevice::WriteOnly | QIODevice::Truncate))
        return 0;
    out.write(bytes);
    out.close();
    const qsizetype cut = bytes.lastIndexOf('\n');
    const QStringList names = QString::fromUtf8(bytes.mid(cut + 1)).split(QLatin1Char('/'));
    QString value;
    const QString status = tp::GetOneIniKey(names.value(0), names.value(1), value, QVariant(file));
    if (!status.isEmpty() && !value.isEmpty())
        tp::fuzz::finding("a failed read that still gave a value");
    convert(value);
    return 0;
}
