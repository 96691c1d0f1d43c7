// The PostScript pass-through: copies the job and lets the modules inject PostScript at the
// boundaries it recognises. Shared with the spooling of decomposed mode: what happens at a token.

#pragma once

#include <cstdio>
#include <string_view>

#include "FilterFrame/Source/JobInput.h"
#include "FilterFrame/Source/PostScriptLines.h"

// Copies the PostScript to standard output, closed by byte 4. With `argc` 6 the job comes from
// standard input, otherwise from the file argv[6]; one that cannot be opened writes nothing. A
// cancelled job ends without the byte 4.
void OutputPSStream(int argc, char* argv[], const InputStage& stage = {});

// Says on standard error why reading ended before the end of the input, if it did.
void ReportReadError(const PostScriptLines& lines);

// The byte that ends the PostScript.
inline constexpr char kEndOfTransmission = 4;

// Where a stream stands.
struct StreamPosition {
  int page = 0;              // pages ended so far
  bool prologEnded = false;  // the first line of the kind that counts only once has passed
};

// Writes a token's line to `stream` with everything that belongs to it: page count, hook, page log.
// False when the stream ends here: the job is cancelled, and the line is not written, or a spool
// file does not take the page, which then is not logged.
bool OutputTokenLine(const PostScriptToken& token, std::string_view line, StreamPosition& position,
                     std::FILE* stream, char* argv[]);

// Tells CUPS of a printed page, where the system counts pages this way: page number and argv[4],
// the copies, on standard error. Null copies: another program has told CUPS.
void OutputPageLogCommand(int page, char* argv[]);

// Copies the job option ZLVOutputMode into g_DLOutputMode. Returns 1, or 0 when it is absent. A
// service for output-mode decisions; the job itself does not need it.
int GetDLOutputMode(char* argv[]);
extern char g_DLOutputMode[255];
