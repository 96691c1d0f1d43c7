// Lines and texts of a job header.

#include "queue/HeaderCheck.h"

#include <algorithm>

namespace {

constexpr std::string_view kExitSequence = "\x1b%-12345X";
constexpr std::string_view kLineStart = "@PJL ";

// The line without its end, LF or CR LF.
bool IsWhole(std::string_view line) {
  if (line.ends_with('\r')) line.remove_suffix(1);
  if (!line.starts_with(kLineStart)) return false;
  if (std::ranges::any_of(line, [](unsigned char c) { return c < ' ' || c == 0x7f; })) return false;
  const std::size_t quotes = static_cast<std::size_t>(std::ranges::count(line, '"'));
  if (quotes == 0) return !line.ends_with('=') || line.ends_with("BOXNUMBER=");
  return quotes == 2 && line.ends_with('"');
}

}  // namespace

std::string_view BrokenLine(std::string_view header) {
  if (header.starts_with(kExitSequence)) header.remove_prefix(kExitSequence.size());
  while (!header.empty()) {
    const std::size_t end = header.find('\n');
    if (end == std::string_view::npos) return header;
    if (!IsWhole(header.substr(0, end))) return header.substr(0, end + 1);
    header.remove_prefix(end + 1);
  }
  return {};
}

bool FitsHeader(std::string_view text) {
  for (std::size_t i = 0; i < text.size(); i++) {
    const unsigned char c = static_cast<unsigned char>(text[i]);
    if (c < ' ' || c == 0x7f || c == '"') return false;
    const unsigned char next = i + 1 < text.size() ? static_cast<unsigned char>(text[i + 1]) : 0;
    if (c == 0xc2 && next >= 0x80 && next < 0xa0) return false;  // control characters above ASCII
  }
  return true;
}
