// The modules, in the order in which they are called.

#include "engine/ModuleDispatch.h"

int GetTicketFromPDE(char* /*args*/[]) { return 1; }

void InializeDescriptionTableFromFilter() {}

void OutputXPJLCommandFromFilter(char* /*args*/[]) {}

void OutputPSCommandFromFilter(int /*hookCode*/, int /*context*/, std::FILE* /*stream*/) {}
