// Where the modules are registered, and the four fan-outs through which the filter frame reaches
// them. Whoever needs a list of modules, tickets or rows derives it from Modules().

#pragma once

#include <cstdio>
#include <span>

#include "engine/CommandTable.h"
#include "engine/TicketStore.h"

// A ticket table in its two forms; one without user text has the same rows in both.
struct TicketTable {
  std::span<const TicketData> latin1;
  std::span<const TicketData> utf8;
};

struct Module {
  const char* name;                              // of its folder in modules/
  void (*getTickets)(char* args[]) = nullptr;    // ticket intake
  void (*bindRows)() = nullptr;                  // at start-up
  void (*outputHeader)(char* args[]) = nullptr;  // null: its lines have a place in JobHeader.cpp
  std::span<const TicketTable> tickets = {};     // what it reads
  std::span<const char* const> numberedTickets = {};  // prefixes of keys that end in 0, 1, 2 ...
  std::span<const RowTable* const> rows = {};         // what its lines are made of
};

// The table's form in the language of the job's printer.
std::span<const TicketData> PrinterTable(const TicketTable& table);

// Every module, in the order of the ticket intake.
std::span<const Module> Modules();

// Ticket intake of every module, from the filter's argument vector. Returns 1.
int GetTicketFromPDE(char* args[]);

// Binds every module's parameter descriptions and conditions. Called once, before any output.
void InializeDescriptionTableFromFilter();

// The modules' PJL lines that come from row tables, to standard output.
void OutputXPJLCommandFromFilter(char* args[]);

// A boundary in the PostScript: the modules may write PostScript of their own to `stream`.
// `hookCode` says which boundary, `context` is the running page number.
void OutputPSCommandFromFilter(int hookCode, int context, std::FILE* stream);
