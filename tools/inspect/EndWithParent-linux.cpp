// The kernel sends the signal.

#include <sys/prctl.h>
#include <unistd.h>

#include <csignal>

#include "tools/inspect/EndWithParent.h"

void EndWithParent(pid_t parent) {
  prctl(PR_SET_PDEATHSIG, SIGKILL);
  if (getppid() != parent) _exit(127);  // it has ended before
}
