// The one way to fill a fixed text buffer: bounded, and always terminated.

#pragma once

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <string_view>

// Fills `destination` (`size` bytes) with at most size - 1 bytes of `text` and zero bytes behind
// them. `text` may lie inside the destination. Returns the number of text bytes kept; a size of 0
// writes nothing.
inline std::size_t CopyBounded(char* destination, std::size_t size, std::string_view text) {
  if (size == 0) return 0;
  const std::size_t kept = std::min(text.size(), size - 1);
  if (kept > 0) std::memmove(destination, text.data(), kept);
  std::memset(destination + kept, 0, size - kept);
  return kept;
}

template <std::size_t Size>
std::size_t CopyBounded(char (&destination)[Size], std::string_view text) {
  return CopyBounded(destination, Size, text);
}
