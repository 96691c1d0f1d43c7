// What is said about a job: as a table for readers, as JSON for programs, and as the difference
// between two jobs. Passwords and sealed passwords are hidden unless asked for.

#pragma once

#include <string>

#include "tools/inspect/JobReport.h"

// The version of the JSON that docs/xpjl-inspect.schema.json describes. It goes up when a member
// changes its meaning or goes away, not when one is added.
inline constexpr int kJsonVersion = 1;

struct ReportWishes {
  bool showPasswords = false;
};

// The table. `name` is what the job is called in it.
std::string TextReport(const std::string& name, const JobReport& report, ReportWishes wishes);

// One JSON object, with a line feed at its end.
std::string JsonReport(const std::string& name, const JobReport& report, ReportWishes wishes);

// What the second job asks differently from the first; an empty text when nothing is.
std::string TextDifference(const JobReport& first, const JobReport& second, ReportWishes wishes);
std::string JsonDifference(const JobReport& first, const JobReport& second, ReportWishes wishes);

// One line that says what is wrong with the job; empty when nothing is.
std::string FirstProblem(const JobReport& report);
