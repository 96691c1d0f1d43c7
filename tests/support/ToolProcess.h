// Runs a built tool to its end: arguments, standard input from a text, both outputs.

#pragma once

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <csignal>
#include <cstdlib>
#include <string>
#include <vector>

#include "tests/support/FilterProcess.h"
#include "tests/support/Patterns.h"

struct ToolResult {
  std::string output;
  std::string messages;
  int status = -1;  // -1: died by a signal
};

// `environment` holds the tool's only variables, as a shell's words. Arguments hold no apostrophes.
inline ToolResult RunTool(const std::string& binary, const std::vector<std::string>& arguments,
                          const std::string& input = "",
                          const std::string& environment = "PATH=/usr/bin:/bin") {
  const ScratchFolder folder;
  const std::string output = folder.path() + "/output", messages = folder.path() + "/messages";
  std::string command = "exec env -i " + environment + " '" + binary + "'";
  for (const std::string& argument : arguments) command += " '" + argument + "'";
  command += " <" + folder.write("input", input) + " >" + output + " 2>" + messages;
  std::signal(SIGPIPE, SIG_DFL);  // whoever runs a filter ignores it, and the tool would as well
  const int status = std::system(command.c_str());
  return {FileContent(output), FileContent(messages), WIFEXITED(status) ? WEXITSTATUS(status) : -1};
}

inline bool IsOneLine(const std::string& text) {
  return !text.empty() && text.find('\n') == text.size() - 1;
}
