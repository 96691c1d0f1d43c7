// The insertions and the geometry. Single and double precision stand where the device's other
// drivers have them, so that all of them print the same two decimals.

#include "modules/watermark/Watermark.h"

#include <cmath>
#include <iterator>
#include <limits>

#include "FilterFrame/Source/UtilityFunctionFilter/OutputPrimitives.h"
#include "engine/AttributeLine.h"

WatermarkOption psOptionWatermark;

#define TICKET(suffix, field, getter) Ticket<getter>(TICKET_KEY(suffix), psOptionWatermark.field),
constexpr TicketData WatermarkticketData[] = {
#include "modules/watermark/WatermarkTickets.def"
};

namespace {

constexpr std::int32_t kTextWatermark = 0;

constexpr double kPi = 3.1415926;
constexpr double kQuarterTurn = 1.5707963;
constexpr double kHalfTurn = 3.1415926;
constexpr double kThreeQuarterTurns = 4.7123889000000005;

constexpr int kAfterBeginProlog = 13;
constexpr int kAfterEndPageSetup = 24;

// Where the text goes by the line that ends the page: each kind saves the page's state under the
// name that its page end restores.
constexpr struct {
  int hook;
  const char* saveLine;
} kTexts[] = {
    {27, "pgsave restore /pgsave save store gsave\n"},
    {28, "pm restore /pm save store gsave\n"},
    {29, "fffpgsave restore /fffpgsave save store gsave\n"},
};

bool EveryPage() {
  return psOptionWatermark.onlyFirst == 0;
}

// A number that is none prints alike on every system, whatever its sign bit.
double Printable(float number) {
  return std::isnan(number) ? std::numeric_limits<double>::quiet_NaN() : double{number};
}

// A colour component mixed with white by the density.
float Mixed(float component) {
  const float density = static_cast<float>(psOptionWatermark.density) / 100.0F;
  return 1.0F - (1.0F - component) * density;
}

void InsertProlog(std::FILE* stream) {
  ZRfprintf(stream, "userdict/fffInfo 2 dict dup begin\n");
  ZRfprintf(stream, "/fffpgsave 0 def\n");
  ZRfprintf(stream, "/fffbp{/fffpgsave save restore} bind def\n");
}

void InsertText(const char* saveLine, std::FILE* stream) {
  const WatermarkOption& option = psOptionWatermark;
  float x = 0;
  float y = 0;
  GetWatermarkPostion(&x, &y, option.hOffset, option.vOffset);
  ZRfprintf(stream, saveLine);
  OutputFormattedLine(stream, "%.2f %.2f %.2f setrgbcolor\n", Printable(Mixed(option.red)),
                      Printable(Mixed(option.green)), Printable(Mixed(option.blue)));
  OutputFormattedLine(stream, "/%s %d selectfont\n", option.font, option.fontSize);
  OutputFormattedLine(stream, "%.2f %.2f moveto\n", Printable(x), Printable(y));
  OutputFormattedLine(stream, "%d rotate\n", option.angle);
  OutputFormattedLine(stream, "%s show\n", option.text);
  ZRfprintf(stream, "grestore\n");
}

// Writes what belongs at a boundary. With a watermark on the first page only, each kind of
// insertion happens once; its flag says whether it is still to be made.
void InjectTextWatermark(int hook, std::FILE* stream) {
  static bool bToPrintProlog = true;
  static bool bToPrintPageSetup = true;
  static bool bToPrintText[] = {true, true, true};
  static_assert(std::size(bToPrintText) == std::size(kTexts));
  if (hook == kAfterBeginProlog && bToPrintProlog) {
    InsertProlog(stream);
    bToPrintProlog = EveryPage();
  }
  if (hook == kAfterEndPageSetup && bToPrintPageSetup) {
    ZRfprintf(stream, "fffbp\n");
    bToPrintPageSetup = EveryPage();
  }
  for (std::size_t kind = 0; kind < std::size(kTexts); kind++) {
    if (hook != kTexts[kind].hook || !bToPrintText[kind]) continue;
    InsertText(kTexts[kind].saveLine, stream);
    bToPrintText[kind] = EveryPage();
  }
}

}  // namespace

void WatermarkGetTicketFromPDE(char* args[]) {
  GetTicketFromArray(args, WatermarkticketData, WatermarkTicketDataNum);
}

void WatermarkOutputPSCommandFromFilter(int hook, int /*page*/, std::FILE* stream) {
  if (*psOptionWatermark.name == '\0' || psOptionWatermark.type != kTextWatermark) return;
  psOptionWatermark.options = 1;
  InjectTextWatermark(hook, stream);
}

void GetWatermarkPostion(float* x, float* y, float hOffset, float vOffset) {
  const WatermarkOption& option = psOptionWatermark;
  const float paperWidth = static_cast<float>(option.paperWidth);
  const float paperHeight = static_cast<float>(option.paperHeight);
  float centreX = 0;
  float centreY = 0;
  if (option.orientation == 1 || option.orientation == 3) {
    centreX = paperWidth * 0.5F;
    centreY = paperHeight * 0.5F;
  } else if (option.orientation == 2 || option.orientation == 4) {
    centreX = paperHeight * 0.5F;
    centreY = paperWidth * 0.5F;
  }

  const double w = double{option.width * 0.5F};
  const double h = double{option.height * 0.5F};
  const auto angle = static_cast<std::uint32_t>(option.angle);  // negative ones are beyond 360
  const double theta = option.angle * kPi / 180.0;
  const double quadrantStart = angle <= 90    ? 0.0
                               : angle <= 180 ? kQuarterTurn
                               : angle <= 270 ? kHalfTurn
                                              : kThreeQuarterTurns;
  const double c = std::cos(theta - quadrantStart);
  const double s = std::sin(theta - quadrantStart);
  const auto along = static_cast<float>(c * w - s * h);
  const auto across = static_cast<float>(c * h + s * w);
  if (angle <= 90) {
    *x = centreX - along;
    *y = centreY - across;
  } else if (angle <= 180) {
    *x = centreX + across;
    *y = centreY - along;
  } else if (angle <= 270) {
    *x = centreX + along;
    *y = centreY + across;
  } else if (angle <= 360) {
    *x = centreX - across;
    *y = centreY + along;
  } else {
    *x = 0;
    *y = 0;
  }
  *x += hOffset;
  *y += vOffset;
}
