// The feature table, the PPD queries and the header writers.

#include "modules/quality/Quality.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <string>
#include <string_view>

#include "FilterFrame/Source/UtilityFunctionFilter/JobOptions.h"
#include "FilterFrame/Source/UtilityFunctionFilter/OutputPrimitives.h"
#include "FilterFrame/Source/UtilityFunctionFilter/PPDAccess.h"
#include "engine/AttributeLine.h"
#include "modules/comment/Comment.h"

namespace {

// Appends `text` to a zero-filled fixed text; too long a text does not compile.
template <std::size_t Size>
constexpr void Append(char (&field)[Size], std::string_view text) {
  const std::size_t length = std::string_view(field).size();
  if (length + text.size() >= Size) throw "the field is too small";
  std::copy(text.begin(), text.end(), field + length);
}

constexpr FeatureLine Line(std::string_view keyword, std::string_view choice,
                           std::string_view line) {
  FeatureLine row = {};
  Append(row.keyword, keyword);
  Append(row.choice, choice);
  Append(row.line, line);
  return row;
}

constexpr FeatureLine kWrittenFeatureLines[] = {
#define LINE(keyword, choice, line) Line(keyword, choice, line),
#define ATTRIBUTE(keyword, choice, assignment) \
  Line(keyword, choice, "@PJL SET JOBATTR=\"@" assignment "\"\n"),
#include "modules/quality/FeatureLines.def"
#undef ATTRIBUTE
#undef LINE
};

// The densities of each colour's dark, middle and light tones: seven choices for seven levels.
constexpr std::string_view kDensityColors[] = {"Cyan", "Magenta", "Yellow", "Black"};
constexpr char kDensityColorCodes[] = "CMYK";
constexpr std::string_view kDensityBands[] = {"Low", "Mid", "High"};
constexpr std::string_view kDensityChoices[] = {"-3", "-2", "-1", "0", "+1", "+2", "+3"};

constexpr FeatureLine DensityLine(std::size_t color, std::size_t band, std::size_t level) {
  FeatureLine row = Line("ZLVColorDensity", kDensityChoices[level], "@PJL SET JOBATTR=\"@AJ");
  Append(row.keyword, kDensityColors[color]);
  Append(row.keyword, kDensityBands[band]);
  const char assignment[] = {kDensityColorCodes[color], kDensityBands[band][0], '=',
                             static_cast<char>('0' + level)};
  Append(row.line, std::string_view(assignment, sizeof assignment));
  Append(row.line, "\"\n");
  return row;
}

constexpr auto MakeFeatureTable() {
  std::array<FeatureLine, kFeatureLineCount> table = {};
  auto next =
      std::copy(std::begin(kWrittenFeatureLines), std::end(kWrittenFeatureLines), table.begin());
  for (std::size_t color = 0; color < std::size(kDensityColors); color++) {
    for (std::size_t band = 0; band < std::size(kDensityBands); band++) {
      for (std::size_t level = 0; level < std::size(kDensityChoices); level++) {
        *next++ = DensityLine(color, band, level);
      }
    }
  }
  if (next != table.end()) throw "rows are missing";
  return table;
}

void Put(const char* line) {
  ZRfputs(line, stdout);
}

void PutFeature(const char* keyword, const char* choice) {
  const std::string feature = std::string("*") + keyword;
  const char* line = GetThePJLCommandfromKeywordsandMarkedValue(feature.c_str(), choice);
  if (line != nullptr) Put(line);
}

bool PPDOffersColorMode() {
  return JobPPD() != nullptr && ppdFindOption(JobPPD(), kPPDDefaultZRColorMode) != nullptr;
}

// The toner-saver option's values as the print dialog writes them, with the PPD's choices.
constexpr struct {
  std::string_view option;
  const char* choice;
} kTonerSavers[] = {{"false", "False"},
                    {"true", "True"},
                    {"Mode1", "Mode1"},
                    {"Mode2", "Mode2"},
                    {"Mode3", "Mode3"}};

// A rate of the user's own stands behind a prefix of seven characters; seven of its own are read.
void PutUserReductionRate() {
  constexpr std::size_t kPrefix = 7;
  constexpr std::size_t kDigits = 7;
  constexpr int kHighestRate = 99;
  const std::string_view value = psoptioncomment.tonerReductionRate;
  if (value.size() <= kPrefix) return;
  const std::string digits(value.substr(kPrefix, kDigits));
  const int rate = std::min(DecimalInteger(digits.c_str()), kHighestRate);
  Put(rate > 0 ? "@PJL SET ECONOMODE=ON\n" : "@PJL SET ECONOMODE=OFF\n");
  OutputFormattedLine(stdout, "@PJL SET REDUCTIONRATE=%d\n", std::max(rate, 0));
}

void PutLineWeight() {
  const std::string_view weight = psoptioncomment.lineWeight;
  if (weight.empty()) return;
  if (weight == "Normal") return OutputJobAttribute("LWAD", "0");
  const std::size_t digit = weight.find_first_of("0123456789");
  if (digit == weight.npos) return;
  const int level = weight[digit] - '0';
  // The stronger weight is the negative direction, also for level 0.
  if (weight.find("Strongly") != weight.npos) {
    OutputFormattedLine(stdout, "@PJL SET JOBATTR=\"@LWAD=-%d\"\n", level);
  } else if (weight.find("Weakly") != weight.npos) {
    OutputJobAttribute("LWAD", level);
  }
}

void PutRenderMode() {
  switch (JobColorMode()) {
    case ColorMode::kColor:
      return Put("@PJL SET RENDERMODE=COLOR\n");
    case ColorMode::kGrayscale:
      return Put("@PJL SET RENDERMODE=GRAYSCALE\n");
    case ColorMode::kUnknown:
      return;
  }
}

}  // namespace

