// A finished job beside what its options should have given.

#pragma once

#include <optional>
#include <string>
#include <vector>

struct JobComparison {
  std::vector<std::string> missing;  // lines that the job should have
  std::vector<std::string> besides;  // lines that it has and should not
};

// Compares `expected` lines with the header of the job in the file `name`. The computer's own name
// and address do not count, nor do sealed passwords. Nothing when the file cannot be read or is no
// job; `error` says why.
std::optional<JobComparison> CompareWithJob(const std::vector<std::string>& expected,
                                            const std::string& name, std::string& error);
