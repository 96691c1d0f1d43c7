// The traced process stops at its exit, when all its memory is still there.

#include <fcntl.h>
#include <sys/ptrace.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdint>
#include <fstream>
#include <sstream>

#include "tests/support/FilterProcess.h"
#include "tests/support/ProcessMemory.h"

namespace {

[[noreturn]] void RunTraced(std::vector<std::string>& arguments,
                            std::vector<std::string>& variables, const std::string& input) {
  const int null = open("/dev/null", O_WRONLY);
  dup2(open(input.c_str(), O_RDONLY), STDIN_FILENO);
  dup2(null, STDOUT_FILENO);
  dup2(null, STDERR_FILENO);
  std::vector<char*> argv, envp;
  for (std::string& text : arguments) argv.push_back(text.data());
  for (std::string& text : variables) envp.push_back(text.data());
  argv.push_back(nullptr);
  envp.push_back(nullptr);
  if (ptrace(PTRACE_TRACEME, 0, nullptr, nullptr) == 0) execve(argv[0], argv.data(), envp.data());
  _exit(127);
}

std::string WritableMemory(pid_t pid) {
  const std::string process = "/proc/" + std::to_string(pid);
  std::ifstream maps(process + "/maps"), memory(process + "/mem", std::ios::binary);
  std::string bytes;
  for (std::string line; std::getline(maps, line);) {
    std::istringstream fields(line);
    std::uintptr_t from = 0, to = 0;
    std::string rights;
    fields >> std::hex >> from;
    fields.get();
    fields >> to >> rights;
    if (!rights.starts_with("rw") || to - from > (std::uintptr_t{1} << 30)) continue;  // shadows
    const std::size_t before = bytes.size();
    bytes.resize(before + (to - from));
    memory.clear();
    memory.seekg(static_cast<std::streamoff>(from));
    memory.read(bytes.data() + before, static_cast<std::streamsize>(to - from));
  }
  return bytes;
}

}  // namespace

std::optional<std::string> MemoryAtExit(std::vector<std::string> arguments,
                                        const std::map<std::string, std::string>& environment,
                                        const std::string& input) {
  const ScratchFolder folder;
  const std::string inputFile = folder.write("input", input);
  std::vector<std::string> variables;
  for (const auto& [name, value] : environment) variables.push_back(name + "=" + value);
  const pid_t pid = fork();
  if (pid == 0) RunTraced(arguments, variables, inputFile);

  std::optional<std::string> memory;
  int status = 0;
  bool traced = false;
  while (waitpid(pid, &status, 0) == pid && WIFSTOPPED(status)) {
    int signal = WSTOPSIG(status);
    if (status >> 8 == (SIGTRAP | (PTRACE_EVENT_EXIT << 8))) memory = WritableMemory(pid);
    if (signal == SIGTRAP) signal = 0;
    if (!traced) ptrace(PTRACE_SETOPTIONS, pid, nullptr, PTRACE_O_TRACEEXIT | PTRACE_O_EXITKILL);
    traced = true;
    ptrace(PTRACE_CONT, pid, nullptr, signal);
  }
  if (memory && memory->empty()) return std::nullopt;
  return memory;
}
