// The terminal's echo, and the signals that must not leave it switched off.

#include "tools/password/PasswordInput.h"

#include <sys/select.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <iterator>

namespace {

constexpr int kSignals[] = {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGTSTP, SIGTTIN, SIGTTOU};

volatile std::sig_atomic_t caught = 0;

void Catch(int number) {
  caught = number;
}

// While it lives signals are noticed in waitForInput() only, and do not end the program.
class HeldSignals {
 public:
  HeldSignals() {
    caught = 0;
    struct sigaction action = {};
    action.sa_handler = Catch;
    sigemptyset(&action.sa_mask);
    sigset_t held;
    sigemptyset(&held);
    for (int number : kSignals) sigaddset(&held, number);
    sigprocmask(SIG_BLOCK, &held, &mask_);
    for (std::size_t i = 0; i < std::size(kSignals); i++) {
      sigaction(kSignals[i], nullptr, &before_[i]);
      if (before_[i].sa_handler != SIG_IGN) sigaction(kSignals[i], &action, nullptr);
    }
  }
  ~HeldSignals() {
    for (std::size_t i = 0; i < std::size(kSignals); i++) {
      sigaction(kSignals[i], &before_[i], nullptr);
    }
    sigprocmask(SIG_SETMASK, &mask_, nullptr);
  }
  // Waits until there is something to read; false when a signal has come.
  bool waitForInput() const {
    while (caught == 0) {
      fd_set input;
      FD_ZERO(&input);
      FD_SET(STDIN_FILENO, &input);
      if (pselect(STDIN_FILENO + 1, &input, nullptr, nullptr, nullptr, &mask_) != -1) return true;
      if (errno != EINTR) return true;  // reading tells what is wrong
    }
    return false;
  }
  HeldSignals(const HeldSignals&) = delete;
  HeldSignals& operator=(const HeldSignals&) = delete;

 private:
  struct sigaction before_[std::size(kSignals)] = {};
  sigset_t mask_;
};

// While it lives the terminal does not echo.
class SilentTerminal {
 public:
  SilentTerminal() {
    if (tcgetattr(STDIN_FILENO, &before_) != 0) return;
    termios silent = before_;
    silent.c_lflag &= ~static_cast<tcflag_t>(ECHO | ECHONL);
    changed_ = tcsetattr(STDIN_FILENO, TCSAFLUSH, &silent) == 0;
  }
  ~SilentTerminal() {
    if (!changed_) return;
    tcsetattr(STDIN_FILENO, TCSAFLUSH, &before_);
  }
  SilentTerminal(const SilentTerminal&) = delete;
  SilentTerminal& operator=(const SilentTerminal&) = delete;

 private:
  termios before_ = {};
  bool changed_ = false;
};

// What is read at once; wiped, since it holds the password.
struct InputBlock {
  InputBlock() = default;
  ~InputBlock() { OPENSSL_cleanse(bytes, sizeof bytes); }
  InputBlock(const InputBlock&) = delete;
  InputBlock& operator=(const InputBlock&) = delete;

  ssize_t fill() {
    ssize_t count = 0;
    do {
      count = read(STDIN_FILENO, bytes, sizeof bytes);
    } while (count < 0 && errno == EINTR);
    return count;
  }

  char bytes[kLongestLine] = {};
};

InputResult ReadLine(Password& password, const HeldSignals* held = nullptr) {
  password.clear();
  InputBlock block;
  for (bool any = false;; any = true) {
    if (held != nullptr && !held->waitForInput()) return InputResult::kInterrupted;
    const ssize_t count = block.fill();
    if (count <= 0 && !any) return InputResult::kNothing;
    const char* const end = block.bytes + std::max<ssize_t>(count, 0);
    const char* const lineEnd = std::find(static_cast<const char*>(block.bytes), end, '\n');
    for (const char* at = block.bytes; at != lineEnd; at++) password.append(*at);
    if (lineEnd != end) lseek(STDIN_FILENO, lineEnd + 1 - end, SEEK_CUR);
    if (count <= 0 || lineEnd != end || password.length() > kLongestLine) {
      password.dropCarriageReturn();
      return InputResult::kRead;
    }
  }
}

InputResult AskOnce(const char* prompt, Password& password) {
  const HeldSignals held;
  const SilentTerminal silent;
  std::fputs(prompt, stderr);
  const InputResult result = ReadLine(password, &held);
  std::fputc('\n', stderr);
  return result;
}

bool IsJobControl(int number) {
  return number == SIGTSTP || number == SIGTTIN || number == SIGTTOU;
}

}  // namespace

bool ReadsFromTerminal() {
  return isatty(STDIN_FILENO) == 1;
}

InputResult ReadPassword(const char* prompt, Password& password) {
  if (!ReadsFromTerminal()) return ReadLine(password);
  for (;;) {
    const InputResult result = AskOnce(prompt, password);
    if (result != InputResult::kInterrupted) return result;
    const int number = caught;
    kill(getpid(), number);
    if (!IsJobControl(number)) return result;  // the program was stopped, and goes on: ask again
  }
}
