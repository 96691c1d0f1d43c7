// Conversion of UTF-8 text, as CUPS and the print dialog give it, to the printer's language
// encoding. Every converter clears the whole destination first and leaves it terminated; sizes are
// in bytes and include the terminator. Text that is not valid UTF-8 leaves the destination empty.

#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

using TextEncoding = std::uint32_t;
inline constexpr TextEncoding kTextEncodingUTF8 = 0x08000100;
inline constexpr TextEncoding kTextEncodingISOLatin1 = 0x0201;
inline constexpr TextEncoding kTextEncodingJISX0208_83 = 0x0621;

// Writes the ISO Latin-1 form of `source`; characters that Latin-1 lacks are dropped, and the text
// is cut where the destination is full. Returns the length written in bytes.
int ConvertUTF8ToEncoding(const char* source, char* destination, int size);

// The same in UTF-8. Characters beyond U+FFFF are dropped: the device takes single UTF-16 units
// only. Where the destination is full the last character may be cut inside its bytes.
int ConvertUTF8ToEncodingForUTF8(const char* source, char* destination, int size);

// Writes `source` in parentheses, as a PostScript string literal wants it, in UTF-8 whatever
// `encoding` says. A text too long for the parenthesised form (253 UTF-16 units) stays without
// parentheses; one that does not fit the destination whole writes nothing. Returns the length.
int ConvertUTF8ToPPDEncoding(const char* source, char* destination, int size,
                             TextEncoding encoding);

// The encoding for a PPD's LanguageEncoding value; null means the PPD names none.
TextEncoding TextEncodingForLanguageEncoding(const char* languageEncoding);

// 1 when the UTF-8 text holds a character that ISO Latin-1 cannot represent, else 0.
int checkIfCharacterIsMultibyte(const char* source);

// The number of UTF-16 units in UTF-8 text; an incomplete last character is not counted.
std::size_t CountUTF16Units(std::string_view text);

// The longest prefix of UTF-8 text that has at most `units` UTF-16 units and ends with a whole
// character.
std::string_view FirstUTF16Units(std::string_view text, std::size_t units);
