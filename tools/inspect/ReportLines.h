// The entries of a report, in words, before they become a table, JSON or a comparison.

#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tools/inspect/Reports.h"

struct ReportLine {
  std::string_view group;  // title
  std::string_view key;    // of the group
  std::string name;
  std::string words;
  std::string code;  // empty for what is not one line of the job
  std::string raw;   // printable
  std::uint64_t line = 0;
  const Setting* setting = nullptr;
  const Injection* injection = nullptr;
};

// Every entry, group by group.
std::vector<ReportLine> ReportLines(const JobReport& report, ReportWishes wishes);

// A remark as one printable line.
std::string RemarkText(const Remark& remark, Charset charset);
