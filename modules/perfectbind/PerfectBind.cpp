// Normalising, page arithmetic and the order of the attributes.

#include "modules/perfectbind/PerfectBind.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <string>
#include <string_view>

#include "FilterFrame/Source/UtilityFunctionFilter/JobOptions.h"
#include "FilterFrame/Source/UtilityFunctionFilter/PPDAccess.h"
#include "engine/AttributeLine.h"
#include "text/BoundedText.h"

PBindOption psoptionpbind;

#define TICKET(key, field, getter) Ticket<getter>(key, psoptionpbind.field),
constexpr TicketData PBindticketData[] = {
#include "modules/perfectbind/PBindTickets.def"
};

#define WORD(ppdValue, deviceWord) {ppdValue, deviceWord},
constexpr PBindWord PerfectBindParam[] = {
#include "modules/perfectbind/PBindWords.def"
    {nullptr, nullptr},
};

namespace {

using TenthsOfMm = long long;

struct Size {
  TenthsOfMm width = 0;
  TenthsOfMm height = 0;
};

constexpr struct {
  std::string_view option;
  const char* position;
  const char* rotation;
} kPositions[] = {
    {"None", "OFF", ""},
    {"BindLeft", "LEFT", "ROTSEFLAND"},
    {"BindRight", "RIGHT", "ROTLEFPORT"},
    {"BindTop", "TOP", "ROTSEFLAND"},
};

// What each trimming mode leaves of the cut options. The first row that fits counts; the last one
// stands for every other text.
constexpr struct {
  std::string_view option;
  bool keepsPageSize;
  bool keepsTop;
  bool keepsFore;
  const char* cut;  // the cut of the modes that choose it themselves
} kTrimmings[] = {
    {"None", false, false, false, nullptr},
    {"3EdgeSpecifySize", true, false, false, nullptr},
    {"1EdgeSpecifySize", true, false, false, nullptr},
    {"1EdgeCut", false, false, true, nullptr},
    {"3EdgeCutMinimum", false, true, true, "7mm"},
    {"1EdgeCutMinimum", false, false, true, "7mm"},
    {"", false, true, true, nullptr},
};

bool Is(const char* field, std::string_view value) {
  return field == value;
}
bool IsSet(const char* field) {
  return *field != '\0';
}

void NormalisePosition() {
  PBindOption& option = psoptionpbind;
  for (const auto& row : kPositions) {
    if (!Is(option.position, row.option)) continue;
    CopyBounded(option.position, row.position);
    CopyBounded(option.rotation, row.rotation);
    return;
  }
}

void NormaliseCuts() {
  PBindOption& option = psoptionpbind;
  const auto row = std::find_if(std::begin(kTrimmings), std::end(kTrimmings) - 1,
                                [&](const auto& mode) { return Is(option.trimming, mode.option); });
  if (row->cut != nullptr) {
    CopyBounded(option.cutPositionTop, row->cut);
    CopyBounded(option.cutPositionFore, row->cut);
    option.minimumCut = 1;
  }
  if (!row->keepsPageSize) CopyBounded(option.cutPageSize, "");
  if (!row->keepsTop) CopyBounded(option.cutPositionTop, "");
  if (!row->keepsFore) CopyBounded(option.cutPositionFore, "");
}

void NormaliseTrimming() {
  char(&trimming)[256] = psoptionpbind.trimming;
  const std::string_view text = trimming;
  if (text == "None") {
    CopyBounded(trimming, "OFF");
  } else if (text.starts_with("1Edge")) {
    CopyBounded(trimming, "FACE");
  } else if (text.starts_with("3Edge")) {
    CopyBounded(trimming, "FULLBLEED");
  }
}

// The device counts a point as 60/170 of a millimetre and takes whole millimetres.
TenthsOfMm FromPoints(float points) {
  constexpr float kMostPoints = 1e9F;
  if (std::isnan(points)) return 0;
  const auto whole = static_cast<TenthsOfMm>(std::clamp(points, -kMostPoints, kMostPoints));
  return whole * 60 / 170 * 10;
}

Size PageSizeInPPD(const char* name) {
  const ppd_size_t* size = ppdPageSize(JobPPD(), name);
  if (size == nullptr) return {};
  return {FromPoints(size->width), FromPoints(size->length)};
}

// The millimetres in a text such as "7mm".
TenthsOfMm Millimetres(const char* text) {
  const std::string_view whole = text;
  if (whole.size() < 3) return 0;
  return DecimalInteger(std::string(whole.substr(0, whole.size() - 2)).c_str());
}

void PutNumber(const char* attribute, TenthsOfMm number) {
  OutputFormattedLine(stdout, "@PJL SET JOBATTR=\"@%s=%lld\"\n", attribute, number);
}

// Replaces a PPD value by the device's word and writes it.
template <std::size_t Length>
void PutWord(const char* attribute, char (&field)[Length]) {
  convertPBindPPDValue(field, field, Length);
  OutputXPJLCommandforPBindNormal(field, attribute);
}

// What remains after trimming: the body itself, a page size, or a custom size.
Size TakeCutSize(const Size& body, TenthsOfMm& shift) {
  PBindOption& option = psoptionpbind;
  if (IsSet(option.cutPageSize)) {
    const Size cut = PageSizeInPPD(option.cutPageSize);
    shift = (body.width - cut.width) / 2;  // whole millimetres: never half a tenth
    convertPBindPPDValue(option.cutPageSize, option.cutPageSize, sizeof option.cutPageSize);
    return cut;
  }
  if (!Is(option.trimming, "OFF")) {
    CopyBounded(option.cutPageSize, "CUSTOM");
    return {};
  }
  CopyBounded(option.cutPageSize, option.pageSize);
  return body;
}

void PutTrimmedSize(const Size& body, const Size& cut, TenthsOfMm shift) {
  const PBindOption& option = psoptionpbind;
  const bool foreSet = IsSet(option.cutPositionFore);
  if (foreSet) {
    const TenthsOfMm fore = Millimetres(option.cutPositionFore);
    shift = 5 * fore;
    PutNumber("PBTW", body.width - 10 * fore);
  }
  if (IsSet(option.cutPositionTop)) {
    PutNumber("PBTH", body.height - 20 * Millimetres(option.cutPositionTop));
  } else if (foreSet) {
    PutNumber("PBTH", body.height);
  } else {
    PutNumber("PBTW", cut.width);
    PutNumber("PBTH", cut.height);
  }
  if (option.minimumCut == 1) return;
  const TenthsOfMm outwards = Is(option.position, "RIGHT") ? shift : -shift;
  PutNumber("ISXO", outwards);
  PutNumber("ISXT", -outwards);
}

void PutAdjustments() {
  const PBindOption& option = psoptionpbind;
  const bool right = Is(option.position, "RIGHT");
  const struct {
    const char* value;
    const char* attribute;
    int signMode;
  } adjustments[] = {
      {option.cutPageAdjustFore, "PBAW", 0},
      {option.cutPageAdjustTB, "PBAH", 0},
      {option.rotationAdjustTop, right ? "PBAB" : "PBAT", 0},
      {option.rotationAdjustBottom, right ? "PBAT" : "PBAB", 0},
      {option.rotationAdjustFore, "PBAF", 1},
      {option.coverAdjustX, "PBAX", 1},
      {option.coverAdjustY, "PBAY", 2},
      {option.cutPositionAdjustTB, "PBAV", 1},
  };
  for (const auto& row : adjustments) {
    OutputXPJLCommandforPBindDigital(row.value, 1, row.attribute, option.position, row.signMode);
  }
}

void PutCover() {
  PBindOption& option = psoptionpbind;
  if (IsSet(option.coverPageSize)) {
    if (Is(option.coverPageSize, "DL")) CopyBounded(option.coverPageSize, "Tabloid");
    PutWord("PBCP", option.coverPageSize);
  }
  if (IsSet(option.coverMediaType)) PutWord("PBCQ", option.coverMediaType);
  if (IsSet(option.coverMediaColor)) {
    PutWord("PBCC", option.coverMediaColor);
    PutWord("PBCT", option.coverPaperTray);  // the colour decides, not the tray
  }
}

}  // namespace

