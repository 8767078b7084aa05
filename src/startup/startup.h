#pragma once
// Start-up of the tool: the command line, settings, database and the two function gates.
// No widgets here: the main window and the batch tool apply the same outcomes.
#include <QString>
#include <QStringList>

namespace tp {

inline const QString kCriticalCondition = QStringLiteral("Critical Condition Have Occurred");
inline const QString kCannotOpenDatabase = QStringLiteral("Cannot open database");
inline const QString kNoCommonLocations =
    QStringLiteral("There are no Common Location Records Available.");
// Lines are separated by a single carriage return, no line feed.
inline const QString kRefusalText = QStringLiteral(
    "You do not have the appropriate user\r"
    "security rights for this functionality.\r"
    "Please, see your System Administrator.");

// The program's arguments (without the program name) joined by single blanks: the one text
// the host passes.
QString JoinArguments(const QStringList& arguments);

enum class ParseResult { Accepted, Refused };

// Splits the command line at commas and fills SettingsFileName, AllowExport and UserID.
// Refused without a message when there is no comma; refused after "Critical Condition Have
// Occurred" when field 2 or 3 is missing or field 2 is not a truth value.
ParseResult ParseCommandLine(const QString& commandLine);

// A truth value as the host writes it: True/False in any letter case, or a number.
bool ParseTruthText(const QString& text, bool* ok);

// Opens the database when both path and name are known; "Cannot open database" otherwise.
// fatal is set when the open itself failed (the message has been shown; end the program).
bool OpenDatabaseIfConfigured(bool* fatal);

struct StartupOutcome {
    bool fatal = false;          // end the program with a failure status
    bool importEnabled = true;
    bool exportEnabled = true;
};

// The whole start-up order of the main window's load handler.
StartupOutcome RunStartup(const QString& commandLine);

bool IsAdministrator();
bool CommonLocationsExist();

enum class FunctionMode { Import, Export };

struct AccessOutcome {
    bool allowed = false;
    QString message;              // to show with ShowMessage kind 0; empty: nothing to show
    bool disableButton = false;   // the gate refused for good: the button stays disabled
};

// The permission gate in front of the Import and Export windows. Shows nothing itself.
AccessOutcome CheckFunctionAccess(FunctionMode mode);

} // namespace tp
