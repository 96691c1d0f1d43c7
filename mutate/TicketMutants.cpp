// Tickets: another key, another getter, a smaller field, another field.

#include <algorithm>
#include <cstring>

#include "FilterFrame/Source/JobState.h"
#include "engine/JobHeader.h"
#include "engine/ModuleDispatch.h"
#include "mutate/TableMutants.h"
#include "queue/TicketRows.h"

namespace {

// Whether anything depends on what the ticket says.
bool IsUsed(const TicketData& row) {
  const void* const kept[] = {StdLayoutInfo, StdLayoutDirectionInfo, StdLayoutRowInfo,
                              StdLayoutColumnInfo};  // no line asks for them
  if (std::ranges::count(kept, row.destination) > 0) return false;
  return std::ranges::none_of(UnusedRows(), [&](const UnusedRow& unused) {
    return std::strcmp(unused.ticket, row.key) == 0 &&
           (std::string_view(unused.why).starts_with("read, not used") ||
            std::string_view(unused.why).starts_with("no job"));
  });
}

// Getters that a row could have by mistake, from the most similar one on.
constexpr TicketGetter* kTextGetters[] = {GetTicketStringConvertedToPrtLang,
                                          GetTicketStringConvertedToPrtLangForUTF8, GetTicketString,
                                          GetTicketStringConvertedToPPDEncodingString};

// Whether a row's line holds the text as it is, rather than words that it is compared with.
bool IsPrinted(const TicketData& row) {
  for (const RowTable* table : RowTables()) {
    for (const PrtFmt& line : table->rows) {
      for (std::int32_t i = 0; line.values != nullptr && i < line.values->count; i++) {
        if (line.values->list[i].value == row.destination) return true;
      }
    }
  }
  return false;
}

void AddGetters(TableMutants& mutants, const std::string& name, const TicketData& row) {
  if (row.getter == GetTicketInteger)
    return AddChange(mutants, name + " getter", row.getter, CheckTicketKey);
  if (row.getter == CheckTicketKey || row.getter == GetTicketFloat)
    return AddChange(mutants, name + " getter", row.getter, GetTicketInteger);
  if (row.getter == GetNumberUpTicketString)
    return AddChange(mutants, name + " getter", row.getter, GetNumberUpTicketStringForComment);
  if (row.getter == GetNumberUpTicketStringForComment)
    return AddChange(mutants, name + " getter", row.getter, GetNumberUpTicketString);
  // A watermark's line is far shorter than its texts can be.
  const std::string_view key = row.key;
  const bool stamped = key.ends_with("WMARKTextTicket") || key.ends_with("WMARKFontTicket");
  if (!IsPrinted(row) && !stamped)
    return AddChange(mutants, name + " getter", row.getter, GetTicketInteger);
  for (TicketGetter* other : std::span(kTextGetters).first(2)) {
    if (row.getter != other) AddChange(mutants, name + " getter", row.getter, other);
  }
}

// A sealed password has one length, far below its field's.
void AddSize(TableMutants& mutants, const std::string& name, const TicketData& row) {
  if (row.size <= static_cast<std::int32_t>(sizeof(std::int32_t))) return;
  const bool counts = IsPrinted(row) && row.getter != GetTicketPasswordStringConvertedToEncryption;
  AddChange(mutants, name + " size", row.size, counts ? row.size - 1 : 2);
}

void AddTable(TableMutants& mutants, const std::string& table, std::span<const TicketData> rows) {
  const TicketData* previous = nullptr;
  for (const TicketData& row : rows) {
    if (!IsUsed(row)) continue;
    const std::string name = table + " " + row.key;
    AddBreak(mutants, name + " key", row.key);
    AddGetters(mutants, name, row);
    AddSize(mutants, name, row);
    if (previous != nullptr && previous->getter == row.getter)
      AddExchange(mutants, name + " key exchanged with the one ahead", row.key, previous->key);
    previous = &row;
  }
}

}  // namespace

void AddTicketMutants(TableMutants& mutants) {
  for (const Module& module : Modules()) {
    for (const TicketTable& table : module.tickets) {
      AddTable(mutants, module.name, table.latin1);
      if (table.utf8.data() != table.latin1.data())
        AddTable(mutants, std::string(module.name) + " (UTF-8)", table.utf8);
    }
  }
}
