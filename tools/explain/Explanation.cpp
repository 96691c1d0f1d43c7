// Leaving an option out and adding it, and asking the rows where nothing changes.

#include "tools/explain/Explanation.h"

#include <strings.h>

#include <algorithm>
#include <cstring>

#include "engine/ModuleDispatch.h"
#include "queue/TicketKeys.h"
#include "queue/TicketRows.h"
#include "text/NearestName.h"
#include "tools/dialect/DisplayText.h"
#include "tools/explain/Candidates.h"
#include "tools/explain/RowTests.h"
#include "tools/explain/TestWords.h"

namespace {

constexpr std::size_t kMostWays = 3;
constexpr int kMostTries = 60;

bool SameName(const std::string& a, const std::string& b) {
  return strcasecmp(a.c_str(), b.c_str()) == 0;
}

std::string TicketInWords(const JobTicket& ticket) {
  return ShortKey(ticket.key) + "=" + (ticket.secret ? "(hidden)" : ticket.value);
}

std::vector<std::string> TicketsOf(const Outcome& outcome) {
  std::vector<std::string> tickets;
  for (const JobTicket& ticket : outcome.tickets) tickets.push_back(TicketInWords(ticket));
  return tickets;
}

std::vector<std::string> MarksOf(const Outcome& outcome) {
  std::vector<std::string> marks;
  for (const auto& [option, choice] : outcome.marks)
    marks.emplace_back(option).append("=").append(choice);
  return marks;
}

// Whether the PPD has PostScript for what is marked: other filters put it into the document.
bool IsInDocument(ppd_file_t* ppd, const std::string& option) {
  const ppd_choice_t* marked = ppd != nullptr ? ppdFindMarkedChoice(ppd, option.c_str()) : nullptr;
  return marked != nullptr && marked->code != nullptr && *marked->code != '\0';
}

// Rows that would use the ticket but for tests on other fields: those that lack least.
std::vector<std::string> MissingFor(const std::string& key) {
  std::vector<std::string> missing;
  std::size_t fewest = static_cast<std::size_t>(-1);
  for (const RowState& row : RowsUsing(key)) {
    if (!row.used) continue;
    std::vector<std::string> failed;
    bool another = false;  // it is the row of another value of this ticket
    for (const TestState& test : row.tests) {
      if (test.holds) continue;
      another |= TicketKeyOfField(test.operand) == key;
      failed.push_back("It " + test.words);
    }
    if (another || failed.size() >= fewest) continue;
    fewest = failed.size();
    missing = failed;
  }
  return missing;
}

// The module that reads the key and writes its lines by code.
const Module* CodeModuleOf(const std::string& key) {
  for (const Module& module : Modules()) {
    if (module.rows.empty() && FindTicketData(key, module.name) != nullptr) return &module;
  }
  return nullptr;
}

std::string Joined(const std::vector<std::string>& words, const char* with) {
  std::string text;
  for (std::size_t i = 0; i < words.size(); i++) text += (i > 0 ? with : "") + words[i];
  return text;
}

// With which choice of another option of its module the ticket would have an effect: tried out,
// where lines are made by code.
std::string CompanyFor(const Trial& trial, const Choices& choices, const Outcome& job,
                       const std::string& key) {
  const Module* module = CodeModuleOf(key);
  if (module == nullptr) return {};
  for (const TicketTable& table : module->tickets) {
    for (const TicketData& row : PrinterTable(table)) {
      if (key == row.key) continue;
      std::vector<std::string> ways;
      for (const TicketSetting& setting : SettingsOf(row.key, choices)) {
        if (ways.size() == kMostWays) break;
        Outcome other = job;
        std::erase_if(other.tickets, [&](const JobTicket& t) { return t.key == row.key; });
        other.tickets.push_back({row.key, setting.value, "", false});
        const JobTicket* own = nullptr;
        for (const JobTicket& ticket : other.tickets) own = ticket.key == key ? &ticket : own;
        if (own == nullptr) return {};
        if (trial.linesOf(other, "") != trial.linesOf(other, key)) ways.push_back(setting.words);
      }
      if (!ways.empty()) return Joined(ways, " or ");
    }
  }
  return {};
}

// A password's option, or one that was meant to be.
bool MayBeSecret(const std::string& name, const Choices& choices) {
  if (IsSecret(name)) return true;
  if (choices.offers(name)) return false;
  const std::string nearest = NearestName(name, KnownNames(choices));
  return !nearest.empty() && IsSecret(nearest);
}

std::string Said(const JobOption& option) {
  const bool entered = option.value.starts_with("Custom.");
  return option.name + (entered ? "" : "=" + option.value);
}

std::string Sentence(std::string text) {
  if (!text.empty() && text.back() != '.' && text.back() != '!') text += '.';
  return text;
}

}  // namespace

std::string DoneElsewhere(const OptionExplanation& option) {
  const char* words = CupsAttribute(option.name);
  return option.effect == Effect::kElsewhere && words != nullptr ? words : "";
}

