// Choices through libcups.

#include "queue/Choices.h"

#include <openssl/crypto.h>
#include <strings.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <span>

#include "queue/SecretOptions.h"

namespace {

constexpr std::string_view kCustom = "Custom.";

std::span<ppd_group_t> Subgroups(ppd_group_t& group) {
  return {group.subgroups, static_cast<std::size_t>(group.num_subgroups)};
}

void AddOptionNames(ppd_group_t& group, std::vector<std::string>& names) {
  for (int i = 0; i < group.num_options; i++) names.emplace_back(group.options[i].keyword);
  for (ppd_group_t& subgroup : Subgroups(group)) AddOptionNames(subgroup, names);
}

// Whether entered text has a length that the PPD allows.
std::string LengthProblem(const char* text, int least, int most) {
  const int length = text != nullptr ? static_cast<int>(std::strlen(text)) : 0;
  if (length < std::max(least, 1)) return "is too short";
  return length > most ? "is longer than " + std::to_string(most) + " bytes" : "";
}

std::string RangeProblem(double value, double least, double most) {
  if (value >= least && value <= most) return "";
  char text[64];
  std::snprintf(text, sizeof text, "is not within %g to %g", least, most);
  return text;
}

// Whether all of a written value is a number; what came in another form libcups has read already.
bool IsNumber(std::string_view written) {
  if (!written.starts_with(kCustom)) return true;
  const std::string digits(written.substr(kCustom.size()));
  char* end = nullptr;
  std::strtol(digits.c_str(), &end, 10);
  return end != digits.c_str() && *end == '\0';
}

// The value that libcups has taken from "Custom.VALUE"; one parameter is all our PPDs have.
void ReadEntered(ppd_file_t* ppd, const char* option, std::string_view written, Choice& choice) {
  ppd_coption_t* custom = ppdFindCustomOption(ppd, option);
  ppd_cparam_t* parameter = custom != nullptr ? ppdFirstCustomParam(custom) : nullptr;
  if (parameter == nullptr) return;
  const auto& least = parameter->minimum;
  const auto& most = parameter->maximum;
  const auto& now = parameter->current;
  switch (parameter->type) {
    case PPD_CUSTOM_INT:
      choice.entered = std::to_string(now.custom_int);
      choice.problem = RangeProblem(now.custom_int, least.custom_int, most.custom_int);
      if (!IsNumber(written)) choice.problem = "is no number";
      break;
    case PPD_CUSTOM_STRING:
      choice.entered = now.custom_string != nullptr ? now.custom_string : "";
      choice.problem = LengthProblem(now.custom_string, least.custom_string, most.custom_string);
      break;
    case PPD_CUSTOM_PASSWORD:
    case PPD_CUSTOM_PASSCODE:
      // libcups has not been told.
      choice.entered = written.starts_with(kCustom) ? written.substr(kCustom.size()) : "";
      choice.problem =
          LengthProblem(choice.entered.c_str(), least.custom_passcode, most.custom_passcode);
      break;
    default:
      choice.entered = written;
      break;
  }
}

}  // namespace

Choices::Choices(ppd_file_t* ppd, std::vector<JobOption> options)
    : ppd_(ppd), options_(std::move(options)) {
  mark();
}

Choices::~Choices() {
  for (JobOption& option : options_) OPENSSL_cleanse(option.value.data(), option.value.size());
}

void Choices::mark() {
  if (ppd_ == nullptr) return;
  ppdMarkDefaults(ppd_);
  std::vector<cups_option_t> list;
  std::string hidden = std::string(kCustom) + "*";
  for (JobOption& option : options_) {
    const bool isHidden = IsSecretOption(option.name) && option.value.starts_with(kCustom);
    list.push_back({option.name.data(), isHidden ? hidden.data() : option.value.data()});
  }
  // libcups looks names up by halving; of two options with one name the later one has to be last.
  std::ranges::stable_sort(list, [](const cups_option_t& a, const cups_option_t& b) {
    return strcasecmp(a.name, b.name) < 0;
  });
  cupsMarkOptions(ppd_, static_cast<int>(list.size()), list.data());
}

bool Choices::offers(const std::string& option) const {
  return ppd_ != nullptr && ppdFindOption(ppd_, option.c_str()) != nullptr;
}

bool Choices::offers(const std::string& option, const std::string& choice) const {
  ppd_option_t* found = ppd_ != nullptr ? ppdFindOption(ppd_, option.c_str()) : nullptr;
  return found != nullptr && ppdFindChoice(found, choice.c_str()) != nullptr;
}

Choice Choices::choice(const std::string& option) const {
  Choice result;
  if (ppd_ == nullptr) return result;
  ppd_choice_t* marked = ppdFindMarkedChoice(ppd_, option.c_str());
  if (marked == nullptr) return result;
  result.keyword = marked->choice;
  const std::string* written = given(option);
  result.given = written != nullptr;
  if (result.keyword == "Custom") {
    ReadEntered(ppd_, option.c_str(), written != nullptr ? *written : marked->option->defchoice,
                result);
  }
  return result;
}

const std::string* Choices::given(std::string_view name) const {
  for (const JobOption& option : options_) {
    if (strncasecmp(option.name.c_str(), name.data(), name.size()) == 0 &&
        option.name.size() == name.size()) {
      return &option.value;
    }
  }
  return nullptr;
}

void Choices::give(const std::string& option, const std::string& value) {
  options_.push_back({option, value});
  if (ppd_ != nullptr) ppdMarkOption(ppd_, option.c_str(), value.c_str());
}

std::vector<std::string> Choices::optionNames() const {
  std::vector<std::string> names;
  for (int i = 0; ppd_ != nullptr && i < ppd_->num_groups; i++) {
    AddOptionNames(ppd_->groups[i], names);
  }
  return names;
}

std::vector<std::string> Choices::choiceNames(const std::string& option) const {
  std::vector<std::string> names;
  const ppd_option_t* found = ppd_ != nullptr ? ppdFindOption(ppd_, option.c_str()) : nullptr;
  for (int i = 0; found != nullptr && i < found->num_choices; i++) {
    names.emplace_back(found->choices[i].choice);
  }
  return names;
}
