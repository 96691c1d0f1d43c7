// The null device stands in for what is closed or silenced.

#include "FilterFrame/Source/UtilityFunctionFilter/StandardDescriptors.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstdio>

namespace {

constexpr char kNullDevice[] = "/dev/null";

}  // namespace

void OccupyStandardDescriptors() {
  for (int fd = STDIN_FILENO; fd <= STDERR_FILENO; fd++) {
    if (fcntl(fd, F_GETFD) == -1) open(kNullDevice, fd == STDIN_FILENO ? O_WRONLY : O_RDONLY);
  }
}

SilencedDescriptor::SilencedDescriptor(int fd)
    : fd_(fd), saved_(fcntl(fd, F_DUPFD_CLOEXEC, STDERR_FILENO + 1)) {
  std::fflush(stdout);
  const int nowhere = open(kNullDevice, O_WRONLY | O_CLOEXEC);
  if (saved_ >= 0 && nowhere >= 0) dup2(nowhere, fd);
  if (nowhere >= 0) close(nowhere);
}

SilencedDescriptor::~SilencedDescriptor() {
  std::fflush(stdout);
  if (saved_ < 0) return;
  dup2(saved_, fd_);
  close(saved_);
}