Explainer::Explainer(const Trial& trial, std::vector<JobOption> queue, std::vector<JobOption> given)
    : trial_(trial), queue_(std::move(queue)), given_(std::move(given)) {
  job_ = trial_.run(options(kAll));
}

// The options of the job without one or two of its own; of several with one name the last counts.
std::vector<JobOption> Explainer::options(std::size_t without, std::size_t alsoWithout) const {
  std::vector<JobOption> all = queue_;
  const auto add = [&all](const JobOption& option) {
    std::erase_if(all, [&](const JobOption& other) { return SameName(other.name, option.name); });
    all.push_back(option);
  };
  for (std::size_t i = 0; i < given_.size(); i++) {
    if (i != without && i != alsoWithout) add(given_[i]);
  }
  return all;
}

bool Explainer::isGivenLater(std::size_t index) const {
  return std::any_of(given_.begin() + static_cast<std::ptrdiff_t>(index) + 1, given_.end(),
                     [&](const JobOption& o) { return SameName(o.name, given_[index].name); });
}

// The attribute that stands for the option, and that the queue filter drops for it: without the
// option it would take its place, and the option would seem to do nothing.
std::size_t Explainer::outrankedBy(std::size_t index) const {
  const JobOption& option = given_[index];
  if (SameName(option.value, "None")) return kAll;
  const auto attribute = std::ranges::find_if(given_, [&](const JobOption& other) {
    return !SameName(other.name, option.name) && SameName(ActingName(other.name), option.name);
  });
  if (attribute == given_.end()) return kAll;
  return static_cast<std::size_t>(attribute - given_.begin());
}

// What the option changes in the job.
void Explainer::compare(std::size_t index, OptionExplanation& found) const {
  const Outcome without = trial_.run(options(index, outrankedBy(index)));
  if (!job_.failure.empty()) {
    const bool blamed = job_.failure != without.failure;
    found.why.push_back((blamed ? "Nothing is printed because of it: "
                                : "Nothing is printed, for another reason: ") +
                        Sentence(job_.failure));
    return;
  }
  found.choices = Surplus(MarksOf(job_), MarksOf(without));
  found.tickets = Surplus(TicketsOf(job_), TicketsOf(without));
  found.lines = Surplus(job_.lines, without.lines);
  found.instead = Surplus(without.lines, job_.lines);
  for (const std::string& why : Surplus(job_.complaints, without.complaints)) {
    found.why.push_back(Sentence(why));
  }
  const bool added = job_.document != without.document;
  const bool inDocument = added || std::ranges::any_of(job_.marks, [&](const auto& mark) {
                            const auto before = without.marks.find(mark.first);
                            return before != without.marks.end() && before->second != mark.second &&
                                   IsInDocument(trial_.ppd(), mark.first);
                          });
  const bool onlyLeftOut = found.lines.empty() && !found.why.empty();
  if (!found.lines.empty() || (!found.instead.empty() && !onlyLeftOut)) {
    found.effect = Effect::kLines;
  } else if (inDocument) {
    found.effect = Effect::kDocument;
    if (!added) explainTickets(index, found);  // the header may want more
  } else if (CupsAttribute(found.name) != nullptr) {
    found.effect = Effect::kElsewhere;
  }
}

OptionExplanation Explainer::explain(std::size_t index) const {
  const JobOption& option = given_[index];
  OptionExplanation found;
  found.name = option.name;
  found.value = MayBeSecret(option.name, Choices(trial_.ppd(), {})) ? "(hidden)" : option.value;
  if (isGivenLater(index)) {
    found.why.push_back("It is given again, and the last one counts.");
    return found;
  }
  compare(index, found);
  if (found.effect == Effect::kNone) {
    explainIdle(index, found);
  } else if (found.effect == Effect::kElsewhere) {
    explainRival(index, found);
  }
  return found;
}

// Another option of the job without which this one would have an effect.
std::string Explainer::rivalOf(std::size_t index) const {
  const std::string acting = ActingName(given_[index].name);
  for (std::size_t other = 0; other < given_.size(); other++) {
    if (other == index || isGivenLater(other)) continue;
    const Outcome with = trial_.run(options(other));
    const Outcome without = trial_.run(options(other, index));
    const bool chosen = with.marks.contains(acting) &&
                        with.marks.at(acting) != without.marks.at(acting) &&
                        with.marks.at(acting) != job_.marks.at(acting);
    if (chosen || with.lines != without.lines || with.document != without.document) {
      return given_[other].name + (IsSecret(given_[other].name) ? "" : "=" + given_[other].value);
    }
  }
  return {};
}

bool Explainer::explainRival(std::size_t index, OptionExplanation& found) const {
  const std::string rival = rivalOf(index);
  if (rival.empty()) return false;
  found.effect = Effect::kNone;
  found.why.push_back("It is superseded by " + rival + ".");
  return true;
}

