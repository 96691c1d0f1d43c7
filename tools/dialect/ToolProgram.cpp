// Standard streams, and main().

#include "tools/dialect/ToolProgram.h"

#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <exception>

#include "FilterFrame/Source/UtilityFunctionFilter/StandardDescriptors.h"
#include "secblobenc/WipedMemory.h"
#include "tools/dialect/DisplayText.h"

namespace {

const char* toolName = "";

}  // namespace

int Complain(int status, const std::string& what) {
  std::fprintf(stderr, "%s: %s\n", toolName, what.c_str());
  return status;
}

int Misused(const std::string& what) {
  return Complain(kWrongUsage, what + "; see " + toolName + " --help");
}

std::string Shown(const std::string& text) {
  return Printable(text, Charset::kUTF8);
}

bool Put(std::string_view text, int fd) {
  while (!text.empty()) {
    const ssize_t count = write(fd, text.data(), text.size());
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) {
      Complain(0, std::string("cannot write: ") + std::strerror(errno));
      return false;
    }
    text.remove_prefix(static_cast<std::size_t>(count));
  }
  return true;
}

int ToolMain(const char* name, int failed, int (*run)(int argc, char* argv[]), int argc,
             char* argv[]) try {
  toolName = name;
  WipeLibraryMemory();
  OccupyStandardDescriptors();
  const int status = run(argc, argv);
  WipeStack();
  return status;
} catch (const std::exception& error) {
  return Complain(failed, Shown(error.what()));
}
