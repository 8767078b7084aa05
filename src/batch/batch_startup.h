#pragma once
// What the main window does before a function's window opens: start-up with the host's
// command line, then the function's permission gate.
#include "startup/startup.h"

#include <QString>

namespace tp::batch {

struct Options;

// The run's choices, for the set-up lines on standard error.
void describeRun(const Options& options);

// Runs the main window's start-up for this settings file and user, with Export offered.
// False when the program must end: the settings or the database could not be opened (the
// message has been shown, followed by one line saying what was tried).
bool startUp(const QString& settingsFile, const QString& userId);

// The main window's gate for the function. False after its refusal has been shown, followed
// by one line naming the user and the data set.
bool passGate(FunctionMode mode);

// Why start-up failed, as one line: the settings file looked for, the database location
// tried (no password), or an empty database setting. Empty when start-up did not fail.
QString startUpFailure(const QString& settingsFile);

} // namespace tp::batch
