// Look-ups in the dialect, and what is derived from the filter's own tables.

#include "tools/dialect/Dialect.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <iterator>
#include <limits>
#include <map>
#include <utility>

#include "FilterFrame/Source/UtilityFunctionFilter/JobOptions.h"
#include "engine/CommandTable.h"
#include "engine/JobHeader.h"
#include "modules/perfectbind/PerfectBind.h"
#include "tools/dialect/ByteSearch.h"

namespace {

constexpr double kNoLimit = std::numeric_limits<double>::infinity();

constexpr DialectRow Row(LineForm form, std::string_view code, Group group, std::string_view name,
                         ValueKind kind, std::string_view detail, double least = -kNoLimit,
                         double most = kNoLimit) {
  return {code, name, detail, form, group, kind, least, most};
}

constexpr DialectRow kRows[] = {
#define TEXT ValueKind::kText, ""
#define SECRET ValueKind::kSecret, ""
#define NUMBER(unit) ValueKind::kNumber, unit
#define RANGE(unit, least, most) ValueKind::kNumber, unit, least, most
#define COUNT ValueKind::kNumber, "", 1
#define TENTHS ValueKind::kTenths, ""
#define SIZE ValueKind::kTenths, "", 0
#define TIME ValueKind::kTime, ""
#define BINDER_WORD ValueKind::kBinderWord, ""
#define WORDS(words) ValueKind::kWords, words
#define ATTRIBUTE(code, group, name, ...) \
  Row(LineForm::kAttribute, code, Group::group, name, __VA_ARGS__),
#define VARIABLE(code, group, name, ...) \
  Row(LineForm::kVariable, code, Group::group, name, __VA_ARGS__),
#define SUMMARY(code, name, ...) Row(LineForm::kSummary, code, Group::kSummary, name, __VA_ARGS__),
#define COMMAND(code, name, ...) Row(LineForm::kCommand, code, Group::kFrame, name, __VA_ARGS__),
#include "tools/dialect/Dialect.def"
#undef COMMAND
#undef SUMMARY
#undef VARIABLE
#undef ATTRIBUTE
#undef WORDS
#undef BINDER_WORD
#undef TIME
#undef SIZE
#undef TENTHS
#undef COUNT
#undef RANGE
#undef NUMBER
#undef SECRET
#undef TEXT
};

std::string SampleLine(const PrtFmt& row) {
  std::string line;
  std::int32_t value = 0;
  for (const char* at = row.format; *at != '\0'; at++) {
    if (*at != '%' || at[1] == '\0' || IsCtrlSym(std::string(at, 2).c_str()) == 0) {
      line += *at;
    } else if (*++at == 'c') {
      line += *static_cast<const char*>(row.values->list[value++].value);
    } else {
      value++;
      line += '1';
    }
  }
  return line;
}

std::optional<std::string> MeaningOf(std::string_view word, std::string_view words) {
  while (!words.empty()) {
    const std::string_view entry = words.substr(0, words.find('|'));
    const std::size_t equals = entry.find('=');
    if (entry.substr(0, equals) == word) return std::string(entry.substr(equals + 1));
    words.remove_prefix(std::min(entry.size() + 1, words.size()));
  }
  return std::nullopt;
}

bool IsNumber(std::string_view value) {
  if (value.starts_with('-') || value.starts_with('+')) value.remove_prefix(1);
  const bool plain = std::all_of(value.begin(), value.end(),
                                 [](char c) { return (c >= '0' && c <= '9') || c == '.'; });
  return plain && value.find_first_of("0123456789") != value.npos &&
         std::count(value.begin(), value.end(), '.') <= 1;
}

// "2105" tenths are "210.5 mm".
std::optional<std::string> TenthsInWords(std::string_view value) {
  if (!IsNumber(value) || value.find('.') != value.npos) return std::nullopt;
  const bool negative = value.front() == '-';
  if (negative || value.front() == '+') value.remove_prefix(1);
  std::string digits(value);
  if (digits.size() < 2) digits.insert(0, 1, '0');
  const char tenth = digits.back();
  digits.pop_back();
  return (negative ? "-" : "") + digits + (tenth != '0' ? std::string(".") + tenth : "") + " mm";
}

bool IsBinderWord(std::string_view value) {
  if (value.empty() || value == "CUSTOM") return true;
  return std::any_of(std::begin(PerfectBindParam), std::end(PerfectBindParam) - 1,
                     [&](const PBindWord& row) { return value == row.deviceWord; });
}

}  // namespace

