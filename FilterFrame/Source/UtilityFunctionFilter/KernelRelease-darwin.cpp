// The kernel release on Darwin: the kernel's own.

#include <sys/sysctl.h>
#include <sys/types.h>

#include "FilterFrame/Source/UtilityFunctionFilter/SystemVersion.h"

bool ReadKernelRelease(char* release, std::size_t size) {
  int name[] = {CTL_KERN, KERN_OSRELEASE};
  return sysctl(name, 2, release, &size, nullptr, 0) == 0;
}
