// The filter's rows as they stand after a header has been written: which of their tests hold, and
// what each test wants, in words.

#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "engine/CommandTable.h"

struct TestState {
  std::string source;   // as the row's file has it
  std::string words;    // a sentence's end: "needs ZLVPrintUser"
  const void* operand;  // what it looks at
  bool holds;
};

struct RowState {
  const RowTable* table;
  const PrtFmt* row;
  std::string name;
  bool used;  // the job's printer gets the row's table
  std::vector<TestState> tests;

  // Whether the row's line is written, but for an empty value that it may end at.
  bool holds() const;
};

// The rows whose lines have this name, such as "JOEP"; of every table.
std::vector<RowState> RowsOfCode(std::string_view code);

// The rows whose values or tests look at the field that the ticket `key` fills.
std::vector<RowState> RowsUsing(std::string_view key);

// Every row's table, name and the name of its line; the latter is empty for the exit sequence.
struct RowName {
  const RowTable* table;
  std::string name;
  std::string code;
};
std::vector<RowName> RowNames();

// The key of the ticket that fills a field; empty when none does.
std::string TicketKeyOfField(const void* field);
