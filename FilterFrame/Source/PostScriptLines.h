// The PostScript job, block by block: long runs of ordinary lines, and single the few lines that
// mean something to the filter. A line ends in CR or LF; CR LF is a line and an empty line.

#pragma once

#include <cstddef>
#include <memory>
#include <string_view>
#include <utility>

#include "FilterFrame/Source/JobInput.h"

// When a line's hook is called, seen from the writing of the line.
enum class HookPlace { kBefore, kAfter, kNone };

// A line that marks a boundary in the PostScript, and what the filter does there.
struct PostScriptToken {
  std::string_view line;  // the whole line, without its terminator
  int hookCode;
  HookPlace hookPlace;
  bool endsPage;     // the page counter goes up before the hook, the output is flushed after
  bool logsPage;     // CUPS is told of the page
  bool pollsCancel;  // a cancelled job ends in front of this line
  bool onlyFirst;    // the hook is called at the first such line of a job only
};

// clang-format off
inline constexpr PostScriptToken kPostScriptTokens[] = {
    // line             hook                  endsPage logsPage pollsCancel onlyFirst
    {"%%BeginProlog",   13, HookPlace::kAfter,  false, false, false, false},
    {"%%EndProlog",     14, HookPlace::kBefore, false, false, false, true},
    {"%%EndSetup",      16, HookPlace::kBefore, false, false, false, false},
    {"userdict/setpagedevice{pop}bind put",
                        21, HookPlace::kBefore, false, false, false, false},
    {"bp",              23, HookPlace::kAfter,  false, false, false, false},
    {"%%EndPageSetup",  24, HookPlace::kAfter,  false, false, false, false},
    {"ep",              27, HookPlace::kBefore, true,  true,  true,  false},
    {"endp",            28, HookPlace::kBefore, true,  false, true,  false},
    {"showpage",         0, HookPlace::kNone,   false, false, true,  false},
};
// clang-format on

// Over-long lines are passed on in pieces of this many bytes. Neither a piece nor the rest of its
// line is a token; of an unfinished last line only whole pieces are passed on.
inline constexpr std::size_t kLinePieceSize = 8065;

// Reads a job line by line. Memory does not grow with the job.
class PostScriptLines {
 public:
  // What else a reader wants to know of the job.
  struct Wishes {
    // Lines that begin so come singly. It must begin as some token does and be no longer than one.
    std::string_view prefix = {};
    bool holdLastByte = false;  // the job's last byte is not part of it: see lastByte()
  };

  // From a reader, or from a descriptor, which stays the caller's.
  explicit PostScriptLines(ByteReader reader) : PostScriptLines(std::move(reader), Wishes{}) {}
  PostScriptLines(ByteReader reader, Wishes wishes);
  explicit PostScriptLines(int fd) : PostScriptLines(DescriptorReader(fd)) {}
  PostScriptLines(int fd, Wishes wishes) : PostScriptLines(DescriptorReader(fd), wishes) {}

  struct Piece {
    std::string_view bytes;        // as they stand in the job; valid until the next call
    const PostScriptToken* token;  // null for a run of ordinary lines and for a wished line
    bool hasPrefix;                // a single line with the wished prefix
  };

  // The next piece of the job; false at its end or when reading fails.
  bool next(Piece& piece);

  // The error number of a read that failed, which ended the job; 0 when there was none.
  int readError() const { return readError_; }

  // The last byte of the job that was held back, empty when there was none. Known when next() has
  // returned false.
  std::string_view lastByte() const { return {end_, heldBack_}; }

 private:
  bool wished(const char* line) const;
  bool take(const char* end, Piece& piece, const PostScriptToken* token = nullptr,
            bool hasPrefix = false);
  const char* endOfFinished() const;
  bool refill();

  static constexpr std::size_t kBlockSize = 64 * 1024;

  ByteReader reader_;
  Wishes wishes_;
  std::unique_ptr<char[]> buffer_;  // one byte, the last one passed on, and the block behind it
  char* begin_;                     // first byte not yet passed on
  char* end_;                       // behind the last byte that may be passed on
  int readError_ = 0;
  std::size_t heldBack_ = 0;  // bytes read behind end_: 0 or 1
  const char* scan_;          // no token line begins between begin_ and here
};
