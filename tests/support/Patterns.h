// Extended regular expressions over texts and over the filter's sources.

#pragma once

#include <regex.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>
#include <string>
#include <vector>

inline std::string FileContent(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  std::ostringstream content;
  content << file.rdbuf();
  return content.str();
}

// The last group of each match of `pattern` in `text`, in their order.
inline std::vector<std::string> Captures(const std::string& pattern, const std::string& text) {
  regex_t expression;
  if (regcomp(&expression, pattern.c_str(), REG_EXTENDED) != 0) std::abort();
  std::vector<regmatch_t> groups(expression.re_nsub + 1);
  std::vector<std::string> found;
  const char* at = text.c_str();
  while (regexec(&expression, at, groups.size(), groups.data(), 0) == 0 && groups[0].rm_eo > 0) {
    found.emplace_back(at + groups.back().rm_so, at + groups.back().rm_eo);
    at += groups[0].rm_eo;
  }
  regfree(&expression);
  return found;
}

inline bool Matches(const std::string& pattern, const std::string& text) {
  return !Captures(pattern, text).empty();
}

// What `pattern` finds in the rooms of the filter's sources.
inline std::set<std::string> NamesInSources(const std::string& pattern) {
  std::set<std::string> names;
  for (const char* room : {"engine", "modules", "FilterFrame"}) {
    for (const auto& file :
         std::filesystem::recursive_directory_iterator(std::string(SOURCE_DIR "/") + room)) {
      if (!file.is_regular_file()) continue;
      for (const std::string& name : Captures(pattern, FileContent(file.path())))
        names.insert(name);
    }
  }
  return names;
}
