// Trying a job's options: what the queue filter makes of them, and what the printer filter writes
// then. Nothing is printed, and no password is shown.

#pragma once

#include <cups/ppd.h>

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "queue/Composition.h"

struct Outcome {
  std::vector<std::string> lines;  // the header's, without line ends; passwords hidden
  std::string document;            // PostScript that the filter puts into the document
  std::vector<JobTicket> tickets;
  std::string collate;  // the word behind the tickets
  std::vector<std::string> complaints;
  std::string failure;                       // why nothing is printed; the header is empty then
  std::map<std::string, std::string> marks;  // option of the PPD and its marked choice
};

class Trial {
 public:
  // The PPD, which may be null, is the job's (see JobPPD).
  Trial(ppd_file_t* ppd, JobFacts facts) : ppd_(ppd), facts_(std::move(facts)) {}

  // What comes of these options. The filter's records are left as its header was written from them.
  Outcome run(const std::vector<JobOption>& options) const;

  // What it says to be handed to another program: the composed options' text. Holds passwords in
  // their stored form. Nobody may print it where run() tells of a failure.
  std::string composed(const std::vector<JobOption>& options) const;

  // The lines that the filter writes for these tickets, of which `key` is left out, or set where
  // `value` is not null.
  std::vector<std::string> linesOf(const Outcome& outcome, std::string_view key,
                                   const char* value = nullptr) const;

  ppd_file_t* ppd() const { return ppd_; }

 private:
  JobFacts factsWith(const std::vector<JobOption>& options) const;
  std::vector<std::string> linesOfText(std::string options) const;

  ppd_file_t* ppd_;
  JobFacts facts_;
};

// What `more` has and `less` has not, each as often as it is there oftener.
std::vector<std::string> Surplus(const std::vector<std::string>& more,
                                 const std::vector<std::string>& less);
