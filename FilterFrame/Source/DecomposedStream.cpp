// Spooling, the settings found on the way, and the copy-back.
//
// The spool holds what the pass-through would write of the job without its last byte; that byte and
// the end byte follow. Of this the copy-back passes on the finished lines.

#include "FilterFrame/Source/DecomposedStream.h"

#include <cups/cups.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <vector>

#include "FilterFrame/Source/JobState.h"
#include "FilterFrame/Source/PostScriptStream.h"
#include "FilterFrame/Source/UtilityFunctionFilter/OutputPrimitives.h"
#include "FilterFrame/Source/UtilityFunctionFilter/PPDAccess.h"
#include "engine/AttributeLine.h"
#include "engine/JobHeader.h"
#include "modules/quality/Quality.h"

char PPDPJLOutFilePath[255];

constexpr const char* CPRCommand[] = {"TCPR", "GCPR", "ICPR", nullptr};
constexpr const char* TRCSCRCommand[] = {"TTRC", "GTRC", "ITRC", "TSCR", "GSCR", "ISCR", nullptr};

namespace {

constexpr std::string_view kFeatureMarker = "%%BeginFeature:";
constexpr std::size_t kFeatureTextSize = 99;  // how much of a feature line counts
constexpr std::size_t kMostDigits = 100;      // how many digits of a settings line count
constexpr std::size_t kSpoolBufferSize = 64 * 1024;

struct CloseFile {
  void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, CloseFile>;

// What the features met so far have decided.
struct FeatureState {
  int resolution = 0;             // 600 or 1200 once the output mode says so
  bool resolutionPending = true;  // its lines are still to be written
  bool defaultsPending = true;    // the lines of features that the PPD does not offer, likewise
};

// A feature comment's keyword, with its asterisk, and value; a missing one is empty.
struct Feature {
  explicit Feature(std::string_view line) {
    line = line.substr(0, kFeatureTextSize);
    for (std::string* word : {&marker, &keyword, &value}) {
      const std::size_t space = std::min(line.find(' '), line.size());
      *word = line.substr(0, space);
      line.remove_prefix(std::min(space + 1, line.size()));
    }
  }
  std::string marker;
  std::string keyword;
  std::string value;
};

bool IsKeyword(const Feature& feature, std::string_view keyword) {
  return feature.keyword.starts_with('*') && std::string_view(feature.keyword).substr(1) == keyword;
}

std::string_view WithoutLineEnd(std::string_view line) {
  return line.substr(0, std::min(line.find_first_of("\r\n"), line.size()));
}

void Put(const char* line) {
  ZRfputs(line, stdout);
}

// Screens and tone curves of monochrome devices go by one setting.
void PutHalftone(const std::string& value) {
  std::array<int, std::size(TRCSCRCommand)> levels;
  if (value == "Fineness") {
    levels.fill(64);
  } else if (value == "Gradation") {
    levels.fill(66);
  } else {
    return;
  }
  outputXPJLCommandFromArray(TRCSCRCommand, levels.data());
}

void PutResolution(FeatureState& state) {
  if (!state.resolutionPending || state.resolution == 0) return;
  state.resolutionPending = false;
  OutputFormattedLine(stdout, "@PJL SET RESOLUTION=%d\n", state.resolution);
  Put("@PJL SET BITSPERPIXEL=1\n");
  OutputJobAttribute("DRDM", "RASTER");
}

void PutFeature(std::string_view line, FeatureState& state) {
  const Feature feature(WithoutLineEnd(line));
  if (IsKeyword(feature, KPPDOutputModeKey)) {
    if (feature.value == "600x600") state.resolution = 600;
    if (feature.value == "1200x1200") state.resolution = 1200;
  }
  if (JobPPDValueIs(kPPDDeviceColor, DeviceColorModeMono) && IsKeyword(feature, KPPDHalfToneKey)) {
    PutHalftone(feature.value);
  } else if (state.defaultsPending && JobPPDValueIs(kPPDDeviceColor, DeviceColorModeColor)) {
    state.defaultsPending = false;
    OutputPJLCommandForPPDKeyArray(PPDKeyArray, JobPPD());
  }
  PutResolution(state);
  const char* command = GetThePJLCommandfromKeywordsandMarkedValue(feature.keyword, feature.value);
  if (command != nullptr) Put(command);
}

bool ContainsAll(std::string_view line, const char* const* names) {
  for (; *names != nullptr; names++) {
    if (line.find(*names) == line.npos) return false;
  }
  return true;
}

// The next place of a name that every settings line holds: TSCR or TCPR.
std::size_t FindName(std::string_view text, std::size_t from) {
  std::size_t at = text.find('T', from);
  while (at != text.npos) {
    const std::string_view name = text.substr(at, 4);
    if (name == "TSCR" || name == "TCPR") break;
    at = text.find('T', at + 1);
  }
  return at;
}

bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}

// Writes an attribute for each number of one or two digits: its name is the four characters in
// front of the separator in front of the number.
void PutSettings(std::string_view line) {
  std::vector<std::size_t> digits;
  for (std::size_t i = 0; i < line.size() && digits.size() < kMostDigits; i++) {
    if (IsDigit(line[i])) digits.push_back(i);
  }
  for (std::size_t i = 0; i < digits.size(); i++) {
    const auto first = static_cast<long>(digits[i]);
    const bool pair = i + 1 < digits.size() && digits[i + 1] == digits[i] + 1;
    const std::string name = GetSubString(line, first - 5, first - 2);
    const std::string value = GetSubString(line, first, pair ? first + 1 : first);
    OutputFormattedLine(stdout, "@PJL SET JOBATTR=\"@%s=%s\"\n", name.c_str(), value.c_str());
    if (pair) i++;
  }
}

// Walks the ordinary lines that a job is made of for lines with screen or calibration settings.
class SettingsSearch {
 public:
  // The first whole line in `run` that holds settings, with its line end; empty when there is none.
  // `run` goes on where the one before ended.
  std::string_view next(std::string_view run) {
    for (std::size_t from = startOfWholeLines(run); from < run.size();) {
      const std::size_t hit = FindName(run, from);
      if (hit == run.npos) break;
      const std::size_t end = run.find_first_of("\r\n", hit);
      if (end == run.npos) break;
      const std::size_t before = run.find_last_of("\r\n", hit);
      const std::size_t start = before == run.npos || before < from ? from : before + 1;
      const std::string_view line = run.substr(start, end - start);
      const bool isSettings = ContainsAll(line, TRCSCRCommand) || ContainsAll(line, CPRCommand);
      if (isSettings && line.size() < kLinePieceSize) {
        return run.substr(start, end + 1 - start);
      }
      from = end + 1;
    }
    return {};
  }

