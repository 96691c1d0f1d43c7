// A job's options as such, before tickets are made of them: names and choices that the printer does
// not have, values out of their range, choices that exclude each other.

#pragma once

#include "queue/Choices.h"
#include "queue/Complaints.h"

// Complains of what libcups passes over in silence, and sets the queue's default in its place. What
// belongs to a hold or an account fails the job, the queue's own defaults of that kind included.
void CheckOptions(Choices& choices, Complaints& complaints);

// Of choices that exclude each other some give way, each to its neutral choice: those that the job
// has not given first.
void ResolveConflicts(ppd_file_t* ppd, const Choices& choices, Complaints& complaints);

// Whether an option of this name decides about a hold or an account.
bool DecidesAboutHold(std::string_view option);
