// A report as a terminal shows it best.

#pragma once

#include <string>

inline constexpr std::size_t kTerminalColumns = 80;

// The report with lines of at most 80 columns; with `colour`, titles are bold and what is wrong is
// red.
std::string ForTerminal(const std::string& report, bool colour);
