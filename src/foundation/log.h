#pragma once
// The program log beside the database (or in a folder of its own for a PostgreSQL database):
// STEM.LOG with ten older generations.
#include <QString>

namespace tp {

// Appends one entry (header line + message wrapped at 68 columns). Never throws.
void WriteLog(const QString& message);

// Stem of the log file: first six characters of the program's file name without extension.
// Defaults to the running executable's name; tests and tools may set it.
void setLogStem(const QString& stem);
QString logStem();

// The log's folder: PrimaryDatabasePath beside an SQLite file. With a PostgreSQL location:
// the settings' LogFolder, else $XDG_STATE_HOME/tallyport, else ~/.local/state/tallyport
// (these two are made when missing).
QString LogFolder();

// Closes the kept handle (tests; the next WriteLog opens the file again).
void closeLog();

// The computer name used in log headers.
QString MachineName();

} // namespace tp
