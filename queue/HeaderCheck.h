// What a job header must look like, whatever its values are.

#pragma once

#include <string>
#include <string_view>

// The first line of `header` that is not one of PJL's: without a line end, with a control byte, or
// with quotes that do not enclose its last value. Empty when all lines are whole.
std::string_view BrokenLine(std::string_view header);

// Whether a text can stand between a header's quotes: no quote, no control byte (of ISO Latin-1 and
// of UTF-8).
bool FitsHeader(std::string_view text);
