// Base64 text to bytes and back (RFC 4648, standard alphabet, padding required).

#pragma once

#include <cstdint>
#include <vector>

// Returns `length` bytes of `data` as one line of padded Base64 characters, without a terminator;
// empty on failure and for no data.
std::vector<unsigned char> SecBlobEnc_Base64_Encode_Data(const unsigned char* data,
                                                         std::uint32_t length);

// Returns the bytes behind NUL-terminated `text`, whose line feeds do not count; empty for null or
// empty text, for a character outside the alphabet and for missing or misplaced padding. The bits
// that padding leaves over may be set; they are dropped.
std::vector<unsigned char> SecBlobEnc_Base64_Decode_Data(const char* text);
