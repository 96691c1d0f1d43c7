// For readers.

#include <algorithm>

#include "tools/dialect/Dialect.h"
#include "tools/dialect/DisplayText.h"
#include "tools/explain/ExplanationReports.h"

namespace {

void Add(std::string& text, const char* before, const std::string& words) {
  text += before + Printable(words, Charset::kUTF8) + "\n";
}

// What a line says, and the line.
std::string Beside(const std::string& words, const std::string& line) {
  std::string text = words;
  return text.append("  [").append(line).append("]");
}

void AddLines(std::string& text, const char* title, const std::vector<std::string>& lines) {
  if (!lines.empty()) text += std::string("    ") + title + "\n";
  for (const std::string& line : lines) {
    Add(text, "      ", Beside(LineInWords(line), line));
  }
}

std::string Together(const std::vector<std::string>& words) {
  std::string text;
  for (const std::string& word : words) text += (text.empty() ? "" : ", ") + word;
  return text;
}

void AddOption(std::string& text, const OptionExplanation& option) {
  Add(text, "", option.name + "=" + option.value + ": " + EffectInWords(option.effect));
  for (const std::string& why : option.why) Add(text, "    ", why);
  if (!DoneElsewhere(option).empty()) Add(text, "    ", DoneElsewhere(option));
  if (!option.choices.empty()) Add(text, "    chooses ", Together(option.choices));
  if (!option.tickets.empty()) Add(text, "    becomes ", Together(option.tickets));
  AddLines(text, "writes", option.lines);
  AddLines(text, "instead of", option.instead);
}

// The tests that fail; without any, those that the row has.
void AddRow(std::string& text, const LineExplanation::Row& row) {
  const std::string name = "  row " + row.name + " of " + row.table;
  if (!row.notUsed.empty()) {
    text += name + ": " + row.notUsed + "\n";
    return;
  }
  text += name + (row.written ? ": written\n" : ": not written\n");
  std::size_t failed = 0;
  for (std::size_t i = 0; i < row.tests.size(); i++) {
    if (row.written) {
      Add(text, "    holds: ", row.tests[i]);
    } else if (!row.holds[i]) {
      Add(text, "    ", row.failed[failed++]);
      Add(text, "      ", row.tests[i]);
    }
  }
}

}  // namespace

std::string LineInWords(const std::string& line) {
  const auto parts = TakeApart(line);
  const DialectRow* row = parts ? FindInDialect(parts->form, parts->code) : nullptr;
  if (row == nullptr) return {};
  const std::string value =
      row->kind == ValueKind::kSecret ? "(hidden)" : ValueInWords(*row, parts->value).value_or("");
  return std::string(row->name) + ": " + (value.empty() ? std::string(parts->value) : value);
}

const char* EffectInWords(Effect effect) {
  switch (effect) {
    case Effect::kLines:
      return "in the job's header";
    case Effect::kDocument:
      return "in the document's PostScript";
    case Effect::kElsewhere:
      return "for CUPS and other filters";
    case Effect::kAnyway:
      return "changes nothing";
    case Effect::kNone:
      return "no effect";
  }
  return "";
}

std::string TextExplanation(const ExplanationReport& report) {
  std::string text;
  if (!report.failure.empty()) Add(text, "Nothing is printed: ", report.failure);
  for (const OptionExplanation& option : report.options) AddOption(text, option);
  for (const std::string& remark : report.remarks) Add(text, "Note: ", remark);
  if (report.comparison) {
    const bool same = report.comparison->missing.empty() && report.comparison->besides.empty();
    text += same ? "The job is what these options give.\n" : "The job is another one:\n";
    AddLines(text, "it lacks", report.comparison->missing);
    AddLines(text, "it has besides", report.comparison->besides);
  }
  return text;
}

std::string TextExplanation(const std::string& code, const LineExplanation& line) {
  std::string text;
  if (!line.failure.empty()) Add(text, "Nothing is printed: ", line.failure);
  if (line.lines.empty()) text += code + ": not in this job\n";
  for (const std::string& there : line.lines) {
    Add(text, "", code + ": " + Beside(LineInWords(there), there));
  }
  if (!line.causes.empty()) {
    Add(text, line.lines.empty() ? "  it is there with " : "  it comes from ",
        Together(line.causes));
  }
  for (const LineExplanation::Row& row : line.rows) AddRow(text, row);
  if (line.rows.empty() && line.causes.empty()) {
    text += line.lines.empty() ? "  nothing that this printer offers writes it\n"
                               : "  every job for this printer has it\n";
  }
  return text;
}
