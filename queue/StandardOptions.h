// A job's options before they are looked up in the PPD: what a queue has locked is taken out, and
// standard attributes become the options that they stand for.

#pragma once

#include <cups/ppd.h>

#include <vector>

#include "queue/Choices.h"
#include "queue/Complaints.h"

// Where the PPD's default of ZLVAccountingLock is True, nothing that has to do with accounting
// comes from the job. The lock itself never does.
std::vector<JobOption> WithoutLocked(ppd_file_t* ppd, std::vector<JobOption> options,
                                     Complaints& complaints);

// A password that cannot be an option, because of its encryption or the printer, fails the job.
std::vector<JobOption> WithAttributes(ppd_file_t* ppd, std::vector<JobOption> options,
                                      Complaints& complaints);
