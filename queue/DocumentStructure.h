// The document structure comments that pages are found by. Embedded documents and counted data are
// skipped as units. Lines end in CR, LF or CR LF.

#pragma once

#include <cstddef>
#include <cstdint>

class DocumentStructure {
 public:
  enum class Found {
    kNothing,       // all bytes are looked at, but perhaps for the beginning of a line
    kBeginSection,  // %%BeginProlog, %%BeginSetup
    kEndSection,    // %%EndProlog, %%EndSetup
    kPage,          // %%Page:
    kTrailer,       // %%Trailer, %%EOF
    kBeginMark,     // bp
    kEndMark,       // ep or endp
  };

  // Looks on from `at` up to `end` and moves `at`: behind the line that was found, its line end
  // included; or to where to go on when more bytes have come, which is at most kLongestLine bytes
  // in front of `end`, and `end` itself when there are no more (`isLast`). The byte in front of
  // `at` is readable; at the document's beginning it is a line end. Lines without a line end and
  // longer ones than kLongestLine mean nothing. Marks are looked for where that is wanted.
  Found next(const char*& at, const char* end, bool isLast, bool withMarks);

  static constexpr std::size_t kLongestLine = 4096;

 private:
  Found understand(const char* line, const char* end);
  void skipCounted(const char*& at, const char* end, bool isLast);
  void beginData(const char* text, const char* end);

  std::uint64_t bytesToSkip_ = 0;
  std::uint64_t linesToSkip_ = 0;
  std::uint64_t embedded_ = 0;  // how many documents around this place are embedded ones
};

// Where the line that begins at `line` ends: its first terminator byte, and the byte behind its
// terminator. Both are null when that is not known before more bytes have come.
struct LineEnd {
  const char* text = nullptr;
  const char* next = nullptr;
};
LineEnd FindLineEnd(const char* line, const char* end, bool isLast);
