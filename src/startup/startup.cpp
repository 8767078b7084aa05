#include "startup/startup.h"

#include "foundation/dao.h"
#include "foundation/feedback.h"
#include "foundation/globals.h"
#include "foundation/permissions.h"
#include "foundation/settings.h"
#include "foundation/sql_literal.h"

namespace tp {

QString JoinArguments(const QStringList& arguments)
{
    return arguments.join(QLatin1Char(' '));
}

bool ParseTruthText(const QString& text, bool* ok)
{
    const QString t = text.trimmed();
    *ok = true;
    if (t.compare(QLatin1String("true"), Qt::CaseInsensitive) == 0)
        return true;
    if (t.compare(QLatin1String("false"), Qt::CaseInsensitive) == 0)
        return false;
    bool numeric = false;
    const double value = t.toDouble(&numeric);
    if (numeric)
        return value != 0.0;
    *ok = false;
    return false;
}

ParseResult ParseCommandLine(const QString& commandLine)
{
    const QStringList fields = commandLine.split(QLatin1Char(','));
    if (fields.size() < 2)
        return ParseResult::Refused;

    Globals& g = globals();
    g.SettingsFileName = fields.at(1);
    bool convertible = false;
    if (fields.size() > 2)
        ParseTruthText(fields.at(2), &convertible);
    if (!convertible || fields.size() < 4) {
        ShowMessage(0, kCriticalCondition);
        return ParseResult::Refused;
    }
    g.AllowExport = fields.at(2).trimmed().toUpper() == QLatin1String("TRUE");
    g.UserID = fields.at(3);
    return ParseResult::Accepted;
}

bool OpenDatabaseIfConfigured(bool* fatal)
{
    *fatal = false;
    Globals& g = globals();
    if (!g.PrimaryDatabasePath.isEmpty() && !g.PrimaryDatabaseName.isEmpty()) {
        if (!OpenPrimaryDatabase()) {
            *fatal = true;
            g.DatabaseOpen = false;
            return false;
        }
        g.DatabaseOpen = true;
        return true;
    }
    ShowMessage(1, kCannotOpenDatabase);
    g.DatabaseOpen = false;
    return false;
}

StartupOutcome RunStartup(const QString& commandLine)
{
    StartupOutcome outcome;
    if (ParseCommandLine(commandLine) == ParseResult::Refused) {
        outcome.importEnabled = false;
        outcome.exportEnabled = false;
        return outcome;
    }
    if (!SetGlobalsFromINIFile()) {
        outcome.fatal = true;
        return outcome;
    }
    bool fatal = false;
    OpenDatabaseIfConfigured(&fatal);
    if (fatal) {
        outcome.fatal = true;
        return outcome;
    }
    if (!globals().AllowExport)
        outcome.exportEnabled = false;
    return outcome;
}

bool IsAdministrator()
{
    cDAO* db = SharedDatabase();
    const auto user = sql::wholeNumber(globals().UserID);
    if (!db || !user)
        return false;
    return db->Records_Exist(QStringLiteral("Select top 1 * from UserNames") +
                             QStringLiteral(" Where Administrator=true") +
                             QStringLiteral(" And UserID=") + *user);
}

bool CommonLocationsExist()
{
    cDAO* db = SharedDatabase();
    if (!db)
        return false;
    return db->Records_Exist(QStringLiteral("Select * from CommonLocations"));
}

namespace {

int countGranted(const std::initializer_list<std::pair<const char*, int>>& rights)
{
    int granted = 0;
    for (const auto& [code, formId] : rights) {
        if (CheckPermission(QString::fromLatin1(code), formId))
            ++granted;
    }
    return granted;
}

AccessOutcome refused()
{
    AccessOutcome outcome;
    outcome.message = kRefusalText;
    outcome.disableButton = true;
    return outcome;
}

} // namespace

AccessOutcome CheckFunctionAccess(FunctionMode mode)
{
    AccessOutcome allowed;
    allowed.allowed = true;

    if (!IsKrvSettings()) {
        if (mode == FunctionMode::Export && !CommonLocationsExist()) {
            AccessOutcome outcome;
            outcome.message = kNoCommonLocations;
            return outcome;
        }
        return allowed;
    }

    if (mode == FunctionMode::Import) {
        if (IsAdministrator())
            return allowed;
        // Every right is checked, in this order, even after one has passed.
        const int granted = countGranted({{"IMP", 2}, {"IMP", 3}, {"IMP", 12}, {"IMP", 0}});
        return granted > 0 ? allowed : refused();
    }
    const int granted = countGranted({{"EXP2", 11}, {"EXP2", 20}, {"EXP", 4}, {"EXP2", 0}});
    return granted > 0 ? allowed : refused();
}

} // namespace tp
