// The job header: what the printer receives before the PostScript, and the frame lines around it.

#pragma once

#include <cstdint>
#include <vector>

#include "engine/CommandTable.h"

// The frame lines, each a table of one row.
extern const PrtFmt prtFmtTableXPJLHead[];  // exit sequence
extern const std::int32_t numFmtTableXPJLHead;
extern const RowTable rowTableXPJLHead;
extern const PrtFmt prtFmtTableXPJLJobMode[];  // job mode
extern const std::int32_t numFmtTableXPJLJobMode;
extern const RowTable rowTableXPJLJobMode;
extern const PrtFmt prtFmtTableXPJLTrailer[];  // exit sequence and end of job
extern const std::int32_t numFmtTableXPJLTrailer;
extern const RowTable rowTableXPJLTrailer;
extern const PrtFmt prtFmtTableEnterPS[];  // switch into PostScript
extern const std::int32_t numFmtTableEnterPS;
extern const RowTable rowTableEnterPS;

// Every table of rows, those of the frame and of all modules, in the order of the header.
std::vector<const RowTable*> RowTables();

// Binds the frame lines and every module's rows. Called once, before any output.
void InializeDescriptionTable();

// Writes the whole job header to standard output. `args` is the filter's argument vector.
void OutputXPJLCommand(char* args[]);

// Tells a UTF-8 printer that the header's texts are UTF-8; writes nothing for others.
void OutputXPJLCommandLanguageEncodingForModelGroup();

// Which job summary the job's printer reads. A printer with a language encoding other than UTF-8
// knows the short one only; the long one is asked for by the PPD. Without an encoding, models whose
// PCFileName contains one of the texts `modelsAlwaysShort`, null behind the last, get the short
// one.
enum class CommentBlock { kNone, kShort, kLong };
CommentBlock ChooseCommentBlock(const char* const* modelsAlwaysShort);