constexpr std::array<FeatureLine, kFeatureLineCount> FeaturePPDKeyNameandMarkedValuetoPJLCommand =
    MakeFeatureTable();

constexpr PPDKeyDefault PPDKeyArray[] = {
    {"ZLVSetTrapMode", "False"},   {"ZLVGrayBalance", "False"},
    {"ZLVBrightnes", "Normal"},    {"ZLVRGBInputProfile", "SRGB"},
    {"ZLVRGBBCorrection", "Dark"},  // deliberately not "Standard"
    {"ZLVTonerSaver", "False"},    {nullptr, nullptr},
};

int IsColorDeivce() {
  return JobPPDValueIs(kPPDDeviceColor, "True") ? 1 : 0;
}

int getDefaultColorMode() {
  if (!PPDOffersColorMode()) return 0;
  const ppd_option_t* option = ppdFindOption(JobPPD(), kPPDDefaultZRColorMode);
  return std::strcmp(option->defchoice, "Color") == 0 ? 1 : 0;
}

ColorMode JobColorMode() {
  const std::string_view mode = psoptioncomment.colorMode;
  if (mode == "Color") return ColorMode::kColor;
  if (mode == "Black") return ColorMode::kGrayscale;
  if (!mode.empty()) return PPDOffersColorMode() ? ColorMode::kUnknown : ColorMode::kGrayscale;
  return IsColorDeivce() == 1 && getDefaultColorMode() == 1 ? ColorMode::kColor
                                                            : ColorMode::kGrayscale;
}

void OutputXPJLCommandForTonerSaver() {
  const std::string_view saver = psoptioncomment.tonerSaver;
  if (saver.empty()) return;
  if (saver == "UserInput") return PutUserReductionRate();
  for (const auto& row : kTonerSavers) {
    if (saver == row.option) PutFeature("ZLVTonerSaver", row.choice);
  }
  Put("@PJL SET REDUCTIONRATE=0\n");
}

void OutputXPJLCommandOthers() {
  PutLineWeight();
  PutRenderMode();
}

const char* GetThePJLCommandfromKeywordsandMarkedValue(const char* keyword, const char* choice) {
  if (*keyword != '*') return nullptr;
  const auto& table = FeaturePPDKeyNameandMarkedValuetoPJLCommand;
  for (auto row = table.begin(); row != table.end() - 1; row++) {
    if (std::strcmp(row->keyword, keyword + 1) == 0 && std::strcmp(row->choice, choice) == 0) {
      return row->line;
    }
  }
  return nullptr;
}

void OutputPJLCommandForPPDKeyArray(const PPDKeyDefault* list, ppd_file_t* ppd) {
  for (; list->keyword != nullptr; list++) {
    if (ppd != nullptr && ppdFindOption(ppd, list->keyword) != nullptr) continue;
    PutFeature(list->keyword, list->choice);
  }
}
