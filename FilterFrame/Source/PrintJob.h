// The job, from its names to the trailer: what every program does that prints one.

#pragma once

#include "FilterFrame/Source/JobInput.h"

// Once, before anything else is opened: standard descriptors and buffers.
void PrepareProcess();

// Takes names and tickets from the filter's argument vector (see PrintJob) into the records that
// the header is written from. From here on a signal ends the job in order.
void PrepareHeader(char* argv[]);

// Prints a job to standard output: header, PostScript, trailer. `argv` is the filter's argument
// vector: job identifier, user, title, copies (null: no page log) and options behind the program's
// name, and with an
// `argc` of 7 the document's file, which else comes from standard input. The document passes
// through `stage` if there is one. Returns the exit status.
int PrintJob(int argc, char* argv[], const InputStage& stage = {});
