// The form in which print dialogs store a password, and password tickets carry it.

#pragma once

#include <string>
#include <string_view>

// The longest password that a device opens, in bytes.
inline constexpr std::size_t kLongestStoredPassword = 255;

// The stored form of `password` (1 to kLongestStoredPassword bytes) as Base64 text. Empty when it
// is too long or the cryptography fails.
std::string StoredPassword(std::string_view password);
