// Rows: a line that is not written, or written too often, or in another place, or with another
// value.

#include <algorithm>
#include <cstring>

#include "engine/JobHeader.h"
#include "mutate/TableMutants.h"

namespace {

bool Holds(const ComparationItem& item, CompareFunc one, CompareFunc other) {
  return item.compare == one || item.compare == other;
}

// What the compare functions would make of the right operands.
bool SameOperand(const ComparationItem& a, const ComparationItem& b) {
  if (a.right == b.right) return true;
  const bool numbers = Holds(a, IntCampareFunc, IntNoEqualCampareFunc);
  if (numbers != Holds(b, IntCampareFunc, IntNoEqualCampareFunc)) return false;
  if (numbers)
    return *static_cast<const std::int32_t*>(a.right) == *static_cast<const std::int32_t*>(b.right);
  const char* const* texts[] = {static_cast<const char* const*>(a.right),
                                static_cast<const char* const*>(b.right)};
  return *texts[0] != nullptr && *texts[1] != nullptr && std::strcmp(*texts[0], *texts[1]) == 0;
}

// Whether `a` and `b` cannot hold together.
bool Contradict(const ComparationItem& a, const ComparationItem& b) {
  if (a.left != b.left) return false;
  const bool same = SameOperand(a, b);
  const auto pair = [&](CompareFunc one, CompareFunc other) {
    return (a.compare == one && b.compare == other) || (a.compare == other && b.compare == one);
  };
  return (pair(IntCampareFunc, IntCampareFunc) && !same) ||
         (pair(IntCampareFunc, IntNoEqualCampareFunc) && same) ||
         (pair(StrEqualCampareFunc, StrEqualCampareFunc) && !same) ||
         (pair(StrContainCampareFunc, StrNotContainCampareFunc) && same) ||
         pair(StrNoNULLCampareFunc, StrIsNULLCampareFunc);
}

// Whether `b` holds wherever `a` does.
bool Implies(const ComparationItem& a, const ComparationItem& b) {
  if (a.left != b.left) return false;
  const bool same = SameOperand(a, b);
  return (a.compare == b.compare && same) ||
         (a.compare == IntCampareFunc && b.compare == IntNoEqualCampareFunc && !same);
}

using Items = std::span<const ComparationItem>;

Items ItemsOf(const PrtFmt& row) {
  if (row.condition == nullptr) return {};
  return {row.condition->items, static_cast<std::size_t>(row.condition->count)};
}

bool NeverTogether(const PrtFmt& one, const PrtFmt& other) {
  for (const ComparationItem& a : ItemsOf(one)) {
    for (const ComparationItem& b : ItemsOf(other)) {
      if (Contradict(a, b)) return true;
    }
  }
  return false;
}

// Whether the rows write the same.
bool SameLine(const PrtFmt& one, const PrtFmt& other) {
  if (std::strcmp(one.format, other.format) != 0) return false;
  if (one.values == nullptr || other.values == nullptr) return one.values == other.values;
  const std::span values(one.values->list, static_cast<std::size_t>(one.values->count));
  return one.values->count == other.values->count &&
         std::equal(values.begin(), values.end(), other.values->list,
                    [](const CmdValue& a, const CmdValue& b) { return a.value == b.value; });
}

// Copies of a row's tests and values, for the rest of the process.
void GiveTests(const PrtFmt& row, std::vector<ComparationItem> items) {
  const auto& kept = *new std::vector<ComparationItem>(std::move(items));
  Overwrite(row.condition, new Comparation{static_cast<std::int32_t>(kept.size()), kept.data()});
}

int Never(const void*, const void*) {
  return 0;
}

// The operand beside the one that is compared with: another number, or another text.
const void* OtherOperand(const ComparationItem& item) {
  static std::int32_t number;
  static const char* text;
  if (Holds(item, IntCampareFunc, IntNoEqualCampareFunc) ||
      item.compare == StrLengthLessThanCampareFunc) {
    number = *static_cast<const std::int32_t*>(item.right) + 1;
    return &number;
  }
  text = Broken(*static_cast<const char* const*>(item.right));
  return &text;
}

void AddTestMutants(TableMutants& mutants, const std::string& name, const PrtFmt& row) {
  const Items items = ItemsOf(row);
  for (std::size_t i = 0; i < items.size(); i++) {
    const std::string test = name + " test " + std::to_string(i + 1) + " ";
    bool implied = false;
    for (std::size_t other = 0; other < items.size(); other++)
      implied = implied || (other != i && Implies(items[other], items[i]));
    if (implied) continue;
    mutants.push_back({test + "gone", [&row, items, i] {
                         std::vector<ComparationItem> kept(items.begin(), items.end());
                         kept.erase(kept.begin() + static_cast<std::ptrdiff_t>(i));
                         GiveTests(row, kept);
                       }});
    if (Holds(items[i], StrNoNULLCampareFunc, StrIsNULLCampareFunc)) continue;
    mutants.push_back({test + "with another constant", [&row, items, i] {
                         std::vector<ComparationItem> kept(items.begin(), items.end());
                         kept[i].right = OtherOperand(kept[i]);
                         GiveTests(row, kept);
                       }});
  }
}

void AddValueMutants(TableMutants& mutants, const std::string& name, const PrtFmt& row) {
  static const char kText[] = "another";
  static const char kByte = '?';
  static const std::int32_t kNumber = 4711;
  for (std::int32_t i = 0; row.values != nullptr && i < row.values->count; i++) {
    mutants.push_back({name + " value " + std::to_string(i + 1) + " another", [&row, i] {
                         auto& list = *new std::vector<CmdValue>(
                             row.values->list, row.values->list + row.values->count);
                         CmdValue& value = list[static_cast<std::size_t>(i)];
                         value.value = value.symbol == 's'   ? static_cast<const void*>(kText)
                                       : value.symbol == 'c' ? static_cast<const void*>(&kByte)
                                                             : static_cast<const void*>(&kNumber);
                         Overwrite(row.values, new SymPara{row.values->count, list.data()});
                       }});
  }
}

void AddTable(TableMutants& mutants, const RowTable& table) {
  const char* text = table.texts;
  for (std::size_t i = 0; i < table.rows.size(); i++) {
    const PrtFmt& row = table.rows[i];
    const std::string name = std::string(table.name) + " " + text;
    for (int texts = 0; texts < 2; texts++) text += std::strlen(text) + 1;
    mutants.push_back({name + " never", [&row] { GiveTests(row, {{nullptr, nullptr, Never}}); }});
    AddBreak(mutants, name + " format", row.format);
    AddTestMutants(mutants, name, row);
    AddValueMutants(mutants, name, row);
    if (i + 1 == table.rows.size() || NeverTogether(row, table.rows[i + 1]) ||
        SameLine(row, table.rows[i + 1])) {
      continue;
    }
    AddExchange(mutants, name + " behind the next", row, table.rows[i + 1]);
  }
}

}  // namespace

void AddRowMutants(TableMutants& mutants) {
  for (const RowTable* table : RowTables()) AddTable(mutants, *table);
}
