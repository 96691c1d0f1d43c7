// Looking at options one by one, and at pairs.

#include "queue/OptionChecks.h"

#include <strings.h>

#include <algorithm>
#include <array>
#include <string>
#include <vector>

#include "queue/SecretOptions.h"
#include "queue/TicketKeys.h"
#include "queue/TicketList.h"
#include "queue/TicketRows.h"
#include "text/NearestName.h"

namespace {

constexpr std::array kNeutralChoices = {"None", "Off", "False"};

bool IsOwn(const std::string& name) {
  return strncasecmp(name.c_str(), "ZLV", 3) == 0;
}

std::string Advice(const std::string& nearest) {
  return nearest.empty() ? "" : " (did you mean " + nearest + "?)";
}

// The options that the queue filter knows, whatever a PPD offers.
std::vector<std::string> KnownOptions() {
  std::vector<std::string> names;
  for (const TicketRow& row : TicketRows()) names.emplace_back(row.option);
  return names;
}

void CheckTicketName(const std::string& name, Complaints& complaints) {
  if (!TicketKeyOf(name).empty()) return;
  const std::string nearest = NearestName(name, TicketKeys());
  complaints.complain(MustHold(nearest), name,
                      name + ": there is no such ticket" + Advice(nearest));
}

void CheckOptionName(const Choices& choices, const std::string& name, Complaints& complaints) {
  std::string nearest = NearestName(name, choices.optionNames());
  const bool fails = DecidesAboutHold(name) || DecidesAboutHold(nearest) ||
                     DecidesAboutHold(NearestName(name, KnownOptions()));
  complaints.complain(fails, name, name + ": this printer has no such option" + Advice(nearest));
}

// Why what is written cannot be the option's choice; empty when it can.
std::string ChoiceProblem(const Choices& choices, const std::string& name,
                          const std::string& written) {
  const bool secret = IsSecretOption(name);
  if (Choices::isEntered(written) && choices.offers(name, "Custom")) {
    const std::string problem = choices.enteredProblem(name, written);
    if (problem.empty()) return {};
    return (secret ? name : name + "=" + written.substr(written.find('.') + 1)) + ": it " + problem;
  }
  if (choices.offers(name, written) && strcasecmp(written.c_str(), "Custom") != 0) return {};
  if (secret) return name + ": a password is written as Custom.PASSWORD";
  std::string nearest = NearestName(written, choices.choiceNames(name));
  if (nearest == "Custom") nearest = "Custom.VALUE";
  return name + "=" + written + ": there is no such choice" + Advice(nearest);
}

// A choice that does nothing: none, or the queue's default.
std::string NeutralChoice(const Choices& choices, const std::string& option) {
  for (const char* neutral : kNeutralChoices) {
    if (choices.offers(option, neutral)) return neutral;
  }
  return choices.defaultChoice(option);
}

// The options whose choices exclude each other and are not neutral, those that the job has not
// given first.
std::vector<std::string> Candidates(ppd_file_t* ppd, const Choices& choices) {
  std::vector<std::string> names;
  for (const std::string& name : choices.optionNames()) {
    const ppd_option_t* option = ppdFindOption(ppd, name.c_str());
    if (option == nullptr || option->conflicted == 0 || !IsOwn(name)) continue;
    if (choices.choice(name).keyword != NeutralChoice(choices, name)) names.push_back(name);
  }
  std::stable_partition(names.begin(), names.end(), [&choices](const std::string& name) {
    return !choices.choice(name).given;
  });
  return names;
}

// Sets an option to its neutral choice if fewer choices exclude each other then.
bool GivesWay(ppd_file_t* ppd, const Choices& choices, const std::string& name) {
  const std::string before = choices.choice(name).keyword;
  const int conflicts = ppdConflicts(ppd);
  ppdMarkOption(ppd, name.c_str(), NeutralChoice(choices, name).c_str());
  if (ppdConflicts(ppd) < conflicts) return true;
  ppdMarkOption(ppd, name.c_str(), before.c_str());
  ppdConflicts(ppd);
  return false;
}

}  // namespace

bool DecidesAboutHold(std::string_view option) {
  const std::string name(option);
  return std::ranges::any_of(TicketRows(), [&name](const TicketRow& row) {
    return strcasecmp(name.c_str(), row.option) == 0 && MustHold(row.ticket);
  });
}

void CheckOptions(Choices& choices, Complaints& complaints) {
  const std::vector<JobOption> options = choices.jobOptions();
  for (const JobOption& option : options) {
    if (IsDialogKey(option.name)) {
      CheckTicketName(option.name, complaints);
    } else if (IsOwn(option.name) && !choices.offers(option.name)) {
      CheckOptionName(choices, option.name, complaints);
    } else if (IsOwn(option.name)) {
      const std::string problem = ChoiceProblem(choices, option.name, option.value);
      if (problem.empty()) continue;
      complaints.complain(DecidesAboutHold(option.name), option.name, problem);
      choices.markDefault(option.name);
    }
  }
  for (const std::string& name : choices.optionNames()) {
    if (!DecidesAboutHold(name)) continue;
    const std::string problem = ChoiceProblem(choices, name, choices.defaultChoice(name));
    if (!problem.empty()) complaints.fail("The queue's default " + problem);
  }
}

void ResolveConflicts(ppd_file_t* ppd, const Choices& choices, Complaints& complaints) {
  if (ppd == nullptr) return;
  while (ppdConflicts(ppd) > 0) {
    const std::vector<std::string> names = Candidates(ppd, choices);
    const auto way = std::ranges::find_if(names, [&](const std::string& name) {
      const Choice before = choices.choice(name);
      if (!GivesWay(ppd, choices, name)) return false;
      complaints.complain(DecidesAboutHold(name), name,
                          name + "=" + before.keyword + " does not go with the other choices");
      return true;
    });
    if (way == names.end()) return;
  }
}