std::span<const DialectRow> DialectRows() {
  return kRows;
}

const DialectRow* FindInDialect(LineForm form, std::string_view code) {
  const auto* row = std::find_if(std::begin(kRows), std::end(kRows), [&](const DialectRow& known) {
    return known.form == form && known.code == code;
  });
  return row != std::end(kRows) ? row : nullptr;
}

std::optional<std::string> ValueInWords(const DialectRow& row, std::string_view value) {
  if (row.kind == ValueKind::kWords) return MeaningOf(value, row.detail);
  if (value.empty()) return "(empty)";
  switch (row.kind) {
    case ValueKind::kNumber:
      if (value == "OFF") return "off";
      if (!IsNumber(value)) return std::nullopt;
      return std::string(value) += row.detail;
    case ValueKind::kTenths:
      return TenthsInWords(value);
    case ValueKind::kBinderWord:
      if (!IsBinderWord(value)) return std::nullopt;
      break;
    default:
      break;
  }
  return std::string(value);
}

bool InRange(const DialectRow& row, std::string_view value) {
  if (row.kind == ValueKind::kTime) {
    const std::size_t colon = value.find(':');
    return colon == value.npos ||
           (DecimalInteger(std::string(value).c_str()) < 24 &&
            DecimalInteger(std::string(value.substr(colon + 1)).c_str()) < 60);
  }
  if (row.kind != ValueKind::kNumber && row.kind != ValueKind::kTenths) return true;
  if (!IsNumber(value)) return true;
  const double number = std::strtod(std::string(value).c_str(), nullptr);
  return number >= row.least && number <= row.most;
}

LineEnds LineEndsOf(const DialectRow& row) {
  static const auto ends = [] {
    std::map<std::pair<LineForm, std::string>, LineEnds> found;
    for (const std::string& line : SampleLinesOfRows()) {
      const bool crLf = line.ends_with("\r\n");
      const auto parts =
          TakeApart(std::string_view(line).substr(0, line.find_last_not_of("\r\n") + 1));
      LineEnds& known = found[{parts->form, std::string(parts->code)}];
      (crLf ? known.crLf : known.lf) = true;
    }
    return found;
  }();
  const auto known = ends.find({row.form, std::string(row.code)});
  return known != ends.end() ? known->second : LineEnds{.lf = true};
}

std::optional<LineParts> TakeApart(std::string_view line) {
  constexpr std::pair<std::string_view, LineForm> kForms[] = {
      {"SET JOBATTR=\"@", LineForm::kAttribute},
      {"SET ", LineForm::kVariable},
      {"COMMENT PRINTJOBINFO ", LineForm::kSummary},
      {"", LineForm::kCommand},
  };
  if (!line.starts_with(kPJL)) return std::nullopt;
  line.remove_prefix(kPJL.size());
  const auto* form = std::find_if(std::begin(kForms), std::end(kForms),
                                  [&](const auto& known) { return line.starts_with(known.first); });
  line.remove_prefix(form->first.size());
  LineParts parts = {.form = form->second, .code = line.substr(0, line.find('=')), .value = {}};
  line.remove_prefix(std::min(parts.code.size() + 1, line.size()));
  parts.quoted = parts.form == LineForm::kAttribute || line.starts_with('"');
  if (parts.quoted) {
    if (parts.form != LineForm::kAttribute) line.remove_prefix(1);
    parts.closed = line.ends_with('"');
    if (parts.closed) line.remove_suffix(1);
  }
  parts.value = line;
  return parts;
}

std::vector<std::string> SampleLinesOfRows() {
  InializeDescriptionTable();
  std::vector<std::string> lines;
  for (const RowTable* table : RowTables()) {
    for (const PrtFmt& row : table->rows) lines.push_back(SampleLine(row));
  }
  std::erase_if(lines, [](const std::string& line) { return !line.starts_with(kPJL); });
  return lines;
}
