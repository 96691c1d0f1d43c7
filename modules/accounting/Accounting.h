// Job accounting: who sends the job, and on whose account it is counted.

#pragma once

#include <cstdint>

#include "engine/CommandTable.h"
#include "engine/TicketStore.h"

// The accounting record, filled from the job options. Texts hold what the device allows and a
// terminator, in the printer's language encoding; passwords are sealed for the device, in Base64.
struct JBAOption {
  char hostName[33];         // host as the dialog saw it; the line uses HostNameStr
  char ipAddress[46];        // address as the dialog saw it
  std::int32_t infoList;     // 0 none, 1 user account, 2 billing, 3 all; -1 absent
  std::int32_t infoSetList;  // 8: user and account in their placeholder forms
  std::int32_t manageType;   // 2 user mode, 1 administrator mode

  // User mode, common input.
  std::int32_t userSetting;  // 1: selected
  std::int32_t userIDList;   // 1 login name, 2 entered user ID
  char userID[97];
  char domainName[65];
  char userPassword[2048];
  char accountID[33];
  char storageID[73];
  char storagePassword[2048];
  std::int32_t userInput;  // 1: job input selected

  // Administrator mode, common input.
  std::int32_t adminUserSetting;
  std::int32_t adminUserIDList;
  char adminUserID[97];
  char adminDomainName[65];
  char adminUserPassword[2048];
  char adminAccountID[33];
  char adminStorageID[73];
  char adminStoragePassword[2048];
  std::int32_t adminUserInput;

  // Job input of both modes.
  std::int32_t inputAuth;  // 1: by user ID
  std::int32_t inputStrg;  // 1: by storage ID
  char inputStorageID[73];
  char inputStoragePassword[2048];
  char inputUserID[97];
  char inputDomainName[65];
  char inputUserPassword[2048];
  char inputAccountID[33];

  std::int32_t userIDAbsent;  // 1: the job has no user ID ticket at all
};
extern JBAOption xpjlOptionJBA;

// The ticket tables, each with ISO Latin-1 and with UTF-8 user texts.
inline constexpr std::int32_t JBATicketDataNumCommon = 36;
inline constexpr std::int32_t JBATicketDataNumAdmin = 9;
extern const TicketData JBAticketDataCommon[JBATicketDataNumCommon];
extern const TicketData JBAticketDataCommonForUTF8[JBATicketDataNumCommon];
extern const TicketData JBAticketDataAdmin[JBATicketDataNumAdmin];
extern const TicketData JBAticketDataAdminForUTF8[JBATicketDataNumAdmin];

// The lines of both modes.
inline constexpr std::int32_t JBAFmtTableCommonNum = 43;
inline constexpr std::int32_t JBAFmtTableAdminNum = 35;
extern const PrtFmt JBAFmtTableCommon[JBAFmtTableCommonNum];
extern const PrtFmt JBAFmtTableAdmin[JBAFmtTableAdminNum];
extern const RowTable JBARowsCommon;
extern const RowTable JBARowsAdmin;

// Fills the record from the filter's argument vector.
void JBAGetTicketFromPDE(char* args[]);

// Binds values and conditions to the rows.
void JBAInializeDescriptionTableFromFilter();
void JBAInitializeCmdParaTableForUser();
void JBAInitializeCmdParaTableForAdmin();
void JBAInitializeCaparationTableForUser();
void JBAInitializeCaparationTableForAdmin();

// Writes the administrator table's lines, then the common table's; conditions decide which.
void JBAOutputXPJLCommandFromFilter(char* args[]);
