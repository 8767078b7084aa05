#include "foundation/globals.h"

#include "foundation/conversions.h"
#include "foundation/dao.h"
#include "foundation/log.h"

#include <QCoreApplication>

namespace tp {

namespace {
Globals g_globals;
std::unique_ptr<cDAO> g_database;
} // namespace

Globals& globals()
{
    return g_globals;
}

void resetGlobals()
{
    g_database.reset();
    g_globals = Globals{};
    // The log follows PrimaryDatabasePath, so a kept handle would point at the old folder.
    closeLog();
}

cDAO* SharedDatabase()
{
    return g_database.get();
}

void setSharedDatabase(std::unique_ptr<cDAO> db)
{
    g_database = std::move(db);
    // The database driver's registry is gone by the time statics are destroyed: close the
    // shared connection with the application instead.
    static bool closeWithApplication = false;
    if (g_database && !closeWithApplication && QCoreApplication::instance()) {
        qAddPostRoutine([] { g_database.reset(); });
        closeWithApplication = true;
    }
}

bool IsKrvSettings()
{
    return g_globals.SettingsFileName == QLatin1String("KRV.ini");
}

QString PrimaryDatabaseFile()
{
    return NativePath(g_globals.PrimaryDatabasePath + g_globals.PrimaryDatabaseName);
}

} // namespace tp
