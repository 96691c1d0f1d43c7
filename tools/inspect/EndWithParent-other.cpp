// Without help of the kernel: closed pipes and the limit of processor time end the child.

#include "tools/inspect/EndWithParent.h"

void EndWithParent(pid_t) {}
