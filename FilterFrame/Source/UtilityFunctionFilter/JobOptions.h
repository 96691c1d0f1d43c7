// The job options that CUPS hands to a filter in its fifth argument, parsed by libcups.

#pragma once

#include <cups/cups.h>

#include <memory>

// A parsed option list. Takes the options text; null counts as empty. The same text is not parsed
// again: libcups keeps its list in order while it grows, which is slow for a text of many options.
class JobOptions {
 public:
  explicit JobOptions(const char* text);

  int count() const;
  cups_option_t* list() const;

 private:
  struct Parsed;
  std::shared_ptr<const Parsed> parsed_;
};

// A decimal integer as the C library reads it (blanks, sign, leading digits; none give 0). What
// does not fit 32 bits becomes the nearest bound.
int DecimalInteger(const char* text);
