// PostScript through both streams, compared with the line rules by the letter.

#include <optional>

#include "FilterFrame/Source/DecomposedStream.h"
#include "FilterFrame/Source/PostScriptStream.h"
#include "fuzz/FuzzSupport.h"

namespace {

// The lines that are passed on of a job: finished ones, and the whole pieces of an unfinished one.
std::string PassedOn(std::string_view job) {
  std::string passed;
  std::string held;
  for (char c : job) {
    held += c;
    if (c == '\r' || c == '\n' || held.size() == kLinePieceSize) {
      passed += held;
      held.clear();
    }
  }
  return passed;
}

std::string_view WithoutLast(std::string_view text) {
  return text.substr(0, text.size() - std::min<std::size_t>(text.size(), 1));
}

// What comes back from the spool of a job.
std::string Spooled(std::string_view job) {
  std::string spool = PassedOn(WithoutLast(job));
  if (!job.empty()) spool += job.back();
  if (!spool.ends_with('\4') || job.empty()) spool += '\4';
  return PassedOn(spool);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  CaptureOutput();
  static const bool ready = [] {
    UsePPD(PPDWith("*ColorDevice: True\n"));
    WriteHeader("user", "title", "");
    TakeOutput();
    return true;
  }();
  Require(ready, "a job without options, which injects nothing");
  const std::string_view job = Text(data, size);
  static char word[] = "1";
  std::string path = WriteFile("job.ps", job);
  char* argv[] = {word, word, word, word, word, word, path.data(), nullptr};

  OutputPSStream(7, argv);
  Require(TakeOutput() == PassedOn(job) + '\4', "the pass-through is transparent");

  OutputPSStreamtoFileandInsertPJLforFeaturePDE(7, argv);
  const std::string output = TakeOutput();
  const std::string enter = "@PJL ENTER LANGUAGE=POSTSCRIPT\n";
  Require(output.ends_with(enter + Spooled(job)), "decomposed mode is transparent");
  return 0;
}
