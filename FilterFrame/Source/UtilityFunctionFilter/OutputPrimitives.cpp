// The output primitives and the tee to the job copy.

#include "FilterFrame/Source/UtilityFunctionFilter/OutputPrimitives.h"

#include <cerrno>
#include <cstring>

#include "FilterFrame/Source/JobState.h"

namespace {

int firstOutputError = 0;
std::string* captured = nullptr;

void NoteResult(std::FILE* stream, bool written) {
  if (!written && stream == stdout && firstOutputError == 0) firstOutputError = errno;
}

}  // namespace

void ZRfwrite(const void* buf, std::size_t size, std::size_t count, std::FILE* stream) {
  if (captured != nullptr && stream == stdout) {
    captured->append(static_cast<const char*>(buf), size * count);
    return;
  }
  if (gJobFilefp != nullptr) std::fwrite(buf, size, count, gJobFilefp);
  WriteUncopied(buf, size, count, stream);
}

void WriteUncopied(const void* buf, std::size_t size, std::size_t count, std::FILE* stream) {
  NoteResult(stream, std::fwrite(buf, size, count, stream) == count);
}

void ZRfputs(const char* str, std::FILE* stream) {
  ZRfwrite(str, 1, std::strlen(str), stream);
}

void ZRfputc(int c, std::FILE* stream) {
  if (captured != nullptr && stream == stdout) {
    captured->push_back(static_cast<char>(c));
    return;
  }
  if (gJobFilefp != nullptr) std::fputc(c, gJobFilefp);
  NoteResult(stream, std::fputc(c, stream) != EOF);
}

void ZRfprintf(std::FILE* stream, const char* str) {
  ZRfputs(str, stream);
}

char* itoa(int value, char* buf, int size) {
  char* start = buf + size - 1;
  *start = '\0';
  for (; value != 0 && start > buf; value /= 10) *--start = static_cast<char>('0' + value % 10);
  return start;
}

void FlushOutput(std::FILE* stream) {
  NoteResult(stream, std::fflush(stream) == 0);
}

int FirstOutputError() {
  return firstOutputError;
}

OutputCapture::OutputCapture(std::string& text) {
  captured = &text;
}

OutputCapture::~OutputCapture() {
  captured = nullptr;
}
