// Choices through libcups.

#include "queue/Choices.h"

#include <openssl/crypto.h>
#include <strings.h>

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <cstring>
#include <span>

#include "queue/SecretOptions.h"

namespace {

constexpr std::string_view kCustom = "Custom.";

std::string Lower(std::string text) {
  for (char& c : text) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return text;
}

std::span<ppd_group_t> Subgroups(ppd_group_t& group) {
  return {group.subgroups, static_cast<std::size_t>(group.num_subgroups)};
}

void AddOptionNames(ppd_group_t& group, std::vector<std::string>& names) {
  for (int i = 0; i < group.num_options; i++) names.emplace_back(group.options[i].keyword);
  for (ppd_group_t& subgroup : Subgroups(group)) AddOptionNames(subgroup, names);
}

bool SaysCustom(std::string_view written) {
  return written.size() >= kCustom.size() &&
         strncasecmp(written.data(), kCustom.data(), kCustom.size()) == 0;
}

// The value of "Custom.VALUE" or "{Parameter=VALUE}".
std::string EnteredText(std::string_view written) {
  if (SaysCustom(written)) return std::string(written.substr(kCustom.size()));
  const std::size_t equals = written.find('=');
  if (!written.starts_with('{') || !written.ends_with('}') || equals == written.npos) return {};
  return std::string(written.substr(equals + 1, written.size() - equals - 2));
}

std::string LengthProblem(const std::string& text, int least, int most) {
  const int length = static_cast<int>(text.size());
  if (length < std::max(least, 1)) return "is too short";
  return length > most ? "is longer than " + std::to_string(most) + " bytes" : "";
}

std::string NumberProblem(const std::string& text, int least, int most) {
  char* end = nullptr;
  const long number = std::strtol(text.c_str(), &end, 10);
  if (text.empty() || *end != '\0') return "is no number";
  if (number >= least && number <= most) return "";
  return "is not within " + std::to_string(least) + " to " + std::to_string(most);
}

// One parameter is all our PPDs have.
std::string ParameterProblem(const ppd_cparam_t& parameter, const std::string& text) {
  const auto& least = parameter.minimum;
  const auto& most = parameter.maximum;
  switch (parameter.type) {
    case PPD_CUSTOM_INT:
      return NumberProblem(text, least.custom_int, most.custom_int);
    case PPD_CUSTOM_STRING:
      return LengthProblem(text, least.custom_string, most.custom_string);
    case PPD_CUSTOM_PASSWORD:
      return LengthProblem(text, least.custom_password, most.custom_password);
    case PPD_CUSTOM_PASSCODE:
      return LengthProblem(text, least.custom_passcode, most.custom_passcode);
    default:
      return {};
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
    const bool isHidden = IsSecretOption(option.name) &&
                          (isEntered(option.value) || !offers(option.name, option.value));
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
  const ppd_choice_t* marked = ppdFindMarkedChoice(ppd_, option.c_str());
  if (marked == nullptr) return result;
  result.keyword = marked->choice;
  const std::string* written = given(option);
  result.given = written != nullptr && !refused_.contains(Lower(option));
  if (result.keyword == "Custom") {
    result.entered = EnteredText(result.given ? *written : defaultChoice(option));
  }
  return result;
}

std::string PPDDefault(ppd_file_t* ppd, const std::string& option) {
  const ppd_attr_t* attribute =
      ppd != nullptr ? ppdFindAttr(ppd, ("Default" + option).c_str(), nullptr) : nullptr;
  return attribute != nullptr && attribute->value != nullptr ? attribute->value : "";
}

std::string Choices::defaultChoice(const std::string& option) const {
  return PPDDefault(ppd_, option);
}

void Choices::markDefault(const std::string& option) {
  refused_.insert(Lower(option));
  if (ppd_ != nullptr) ppdMarkOption(ppd_, option.c_str(), defaultChoice(option).c_str());
}

bool Choices::isEntered(std::string_view written) {
  return SaysCustom(written) || written.starts_with('{');
}

std::string Choices::enteredProblem(const std::string& option, const std::string& written) const {
  ppd_coption_t* custom = ppd_ != nullptr ? ppdFindCustomOption(ppd_, option.c_str()) : nullptr;
  const ppd_cparam_t* parameter = custom != nullptr ? ppdFirstCustomParam(custom) : nullptr;
  return parameter != nullptr ? ParameterProblem(*parameter, EnteredText(written)) : "";
}

void Choices::forgetSecrets() {
  for (JobOption& option : options_) {
    if (!IsSecretOption(option.name)) continue;
    OPENSSL_cleanse(option.value.data(), option.value.size());
    option.value.clear();
  }
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
  std::erase_if(options_, [&](const JobOption& given) {
    return strcasecmp(given.name.c_str(), option.c_str()) == 0;
  });
  refused_.erase(Lower(option));
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
