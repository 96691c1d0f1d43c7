// Where a job's document comes from: a file or standard input, through a stage of its own if the
// program has one.

#pragma once

#include <sys/types.h>

#include <cstddef>
#include <functional>

// Reads like read(2): the number of bytes, 0 at the end, -1 with errno.
using ByteReader = std::function<ssize_t(char* buffer, std::size_t size)>;

// Makes of the document's reader the one that the job is read through.
using InputStage = std::function<ByteReader(ByteReader source)>;

// Reads from a descriptor, which stays the caller's; goes on after signals, and waits for input
// that is only not there yet.
ByteReader DescriptorReader(int fd);

// Whether a reader that failed with this errno may be called again.
bool MayPassLater(int error);

// The job's input: a file of its own, or standard input when `path` is null.
class JobInput {
 public:
  explicit JobInput(const char* path);
  ~JobInput();
  JobInput(const JobInput&) = delete;
  JobInput& operator=(const JobInput&) = delete;

  int fd() const { return fd_; }  // negative when the file cannot be opened

  // Through `stage` if there is one. Valid as long as the input.
  ByteReader reader(const InputStage& stage) const;

 private:
  int fd_;
};
