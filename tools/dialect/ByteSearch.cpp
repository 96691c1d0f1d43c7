// The searches.

#include "tools/dialect/ByteSearch.h"

#include <utility>

#include "FilterFrame/Source/PostScriptStream.h"

// In bytes and without branches, since line ends are looked for at many places at once.
std::uint64_t CountLineEnds(std::string_view bytes) {
  constexpr std::size_t kStride = 128;
  const auto isEnd = [](char c, char next) {
    return static_cast<unsigned char>((c == '\n') | ((c == '\r') & (next != '\n')));
  };
  std::uint64_t count = 0;
  const char* at = bytes.data();
  std::size_t left = bytes.size();
  for (; left > kStride; left -= kStride, at += kStride) {
    unsigned char here = 0;
    for (std::size_t i = 0; i < kStride; i++) {
      here = static_cast<unsigned char>(here + isEnd(at[i], at[i + 1]));
    }
    count += here;
  }
  for (; left > 0; left--, at++) count += isEnd(*at, left > 1 ? at[1] : '\0');
  return count;
}

std::size_t FindPJLLine(std::string_view bytes, char before) {
  for (std::size_t at = bytes.find(kPJL); at != bytes.npos; at = bytes.find(kPJL, at + 1)) {
    const char previous = at > 0 ? bytes[at - 1] : before;
    if (previous == '\n' || previous == '\r' || previous == kEndOfTransmission) return at;
  }
  return bytes.npos;
}

std::size_t ExitSearch::findEnd(std::string_view bytes) {
  std::size_t at = 0;
  if (matched_ > 0) {
    while (at < bytes.size() && matched_ < kExitSequence.size() &&
           bytes[at] == kExitSequence[matched_]) {
      at++;
      matched_++;
    }
    if (matched_ < kExitSequence.size() && at == bytes.size()) return bytes.npos;
    if (std::exchange(matched_, 0) == kExitSequence.size()) return at;
  }
  for (at = bytes.find(kExitSequence[0], at); at != bytes.npos;
       at = bytes.find(kExitSequence[0], at + 1)) {
    const std::string_view candidate = bytes.substr(at, kExitSequence.size());
    if (candidate == kExitSequence) return at + kExitSequence.size();
    if (kExitSequence.starts_with(candidate)) {
      matched_ = candidate.size();
      return bytes.npos;
    }
  }
  return bytes.npos;
}
