// Covers, inserted sheets and page exceptions: their options as the filter's numbered tickets.

#pragma once

#include <string_view>
#include <vector>

#include "queue/Choices.h"
#include "queue/Complaints.h"
#include "queue/TicketList.h"
#include "queue/WatermarkTickets.h"

// Adds the tickets of each kind that the options ask for. `page` is the document's page.
void AddSpecialPageTickets(const Choices& choices, ppd_file_t* ppd, PageSize page,
                           TicketList& tickets, Complaints& complaints);

// One page, or a range of pages.
struct PageRange {
  long first;
  long last;
};

// The pages that "3,7,12" or "1,5-8" names, in its order. Empty when it is no such list, names a
// page 0 or above 99999, a range that runs backwards, or more than kMostPageRanges.
inline constexpr std::size_t kMostPageRanges = 100;
std::vector<PageRange> PageRanges(std::string_view text);
