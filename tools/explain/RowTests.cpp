// Walking the registered tables and their texts.

#include "tools/explain/RowTests.h"

#include <algorithm>
#include <map>
#include <optional>

#include "engine/JobHeader.h"
#include "engine/ModuleDispatch.h"
#include "tools/dialect/Dialect.h"
#include "tools/explain/TestWords.h"

namespace {

struct ListedRow {
  RowName name;
  const PrtFmt* row;
  std::string tests;
};

// The name of the row's line: what stands behind its first words.
std::string CodeOf(const PrtFmt& row) {
  std::string line = row.format;
  for (std::size_t at = line.find("%c"); at != line.npos; at = line.find("%c", at)) {
    line.replace(at, 2, "\"");
  }
  const auto parts = TakeApart(std::string_view(line).substr(0, line.find_first_of("\r\n")));
  if (!parts) return {};
  return std::string(parts->code.substr(0, parts->code.find('"')));
}

std::vector<ListedRow> ListRows() {
  std::vector<ListedRow> list;
  for (const RowTable* table : RowTables()) {
    const char* text = table->texts;
    for (const PrtFmt& row : table->rows) {
      const std::string name = text;
      text += name.size() + 1;
      const std::string tests = text;
      text += tests.size() + 1;
      list.push_back({{table, name, CodeOf(row)}, &row, tests});
    }
  }
  // A row that is taken over from another table has that one's tests.
  for (ListedRow& listed : list) {
    if (!listed.tests.empty()) continue;
    const auto origin = std::ranges::find_if(list, [&](const ListedRow& other) {
      return !other.tests.empty() && other.row->condition == listed.row->condition;
    });
    if (origin != list.end()) listed.tests = origin->tests;
  }
  return list;
}

const std::vector<ListedRow>& Rows() {
  static const std::vector<ListedRow> rows = ListRows();
  return rows;
}

// The next test of a list, commas in its parentheses not counting.
std::string TakeTest(std::string_view& tests) {
  std::size_t depth = 0;
  std::size_t end = 0;
  for (; end < tests.size() && (depth > 0 || tests[end] != ','); end++) {
    if (tests[end] == '(') depth++;
    if (tests[end] == ')' && depth > 0) depth--;
  }
  std::string test(tests.substr(0, end));
  tests.remove_prefix(std::min(tests.size(), tests.find_first_not_of(", ", end)));
  return test;
}

RowState StateOf(const ListedRow& listed) {
  RowState state = {listed.name.table,
                    listed.row,
                    listed.name.name,
                    listed.name.table->used == nullptr || listed.name.table->used(),
                    {}};
  const Comparation* condition = listed.row->condition;
  std::string_view sources = listed.tests;
  for (std::int32_t i = 0; condition != nullptr && i < condition->count; i++) {
    const ComparationItem& test = condition->items[i];
    const std::string source = TakeTest(sources);
    const bool again =
        std::ranges::find(state.tests, source, &TestState::source) != state.tests.end();
    if (again) continue;
    const bool holds = test.compare(test.left, test.right) != 0;
    state.tests.push_back({source, TestInWords(test, source), test.left, holds});
  }
  return state;
}

bool LooksAt(const PrtFmt& row, const void* field) {
  for (std::int32_t i = 0; row.values != nullptr && i < row.values->count; i++) {
    if (row.values->list[i].value == field) return true;
  }
  for (std::int32_t i = 0; row.condition != nullptr && i < row.condition->count; i++) {
    if (row.condition->items[i].left == field) return true;
  }
  return false;
}

template <typename Wanted>
std::vector<RowState> States(Wanted wanted) {
  std::vector<RowState> states;
  for (const ListedRow& listed : Rows()) {
    if (wanted(listed)) states.push_back(StateOf(listed));
  }
  return states;
}

template <typename Use>
void ForEachTicket(Use use) {
  for (const Module& module : Modules()) {
    for (const TicketTable& table : module.tickets) {
      for (const TicketData& row : PrinterTable(table)) use(row);
    }
  }
}

}  // namespace

bool RowState::holds() const {
  return used && std::ranges::all_of(tests, &TestState::holds);
}

std::vector<RowState> RowsOfCode(std::string_view code) {
  return States([code](const ListedRow& listed) { return listed.name.code == code; });
}

std::vector<RowState> RowsUsing(std::string_view key) {
  std::vector<const void*> fields;
  ForEachTicket([&](const TicketData& row) {
    if (key == row.key) fields.push_back(row.destination);
  });
  return States([&](const ListedRow& listed) {
    return std::ranges::any_of(fields, [&](const void* f) { return LooksAt(*listed.row, f); });
  });
}

std::vector<RowName> RowNames() {
  std::vector<RowName> names;
  for (const ListedRow& listed : Rows()) names.push_back(listed.name);
  return names;
}

std::string TicketKeyOfField(const void* field) {
  std::string key;
  ForEachTicket([&](const TicketData& row) {
    if (row.destination == field) key = row.key;
  });
  return key;
}
