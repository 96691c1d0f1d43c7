// What the queue filter says on standard error. CUPS keeps the lines in its error log and shows the
// last warning or error as the queue's state; so a message is one line of its own, and no secret.

#pragma once

#include <string_view>

// One line each, "DEBUG: ", "WARNING: " or "ERROR: " in front. Line ends and other control bytes in
// a message become question marks.
void SayDebug(std::string_view message);
void SayWarning(std::string_view message);
void SayError(std::string_view message);
