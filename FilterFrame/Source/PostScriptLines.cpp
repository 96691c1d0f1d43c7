// Block reader, line splitter and token search.
//
// Ordinary lines are never looked at one by one. A token line can only begin behind a line end and
// with one of a few first bytes; a search for that pair over the whole block, written so that the
// compiler turns it into vector instructions, finds the rare places that deserve a comparison.

#include "FilterFrame/Source/PostScriptLines.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <iterator>
#include <utility>

namespace {

constexpr std::size_t kLongestToken = [] {
  std::size_t longest = 0;
  for (const PostScriptToken& token : kPostScriptTokens) {
    longest = std::max(longest, token.line.size());
  }
  return longest;
}();

// Each token's first byte once; the rest of the array repeats the first one.
constexpr auto kFirstBytes = [] {
  std::array<char, std::size(kPostScriptTokens)> bytes{};
  bytes.fill(kPostScriptTokens[0].line[0]);
  std::size_t count = 0;
  for (const PostScriptToken& token : kPostScriptTokens) {
    if (std::find(bytes.begin(), bytes.end(), token.line[0]) == bytes.end()) {
      bytes[++count] = token.line[0];
    }
  }
  return std::pair(bytes, count + 1);
}();

constexpr bool IsLineEnd(char c) {
  return c == '\n' || c == '\r';
}

// Whether a token line may begin with `second`, which stands behind `first`: 1 or 0. In bytes and
// without branches, since it is evaluated for many places at once.
using Flag = unsigned char;
template <std::size_t... Index>
constexpr Flag MayBeginToken(char first, char second, std::index_sequence<Index...>) {
  const Flag behindLineEnd = static_cast<Flag>(Flag{first == '\n'} | Flag{first == '\r'});
  const Flag isFirstByte = static_cast<Flag>((Flag{second == kFirstBytes.first[Index]} | ...));
  return behindLineEnd & isFirstByte;
}
constexpr Flag MayBeginToken(const char* at) {
  return MayBeginToken(at[-1], at[0], std::make_index_sequence<kFirstBytes.second>());
}

// The first place in [from, end) where a token line may begin, or end. The byte before `from` is
// readable. Where the platform can choose between two forms when the program is loaded, this is
// compiled for wider vectors as well.
FOR_WIDER_VECTORS const char* FindCandidate(const char* from, const char* end) {
  constexpr std::ptrdiff_t kStride = 64;
  for (; end - from >= kStride; from += kStride) {
    Flag found = 0;
    for (std::ptrdiff_t i = 0; i < kStride; i++) {
      found = static_cast<Flag>(found | MayBeginToken(from + i));
    }
    if (found != 0) break;
  }
  return std::find_if(from, end, [](const char& c) { return MayBeginToken(&c) != 0; });
}

const PostScriptToken* MatchToken(std::string_view line) {
  for (const PostScriptToken& token : kPostScriptTokens) {
    if (token.line == line) return &token;
  }
  return nullptr;
}

}  // namespace

PostScriptLines::PostScriptLines(ByteReader reader, Wishes wishes)
    : reader_(std::move(reader)),
      wishes_(wishes),
      buffer_(new char[1 + kBlockSize]),
      begin_(buffer_.get() + 1),
      end_(begin_),
      scan_(begin_) {
  buffer_[0] = '\n';  // the job's first byte begins a line
}

bool PostScriptLines::next(Piece& piece) {
  for (;;) {
    const char* candidate = FindCandidate(scan_, end_);
    if (candidate == end_) {
      scan_ = end_;
      const char* finished = endOfFinished();
      if (finished != begin_) return take(finished, piece);
      if (!refill()) return false;
      continue;
    }
    const bool isWished = wished(candidate);
    const std::size_t longest = isWished ? kLinePieceSize : kLongestToken + 1;
    const char* limit = candidate + std::min(static_cast<std::size_t>(end_ - candidate), longest);
    const char* lineEnd = std::find_if(candidate, limit, IsLineEnd);
    const bool undecided =
        lineEnd == limit && static_cast<std::size_t>(limit - candidate) < longest;
    const PostScriptToken* token =
        MatchToken({candidate, static_cast<std::size_t>(lineEnd - candidate)});
    const bool single = lineEnd != limit && (token != nullptr || isWished);
    if (!undecided && !single) {
      scan_ = lineEnd;
      continue;
    }
    scan_ = candidate;
    if (candidate != begin_) return take(candidate, piece);
    if (single) {
      scan_ = lineEnd + 1;
      return take(lineEnd + 1, piece, token, isWished);
    }
    if (!refill()) return false;
  }
}

bool PostScriptLines::wished(const char* line) const {
  return !wishes_.prefix.empty() &&
         std::string_view(line, static_cast<std::size_t>(end_ - line)).starts_with(wishes_.prefix);
}

bool PostScriptLines::take(const char* end, Piece& piece, const PostScriptToken* token,
                           bool hasPrefix) {
  const auto length = static_cast<std::size_t>(end - begin_);
  piece = {{begin_, length}, token, hasPrefix};
  begin_ += length;
  return true;
}

// Behind the last byte that can be passed on although the last line is not finished: its line end,
// or the last whole piece of an over-long line.
const char* PostScriptLines::endOfFinished() const {
  const auto last = std::find_if(std::reverse_iterator<const char*>(end_),
                                 std::reverse_iterator<const char*>(begin_), IsLineEnd);
  if (last.base() != begin_) return last.base();
  const auto held = static_cast<std::size_t>(end_ - begin_);
  return begin_ + held / kLinePieceSize * kLinePieceSize;
}

// Moves what is held to the front of the buffer, with the byte before it, and reads behind it.
bool PostScriptLines::refill() {
  char* front = buffer_.get();
  const std::size_t held = static_cast<std::size_t>(end_ - begin_) + heldBack_;
  const std::ptrdiff_t shift = begin_ - 1 - front;
  if (shift > 0) std::memmove(front, begin_ - 1, held + 1);
  begin_ -= shift;
  end_ -= shift;
  scan_ -= shift;

  const ssize_t count = reader_(begin_ + held, kBlockSize - held);
  if (count < 0) readError_ = errno;
  if (count <= 0) return false;
  end_ = begin_ + held + count;
  heldBack_ = wishes_.holdLastByte ? 1 : 0;
  end_ -= heldBack_;
  return true;
}
