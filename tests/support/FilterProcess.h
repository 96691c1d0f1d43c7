// Starts the built filter as CUPS does: arguments, environment and pipes.

#pragma once

#include <sys/types.h>

#include <map>
#include <string>
#include <vector>

struct FilterJob {
  std::string filter = FILTER_BINARY;
  std::vector<std::string> arguments = {"1", "user", "title", "1", ""};
  std::map<std::string, std::string> environment = {};  // besides a PATH
  std::string input = {};                               // standard input
  std::vector<std::string> under = {};  // a program with its arguments that runs the filter
  bool inputDoesNotBlock = false;
  int outputPacket = 0;  // standard output refuses writes well above so many bytes

  void afterShell(const std::string& commands);  // the filter inherits what these commands set
};

struct FilterResult {
  std::string output;    // standard output
  std::string messages;  // standard error
  int exitStatus = -1;   // -1: died by a signal
};

// A running filter with its three pipes. The destructor kills what still runs.
class FilterProcess {
 public:
  explicit FilterProcess(const FilterJob& job);
  ~FilterProcess();
  FilterProcess(const FilterProcess&) = delete;
  FilterProcess& operator=(const FilterProcess&) = delete;

  pid_t pid() const { return pid_; }
  void write(const std::string& bytes) const;  // to its standard input
  void closeInput();
  void closeOutput();                             // as a next program that dies
  std::string readUntil(const std::string& end);  // standard output so far; gives up after 10 s
  void readBytes(std::size_t count);              // so many of standard output, or a few more
  // Waits until the filter has taken all input so far and sleeps, or has ended; gives up after 10
  // s. Needs Linux's /proc.
  void waitUntilItWaits() const;
  FilterResult finish();  // closes the input and drains
  FilterResult drain();   // reads the rest and waits for the end

 private:
  pid_t pid_ = -1;
  int input_ = -1;
  int output_ = -1;
  int messages_ = -1;
  std::string outputSoFar_;
};

// A whole job: the input is fed while the output is read.
FilterResult RunFilter(const FilterJob& job);

// A scratch file or folder that is removed with everything in it.
class ScratchFolder {
 public:
  ScratchFolder();
  ~ScratchFolder();
  ScratchFolder(const ScratchFolder&) = delete;
  ScratchFolder& operator=(const ScratchFolder&) = delete;
  const std::string& path() const { return path_; }
  std::string write(const std::string& name, const std::string& content) const;

 private:
  std::string path_;
};

// A minimal PPD with these lines (attribute lines such as `*CommentOn: "True"`).
std::string PPDText(const std::string& lines);

// What ends the header of every job.
inline const std::string kEnterPS = "@PJL ENTER LANGUAGE=POSTSCRIPT\n";

// What stands between the trailer and the header's lines that every job of a grayscale printer has:
// kEnterPS and the document, in decomposed mode settings ahead of it.
std::string Body(const std::string& output);
