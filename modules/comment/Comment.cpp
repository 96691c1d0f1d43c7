// Capture of the options, and the block's lines in the device's order.

#include "modules/comment/Comment.h"

#include <algorithm>
#include <cstdio>
#include <iterator>
#include <span>
#include <string_view>

#include "FilterFrame/Source/UtilityFunctionFilter/JobOptions.h"
#include "FilterFrame/Source/UtilityFunctionFilter/OutputPrimitives.h"
#include "engine/AttributeLine.h"
#include "modules/quality/Quality.h"
#include "text/BoundedText.h"

CommentOption psoptioncomment;

#define TICKET(key, field, getter) Ticket<getter>(key, psoptioncomment.field),
constexpr TicketData CommentticketData[] = {
#include "modules/comment/CommentTickets.def"
};

namespace {

#define INFO "@PJL COMMENT PRINTJOBINFO "

// A value of an option, or a part of one, and the word the device has for it.
struct Word {
  std::string_view option;
  const char* device;
};

constexpr Word kStaplePositions[] = {
    {"LeftDouble", "LEFTDUAL"},     {"UpperLeftSingle", "TOPLEFT"},
    {"TopDouble", "TOPDUAL"},       {"UpperRightSingle", "TOPRIGHT"},
    {"RightDouble", "RIGHTDUAL"},   {"LowerRightSingle", "BOTTOMRIGHT"},
    {"BottomDouble", "BOTTOMDUAL"}, {"LowerLeftSingle", "BOTTOMLEFT"},
};
constexpr Word kPunchLocations[] = {
    {"Left", "LEFT"}, {"Top", "TOP"}, {"Right", "RIGHT"}, {"Bottom", "BOTTOM"}};
constexpr Word kPunchHoles[] = {
    {"2Holes", "TWO"}, {"3Holes", "THREE"}, {"4Holes", "FOUR"}, {"CoilPunch", "COIL"}};

// Which way a booklet is bound.
enum class Binding { kNone, kLeft, kRight, kOther };
constexpr struct {
  std::string_view signature;
  Binding binding;
} kBindings[] = {
    {"", Binding::kNone},
    {"None", Binding::kNone},
    {"LeftSig", Binding::kLeft},
    {"LeftSigCenterStaple", Binding::kLeft},
    {"LeftSigFold", Binding::kLeft},
    {"RightSig", Binding::kRight},
    {"RightSigCenterStaple", Binding::kRight},
    {"RightSigFold", Binding::kRight},
};

// The orientation word by binding and pages per sheet, for the requested orientations 1, 4, 5, 6
// (portrait, landscape, reverse landscape, reverse portrait).
struct OrientationRow {
  Binding binding;
  int numbersUp[4];  // 0: unused
  const char* words[4];
};
constexpr OrientationRow kOrientations[] = {
    {Binding::kLeft,
     {1, 4, 9, 16},
     {"LANDSCAPE", "ROTATEDPORTRAIT", "ROTATEDPORTRAIT", "LANDSCAPE"}},
    {Binding::kLeft, {2, 6}, {"ROTATEDPORTRAIT", "LANDSCAPE", "LANDSCAPE", "ROTATEDPORTRAIT"}},
    {Binding::kRight,
     {1, 4, 9, 16},
     {"ROTATEDLANDSCAPE", "PORTRAIT", "PORTRAIT", "ROTATEDLANDSCAPE"}},
    {Binding::kRight, {2, 6}, {"PORTRAIT", "ROTATEDLANDSCAPE", "ROTATEDLANDSCAPE", "PORTRAIT"}},
    {Binding::kNone, {1}, {"PORTRAIT", "LANDSCAPE", "ROTATEDLANDSCAPE", "ROTATEDPORTRAIT"}},
    {Binding::kNone, {2, 6}, {"LANDSCAPE", "PORTRAIT", "PORTRAIT", "LANDSCAPE"}},
    {Binding::kNone, {4, 9, 16}, {"PORTRAIT", "LANDSCAPE", "LANDSCAPE", "PORTRAIT"}},
};
constexpr int kRequestedOrientations[] = {1, 4, 5, 6};

// The order of the pages on a sheet by layout direction, for two pages and for more.
constexpr struct {
  int layoutDirection;
  const char* two;
  const char* more;
} kLayoutOrders[] = {
    {1, "RIGHTTODOWN", "RIGHTTHENDOWN"},
    {3, "LEFTTOUP", "LEFTTHENDOWN"},
    {5, "RIGHTTODOWN", "DOWNTHENRIGHT"},
    {6, "LEFTTOUP", "DOWNTHENLEFT"},
};

bool Is(const char* field, std::string_view value) {
  return field == value;
}
bool IsEmpty(const char* field) {
  return *field == '\0';
}
bool IsSet(const char* field) {
  return !IsEmpty(field) && !Is(field, "None");
}

void Put(const char* line) {
  ZRfputs(line, stdout);
}
void PutInfo(const char* item, const char* value) {
  OutputFormattedLine(stdout, INFO "%s=%s\n", item, value);
}
void PutInfo(const char* item, int value) {
  OutputFormattedLine(stdout, INFO "%s=%d\n", item, value);
}

const char* FindContained(std::span<const Word> words, std::string_view field) {
  for (const Word& word : words) {
    if (field.find(word.option) != field.npos) return word.device;
  }
  return nullptr;
}

const char* FindExact(std::span<const Word> words, std::string_view field) {
  for (const Word& word : words) {
    if (field == word.option) return word.device;
  }
  return nullptr;
}

Binding BookletBinding() {
  for (const auto& row : kBindings) {
    if (Is(psoptioncomment.signature, row.signature)) return row.binding;
  }
  return Binding::kOther;
}

void PutCopies() {
  if (IsEmpty(psoptioncomment.collate)) return;
  const bool collated = Is(psoptioncomment.collate, "collate");
  PutInfo(collated ? "JOBCOPIES" : "PAGECOPIES", psoptioncomment.copies);
  PutInfo(collated ? "PAGECOPIES" : "JOBCOPIES", 1);
}

void PutDuplex() {
  const char* sides = psoptioncomment.sides;
  const int edge = psoptioncomment.duplexBindingEdge;
  if (IsEmpty(sides)) return;
  if (Is(sides, "two-sided-long-edge") || edge == 2) {
    PutInfo("DUPLEXTYPE", "DUPLEX");
  } else if (Is(sides, "two-sided-short-edge") || edge == 3) {
    PutInfo("DUPLEXTYPE", "TUMBLE");
  } else if (Is(sides, "one-sided") || edge == 1) {
    PutInfo("DUPLEXTYPE", "SIMPLEX");
  }
}

void PutColor() {
  switch (JobColorMode()) {
    case ColorMode::kColor:
      return PutInfo("COLORMODE", "COLOR");
    case ColorMode::kGrayscale:
      return PutInfo("COLORMODE", "GRAYSCALE");
    case ColorMode::kUnknown:
      return;
  }
}

void PutBooklet() {
  char* volume = psoptioncomment.signatureVolume;
  if (IsEmpty(psoptioncomment.signature)) return;
  if (!IsSet(psoptioncomment.signature) || IsEmpty(volume)) {
    PutInfo("BOOKLETTYPE", "TYPE[NOBOOKLET]");
  } else if (Is(volume, "None")) {
    PutInfo("BOOKLETTYPE", "TYPE[NONEDIVIDE]");
  } else {
    const std::string_view whole = volume;
    CopyBounded(psoptioncomment.signatureVolume, whole.substr(0, whole.find("Sheet")));
    OutputFormattedLine(stdout, INFO "BOOKLETTYPE=TYPE[MANUALDIVIDE]:THRESHOLD[%s]\n", volume);
  }
}

// Pages per sheet; none given counts as one.
int NumberUp() {
  return IsEmpty(psoptioncomment.numberUp) ? 1 : DecimalInteger(psoptioncomment.numberUp);
}

bool AppliesTo(const OrientationRow& row, Binding binding, int numberUp) {
  return row.binding == binding && numberUp != 0 &&
         std::find(std::begin(row.numbersUp), std::end(row.numbersUp), numberUp) !=
             std::end(row.numbersUp);
}

void PutOrientation() {
  const auto requested = std::find(std::begin(kRequestedOrientations),
                                   std::end(kRequestedOrientations), psoptioncomment.orientation);
  if (requested == std::end(kRequestedOrientations)) return;
  for (const OrientationRow& row : kOrientations) {
    if (!AppliesTo(row, BookletBinding(), NumberUp())) continue;
    PutInfo("ORIENTATION", row.words[requested - std::begin(kRequestedOrientations)]);
  }
}

void PutLayoutOrder() {
  if (IsEmpty(psoptioncomment.numberUp) || NumberUp() < 2) return;
  for (const auto& row : kLayoutOrders) {
    if (psoptioncomment.layoutDirection != row.layoutDirection) continue;
    PutInfo("NUPEX", NumberUp() == 2 ? row.two : row.more);
  }
}

void PutSaddleStaple() {
  if (IsEmpty(psoptioncomment.signature)) return;
  const bool stapled = Is(psoptioncomment.signature, "LeftSigCenterStaple") ||
                       Is(psoptioncomment.signature, "RightSigCenterStaple");
  PutInfo("SADDLESTAPLE", stapled ? "ON" : "OFF");
}

void PutStaplePosition() {
  const char* position = FindContained(kStaplePositions, psoptioncomment.staple);
  if (position != nullptr) PutInfo("STAPLEEX", position);
}

void PutPunchDetail() {
  const char* location = FindContained(kPunchLocations, psoptioncomment.punch);
  const char* holes = FindExact(kPunchHoles, psoptioncomment.punchHoles);
  if (location == nullptr || holes == nullptr) return;
  OutputFormattedLine(stdout, INFO "PUNCHEX=HOLES[%s]:LOCATION[%s]\n", holes, location);
}

}  // namespace

