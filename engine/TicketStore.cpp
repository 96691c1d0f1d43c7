// The getters, and the walk over a ticket table.

#include "engine/TicketStore.h"

#include <openssl/crypto.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "DeploymentData.h"
#include "FilterFrame/Source/UtilityFunctionFilter/JobOptions.h"
#include "FilterFrame/Source/UtilityFunctionFilter/OutputPrimitives.h"
#include "FilterFrame/Source/UtilityFunctionFilter/PPDAccess.h"
#include "secblobenc/secblobenc.h"
#include "text/BoundedText.h"
#include "text/Encoding.h"

namespace {

constexpr int kTextSize = 1024;                // a ticket's text, with its terminator
constexpr int kBlobSize = 2000;                // a secure blob
constexpr std::size_t kUnsealedLength = 1920;  // of a blob that was not sealed: fits its line
constexpr int kCredentialSize = 255;           // an opened credential

constexpr char kLayoutRowsKey[] = "com.apple.print.PrintSettings.PMLayoutRows..n.";
constexpr char kLayoutColumnsKey[] = "com.apple.print.PrintSettings.PMLayoutColumns..n.";

// A work buffer that never outlives its use with a secret in it.
template <std::size_t Size>
struct WipedBuffer {
  ~WipedBuffer() { OPENSSL_cleanse(bytes, Size); }
  unsigned char bytes[Size] = {};
};

using Converter = int (*)(const char* source, char* destination, int size);

// Decodes the byte list in `work` and converts it into the destination. Returns its length.
int DecodeAndConvert(char (&work)[kTextSize], void* destination, int size, Converter convert) {
  numstrtochar(work, kTextSize);
  return convert(work, static_cast<char*>(destination), size);
}

// Fills `destination` from the option's value. Returns the length of the converted text, -1 when
// the key is absent.
int GetConvertedText(const char* key, int numOptions, cups_option_t* options, void* destination,
                     int size, Converter convert) {
  std::memset(destination, 0, static_cast<std::size_t>(size));
  const char* value = cupsGetOption(key, numOptions, options);
  if (value == nullptr) return -1;
  char work[kTextSize];
  CopyBounded(work, value);
  return DecodeAndConvert(work, destination, size, convert);
}

int ConvertToPPDEncoding(const char* source, char* destination, int size) {
  return ConvertUTF8ToPPDEncoding(source, destination, size,
                                  GetCFStringSimEncodingFromPPD(JobPPD()));
}

// Opens a stored credential. Returns its length, -1 when it does not open.
int OpenStoredCredential(const unsigned char* cipher, std::uint32_t cipherLength,
                         WipedBuffer<kCredentialSize>& plain) {
  std::uint32_t plainLength = kCredentialSize;
  const unsigned status =
      Decode_Storage(cipher, cipherLength, seed1, sizeof seed1, seed2, sizeof seed2, seed3,
                     sizeof seed3, plain.bytes, &plainLength);
  return status == 0 ? static_cast<int>(plainLength) : -1;
}

// Layout rows or columns; a missing one does not change the product.
long LayoutFactor(const char* value) {
  return value != nullptr ? DecimalInteger(value) : 1;
}

// The number of pages per sheet that the layout keys give, as text; `one` when that is one or when
// neither key is there.
void FormatLayoutNumberUp(int numOptions, cups_option_t* options, const char* prefix,
                          char (&work)[kTextSize]) {
  const char* rows = cupsGetOption(kLayoutRowsKey, numOptions, options);
  const char* columns = cupsGetOption(kLayoutColumnsKey, numOptions, options);
  const long pages = LayoutFactor(rows) * LayoutFactor(columns);
  if (pages == 1) {
    CopyBounded(work, "1");
    return;
  }
  char digits[16];
  const int number = static_cast<int>(std::clamp<long>(pages, INT32_MIN, INT32_MAX));
  std::snprintf(work, sizeof work, "%s%s", prefix, itoa(number, digits, sizeof digits));
}

int GetNumberUp(const char* key, int numOptions, cups_option_t* options, void* destination,
                int size, const char* prefix) {
  char work[kTextSize] = {};
  if (const char* value = cupsGetOption(key, numOptions, options)) {
    std::snprintf(work, sizeof work, "%s%s", prefix, value);
  } else {
    FormatLayoutNumberUp(numOptions, options, prefix, work);
  }
  DecodeAndConvert(work, destination, size, ConvertUTF8ToEncoding);
  return 1;
}

}  // namespace

int GetTicketFromArray(char* const args[], const TicketData* table, std::int32_t count) {
  const JobOptions options(args[5]);
  for (const TicketData* row = table; row < table + count; row++) {
    row->getter(row->key, options.count(), options.list(), row->destination, row->size);
  }
  return 1;
}

int CheckTicketKey(const char* key, int numOptions, cups_option_t* options, void* destination,
                   int /*size*/) {
  *static_cast<std::int32_t*>(destination) = cupsGetOption(key, numOptions, options) == nullptr;
  return 1;
}