  // Takes note of bytes that have been passed on.
  void passed(std::string_view bytes) {
    if (!bytes.empty()) atLineStart_ = bytes.back() == '\n' || bytes.back() == '\r';
  }

 private:
  // Behind the rest of an over-long line, which does not count.
  std::size_t startOfWholeLines(std::string_view run) const {
    if (atLineStart_) return 0;
    return std::min(run.find_first_of("\r\n"), run.size());
  }

  bool atLineStart_ = true;
};

// Spools the job up to its last byte and writes what its settings imply. False when it was
// cancelled or the spool file did not take it.
bool SpoolLines(PostScriptLines& lines, std::FILE* spool, char* argv[]) {
  StreamPosition position;
  FeatureState features;
  SettingsSearch search;
  const auto pass = [&](std::string_view bytes) {
    ZRfwrite(bytes.data(), 1, bytes.size(), spool);
    search.passed(bytes);
  };
  for (PostScriptLines::Piece piece; lines.next(piece);) {
    if (piece.token != nullptr) {
      if (!OutputTokenLine(*piece.token, piece.bytes, position, spool, argv)) return false;
      search.passed(piece.bytes);
      continue;
    }
    if (piece.hasPrefix) PutFeature(piece.bytes, features);
    std::string_view rest = piece.bytes;
    while (!piece.hasPrefix) {
      const std::string_view line = search.next(rest);
      if (line.empty()) break;
      pass({rest.data(), static_cast<std::size_t>(line.data() - rest.data())});
      PutSettings(WithoutLineEnd(line));
      pass(line);
      rest = {line.data() + line.size(),
              static_cast<std::size_t>(rest.data() + rest.size() - line.data()) - line.size()};
    }
    pass(rest);
    if (std::ferror(spool) != 0) return false;
  }
  return true;
}

void EndSpool(std::string_view lastByte, std::FILE* spool) {
  ZRfwrite(lastByte.data(), 1, lastByte.size(), spool);
  if (lastByte != std::string_view(&kEndOfTransmission, 1)) ZRfputc(kEndOfTransmission, spool);
}

void CopyBack(int fd) {
  PostScriptLines lines(fd);
  for (PostScriptLines::Piece piece; lines.next(piece);) {
    WriteUncopied(piece.bytes.data(), 1, piece.bytes.size(), stdout);
    if (piece.token == nullptr) continue;
    if (piece.token->endsPage) FlushOutput(stdout);
    if (piece.token->pollsCancel && CancelJob == 1) return;
  }
  ReportReadError(lines);
}

enum class SpoolResult { kDone, kCancelled, kFailed };

SpoolResult Spool(ByteReader reader, std::FILE* spool, char* argv[]) {
  PostScriptLines lines(std::move(reader), {.prefix = kFeatureMarker, .holdLastByte = true});
  if (SpoolLines(lines, spool, argv)) {
    ReportReadError(lines);
    EndSpool(lines.lastByte(), spool);
    std::fflush(spool);
  } else if (CancelJob == 1) {
    return SpoolResult::kCancelled;
  }
  return std::ferror(spool) == 0 ? SpoolResult::kDone : SpoolResult::kFailed;
}

// Half a job is worse than none: it is not printed, and the spool file makes room again.
void GiveUpSpool() {
  std::fprintf(stderr, "ERROR: Unable to spool print data: %s\n", std::strerror(errno));
  unlink(PPDPJLOutFilePath);
}

}  // namespace

