// Where a job would go: a PPD, and the options that a queue adds to every job.

#pragma once

#include <cups/ppd.h>

#include <string>
#include <vector>

#include "queue/Choices.h"

struct QueueSource {
  ppd_file_t* ppd = nullptr;  // the job's (see JobPPD)
  std::vector<JobOption> options;
  std::string error;  // why there is no PPD; empty when there is one
};

// A PPD from a file.
QueueSource PPDFromFile(const std::string& file);

// A queue's PPD and defaults, asked from CUPS; CUPS_SERVER names another server. An instance of the
// user's stands behind a slash, as for lp.
QueueSource PPDFromQueue(const std::string& queue);

// Options as lp takes them behind -o: several with blanks between, switches by their name alone.
std::vector<JobOption> ParsedOptions(std::string text);
