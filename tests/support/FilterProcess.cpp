#include "tests/support/FilterProcess.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <thread>

namespace {

struct Pipe {
  explicit Pipe(int packet = 0) {
    if ((packet == 0 ? pipe(ends) : socketpair(AF_UNIX, SOCK_SEQPACKET, 0, ends)) != 0)
      std::abort();
    if (packet != 0) setsockopt(ends[1], SOL_SOCKET, SO_SNDBUF, &packet, sizeof packet);
    for (int end : ends) fcntl(end, F_SETFD, FD_CLOEXEC);
  }
  int ends[2];
};

// The NULL-terminated pointer list that exec wants.
std::vector<char*> Pointers(std::vector<std::string>& texts) {
  std::vector<char*> pointers;
  for (std::string& text : texts) pointers.push_back(text.data());
  pointers.push_back(nullptr);
  return pointers;
}

// Appends what can be read now; false at the end.
bool ReadSome(int fd, std::string& bytes) {
  char block[65536];
  const ssize_t count = read(fd, block, sizeof block);
  if (count > 0) bytes.append(block, static_cast<std::size_t>(count));
  return count > 0;
}

void Close(int& fd) {
  if (fd >= 0) close(fd);
  fd = -1;
}

}  // namespace

void FilterJob::afterShell(const std::string& commands) {
  under = {"/bin/sh", "-c", commands + "; exec \"$0\" \"$@\""};
}

FilterProcess::FilterProcess(const FilterJob& job) {
  std::signal(SIGPIPE, SIG_IGN);
  Pipe input, output(job.outputPacket), messages;
  std::vector<std::string> arguments = job.under;
  arguments.emplace_back(job.filter);
  arguments.insert(arguments.end(), job.arguments.begin(), job.arguments.end());
  std::vector<std::string> environment = {"PATH=/usr/bin:/bin"};
  for (const auto& [name, value] : job.environment) environment.push_back(name + "=" + value);
  if (job.inputDoesNotBlock) fcntl(input.ends[0], F_SETFL, O_NONBLOCK);
  const std::vector<char*> argv = Pointers(arguments);
  const std::vector<char*> envp = Pointers(environment);

  pid_ = fork();
  if (pid_ == 0) {
    std::signal(SIGPIPE, SIG_DFL);
    dup2(input.ends[0], STDIN_FILENO);
    dup2(output.ends[1], STDOUT_FILENO);
    dup2(messages.ends[1], STDERR_FILENO);
    execve(argv[0], argv.data(), envp.data());
    _exit(127);
  }
  close(input.ends[0]);
  close(output.ends[1]);
  close(messages.ends[1]);
  input_ = input.ends[1];
  output_ = output.ends[0];
  messages_ = messages.ends[0];
}

FilterProcess::~FilterProcess() {
  Close(input_);
  Close(output_);
  Close(messages_);
  if (pid_ > 0) {
    kill(pid_, SIGKILL);
    waitpid(pid_, nullptr, 0);
  }
}

void FilterProcess::write(const std::string& bytes) const {
  for (std::size_t sent = 0; sent < bytes.size();) {
    const ssize_t count = ::write(input_, bytes.data() + sent, bytes.size() - sent);
    if (count <= 0) return;
    sent += static_cast<std::size_t>(count);
  }
}

void FilterProcess::closeInput() {
  Close(input_);
}

void FilterProcess::closeOutput() {
  Close(output_);
}

std::string FilterProcess::readUntil(const std::string& end) {
  constexpr int kPatience = 10'000;  // milliseconds
  while (!outputSoFar_.ends_with(end)) {
    pollfd ready = {output_, POLLIN, 0};
    if (poll(&ready, 1, kPatience) != 1 || !ReadSome(output_, outputSoFar_)) break;
  }
  return outputSoFar_;
}

void FilterProcess::readBytes(std::size_t count) {
  while (outputSoFar_.size() < count && ReadSome(output_, outputSoFar_)) {
  }
}

void FilterProcess::waitUntilItWaits() const {
  for (int tries = 0; tries < 10'000; tries++, usleep(1000)) {
    int unread = 0;
    if (input_ >= 0) ioctl(input_, FIONREAD, &unread);
    std::ifstream status("/proc/" + std::to_string(pid_) + "/stat");
    std::string number, name, state;
    status >> number >> name >> state;
    if (state == "Z" || (state == "S" && unread == 0)) return;
  }
}

FilterResult FilterProcess::finish() {
  closeInput();
  return drain();
}

FilterResult FilterProcess::drain() {
  FilterResult result;
  std::thread messageReader([&] {
    while (ReadSome(messages_, result.messages)) {
    }
  });
  while (output_ >= 0 && ReadSome(output_, outputSoFar_)) {
  }
  messageReader.join();
  int status = 0;
  waitpid(pid_, &status, 0);
  pid_ = -1;
  result.output = outputSoFar_;
  if (WIFEXITED(status)) result.exitStatus = WEXITSTATUS(status);
  return result;
}

FilterResult RunFilter(const FilterJob& job) {
  FilterProcess process(job);
  std::thread writer([&] {
    process.write(job.input);
    process.closeInput();
  });
  FilterResult result = process.drain();
  writer.join();
  return result;
}

ScratchFolder::ScratchFolder() {
  std::string pattern = std::filesystem::temp_directory_path() / "pstoxpjl-test-XXXXXX";
  if (mkdtemp(pattern.data()) == nullptr) std::abort();
  path_ = pattern;
}

ScratchFolder::~ScratchFolder() {
  std::filesystem::remove_all(path_);
}

std::string ScratchFolder::write(const std::string& name, const std::string& content) const {
  const std::string path = path_ + "/" + name;
  std::ofstream(path, std::ios::binary) << content;
  return path;
}

std::string PPDText(const std::string& lines) {
  return "*PPD-Adobe: \"4.3\"\n*FormatVersion: \"4.3\"\n*FileVersion: \"1.0\"\n"
         "*LanguageVersion: English\n*LanguageEncoding: ISOLatin1\n"
         "*Manufacturer: \"Zelva\"\n*ModelName: \"Zelva Test\"\n*NickName: \"Zelva Test\"\n" +
         lines;
}

std::string Body(const std::string& output) {
  const std::string headerEnd = "=GRAYSCALE\n", trailer = "\x1b%-12345X@PJL EOJ\n";
  const std::size_t end = output.find(headerEnd);
  if (end == output.npos || !output.ends_with(trailer)) return "(no frame)";
  const std::size_t from = end + headerEnd.size();
  return output.substr(from, output.size() - trailer.size() - from);
}
