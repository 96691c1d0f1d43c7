// Looking tickets up in the registered tables.

#include "queue/TicketKeys.h"

#include <strings.h>

#include <array>
#include <set>

#include "engine/ModuleDispatch.h"
#include "queue/TextForms.h"
#include "queue/TicketList.h"

namespace {

bool SameLetters(std::string_view a, std::string_view b) {
  return a.size() == b.size() && strncasecmp(a.data(), b.data(), a.size()) == 0;
}

bool IsNameOfDocument(std::string_view key) {
  return key == TICKET_KEY("DocumentNameTicketKey") ||
         key == TICKET_KEY("DocumentNameTypeTicketKey");
}

}  // namespace

std::vector<std::string> TicketKeys() {
  std::vector<std::string> keys;
  std::set<std::string_view> seen;
  const auto add = [&](const char* key) {
    if (seen.insert(key).second) keys.emplace_back(key);
  };
  for (const Module& module : Modules()) {
    for (const TicketTable& table : module.tickets) {
      for (const TicketData& row : table.utf8) add(row.key);
    }
    for (const char* key : module.numberedTickets) add(key);
  }
  return keys;
}

std::string TicketKeyOf(std::string_view name) {
  static const std::vector<std::string> keys = TicketKeys();
  for (const std::string& key : keys) {
    if (SameLetters(key, name)) return key;
    if (key.ends_with('_') && SameLetters(key, name.substr(0, key.size())) &&
        IsDigits(name.substr(key.size()))) {
      return key + std::string(name.substr(key.size()));
    }
  }
  return {};
}

const TicketData* FindTicketData(std::string_view key, const char* module) {
  for (const Module& candidate : Modules()) {
    if (module != nullptr && std::string_view(candidate.name) != module) continue;
    for (const TicketTable& table : candidate.tickets) {
      for (const TicketData& row : PrinterTable(table)) {
        if (key == row.key && row.getter != CheckTicketKey) return &row;
      }
    }
  }
  return nullptr;
}

bool BelongsTo(std::string_view key, const char* module) {
  return IsDialogKey(key) && FindTicketData(key, module) != nullptr;
}

bool IsTicketOnly(std::string_view key) {
  return IsDialogKey(key) || key.starts_with("com.apple.") || key.starts_with("DuplexBinding");
}

bool IsPassword(std::string_view key) {
  const TicketData* row = FindTicketData(key);
  return row != nullptr && row->getter == GetTicketPasswordStringConvertedToEncryption;
}

bool IsText(const TicketData& row) {
  return row.getter != GetTicketInteger && row.getter != GetTicketFloat &&
         row.getter != CheckTicketKey && row.getter != GetTicketPasswordStringConvertedToEncryption;
}

bool MustHold(std::string_view key) {
  return !IsNameOfDocument(key) && (BelongsTo(key, "printtype") || BelongsTo(key, "accounting"));
}

std::string DecodedText(const std::string& value) {
  std::array<char, 1024> work{};
  value.copy(work.data(), work.size() - 1);
  numstrtochar(work.data(), static_cast<int>(work.size()));
  return work.data();
}

std::size_t ConvertedLength(const TicketData& row, const std::string& value) {
  std::array<char, 2048> field{};
  std::string key = row.key;
  std::string copy = value;
  cups_option_t option = {key.data(), copy.data()};
  row.getter(row.key, 1, &option, field.data(), static_cast<int>(field.size()));
  return std::string_view(field.data()).size();
}
