// The last look before a job is printed: at the header that the filter would write.

#pragma once

#include <string>
#include <string_view>

#include "queue/Complaints.h"
#include "queue/TicketList.h"

// Takes out what would break a line of the header for `args`, the filter's argument vector without
// its options. Fails the job where the header does not hold it as it should, and where a password
// is not sealed. `collate` is the word for the copies.
void ProveHeader(char* args[], TicketList& tickets, std::string_view collate,
                 Complaints& complaints);

// The header that the filter writes for `args` with these options; nothing is printed. The options
// are wiped.
std::string HeaderFor(char* args[], std::string options);
