// A process's standard input, output and error: none is left closed, and one can be silenced.

#pragma once

// Takes closed standard descriptors, each in the direction that makes its use fail, so that no file
// or pipe opened later can be mistaken for one of them.
void OccupyStandardDescriptors();

// While one lives, what is written to standard output or standard error, `fd`, goes nowhere. Where
// that cannot be, it goes where it went.
class SilencedDescriptor {
 public:
  explicit SilencedDescriptor(int fd);
  ~SilencedDescriptor();
  SilencedDescriptor(const SilencedDescriptor&) = delete;
  SilencedDescriptor& operator=(const SilencedDescriptor&) = delete;

 private:
  int fd_;
  int saved_;  // what `fd` was
};
