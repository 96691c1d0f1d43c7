// Running composition and header writers in this process.

#include "tools/explain/Trial.h"

#include <algorithm>

#include "FilterFrame/Source/UtilityFunctionFilter/OutputPrimitives.h"
#include "engine/ModuleDispatch.h"
#include "queue/HeaderProof.h"
#include "tools/dialect/ByteSearch.h"
#include "tools/dialect/DisplayText.h"

namespace {

constexpr int kMostHooks = 64;  // places in the document where modules may add something

// A filter's argument vector; the header is the same for any job identifier.
class Arguments {
 public:
  explicit Arguments(const JobFacts& facts) : facts_(facts) {}
  char** get() { return pointers_; }

 private:
  std::string name_ = "xpjl-explain";
  std::string job_ = "1";
  JobFacts facts_;
  std::string options_;
  char* pointers_[7] = {
      name_.data(),    job_.data(), facts_.user.data(), facts_.title.data(), facts_.copies.data(),
      options_.data(), nullptr};
};

std::vector<std::string> LinesOf(std::string_view header) {
  std::vector<std::string> lines;
  if (header.starts_with(kExitSequence)) header.remove_prefix(kExitSequence.size());
  while (!header.empty()) {
    std::string_view line = header.substr(0, header.find('\n'));
    header.remove_prefix(std::min(line.size() + 1, header.size()));
    if (line.ends_with('\r')) line.remove_suffix(1);
    if (!line.empty()) lines.push_back(WithoutSecrets(line));
  }
  return lines;
}

// What modules add to the document of the job whose header has been written last.
std::string AddedToDocument() {
  std::string text;
  const OutputCapture capture(text);
  for (int hook = 0; hook < kMostHooks; hook++) OutputPSCommandFromFilter(hook, 0, stdout);
  return text;
}

}  // namespace

Outcome Trial::run(const std::vector<JobOption>& options) const {
  const JobFacts facts = factsWith(options);
  Arguments args(facts);
  Composition composition(ppd_, facts, options);
  composition.compose(args.get());
  Outcome outcome;
  outcome.complaints = composition.complaints().warnings();
  outcome.failure = composition.complaints().failure();
  outcome.tickets = composition.tickets().tickets();
  outcome.collate = composition.optionsText().ends_with("nocollate") ? "nocollate" : "collate";
  for (const std::string& name : composition.choices().optionNames()) {
    const Choice choice = composition.choices().choice(name);
    outcome.marks[name] = choice.keyword + (choice.entered.empty() ? "" : "." + choice.entered);
  }
  const std::vector<std::string> lines = linesOfText(composition.optionsText());
  if (!outcome.failure.empty()) return outcome;
  outcome.lines = lines;
  outcome.document = composition.definitions() + AddedToDocument();
  return outcome;
}

// CUPS hands the copies on beside the options.
JobFacts Trial::factsWith(const std::vector<JobOption>& options) const {
  JobFacts facts = facts_;
  for (const JobOption& option : options) {
    if (option.name == "copies") facts.copies = option.value;
  }
  return facts;
}

std::string Trial::composed(const std::vector<JobOption>& options) const {
  const JobFacts facts = factsWith(options);
  Arguments args(facts);
  Composition composition(ppd_, facts, options);
  composition.compose(args.get());
  return composition.optionsText();
}

std::vector<std::string> Trial::linesOf(const Outcome& outcome, std::string_view key,
                                        const char* value) const {
  TicketList tickets;
  for (const JobTicket& ticket : outcome.tickets) {
    if (ticket.key != key) tickets.add(ticket);
  }
  if (value != nullptr) tickets.add({std::string(key), value, "", false});
  return linesOfText(tickets.optionsText(outcome.collate));
}

std::vector<std::string> Trial::linesOfText(std::string options) const {
  Arguments args(facts_);
  return LinesOf(HeaderFor(args.get(), std::move(options)));
}

std::vector<std::string> Surplus(const std::vector<std::string>& more,
                                 const std::vector<std::string>& less) {
  std::vector<std::string> rest = less;
  std::vector<std::string> surplus;
  for (const std::string& line : more) {
    const auto same = std::ranges::find(rest, line);
    if (same != rest.end()) {
      rest.erase(same);
    } else {
      surplus.push_back(line);
    }
  }
  return surplus;
}
