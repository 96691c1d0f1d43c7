// Tickets that belong together, and values that no header line can hold. What does not fit is left
// out whole; where it belongs to a hold or an account the job fails instead.

#pragma once

#include <string>
#include <string_view>

#include "queue/Complaints.h"
#include "queue/TicketList.h"
#include "queue/TicketRows.h"

// Whether the condition holds for the tickets.
bool Holds(const Condition& condition, const TicketList& tickets);

// The option and choice by which a user makes the condition hold, as messages name them.
std::string WhatSets(const Condition& condition);

// The option by which a user gives the ticket, as messages name it.
std::string WhatGives(std::string_view ticket);

// Takes out what has another form than it should, what holds quotes or control characters, what is
// longer than its field, and what lacks something.
void CheckTickets(TicketList& tickets, Complaints& complaints);

// Takes a ticket out, and says why: `why` follows on "it".
void LeaveOut(TicketList& tickets, const std::string& key, const std::string& why,
              Complaints& complaints);