void Explainer::explainIdle(std::size_t index, OptionExplanation& found) const {
  const JobOption& option = given_[index];
  if (!found.why.empty()) return;
  const Choices choices(trial_.ppd(), options(index));
  const std::string acting = ActingName(option.name);
  const std::string key = TicketKeyOf(acting);
  const auto unused = std::ranges::find_if(
      UnusedRows(), [&](const UnusedRow& row) { return key == row.ticket && !key.empty(); });
  if (unused != UnusedRows().end() && IsTicketOnly(key)) {
    found.why.push_back(Sentence(std::string("The filter does not use it: ") + unused->why));
    return;
  }
  const bool offered = choices.offers(acting);
  if (!offered && (key.empty() || !IsTicketOnly(key))) {
    const std::string nearest = NearestName(option.name, KnownNames(choices));
    found.why.push_back("Nothing knows an option of this name" +
                        (nearest.empty() ? "." : ": did you mean " + nearest + "?"));
    return;
  }
  if (offered) {
    const Choice before = choices.choice(acting);
    const auto now = job_.marks.find(acting);
    const bool same = SameName(before.keyword, option.value);
    if (!same && acting == option.name && !choices.offers(acting, option.value) &&
        option.value.find('.') == std::string::npos) {
      const std::string nearest = NearestName(option.value, choices.choiceNames(acting));
      found.why.push_back("There is no such choice" +
                          (nearest.empty() ? "." : ": did you mean " + nearest + "?"));
      return;
    }
    if (same && now != job_.marks.end() && now->second == before.keyword) {
      found.effect = Effect::kAnyway;
      found.why.push_back("It is what the queue does anyway.");
      return;
    }
  }
  if (explainRival(index, found)) return;
  explainTickets(index, found);
  if (!found.why.empty()) return;
  const std::string company = familyCompanyFor(index);
  if (!company.empty()) {
    found.why.push_back("It counts only with " + company + ".");
    return;
  }
  if (offered && ticketKeysOf(index).empty()) {
    found.effect = Effect::kElsewhere;
    found.why.push_back("It says what the printer has, and becomes no ticket.");
    return;
  }
  found.why.push_back("The filter writes no line for it.");
}

// Choices of the option's family, one or two, with which it would have an effect: tried out, where
// the queue filter itself asks for them.
std::string Explainer::familyCompanyFor(std::size_t index) const {
  const Choices choices(trial_.ppd(), options(kAll));
  const std::string acting = ActingName(given_[index].name);
  const std::vector<JobOption> family = FamilyChoices(acting, choices);
  int tries = 0;
  for (std::size_t first = 0; first < family.size(); first++) {
    if (counts(index, {family[first]})) return Said(family[first]);
  }
  for (std::size_t first = 0; first < family.size(); first++) {
    for (std::size_t second = first + 1; second < family.size(); second++) {
      if (family[first].name == family[second].name) continue;
      if (++tries > kMostTries) return {};
      if (!counts(index, {family[first], family[second]})) continue;
      return Said(family[first]) + " and " + Said(family[second]);
    }
  }
  return {};
}

// Whether the option makes a difference to the job when these are given as well.
bool Explainer::counts(std::size_t index, const std::vector<JobOption>& also) const {
  std::vector<JobOption> with = options(kAll);
  std::vector<JobOption> without = options(index);
  with.insert(with.end(), also.begin(), also.end());
  without.insert(without.end(), also.begin(), also.end());
  const Outcome one = trial_.run(with);
  if (!one.failure.empty()) return false;
  const Outcome other = trial_.run(without);
  return one.lines != other.lines || one.document != other.document;
}

// The keys of the tickets that are made of the option.
std::vector<std::string> Explainer::ticketKeysOf(std::size_t index) const {
  const std::string acting = ActingName(given_[index].name);
  std::vector<std::string> keys;
  for (const JobTicket& ticket : job_.tickets) {
    const std::string maker = ticket.source == kGivenByJob
                                  ? ticket.key
                                  : ticket.source.substr(0, ticket.source.find('='));
    if (SameName(maker, acting)) keys.push_back(ticket.key);
  }
  return keys;
}

// Why the option's tickets, which are there, change no line.
void Explainer::explainTickets(std::size_t index, OptionExplanation& found) const {
  const Choices choices(trial_.ppd(), options(kAll));
  for (const std::string& key : ticketKeysOf(index)) {
    std::vector<std::string> missing;
    const std::string company = CompanyFor(trial_, choices, job_, key);
    if (!company.empty()) {
      missing.push_back("It counts only with " + company);
    } else {
      trial_.run(options(kAll));  // the records are those of the job
      missing = MissingFor(key);
    }
    for (const std::string& why : missing) found.why.push_back(Sentence(why));
    if (missing.empty()) continue;
    found.effect = Effect::kNone;
    return;
  }
}
