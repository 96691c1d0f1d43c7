// Rules over the settings, each by itself, in pairs, and beside the document.

#include "tools/inspect/Plausibility.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <optional>
#include <utility>

#include "modules/quality/Quality.h"
#include "tools/dialect/ByteSearch.h"
#include "tools/dialect/DisplayText.h"

namespace {

// A setting that does nothing without another one.
constexpr struct {
  std::string_view code, value;      // when this stands in the job
  std::string_view also, alsoValue;  // together with this, if any is named,
  std::string_view needs;            // this must have a value
  const char* missing;
} kNeeds[] = {
    {"HOLD", "STORE", "HOLDTYPE", "PRIVATE", "HOLDENCRYPTKEY",
     "the job is held for a password, but there is none: nobody can release it"},
    {"HOLD", "BOXSTORE", "", "", "BOXNUMBER", "the job goes into a mailbox, but none is named"},
    {"STAPLE", "ON", "", "", "STAPLEEX", "staples are asked for without a position"},
    {"PUNCH", "ON", "", "", "PUNCHEX", "punching is asked for without holes"},
};

bool IsControl(char c) {
  return (c >= 0 && c < ' ') || c == 0x7F;
}

class Judge {
 public:
  explicit Judge(JobReport& report) : report_(report) {
    for (const Setting& setting : report.settings) last_[setting.row->code] = &setting;
  }

  void judge() {
    for (const Setting& setting : report_.settings) {
      text(setting);
      if (!InRange(*setting.row, setting.value)) {
        report_.problem(setting.line, "a value that no device can obey", setting.raw);
      }
    }
    duplicates();
    needs();
    document();
  }

 private:
  void text(const Setting& setting) {
    const bool exit = setting.raw.find(kExitSequence) != std::string::npos;
    if (exit) {
      report_.problem(setting.line,
                      "an exit sequence inside a header line: the printer ends the job here",
                      setting.raw);
    } else if (std::any_of(setting.raw.begin(), setting.raw.end(), IsControl)) {
      report_.problem(setting.line, "a control byte inside a header line", setting.raw);
    }
    if (setting.value.find('"') != std::string::npos) {
      report_.problem(setting.line, "a quote inside the value: the printer ends the value there",
                      setting.raw);
    }
  }

  // Special pages have their lines once for each, and a spooled document brings lines of its own.
  void duplicates() {
    std::map<std::pair<LineForm, std::string_view>, const Setting*> seen;
    for (const Setting& setting : report_.settings) {
      if (setting.row->group == Group::kSpecialPages) continue;
      if (report_.spooledCopy && setting.line > report_.postScript.firstLine) break;
      const Setting*& before = seen[{setting.row->form, setting.row->code}];
      if (before != nullptr && setting.row->form == LineForm::kCommand) {
        report_.problem(
            setting.line,
            "a second line of this name; the first stands on line " + std::to_string(before->line),
            setting.raw);
      } else if (before != nullptr && before->value != setting.value) {
        report_.problem(setting.line,
                        "this line replaces line " + std::to_string(before->line) +
                            ", which has another value: the device takes the last one",
                        setting.raw);
      }
      before = &setting;
    }
  }

  const Setting* find(std::string_view code) const {
    const auto at = last_.find(code);
    return at != last_.end() ? at->second : nullptr;
  }
  bool has(std::string_view code, std::string_view value) const {
    const Setting* setting = find(code);
    return setting != nullptr && setting->value == value;
  }

  void needs() {
    for (const auto& rule : kNeeds) {
      if (!has(rule.code, rule.value)) continue;
      if (!rule.also.empty() && !has(rule.also, rule.alsoValue)) continue;
      const Setting* needed = find(rule.needs);
      if (needed != nullptr && !needed->value.empty()) continue;
      report_.problem(find(rule.code)->line, rule.missing, find(rule.code)->raw);
    }
  }

  void contradict(const OwnSetting& own, const Setting& setting) {
    report_.problem(setting.line,
                    "contradiction: the document asks for " + shown(own.name) + " " +
                        shown(own.value) + " on line " + std::to_string(own.line),
                    setting.raw);
  }
  // Nothing that a terminal would obey.
  std::string shown(const std::string& text) const { return Printable(text, report_.charset); }

  void document() {
    const PostScriptFacts& facts = report_.postScript;
    // What is asked for last counts.
    std::map<std::string_view, const OwnSetting*> features, device;
    for (const OwnSetting& own : facts.own.entries) {
      if (own.kind == "feature") features[own.name] = &own;
      if (own.kind == "page-device") device[own.name] = &own;
      if (own.kind == "comment" && own.name == "Pages announced") announced(own);
    }
    for (const auto& [name, own] : features) feature(*own);
    sides(device["Duplex"], device["Tumble"]);
    if (device["NumCopies"] != nullptr) copies(*device["NumCopies"]);
  }

  // The document's pages as their comments have them: the filter also counts several on one sheet.
  std::uint64_t sheetPages() const {
    const PostScriptFacts& facts = report_.postScript;
    return facts.own.pageComments > 0 ? facts.own.pageComments : PageCount(facts);
  }

  // A booklet's sheets have two sides whatever the document asks for, and CUPS switches them off
  // for a single page.
  void sides(const OwnSetting* duplex, const OwnSetting* tumble) {
    const Setting* header = find("DUPLEXTYPE");
    if (header == nullptr || duplex == nullptr) return;
    if (find("BOOKLETTYPE") != nullptr && !has("BOOKLETTYPE", "TYPE[NOBOOKLET]")) return;
    const bool both = header->value != "SIMPLEX";
    const bool ownBoth = duplex->value == "true";
    if (both && !ownBoth && sheetPages() == 1) return;
    if (both != ownBoth) {
      contradict(*duplex, *header);
    } else if (both && tumble != nullptr &&
               (header->value == "TUMBLE") != (tumble->value == "true")) {
      contradict(*tumble, *header);
    }
  }

  // The header has the number in one of two lines, for sets or for pages, and 1 in the other; -1
  // where the job does not say it.
  void copies(const OwnSetting& own) {
    const Setting* sets = find("JOBCOPIES");
    const Setting* pages = find("PAGECOPIES");
    const bool ofPages = sets == nullptr || (sets->value == "1" && pages != nullptr);
    const Setting* number = ofPages ? pages : sets;
    if (number == nullptr || has("JOBCOPIES", "-1") || has("PAGECOPIES", "-1")) return;
    if (own.value != number->value) contradict(own, *number);
  }

  // A choice whose line the filter knows, beside the line that the header has.
  void feature(const OwnSetting& own) {
    for (const FeatureLine& known : FeaturePPDKeyNameandMarkedValuetoPJLCommand) {
      if (own.name != known.keyword || own.value != known.choice) continue;
      std::string_view line = known.line;
      const auto parts = TakeApart(line.substr(0, line.find_last_not_of("\r\n") + 1));
      const Setting* setting = parts ? find(parts->code) : nullptr;
      if (setting != nullptr && setting->value != parts->value) contradict(own, *setting);
      return;
    }
  }

  void announced(const OwnSetting& own) {
    const std::uint64_t pages = sheetPages();
    if (pages == 0 || !report_.trailer || own.value == std::to_string(pages)) return;
    report_.problem(own.line, "contradiction: the document announces " + shown(own.value) +
                                  " pages, but has " + std::to_string(pages));
  }

  JobReport& report_;
  std::map<std::string_view, const Setting*> last_;
};

}  // namespace

void JudgeSettings(JobReport& report) {
  Judge(report).judge();
}
