// Lines that modules write by hand rather than from a row table.

#pragma once

#include <cstddef>
#include <cstdio>

// The device's line buffer: a longer line is cut to 99 characters, its line feed included.
inline constexpr std::size_t kLineSize = 100;

// Formats as printf does into a line buffer and writes the result to `stream` as it stands.
void OutputFormattedLine(std::FILE* stream, const char* format, ...)
    __attribute__((format(printf, 2, 3)));

// Writes the job attribute line @PJL SET JOBATTR="@<attribute>=<value>" with a line feed to
// standard output. `lineSize` is the size of the line buffer in bytes, at most 256.
void OutputJobAttribute(const char* attribute, const char* value, std::size_t lineSize = kLineSize);
void OutputJobAttribute(const char* attribute, int value);
