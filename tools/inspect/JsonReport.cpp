// The same entries for programs. All characters beyond ASCII are escaped.

#include <nlohmann/json.hpp>

#include "tools/inspect/InjectedPostScript.h"
#include "tools/inspect/ReportLines.h"

namespace {

using Json = nlohmann::ordered_json;

Json Remarks(const std::vector<Remark>& remarks, Charset charset) {
  Json list = Json::array();
  for (const Remark& remark : remarks) {
    Json entry = {{"text", remark.text}};
    if (remark.line > 0) entry["line"] = remark.line;
    if (!remark.excerpt.empty())
      entry["excerpt"] = Decoded(WithoutSecrets(remark.excerpt), charset);
    list.push_back(entry);
  }
  return list;
}

Json SettingEntry(const ReportLine& line, Charset charset, ReportWishes wishes) {
  const Setting& setting = *line.setting;
  Json entry = {{"group", line.key},
                {"code", line.code},
                {"name", line.name},
                {"words", line.words},
                {"line", line.line}};
  if (setting.row->kind != ValueKind::kSecret) {
    entry["value"] = Decoded(WithoutSecrets(setting.value), charset);
  } else if (!setting.value.empty()) {
    entry["opened"] = setting.opened;
    if (!setting.sealedFor.empty()) entry["sealedFor"] = setting.sealedFor;
    if (setting.opened && wishes.showPasswords) {
      entry["password"] = Decoded(setting.password, Charset::kUTF8);
    }
  }
  entry["raw"] = Decoded(wishes.showPasswords ? setting.raw : WithoutSecrets(setting.raw), charset);
  return entry;
}

Json InjectionEntry(const Injection& injection, Charset charset) {
  Json pages = Json::array();
  for (const auto& [first, last] : injection.pages) pages.push_back({first, last});
  return {{"kind", InjectionKey(injection.kind)},
          {"count", injection.count},
          {"pages", pages},
          {"line", injection.line},
          {"offset", injection.offset},
          {"detail", Decoded(WithoutSecrets(injection.detail), charset)}};
}

Json PostScriptEntry(const JobReport& report) {
  const PostScriptFacts& facts = report.postScript;
  if (!facts.present) return nullptr;
  Json injections = Json::array();
  for (const Injection& injection : facts.injections) {
    injections.push_back(InjectionEntry(injection, report.charset));
  }
  Json own = Json::array();
  for (const OwnSetting& setting : facts.own.entries) {
    own.push_back({{"kind", setting.kind},
                   {"name", Decoded(setting.name, report.charset)},
                   {"value", Decoded(WithoutSecrets(setting.value), report.charset)},
                   {"line", setting.line}});
  }
  return {{"pages", PageCount(facts)},
          {"markedPages", facts.pages},
          {"pageComments", facts.own.pageComments},
          {"showpages", facts.showpages},
          {"bytes", facts.bytes},
          {"firstLine", facts.firstLine},
          {"lastLine", facts.lastLine},
          {"closed", facts.closed},
          {"own", own},
          {"injections", injections}};
}

std::string JsonText(const Json& json) {
  return json.dump(2, ' ', true, Json::error_handler_t::replace) + "\n";
}

}  // namespace

std::string JsonReport(const std::string& name, const JobReport& report, ReportWishes wishes) {
  Json settings = Json::array();
  for (const ReportLine& line : ReportLines(report, wishes)) {
    if (line.setting != nullptr) settings.push_back(SettingEntry(line, report.charset, wishes));
  }
  const Json json = {{"version", kJsonVersion},
                     {"job", Decoded(name, Charset::kUTF8)},
                     {"ok", report.problems.empty()},
                     {"bytes", report.bytes},
                     {"encoding", report.charset == Charset::kUTF8 ? "UTF-8" : "ISO-8859-1"},
                     {"settings", settings},
                     {"postscript", PostScriptEntry(report)},
                     {"frame",
                      {{"exitSequence", report.exitSequence},
                       {"trailer", report.trailer},
                       {"spooledCopy", report.spooledCopy}}},
                     {"notes", Remarks(report.notes, report.charset)},
                     {"problemCount", report.problemCount()},
                     {"problems", Remarks(report.problems, report.charset)}};
  return JsonText(json);
}
