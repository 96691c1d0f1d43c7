// Places in a job's bytes: line ends, exit sequences, PJL lines.

#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

inline constexpr std::string_view kExitSequence = "\033%-12345X";
inline constexpr std::string_view kPJL = "@PJL ";

// Line feeds, and carriage returns that none follows; one at the very end counts.
std::uint64_t CountLineEnds(std::string_view bytes);

// Where a PJL line begins in `bytes`: behind a line end or the end byte, `before` being the byte in
// front of them; npos when none does.
std::size_t FindPJLLine(std::string_view bytes, char before);

// Finds the exit sequence, also where it is spread over pieces.
class ExitSearch {
 public:
  // The position behind the first exit sequence that ends in `bytes`; npos when none does.
  std::size_t findEnd(std::string_view bytes);

  // How many bytes of an exit sequence the last search ended with.
  std::size_t begun() const { return matched_; }

 private:
  std::size_t matched_ = 0;
};
