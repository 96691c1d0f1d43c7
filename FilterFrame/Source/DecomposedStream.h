// Decomposed mode, for printers that take the PostScript apart themselves and want the settings it
// carries as PJL: the job is spooled to a temporary file while its settings are collected and
// written, and the PostScript follows from there.

#pragma once

#include <string>
#include <string_view>

#include "FilterFrame/Source/JobInput.h"

// Name of the spool file of the job, and the format of the name on older systems, which no job
// uses.
extern char PPDPJLOutFilePath[255];
inline constexpr char PPDPJLOutFileFormat[] = "/private/tmp/\"zlv\"\"PPDPJL%s.job\"";

// Attribute names of the calibration and of the tone-curve and screen settings; null ends a list.
extern const char* const CPRCommand[];
extern const char* const TRCSCRCommand[];

// The whole mode. With `argc` 7 the job comes from the file argv[6], otherwise from standard input.
// A job that cannot be opened or spooled writes nothing here; a job that CUPS cancels while it is
// spooled leaves the spool file behind.
void OutputPSStreamtoFileandInsertPJLforFeaturePDE(int argc, char* argv[],
                                                   const InputStage& stage = {});

// A copy of text[first..last], both included; empty when `last` is before `first`. What lies
// outside the text is left out.
std::string GetSubString(std::string_view text, long first, long last);

// Writes an attribute line to standard output for each name of a list with the value at its index.
void outputXPJLCommandFromArray(const char* const* names, const int* values);
