// What the fuzzers share: a job in this process whose output goes nowhere, and its files.

#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

// libFuzzer's entry.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

inline std::string_view Text(const std::uint8_t* data, std::size_t size) {
  return {reinterpret_cast<const char*>(data), size};
}

// Text up to its first NUL: what an argument or a C string can hold.
std::string ArgumentText(std::string_view text);

// Takes a line off the beginning of `rest`, as an argument.
std::string TakeArgument(std::string_view& rest);

// Writes a file of this process's own and returns its name; the same `name` is written anew.
std::string WriteFile(const char* name, std::string_view content);

// Sends standard output and standard error to a file, read back by OutputSoFar; done once.
void CaptureOutput();

// What standard output has received since the last call.
std::string TakeOutput();

// Makes `ppdText` the job's PPD.
void UsePPD(std::string_view ppdText);

// A PPD with these attribute lines.
std::string PPDWith(std::string_view lines);

// Sets the names from user and title, reads the tickets and writes the job header.
void WriteHeader(const std::string& user, const std::string& title, const std::string& options);

// Ends the process when a property does not hold.
void Require(bool condition, const char* what);
