// Where the system offers no way to stop a process at its very end.

#include "tests/support/ProcessMemory.h"

std::optional<std::string> MemoryAtExit(std::vector<std::string> /*arguments*/,
                                        const std::map<std::string, std::string>& /*environment*/,
                                        const std::string& /*input*/) {
  return std::nullopt;
}
