// What the filter's ticket tables say of a key, and what its getters make of a value.

#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "engine/TicketStore.h"

// Every key that the filter reads, once, in the order of the modules; those of numbered tickets end
// in an underscore and lack their number.
std::vector<std::string> TicketKeys();

// The key that an option's name stands for, in the key's own spelling; empty when the filter reads
// none of this name.
std::string TicketKeyOf(std::string_view name);

// The row that reads the key in the printer's language, null when no table has it. `module` is the
// folder of the one module to ask; null asks all.
const TicketData* FindTicketData(std::string_view key, const char* module = nullptr);

// Whether a key is the print dialog's own and one of the module's.
bool BelongsTo(std::string_view key, const char* module);

// Whether only a print dialog writes such a key; others are also options and attributes of CUPS.
bool IsTicketOnly(std::string_view key);

// Whether the key's value is a stored password.
bool IsPassword(std::string_view key);

// Whether the filter reads it as text, passwords not included.
bool IsText(const TicketData& row);

// Whether a job without this ticket would not be held, or not be counted, as its user wants.
bool MustHold(std::string_view key);

// A value as the text getters take it: cut to 1,023 bytes, byte lists decoded.
std::string DecodedText(const std::string& value);

// The bytes that the filter makes of a text's value, were the field large enough.
std::size_t ConvertedLength(const TicketData& row, const std::string& value);
