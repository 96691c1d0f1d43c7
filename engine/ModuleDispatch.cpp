// The modules, in the order in which they are called.

#include "engine/ModuleDispatch.h"

#include "FilterFrame/Source/UtilityFunctionFilter/PPDAccess.h"
#include "modules/accounting/Accounting.h"
#include "modules/comment/Comment.h"
#include "modules/features/Features.h"
#include "modules/perfectbind/PerfectBind.h"
#include "modules/printtype/PrintType.h"
#include "modules/specialpages/SpecialPages.h"
#include "modules/watermark/Watermark.h"

namespace {

constexpr TicketTable kPrintTypeTickets[] = {{PrintTypeticketData, PrintTypeticketDataForUTF8}};
constexpr TicketTable kJBATickets[] = {{JBAticketDataCommon, JBAticketDataCommonForUTF8},
                                       {JBAticketDataAdmin, JBAticketDataAdminForUTF8}};
constexpr TicketTable kFeaturesTickets[] = {{FeaturesticketData, FeaturesticketData}};
constexpr TicketTable kWatermarkTickets[] = {{WatermarkticketData, WatermarkticketData}};
constexpr TicketTable kPBindTickets[] = {{PBindticketData, PBindticketData}};
constexpr TicketTable kCommentTickets[] = {{CommentticketData, CommentticketData}};
constexpr TicketTable kSpecialPageTickets[] = {{SpecialPageTicketData, SpecialPageTicketData}};

constexpr Module kModules[] = {
    {"printtype",
     PrintTypeGetTicketFromPDE,
     PrintTypeInializeDescriptionTableFromFilter,
     PrintTypeOutputXPJLCommandFromFilter,
     kPrintTypeTickets,
     {}},
    {"accounting",
     JBAGetTicketFromPDE,
     JBAInializeDescriptionTableFromFilter,
     JBAOutputXPJLCommandFromFilter,
     kJBATickets,
     {}},
    {"features",
     FeaturesGetTicketFromPDE,
     FeaturesInializeDescriptionTableFromFilter,
     FeaturesOutputXPJLCommandFromFilter,
     kFeaturesTickets,
     {}},
    {"watermark", WatermarkGetTicketFromPDE, nullptr, nullptr, kWatermarkTickets, {}},
    {"perfectbind", PBindGetTicketFromPDE, nullptr, nullptr, kPBindTickets, {}},
    {"comment", CommentGetTicketFromPDE, nullptr, nullptr, kCommentTickets, {}},
    {"specialpages", SpecialPageGetTicketFromPDE, SpecialPageInializeDescriptionTable, nullptr,
     kSpecialPageTickets, kSpecialPageNumberedKeys},
};

}  // namespace

std::span<const Module> Modules() {
  return kModules;
}

std::span<const TicketData> PrinterTable(const TicketTable& table) {
  return PrinterLanguageIsUTF8() ? table.utf8 : table.latin1;
}

int GetTicketFromPDE(char* args[]) {
  for (const Module& module : kModules) module.getTickets(args);
  return 1;
}

void InializeDescriptionTableFromFilter() {
  for (const Module& module : kModules) {
    if (module.bindRows != nullptr) module.bindRows();
  }
}

void OutputXPJLCommandFromFilter(char* args[]) {
  for (const Module& module : kModules) {
    if (module.outputHeader != nullptr) module.outputHeader(args);
  }
}

// The watermark comes ahead of the finishing features at every boundary.
void OutputPSCommandFromFilter(int hookCode, int context, std::FILE* stream) {
  WatermarkOutputPSCommandFromFilter(hookCode, context, stream);
  FeaturesOutputPSCommandFromFilter(hookCode, stream);
}
