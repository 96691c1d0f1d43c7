// Naming, opening and closing of the job copy.

#include "FilterFrame/Source/JobCopy.h"

#include <fcntl.h>
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
constexpr std::size_t kPathSize = 1035;

void FormatTimestamp(char* text, std::size_t size) {
  const std::time_t now = std::time(nullptr);
  std::tm local = {};
  CopyBounded(text, size, "");
  if (localtime_r(&now, &local) != nullptr) std::strftime(text, size, "%Y%m%d%H%M%S", &local);
}

void FormatJobCopyPath(std::int32_t systemVersion, const char* timestamp, char (&path)[kPathSize]) {
  if (systemVersion > kLastSystemWithPrivateTmp) {
    const char* folder = std::getenv("TMPDIR");
    std::snprintf(path, sizeof path, "%s/ff%s.job", folder != nullptr ? folder : "/tmp", timestamp);
  } else {
    std::snprintf(path, sizeof path, JobFileNamePath, timestamp);
  }
}

// Opens the copy, empty. Others may write to the folder: what is there under the copy's name is
// used only when it is a file with no other name, and nothing that would have to be waited for.
std::FILE* OpenOwnFile(const char* path) {
  constexpr mode_t kReadWriteAll = 0666;  // less what the umask takes
  const int fd =
      open(path, O_WRONLY | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC, kReadWriteAll);
  if (fd < 0) return nullptr;
  struct stat status = {};
  const bool own = fstat(fd, &status) == 0 && S_ISREG(status.st_mode) && status.st_nlink == 1;
  std::FILE* file = own && ftruncate(fd, 0) == 0 ? fdopen(fd, "wb") : nullptr;
  if (file == nullptr) close(fd);
  return file;
}

}  // namespace

void OpenJobCopy() {
  gJobFilefp = nullptr;
  if (access(FlagPath, F_OK) != 0) return;
  std::int32_t systemVersion = 0;
  Gestalt_ALT(kSystemVersion, &systemVersion);
  char timestamp[64];
  FormatTimestamp(timestamp, sizeof timestamp);
  char path[kPathSize];
  FormatJobCopyPath(systemVersion, timestamp, path);
  gJobFilefp = OpenOwnFile(path);
}

void CloseJobCopy() {
  if (gJobFilefp == nullptr) return;
  std::fflush(gJobFilefp);
  fchmod(fileno(gJobFilefp), kJobCopyMode);
  std::fclose(gJobFilefp);
  gJobFilefp = nullptr;
}
