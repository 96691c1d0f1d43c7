// The modules, in the order in which they are called.

#include "engine/ModuleDispatch.h"

#include "modules/accounting/Accounting.h"
#include "modules/comment/Comment.h"
#include "modules/features/Features.h"
#include "modules/perfectbind/PerfectBind.h"
#include "modules/printtype/PrintType.h"
#include "modules/specialpages/SpecialPages.h"
#include "modules/watermark/Watermark.h"

int GetTicketFromPDE(char* args[]) {
  PrintTypeGetTicketFromPDE(args);
  JBAGetTicketFromPDE(args);
  FeaturesGetTicketFromPDE(args);
  WatermarkGetTicketFromPDE(args);
  PBindGetTicketFromPDE(args);
  CommentGetTicketFromPDE(args);
  SpecialPageGetTicketFromPDE(args);
  return 1;
}

void InializeDescriptionTableFromFilter() {
  PrintTypeInializeDescriptionTableFromFilter();
  JBAInializeDescriptionTableFromFilter();
  FeaturesInializeDescriptionTableFromFilter();
  SpecialPageInializeDescriptionTable();
}

void OutputXPJLCommandFromFilter(char* args[]) {
  PrintTypeOutputXPJLCommandFromFilter(args);
  JBAOutputXPJLCommandFromFilter(args);
  FeaturesOutputXPJLCommandFromFilter(args);
}

void OutputPSCommandFromFilter(int hookCode, int context, std::FILE* stream) {
  WatermarkOutputPSCommandFromFilter(hookCode, context, stream);
  FeaturesOutputPSCommandFromFilter(hookCode, stream);
}
