#pragma once
// Writing an export file from a data set's assembler: the save flow after the file name was
// chosen. It refuses a read-only file, streams the selected records into the file (header line
// first), and marks the exported records once the file is complete.
//
// For a data set that marks, every record goes into exactly one complete file and is marked
// once: the run holds the data set's ExportLock from before the load until the marks are
// committed, and the steps are ordered so that a failure or a kill at any moment leaves the
// chosen name as it was with nothing marked, or the complete file with its records marked.
// Only a kill in the instant between the file's rename and the commit leaves a complete file
// whose records are still waiting (they go into the next export again).
#include "export/assembler.h"
#include "delivery/export_writer.h"

#include <QString>
#include <vector>

namespace tp {

class Feedback;
class cDAO;

inline const QString kFileNameEmpty = QStringLiteral("File name is empty");
inline const QString kExportCompleted = QStringLiteral("Export Completed Successfully");
inline const QString kExportUnsuccessful = QStringLiteral(". Export unsuccessful");

struct OutputColumn {
    QString fieldName;   // as the assembler knows it (record grid header)
    QString dataType;    // "Number", "Text", "Boolean"
    QString header;      // "Text File Header" (the field name when no catalogue row has it)
};

struct ExportJob {
    ExportRequest request;                 // request.fields is taken from columns
    std::vector<OutputColumn> columns;
    QString fileName;                      // empty: the user cancelled the dialog
    FileEncoding encoding = FileEncoding::Windows1252;
    // Mark the written records after a complete file (time and inventory data); needs
    // database, the connection the assembler works on.
    bool markAfterSuccess = true;
    cDAO* database = nullptr;
};

struct ExportJobResult {
    enum Outcome {
        Completed, ReadOnlyRefused, NoFileName, Cancelled, Declined, Failed,
        NothingLeft   // another run exported what was selected: "There are no records available."
    };
    Outcome outcome = Failed;
    // The status text the save ends with: "Export Completed Successfully", "File name is empty"
    // (no name, cancelled, declined), "There are no records available." or "<cause>. Export
    // unsuccessful" (a write, the lock or the marking failed; the chosen name holds what it
    // held before). Unchanged ("") when a read-only file was refused.
    QString status;
    qint64 records = 0;    // record lines written
    qint64 marked = -1;    // records marked; -1 when marking did not run
};

// cancel is the owner's cancel flag; the load tests it and sets it when the user declines.
ExportJobResult runExport(const ExportJob& job, ExportAssembler& assembler, Feedback& feedback,
                          bool& cancel);

} // namespace tp