void PBindGetTicketFromPDE(char* args[]) {
  psoptionpbind = {};
  GetTicketFromArray(args, PBindticketData, PBindTicketDataNum);
  NormalisePosition();
  NormaliseCuts();
  NormaliseTrimming();
}

void OutputXPJLCommandforPerfectBind() {
  PBindOption& option = psoptionpbind;
  if (JobPPD() == nullptr || !IsSet(option.position) || Is(option.position, "OFF")) return;

  OutputXPJLCommandforPBindNormal(option.position, "PBRE");
  OutputXPJLCommandforPBindNormal(option.rotation, "MSDA");
  OutputXPJLCommandforPBindNormal(option.trimming, "PBTC");
  Size body;
  if (IsSet(option.pageSize)) {
    body = PageSizeInPPD(option.pageSize);
    PutWord("PBBP", option.pageSize);
  }
  TenthsOfMm shift = 0;
  const Size cut = TakeCutSize(body, shift);
  OutputXPJLCommandforPBindNormal(option.cutPageSize, "PBTP");
  if (!Is(option.trimming, "OFF")) PutTrimmedSize(body, cut, shift);
  PutAdjustments();
  PutCover();
  OutputXPJLCommandforPBindNormal("OFF", "PBCI");
}

void OutputXPJLCommandforPBindNormal(const char* value, const char* attribute) {
  OutputJobAttribute(attribute, value);
}

void OutputXPJLCommandforPBindDigital(const char* value, int multiplier, const char* attribute,
                                      const char* position, int signMode) {
  if (!IsSet(value)) return;
  const bool negated = (signMode == 1 && Is(position, "RIGHT")) ||
                       (signMode == 2 && (Is(position, "TOP") || Is(position, "LEFT")));
  const long long number = static_cast<long long>(DecimalInteger(value)) * multiplier;
  PutNumber(attribute, negated ? -number : number);
}

void convertPBindPPDValue(const char* value, char* out, std::size_t size) {
  for (const PBindWord* row = PerfectBindParam; row->ppdValue != nullptr; row++) {
    if (std::strcmp(row->ppdValue, value) == 0)
      return void(CopyBounded(out, size, row->deviceWord));
  }
}
