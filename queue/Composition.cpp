// Composing a job's tickets.

#include "queue/Composition.h"

#include <strings.h>

#include <algorithm>
#include <set>

#include "engine/StoredPassword.h"
#include "queue/HeaderCheck.h"
#include "queue/HeaderProof.h"
#include "queue/SecretOptions.h"
#include "queue/SpecialPageTickets.h"
#include "queue/StandardOptions.h"
#include "queue/TextForms.h"
#include "queue/TicketChecks.h"
#include "queue/TicketKeys.h"
#include "queue/TicketRows.h"
#include "text/NearestName.h"

namespace {

constexpr std::string_view kOwnOptions = "ZLV";
constexpr std::string_view kCustom = "Custom";
constexpr PageSize kPlainPage = {595, 842};

std::string Said(const std::string& option, const std::string& value) {
  return option + "=" + value;
}

std::string Advice(std::string_view name, const std::vector<std::string>& candidates) {
  const std::string nearest = NearestName(name, candidates);
  return nearest.empty() ? "" : " (did you mean " + nearest + "?)";
}

bool IsEntered(std::string_view value) {
  return value.starts_with("Custom.") || value.starts_with('{');
}

// Whether an option says how the job is held or counted.
bool DecidesHold(const std::string& option) {
  return std::ranges::any_of(TicketRows(), [&option](const TicketRow& row) {
    return option == row.option && MustHold(row.ticket);
  });
}

PageSize MarkedPage(ppd_file_t* ppd) {
  const ppd_size_t* size = ppd != nullptr ? ppdPageSize(ppd, nullptr) : nullptr;
  if (size == nullptr || size->width <= 0 || size->length <= 0) return kPlainPage;
  return {size->width, size->length};
}

}  // namespace

Composition::Composition(ppd_file_t* ppd, JobFacts facts, std::vector<JobOption> options)
    : ppd_(ppd),
      facts_(std::move(facts)),
      choices_(ppd, WithAttributes(ppd, WithoutLocked(ppd, std::move(options), complaints_),
                                   complaints_)),
      page_(MarkedPage(ppd)) {}

void Composition::compose(char* const args[]) {
  remarkUnknown();
  takeGiven();
  applyMeanings();
  resolveConflicts();
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
}

// A password is not repeated.
std::string Composition::unknownChoice(const JobOption& option) const {
  if (IsSecretOption(option.name)) return option.name + ": its value has to begin with Custom.";
  return Said(option.name, option.value) + ": there is no such choice" +
         Advice(option.value, choices_.choiceNames(option.name));
}

// What libcups passes over in silence.
void Composition::remarkUnknown() {
  for (const JobOption& option : choices_.jobOptions()) {
    const bool own = option.name.starts_with(kOwnOptions);
    if (IsDialogKey(option.name)) {
      if (!TicketKeyOf(option.name).empty()) continue;
      complaints_.warn(option.name + ": there is no such ticket" +
                       Advice(option.name, TicketKeys()));
    } else if (own && !choices_.offers(option.name)) {
      complaints_.warn(option.name + ": this printer has no such option" +
                       Advice(option.name, choices_.optionNames()));
    } else if (own && !IsEntered(option.value) && !choices_.offers(option.name, option.value)) {
      complaints_.complain(DecidesHold(option.name), unknownChoice(option));
    }
  }
}

void Composition::takeGiven() {
  for (const JobOption& option : choices_.jobOptions()) {
    const std::string key = TicketKeyOf(option.name);
    if (key.empty() || !IsTicketOnly(key)) continue;
    tickets_.add({key, option.value, kGivenByJob, IsPassword(key)});
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
        row.fails,
        std::string(row.option) + " counts only with " + Said(row.mainOption, row.choice) +
            (main.keyword.empty() ? ", which this printer has not" : ", not with " + main.keyword));
  }
}

// Of two choices that exclude each other the one that can give way is not passed on.
void Composition::resolveConflicts() {
  if (ppd_ == nullptr || ppdConflicts(ppd_) == 0) return;
  cups_option_t* solution = nullptr;
  int count = 0;
  cupsResolveConflicts(ppd_, nullptr, nullptr, &count, &solution);
  for (int i = 0; i < count; i++) {
    const std::string name = solution[i].name;
    const std::string before = choices_.choice(name).keyword;
    if (!name.starts_with(kOwnOptions) || before == solution[i].value) continue;
    const bool mustHold = name == "ZLVPrintType" || name == "ZLVAccounting";
    complaints_.complain(mustHold, Said(name, before) + " does not go with the other choices");
    ppdMarkOption(ppd_, solution[i].name, solution[i].value);
  }
  cupsFreeOptions(count, solution);
}

