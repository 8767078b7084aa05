#pragma once
// Reading the host product's INI settings file.
#include <QString>
#include <QVariant>
#include <optional>

namespace tp {

// The folder that stands for the "Windows directory": $TALLYPORT_SETTINGS_DIR, else
// $XDG_CONFIG_HOME/tallyport, else ~/.config/tallyport.
QString SettingsFolder();

// The full name under which a settings file is read: a bare name ("KRV.ini") in
// SettingsFolder(), a name with a folder part as it stands.
QString SettingsFilePath(const QString& fileName);
// A name without a folder part: no "/", "\\" or drive colon ("C:KRV.ini" has one).
bool IsBareSettingsName(const QString& fileName);

// Reads one key. Returns "" on success (value set, maybe empty) or a status text
// ("Invalid section name", "Invalid key name", "Invalid file spec", "Ini file was not found",
// "Section was not found", "Key name was not found"), value then empty.
// fileName: a missing (invalid) QVariant or "" means "KRV.ini"; a non-text value is refused.
QString GetOneIniKey(const QString& section, const QString& key, QString& value,
                     const QVariant& fileName = QVariant());

// What the profile reader returns for section/key from a settings file's bytes ("" when absent).
QString ProfileStringFromBytes(const QByteArray& bytes, const QString& section, const QString& key);

// The settings' conversions of a key's text: a number (also in exponent form, 5E-4) and a truth
// value (True/False in any case, or a number); none when the text does not convert.
std::optional<double> SettingsNumber(const QString& text);
std::optional<bool> SettingsTruth(const QString& text);

// Fills globals() from the file named by globals().SettingsFileName. Returns false after the
// fatal message has been shown (missing database path or name): the caller ends the program.
bool SetGlobalsFromINIFile();

} // namespace tp
