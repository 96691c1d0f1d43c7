// The single way to the printer: every byte written here goes to the job copy first, when one is
// open and has not had it yet, and then to the given stream.

#pragma once

#include <unistd.h>

#include <cstddef>
#include <cstdio>
#include <string>

#include "FilterFrame/Source/UtilityFunctionFilter/StandardDescriptors.h"

// Writes `count` elements of `size` bytes each.
void ZRfwrite(const void* buf, std::size_t size, std::size_t count, std::FILE* stream);

// The same for bytes that the job copy has already.
void WriteUncopied(const void* buf, std::size_t size, std::size_t count, std::FILE* stream);

// Writes a NUL-terminated text.
void ZRfputs(const char* str, std::FILE* stream);

// Writes one byte.
void ZRfputc(int c, std::FILE* stream);

// Writes a finished NUL-terminated text as it stands: a percent sign in it is a percent sign.
void ZRfprintf(std::FILE* stream, const char* str);

// Writes the decimal digits of `value` right-aligned into `buf` (`size` bytes, at least 1) and
// returns their start inside `buf`. Zero gives the empty text: callers rely on an empty field.
// No sign is written; digits that do not fit are left out at the front.
char* itoa(int value, char* buf, int size);

// Flushes `stream`, so that the next program sees what has been written so far.
void FlushOutput(std::FILE* stream);

// The errno of the first write to standard output that failed, 0 when none did.
int FirstOutputError();

// While one lives, what is written to standard output is kept in `text` instead: neither the
// printer nor the job copy gets it. So a header can be looked at before it is printed. What
// libraries print on standard output and standard error in the meantime goes nowhere.
class OutputCapture {
 public:
  explicit OutputCapture(std::string& text);
  ~OutputCapture();
  OutputCapture(const OutputCapture&) = delete;
  OutputCapture& operator=(const OutputCapture&) = delete;

 private:
  SilencedDescriptor output_{STDOUT_FILENO};
  SilencedDescriptor error_{STDERR_FILENO};
};
