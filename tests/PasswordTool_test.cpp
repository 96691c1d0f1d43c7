// Passwords from standard input and from a terminal, on their way to the device.

#include <gtest/gtest.h>
#include <poll.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>
#ifdef __APPLE__
#include <util.h>
#else
#include <pty.h>
#include <utmp.h>
#endif

#include <csignal>
#include <cstdlib>

#include "deployment/DeploymentInfo.h"
#include "tests/support/Password.h"
#include "tests/support/Patterns.h"
#include "tests/support/ProcessMemory.h"
#include "tests/support/SampleJobs.h"
#include "tests/support/ToolProcess.h"

namespace {

// Some containers have none.
bool PseudoTerminalsExist() {
  int ends[2] = {};
  if (openpty(&ends[0], &ends[1], nullptr, nullptr, nullptr) != 0) return false;
  for (int end : ends) close(end);
  return true;
}

// The tool on a terminal of its own, its standard output in a file. It has ten seconds.
class OnTerminal {
 public:
  OnTerminal() {
    if (openpty(&terminal_, &side_, nullptr, nullptr, nullptr) != 0) std::abort();
    pid_ = fork();
    if (pid_ != 0) return;
    alarm(10);
    std::signal(SIGINT, SIG_DFL);
    login_tty(side_);
    execl("/bin/sh", "sh", "-c", "exec \"$0\" --confirm >\"$1\"", PASSWORD_BINARY, output_.c_str(),
          nullptr);
    _exit(127);
  }
  ~OnTerminal() {
    close(terminal_);
    close(side_);
  }
  OnTerminal(const OnTerminal&) = delete;
  OnTerminal& operator=(const OnTerminal&) = delete;

