// Bytes of a job made fit to be shown: decoded, without control characters, without secrets.

#pragma once

#include <string>
#include <string_view>

// How a printer reads the texts of a job.
enum class Charset { kLatin1, kUTF8 };

// The text as valid UTF-8. Bytes that are none become U+FFFD.
std::string Decoded(std::string_view bytes, Charset charset);

// The text as one line of UTF-8 that any terminal may receive: bytes that are no text, control
// characters and characters that turn the writing direction stand as \xNN or \u{NNNN}.
std::string Printable(std::string_view bytes, Charset charset);

// The bytes with every sealed password replaced by "(hidden)": the values of secret names, whole or
// broken off, and anything else that is as long and as random as one.
std::string WithoutSecrets(std::string_view bytes);

// The number of columns that UTF-8 text takes, counted as characters.
std::size_t Columns(std::string_view text);
