// The tickets of one job on their way to the filter: those that the job gives itself, and over time
// those that the queue filter composes.

#pragma once

#include <string>
#include <string_view>
#include <vector>

// The source of a ticket that the job gives itself.
inline constexpr char kGivenByJob[] = "given";

struct JobTicket {
  std::string key;
  std::string value;
  std::string source;  // what it was made of, as messages name it
  bool secret = false;
};

class TicketList {
 public:
  TicketList() = default;
  ~TicketList();
  TicketList(const TicketList&) = delete;
  TicketList& operator=(const TicketList&) = delete;

  // Adds a ticket unless there is one with this key. True when it has been added.
  bool add(JobTicket ticket);

  // The ticket's value; null when there is none.
  const std::string* find(std::string_view key) const;

  void remove(std::string_view key);
  std::vector<JobTicket>& tickets() { return tickets_; }
  const std::vector<JobTicket>& tickets() const { return tickets_; }

  // All of them as CUPS writes a filter's fifth argument, and `collate` or `nocollate` behind them.
  // `without` leaves out the ticket with that key.
  std::string optionsText(std::string_view collate, std::string_view without = {}) const;

 private:
  std::vector<JobTicket> tickets_;
};

// A user's text as a ticket's value: the filter reads a text that begins with a slash as a list of
// bytes, so such a text becomes one.
std::string TicketText(std::string_view text);

// A ticket's name in messages: its key without the print dialog's prefix.
std::string ShortKey(std::string_view key);

// Whether the key is one of the print dialog's own.
bool IsDialogKey(std::string_view key);
