// Passwords from standard input and from a terminal, on their way to the device.

#include <gtest/gtest.h>
#include <poll.h>
#include <termios.h>

#include <csignal>
#include <cstdlib>

#include "tests/support/Password.h"
#include "tests/support/Tickets.h"
#include "tests/support/ToolProcess.h"

namespace {

// The tool on a terminal of its own.
class OnTerminal {
 public:
  explicit OnTerminal(std::vector<std::string> arguments) {
    terminal_ = posix_openpt(O_RDWR | O_NOCTTY);
    grantpt(terminal_);
    unlockpt(terminal_);
    const std::string name = ptsname(terminal_);
    side_ = open(name.c_str(), O_RDWR | O_NOCTTY);  // keeps the settings alive
    arguments.insert(arguments.begin(), PASSWORD_BINARY);
    if (pipe(output_) != 0) std::abort();
    pid_ = fork();
    if (pid_ != 0) {
      close(output_[1]);
      return;
    }
    std::vector<char*> argv;
    for (std::string& argument : arguments) argv.push_back(argument.data());
    argv.push_back(nullptr);
    std::signal(SIGINT, SIG_DFL);
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
    setsid();
    const int fd = open(name.c_str(), O_RDWR);  // becomes the controlling terminal
    dup2(fd, STDIN_FILENO);
    dup2(fd, STDERR_FILENO);
    dup2(output_[1], STDOUT_FILENO);
    execv(PASSWORD_BINARY, argv.data());
    _exit(127);
  }
  ~OnTerminal() {
    close(terminal_);
    close(side_);
    close(output_[0]);
  }
  OnTerminal(const OnTerminal&) = delete;
  OnTerminal& operator=(const OnTerminal&) = delete;

  bool echoes() const {
    termios state = {};
    tcgetattr(side_, &state);
    return (state.c_lflag & ECHO) != 0;
  }
  // Waits for a prompt, then types.
  void answer(const std::string& prompt, const std::string& typed) {
    readUntil(prompt);
    EXPECT_FALSE(echoes());
    if (write(terminal_, typed.data(), typed.size()) < 0) std::abort();
  }
  // Standard output; the exit status, or minus the signal, goes to `status`.
  std::string finish(int& status) {
    std::string text;
    char block[1024];
    for (;;) {
      pollfd ready = {output_[0], POLLIN, 0};
      if (poll(&ready, 1, kPatience) != 1) kill(pid_, SIGKILL);
      const ssize_t count = read(output_[0], block, sizeof block);
      if (count <= 0) break;
      text.append(block, static_cast<std::size_t>(count));
    }
    waitpid(pid_, &status, 0);
    status = WIFSIGNALED(status) ? -WTERMSIG(status) : WEXITSTATUS(status);
    readUntil("");
    return text;
  }
  const std::string& shown() const { return shown_; }

 private:
  static constexpr int kPatience = 10'000;  // milliseconds

  // What the terminal shows, until it ends with `end`; with an empty one all that is there.
  void readUntil(const std::string& end) {
    while (end.empty() || !shown_.ends_with(end)) {
      pollfd ready = {terminal_, POLLIN, 0};
      char byte = '\0';
      if (poll(&ready, 1, end.empty() ? 0 : kPatience) != 1 || read(terminal_, &byte, 1) != 1)
        return;
      shown_ += byte;
    }
  }

  int terminal_ = -1;
  int side_ = -1;
  int output_[2] = {-1, -1};
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
      {std::string(256, 'x') + "\n", "", "the password is longer than 255 bytes"},
      {std::string(70000, 'x'), "", "the password is longer than 255 bytes"},
      {"\n", "", "the password is empty"},
      {"", "", "there is no password on standard input"},
  };
  for (const auto& row : rows) {
    const ToolResult result = RunTool(PASSWORD_BINARY, {"--confirm"}, row.input);
    EXPECT_EQ(result.status, row.password.empty() ? 1 : 0) << result.messages;
    EXPECT_EQ(result.output, row.password.empty() ? "" : Stored(row.password) + "\n");
    EXPECT_EQ(result.messages,
              row.password.empty() ? std::string("xpjl-password: ") + row.message + "\n" : "");
  }
}

TEST(PasswordTool, ReachesTheDevice) {
  std::string value = RunTool(PASSWORD_BINARY, {}, "ge heim\n").output;
  value.pop_back();
  FilterJob job;
  job.arguments[4] = Tickets(
      "PrintTypeTicketKey=2 PrintTypeUserNameTicketKey=sam "
      "PrintTypePasswordTicketKey=" +
      value);
  job.input = "%!PS\n";
  EXPECT_NE(WithOpenedPasswords(RunFilter(job).output).find("HOLDENCRYPTKEY=\"<ge heim>\""),
            std::string::npos);
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
  EXPECT_EQ(RunTool(PASSWORD_BINARY, {"--version"}).status, 0);
}

TEST(PasswordTool, AsksOnATerminalWithoutEcho) {
  const struct {
    const char* first;
    const char* second;
    int status;
    const char* shown;
  } rows[] = {
      {"geheim\n", "geheim\n", 0, "Password: \r\nOnce more: \r\n"},
      {"geheim\n", "Geheim\n", 1,
       "Password: \r\nOnce more: \r\nxpjl-password: the two passwords differ\r\n"},
      {"geheim\n", "\3", -SIGINT, "Password: \r\nOnce more: \r\n"},
  };
  for (const auto& row : rows) {
    OnTerminal tool({"--confirm"});
    tool.answer("Password: ", row.first);
    tool.answer("Once more: ", row.second);
    int status = 0;
    EXPECT_EQ(tool.finish(status), row.status == 0 ? Stored("geheim") + "\n" : "");
    EXPECT_EQ(status, row.status);
    EXPECT_EQ(tool.shown(), row.shown);
    EXPECT_TRUE(tool.echoes());
  }
}
