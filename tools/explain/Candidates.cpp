// Looking into the PPD's options, the queue filter's tables and CUPS's attributes.

#include "tools/explain/Candidates.h"

#include <strings.h>

#include <algorithm>

#include "queue/SecretOptions.h"
#include "queue/TicketKeys.h"
#include "queue/TicketList.h"
#include "queue/TicketRows.h"

namespace {

constexpr struct {
  const char* name;
  const char* words;
} kCupsAttributes[] = {
#define ATTRIBUTE(name, words) {name, words},
#include "tools/explain/CupsAttributes.def"
#undef ATTRIBUTE
};

bool SameName(std::string_view a, std::string_view b) {
  return a.size() == b.size() && strncasecmp(a.data(), b.data(), a.size()) == 0;
}

}  // namespace

const char* CupsAttribute(std::string_view name) {
  const auto known = std::ranges::find_if(
      kCupsAttributes, [&](const auto& attribute) { return SameName(attribute.name, name); });
  return known != std::end(kCupsAttributes) ? known->words : nullptr;
}

std::vector<std::string> KnownNames(const Choices& choices) {
  std::vector<std::string> names = choices.optionNames();
  for (const auto& attribute : kCupsAttributes) names.emplace_back(attribute.name);
  for (const AttributeRow& row : AttributeRows()) names.emplace_back(row.attribute);
  for (const TicketRow& row : TicketRows()) names.emplace_back(row.option);
  for (const std::string& key : TicketKeys()) names.push_back(key);
  return names;
}

std::string ActingName(const std::string& name) {
  const auto row = std::ranges::find_if(
      AttributeRows(), [&](const AttributeRow& known) { return SameName(known.attribute, name); });
  return row != AttributeRows().end() ? row->option : name;
}

bool IsSecret(const std::string& name) {
  return IsSecretOption(name) || IsPassword(TicketKeyOf(name));
}

std::vector<JobOption> FamilyChoices(const std::string& name, const Choices& choices) {
  constexpr std::string_view kPrefix = "ZLV";
  if (!name.starts_with(kPrefix)) return {};
  const auto isCapital = [](char c) { return c >= 'A' && c <= 'Z'; };
  const auto end = std::find_if(name.begin() + kPrefix.size() + 1, name.end(), isCapital);
  const std::string stem(name.begin(), end);
  std::vector<JobOption> family;
  for (const std::string& option : choices.optionNames()) {
    if (!option.starts_with(stem) || option == name) continue;
    for (const std::string& choice : choices.choiceNames(option)) {
      if (choice == choices.choice(option).keyword) continue;
      family.push_back({option, choice == "Custom" ? "Custom.1" : choice});
    }
  }
  return family;
}

std::vector<TicketSetting> SettingsOf(const std::string& key, const Choices& choices) {
  std::vector<TicketSetting> settings;
  for (const TicketRow& row : TicketRows()) {
    if (key != row.ticket || row.making != Making::kWord || *row.word == '\0') continue;
    if (choices.offers(row.option, row.choice)) {
      settings.push_back({row.word, std::string(row.option) + "=" + row.choice});
    }
  }
  for (const std::string& choice : choices.choiceNames(key)) {
    std::string words = key;
    words.append("=").append(choice);
    const auto spelt = std::ranges::find(settings, words, &TicketSetting::words);
    if (spelt == settings.end()) settings.push_back({choice, words});
  }
  return settings;
}
