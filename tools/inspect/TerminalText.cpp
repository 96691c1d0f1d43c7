// Wrapping and colouring, line by line.

#include "tools/inspect/TerminalText.h"

#include <algorithm>
#include <sstream>
#include <string_view>

#include "tools/dialect/DisplayText.h"

namespace {

constexpr std::string_view kContinuation = "      ";
constexpr std::string_view kBold = "\033[1m";
constexpr std::string_view kRed = "\033[31m";
constexpr std::string_view kPlain = "\033[0m";

// The bytes of `line` that fill `columns` columns, cut at a blank where there is one in its last
// half.
std::size_t Fitting(std::string_view line, std::size_t columns) {
  std::size_t end = 0;
  for (std::size_t column = 0; end < line.size(); end++) {
    const bool begins = (static_cast<unsigned char>(line[end]) & 0xC0) != 0x80;
    if (begins && column++ == columns) break;
  }
  if (end == line.size()) return end;
  const std::size_t blank = line.substr(0, end).rfind(' ');
  return blank != line.npos && blank > end / 2 ? blank : end;
}

std::string Wrapped(std::string_view line) {
  std::string out;
  for (std::size_t indent = 0;; indent = kContinuation.size()) {
    const std::size_t length = Fitting(line, kTerminalColumns - indent);
    std::string_view part = line.substr(0, length);
    line.remove_prefix(length);
    line.remove_prefix(std::min(line.find_first_not_of(' '), line.size()));
    out += part.substr(0, part.find_last_not_of(' ') + 1);
    if (line.empty()) return out;
    out.append("\n").append(kContinuation);
  }
}

}  // namespace

std::string ForTerminal(const std::string& report, bool colour) {
  std::string out;
  std::istringstream lines(report);
  bool problems = false;
  bool first = true;
  for (std::string line; std::getline(lines, line); first = false) {
    if (line == "Problems") problems = true;
    const bool title = !line.empty() && line.front() != ' ';
    const std::string_view style = problems || (first && !line.ends_with("nothing wrong")) ? kRed
                                   : title                                                 ? kBold
                                                                                           : "";
    if (colour) out += style;
    out += Wrapped(line);
    if (colour && !style.empty()) out += kPlain;
    out += '\n';
  }
  return out;
}
