// docs/job-options.md against the compiled tables and the PPDs, in both directions.

#include <cups/ppd.h>
#include <gtest/gtest.h>

#include <map>
#include <memory>

#include "engine/ModuleDispatch.h"
#include "modules/perfectbind/PerfectBind.h"
#include "modules/quality/Quality.h"
#include "queue/TicketList.h"
#include "queue/TicketRows.h"
#include "tests/support/Patterns.h"
#include "tools/dialect/Dialect.h"
#include "tools/explain/RowTests.h"

namespace {

using Names = std::set<std::string>;

// A table row: the words in code type of each cell.
using Row = std::vector<std::vector<std::string>>;

// The rows of the tables with these heads, under all headings.
std::vector<Row> RowsUnder(const std::string& head) {
  std::vector<Row> rows;
  std::istringstream lines(FileContent(SOURCE_DIR "/docs/job-options.md"));
  bool inTable = false;
  for (std::string line; std::getline(lines, line);) {
    if (!line.starts_with("| `")) {
      if (!line.starts_with("| ---")) inTable = line == head;
      continue;
    }
    if (!inTable) continue;
    Row row;
    for (const std::string& cell : Captures("\\| ([^|]*)", line)) {
      row.push_back(Captures("`([^`]*)`", cell));
    }
    rows.push_back(row);
  }
  return rows;
}

bool HoldsQuotes(const std::string& key) {
  return key.find('"') != key.npos;  // no job can name it
}

// The keys that a module reads.
Names KeysOf(const Module& module) {
  Names keys;
  for (const TicketTable& table : module.tickets) {
    for (const TicketData& row : table.latin1) keys.insert(ShortKey(row.key));
  }
  for (const char* prefix : module.numberedTickets) keys.insert(ShortKey(prefix));
  std::erase_if(keys, HoldsQuotes);
  return keys;
}

// The lines of the rows whose values or conditions look at what the ticket fills.
Names LinesMadeOf(const std::string& key) {
  Names codes;
  for (const RowState& state : RowsUsing(key)) {
    codes.insert(Captures("@PJL SET (JOBATTR=%c@)?([A-Z]+)=", state.row->format).front());
  }
  return codes;
}

// Each name that only one of the two has, by itself: a list of all would be cut.
void ExpectSame(const Names& documented, const Names& compiled, const std::string& what) {
  for (const std::string& name : documented) {
    if (!compiled.contains(name))
      ADD_FAILURE() << what << name << ": docs/job-options.md has it, and it is not there";
  }
  for (const std::string& name : compiled) {
    if (!documented.contains(name))
      ADD_FAILURE() << what << name << ": docs/job-options.md lacks it";
  }
}

using PPD = std::unique_ptr<ppd_file_t, decltype(&ppdClose)>;

PPD OpenPPD(const std::string& model) {
  return {ppdOpenFile((PPD_DIR "/zelva-" + model + ".ppd").c_str()), &ppdClose};
}

// What may be entered for an option: "number, 1 to 30"; empty when nothing may.
std::string EnteredValue(ppd_file_t* ppd, const char* option) {
  ppd_coption_t* custom = ppdFindCustomOption(ppd, option);
  if (custom == nullptr) return "";
  const ppd_cparam_t* value = ppdFirstCustomParam(custom);
  const bool isNumber = value->type == PPD_CUSTOM_INT;
  const bool isText = value->type == PPD_CUSTOM_STRING;
  const std::string least = std::to_string(value->minimum.custom_int);
  const std::string most = std::to_string(value->maximum.custom_int);
  return std::string(isNumber ? "number, "
                     : isText ? "text, "
                              : "digits, ") +
         least + (least != most ? " to " + most : "");
}

// An option's choices as the document lists them; those of an option before are named by it.
std::string ListedChoices(const ppd_option_t& option, std::map<std::string, std::string>& before) {
  constexpr int kFew = 5;
  std::string choices;
  for (int i = 0; i < option.num_choices; i++) {
    const std::string choice = option.choices[i].choice;
    if (choice != "Custom") choices += (i > 0 ? " `" : "`") + choice + "`";
  }
  const std::string first = before.emplace(choices, option.keyword).first->second;
  return option.num_choices > kFew && first != option.keyword ? "as `" + first + "`" : choices;
}

}  // namespace

// Those that only the header carries, each with all that the PPDs say of it.
TEST(JobOptionsDocument, ListsTheOptionsOfThePPDs) {
  const std::string text = FileContent(SOURCE_DIR "/docs/job-options.md");
  const PPD c90 = OpenPPD("atelier-c90"), c60 = OpenPPD("atelier-c60"), m20 = OpenPPD("kontor-m20");
  ASSERT_TRUE(c90 && c60 && m20);
  std::map<std::string, std::string> choices;
  std::size_t count = 0;
  for (auto* option = ppdFirstOption(c90.get()); option; option = ppdNextOption(c90.get())) {
    if (option->section != PPD_ORDER_JCL) continue;
    count++;
    std::string row = "| `" + std::string(option->keyword) + "` | " +
                      ListedChoices(*option, choices) + " | `" + option->defchoice + "` | " +
                      EnteredValue(c90.get(), option->keyword) + " | `C90`";
    if (ppdFindOption(c60.get(), option->keyword)) row += " `C60`";
    if (ppdFindOption(m20.get(), option->keyword)) row += " `M20`";
    EXPECT_NE(text.find(row + " | "), text.npos) << row;
  }
  EXPECT_EQ(
      RowsUnder("| Option | Choices | Default | Entered value | Models | What it is for |").size(),
      count);
}

