// The device dialect as the inspector knows it: names, meanings and line ends of PJL lines.

#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

// The groups a report lists settings under, in its order.
enum class Group {
  kIdentity,
  kHold,
  kColour,
  kFinishing,
  kLayout,
  kProduction,
  kSpecialPages,
  kSummary,
  kFrame,
};
struct GroupNames {
  Group group;
  std::string_view title;  // for readers
  std::string_view key;    // for programs
};
inline constexpr GroupNames kGroups[] = {
    {Group::kIdentity, "Identity", "identity"},
    {Group::kHold, "Holding and storing", "hold"},
    {Group::kColour, "Colour and quality", "colour"},
    {Group::kFinishing, "Finishing", "finishing"},
    {Group::kLayout, "Layout and booklet", "layout"},
    {Group::kProduction, "Perfect binding", "production"},
    {Group::kSpecialPages, "Special pages", "special-pages"},
    {Group::kSummary, "Job summary", "summary"},
    {Group::kFrame, "Frame", "frame"},
};

enum class LineForm { kAttribute, kVariable, kSummary, kCommand };
enum class ValueKind { kText, kTime, kSecret, kNumber, kTenths, kBinderWord, kWords };

struct DialectRow {
  std::string_view code;
  std::string_view name;
  std::string_view detail;  // kNumber: the unit; kWords: "word=meaning|word=meaning"
  LineForm form;
  Group group;
  ValueKind kind;
  double least;  // what a number may be
  double most;
};

// Every row of Dialect.def.
std::span<const DialectRow> DialectRows();

// The row of a name; null when the dialect does not know it.
const DialectRow* FindInDialect(LineForm form, std::string_view code);

// What a value says, in words; nothing when it is none that the row knows. Texts come back as they
// are; so does a secret, which is for the caller to hide.
std::optional<std::string> ValueInWords(const DialectRow& row, std::string_view value);

// Whether a number, or a time of day with a colon, is one that a device can obey. Other values are
// not judged.
bool InRange(const DialectRow& row, std::string_view value);

// The line ends that the filter gives to lines of this name.
struct LineEnds {
  bool lf = false;
  bool crLf = false;
};
LineEnds LineEndsOf(const DialectRow& row);

// A PJL line taken apart; the views lie in the line.
struct LineParts {
  LineForm form;
  std::string_view code;
  std::string_view value;
  bool quoted = false;  // the value stood in quotes
  bool closed = true;   // and the closing one is there
};

// Takes apart a line without its line end; nothing when it does not begin "@PJL ".
std::optional<LineParts> TakeApart(std::string_view line);

// Each row of the filter's tables as a line with its line end, a "1" for each number or text.
std::vector<std::string> SampleLinesOfRows();
