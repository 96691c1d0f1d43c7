// The registered modules against their folders: what somebody forgets to register is named here.

#include <gtest/gtest.h>

#include <algorithm>

#include "engine/JobHeader.h"
#include "engine/ModuleDispatch.h"
#include "tests/support/Patterns.h"

namespace {

namespace fs = std::filesystem;
using Names = std::set<std::string>;

// Of each row the name and the tests.
std::vector<std::pair<std::string, std::string>> Texts(const RowTable& table) {
  std::vector<std::pair<std::string, std::string>> texts;
  const char* at = table.texts;
  for (std::size_t i = 0; i < table.rows.size(); i++) {
    const std::string name = at;
    at += name.size() + 1;
    texts.emplace_back(name, at);
    at += texts.back().second.size() + 1;
  }
  return texts;
}

// What is registered of the module: names of rows, and keys as a .def file writes them.
Names Registered(const Module& module) {
  Names names;
  for (const RowTable* table : module.rows) {
    for (const auto& [name, tests] : Texts(*table)) names.insert(name);
  }
  for (const TicketTable& table : module.tickets) {
    for (const TicketData& row : table.utf8) {
      const std::string key = row.key;
      names.insert(key.substr(key.starts_with(TICKET_KEY("")) ? sizeof TICKET_KEY("") - 1 : 0));
    }
  }
  return names;
}

// What the folder's files of rows and tickets define.
Names Defined(const fs::path& folder) {
  Names names;
  for (const auto& file : fs::directory_iterator(folder)) {
    const std::string text = "\n" + FileContent(file.path());
    if (file.path().extension() != ".def") continue;
    for (const auto& name : Captures("\nROW\\(([A-Za-z0-9]+)", text)) names.insert(name);
    for (const auto& name : Captures("\n(TICKET|OPTION)\\(\"([^\"\\\\]+)\",", text))
      names.insert(name);
  }
  return names;
}

}  // namespace

TEST(Modules, AreAllRegisteredWithTheirRowsAndTickets) {
  std::size_t defined = 0;
  for (const auto& folder : fs::directory_iterator(SOURCE_DIR "/modules")) {
    const std::string name = folder.path().filename();
    const auto module = std::ranges::find(Modules(), name, &Module::name);
    if (module == Modules().end()) {
      ADD_FAILURE() << "engine/ModuleDispatch.cpp does not register modules/" << name;
      continue;
    }
    const Names registered = Registered(*module);
    for (const std::string& row : Defined(folder)) {
      defined++;
      EXPECT_TRUE(registered.contains(row))
          << "engine/ModuleDispatch.cpp does not list the table of " << name << "'s " << row;
    }
  }
  EXPECT_GT(defined, 150u);
}

// Each row has its own text: as many tests as the row is really written under.
TEST(Modules, RowsAreListedWithTheirTests) {
  InializeDescriptionTable();
  for (const RowTable* table : RowTables()) {
    const auto texts = Texts(*table);
    for (std::size_t i = 0; i < texts.size(); i++) {
      const auto& [name, tests] = texts[i];
      EXPECT_TRUE(Matches("^[A-Z][A-Za-z0-9]+$", name)) << table->name << ": " << name;
      if (std::string_view(table->name) == "PrintTypeFmtPartTable") continue;  // texts of the whole
      const Comparation* condition = table->rows[i].condition;
      const auto written =
          Captures("(Equal|Differs|Contains|Lacks|Filled|Empty|ShorterThan)\\(", tests);
      EXPECT_EQ(written.size(), condition == nullptr ? 0 : condition->count) << name;
    }
  }
}

// Each line that a row writes is in the list of whole headers, so that somebody has seen it.
TEST(Modules, LinesOfRowsAreTested) {
  std::size_t lines = 0;
  const std::string tests = FileContent(TEST_DATA_DIR "/jobs.txt");
  for (const Module& module : Modules()) {
    for (const RowTable* table : module.rows) {
      for (const PrtFmt& row : table->rows) {
        const auto code = Captures("@PJL SET (JOBATTR=%c@)?([A-Z]+)=", row.format);
        ASSERT_EQ(code.size(), 1u) << row.format;
        lines++;
        EXPECT_NE(tests.find(code[0] + "="), tests.npos)
            << "no job of tests/data/jobs.txt has the line " << code[0];
      }
    }
  }
  EXPECT_GT(lines, 100u);
}
