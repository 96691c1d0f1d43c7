// Scales, checks, and the rules by printer language and product type.

#include "FilterFrame/Source/JobNames.h"

#include <cstring>
#include <optional>
#include <string_view>

#include "FilterFrame/Source/JobState.h"
#include "FilterFrame/Source/UtilityFunctionFilter/JobOptions.h"
#include "FilterFrame/Source/UtilityFunctionFilter/PPDAccess.h"
#include "engine/TicketStore.h"
#include "text/BoundedText.h"
#include "text/Encoding.h"

namespace {

constexpr char defaultUserName[] = "UnknownUser";
constexpr char kPrintTypeProductType[] = TICKET_KEY("PrintTypeProductTypeTicketKey");

constexpr std::size_t kUserNameUnits = 255;
constexpr std::size_t kJBAUserNameUnits = 32;
constexpr std::size_t kDocumentNameLimit = 64;
constexpr std::size_t kShortDocumentNameLimit = 12;

// Product types with document-name rules of their own.
constexpr std::int32_t kProduct02 = 2;
constexpr std::int32_t kProduct03 = 3;
constexpr std::int32_t kProduct05 = 5;

constexpr ValidateDataScale::Ranges kIdeographicSpace = {1, {{0x8140, 0x8140}}};

bool InRanges(std::int32_t value, const ValidateDataScale::Ranges& ranges) {
  for (std::int32_t i = 0; i < ranges.count; i++) {
    if (value >= ranges.bounds[i].first && value <= ranges.bounds[i].second) return true;
  }
  return false;
}

std::int32_t ByteAt(const char* text) {
  return static_cast<unsigned char>(*text);
}

// Two bytes, the terminator counting as the second one; 0 at the end of the text.
std::int32_t WordAt(const char* text) {
  return *text != '\0' ? ByteAt(text) << 8 | ByteAt(text + 1) : 0;
}

template <std::size_t Size>
void KeepUnits(char (&text)[Size], std::size_t units) {
  if (CountUTF16Units(text) > units) CopyBounded(text, FirstUTF16Units(text, units));
}

template <std::size_t Size>
void KeepBytes(char (&text)[Size], std::size_t bytes) {
  if (std::strlen(text) > bytes) CopyBounded(text, std::string_view(text, bytes));
}

void BlankUnlessValid(const ValidateDataScale& scale) {
  if (ValidateDada(PTStdDocumentName, scale) == 0) CopyBounded(PTStdDocumentName, "");
}

// The first bytes of the title as the job's name, if the device takes all of them.
void TakeJobName(std::size_t bytes, const ValidateDataScale& scale) {
  CopyBounded(PTStdDocumentName, std::string_view(StdDocumentName).substr(0, bytes));
  BlankUnlessValid(scale);
}

std::optional<std::int32_t> ProductType(char* args[]) {
  const JobOptions options(args[5]);
  std::int32_t type = 0;
  if (!GetTicketInteger(kPrintTypeProductType, options.count(), options.list(), &type,
                        sizeof type)) {
    return std::nullopt;
  }
  return type;
}

std::size_t LimitFor(std::int32_t productType) {
  return productType == kProduct02 ? kShortDocumentNameLimit : kDocumentNameLimit;
}

bool IsAcceptable(const char* name, const ValidateDataScale& scale) {
  return *name != '\0' && ValidateDada(name, scale) == 1 && IsAllSpace(name) == 0;
}

void NormaliseUserNameForUTF8() {
  KeepUnits(StdUserName, kUserNameUnits);
  if (!IsAcceptable(StdUserName, userNameValidateDataScaleForUTF8)) {
    CopyBounded(StdUserName, defaultUserName);
    CopyBounded(StdJBAUserName, defaultUserName);
  } else if (CountUTF16Units(StdUserName) > kJBAUserNameUnits) {
    CopyBounded(StdJBAUserName, FirstUTF16Units(StdUserName, kJBAUserNameUnits));
  }
}

}  // namespace

const ValidateDataScale userNameValidateDataScale = {{1, {{0x20, 0x7E}}}, {}};
const ValidateDataScale userNameValidateDataScaleForUTF8 = {{1, {{0x20, 0xFF}}},
                                                            {1, {{0x0020, 0xFFFF}}}};
const ValidateDataScale docuNameValidateDataScale = {{1, {{0x20, 0x7E}}}, {}};
const ValidateDataScale docuNameValidateDataScaleForProduct02 = {{2, {{0x20, 0x7E}, {0x00, 0x00}}},
                                                                 {}};
const ValidateDataScale docuNameValidateDataScaleForProduct03 = {{2, {{0x20, 0x7E}, {0x00, 0x00}}},
                                                                 {}};
