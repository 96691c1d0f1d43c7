// Host name, address choice and address encoding.

#include "FilterFrame/Source/UtilityFunctionFilter/HostIdentity.h"

#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>

#include "FilterFrame/Source/UtilityFunctionFilter/JobOptions.h"
#include "FilterFrame/Source/UtilityFunctionFilter/PPDAccess.h"
#include "text/BoundedText.h"
#include "text/Encoding.h"

char* outString = nullptr;
int outStringLen = 0;
bool result = false;

namespace {

constexpr char _IPv4_LocalHost_sign_[] = "127.0.0.1";
constexpr char _IPv6_LocalHost_sign_[] = "fe80::1";

constexpr std::size_t kHostNameSize = 97;
constexpr std::size_t kAddressSize = 46;
constexpr std::size_t kHostNameUnits = 32;
constexpr std::size_t kExpandedIPv6Room = 43;
constexpr std::size_t kGroupLength = 4;

void Require(bool condition, const char* function, const char* text) {
  if (condition) return;
  std::fprintf(stderr,
               "Assertion failed: (%s), function %s, file FilterFrame/Source/"
               "UtilityFunctionFilter.\n",
               text, function);
  std::abort();
}

// UTF-8 printers show so many characters of a host name; a shorter one stays as it is.
std::string_view KeepHostNameUnits(std::string_view name) {
  return CountUTF16Units(name) > kHostNameUnits ? FirstUTF16Units(name, kHostNameUnits) : name;
}

void SetOutString(const char* address) {
  CopyBounded(outString, static_cast<std::size_t>(outStringLen), address);
}

bool IsASCII(std::string_view text) {
  return std::all_of(text.begin(), text.end(), [](char c) { return (c & 0x80) == 0; });
}

std::string_view TakeUpTo(std::string_view& text, char separator) {
  const std::string_view part = text.substr(0, text.find(separator));
  text.remove_prefix(std::min(text.size(), part.size() + 1));
  return part;
}

std::string EncodeIPv4(std::string_view address) {
  std::string encoded = "I";
  for (int i = 0; i < 4; i++) {
    const std::string octet(TakeUpTo(address, '.'));
    const int value = DecimalInteger(octet.c_str());
    if (octet.size() > 3 || value >= 256) return {};
    char digits[3];
    std::snprintf(digits, sizeof digits, "%02X", static_cast<unsigned char>(value));
    encoded += digits;
  }
  return encoded;
}

// Every group with four digits, an empty one as zeros.
std::string PadIPv6Groups(std::string_view address) {
  std::string padded;
  std::size_t groups = 1;
  for (char c : address) groups += c == ':';
  for (; groups > 0; groups--) {
    const std::string_view group = TakeUpTo(address, ':');
    if (group.size() < kGroupLength) padded.append(kGroupLength - group.size(), '0');
    padded += group;
    if (groups > 1) padded += ':';
  }
  return padded;
}

// The receiving side is built for what this gives, also where it is no full address: the first
// group of zeros that is not the last group becomes as many groups as there is room for.
std::string EncodeIPv6(std::string_view address) {
  std::string expanded = PadIPv6Groups(address.substr(0, address.find('%')));
  std::string fill;
  if (expanded.size() + kGroupLength <= kExpandedIPv6Room) {
    for (std::size_t n = (kExpandedIPv6Room - expanded.size()) / kGroupLength; n > 0; n--) {
      fill += n > 1 ? "0000:" : "0000";
    }
  }
  const std::size_t zeros = expanded.find("0000");
  if (zeros == std::string::npos || zeros + kGroupLength >= expanded.size()) return "6";
  expanded.replace(zeros, kGroupLength, fill);
  std::erase(expanded, ':');
  return "6" + expanded;
}

}  // namespace

void getHostName(char* dst) {
  char name[256] = {};
  CopyBounded(dst, kHostNameSize, "");
  if (gethostname(name, sizeof name - 1) != 0) return;
  std::string_view kept = name;
  if (PrinterLanguageIsUTF8()) kept = KeepHostNameUnits(kept);
  CopyBounded(dst, kHostNameSize, kept);
}

void GetClientIPAddress(char* hostDst, char* addrDst) {
  char address[kAddressSize];
  getHostName(hostDst);
  CopyBounded(addrDst, kAddressSize, "");
  if (*hostDst == '\0') return;
  getHostAddress(hostDst, address, sizeof address);
  EncodeHostAddress(address, addrDst);
}

bool getHostAddress(const char* name, char* out, int outLen) {
  result = false;
  if (name == nullptr || out == nullptr || outLen < 0) return false;
  Require(IsASCII(name), "getHostAddress", "inputString != NULL");
  outString = out;
  outStringLen = outLen;
  SetOutString("");
  MyResolveNameToAddress(name);
  outString = nullptr;
  outStringLen = 0;
  return result;
}

void EncodeHostAddress(const char* address, char* encoded) {
  std::string text;
  if (std::strchr(address, '.') != nullptr) {
    text = EncodeIPv4(address);
  } else if (std::strchr(address, ':') != nullptr) {
    text = EncodeIPv6(address);
  }
  CopyBounded(encoded, kAddressSize, text);
}

int MyResolveNameToAddress(const char* name) {
  Require(name != nullptr, "MyResolveNameToAddress", "hostName != NULL");
  addrinfo hints = {};
  hints.ai_socktype = SOCK_STREAM;  // each address once
  HostResolution host = {name, nullptr};
  const int error = getaddrinfo(name, nullptr, &hints, &host.addresses);
  MyCFHostClientCallBack(&host, HostInfoType::kAddresses, error, name);
  return 1;
}

void MyCFHostClientCallBack(HostResolution* host, HostInfoType typeInfo, int error,
                            const char* info) {
  if (typeInfo == HostInfoType::kAddresses && error == 0) {
    MyPrintAddressArray(host->addresses, info);
  }
  MyCFHostCleanup(host);
}

void MyPrintAddressArray(const addrinfo* addresses, const char* hostName) {
  Require(addresses != nullptr, "MyPrintAddressArray", "addresses != NULL");
  Require(hostName != nullptr, "MyPrintAddressArray", "hostName != NULL");
  for (const addrinfo* entry = addresses; entry != nullptr; entry = entry->ai_next) {
    Require(entry->ai_addr != nullptr, "MyPrintAddressArray", "addr != NULL");
    char text[kAddressSize] = {};
    const bool formatted = getnameinfo(entry->ai_addr, entry->ai_addrlen, text, sizeof text,
                                       nullptr, 0, NI_NUMERICHOST) == 0;
    const bool isIPv4 = std::strchr(text, '.') != nullptr;
    if (formatted && isIPv4 && std::strcmp(text, _IPv4_LocalHost_sign_) != 0) {
      SetOutString(text);
      result = true;
      return;
    }
    if (formatted && std::strchr(text, ':') != nullptr &&
        std::strstr(text, _IPv6_LocalHost_sign_) == nullptr) {
      SetOutString(text);
    }
    result = formatted;  // the last address examined decides, even one that was passed over
  }
}

void MyCFHostCleanup(HostResolution* host) {
  Require(host != nullptr, "MyCFHostCleanup", "host != NULL");
  if (host->addresses != nullptr) freeaddrinfo(host->addresses);
  host->addresses = nullptr;
}
