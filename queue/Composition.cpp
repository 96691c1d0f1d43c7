// Composing a job's tickets.

#include "queue/Composition.h"

#include <algorithm>
#include <cctype>
#include <set>

#include "FilterFrame/Source/UtilityFunctionFilter/JobOptions.h"
#include "engine/StoredPassword.h"
#include "queue/HeaderCheck.h"
#include "queue/HeaderProof.h"
#include "queue/OptionChecks.h"
#include "queue/SpecialPageTickets.h"
#include "queue/StandardOptions.h"
#include "queue/TextForms.h"
#include "queue/TicketChecks.h"
#include "queue/TicketKeys.h"
#include "queue/TicketRows.h"

namespace {

constexpr std::string_view kOwnOptions = "ZLV";
constexpr std::string_view kCustom = "Custom";
constexpr PageSize kPlainPage = {595, 842};

std::string Said(const std::string& option, const std::string& value) {
  return option + "=" + value;
}

std::string Lower(std::string text) {
  for (char& c : text) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return text;
}

// Copies that are no number are one.
JobFacts WithCopies(JobFacts facts) {
  if (!IsDigits(facts.copies)) facts.copies = "1";
  return facts;
}

PageSize MarkedPage(ppd_file_t* ppd) {
  const ppd_size_t* size = ppd != nullptr ? ppdPageSize(ppd, nullptr) : nullptr;
  if (size == nullptr || size->width <= 0 || size->length <= 0) return kPlainPage;
  return {size->width, size->length};
}

}  // namespace

Composition::Composition(ppd_file_t* ppd, JobFacts facts, std::vector<JobOption> options)
    : ppd_(ppd),
      facts_(WithCopies(std::move(facts))),
      choices_(ppd, WithAttributes(ppd, WithoutLocked(ppd, std::move(options), complaints_),
                                   complaints_)),
      page_(MarkedPage(ppd)) {}

void Composition::compose(char* const args[]) {
  CheckOptions(choices_, complaints_);
  takeGiven();
  applyMeanings();
  ResolveConflicts(ppd_, choices_, complaints_);
  for (const TicketRow& row : TicketRows()) applyRow(row);
  remarkIdle();
  passOn();
  addMadeOfPage();
  chooseCollate();
  CheckTickets(tickets_, complaints_);
  checkNames();
  if (complaints_.failed()) return;

  std::vector<char*> own(args, args + 6);
  own[2] = facts_.user.data();
  own[3] = facts_.title.data();
  own[4] = facts_.copies.data();
  ProveHeader(own.data(), tickets_, collate_, complaints_);
  choices_.forgetSecrets();
}

void Composition::takeGiven() {
  for (const JobOption& option : choices_.jobOptions()) {
    const std::string key = TicketKeyOf(option.name);
    if (key.empty() || !IsTicketOnly(key)) continue;
    const TicketData* row = FindTicketData(key);
    JobTicket ticket{key, option.value, kGivenByJob, IsPassword(key)};
    if (row != nullptr && row->getter == GetTicketInteger && IsDigits(option.value)) {
      ticket.value = std::to_string(DecimalInteger(option.value.c_str()));  // as conditions have it
    }
    tickets_.add(std::move(ticket));
  }
}

void Composition::applyMeanings() {
  for (const MeaningRow& row : MeaningRows()) {
    const Choice option = choices_.choice(row.option);
    if (!option.given || option.keyword != kCustom) continue;
    const Choice main = choices_.choice(row.mainOption);
    if (HasWord(row.allowed, main.keyword)) continue;
    if (!main.given && choices_.offers(row.mainOption, row.choice)) {
      choices_.give(row.mainOption, row.choice);
      continue;
    }
    complaints_.complain(
        row.fails, row.option,
        std::string(row.option) + " counts only with " + Said(row.mainOption, row.choice) +
            (main.keyword.empty() ? ", which this printer has not" : ", not with " + main.keyword));
  }
}

// What is chosen where a row looks: an option of the PPD, or an attribute that it does not have.
Choice Composition::choiceFor(const TicketRow& row) const {
  if (choices_.offers(row.option)) return choices_.choice(row.option);
  const std::string_view name = row.option;
  const std::string* given = name == "copies" ? &facts_.copies : choices_.given(name);
  if (given == nullptr || name.starts_with(kOwnOptions)) return {};
  return {*given, "", true};
}