// What is chosen where a row looks: an option of the PPD, or an attribute that it does not have.
Choice Composition::choiceFor(const TicketRow& row) const {
  if (choices_.offers(row.option)) return choices_.choice(row.option);
  const std::string_view name = row.option;
  const std::string* given = name == "copies" ? &facts_.copies : choices_.given(name);
  if (given == nullptr || name.starts_with(kOwnOptions)) return {};
  return {*given, "", true, ""};
}

void Composition::applyRow(const TicketRow& row) {
  Choice choice = choiceFor(row);
  if (!HasWord(row.choice, choice.keyword) || !Holds(row.condition, tickets_)) return;
  const bool secret = row.making == Making::kPassword;
  const bool custom = choice.keyword == kCustom;
  const std::string& chosen = custom ? choice.entered : choice.keyword;
  JobTicket ticket{row.ticket, row.word, Said(row.option, secret ? choice.keyword : chosen),
                   secret};
  if (row.making == Making::kLogin) {
    ticket.value = TicketText(facts_.user);
  } else if (row.making != Making::kWord) {
    if (choice.problem.empty() && !HasForm(row.making, chosen)) choice.problem = "has another form";
    ticket.value = secret ? StoredPassword(chosen) : TicketText(chosen);
    if (secret && ticket.value.empty()) choice.problem = "cannot be sealed";
    if (!choice.problem.empty() && tickets_.find(row.ticket) == nullptr) {
      const std::string what = secret ? row.option : ticket.source;
      return complaints_.complain(MustHold(row.ticket), what + ": it " + choice.problem);
    }
  }
  tickets_.add(std::move(ticket));
}

// Options that a job gives and that nothing is made of, because another one is not as it should be.
void Composition::remarkIdle() {
  std::set<std::string_view> seen;
  for (const TicketRow& row : TicketRows()) {
    if (row.condition.ticket == nullptr || !seen.insert(row.option).second) continue;
    const Choice choice = choices_.choice(row.option);
    if (!choice.given) continue;
    const TicketRow* idle = nullptr;
    bool works = false;
    for (const TicketRow& other : TicketRows()) {
      if (std::string_view(other.option) != row.option) continue;
      if (!HasWord(other.choice, choice.keyword)) continue;
      works |= Holds(other.condition, tickets_);
      if (idle == nullptr) idle = &other;
    }
    if (idle == nullptr || works) continue;
    complaints_.remark(std::string(row.option) + " has no effect: it counts only with " +
                       WhatSets(idle->condition));
  }
}

// What the filter reads under the PPD's own names goes to it as it is marked.
void Composition::passOn() {
  for (const std::string& key : TicketKeys()) {
    const Choice choice = choices_.choice(key);
    if (choice.keyword.empty()) continue;
    if (!choice.problem.empty()) {
      complaints_.warn(Said(key, choice.entered) + ": it " + choice.problem);
      continue;
    }
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
  const std::string* handling = choices_.given("multiple-document-handling");
  const std::string* word = choices_.given("collate");
  const std::string marked = word != nullptr ? *word : choices_.choice("Collate").keyword;
  const bool collated = handling != nullptr && handling->find("-collated-") != std::string::npos;
  collate_ = collated || strcasecmp(marked.c_str(), "true") == 0 ? "collate" : "nocollate";
}

// The job's user and title stand in the header whatever the options are.
void Composition::checkNames() {
  constexpr Condition kNeedsUser[] = {{TICKET_KEY("PrintTypeTicketKey"), "2 3", false},
                                      {TICKET_KEY("JBAManageTypeListTicketKey"), "1 2", false}};
  constexpr char kWhy[] = " holds a quote or a control character";
  if (!FitsHeader(facts_.user)) {
    const bool counts = Holds(kNeedsUser[0], tickets_) || Holds(kNeedsUser[1], tickets_);
    complaints_.complain(counts, std::string("The job's user name") + kWhy);
    facts_.user.clear();
  }
  if (!FitsHeader(facts_.title)) {
    complaints_.warn(std::string("The job's title") + kWhy);
    facts_.title.clear();
  }
}
