// The print type tables, expanded from their .def files, and the module's functions.

#include "modules/printtype/PrintType.h"

#include "FilterFrame/Source/JobState.h"
#include "FilterFrame/Source/UtilityFunctionFilter/PPDAccess.h"

PrintTypeOption xpjlOptionPrintType;

namespace {

// What the print dialog's values mean.
constexpr std::int32_t OptionSecurePrintNone = 1;
constexpr std::int32_t OptionSecurePrint = 2;
constexpr std::int32_t OptionSamplePrint = 3;
constexpr std::int32_t OptionDelayPrint = 4;
constexpr std::int32_t OptionMBN = 5;
constexpr std::int32_t OptionDocumentNameAutoRetrieve = 1;
constexpr std::int32_t OptionDocumentNameEnterName = 2;

constexpr std::int32_t PRINTTYPEUSERNAMEDMAXLEN = 97;

// Devices with a UTF-8 language and this choice of settings know neither mailboxes nor delayed
// print.
bool DeviceTakesPartTable() {
  return PrinterLanguageIsUTF8() &&
         CheckIfPPDKeywordSupported(JobPPD(), "ZLVXPrintTypeSettings", "Default04") == 1;
}

bool DeviceTakesWholeTable() {
  return !DeviceTakesPartTable();
}

}  // namespace

#define TICKET(suffix, field, getter) Ticket<getter>(TICKET_KEY(suffix), xpjlOptionPrintType.field),
#define TICKETS "modules/printtype/PrintTypeTickets.def"

#define UserText GetTicketStringConvertedToPrtLang
constexpr TicketData PrintTypeticketData[] = {
#include TICKETS
};
#undef UserText

#define UserText GetTicketStringConvertedToPrtLangForUTF8
constexpr TicketData PrintTypeticketDataForUTF8[] = {
#include TICKETS
};
#undef UserText

#define ROWS_FILE "modules/printtype/PrintTypeRows.def"
#define ROWS_TABLE PrintTypeFmtTable
#define ROWS_COUNT PrintTypeFmtTableNum
#define ROWS_LIST PrintTypeRows
#define ROWS_USED DeviceTakesWholeTable
#define ROWS_BIND_VALUES PrintTypeInitializeCmdParaTable
#define ROWS_BIND_TESTS PrintTypeInitialzieComparationTable
#include "engine/CommandRows.h"

#define ROWS_FILE "modules/printtype/PrintTypePartRows.def"
#define ROWS_TABLE PrintTypeFmtPartTable
#define ROWS_COUNT PrintTypeFmtPartTableNum
#define ROWS_LIST PrintTypePartRows
#define ROWS_USED DeviceTakesPartTable
#include "engine/CommandRows.h"

void PrintTypeGetTicketFromPDE(char* args[]) {
  GetTicketFromArray(args,
                     PrinterLanguageIsUTF8() ? PrintTypeticketDataForUTF8 : PrintTypeticketData,
                     PrintTypeTicketDataNum);
}

void PrintTypeInializeDescriptionTableFromFilter() {
  PrintTypeInitializeCmdParaTable();
  PrintTypeInitialzieComparationTable();
}

void PrintTypeOutputXPJLCommandFromFilter(char* args[]) {
  if (DeviceTakesPartTable()) {
    OutputXPJLCommandFromArray(args, PrintTypeFmtPartTable, PrintTypeFmtPartTableNum);
  } else {
    OutputXPJLCommandFromArray(args, PrintTypeFmtTable, PrintTypeFmtTableNum);
  }
}
