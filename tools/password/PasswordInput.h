// Reads a password: from a terminal without echo, or the first line of standard input.

#pragma once

#include <openssl/crypto.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <string_view>

// The longest line that is read, in bytes.
inline constexpr std::size_t kLongestLine = 512;

// A password, or the value made of one; wiped at its end.
class Password {
 public:
  Password() = default;
  ~Password() { OPENSSL_cleanse(bytes_.data(), bytes_.size()); }
  Password(const Password&) = delete;
  Password& operator=(const Password&) = delete;

  std::string_view text() const { return {bytes_.data(), std::min(length_, bytes_.size())}; }
  std::size_t length() const { return length_; }  // also of what is beyond the longest

  void append(char byte) {
    if (length_ < bytes_.size()) bytes_[length_] = byte;
    length_++;
  }
  void clear() { length_ = 0; }
  void dropCarriageReturn() {
    if (length_ > 0 && length_ <= bytes_.size() && bytes_[length_ - 1] == '\r') length_--;
  }

 private:
  std::array<char, kLongestLine> bytes_{};
  std::size_t length_ = 0;
};

enum class InputResult { kRead, kNothing, kInterrupted };

// Whether passwords come from a terminal.
bool ReadsFromTerminal();

// Reads one line into `password`, without its line end; no more of a line that is too long than
// shows that it is. Input that can be sought in stands behind the line then, other input anywhere.
// On a terminal `prompt` is shown on standard error and nothing is echoed; the terminal is left as
// it was, also by signals.
InputResult ReadPassword(const char* prompt, Password& password);