void OutputPSStreamtoFileandInsertPJLforFeaturePDE(int argc, char* argv[],
                                                   const InputStage& stage) {
  const JobInput input(argc == 7 ? argv[6] : nullptr);
  if (input.fd() < 0) return;
  const int spoolFd = cupsTempFd(PPDPJLOutFilePath, sizeof PPDPJLOutFilePath);
  if (spoolFd < 0) return;
  static char spoolBuffer[kSpoolBufferSize];
  File spool(fdopen(spoolFd, "wb"));
  if (spool == nullptr) return;
  std::setvbuf(spool.get(), spoolBuffer, _IOFBF, sizeof spoolBuffer);

  const SpoolResult result = Spool(input.reader(stage), spool.get(), argv);
  if (result == SpoolResult::kFailed) return GiveUpSpool();
  if (result == SpoolResult::kCancelled) {
    if (CancelJobByUser == 1) unlink(PPDPJLOutFilePath);
    return;
  }
  spool.reset();

  OutputXPJLCommandFromArray(argv, prtFmtTableEnterPS, numFmtTableEnterPS);
  {
    const JobInput spooled(PPDPJLOutFilePath);
    if (spooled.fd() < 0) return;
    CopyBack(spooled.fd());
  }
  unlink(PPDPJLOutFilePath);
}

std::string GetSubString(std::string_view text, long first, long last) {
  first = std::max(first, 0L);
  last = std::min(last, static_cast<long>(text.size()) - 1);
  if (last < first) return {};
  return std::string(
      text.substr(static_cast<std::size_t>(first), static_cast<std::size_t>(last - first + 1)));
}

void outputXPJLCommandFromArray(const char* const* names, const int* values) {
  for (; *names != nullptr; names++, values++) OutputJobAttribute(*names, *values);
}
