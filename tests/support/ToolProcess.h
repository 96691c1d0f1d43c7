// Runs a built tool to its end: arguments, standard input from a text, both outputs.

#pragma once

#include <fcntl.h>
#include <gtest/gtest.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <string>
#include <vector>

struct ToolResult {
  std::string output;
  std::string messages;
  int status = -1;  // -1: died by a signal
};

inline std::string ContentOf(std::FILE* file) {
  std::string content;
  std::rewind(file);
  char block[4096];
  while (const std::size_t count = std::fread(block, 1, sizeof block, file)) {
    content.append(block, count);
  }
  return content;
}

// `path` becomes the tool's only environment variable.
inline ToolResult RunTool(const char* binary, std::vector<std::string> arguments,
                          const std::string& input = "", const char* path = "/usr/bin:/bin") {
  arguments.insert(arguments.begin(), binary);
  std::vector<char*> argv;
  for (std::string& argument : arguments) argv.push_back(argument.data());
  argv.push_back(nullptr);
  std::string environment = std::string("PATH=") + path;
  char* envp[] = {environment.data(), nullptr};

  std::FILE* files[3] = {};
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  for (int fd = 0; fd < 3; fd++) {
    files[fd] = std::tmpfile();
    posix_spawn_file_actions_adddup2(&actions, fileno(files[fd]), fd);
  }
  std::fwrite(input.data(), 1, input.size(), files[0]);
  std::rewind(files[0]);
  ToolResult result;
  pid_t pid = -1;
  if (posix_spawn(&pid, binary, &actions, nullptr, argv.data(), envp) == 0) {
    int status = 0;
    waitpid(pid, &status, 0);
    if (WIFEXITED(status)) result.status = WEXITSTATUS(status);
  }
  posix_spawn_file_actions_destroy(&actions);
  result.output = ContentOf(files[1]);
  result.messages = ContentOf(files[2]);
  for (std::FILE* file : files) std::fclose(file);
  return result;
}

inline bool IsOneLine(const std::string& text) {
  return !text.empty() && text.find('\n') == text.size() - 1;
}