TEST(JobOptionsDocument, ListsTheAttributesThatStandForOptions) {
  std::vector<Row> compiled;
  for (const AttributeRow& row : AttributeRows())
    compiled.push_back({{row.attribute}, {row.option}});
  EXPECT_EQ(RowsUnder("| Attribute | Option |"), compiled);
  const std::string text = FileContent(SOURCE_DIR "/docs/job-options.md");
  for (const UnaskedRow& row : UnaskedRows()) {
    EXPECT_NE(text.find(std::string("`") + row.attribute + "=" + row.value + "`"), text.npos)
        << row.attribute;
  }
}

TEST(JobOptionsDocument, ListsTheTicketsThatAreReadAndNoOthers) {
  Names documented;
  for (const Row& row : RowsUnder("| Key | Value | Lines |")) {
    EXPECT_EQ(row[0].size(), 1u);
    EXPECT_TRUE(documented.insert(row[0][0]).second) << row[0][0] << " is listed twice";
  }
  Names read;
  for (const Module& module : Modules()) read.merge(KeysOf(module));
  ExpectSame(documented, read, "ticket ");
}

// Where lines come from rows the document names exactly those that a ticket is part of; elsewhere
// it names lines that there are.
TEST(JobOptionsDocument, NamesTheLinesOfEachTicket) {
  SampleLinesOfRows();  // binds the rows to their values
  std::map<std::string, Names> fromRows;
  Names byHand;
  for (const Module& module : Modules()) {
    if (module.rows.empty()) byHand.merge(KeysOf(module));
    for (const TicketTable& table : module.tickets) {
      for (const TicketData& row : table.latin1) {
        fromRows[ShortKey(row.key)] = LinesMadeOf(row.key);
      }
    }
  }
  Names known;
  for (const DialectRow& row : DialectRows()) known.insert(std::string(row.code));
  for (const Row& row : RowsUnder("| Key | Value | Lines |")) {
    const std::string& key = row[0][0];
    const Names codes(row[2].begin(), row[2].end());
    for (const std::string& code : codes) EXPECT_TRUE(known.contains(code)) << key << ": " << code;
    for (const std::string& code : fromRows[key]) {
      EXPECT_TRUE(codes.contains(code)) << key << ": " << code << " is not listed";
    }
    const bool layout = key.find("PMLayout") != key.npos;  // read by getters and modules besides
    if (byHand.contains(key) || layout || fromRows[key].empty()) continue;
    ExpectSame(codes, fromRows[key], key + ": ");
  }
  // Whatever can be written is mentioned somewhere.
  const std::string text = FileContent(SOURCE_DIR "/docs/job-options.md");
  for (const DialectRow& row : DialectRows()) {
    if (row.form == LineForm::kCommand) continue;
    EXPECT_NE(text.find(row.code), text.npos) << row.code;
  }
}

TEST(JobOptionsDocument, ListsTheFeaturesWithTheirLines) {
  std::vector<std::vector<std::string>> documented;
  for (const Row& row : RowsUnder("| Feature | Choices | Lines |")) {
    ASSERT_EQ(row[1].size(), row[2].size()) << row[0][0];
    for (std::size_t i = 0; i < row[1].size(); i++) {
      const std::string& line = row[2][i];
      documented.push_back(
          {row[0][0], row[1][i],
           line.starts_with('@') ? "@PJL SET JOBATTR=\"" + line + "\"\n" : "@PJL " + line + "\n"});
    }
  }
  std::vector<std::vector<std::string>> compiled;
  for (const FeatureLine& row : FeaturePPDKeyNameandMarkedValuetoPJLCommand) {
    compiled.push_back({row.keyword, row.choice, row.line});
  }
  EXPECT_EQ(documented, compiled);
}

TEST(JobOptionsDocument, ListsTheWordsOfThePerfectBinder) {
  std::vector<std::string> documented, compiled;
  for (const Row& row : RowsUnder("| Value | Word | Value | Word | Value | Word |")) {
    for (const auto& words : row) documented.insert(documented.end(), words.begin(), words.end());
  }
  for (std::size_t i = 0; i < kPBindWordCount; i++) {
    compiled.insert(compiled.end(), {PerfectBindParam[i].ppdValue, PerfectBindParam[i].deviceWord});
  }
  EXPECT_EQ(documented, compiled);
}

TEST(JobOptionsDocument, ListsThePPDAttributesThatAreRead) {
  Names documented;
  for (const Row& row : RowsUnder("| Attribute | Meaning |")) documented.insert(row[0].at(0));
  Names read = NamesInSources("(JobPPDValue|JobPPDValueIs)\\(\"([^\"]+)\"");
  read.merge(
      NamesInSources("(CheckIfPPDKeywordSupported|ppdFindAttr_ALT)\\([^\"),]*,? ?[^\"),]*"
                     "\\(?\\)?, \"([^\"]+)\""));
  for (const std::string& constant : NamesInSources(
           "(JobPPDValue|JobPPDValueIs|ppdFindOption)\\((JobPPD\\(\\), )?([kK]PPD[A-Za-z]+)")) {
    const Names values = NamesInSources(constant + "\\[\\] = \"([^\"]+)\"");
    read.insert(values.begin(), values.end());
  }
  ExpectSame(documented, read, "attribute ");
}

// Every option of the PPDs whose choice is in the PostScript, and so the filter's business, is in
// the document.
TEST(JobOptionsDocument, MentionsTheOptionsOfThePPDs) {
  const std::string text = FileContent(SOURCE_DIR "/docs/job-options.md");
  const auto options =
      Captures("AnySetup \\*(ZLV[A-Za-z]+)", FileContent(PPD_DIR "/zelva-atelier-c90.ppd"));
  EXPECT_GT(options.size(), 40u);
  for (const std::string& option : options) {
    EXPECT_NE(text.find("`" + option + "`"), text.npos) << option;
  }
}
