// From a user's choices to the tickets of the filter: complete ones that belong together, or none.

#pragma once

#include <cups/ppd.h>

#include <string>
#include <vector>

#include "queue/Choices.h"
#include "queue/Complaints.h"
#include "queue/TicketList.h"
#include "queue/WatermarkTickets.h"

// What CUPS says of a job beside its options. Texts are UTF-8.
struct JobFacts {
  std::string user;
  std::string title;
  std::string copies;
};

class Composition {
 public:
  // `options` are the job's. Marks the PPD, which may be null.
  Composition(ppd_file_t* ppd, JobFacts facts, std::vector<JobOption> options);

  // Makes the tickets, and tries them in the header that the filter writes for `args`, its argument
  // vector; user, title, copies and options in it are not looked at. What is wrong goes to
  // complaints().
  void compose(char* const args[]);

  const Complaints& complaints() const { return complaints_; }
  const Choices& choices() const { return choices_; }
  const TicketList& tickets() const { return tickets_; }

  // User and title, without what no header line can hold.
  JobFacts& facts() { return facts_; }

  // The filter's fifth argument.
  std::string optionsText() const { return tickets_.optionsText(collate_); }

  // PostScript that the tickets need ahead of the document, and the page that they are made for.
  const std::string& definitions() const { return definitions_; }
  PageSize page() const { return page_; }

 private:
  void takeGiven();
  void applyMeanings();
  void applyRow(const struct TicketRow& row);
  Choice choiceFor(const TicketRow& row) const;
  bool isGiven(std::string_view key) const;
  bool isWish(const std::string& option) const;
  void remarkIdle();
  void passOn();
  void addMadeOfPage();
  void chooseCollate();
  void checkNames();

  ppd_file_t* ppd_;
  JobFacts facts_;
  Complaints complaints_;  // ahead of what complains when it is made
  Choices choices_;
  PageSize page_;
  TicketList tickets_;
  std::string collate_;
  std::string definitions_;
};
