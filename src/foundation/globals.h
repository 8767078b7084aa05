#pragma once
// Process-wide settings filled at start-up from the command line and the settings file.
#include <QString>
#include <memory>

namespace tp {

class cDAO;

struct Globals {
    // From the command line.
    QString SettingsFileName;
    QString UserID;
    bool AllowExport = false;
    bool DatabaseOpen = false;
    // From the settings file.
    QString PrimaryDatabasePath;
    QString PrimaryDatabaseName;
    QString SevereErrorSetting;
    QString MinorErrorSetting;
    QString FieldPSPSetting;
    double GPSTargetAreaDeviation = 0;
    bool Field6Flag = false;
    QString DatabasePassword;
    // PRIMARY / LogFolder: where the program log goes when the database is on a PostgreSQL
    // server (there is no database folder to put it beside).
    QString LogFolder;
};

Globals& globals();
// Back to a fresh start (tests run many start-ups in one process); drops the shared database.
void resetGlobals();

// The one database object; null until OpenPrimaryDatabase succeeded.
cDAO* SharedDatabase();
void setSharedDatabase(std::unique_ptr<cDAO> db);

// True when the active settings file is exactly "KRV.ini" (case counts).
bool IsKrvSettings();

// PrimaryDatabasePath + PrimaryDatabaseName joined as they stand, separators made native.
QString PrimaryDatabaseFile();

} // namespace tp
