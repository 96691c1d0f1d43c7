// What a user can choose, through the queue filter's composition to a header. The first byte
// chooses the model; user, title and options follow, separated by line feeds.

#include <algorithm>
#include <vector>

#include "FilterFrame/Source/UtilityFunctionFilter/PPDAccess.h"
#include "fuzz/FuzzSupport.h"
#include "queue/Composition.h"
#include "queue/HeaderProof.h"
#include "queue/SecretOptions.h"
#include "tests/support/Patterns.h"

namespace {

// Each line is PJL's, holds no control byte, and has its quotes where they belong.
void RequireWhole(std::string_view header) {
  Require(header.starts_with("\x1b%-12345X") && header.ends_with('\n'), "the header is framed");
  header.remove_prefix(9);
  while (!header.empty()) {
    std::string_view line = header.substr(0, header.find('\n'));
    header.remove_prefix(line.size() + 1);
    if (line.ends_with('\r')) line.remove_suffix(1);
    Require(line.starts_with("@PJL "), "a line is PJL's");
    Require(std::ranges::none_of(line, [](unsigned char c) { return c < ' ' || c == 127; }),
            "a line holds no control byte");
    const auto quotes = std::ranges::count(line, '"');
    Require(quotes == 0 || (quotes == 2 && line.ends_with('"')), "quotes enclose the last value");
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  CaptureOutput();
  if (size == 0) return 0;
  static const std::string ppds[] = {FileContent(PPD_DIR "/zelva-atelier-c90.ppd"),
                                     FileContent(PPD_DIR "/zelva-atelier-c60.ppd"),
                                     FileContent(PPD_DIR "/zelva-kontor-m20.ppd")};
  static std::uint8_t used = 255;
  const std::uint8_t choice = data[0] % 3;
  if (used != choice) UsePPD(ppds[used = choice]);

  std::string_view rest = Text(data + 1, size - 1);
  const std::string user = TakeArgument(rest), title = TakeArgument(rest);
  std::string options = ArgumentText(rest);
  std::string words[] = {"cupstoxpjl", "1", user, title, "1", ""};
  std::vector<char*> args;
  for (std::string& word : words) args.push_back(word.data());
  args.push_back(nullptr);

  Composition job(JobPPD(), {user, title, "1"}, TakeJobOptions(options.data()));
  Require(options.find_first_not_of('\0') == options.npos, "the options are wiped");
  job.compose(args.data());
  if (job.complaints().failed()) return 0;
  args[2] = job.facts().user.data();
  args[3] = job.facts().title.data();
  RequireWhole(HeaderFor(args.data(), job.optionsText()));
  return 0;
}
