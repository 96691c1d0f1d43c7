// The version arithmetic, and the value computed once per process.

#include "FilterFrame/Source/UtilityFunctionFilter/SystemVersion.h"

#include <cstdio>
#include <cstdlib>

namespace {

constexpr std::int32_t kVersionWithoutRelease = 0x1000;

std::int32_t ThisSystemVersion() {
  static std::int32_t version = -1;  // not yet computed
  if (version == -1) {
    char release[16] = {};
    version = ReadKernelRelease(release, sizeof release) ? SystemVersionFromKernelRelease(release)
                                                         : kVersionWithoutRelease;
  }
  return version;
}

}  // namespace

std::int32_t SystemVersionFromKernelRelease(const char* release) {
  std::int32_t version = kVersionWithoutRelease;
  char* end = nullptr;
  const long major = std::strtol(release, &end, 10);
  if (major > 0) version += static_cast<std::int32_t>((major % 16 * 16 + 192) & 255);
  const long minor = *end != '\0' ? std::strtol(end + 1, nullptr, 10) : 0;
  if (minor > 0) version += static_cast<std::int32_t>(minor & 15);
  return version;
}

std::int16_t Gestalt_ALT(std::uint32_t selector, std::int32_t* out) {
  const std::int32_t version = ThisSystemVersion();
  switch (selector) {
    case kSystemVersion:
      *out = version;
      return 0;
    case kSystemVersionMajor:
      *out = ((version >> 12) & 15) * 10 + ((version >> 8) & 15);
      return 0;
    case kSystemVersionMinor:
      *out = (version >> 4) & 15;
      return 0;
    case kSystemVersionBugFix:
      *out = version & 15;
      return 0;
    default:
      std::fprintf(stderr, "Gestalt_ALT : selector '%x' not supported.\n", selector);
      return -1;
  }
}
