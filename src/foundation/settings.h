#pragma once
// Reading the host product's INI settings file.
#include <QString>
#include <QVariant>

namespace tp {

// The folder that stands for the "Windows directory": $TALLYPORT_SETTINGS_DIR, else
// $XDG_CONFIG_HOME/tallyport, else ~/.config/tallyport.
QString SettingsFolder();

// Reads one key. Returns "" on success (value set, maybe empty) or a status text
// ("Invalid section name", "Invalid key name", "Invalid file spec", "Ini file was not found",
// "Section was not found", "Key name was not found"), value then empty.
// fileName: a missing (invalid) QVariant or "" means "KRV.ini"; a non-text value is refused.
QString GetOneIniKey(const QString& section, const QString& key, QString& value,
                     const QVariant& fileName = QVariant());

// Fills globals() from the file named by globals().SettingsFileName. Returns false after the
// fatal message has been shown (missing database path or name): the caller ends the program.
bool SetGlobalsFromINIFile();

} // namespace tp
