// What the credential library says in a job: its messages go to standard output, and so stand in
// front of the header or within it.

#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

struct LibraryMessage {
  std::uint64_t line;     // lines of the text in front of it
  std::string meaning;    // begins ": "; empty when it is not known
  std::string_view text;  // the message's line
};

// Whether the text begins with one.
bool IsLibraryMessage(std::string_view text);

// The known ones in a text that begins with one, or else its first line.
std::vector<LibraryMessage> ExplainLibraryMessages(std::string_view text);
