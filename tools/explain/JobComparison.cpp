// Reading the job as the inspector does.

#include "tools/explain/JobComparison.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "tools/dialect/DisplayText.h"
#include "tools/explain/Explanation.h"
#include "tools/inspect/JobReader.h"

namespace {

bool IsOfComputer(const std::string& line) {
  const std::string code = CodeOfLine(line);
  return code == "CNAM" || code == "HOAD" || code == "EOJ";
}

std::vector<std::string> Compared(std::vector<std::string> lines) {
  std::erase_if(lines, IsOfComputer);
  return lines;
}

}  // namespace

std::optional<JobComparison> CompareWithJob(const std::vector<std::string>& expected,
                                            const std::string& name, std::string& error) {
  const int fd = open(name.c_str(), O_RDONLY | O_CLOEXEC);
  if (fd < 0) {
    error = std::strerror(errno);
    return std::nullopt;
  }
  const JobReport report = ReadJob(fd);
  close(fd);
  if (report.settings.empty()) {
    error = "it is no printer-ready job";
    return std::nullopt;
  }
  std::vector<std::string> lines;
  for (const Setting& setting : report.settings) lines.push_back(WithoutSecrets(setting.raw));
  const auto there = Compared(std::move(lines));
  const auto wanted = Compared(expected);
  return JobComparison{Surplus(wanted, there), Surplus(there, wanted)};
}
