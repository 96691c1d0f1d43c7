// The same for programs.

#include <nlohmann/json.hpp>

#include "tools/dialect/DisplayText.h"
#include "tools/explain/ExplanationReports.h"

namespace {

using Json = nlohmann::ordered_json;

std::string Text(const std::string& text) {
  return Decoded(text, Charset::kUTF8);
}

Json Texts(const std::vector<std::string>& texts) {
  Json list = Json::array();
  for (const std::string& text : texts) list.push_back(Text(text));
  return list;
}

Json Lines(const std::vector<std::string>& lines) {
  Json list = Json::array();
  for (const std::string& line : lines) {
    list.push_back({{"line", Text(line)}, {"words", Text(LineInWords(line))}});
  }
  return list;
}

Json OptionEntry(const OptionExplanation& option) {
  Json entry = {{"name", Text(option.name)},          {"value", Text(option.value)},
                {"effect", EffectKey(option.effect)}, {"why", Texts(option.why)},
                {"choices", Texts(option.choices)},   {"tickets", Texts(option.tickets)},
                {"lines", Lines(option.lines)},       {"instead", Lines(option.instead)}};
  if (!DoneElsewhere(option).empty()) entry["elsewhere"] = DoneElsewhere(option);
  return entry;
}

Json RowEntry(const LineExplanation::Row& row) {
  Json tests = Json::array();
  std::size_t failed = 0;
  for (std::size_t i = 0; i < row.tests.size(); i++) {
    Json test = {{"test", row.tests[i]}, {"holds", static_cast<bool>(row.holds[i])}};
    if (!row.holds[i]) test["words"] = Text(row.failed[failed++]);
    tests.push_back(test);
  }
  return {{"table", row.table},
          {"row", row.name},
          {"written", row.written},
          {"used", row.notUsed.empty()},
          {"tests", tests}};
}

}  // namespace

const char* EffectKey(Effect effect) {
  switch (effect) {
    case Effect::kLines:
      return "header";
    case Effect::kDocument:
      return "document";
    case Effect::kElsewhere:
      return "elsewhere";
    case Effect::kAnyway:
      return "default";
    case Effect::kNone:
      return "none";
  }
  return "";
}

std::string JsonExplanation(const ExplanationReport& report) {
  Json options = Json::array();
  for (const OptionExplanation& option : report.options) options.push_back(OptionEntry(option));
  Json whole = {{"version", kExplanationVersion},   {"fine", report.fine()},
                {"failure", Text(report.failure)},  {"options", options},
                {"remarks", Texts(report.remarks)}, {"header", Lines(report.header)}};
  if (report.comparison) {
    whole["job"] = {{"missing", Lines(report.comparison->missing)},
                    {"besides", Lines(report.comparison->besides)}};
  }
  return whole.dump(2, ' ', true) + "\n";
}

std::string JsonExplanation(const std::string& code, const LineExplanation& line) {
  Json rows = Json::array();
  for (const LineExplanation::Row& row : line.rows) rows.push_back(RowEntry(row));
  const Json whole = {
      {"version", kExplanationVersion}, {"failure", Text(line.failure)}, {"name", code},
      {"lines", Lines(line.lines)},     {"causes", Texts(line.causes)},  {"rows", rows}};
  return whole.dump(2, ' ', true) + "\n";
}

bool ExplanationReport::fine() const {
  if (!failure.empty() || !remarks.empty()) return false;
  if (comparison && !(comparison->missing.empty() && comparison->besides.empty())) return false;
  for (const OptionExplanation& option : options) {
    if (option.effect == Effect::kNone || (option.effect != Effect::kAnyway && !option.why.empty()))
      return false;
  }
  return true;
}

ExplanationReport ReportOn(const Explainer& explainer) {
  ExplanationReport report;
  std::vector<std::string> said;
  for (std::size_t i = 0; i < explainer.given().size(); i++) {
    report.options.push_back(explainer.explain(i));
  }
  report.failure = explainer.job().failure;
  report.header = explainer.job().lines;
  // What no option is to blame for alone.
  for (const std::string& complaint : explainer.job().complaints) {
    bool blamed = false;
    for (const OptionExplanation& option : report.options) {
      for (const std::string& why : option.why) blamed |= why.starts_with(complaint);
    }
    if (!blamed) report.remarks.push_back(complaint);
  }
  return report;
}
