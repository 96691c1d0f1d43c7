// Ghostscript as a child process: the document through a pipe, its messages into a file.

#include "tools/inspect/PageImages.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <system_error>
#include <vector>

#include "tools/dialect/DisplayText.h"

// macOS's headers leave it to the program.
extern char** environ;  // NOLINT(readability-redundant-declaration)

namespace {

constexpr std::size_t kLongestComplaint = 300;

// A percent sign in an output file's name would begin a page number.
std::string OutputPattern(const std::string& folder) {
  std::string pattern;
  for (char c : folder) pattern += c == '%' ? "%%" : std::string(1, c);
  return pattern + "/page-%03d.png";
}

int UnnamedFile() {
  std::FILE* file = std::tmpfile();
  if (file == nullptr) return -1;
  const int fd = fcntl(fileno(file), F_DUPFD_CLOEXEC, 3);
  std::fclose(file);
  return fd;
}

void Close(int& fd) {
  if (fd >= 0) close(fd);
  fd = -1;
}

}  // namespace

PageImages::PageImages(const std::string& folder, int dotsPerInch) {
  std::signal(SIGPIPE, SIG_IGN);
  std::error_code failure;
  std::filesystem::create_directories(folder, failure);
  if (failure || !std::filesystem::is_directory(folder)) {
    error_ = "cannot make the folder " + Printable(folder, Charset::kUTF8) + ": " +
             (failure ? failure.message() : std::strerror(ENOTDIR));
    return;
  }
  messages_ = UnnamedFile();
  start(folder, dotsPerInch);
}

PageImages::~PageImages() {
  Close(input_);
  Close(messages_);
  if (pid_ > 0) waitpid(pid_, nullptr, 0);
}

void PageImages::start(const std::string& folder, int dotsPerInch) {
  int ends[2];
  if (messages_ < 0 || pipe(ends) != 0) {
    error_ = std::string("cannot start Ghostscript: ") + std::strerror(errno);
    return;
  }
  fcntl(ends[1], F_SETFD, FD_CLOEXEC);
  std::vector<std::string> words = {"gs",
                                    "-q",
                                    "-dSAFER",
                                    "-dBATCH",
                                    "-dNOPAUSE",
                                    "-sDEVICE=png16m",
                                    "-dTextAlphaBits=4",
                                    "-dGraphicsAlphaBits=4",
                                    "-r" + std::to_string(dotsPerInch),
                                    "-sOutputFile=" + OutputPattern(folder),
                                    "-"};
  std::vector<char*> arguments;
  arguments.reserve(words.size() + 1);
  for (std::string& word : words) arguments.push_back(word.data());
  arguments.push_back(nullptr);

  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, ends[0], STDIN_FILENO);
  posix_spawn_file_actions_adddup2(&actions, messages_, STDOUT_FILENO);
  posix_spawn_file_actions_adddup2(&actions, messages_, STDERR_FILENO);
  posix_spawn_file_actions_addclose(&actions, ends[0]);
  const int status = posix_spawnp(&pid_, "gs", &actions, nullptr, arguments.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  close(ends[0]);
  input_ = ends[1];
  if (status == 0) return;
  pid_ = -1;
  error_ = status == ENOENT
               ? "Ghostscript (gs) was not found on the PATH; install it to render pages"
               : std::string("cannot start Ghostscript: ") + std::strerror(status);
}

void PageImages::write(std::string_view bytes) {
  while (pid_ > 0 && input_ >= 0 && !bytes.empty()) {
    const ssize_t count = ::write(input_, bytes.data(), bytes.size());
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) return Close(input_);  // it has stopped reading, and says why at its end
    bytes.remove_prefix(static_cast<std::size_t>(count));
  }
}

bool PageImages::finish() {
  if (pid_ <= 0) return false;
  Close(input_);
  int status = 0;
  while (waitpid(pid_, &status, 0) < 0 && errno == EINTR) {
  }
  pid_ = -1;
  if (WIFEXITED(status) && WEXITSTATUS(status) == 0) return true;
  error_ = "Ghostscript does not like the document" + complaint();
  return false;
}

std::string PageImages::complaint() {
  char text[kLongestComplaint];
  const ssize_t count = pread(messages_, text, sizeof text, 0);
  if (count <= 0) return "";
  std::string_view words(text, static_cast<std::size_t>(count));
  words = words.substr(0, words.find_last_not_of("\r\n") + 1);
  return ": " + Printable(words.substr(0, words.find('\n')), Charset::kUTF8);
}
