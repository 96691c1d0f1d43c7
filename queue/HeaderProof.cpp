// Trying the filter's own header writers.

#include "queue/HeaderProof.h"

#include <openssl/crypto.h>

#include "FilterFrame/Source/PrintJob.h"
#include "FilterFrame/Source/UtilityFunctionFilter/OutputPrimitives.h"
#include "engine/JobHeader.h"
#include "queue/HeaderCheck.h"
#include "queue/TicketChecks.h"
#include "queue/TicketKeys.h"

namespace {

constexpr int kMostTries = 16;

// The line by which a job of each print type is held.
constexpr struct {
  const char* printType;
  const char* line;
} kHolds[] = {{"2", "@PJL SET HOLD=STORE\n"},
              {"3", "@PJL SET HOLD=PROOF\n"},
              {"4", "@PJL SET JOBATTR=\"@PRTM="},
              {"5", "@PJL SET HOLD=BOXSTORE\n"}};

// The ticket without which the header's first broken line is not there; empty when there is none.
std::string Breaker(char* args[], const TicketList& tickets, std::string_view collate,
                    const std::string& header) {
  const std::string broken(BrokenLine(header));
  for (const JobTicket& ticket : tickets.tickets()) {
    const std::string other = HeaderFor(args, tickets.optionsText(collate, ticket.key));
    if (other.find(broken) == std::string::npos) return ticket.key;
  }
  return {};
}

// A printer that does not know the way would print the job at once.
void ProveHold(const std::string& header, const TicketList& tickets, Complaints& complaints) {
  const std::string* printType = tickets.find(TICKET_KEY("PrintTypeTicketKey"));
  for (const auto& hold : kHolds) {
    if (printType == nullptr || *printType != hold.printType) continue;
    if (header.find(hold.line) != std::string::npos) continue;
    const Condition condition{TICKET_KEY("PrintTypeTicketKey"), hold.printType, false};
    complaints.fail(WhatSets(condition) + ": this printer cannot hold the job so");
  }
}

// What does not open or does not seal protects nothing, and neither does what stands in no line.
void ProvePasswords(const std::string& header, const TicketList& tickets, Complaints& complaints) {
  for (const JobTicket& ticket : tickets.tickets()) {
    if (!IsPassword(ticket.key) || ticket.value.empty()) continue;
    const std::string_view sealed =
        static_cast<const char*>(FindTicketData(ticket.key)->destination);
    const std::string name = ticket.source == kGivenByJob ? ShortKey(ticket.key) : ticket.source;
    // A blob that nothing was sealed into is all zero bytes.
    if (sealed.find_first_not_of('A') == std::string_view::npos) {
      complaints.fail(name + ": the password cannot be sealed for the printer");
    } else if (header.find(sealed) == std::string::npos) {
      complaints.fail(name + ": the password has no effect with the other choices");
    }
  }
}

// Names and numbers that the queue filter has made tickets of for a hold or an account.
void ProveNames(const std::string& header, const TicketList& tickets, Complaints& complaints) {
  for (const JobTicket& ticket : tickets.tickets()) {
    const TicketData* row = FindTicketData(ticket.key);
    if (ticket.source == kGivenByJob || !MustHold(ticket.key) || !IsText(*row)) continue;
    if (header.find(static_cast<const char*>(row->destination)) != std::string::npos) continue;
    complaints.fail(ticket.source + " has no effect with the other choices");
  }
}

}  // namespace

void ProveHeader(char* args[], TicketList& tickets, std::string_view collate,
                 Complaints& complaints) {
  std::string header = HeaderFor(args, tickets.optionsText(collate));
  for (int tries = 0; !BrokenLine(header).empty(); tries++) {
    const std::string key = tries < kMostTries ? Breaker(args, tickets, collate, header) : "";
    if (key.empty()) return complaints.fail("The job header has a line that is not whole");
    LeaveOut(tickets, key, "breaks a line of the job header", complaints);
    header = HeaderFor(args, tickets.optionsText(collate));
  }
  ProveHold(header, tickets, complaints);
  ProvePasswords(header, tickets, complaints);
  ProveNames(header, tickets, complaints);
}

std::string HeaderFor(char* args[], std::string options) {
  char* const before = args[5];
  args[5] = options.data();
  std::string header;
  {
    const OutputCapture capture(header);
    PrepareHeader(args);
    OutputXPJLCommand(args);
  }
  args[5] = before;
  OPENSSL_cleanse(options.data(), options.size());
  return header;
}
