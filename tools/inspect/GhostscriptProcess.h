// Ghostscript as a child process that can do nothing but turn a document into pictures: it reads
// the document from a pipe, writes pictures and messages into pipes, and may write nowhere else.

#pragma once

#include <sys/types.h>

#include <functional>
#include <string>
#include <string_view>

// What a document may use up; each is more than zero.
struct RenderLimits {
  int cpuSeconds = 120;
  int seconds = 300;           // by the clock
  int memoryMegabytes = 1024;  // of address space; systems that do not count it know no such limit
  int outputMegabytes = 1024;  // all pictures together
};

class GhostscriptProcess {
 public:
  // Receives the pictures' bytes in their order; false ends Ghostscript.
  using Pictures = std::function<bool(std::string_view bytes)>;

  // Starts Ghostscript in a process group of its own, which ends with this process and with its
  // limits. error() says why it did not start. One at a time.
  GhostscriptProcess(int dotsPerInch, RenderLimits limits, Pictures pictures);
  ~GhostscriptProcess();
  GhostscriptProcess(const GhostscriptProcess&) = delete;
  GhostscriptProcess& operator=(const GhostscriptProcess&) = delete;

  // The document's bytes in their order. What Ghostscript no longer reads is dropped.
  void write(std::string_view bytes);

  // Waits until all pictures are there. False: error() says why not.
  bool finish();

  const std::string& error() const { return error_; }

  // What Ghostscript and the document said, its beginning.
  const std::string& messages() const { return messages_; }

 private:
  void start(int dotsPerInch);
  void exchange(std::string_view& bytes);
  void takePictures();
  void takeMessages();
  void stop();
  std::string fateInWords(int status) const;

  RenderLimits limits_;
  Pictures pictures_;
  std::string folder_;  // private and empty
  pid_t pid_ = -1;
  int input_ = -1;       // Ghostscript's, to be written
  int output_ = -1;      // its pictures
  int complaints_ = -1;  // its messages
  std::string messages_;
  std::string error_;
};
