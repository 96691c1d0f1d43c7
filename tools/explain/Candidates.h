// What could be given to a job: names that the queue knows, and the values that a ticket can get
// from them.

#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "queue/Choices.h"

// What CUPS itself does for an option of this name; null when it is none of its own.
const char* CupsAttribute(std::string_view name);

// Every name that an option may have: the PPD's, standard attributes, CUPS's own, tickets.
std::vector<std::string> KnownNames(const Choices& choices);

// The name that the option acts under: its own, or that of the option it is an attribute for.
std::string ActingName(const std::string& name);

// Whether an option's value is a password.
bool IsSecret(const std::string& name);

// Choices of the PPD's options that belong to this one by their names, as ZLVCoverSource does to
// ZLVCoverSize; not the option's own, nor what is marked.
std::vector<JobOption> FamilyChoices(const std::string& name, const Choices& choices);

// A value that the ticket gets from an option's choice, and how a user says it.
struct TicketSetting {
  std::string value;
  std::string words;  // "ZLVTonerSaver=UserInput"
};
std::vector<TicketSetting> SettingsOf(const std::string& key, const Choices& choices);
