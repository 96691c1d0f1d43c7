// Settings and facts turned into words.

#include "tools/inspect/ReportLines.h"

#include "tools/dialect/Dialect.h"
#include "tools/inspect/InjectedPostScript.h"

namespace {

std::string SecretInWords(const Setting& setting, ReportWishes wishes) {
  if (setting.value.empty()) return "(empty)";
  if (!setting.opened || !wishes.showPasswords) return setting.sealed;
  return setting.sealed + ": \"" + Printable(setting.password, Charset::kUTF8) + "\"";
}

std::string InWords(const Setting& setting, Charset charset, ReportWishes wishes) {
  if (setting.row->kind == ValueKind::kSecret) return SecretInWords(setting, wishes);
  const auto words = ValueInWords(*setting.row, setting.value);
  return Printable(WithoutSecrets(words ? *words : setting.value + " (unknown)"), charset);
}

std::string PageList(const Injection& injection) {
  std::string list;
  for (const auto& [first, last] : injection.pages) {
    list += (list.empty() ? "" : ", ") + std::to_string(first);
    if (last != first) list += "-" + std::to_string(last);
  }
  if (list.empty()) return "once ahead of the pages";
  return (injection.pages.size() == 1 && injection.count == 1 ? "page " : "pages ") + list;
}

std::string InjectionInWords(const Injection& injection, Charset charset) {
  const std::string detail = Printable(WithoutSecrets(injection.detail), charset);
  return (detail.empty() ? "" : detail + ", ") + PageList(injection);
}

std::string PagesInWords(const PostScriptFacts& facts) {
  std::string words = std::to_string(PageCount(facts));
  if (facts.pages > 0) return words;
  if (facts.own.pageComments > 0) return words + ", by their comments";
  return words + (facts.showpages > 0 ? ", by showpage lines" : "");
}

class LineList {
 public:
  void enter(const GroupNames& group) { enter(group.title, group.key); }
  void enter(std::string_view title, std::string_view key) {
    title_ = title;
    key_ = key;
  }
  ReportLine& add(std::string name, std::string words) {
    lines_.push_back(
        {title_, key_, std::move(name), std::move(words), {}, {}, 0, nullptr, nullptr});
    return lines_.back();
  }
  std::vector<ReportLine> result() { return std::move(lines_); }

 private:
  std::string_view title_;
  std::string_view key_;
  std::vector<ReportLine> lines_;
};

void AddPostScript(const JobReport& report, LineList& list) {
  const PostScriptFacts& facts = report.postScript;
  list.enter("PostScript", "postscript");
  if (!facts.present) {
    list.add("Document", "none");
    return;
  }
  list.add("Pages", PagesInWords(facts));
  ReportLine& size = list.add("Size", std::to_string(facts.bytes) + " bytes");
  size.raw = "lines " + std::to_string(facts.firstLine) + " to " + std::to_string(facts.lastLine);
  for (const OwnSetting& own : facts.own.entries) {
    const std::string name = Printable(own.name, report.charset);
    ReportLine& line = list.add(own.kind == "comment" ? name : "Asks for: " + name,
                                Printable(WithoutSecrets(own.value), report.charset));
    line.line = own.line;
    line.raw = "line " + std::to_string(own.line);
  }
  for (const Injection& injection : facts.injections) {
    ReportLine& line = list.add(std::string("Injected: ") + InjectionName(injection.kind),
                                InjectionInWords(injection, report.charset));
    line.line = injection.line;
    line.raw =
        "line " + std::to_string(injection.line) + ", byte " + std::to_string(injection.offset);
    line.injection = &injection;
  }
}

void AddSettings(const JobReport& report, const GroupNames& group, ReportWishes wishes,
                 LineList& list) {
  list.enter(group);
  for (const Setting& setting : report.settings) {
    if (setting.row->group != group.group) continue;
    ReportLine& line =
        list.add(std::string(setting.row->name), InWords(setting, report.charset, wishes));
    line.code = setting.row->code;
    line.raw =
        Printable(wishes.showPasswords ? setting.raw : WithoutSecrets(setting.raw), report.charset);
    line.line = setting.line;
    line.setting = &setting;
  }
}

}  // namespace

std::vector<ReportLine> ReportLines(const JobReport& report, ReportWishes wishes) {
  LineList list;
  for (const GroupNames& group : kGroups) {
    const bool frame = group.group == Group::kFrame;
    if (frame) AddPostScript(report, list);
    AddSettings(report, group, wishes, list);
    if (!frame) continue;
    list.add("Exit sequence", report.exitSequence ? "at the start" : "missing");
    if (report.postScript.present) {
      list.add("End byte", report.postScript.closed ? "closes the PostScript" : "none");
    }
    list.add("Trailer", report.trailer ? "whole" : "missing");
  }
  return list.result();
}

std::string RemarkText(const Remark& remark, Charset charset) {
  std::string text = remark.line > 0 ? "line " + std::to_string(remark.line) + ": " : "";
  text += remark.text;
  if (!remark.excerpt.empty()) {
    text += ": " + Printable(WithoutSecrets(remark.excerpt), charset);
  }
  return text;
}
