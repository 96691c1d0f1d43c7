// The converters, on utfcpp's validating decoder.

#include "text/Encoding.h"

#include <utf8.h>

#include <cstring>

namespace {

constexpr std::size_t kParenthesisedUnits = 255;  // the device's string buffer, in UTF-16 units
constexpr char32_t kLastLatin1 = 0xFF;
constexpr char32_t kLastSingleUnit = 0xFFFF;

bool IsValid(std::string_view text) {
  return utf8::is_valid(text.begin(), text.end());
}

// Calls visit(character, bytes) for each character of valid UTF-8 text until it returns false.
template <typename Visit>
void ForEachCharacter(std::string_view text, Visit visit) {
  for (const char* at = text.data(); at < text.data() + text.size();) {
    const char* start = at;
    const char32_t character = utf8::unchecked::next(at);
    if (!visit(character, std::string_view(start, static_cast<std::size_t>(at - start)))) return;
  }
}

std::size_t UnitsOf(char32_t character) {
  return character > kLastSingleUnit ? 2 : 1;
}

// Clears the destination and appends what encode(character, bytes) gives for each character, a
// view valid until the next call, until the destination is full.
template <typename Encode>
int ConvertCharacters(std::string_view source, char* destination, int size, Encode encode) {
  if (size <= 0) return 0;
  const std::size_t capacity = static_cast<std::size_t>(size) - 1;
  std::memset(destination, 0, capacity + 1);
  if (!IsValid(source)) return 0;
  std::size_t length = 0;
  ForEachCharacter(source, [&](char32_t character, std::string_view bytes) {
    const std::string_view encoded = encode(character, bytes);
    length += encoded.copy(destination + length, capacity - length);
    return length < capacity;
  });
  return static_cast<int>(length);
}

}  // namespace

int ConvertUTF8ToEncoding(const char* source, char* destination, int size) {
  char latin1 = 0;
  return ConvertCharacters(source, destination, size,
                           [&](char32_t character, std::string_view) -> std::string_view {
                             latin1 = static_cast<char>(character);
                             return {&latin1, character <= kLastLatin1 ? 1u : 0u};
                           });
}

int ConvertUTF8ToEncodingForUTF8(const char* source, char* destination, int size) {
  return ConvertCharacters(source, destination, size,
                           [](char32_t character, std::string_view bytes) {
                             return character <= kLastSingleUnit ? bytes : std::string_view();
                           });
}

int ConvertUTF8ToPPDEncoding(const char* source, char* destination, int size,
                             TextEncoding /*encoding*/) {
  if (size <= 0) return 0;
  const std::size_t capacity = static_cast<std::size_t>(size);
  const std::string_view text = source;
  std::memset(destination, 0, capacity);
  if (!IsValid(text)) return 0;
  const bool fitsParentheses = CountUTF16Units(text) + 2 <= kParenthesisedUnits;
  const std::size_t length = text.size() + (fitsParentheses ? 2 : 0);
  if (length >= capacity) return 0;
  text.copy(destination + (fitsParentheses ? 1 : 0), text.size());
  if (fitsParentheses) {
    destination[0] = '(';
    destination[length - 1] = ')';
  }
  return static_cast<int>(length);
}

TextEncoding TextEncodingForLanguageEncoding(const char* languageEncoding) {
  const bool japanese = languageEncoding != nullptr && !std::strcmp(languageEncoding, "JIS83-RKSJ");
  return japanese ? kTextEncodingJISX0208_83 : kTextEncodingUTF8;
}

int checkIfCharacterIsMultibyte(const char* source) {
  bool found = false;
  if (IsValid(source)) {
    ForEachCharacter(source, [&](char32_t character, std::string_view) {
      found = character > kLastLatin1;
      return !found;
    });
  }
  return found ? 1 : 0;
}

std::size_t CountUTF16Units(std::string_view text) {
  std::size_t units = 0;
  text = text.substr(0, utf8::find_invalid(text));
  ForEachCharacter(text, [&](char32_t character, std::string_view) {
    units += UnitsOf(character);
    return true;
  });
  return units;
}

std::string_view FirstUTF16Units(std::string_view text, std::size_t units) {
  std::size_t kept = 0;
  text = text.substr(0, utf8::find_invalid(text));
  ForEachCharacter(text, [&](char32_t character, std::string_view bytes) {
    if (UnitsOf(character) > units) return false;
    units -= UnitsOf(character);
    kept += bytes.size();
    return true;
  });
  return text.substr(0, kept);
}
