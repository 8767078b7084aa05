#pragma once
// How export values are typed and laid out: the typed value of a getter text, the number
// form, one comma-delimited line, and the rows of the text-file preview.
#include <QDateTime>
#include <QString>
#include <QStringList>
#include <vector>

namespace tp {

struct ExportValue {
    enum Kind { Text, Number, Truth, Date } kind = Text;
    QString text;
    double number = 0;
    bool truth = false;
    QDateTime date;   // local date and time of day; time 00:00:00 writes the date alone

    static ExportValue ofText(const QString& s) { return {Text, s, 0, false, {}}; }
    static ExportValue ofNumber(double d) { return {Number, {}, d, false, {}}; }
    static ExportValue ofTruth(bool b) { return {Truth, {}, 0, b, {}}; }
    static ExportValue ofDate(const QDateTime& d) { return {Date, {}, 0, false, d}; }
};

// A field's "Data Type" as the typing reads it (compared without regard to case).
enum class FieldType { Number, Boolean, Date, Other };
FieldType fieldTypeOf(const QString& dataType);

// The typed value of getter text s for a field of data type dataType ("Number", "Text",
// "Boolean", compared without regard to case).
ExportValue TypeValue(const QString& s, const QString& dataType);
ExportValue TypeValue(const QString& s, FieldType type);

// Numeric by the rules the files have always used: optional blanks, optional sign, digits
// with an optional period and decimals, an optional power of ten. "007", " -12.50 ", ".5",
// "1E+21" are numeric; "1,5", "1e", "e5" not.
bool isExportNumeric(const QString& s);

// A stored number's text read as a 32-bit whole number, rounded; 0 when it is no number or
// does not fit (the clock and date layouts take whole numbers).
qint32 storedWholeNumber(const QString& text);
// Shortest text that reads back as d, at most 15 significant digits, period as separator,
// plain decimal whatever the size (no exponent): 20050131, 12.5, -95.2, 0.5, 0.00000001.
QString formatExportNumber(double d);

// A stored time as the getter and the record grid read it before formatting: the nearest
// whole number (halves to the even one, as the old 32-bit reading did), 0 for a text that is
// no number. Whole numbers of any size stay as they are.
qint64 storedTimeNumber(const QString& text);
// Format Time's text of a stored time: FormatStoredTime (24-hour) of storedTimeNumber.
QString formatStoredTimeText(const QString& text);

// One line of the file: values joined by commas, texts in double quotes (inner quotes
// unchanged), #TRUE#/#FALSE#, #YYYY-MM-DD[ HH:MM:SS]#, ended by CR LF.
QString exportLineText(const std::vector<ExportValue>& values);
void appendExportLine(QString& out, const std::vector<ExportValue>& values);
// The header line: every header text as a text value.
QString exportHeaderText(const QStringList& headers);

// Preview grid texts: the header row (''Header'' joined by " , ") and one record row from the
// record grid's cell texts and the columns' data types.
QString previewHeaderText(const QStringList& headers);
QString previewRecordText(const QStringList& cells, const QStringList& dataTypes);

} // namespace tp
