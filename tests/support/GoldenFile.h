// Golden files: texts of one line each, in which bytes that no line can hold stand in another form.

#pragma once

#include <fstream>
#include <string>
#include <vector>

inline std::string Replaced(std::string text, const std::string& what, const std::string& by) {
  for (std::size_t at = 0; (at = text.find(what, at)) != text.npos; at += by.size())
    text.replace(at, what.size(), by);
  return text;
}

// With the bytes that \n, \r and \xHH stand for, and c thrice for {c*3}.
inline std::string Unescaped(std::string text) {
  text = Replaced(Replaced(text, "\\n", "\n"), "\\r", "\r");
  for (std::size_t at = 0; (at = text.find("\\x", at)) != text.npos; at++)
    text.replace(at, 4, 1, static_cast<char>(std::stoi(text.substr(at + 2, 2), nullptr, 16)));
  for (std::size_t at = 0; (at = text.find('*', at)) != text.npos; at++) {
    const std::size_t end = text.find_first_not_of("0123456789", at + 1);
    if (at < 2 || text[at - 2] != '{' || end == text.npos || text[end] != '}') continue;
    text.replace(at - 2, end - at + 3, std::stoul(text.substr(at + 1)), text[at - 1]);
  }
  return text;
}

// The lines of a file in tests/data, without comments and empty ones.
inline std::vector<std::string> GoldenLines(const std::string& name) {
  std::vector<std::string> lines;
  std::ifstream file(TEST_DATA_DIR "/" + name);
  for (std::string line; std::getline(file, line);) {
    if (!line.empty() && line[0] != '#') lines.push_back(Unescaped(line));
  }
  return lines;
}
