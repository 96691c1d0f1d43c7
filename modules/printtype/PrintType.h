// Print type: print at once, hold with a password, print a sample first, print later, or store in a
// mailbox; and the name of the job in the device's job list.

#pragma once

#include <cstdint>

#include "engine/CommandTable.h"
#include "engine/TicketStore.h"

// The print type record, filled from the job options. Texts hold what the device allows and a
// terminator, in the printer's language encoding; passwords are sealed for the device, in Base64.
struct PrintTypeOption {
  std::int32_t printType;  // 1 normal, 2 secure, 3 sample, 4 delayed, 5 mailbox; -1 absent
  char userName[97];       // for secure and sample print
  char password[2048];
  std::int32_t documentNameType;  // 1 the job's title, 2 the entered name
  char documentName[193];
  char delayTime[17];  // as the dialog gives it
  char mailboxNumber[5];
  char mailboxPassword[2048];
};
extern PrintTypeOption xpjlOptionPrintType;

// The ticket tables, with ISO Latin-1 and with UTF-8 user texts.
inline constexpr std::int32_t PrintTypeTicketDataNum = 8;
extern const TicketData PrintTypeticketData[PrintTypeTicketDataNum];
extern const TicketData PrintTypeticketDataForUTF8[PrintTypeTicketDataNum];

// All lines (twelve, and the one for an empty mailbox number), and those of devices that know
// neither mailboxes nor delayed print.
inline constexpr std::int32_t PrintTypeFmtTableNum = 12 + 1;
inline constexpr std::int32_t PrintTypeFmtPartTableNum = 7;
extern const PrtFmt PrintTypeFmtTable[PrintTypeFmtTableNum];
extern const PrtFmt PrintTypeFmtPartTable[PrintTypeFmtPartTableNum];
extern const RowTable PrintTypeRows;
extern const RowTable PrintTypePartRows;

// Fills the record from the filter's argument vector.
void PrintTypeGetTicketFromPDE(char* args[]);

// Binds values and conditions to the rows.
void PrintTypeInializeDescriptionTableFromFilter();
void PrintTypeInitializeCmdParaTable();
void PrintTypeInitialzieComparationTable();

// Writes the lines of the table that the PPD calls for.
void PrintTypeOutputXPJLCommandFromFilter(char* args[]);
