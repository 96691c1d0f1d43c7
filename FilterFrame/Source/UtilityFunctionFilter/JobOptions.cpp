// Parsing of the job options.

#include "FilterFrame/Source/UtilityFunctionFilter/JobOptions.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string>

struct JobOptions::Parsed {
  explicit Parsed(const char* options) : text(options) {
    count = cupsParseOptions(text.c_str(), 0, &list);
  }
  ~Parsed() { cupsFreeOptions(count, list); }
  Parsed(const Parsed&) = delete;
  Parsed& operator=(const Parsed&) = delete;

  std::string text;
  cups_option_t* list = nullptr;
  int count = 0;
};

JobOptions::JobOptions(const char* text) {
  static std::shared_ptr<const Parsed> last;
  if (text == nullptr) text = "";
  if (last == nullptr || last->text != text) last = std::make_shared<const Parsed>(text);
  parsed_ = last;
}

int JobOptions::count() const {
  return parsed_->count;
}

cups_option_t* JobOptions::list() const {
  return parsed_->list;
}

int DecimalInteger(const char* text) {
  return static_cast<int>(std::clamp<long>(std::strtol(text, nullptr, 10), INT32_MIN, INT32_MAX));
}
