#pragma once
// The two commands of the batch tool. Each returns the program's exit status.
#include "batch/batch_options.h"

#include <cstdio>

namespace tp {
class ExportSession;
}

namespace tp::batch {

class ConsoleFeedback;

// The Export window's road for one data set: gates, data set, fields, selection, scan, save.
// The final status text goes to out.
int exportCommand(const Options& options, ConsoleFeedback& feedback, std::FILE* out);

// The Import window's road for one data set: gates, data set, ticked fields, scan of the
// file, confirmation sample, writing. Faults print the window's report; the final status
// text goes to out.
int importCommand(const Options& options, ConsoleFeedback& feedback, std::FILE* out);

// With the data set chosen and its fields ticked: selects the records, scans, formats and
// writes the file as "Create File" does.
int selectScanAndSave(ExportSession& session, const Options& options, ConsoleFeedback& feedback,
                      std::FILE* out);

// "GPS Data": the subjects of --subject, as the track-subject window would choose them. False
// (told) for a track that stands for no subject.
bool chooseGpsSubjects(ExportSession& session, const Options& options, ConsoleFeedback& feedback);

// Prints the last status text (if any) as the run's last word on out; returns status.
int finishWithStatus(ConsoleFeedback& feedback, std::FILE* out, int status);

} // namespace tp::batch