const ValidateDataScale docuNameValidateDataScaleForProduct03UTF8 = {{1, {{0x20, 0xFF}}},
                                                                     {1, {{0x0020, 0x00FF}}}};

void ReadUserName(const char* user) {
  if (PrinterLanguageIsUTF8()) {
    ConvertUTF8ToEncodingForUTF8(user, StdUserName, kUserNameSizeForUTF8);
    CopyBounded(StdJBAUserName, kJBAUserNameSizeForUTF8, StdUserName);
  } else {
    ConvertUTF8ToEncoding(user, StdUserName, kNameSize);
    CopyBounded(StdJBAUserName, kJBAUserNameSize, StdUserName);
  }
}

void ReadDocumentName(char* args[]) {
  const char* title = args[3];
  if (std::strpbrk(title, "\r\n") != nullptr) return;
  if (PrinterLanguageIsUTF8()) {
    ConvertUTF8ToEncodingForUTF8(title, StdDocumentName, kNameSize);
    ConvertUTF8ToEncodingForUTF8(title, PTStdDocumentName, kNameSize);
    InvalidateStdDocumentNameForProductType(args);
    InvalidatePrintTypeDocumentNameForProductType(args);
  } else {
    ConvertUTF8ToEncoding(title, StdDocumentName, kNameSize);
    InvalidateStdDocumentNameForProductType(args);
  }
}

bool ISByteValid(const char* text, const ValidateDataScale& scale) {
  return InRanges(ByteAt(text), scale.bytes);
}

bool ISWordValid(const char* text, const ValidateDataScale::Ranges& wordPart) {
  return InRanges(WordAt(text), wordPart);
}

bool ISByteSpace(const char* text, const ValidateDataScale::Ranges& spaceScale) {
  return InRanges(ByteAt(text), spaceScale);
}

bool ISWordSpace(const char* text, const ValidateDataScale::Ranges& spaceScale) {
  return InRanges(WordAt(text), spaceScale);
}

int ValidateDada(const char* text, const ValidateDataScale& scale) {
  while (*text != '\0') {
    if (ISWordValid(text, scale.words)) {
      if (text[1] == '\0') return 1;  // the terminator was taken as the second byte
      text += 2;
    } else if (ISByteValid(text, scale)) {
      text += 1;
    } else {
      return 0;
    }
  }
  return 1;
}

int IsAllSpace(const char* text) {
  while (*text != '\0') {
    if (*text == ' ') {
      text += 1;
    } else if (ISWordSpace(text, kIdeographicSpace)) {
      text += 2;
    } else {
      return 0;
    }
  }
  return 1;
}

void InvalidateStdUserName() {
  if (PrinterLanguageIsUTF8()) return NormaliseUserNameForUTF8();
  KeepBytes(StdUserName, kUserNameUnits);
  // The accounting name keeps the refused name: only UTF-8 devices take the placeholder there.
  if (!IsAcceptable(StdUserName, userNameValidateDataScale)) {
    CopyBounded(StdUserName, defaultUserName);
  }
}

int InvalidateStdDocumentName() {
  const std::size_t length = std::strlen(StdDocumentName);
  KeepBytes(StdDocumentName, kDocumentNameLimit);
  return static_cast<int>(length);
}

void InvalidateStdDocumentNameForProductType(char* args[]) {
  const std::optional<std::int32_t> type = ProductType(args);
  if (PrinterLanguageIsUTF8()) {
    if (type) KeepUnits(StdDocumentName, LimitFor(*type));
    return;
  }
  if (type) KeepBytes(StdDocumentName, LimitFor(*type));
  if (type == kProduct03) {
    TakeJobName(kDocumentNameLimit, docuNameValidateDataScaleForProduct03);
  } else if (type == kProduct02) {
    TakeJobName(kShortDocumentNameLimit, docuNameValidateDataScaleForProduct02);
  } else {
    TakeJobName(type ? kDocumentNameLimit : 0, docuNameValidateDataScale);
  }
}

void InvalidatePrintTypeDocumentNameForProductType(char* args[]) {
  const std::optional<std::int32_t> type = ProductType(args);
  if (PrinterLanguageIsUTF8()) {
    if (type) KeepUnits(PTStdDocumentName, LimitFor(*type));
    const bool takesAccents = type && (*type == kProduct05 || *type == kProduct03);
    return BlankUnlessValid(takesAccents ? docuNameValidateDataScaleForProduct03UTF8
                                         : docuNameValidateDataScale);
  }
  if (type) KeepBytes(PTStdDocumentName, LimitFor(*type));
  if (type == kProduct03) return BlankUnlessValid(docuNameValidateDataScaleForProduct03);
  if (type == kProduct02) return BlankUnlessValid(docuNameValidateDataScaleForProduct02);
  BlankUnlessValid(docuNameValidateDataScale);
}
