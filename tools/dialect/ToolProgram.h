// What the tools have in common as programs: how they begin and end, what they say and write.

#pragma once

#include <unistd.h>

#include <string>
#include <string_view>

// Exit statuses.
inline constexpr int kFine = 0;
inline constexpr int kBadData = 1;
inline constexpr int kWrongUsage = 2;
inline constexpr int kUnreadable = 3;

// Says `what` as one line on standard error, behind the tool's name. Returns `status`.
int Complain(int status, const std::string& what);

// Says what is wrong with the arguments, and where the right ones stand. Returns kWrongUsage.
int Misused(const std::string& what);

// A name or a message as one line that any terminal may receive.
std::string Shown(const std::string& text);

// Writes all of the text; false, with a complaint, when it does not get out. It may hold passwords,
// so that no other buffer gets it.
bool Put(std::string_view text, int fd = STDOUT_FILENO);

// The main() of the tool `name`: the status that `run` returns, or `failed` when an exception ends
// it. Closed standard descriptors are occupied while it runs, and its memory is wiped: the program
// has WipedMemory.cpp among its own sources.
int ToolMain(const char* name, int failed, int (*run)(int argc, char* argv[]), int argc,
             char* argv[]);
