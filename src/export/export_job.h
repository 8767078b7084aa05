#pragma once
// Writing an export file from a data set's assembler: the save flow after the file name was
// chosen. It refuses a read-only file, streams the selected records into the file (header line
// first), and marks the exported records once the file is complete.
#include "export/assembler.h"
#include "export/export_writer.h"

#include <QString>
#include <vector>

namespace tp {

class Feedback;

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
    // Mark the written records after a complete file (time and inventory data). Callers that
    // mark themselves pass false and use ExportJobResult::rows with ExportAssembler::mark.
    bool markAfterSuccess = true;
};

struct ExportJobResult {
    enum Outcome { Completed, ReadOnlyRefused, NoFileName, Cancelled, Declined, Failed };
    Outcome outcome = Failed;
    // The status text the save ends with: "Export Completed Successfully", "File name is empty"
    // (no name, cancelled, declined) or "<error>. Export unsuccessful". Unchanged ("") when a
    // read-only file was refused.
    QString status;
    qint64 records = 0;    // record lines written
    qint64 marked = -1;    // records marked; -1 when marking did not run or failed
    ExportedRows rows;     // the rows written (for a caller that marks itself)
};

// cancel is the owner's cancel flag; the load tests it and sets it when the user declines.
ExportJobResult runExport(const ExportJob& job, ExportAssembler& assembler, Feedback& feedback,
                          bool& cancel);

} // namespace tp
