// The names the device shows and accounts by: taken from the filter's arguments into the job's name
// buffers, cut to the device's limits, and replaced or blanked when they hold characters it does
// not take. Limits count UTF-16 units for UTF-8 printers and bytes for others.

#pragma once

#include <cstdint>
#include <utility>

// Fills StdUserName and StdJBAUserName from UTF-8 text in the printer's encoding, cut to the
// buffers.
void ReadUserName(const char* user);

// Fills the document names from the title in args[3], likewise, and cuts them to what the product
// type allows. A title with a line end would break the header's lines; such a job has no name.
void ReadDocumentName(char* args[]);

// The characters a device takes in a name. Pairs beyond the counts are zero.
struct ValidateDataScale {
  struct Ranges {
    std::int32_t count;                                // ranges in use
    std::pair<std::int32_t, std::int32_t> bounds[10];  // lowest and highest, both taken
  };
  Ranges bytes;  // compared with one byte
  Ranges words;  // compared with two bytes, the first one being the high one
};

extern const ValidateDataScale userNameValidateDataScale;
extern const ValidateDataScale userNameValidateDataScaleForUTF8;
extern const ValidateDataScale docuNameValidateDataScale;
extern const ValidateDataScale docuNameValidateDataScaleForProduct02;
extern const ValidateDataScale docuNameValidateDataScaleForProduct03;
extern const ValidateDataScale docuNameValidateDataScaleForProduct03UTF8;

// Whether the first byte, or the first two bytes, of NUL-terminated `text` lie in a range. No range
// in use takes nothing. The ...Space forms ask the same of a scale of spaces.
bool ISByteValid(const char* text, const ValidateDataScale& scale);
bool ISWordValid(const char* text, const ValidateDataScale::Ranges& wordPart);
bool ISByteSpace(const char* text, const ValidateDataScale::Ranges& spaceScale);
bool ISWordSpace(const char* text, const ValidateDataScale::Ranges& spaceScale);

// 1 when the scale takes every character of `text`, two bytes being tried before one; else 0.
int ValidateDada(const char* text, const ValidateDataScale& scale);

// 1 when `text` is empty or holds only blanks and ideographic spaces (Shift-JIS 0x8140), else 0.
int IsAllSpace(const char* text);

// Cuts StdUserName to 255 characters; a refused name becomes "UnknownUser". For UTF-8 printers
// StdJBAUserName follows: its first 32 characters, or "UnknownUser" too.
void InvalidateStdUserName();

// Cuts StdDocumentName to 64 bytes and returns its length before. A service; the job itself cuts
// by product type.
int InvalidateStdDocumentName();

// Cuts StdDocumentName to what the product type among the job options in args[5] allows. For
// printers with another encoding than UTF-8 also prepares PTStdDocumentName, which a refused title
// or a missing product type leaves empty.
void InvalidateStdDocumentNameForProductType(char* args[]);

// Cuts PTStdDocumentName likewise and blanks it when it is refused.
void InvalidatePrintTypeDocumentNameForProductType(char* args[]);
