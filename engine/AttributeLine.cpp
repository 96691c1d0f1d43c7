// Formatting of hand-written lines.

#include "engine/AttributeLine.h"

#include <algorithm>
#include <cstdarg>

#include "FilterFrame/Source/UtilityFunctionFilter/OutputPrimitives.h"

void OutputFormattedLine(std::FILE* stream, const char* format, ...) {
  char line[kLineSize];
  va_list arguments;
  va_start(arguments, format);
  std::vsnprintf(line, sizeof line, format, arguments);
  va_end(arguments);
  ZRfprintf(stream, line);
}

void OutputJobAttribute(const char* attribute, const char* value, std::size_t lineSize) {
  char line[256];
  std::snprintf(line, std::min(lineSize, sizeof line), "@PJL SET JOBATTR=\"@%s=%s\"\n", attribute,
                value);
  ZRfputs(line, stdout);
}

void OutputJobAttribute(const char* attribute, int value) {
  OutputFormattedLine(stdout, "@PJL SET JOBATTR=\"@%s=%d\"\n", attribute, value);
}
