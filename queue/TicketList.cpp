// The list, and its form as an options text.

#include "queue/TicketList.h"

#include <openssl/crypto.h>

#include <algorithm>

#include "engine/TicketStore.h"

namespace {

constexpr std::string_view kDialogPrefix = TICKET_KEY("");

// The value in quotes: nothing in it ends the option or becomes another byte.
void AppendOption(std::string& text, const JobTicket& ticket) {
  text += ticket.key + "='";
  for (const char c : ticket.value) {
    if (c == '\'' || c == '\\') text.push_back('\\');
    text.push_back(c);
  }
  text += "' ";
}

}  // namespace

TicketList::~TicketList() {
  for (JobTicket& ticket : tickets_) OPENSSL_cleanse(ticket.value.data(), ticket.value.size());
}

bool TicketList::add(JobTicket ticket) {
  if (find(ticket.key) != nullptr) return false;
  tickets_.push_back(std::move(ticket));
  return true;
}

const std::string* TicketList::find(std::string_view key) const {
  const auto found = std::ranges::find(tickets_, key, &JobTicket::key);
  return found != tickets_.end() ? &found->value : nullptr;
}

void TicketList::remove(std::string_view key) {
  std::erase_if(tickets_, [key](const JobTicket& ticket) { return ticket.key == key; });
}

std::string TicketList::optionsText(std::string_view collate, std::string_view without) const {
  std::string text;
  for (const JobTicket& ticket : tickets_) {
    if (without.empty() || ticket.key != without) AppendOption(text, ticket);
  }
  return text.append(collate);
}

std::string TicketText(std::string_view text) {
  if (!text.starts_with('/')) return std::string(text);
  std::string bytes;
  for (const char c : text) bytes += "/" + std::to_string(static_cast<unsigned char>(c));
  return bytes;
}

std::string ShortKey(std::string_view key) {
  return std::string(IsDialogKey(key) ? key.substr(kDialogPrefix.size()) : key);
}

bool IsDialogKey(std::string_view key) {
  return key.starts_with(kDialogPrefix);
}
