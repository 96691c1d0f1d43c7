// The kernel release where the kernel is not Darwin and numbers its releases differently: the
// newest Darwin release that the version arithmetic can express, since page accounting and the job
// copy in TMPDIR work here as they do there.

#include "FilterFrame/Source/UtilityFunctionFilter/SystemVersion.h"
#include "text/BoundedText.h"

bool ReadKernelRelease(char* release, std::size_t size) {
  CopyBounded(release, size, "19.6.0");
  return true;
}
