// What the tests of rows want, in words.

#pragma once

#include <string>
#include <string_view>

#include "engine/CommandTable.h"

// `source` is the test as its row writes it: `Filled(xpjlOptionPrintType.userName)`.
std::string TestInWords(const ComparationItem& test, std::string_view source);

// The options by which a user gives the ticket this value, joined by "or"; the ticket itself where
// the job's printer has no such option. An empty value stands for any.
std::string WaysToSet(std::string_view key, std::string_view value);
