// In-process jobs for the fuzzers.

#include "fuzz/FuzzSupport.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <system_error>

#include "FilterFrame/Source/JobNames.h"
#include "FilterFrame/Source/UtilityFunctionFilter/PPDAccess.h"
#include "engine/JobHeader.h"
#include "engine/ModuleDispatch.h"

namespace {

std::string scratchFolder;

void RemoveScratchFolder() {
  std::error_code ignored;
  std::filesystem::remove_all(scratchFolder, ignored);
}

const std::string& ScratchFolder() {
  if (scratchFolder.empty()) {
    scratchFolder = "/tmp/pstoxpjl-fuzz-XXXXXX";
    Require(mkdtemp(scratchFolder.data()) != nullptr, "a scratch folder");
    std::atexit(RemoveScratchFolder);
  }
  return scratchFolder;
}

}  // namespace

std::string ArgumentText(std::string_view text) {
  return std::string(text.substr(0, text.find('\0')));
}

std::string TakeArgument(std::string_view& rest) {
  const std::size_t end = std::min(rest.find('\n'), rest.size());
  std::string line = ArgumentText(rest.substr(0, end));
  rest.remove_prefix(std::min(end + 1, rest.size()));
  return line;
}

std::string WriteFile(const char* name, std::string_view content) {
  std::string path = ScratchFolder() + "/" + name;
  std::ofstream(path, std::ios::binary) << content;
  return path;
}

void CaptureOutput() {
  static const bool captured = [] {
    const std::string path = ScratchFolder() + "/output";
    return std::freopen(path.c_str(), "w+b", stdout) != nullptr;
  }();
  Require(captured, "a file for the output");
}

std::string TakeOutput() {
  std::fflush(stdout);
  const long size = std::ftell(stdout);
  std::string output(static_cast<std::size_t>(size), '\0');
  const ssize_t count = pread(STDOUT_FILENO, output.data(), output.size(), 0);
  Require(count == size, "the whole output");
  Require(ftruncate(STDOUT_FILENO, 0) == 0, "an empty file");
  std::rewind(stdout);
  return output;
}

void UsePPD(std::string_view ppdText) {
  CloseJobPPD();
  setenv("PPD", WriteFile("job.ppd", ppdText).c_str(), 1);
}

std::string PPDWith(std::string_view lines) {
  return "*PPD-Adobe: \"4.3\"\n*FormatVersion: \"4.3\"\n*ModelName: \"Zelva Fuzz\"\n" +
         std::string(lines);
}

void WriteHeader(const std::string& user, const std::string& title, const std::string& options) {
  std::string word = "1";
  std::string texts[] = {user, title, options};
  char* args[] = {word.data(), word.data(),     texts[0].data(), texts[1].data(),
                  word.data(), texts[2].data(), nullptr};
  ReadUserName(args[2]);
  InvalidateStdUserName();
  ReadDocumentName(args);
  InializeDescriptionTable();
  GetTicketFromPDE(args);
  OutputXPJLCommand(args);
}

void Require(bool condition, const char* what) {
  if (condition) return;
  std::fprintf(stderr, "not so: %s\n", what);
  std::abort();
}
