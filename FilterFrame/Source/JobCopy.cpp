// Naming, opening and closing of the job copy.

#include "FilterFrame/Source/JobCopy.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <ctime>

#include "FilterFrame/Source/JobState.h"
#include "FilterFrame/Source/UtilityFunctionFilter/SystemVersion.h"
#include "text/BoundedText.h"

namespace {

constexpr std::int32_t kLastSystemWithPrivateTmp = 0x109F;
constexpr mode_t kJobCopyMode = 0676;  // what the collecting tools of the device's maker expect

char jobCopyPath[1035];

void FormatTimestamp(char* text, std::size_t size) {
  const std::time_t now = std::time(nullptr);
  std::tm local = {};
  CopyBounded(text, size, "");
  if (localtime_r(&now, &local) != nullptr) std::strftime(text, size, "%Y%m%d%H%M%S", &local);
}

void FormatJobCopyPath(std::int32_t systemVersion, const char* timestamp) {
  if (systemVersion > kLastSystemWithPrivateTmp) {
    const char* folder = std::getenv("TMPDIR");
    std::snprintf(jobCopyPath, sizeof jobCopyPath, "%s/ff%s.job",
                  folder != nullptr ? folder : "/tmp", timestamp);
  } else {
    std::snprintf(jobCopyPath, sizeof jobCopyPath, JobFileNamePath, timestamp);
  }
}

}  // namespace

void OpenJobCopy() {
  gJobFilefp = nullptr;
  if (access(FlagPath, F_OK) != 0) return;
  std::int32_t systemVersion = 0;
  Gestalt_ALT(kSystemVersion, &systemVersion);
  char timestamp[64];
  FormatTimestamp(timestamp, sizeof timestamp);
  FormatJobCopyPath(systemVersion, timestamp);
  gJobFilefp = std::fopen(jobCopyPath, "wb");
}

void CloseJobCopy() {
  if (gJobFilefp == nullptr) return;
  std::fclose(gJobFilefp);
  gJobFilefp = nullptr;
  chmod(jobCopyPath, kJobCopyMode);
}
