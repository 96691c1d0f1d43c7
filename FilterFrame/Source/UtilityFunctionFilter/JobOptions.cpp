// Parsing of the job options.

#include "FilterFrame/Source/UtilityFunctionFilter/JobOptions.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>

JobOptions::JobOptions(const char* text) {
  if (text != nullptr) count_ = cupsParseOptions(text, 0, &list_);
}

JobOptions::~JobOptions() {
  cupsFreeOptions(count_, list_);
}

int DecimalInteger(const char* text) {
  return static_cast<int>(std::clamp<long>(std::strtol(text, nullptr, 10), INT32_MIN, INT32_MAX));
}
