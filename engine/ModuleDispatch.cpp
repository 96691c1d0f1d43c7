// The modules, in the order in which they are called.

#include "engine/ModuleDispatch.h"

#include "modules/accounting/Accounting.h"
#include "modules/printtype/PrintType.h"

int GetTicketFromPDE(char* args[]) {
  PrintTypeGetTicketFromPDE(args);
  JBAGetTicketFromPDE(args);
  return 1;
}

void InializeDescriptionTableFromFilter() {
  PrintTypeInializeDescriptionTableFromFilter();
  JBAInializeDescriptionTableFromFilter();
}

void OutputXPJLCommandFromFilter(char* args[]) {
  PrintTypeOutputXPJLCommandFromFilter(args);
  JBAOutputXPJLCommandFromFilter(args);
}

void OutputPSCommandFromFilter(int /*hookCode*/, int /*context*/, std::FILE* /*stream*/) {}
