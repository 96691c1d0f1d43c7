// Passwords in a job's options. They are taken out before anything else sees the text: what
// libraries copy, nobody wipes.

#pragma once

#include <string>
#include <vector>

#include "queue/Choices.h"

// Parses an options text as CUPS writes it. The text is wiped.
std::vector<JobOption> TakeJobOptions(char* text);

// Whether an option's value is a password.
bool IsSecretOption(const std::string& name);
