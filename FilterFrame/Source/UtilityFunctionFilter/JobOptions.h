// The job options that CUPS hands to a filter in its fifth argument, parsed by libcups.

#pragma once

#include <cups/cups.h>

// Owns a parsed option list. Takes the options text; null counts as empty.
class JobOptions {
 public:
  explicit JobOptions(const char* text);
  ~JobOptions();
  JobOptions(const JobOptions&) = delete;
  JobOptions& operator=(const JobOptions&) = delete;

  int count() const { return count_; }
  cups_option_t* list() const { return list_; }

 private:
  cups_option_t* list_ = nullptr;
  int count_ = 0;
};

// A decimal integer as the C library reads it (blanks, sign, leading digits; none give 0). What
// does not fit 32 bits becomes the nearest bound.
int DecimalInteger(const char* text);
