// The ticket store: a module's ticket table says which job option fills which field of its option
// record, and how the value is read. Nothing here fails a job: an absent option leaves -1 in
// integers, -1.0 in floats and an empty text.

#pragma once

#include <cups/cups.h>

#include <cstddef>
#include <cstdint>

// The prefix of every key that the print dialog owns.
#define TICKET_KEY(suffix) "com.zelva.jt.printsettings.ps.ww." suffix

// Reads the option `key` from `options` (`numOptions` of them) into `destination` (`size` bytes).
// Text getters clear the destination and leave it terminated; values count up to 1023 bytes.
using TicketGetter = int(const char* key, int numOptions, cups_option_t* options, void* destination,
                         int size);

struct TicketData {
  const char* key;
  void* destination;  // a std::int32_t, a float or a text buffer
  std::int32_t size;  // of the destination, in bytes
  TicketGetter* getter;
};

// Fills the destination of every row of `table` (`count` rows, in order) from the options in
// args[5], where `args` is the filter's argument vector. Returns 1.
int GetTicketFromArray(char* const args[], const TicketData* table, std::int32_t count);

// Integer getters. CheckTicketKey stores 1 when the key is absent, 0 when it is there, and returns
// 1; GetTicketInteger and GetTicketFloat return 1 when the key is there, else 0.
TicketGetter CheckTicketKey;
TicketGetter GetTicketInteger;
TicketGetter GetTicketFloat;

// Text getters. All but GetTicketString decode byte lists first (see numstrtochar); they convert to
// ISO Latin-1, the ...ForUTF8 ones to UTF-8. They return 1 when the key is there, else 0; the
// GetLength... ones return the length of the converted text in bytes.
TicketGetter GetTicketString;
TicketGetter GetTicketStringConvertedToPrtLang;
TicketGetter GetTicketStringConvertedToPrtLangForUTF8;
TicketGetter GetLengthOfTicketStringConvertedToPrtLang;
TicketGetter GetLengthOfTicketStringConvertedToPrtLangForUTF8;
TicketGetter GetTicketStringConvertedToPPDEncodingString;

// Opens the credential that the print dialog stored and seals it for the device, as Base64 text.
// Returns 0 when the key is absent, the value is not Base64 or the result is empty; 1 otherwise,
// also when the credential does not open: it then counts as present but empty.
TicketGetter GetTicketPasswordStringConvertedToEncryption;

// The device's pages-per-sheet text from `key` or the dialog's layout rows and columns: "N4", or
// "1" when nothing is set; the ...ForComment one without the "N". Returns 1.
TicketGetter GetNumberUpTicketString;
TicketGetter GetNumberUpTicketStringForComment;

// Decodes a byte list in place: "/65/66" becomes "AB". Text that does not begin with a slash stays
// as it is. Codes that are no byte count as 0, which ends the text. `limit` is the size of the
// buffer that holds the text, in bytes.
void numstrtochar(char* text, int limit);

// What a getter stores.
enum class TicketValue { kText, kInteger, kFloat };
template <TicketGetter* Getter>
inline constexpr TicketValue kTicketValue = TicketValue::kText;
template <>
inline constexpr TicketValue kTicketValue<CheckTicketKey> = TicketValue::kInteger;
template <>
inline constexpr TicketValue kTicketValue<GetTicketInteger> = TicketValue::kInteger;
template <>
inline constexpr TicketValue kTicketValue<GetTicketFloat> = TicketValue::kFloat;

// Makers of rows; sizes come from the field's type, and a getter that does not fit it does not
// compile. Of a text field `used` bytes are filled.
template <TicketGetter* Getter>
constexpr TicketData Ticket(const char* key, std::int32_t& field) {
  static_assert(kTicketValue<Getter> == TicketValue::kInteger);
  return {key, &field, sizeof field, Getter};
}
template <TicketGetter* Getter>
constexpr TicketData Ticket(const char* key, float& field) {
  static_assert(kTicketValue<Getter> == TicketValue::kFloat);
  return {key, &field, sizeof field, Getter};
}
template <TicketGetter* Getter, std::size_t Size>
constexpr TicketData Ticket(const char* key, char (&field)[Size], std::size_t used = Size) {
  static_assert(kTicketValue<Getter> == TicketValue::kText);
  if (used > Size) throw "the field is smaller";
  return {key, field, static_cast<std::int32_t>(used), Getter};
}
