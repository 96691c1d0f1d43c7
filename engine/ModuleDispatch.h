// The four fan-outs through which the filter frame reaches every feature module. Each calls the
// modules in the system's order; a module joins by adding its function to the lists in the source.

#pragma once

#include <cstdio>

// Ticket intake of every module, from the filter's argument vector. Returns 1.
int GetTicketFromPDE(char* args[]);

// Binds every module's parameter descriptions and conditions. Called once, before any output.
void InializeDescriptionTableFromFilter();

// The modules' PJL lines that come from row tables, to standard output.
void OutputXPJLCommandFromFilter(char* args[]);

// A boundary in the PostScript: the modules may write PostScript of their own to `stream`.
// `hookCode` says which boundary, `context` is the running page number.
void OutputPSCommandFromFilter(int hookCode, int context, std::FILE* stream);