void Composition::applyRow(const TicketRow& row) {
  const Choice choice = choiceFor(row);
  if (!HasWord(row.choice, choice.keyword) || !Holds(row.condition, tickets_)) return;
  const bool secret = row.making == Making::kPassword;
  const bool custom = choice.keyword == kCustom;
  const std::string& chosen = custom ? choice.entered : choice.keyword;
  JobTicket ticket{row.ticket, row.word, Said(row.option, secret ? choice.keyword : chosen),
                   secret};
  if (row.making == Making::kLogin) {
    ticket.value = TicketText(facts_.user);
  } else if (row.making != Making::kWord) {
    ticket.value = secret ? StoredPassword(chosen) : TicketText(chosen);
    const std::string problem =
        secret && ticket.value.empty() ? "cannot be sealed" : FormProblem(row.making, chosen);
    if (!problem.empty() && tickets_.find(row.ticket) == nullptr) {
      const std::string what = secret ? row.option : ticket.source;
      return complaints_.complain(MustHold(row.ticket), row.option, what + ": it " + problem);
    }
  }
  const std::string* given = tickets_.find(row.ticket);
  if (given == nullptr) {
    tickets_.add(std::move(ticket));
  } else if (MustHold(row.ticket) && isWish(row.option) && *given != ticket.value &&
             isGiven(row.ticket)) {
    complaints_.fail(std::string(row.option) + ": the job's own ticket " + ShortKey(row.ticket) +
                     " says otherwise");
  }
}

bool Composition::isGiven(std::string_view key) const {
  return std::ranges::any_of(tickets_.tickets(), [key](const JobTicket& ticket) {
    return ticket.key == key && ticket.source == kGivenByJob;
  });
}

// Whether the job chooses something by the option that the queue would not do by itself.
bool Composition::isWish(const std::string& option) const {
  const Choice choice = choices_.choice(option);
  if (!choice.given || choice.keyword == "None" || choice.keyword == "Off") return false;
  return choice.keyword == kCustom || choice.keyword != choices_.defaultChoice(option);
}

// Wishes that nothing is made of, because another option is not as it should be.
void Composition::remarkIdle() {
  std::set<std::string_view> seen;
  for (const TicketRow& row : TicketRows()) {
    if (row.condition.ticket == nullptr || !seen.insert(row.option).second) continue;
    if (!isWish(row.option)) continue;
    const std::string keyword = choices_.choice(row.option).keyword;
    const TicketRow* idle = nullptr;
    bool works = false;
    for (const TicketRow& other : TicketRows()) {
      if (std::string_view(other.option) != row.option) continue;
      if (!HasWord(other.choice, keyword)) continue;
      works |= Holds(other.condition, tickets_);
      if (idle == nullptr) idle = &other;
    }
    if (idle == nullptr || works) continue;
    const std::string sentence = std::string(row.option) + " has no effect: it counts only with " +
                                 WhatSets(idle->condition);
    if (idle->making == Making::kPassword) complaints_.fail(sentence);
    complaints_.remark(row.option, sentence);
  }
}

// What the filter reads under the PPD's own names goes to it as it is marked.
void Composition::passOn() {
  for (const std::string& key : TicketKeys()) {
    const Choice choice = choices_.choice(key);
    if (choice.keyword.empty()) continue;
    const bool custom = choice.keyword == kCustom;
    const std::string value = custom ? "Custom." + choice.entered : choice.keyword;
    tickets_.add({key, value, Said(key, value)});
  }
}

void Composition::addMadeOfPage() {
  AddSpecialPageTickets(choices_, ppd_, page_, tickets_, complaints_);
  const std::string problem = AddWatermarkTickets(choices_, page_, tickets_, definitions_);
  if (!problem.empty()) {
    LeaveOut(tickets_, TICKET_KEY("WMARKNameTicket"), "cannot be drawn: " + problem, complaints_);
  }
}

void Composition::chooseCollate() {
  constexpr char kYes[] = "true yes on 1";
  const std::string* handling = choices_.given("multiple-document-handling");
  const std::string* word = choices_.given("collate");
  const std::string marked = word != nullptr ? *word : choices_.choice("Collate").keyword;
  const bool collated = handling != nullptr && handling->find("-collated-") != std::string::npos;
  collate_ = collated || HasWord(kYes, Lower(marked)) ? "collate" : "nocollate";
}

// The job's user and title stand in the header whatever the options are.
void Composition::checkNames() {
  constexpr Condition kNeedsUser[] = {{TICKET_KEY("PrintTypeTicketKey"), "2 3", false},
                                      {TICKET_KEY("JBAManageTypeListTicketKey"), "1 2", false}};
  constexpr char kWhy[] = " holds a quote or a control character";
  if (!FitsHeader(facts_.user)) {
    const bool counts = Holds(kNeedsUser[0], tickets_) || Holds(kNeedsUser[1], tickets_);
    complaints_.complain(counts, "user", std::string("The job's user name") + kWhy);
    facts_.user.clear();
  }
  if (!FitsHeader(facts_.title)) {
    complaints_.warn("title", std::string("The job's title") + kWhy);
    facts_.title.clear();
  }
}
