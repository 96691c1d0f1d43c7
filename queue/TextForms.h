// Forms that a value can have.

#pragma once

#include <string>
#include <string_view>

#include "queue/TicketRows.h"

bool IsDigits(std::string_view text);

// Whether the text has the form that is asked for; forms that ask for nothing take every text.
//   kDigits      decimal digits
//   kNumber      the same with a sign and a fraction if need be
//   kClock       HH:MM of 24 hours
//   kSeparators  names and numbers, at most 14 bytes: more does not fit the line around them
bool HasForm(Making form, std::string_view text);

// What is wrong with a text of another form, behind "it"; empty when it has the form.
std::string FormProblem(Making form, std::string_view text);
