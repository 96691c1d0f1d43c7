// Standard input, output and error of a program that was started without them.

#pragma once

#include <fcntl.h>
#include <unistd.h>

// Takes closed standard descriptors, each in the direction that makes its use fail, so that no file
// or pipe opened later can be mistaken for one of them.
inline void OccupyStandardDescriptors() {
  for (int fd = STDIN_FILENO; fd <= STDERR_FILENO; fd++) {
    if (fcntl(fd, F_GETFD) == -1) open("/dev/null", fd == STDIN_FILENO ? O_WRONLY : O_RDONLY);
  }
}
