#pragma once
// Date, time and text conversions of stored values; positions only, no range checks.
#include <QDateTime>
#include <QString>

namespace tp {

inline const QString kInvalidParameter = QStringLiteral("ERROR:Invalid Parameter");

QString ConvertField2StandardDate(const QString& s);   // YYYYMMDD -> MM/DD/YYYY
QString ConvertStandard2FieldDate(const QString& s);   // MM/DD/YYYY -> YYYYMMDD
QString FormatStoredTime(qint64 t, bool twelveHour);   // HHMMSS number -> clock text
QDateTime GmtNow();
bool FileExists(const QString& path);       // ordinary files and folders, hidden ones not found
bool IsExistingFile(const QString& path);   // files incl. hidden/read-only, folders not
bool CheckPhoneField(QString& phone);       // may rewrite phone in place

// A path as written in a settings file, with "\" or "/" as separators, for this platform.
QString NativePath(const QString& path);

// The numeric test of the old platform as the import and settings use it: optional blanks,
// optional sign, digits with an optional period decimal part (or a period and digits),
// optional blanks. No exponent, no thousands separators.
bool isNumericText(const QString& text);

// The text with leading and trailing blanks (spaces only) removed, as the old Trim did.
QString TrimBlanks(const QString& text);
// The same without a copy: the view of text between its leading and trailing blanks.
QStringView TrimBlanks(QStringView text);

// 8-bit Windows-1252 bytes of a text; characters outside the code page become "?".
QByteArray toWindows1252(const QString& text);

} // namespace tp
