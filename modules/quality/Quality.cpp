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

constexpr struct {
  std::string_view keyword;
  std::string_view attribute;
} kDensities[] = {
#define DENSITY(color, band, code) {KPPDColorDensity##color##band, code},
#include "modules/quality/ColorDensities.def"
#undef DENSITY
};
// Seven choices for seven levels.
constexpr std::string_view kDensityChoices[] = {"-3", "-2", "-1", "0", "+1", "+2", "+3"};

constexpr FeatureLine DensityLine(std::string_view keyword, std::string_view attribute,
                                  std::size_t level) {
  FeatureLine row = Line(keyword, kDensityChoices[level], "@PJL SET JOBATTR=\"@");
  const char value[] = {'=', static_cast<char>('0' + level), '"', '\n'};
  Append(row.line, attribute);
  Append(row.line, std::string_view(value, sizeof value));
  return row;
}

constexpr auto MakeFeatureTable() {
  std::array<FeatureLine, kFeatureLineCount> table = {};
  auto next =
      std::copy(std::begin(kWrittenFeatureLines), std::end(kWrittenFeatureLines), table.begin());
  for (const auto& density : kDensities) {
    for (std::size_t level = 0; level < std::size(kDensityChoices); level++) {
      *next++ = DensityLine(density.keyword, density.attribute, level);
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
  const char* line = GetThePJLCommandfromKeywordsandMarkedValue(feature, choice);
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
    {KPPDTrapModeKey, "False"},      {KPPDGrayBalanceKey, "False"},
    {KPPDBrightnessKey, "Normal"},   {KPPDRGBInputProfileKey, "SRGB"},
    {KPPDRGBBCorrectionKey, "Dark"},  // deliberately not "Standard"
    {KPPDTonerSaverKey, "False"},    {nullptr, nullptr},
};

int IsColorDeivce() {
  return JobPPDValueIs(kPPDDeviceColor, DeviceColorModeColor) ? 1 : 0;
}

int getDefaultColorMode() {
  if (!PPDOffersColorMode()) return 0;
  const ppd_option_t* option = ppdFindOption(JobPPD(), kPPDDefaultZRColorMode);
  return std::strcmp(option->defchoice, DefaultZRColorModeColor) == 0 ? 1 : 0;
}

ColorMode JobColorMode() {
  const std::string_view mode = psoptioncomment.colorMode;
  if (mode == DefaultZRColorModeColor) return ColorMode::kColor;
  if (mode == DefaultZRColorModeBlack) return ColorMode::kGrayscale;
  if (!mode.empty()) return PPDOffersColorMode() ? ColorMode::kUnknown : ColorMode::kGrayscale;
  return IsColorDeivce() == 1 && getDefaultColorMode() == 1 ? ColorMode::kColor
                                                            : ColorMode::kGrayscale;
}

void OutputXPJLCommandForTonerSaver() {
  const std::string_view saver = psoptioncomment.tonerSaver;
  if (saver.empty()) return;
  if (saver == "UserInput") return PutUserReductionRate();
  for (const auto& row : kTonerSavers) {
    if (saver == row.option) PutFeature(KPPDTonerSaverKey, row.choice);
  }
  Put("@PJL SET REDUCTIONRATE=0\n");
}

void OutputXPJLCommandOthers() {
  PutLineWeight();
  PutRenderMode();
}

const char* GetThePJLCommandfromKeywordsandMarkedValue(std::string_view keyword,
                                                       std::string_view choice) {
  if (!keyword.starts_with('*')) return nullptr;
  keyword.remove_prefix(1);
  const auto& table = FeaturePPDKeyNameandMarkedValuetoPJLCommand;
  for (auto row = table.begin(); row != table.end() - 1; row++) {
    if (row->keyword == keyword && row->choice == choice) return row->line;
  }
  return nullptr;
}

void OutputPJLCommandForPPDKeyArray(const PPDKeyDefault* list, ppd_file_t* ppd) {
  for (; list->keyword != nullptr; list++) {
    if (ppd != nullptr && ppdFindOption(ppd, list->keyword) != nullptr) continue;
    PutFeature(list->keyword, list->choice);
  }
}