void CommentGetTicketFromPDE(char* args[]) {
  CommentOption cleared = {};
  CopyBounded(cleared.collate, psoptioncomment.collate);
  psoptioncomment = cleared;
  GetTicketFromArray(args, CommentticketData, CommentTicketDataNum);

  const std::string_view options = args[5];
  if (options.find("nocollate") != options.npos) {
    CopyBounded(psoptioncomment.collate, "nocollate");
  } else if (options.find("collate") != options.npos) {
    CopyBounded(psoptioncomment.collate, "collate");
  }
  // Duplex without a binding edge is summarised as one-sided; a booklet turns on its short edge.
  if (IsEmpty(psoptioncomment.sides) || psoptioncomment.duplexBindingEdge == 0) {
    CopyBounded(psoptioncomment.sides, "one-sided");
  }
  if (IsSet(psoptioncomment.signature)) CopyBounded(psoptioncomment.sides, "two-sided-short-edge");
  if (psoptioncomment.orientation == -1) psoptioncomment.orientation = 1;
  if (psoptioncomment.layoutDirection == -1) psoptioncomment.layoutDirection = 1;
}

void OutputXPJLCommandforCommentBegin() {
  Put(INFO "BEGIN\n");
  Put(INFO "PDLTYPE=PDL[POSTSCRIPT]:VERSION[3]\n");
  Put(INFO "JOBTYPE=PRINT\n");
}

void OutputXPJLCommandforCommentBasic() {
  const CommentOption& option = psoptioncomment;
  PutCopies();
  PutDuplex();
  PutColor();
  if (!IsEmpty(option.numberUp)) PutInfo("NUP", option.numberUp);
  if (!IsEmpty(option.staple)) {
    PutInfo("STAPLE", IsSet(option.staple) && !Is(option.staple, "SaddleStaple") ? "ON" : "OFF");
  }
  if (!IsEmpty(option.punch)) PutInfo("PUNCH", IsSet(option.punch) ? "ON" : "OFF");
  PutBooklet();
}

void OutputXPJLCommandforCommentAdvanced() {
  PutOrientation();
  PutLayoutOrder();
  PutSaddleStaple();
  PutStaplePosition();
  PutPunchDetail();
  PutInfo("MIXEDSIZETYPE", "NONE");
  PutInfo("CUD", "OFF");
}

void OutputXPJLCommandforCommentVersionLow() {
  Put(INFO "VERSION=1.3.0\n");
}

void OutputXPJLCommandforCommentVersionHigh() {
  Put(INFO "VERSION=1.5.0\n");
}

void OutputXPJLCommandforCommentEnd() {
  Put(INFO "END\n");
}
