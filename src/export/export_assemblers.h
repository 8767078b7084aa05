#pragma once
// Which assembler serves a data set. The session and the batch tool ask here by the data
// set's key (msTableSelected), so a new data set only needs its line below.
#include "export/assembler.h"

#include <memory>

namespace tp {

// The assembler of the data set with this key; nullptr for a data set without one yet.
std::unique_ptr<ExportAssembler> MakeExportAssembler(const QString& tableKey, cDAO& db,
                                                     Feedback& feedback);

} // namespace tp
