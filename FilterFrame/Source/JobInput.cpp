// Opening and reading the job's input.

#include "FilterFrame/Source/JobInput.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <cerrno>

ByteReader DescriptorReader(int fd) {
  return [fd](char* buffer, std::size_t size) -> ssize_t {
    for (;;) {
      const ssize_t count = read(fd, buffer, size);
      if (count >= 0) return count;
      pollfd input = {fd, POLLIN, 0};
      if (errno == EAGAIN && poll(&input, 1, -1) >= 0) continue;
      if (errno != EINTR) return -1;
    }
  };
}

bool MayPassLater(int error) {
  return error == EINTR || error == EAGAIN || error == EWOULDBLOCK;
}

JobInput::JobInput(const char* path)
    : fd_(path != nullptr ? open(path, O_RDONLY | O_CLOEXEC) : STDIN_FILENO) {}

JobInput::~JobInput() {
  if (fd_ > STDIN_FILENO) close(fd_);
}

ByteReader JobInput::reader(const InputStage& stage) const {
  return stage ? stage(DescriptorReader(fd_)) : DescriptorReader(fd_);
}
