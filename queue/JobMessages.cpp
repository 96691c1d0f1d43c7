// Lines on standard error.

#include "queue/JobMessages.h"

#include <cstdio>
#include <string>

namespace {

constexpr std::size_t kLongestMessage = 1000;  // CUPS takes lines of up to 2047 bytes

void Say(const char* level, std::string_view message) {
  std::string line(level);
  for (const char c : message.substr(0, kLongestMessage)) {
    line.push_back(static_cast<unsigned char>(c) < ' ' || c == '\x7f' ? '?' : c);
  }
  line.push_back('\n');
  std::fwrite(line.data(), 1, line.size(), stderr);
}

}  // namespace

void SayDebug(std::string_view message) {
  Say("DEBUG: ", message);
}

void SayWarning(std::string_view message) {
  Say("WARNING: ", message);
}

void SayError(std::string_view message) {
  Say("ERROR: ", message);
}
