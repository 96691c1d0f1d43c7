// What each option of a job does, and why one does nothing.

#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "tools/explain/Trial.h"

enum class Effect {
  kLines,      // in the header, and maybe elsewhere
  kDocument,   // in the document's PostScript alone
  kElsewhere,  // CUPS does it, or the printer filter is told by it
  kAnyway,     // what is asked for is the queue's default
  kNone,
};

struct OptionExplanation {
  std::string name;
  std::string value;  // "(hidden)" for a password
  Effect effect = Effect::kNone;
  std::vector<std::string> choices;  // what it marks in the PPD: "Duplex=DuplexNoTumble"
  std::vector<std::string> tickets;  // what it becomes: key without prefix, and value
  std::vector<std::string> lines;    // what it causes
  std::vector<std::string> instead;  // lines that would be there without it
  std::vector<std::string> why;      // why it has no effect, or not all of it; sentences
};

// What CUPS or another filter does for an option that has its effect there; empty for others.
std::string DoneElsewhere(const OptionExplanation& option);

struct LineExplanation {
  struct Row {
    std::string table;
    std::string name;
    bool written;
    std::string notUsed;              // why the printer does not get the table; empty when it does
    std::vector<std::string> tests;   // as they are written
    std::vector<bool> holds;          // for each test
    std::vector<std::string> failed;  // tests that do not hold, in words
  };
  std::string failure;              // why nothing is printed
  std::vector<std::string> lines;   // those with this name that the job has
  std::vector<Row> rows;            // empty for a line that code writes
  std::vector<std::string> causes;  // options that it is there for, or by which it would be
};

class Explainer {
 public:
  // `queue` are the queue's own options, `given` the job's as written: one may be there twice.
  Explainer(const Trial& trial, std::vector<JobOption> queue, std::vector<JobOption> given);

  // The job with all options.
  const Outcome& job() const { return job_; }
  const std::vector<JobOption>& given() const { return given_; }

  OptionExplanation explain(std::size_t index) const;

  // `code` is a line's name, such as "JOEP".
  LineExplanation explainLine(std::string_view code) const;

  std::string composed() const { return trial_.composed(options(kAll)); }

 private:
  static constexpr std::size_t kAll = static_cast<std::size_t>(-1);

  std::vector<JobOption> options(std::size_t without, std::size_t alsoWithout = kAll) const;
  bool isGivenLater(std::size_t index) const;
  std::size_t outrankedBy(std::size_t index) const;
  std::string rivalOf(std::size_t index) const;
  void compare(std::size_t index, OptionExplanation& found) const;
  bool explainRival(std::size_t index, OptionExplanation& found) const;
  void explainIdle(std::size_t index, OptionExplanation& found) const;
  std::string familyCompanyFor(std::size_t index) const;
  bool counts(std::size_t index, const std::vector<JobOption>& also) const;
  void explainTickets(std::size_t index, OptionExplanation& found) const;
  std::vector<std::string> ticketKeysOf(std::size_t index) const;
  std::vector<std::string> causesOf(std::string_view code) const;
  std::vector<std::string> waysTo(std::string_view code) const;

  const Trial& trial_;
  std::vector<JobOption> queue_;
  std::vector<JobOption> given_;
  Outcome job_;
};

// The name of a line: "@PJL SET JOBATTR="@JOEP=..."" has JOEP. Empty for what is no PJL line.
std::string CodeOfLine(std::string_view line);