int GetTicketInteger(const char* key, int numOptions, cups_option_t* options, void* destination,
                     int /*size*/) {
  const char* value = cupsGetOption(key, numOptions, options);
  *static_cast<std::int32_t*>(destination) = value != nullptr ? DecimalInteger(value) : -1;
  return value != nullptr;
}

int GetTicketFloat(const char* key, int numOptions, cups_option_t* options, void* destination,
                   int /*size*/) {
  const char* value = cupsGetOption(key, numOptions, options);
  *static_cast<float*>(destination) = value != nullptr ? std::strtof(value, nullptr) : -1.0F;
  return value != nullptr;
}

int GetTicketString(const char* key, int numOptions, cups_option_t* options, void* destination,
                    int size) {
  const char* value = cupsGetOption(key, numOptions, options);
  ConvertUTF8ToEncoding(value != nullptr ? value : "", static_cast<char*>(destination), size);
  return value != nullptr;
}

int GetTicketStringConvertedToPrtLang(const char* key, int numOptions, cups_option_t* options,
                                      void* destination, int size) {
  return GetConvertedText(key, numOptions, options, destination, size, ConvertUTF8ToEncoding) >= 0;
}

int GetTicketStringConvertedToPrtLangForUTF8(const char* key, int numOptions,
                                             cups_option_t* options, void* destination, int size) {
  return GetConvertedText(key, numOptions, options, destination, size,
                          ConvertUTF8ToEncodingForUTF8) >= 0;
}

int GetLengthOfTicketStringConvertedToPrtLang(const char* key, int numOptions,
                                              cups_option_t* options, void* destination, int size) {
  return std::max(
      0, GetConvertedText(key, numOptions, options, destination, size, ConvertUTF8ToEncoding));
}

int GetLengthOfTicketStringConvertedToPrtLangForUTF8(const char* key, int numOptions,
                                                     cups_option_t* options, void* destination,
                                                     int size) {
  return std::max(0, GetConvertedText(key, numOptions, options, destination, size,
                                      ConvertUTF8ToEncodingForUTF8));
}

int GetTicketStringConvertedToPPDEncodingString(const char* key, int numOptions,
                                                cups_option_t* options, void* destination,
                                                int size) {
  return GetConvertedText(key, numOptions, options, destination, size, ConvertToPPDEncoding) >= 0;
}

int GetTicketPasswordStringConvertedToEncryption(const char* key, int numOptions,
                                                 cups_option_t* options, void* destination,
                                                 int size) {
  char* text = static_cast<char*>(destination);
  std::memset(text, 0, static_cast<std::size_t>(size));
  const char* value = cupsGetOption(key, numOptions, options);
  if (value == nullptr) return 0;

  char stored[kTextSize];
  CopyBounded(stored, value);
  unsigned char blob[kBlobSize] = {};
  const std::int64_t storedLength = SecBlobEnc_Base64_Decode(stored, blob);
  if (storedLength < 1) return 0;

  WipedBuffer<kCredentialSize> plain;
  const int plainLength =
      OpenStoredCredential(blob, static_cast<std::uint32_t>(storedLength), plain);
  if (plainLength < 0) return 1;

  std::memset(blob, 0, sizeof blob);
  std::uint32_t blobLength = kBlobSize;
  const unsigned result =
      Encode_Random(plain.bytes, static_cast<std::uint32_t>(plainLength), blob, &blobLength);
  if (result != 0) {
    std::fprintf(stderr, "##filter debug## final encode failed encodeResult : %d \n",
                 static_cast<int>(result));
  }
  char sealed[(kBlobSize + 2) / 3 * 4 + 1] = {};
  if (SecBlobEnc_Base64_Encode(blob, blobLength, sealed) < 1) return 0;
  // No device opens a blob of zeros: what was to be held stays shut, and is not printed.
  if (result != 0) sealed[kUnsealedLength] = '\0';
  CopyBounded(text, static_cast<std::size_t>(size), sealed);
  return 1;
}

int GetNumberUpTicketString(const char* key, int numOptions, cups_option_t* options,
                            void* destination, int size) {
  return GetNumberUp(key, numOptions, options, destination, size, "N");
}

int GetNumberUpTicketStringForComment(const char* key, int numOptions, cups_option_t* options,
                                      void* destination, int size) {
  return GetNumberUp(key, numOptions, options, destination, size, "");
}

void numstrtochar(char* text, int limit) {
  if (text[0] != '/') return;
  const int length = static_cast<int>(std::strlen(text));
  if (length < 2) return;
  int read = 1;
  for (int write = 0; read < length; read++, write++) {
    const char* number = text + read;
    while (text[read] != '/' && text[read] != '\0') read++;
    if (read < limit) text[read] = '\0';
    const int code = DecimalInteger(number);
    text[write] = static_cast<char>(code < 256 ? code : 0);
    text[write + 1] = '\0';
  }
}
