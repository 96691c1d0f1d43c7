// The accounting tables, expanded from their .def files, and the module's functions.

#include "modules/accounting/Accounting.h"

#include "FilterFrame/Source/JobState.h"
#include "FilterFrame/Source/UtilityFunctionFilter/PPDAccess.h"

JBAOption xpjlOptionJBA;

namespace {

// What the print dialog's values mean.
constexpr std::int32_t JBAModeListUser = 2;
constexpr std::int32_t JBAModeListAdmin = 1;
constexpr std::int32_t OptionUserInputTypeSelected = 1;
constexpr std::int32_t OptionUserInputTypeSelectedAdmin = 1;
constexpr std::int32_t OptionComInUserTypeUseLogin = 1;
constexpr std::int32_t OptionComInUserTypeUseLoginAdmin = 1;
constexpr std::int32_t OptionComInUserTypeEnterName = 2;
constexpr std::int32_t OptionComInUserTypeEnterNameAdmin = 2;
constexpr std::int32_t JBAInfoListNotExist = 0;
constexpr std::int32_t JBAInfoListUserAccntSelect = 1;
constexpr std::int32_t JBAInfoListBillingSelect = 2;
constexpr std::int32_t JBAInfoListAllSelect = 3;
constexpr std::int32_t Case_8 = 8;
constexpr std::int32_t JBAUserNameNotExist = 1;

}  // namespace

#define TICKET(suffix, field, getter) Ticket<getter>(TICKET_KEY(suffix), xpjlOptionJBA.field),
#define BUFFER_TICKET(key, buffer, size, getter) Ticket<getter>(key, buffer, size),
#define COMMON_TICKETS "modules/accounting/JBACommonTickets.def"
#define ADMIN_TICKETS "modules/accounting/JBAAdminTickets.def"

#define UserText GetTicketStringConvertedToPrtLang
constexpr TicketData JBAticketDataCommon[] = {
#include COMMON_TICKETS
};
constexpr TicketData JBAticketDataAdmin[] = {
#include ADMIN_TICKETS
};
#undef UserText

#define UserText GetTicketStringConvertedToPrtLangForUTF8
constexpr TicketData JBAticketDataCommonForUTF8[] = {
#include COMMON_TICKETS
};
constexpr TicketData JBAticketDataAdminForUTF8[] = {
#include ADMIN_TICKETS
};
#undef UserText

#define ROWS_FILE "modules/accounting/JBACommonRows.def"
#define ROWS_TABLE JBAFmtTableCommon
#define ROWS_COUNT JBAFmtTableCommonNum
#define ROWS_LIST JBARowsCommon
#define ROWS_BIND_VALUES JBAInitializeCmdParaTableForUser
#define ROWS_BIND_TESTS JBAInitializeCaparationTableForUser
#include "engine/CommandRows.h"

#define ROWS_FILE "modules/accounting/JBAAdminRows.def"
#define ROWS_TABLE JBAFmtTableAdmin
#define ROWS_COUNT JBAFmtTableAdminNum
#define ROWS_LIST JBARowsAdmin
#define ROWS_BIND_VALUES JBAInitializeCmdParaTableForAdmin
#define ROWS_BIND_TESTS JBAInitializeCaparationTableForAdmin
#include "engine/CommandRows.h"

void JBAGetTicketFromPDE(char* args[]) {
  const bool utf8 = PrinterLanguageIsUTF8();
  GetTicketFromArray(args, utf8 ? JBAticketDataCommonForUTF8 : JBAticketDataCommon,
                     JBATicketDataNumCommon);
  GetTicketFromArray(args, utf8 ? JBAticketDataAdminForUTF8 : JBAticketDataAdmin,
                     JBATicketDataNumAdmin);
}

void JBAInializeDescriptionTableFromFilter() {
  JBAInitializeCmdParaTableForUser();
  JBAInitializeCmdParaTableForAdmin();
  JBAInitializeCaparationTableForUser();
  JBAInitializeCaparationTableForAdmin();
}

void JBAOutputXPJLCommandFromFilter(char* args[]) {
  OutputXPJLCommandFromArray(args, JBAFmtTableAdmin, JBAFmtTableAdminNum);
  OutputXPJLCommandFromArray(args, JBAFmtTableCommon, JBAFmtTableCommonNum);
}
