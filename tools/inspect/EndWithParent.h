// Ties a child process to the life of its parent.

#pragma once

#include <sys/types.h>

// Called in the child: it is killed when `parent` ends, also when that is killed itself. Where the
// system cannot do that nothing happens.
void EndWithParent(pid_t parent);
