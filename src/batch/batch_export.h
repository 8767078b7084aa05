#pragma once
// The scan and the save of an export, once the data set and its fields are chosen. Kept
// apart from the session's header (its catalogue and the assemblers' header both name the
// tables).
#include "batch/batch_options.h"

#include <QString>
#include <cstdio>
#include <vector>

namespace tp::batch {

class ConsoleFeedback;

// What the window's first stage leaves for the later ones.
struct ExportChoices {
    struct Column {
        QString name, type, header;
    };
    QString table;                 // msTableSelected
    qint32 exportId = 0;           // mlExportID
    std::vector<Column> columns;   // output columns in order
};

// Checks the date range, scans, and writes and marks the file as "Create File" does.
// cancelRequested is the session's cancel flag. Returns the exit status.
int scanAndSave(const ExportChoices& choices, const Options& options, ConsoleFeedback& feedback,
                bool& cancelRequested, std::FILE* out);

} // namespace tp::batch
