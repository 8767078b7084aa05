#pragma once
// What the main window does before a function's window opens: start-up with the host's
// command line, then the function's permission gate.
#include "startup/startup.h"

#include <QString>

namespace tp::batch {

// Runs the main window's start-up for this settings file and user, with Export offered.
// False when the program must end: the settings or the database could not be opened (the
// message has been shown).
bool startUp(const QString& settingsFile, const QString& userId);

// The main window's gate for the function. False after its refusal has been shown.
bool passGate(FunctionMode mode);

} // namespace tp::batch