  bool echoes() const {
    termios state = {};
    tcgetattr(side_, &state);
    return (state.c_lflag & ECHO) != 0;
  }
  // Reads what the terminal shows until it ends with `prompt`, then types.
  void answer(const std::string& prompt, const std::string& typed) {
    while (!shown_.ends_with(prompt) && readByte(10'000)) {
    }
    EXPECT_FALSE(echoes());
    EXPECT_GT(write(terminal_, typed.data(), typed.size()), 0);
  }
  // The exit status, or minus the signal.
  int finish() {
    int status = 0;
    waitpid(pid_, &status, 0);
    while (readByte(0)) {
    }
    return WIFSIGNALED(status) ? -WTERMSIG(status) : WEXITSTATUS(status);
  }
  const std::string& shown() const { return shown_; }
  std::string output() const { return FileContent(output_); }

 private:
  // Adds a byte to what the terminal has shown; false when none comes within so many milliseconds.
  bool readByte(int patience) {
    pollfd ready = {terminal_, POLLIN, 0};
    char byte = '\0';
    if (poll(&ready, 1, patience) != 1 || read(terminal_, &byte, 1) != 1) return false;
    shown_ += byte;
    return true;
  }

  ScratchFolder folder_;
  std::string output_ = folder_.path() + "/output";
  int terminal_ = -1;
  int side_ = -1;
  pid_t pid_ = -1;
  std::string shown_;
};

}  // namespace

TEST(PasswordTool, PrintsTheTicketValueOfTheFirstLine) {
  const struct {
    std::string input;
    std::string password;  // empty: refused
    const char* message;
  } rows[] = {
      {"geheim\n", "geheim", ""},
      {"geheim", "geheim", ""},
      {"geheim\r\nmore\n", "geheim", ""},
      {" two words \n", " two words ", ""},
      {"M\xc3\xbcller\n", "M\xc3\xbcller", ""},
      {std::string(255, 'x') + "\n", std::string(255, 'x'), ""},
      {std::string(255, 'x') + "\r\n", std::string(255, 'x'), ""},
      {std::string(256, 'x') + "\n", "", "xpjl-password: the password is longer than 255 bytes\n"},
      {std::string(70000, 'x'), "", "xpjl-password: the password is longer than 255 bytes\n"},
      {"\n", "", "xpjl-password: the password is empty\n"},
      {"\r\n", "", "xpjl-password: the password is empty\n"},
      {"", "", "xpjl-password: there is no password on standard input\n"},
  };
  for (const auto& row : rows) {
    const ToolResult result = RunTool(PASSWORD_BINARY, {"--confirm"}, row.input);
    const bool refused = row.password.empty();
    EXPECT_EQ(result.status, refused ? 1 : 0) << result.messages;
    EXPECT_EQ(result.output, refused ? "" : Stored(row.password) + "\n");
    EXPECT_EQ(result.messages, refused ? row.message : "");
  }
}

TEST(PasswordTool, TakesNoPasswordFromTheCommandLine) {
  for (const char* argument : {"hunter2", "--password=hunter2", "-phunter2"}) {
    const ToolResult result = RunTool(PASSWORD_BINARY, {argument}, "x\n");
    EXPECT_EQ(result.status, 2) << argument;
    EXPECT_EQ(result.output, "");
    EXPECT_TRUE(IsOneLine(result.messages));
    EXPECT_EQ(result.messages.find("hunter2"), std::string::npos);
  }
  EXPECT_EQ(RunTool(PASSWORD_BINARY, {"--help"}).status, 0);
  for (const char* tool : {PASSWORD_BINARY, INSPECT_BINARY}) {
    const std::string version = RunTool(tool, {"--version"}).output;
    EXPECT_TRUE(
        Matches("^xpjl-[a-z]+ [0-9.]+\nDeployment: demonstration\n2048-bit key: [0-9a-f]{64}\n"
                "3072-bit key: [0-9a-f]{64}\n",
                version))
        << version;
  }
}

TEST(PasswordTool, ChecksAValue) {
  const struct {
    std::string value;
    bool opens;
  } rows[] = {
      {Stored("geheim"), true},
      {Stored(std::string(255, 'x')), true},
      {Stored("geheim").replace(3, 1, "_"), false},
      {Stored("geheim").substr(4), false},
      {Stored(""), false},
      {"AAAAAAAAAAAAAAAAAAAAAA==", false},
      {Stored(std::string(300, 'x')), false},
      {std::string(600, 'A'), false},
      {"", false},
  };
  for (const auto& row : rows) {
    const ToolResult result = RunTool(PASSWORD_BINARY, {"--check"}, row.value + "\n");
    EXPECT_EQ(result.status, row.opens ? 0 : 1) << row.value;
    EXPECT_EQ(result.output, row.opens ? "The value opens in this deployment.\n" : "");
    EXPECT_EQ(result.messages.empty(), row.opens) << result.messages;
  }
}

// A line without an end is refused without reading it, and what stands behind a line stays there.
TEST(PasswordTool, ReadsNoMoreThanItNeeds) {
  EXPECT_EQ(RunTool("/bin/sh", {"-c", "timeout 5 " PASSWORD_BINARY " </dev/zero"}).status, 1);
  EXPECT_EQ(RunTool("/bin/sh", {"-c", PASSWORD_BINARY " >/dev/null; cat"}, "one\ntwo\n").output,
            "two\n");
}

// Neither tool leaves a password, nor half of one, in memory that it gives back.
TEST(PasswordTool, LeavesNoPasswordInMemory) {
#ifdef SANITIZED
  GTEST_SKIP() << "sanitizers have memory of their own";
#endif
  const std::string secret = "correct horse battery staple";
  const std::string key = TEST_DATA_DIR "/demo-device-2048-private.pem";
  const std::string job = FilteredJob(kSecurePrint + Stored(secret));
  const struct {
    std::vector<std::string> arguments;
    std::string input;
  } rows[] = {
      {{PASSWORD_BINARY}, secret + "\n"},
      {{PASSWORD_BINARY}, secret + std::string(600, 'x')},
      {{PASSWORD_BINARY, "--check"}, Stored(secret) + "\n"},
      {{INSPECT_BINARY, "-", "--device-key", key}, job},
      {{INSPECT_BINARY, "-", "--device-key", key, "--json"}, job},
      {{INSPECT_BINARY, "-", "--device-key", key, "--show-passwords"}, job},
      {{INSPECT_BINARY, "-", "--device-key", key, "--show-passwords", "--json"}, job},
      {{EXPLAIN_BINARY, "--ppd", PPD_DIR "/zelva-atelier-c90.ppd",
        "-oZLVPrintPassword=Custom.correct horse battery staple"},
       ""},
  };
  for (const auto& row : rows) {
    const auto memory = MemoryAtExit(row.arguments, {}, row.input);
    if (!memory) GTEST_SKIP() << "no process can be looked into here";
    EXPECT_NE(memory->find(row.arguments[0]), memory->npos) << "the search itself is broken";
    for (std::size_t at = 0; at + 8 <= secret.size(); at++) {
      EXPECT_EQ(memory->find(secret.substr(at, 8)), memory->npos)
          << testing::PrintToString(row.arguments) << secret.substr(at, 8);
    }
  }
}

TEST(PasswordTool, AsksOnATerminalWithoutEcho) {
  if (!PseudoTerminalsExist()) GTEST_SKIP() << "this machine has no pseudo terminals";
  const struct {
    std::vector<std::pair<const char*, const char*>> dialogue;  // a prompt, and what is typed
    int status;
    const char* shown;
  } rows[] = {
      {{{"Password: ", "geheim\n"}, {"Once more: ", "geheim\n"}},
       0,
       "Password: \r\nOnce more: \r\n"},
      {{{"Password: ", "geheim\n"}, {"Once more: ", "Geheim\n"}},
       1,
       "Password: \r\nOnce more: \r\nxpjl-password: the two passwords differ\r\n"},
      {{{"Password: ", "geheim\n"}, {"Once more: ", "\3"}},
       -SIGINT,
       "Password: \r\nOnce more: \r\n"},
      // Stopped, it asks again when it goes on.
      {{{"Password: ", "\32"},
        {"Password: \r\nPassword: ", "geheim\n"},
        {"Once more: ", "geheim\n"}},
       0,
       "Password: \r\nPassword: \r\nOnce more: \r\n"},
  };
  for (const auto& row : rows) {
    OnTerminal tool;
    for (const auto& [prompt, typed] : row.dialogue) tool.answer(prompt, typed);
    EXPECT_EQ(tool.finish(), row.status);
    EXPECT_EQ(tool.output(), row.status == 0 ? Stored("geheim") + "\n" : "");
    EXPECT_EQ(tool.shown(),
              "xpjl-password: " + std::string(kDemonstrationWarning) + "\r\n" + row.shown);
    EXPECT_TRUE(tool.echoes());
  }
}
