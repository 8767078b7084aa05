#pragma once
// Files that no output of ours may ever be written over, by whatever path it names them: the
// database with its journal and write-ahead files, the settings file and the program log with
// its older generations. A file that does not exist yet is matched by its folder and name.
#include <QString>

namespace tp {

// What target would overwrite ("the database", "the settings file", "the program log"), or an
// empty text when it may be written.
QString protectedFileAt(const QString& target);

} // namespace tp
