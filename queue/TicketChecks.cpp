// The checks, from one ticket to those that need each other.

#include "queue/TicketChecks.h"

#include <algorithm>
#include <cstdlib>

#include "queue/HeaderCheck.h"
#include "queue/TextForms.h"
#include "queue/TicketKeys.h"
#include "text/Encoding.h"

namespace {

void CheckForms(TicketList& tickets, Complaints& complaints) {
  for (const FormRow& row : FormRows()) {
    const std::string* value = tickets.find(row.ticket);
    if (value == nullptr) continue;
    const std::string problem = FormProblem(row.form, DecodedText(*value));
    if (!problem.empty()) LeaveOut(tickets, row.ticket, problem, complaints);
  }
}

void CheckRanges(TicketList& tickets, Complaints& complaints) {
  for (const RangeRow& row : RangeRows()) {
    const std::string* value = tickets.find(row.ticket);
    if (value == nullptr) continue;
    const double number = std::strtod(value->c_str(), nullptr);
    if (HasForm(Making::kNumber, *value) && number >= row.least && number <= row.most) continue;
    LeaveOut(tickets, row.ticket,
             "is not within " + std::to_string(row.least) + " to " + std::to_string(row.most),
             complaints);
  }
}

// Numbered tickets whose sheet lacks a field repeat the last one in its place.
void CheckFields(TicketList& tickets, Complaints& complaints) {
  const std::vector<JobTicket> all = tickets.tickets();
  for (const JobTicket& ticket : all) {
    for (const FieldsRow& row : FieldsRows()) {
      if (!ticket.key.starts_with(row.prefix)) continue;
      const std::string value = DecodedText(ticket.value);
      const auto fields = std::ranges::count(value, ',') + 1;
      if (fields == row.fields || fields == row.fieldsFromInserter) continue;
      LeaveOut(tickets, ticket.key, "has not the fields of a sheet", complaints);
    }
  }
}

// How many characters a text has that the printer's encoding has not.
bool LosesCharacters(const TicketData& row, const std::string& value) {
  const std::string text = DecodedText(value);
  const bool isUTF8 = row.getter == GetTicketStringConvertedToPrtLangForUTF8;
  return ConvertedLength(row, value) != (isUTF8 ? text.size() : CountUTF16Units(text));
}

// Why a ticket's value cannot stand in the header; empty when it can.
std::string TextProblem(const JobTicket& ticket) {
  const TicketData* row = FindTicketData(ticket.key);
  if (row != nullptr && (!IsText(*row) || BelongsTo(ticket.key, "watermark"))) return {};
  if (!FitsHeader(DecodedText(ticket.value))) return "holds a quote or a control character";
  if (row == nullptr ||
      (IsDialogKey(ticket.key) && !MustHold(ticket.key) && BelongsTo(ticket.key, "printtype"))) {
    return {};  // a document's name is cut, and so are the fields of special pages
  }
  if (MustHold(ticket.key) && LosesCharacters(*row, ticket.value)) {
    return "has a character that the printer does not know";
  }
  const auto most = static_cast<std::size_t>(row->size - 1);
  if (ConvertedLength(*row, ticket.value) <= most) return {};
  return "is longer than " + std::to_string(most) + " bytes";
}

void CheckTexts(TicketList& tickets, Complaints& complaints) {
  const std::vector<JobTicket> all = tickets.tickets();
  for (const JobTicket& ticket : all) {
    const std::string problem = TextProblem(ticket);
    if (!problem.empty()) LeaveOut(tickets, ticket.key, problem, complaints);
  }
}

bool IsThere(const TicketList& tickets, const char* key) {
  const std::string* value = tickets.find(key);
  if (value == nullptr || value->empty()) return false;
  const TicketData* row = FindTicketData(key);
  return row == nullptr || !IsText(*row) || ConvertedLength(*row, *value) > 0;
}

// What is lacking, as who has made the condition hold knows it: an option to whom chose another
// one.
std::string Lacking(const NeedRow& row, const TicketList& tickets) {
  const auto ticket = std::ranges::find(tickets.tickets(), row.condition.ticket, &JobTicket::key);
  const std::string option = WhatGives(row.ticket);
  const bool byOption = ticket != tickets.tickets().end() && ticket->source != kGivenByJob &&
                        !ticket->source.starts_with(option + "=");
  return byOption ? option : ShortKey(row.ticket);
}

// Until nothing changes any more: what has been left out may be what another ticket needs.
void CheckNeeds(TicketList& tickets, Complaints& complaints) {
  const auto lacks = [&tickets](const NeedRow& row) {
    return Holds(row.condition, tickets) && !IsThere(tickets, row.ticket);
  };
  for (;;) {
    const auto row = std::ranges::find_if(NeedRows(), lacks);
    if (row == NeedRows().end()) return;
    LeaveOut(tickets, row->condition.ticket, "needs " + Lacking(*row, tickets), complaints);
  }
}

}  // namespace

bool Holds(const Condition& condition, const TicketList& tickets) {
  if (condition.ticket == nullptr) return true;
  const std::string* value = tickets.find(condition.ticket);
  return value != nullptr && HasWord(condition.values, *value) != condition.unless;
}

std::string WhatSets(const Condition& condition) {
  for (const TicketRow& row : TicketRows()) {
    if (std::string_view(row.ticket) == condition.ticket && row.making == Making::kWord &&
        std::string_view(row.choice) != kAny && HasWord(condition.values, row.word)) {
      return std::string(row.option) + "=" + row.choice;
    }
  }
  return ShortKey(condition.ticket);
}

std::string WhatGives(std::string_view ticket) {
  const auto row = std::ranges::find_if(
      TicketRows(), [ticket](const TicketRow& known) { return ticket == known.ticket; });
  return row != TicketRows().end() ? row->option : ShortKey(ticket);
}

void CheckTickets(TicketList& tickets, Complaints& complaints) {
  CheckForms(tickets, complaints);
  CheckRanges(tickets, complaints);
  CheckFields(tickets, complaints);
  CheckTexts(tickets, complaints);
  CheckNeeds(tickets, complaints);
}

void LeaveOut(TicketList& tickets, const std::string& key, const std::string& why,
              Complaints& complaints) {
  const auto found = std::ranges::find(tickets.tickets(), key, &JobTicket::key);
  if (found == tickets.tickets().end()) return;
  std::string what = found->source;
  if (what == kGivenByJob) what = ShortKey(key) + (found->secret ? "" : "=" + found->value);
  complaints.complain(MustHold(key), what.substr(0, what.find('=')), what + ": it " + why);
  tickets.remove(key);
}
