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

constexpr const RowTable* kPrintTypeRows[] = {&PrintTypeRows, &PrintTypePartRows};
constexpr const RowTable* kJBARows[] = {&JBARowsAdmin, &JBARowsCommon};
constexpr const RowTable* kFeaturesRows[] = {&FeaturesRows};

constexpr Module kModules[] = {
    {.name = "printtype",
     .getTickets = PrintTypeGetTicketFromPDE,
     .bindRows = PrintTypeInializeDescriptionTableFromFilter,
     .outputHeader = PrintTypeOutputXPJLCommandFromFilter,
     .tickets = kPrintTypeTickets,
     .rows = kPrintTypeRows},
    {.name = "accounting",
     .getTickets = JBAGetTicketFromPDE,
     .bindRows = JBAInializeDescriptionTableFromFilter,
     .outputHeader = JBAOutputXPJLCommandFromFilter,
     .tickets = kJBATickets,
     .rows = kJBARows},
    {.name = "features",
     .getTickets = FeaturesGetTicketFromPDE,
     .bindRows = FeaturesInializeDescriptionTableFromFilter,
     .outputHeader = FeaturesOutputXPJLCommandFromFilter,
     .tickets = kFeaturesTickets,
     .rows = kFeaturesRows},
    {.name = "watermark", .getTickets = WatermarkGetTicketFromPDE, .tickets = kWatermarkTickets},
    {.name = "perfectbind", .getTickets = PBindGetTicketFromPDE, .tickets = kPBindTickets},
    {.name = "comment", .getTickets = CommentGetTicketFromPDE, .tickets = kCommentTickets},
    {.name = "specialpages",
     .getTickets = SpecialPageGetTicketFromPDE,
     .bindRows = SpecialPageInializeDescriptionTable,
     .tickets = kSpecialPageTickets,
     .numberedTickets = kSpecialPageNumberedKeys},
    {.name = "booklet"},  // these two write what the summary's record holds
    {.name = "quality"},
};

}  // namespace

std::span<const Module> Modules() {
  return kModules;
}

std::span<const TicketData> PrinterTable(const TicketTable& table) {
  return PrinterLanguageIsUTF8() ? table.utf8 : table.latin1;
}

int GetTicketFromPDE(char* args[]) {
  for (const Module& module : kModules) {
    if (module.getTickets != nullptr) module.getTickets(args);
  }
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
