// Standard streams, and main().

#include "tools/dialect/ToolProgram.h"

#include <fcntl.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <exception>

#include "secblobenc/WipedMemory.h"
#include "tools/dialect/DisplayText.h"

namespace {

const char* toolName = "";

// Takes closed standard descriptors, each in the direction that makes its use fail, so that no file
// or pipe opened later can be mistaken for one of them.
void OccupyStandardDescriptors() {
  for (int fd = STDIN_FILENO; fd <= STDERR_FILENO; fd++) {
    if (fcntl(fd, F_GETFD) == -1) open("/dev/null", fd == STDIN_FILENO ? O_WRONLY : O_RDONLY);
  }
}

}  // namespace

int Complain(int status, const std::string& what) {
  std::fprintf(stderr, "%s: %s\n", toolName, what.c_str());
  return status;
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
