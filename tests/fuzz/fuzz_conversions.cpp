// The date, time, phone and text conversions on any text and any stored time.
#include "fuzz_input.h"

#include "foundation/conversions.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    tp::fuzz::Input in(data, size);
    const qint32 stored = in.as<int32_t>();
    const bool twelve = in.byte() & 1;
    const QString text = in.text();
    QString phone = in.text();

    const QString clock = tp::FormatStoredTime(stored, twelve);
    if (stored >= 0 && stored <= 235959 && clock.isEmpty())
        tp::fuzz::finding("a stored time of at most six digits gave no clock text");

    const QString standard = tp::ConvertField2StandardDate(text);
    const QString field = tp::ConvertStandard2FieldDate(text);
    if (tp::TrimBlanks(text).isEmpty() != (standard == tp::kInvalidParameter))
        tp::fuzz::finding("the field-date conversion's blank test disagrees with TrimBlanks");
    (void)field;
    (void)tp::isNumericText(text);
    (void)tp::toWindows1252(text);
    (void)tp::NativePath(text);

    const QString before = phone;
    const bool ok = tp::CheckPhoneField(phone);
    if (phone != before && (!ok || phone.size() != 14))
        tp::fuzz::finding("a phone rewritten but refused, or rewritten to another length");
    return 0;
}
