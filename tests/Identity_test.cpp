// Who prints, on whose account, and how the device holds the job: tickets in, lines out.

#include <gtest/gtest.h>

#include <regex>
#include <string>

#include "FilterFrame/Source/JobState.h"
#include "modules/accounting/Accounting.h"
#include "modules/printtype/PrintType.h"
#include "tests/support/Password.h"
#include "tests/support/Tickets.h"
#include "text/BoundedText.h"

namespace {

// <name> stands for the stored form of a password.
std::string StorePasswords(std::string settings) {
  for (std::size_t at; (at = settings.find('<')) != std::string::npos;) {
    const std::size_t end = settings.find('>', at);
    settings.replace(at, end + 1 - at, Stored(settings.substr(at + 1, end - at - 1)));
  }
  return settings;
}

// Line ends in expected lines: "$" is LF, "^" is CR LF.
std::string WithLineEnds(const std::string& lines) {
  const std::string text = std::regex_replace(lines, std::regex("\\^"), "\r\n");
  return std::regex_replace(text, std::regex("\\$"), "\n");
}

// The attribute lines for "@JOAU=x" and the like, each up to its line end.
std::string Attributes(const std::string& lines) {
  const std::regex attribute("@([^$^]*)");
  return WithLineEnds(std::regex_replace(lines, attribute, "@PJL SET JOBATTR=\"@$1\""));
}

void WriteAccounting(char* args[]) {
  JBAGetTicketFromPDE(args);
  JBAInializeDescriptionTableFromFilter();
  JBAOutputXPJLCommandFromFilter(args);
}

std::string AccountingLines(const std::string& settings, const char* ppdLines = kLatin1PPD) {
  CopyBounded(HostNameStr, "atlas");
  CopyBounded(StdUserName, "sam");
  CopyBounded(StdJBAUserName, "acc");
  CopyBounded(StdDocumentName, "letter");
  return WithOpenedPasswords(Written(ppdLines, StorePasswords(settings), WriteAccounting));
}

const std::string kAlways = "@CNAM=atlas$@LUNA=sam$@NLPP=1$";
const std::string kTitle = "@ACNA=letter^";

// `identity` stands between the lines every job has and the title; `behind` follows the title.
struct AccountingCase {
  const char* what;
  std::string settings;
  std::string identity;
  std::string behind = "";
};

void Check(std::initializer_list<AccountingCase> cases) {
  for (const AccountingCase& c : cases) {
    EXPECT_EQ(AccountingLines(c.settings), Attributes(kAlways + c.identity + kTitle + c.behind))
        << c.what;
  }
}

TEST(Accounting, EveryJobSaysWhereItComesFrom) {
  Check(
      {{"no tickets: the login user all the same", "", "@JOAU=acc^"},
       {"no management type", "JBAUserIDTextEditTicket=", ""},
       {"unknown management type", "JBAManageTypeListTicketKey=3 JBAUserIDTextEditTicket=x", ""}});
  EXPECT_EQ(
      AccountingLines("JBAIPAddressStringTicket=10.1.2.3 number-up=4 JBAUserIDTextEditTicket="),
      Attributes("@CNAM=atlas$@LUNA=sam$@HOAD=10.1.2.3$@NLPP=N4$@ACNA=letter^"));
}

TEST(Accounting, UnknownNamesHavePlaceholders) {
  for (char* name : {HostNameStr, StdUserName, StdJBAUserName, StdDocumentName}) *name = '\0';
  CopyBounded(IPAddressStr, "I0A010203");
  // The login user's row without a login user is cut in front of its value.
  EXPECT_EQ(Written(kLatin1PPD, "", WriteAccounting),
            Attributes("@CNAM=UnknownHost$@LUNA=UnknownUser$@HOAD=I0A010203$@NLPP=1$") +
                "@PJL SET JOBATTR=\"");
  *IPAddressStr = '\0';
}

const std::string kUser = "JBAManageTypeListTicketKey=2 JBAUserIDTextEditTicket=kim ";
const std::string kUserCommon = kUser + "JBAUserSettingRadioBtnTicket=1 ";
const std::string kLogin = kUserCommon + "JBAUserIDListCtrlTicket=1 ";

TEST(Accounting, UserModeByLoginName) {
  Check({
      {"no information set", kLogin + "JBAInfoListTicketKey=0", "@JOAU=acc^@JOEP=^@DAID=^"},
      {"user account", kLogin + "JBAInfoListTicketKey=1", "@JOAU=acc^@JOEP=^@DAID=^"},
      {"billing", kLogin + "JBAInfoListTicketKey=2", "@JOAU=UnknownUser$@JOEP=^@DAID=^"},
      {"all", kLogin + "JBAInfoListTicketKey=3", "@JOAU=acc^@JOEP=^@DAID=^"},
      {"another list", kLogin + "JBAInfoListTicketKey=4", "@JOEP=^@DAID=^"},
      {"placeholder form", kLogin + "JBAInfoListTicketKey=1 JBAInfoSetListTicketKey=8",
       "@JOAU=UnknownUser$@JOEP=^@DAID=^"},
      {"placeholder form without information",
       kLogin + "JBAInfoListTicketKey=0 JBAInfoSetListTicketKey=8", "@JOAU=acc^@JOEP=^@DAID=^"},
      {"everything",
       kLogin + "JBAInfoListTicketKey=0 JBAUserPasswordTextEditTicket=<pw> "
                "JBADomainNameTextEditTicket=office JBAAccountIDTextEditTicket=a7 "
                "JBAStorageIDTextEditTicket=s9 JBAStoragePasswordTextEditTicket=<spw>",
       "@JOAU=acc^@JOEP=<pw>^@JOAD=office^@DAID=a7^@ACID=s9^@ACEP=<spw>^"},
      {"user ID ticket missing: the name twice",
       "JBAManageTypeListTicketKey=2 JBAUserSettingRadioBtnTicket=1 JBAUserIDListCtrlTicket=1 "
       "JBAInfoListTicketKey=0",
       "@JOAU=acc^@JOAU=acc^@JOEP=^@DAID=^"},
  });
}

TEST(Accounting, UserModeByEnteredName) {
  const std::string entered = kUserCommon + "JBAUserIDListCtrlTicket=2 ";
  Check({
      {"name alone", entered, "@JOAU=kim^@JOEP=^@DAID=^"},
      {"with password and storage",
       entered + "JBAUserPasswordTextEditTicket=<pw> JBAStorageIDTextEditTicket=s9",
       "@JOAU=kim^@JOEP=<pw>^@DAID=^@ACID=s9^@ACEP=^"},
      {"no name", entered + "JBAUserIDTextEditTicket= JBAUserPasswordTextEditTicket=<pw>",
       "@DAID=^"},
      {"storage password without storage", entered + "JBAStoragePasswordTextEditTicket=<spw>",
       "@JOAU=kim^@JOEP=^@DAID=^"},
      {"password that does not open", entered + "JBAUserPasswordTextEditTicket=*",
       "@JOAU=kim^@JOEP=^@DAID=^"},
  });
}

// The tickets of job input, and what they give in user mode (line ends differ in no mode).
const std::string kInput =
    "JBAInputUserIDTextEditTicket=jo JBAInputUserPasswordTextEditTicket=<jpw> "
    "JBAInputDomainNameTextEditTicket=lab JBAInputAccountIDTextEditTicket=b3 "
    "JBAInputStorageIDTextEditTicket=t5 JBAInputStoragePasswordTextEditTicket=<tpw> ";

TEST(Accounting, UserModeWithJobInput) {
  const std::string byUser =
      kUser + "JBAUserInputRadioBtnTicket=1 JBAInputAuthRadioBtnTicketKey=1 ";
  const std::string byStorage =
      kUser + "JBAUserInputRadioBtnTicket=1 JBAInputStrgRadioBtnTicketKey=1 ";
  const std::string unknown = "@JOAU=UnknownUser$@JOEP=$";
  Check({
      {"by user", byUser + kInput, "@JOAU=jo^@JOEP=<jpw>^@JOAD=lab^@DAID=b3^"},
      {"by user, nothing typed", byUser, "@JOAU=UnknownUser^@JOEP=^@DAID=^"},
      {"by user, no password", byUser + "JBAInputUserIDTextEditTicket=jo",
       "@JOAU=jo^@JOEP=^@DAID=^"},
      {"by user, placeholder form", byUser + kInput + "JBAInfoSetListTicketKey=8",
       "@JOAU=UnknownUser^@JOEP=^@JOAD=lab^@DAID=^"},
      {"by storage", byStorage + kInput + "JBAInfoListTicketKey=0", "@ACID=t5^",
       unknown + "@ACEP=<tpw>^"},
      {"by storage, with information", byStorage + kInput + "JBAInfoListTicketKey=2",
       "@DAID=^@ACID=t5^", unknown + "@ACEP=<tpw>^"},
      {"by storage, no password", byStorage + "JBAInputStorageIDTextEditTicket=t5",
       "@DAID=^@ACID=t5^", unknown + "@ACEP=^"},
      {"by storage, nothing typed", byStorage, "@DAID=^", unknown},
      {"job input not selected", kUser + "JBAInputAuthRadioBtnTicketKey=1 " + kInput, ""},
  });
}

TEST(Accounting, AdministratorMode) {
  const std::string admin = "JBAManageTypeListTicketKey=1 JBAUserIDTextEditTicket=kim ";
  const std::string common = admin + "JBAAdminUserSettingRadioBtnTicket=1 ";
  const std::string login = common + "JBAAdminUserIDListCtrlTicket=1 ";
  const std::string entered = common + "JBAAdminUserIDListCtrlTicket=2 ";
  const std::string input = admin + "JBAAdminUserInputRadioBtnTicket=1 ";
  const std::string unknown = "@JOAU=UnknownUser$@JOEP=$";
  const AccountingCase cases[] = {
      {"login name", login + "JBAInfoListTicketKey=0", "@JOAU=acc^@JOEP=^@DAID=^"},
      {"login name, user account", login + "JBAInfoListTicketKey=1", "@JOAU=acc^@JOEP=^@DAID=^"},
      {"login name, billing", login + "JBAInfoListTicketKey=2", "@JOAU=UnknownUser$@JOEP=^@DAID=^"},
      {"login name, all", login + "JBAInfoListTicketKey=3", "@JOAU=acc^@JOEP=^@DAID=^"},
      {"login name, placeholder form", login + "JBAInfoListTicketKey=3 JBAInfoSetListTicketKey=8",
       "@JOAU=UnknownUser$@JOEP=^@DAID=^"},
      {"login name, everything",
       login + "JBAInfoListTicketKey=0 JBAAdminUserPasswordTextEditTicket=<apw> "
               "JBAAdminDomainNameTextEditTicket=hq JBAAdminAccountIDTextEditTicket=c1 "
               "JBAAdminStorageIDTextEditTicket=u2 JBAAdminStoragePasswordTextEditTicket=<upw>",
       "@JOAU=acc^@JOEP=<apw>^@JOAD=hq^@DAID=c1^@ACID=u2^", "@ACEP=<upw>^"},
      {"entered name",
       entered + "JBAAdminUserIDTextEditTicket=lee JBAAdminStorageIDTextEditTicket=u2",
       "@JOAU=lee^@JOEP=^@DAID=^@ACID=u2^", "@ACEP=^"},
      {"entered name with password",
       entered + "JBAAdminUserIDTextEditTicket=lee JBAAdminUserPasswordTextEditTicket=<apw>",
       "@JOAU=lee^@JOEP=<apw>^@DAID=^"},
      {"job input by user", input + kInput + "JBAInputAuthRadioBtnTicketKey=1",
       "@JOAU=jo^@JOEP=<jpw>^@JOAD=lab^@DAID=b3^"},
      {"job input by user, placeholder form",
       input + kInput + "JBAInputAuthRadioBtnTicketKey=1 JBAInfoSetListTicketKey=8",
       "@JOAU=UnknownUser^@JOEP=^@JOAD=lab^@DAID=^"},
      {"job input by user, nothing typed", input + "JBAInputAuthRadioBtnTicketKey=1",
       "@JOAU=UnknownUser^@JOEP=^@DAID=^"},
      {"job input by user, no password",
       input + "JBAInputAuthRadioBtnTicketKey=1 JBAInputUserIDTextEditTicket=jo",
       "@JOAU=jo^@JOEP=^@DAID=^"},
      {"job input by storage",
       input + kInput + "JBAInputStrgRadioBtnTicketKey=1 JBAInfoListTicketKey=1",
       "@DAID=^@ACID=t5^", unknown + "@ACEP=<tpw>^"},
      {"job input by storage, no password",
       input + "JBAInputStrgRadioBtnTicketKey=1 JBAInfoListTicketKey=0 "
               "JBAInputStorageIDTextEditTicket=t5",
       "@ACID=t5^", unknown + "@ACEP=^"},
  };
  // The administrator's lines, with a title of their own, precede those that every job has.
  for (const AccountingCase& c : cases) {
    EXPECT_EQ(AccountingLines(c.settings),
              Attributes(c.identity + kTitle + c.behind + kAlways + kTitle))
        << c.what;
  }
}

TEST(Accounting, TextsAreCutToWhatTheDeviceTakes) {
  const std::string settings =
      kUser + "JBAUserSettingRadioBtnTicket=1 JBAUserIDListCtrlTicket=2 JBAUserIDTextEditTicket=" +
      Repeat("\u00E9", 100) + " JBAAccountIDTextEditTicket=" + Repeat("\u00E9", 100);
  EXPECT_EQ(AccountingLines(settings, kUTF8PPD),
            Attributes(kAlways + "@JOAU=" + Repeat("\u00E9", 48) +
                       "^@JOEP=^@DAID=" + Repeat("\xE9", 32) + "^" + kTitle));
  EXPECT_EQ(AccountingLines(settings, kLatin1PPD),
            Attributes(kAlways + "@JOAU=" + Repeat("\xE9", 96) +
                       "^@JOEP=^@DAID=" + Repeat("\xE9", 32) + "^" + kTitle));
}

std::string PrintTypeLines(const std::string& settings, const std::string& ppdLines = kLatin1PPD) {
  CopyBounded(PTStdDocumentName, "letter");
  return WithOpenedPasswords(Written(ppdLines, StorePasswords(settings), [](char* args[]) {
    PrintTypeGetTicketFromPDE(args);
    PrintTypeInializeDescriptionTableFromFilter();
    PrintTypeOutputXPJLCommandFromFilter(args);
  }));
}

TEST(PrintType, HoldsAndNamesTheJob) {
  const std::string name = "DocumentNameTypeTicketKey=1 ", pw = "PrintTypePasswordTicketKey=<pw> ";
  const std::string entered = "DocumentNameTypeTicketKey=2 DocumentNameTicketKey=offer ";
  const std::string user = "PrintTypeUserNameTicketKey=kim ";
  const std::string jobName = "@PJL SET JOBNAME=\"letter\"^", same = "(the same)";
  const std::string userLine = "@PJL SET USERNAME=\"kim\"^";
  const struct {
    const char* what;
    std::string settings, lines;
    std::string partLines;  // on devices without mailboxes and delayed print
  } cases[] = {
      {"normal", "PrintTypeTicketKey=1 " + user + entered, "", same},
      {"secure", "PrintTypeTicketKey=2 " + user + pw + name,
       "@PJL SET HOLD=STORE$@PJL SET HOLDTYPE=PRIVATE$" + userLine +
           "@PJL SET HOLDENCRYPTKEY=\"<pw>\"^" + jobName,
       same},
      {"secure without password", "PrintTypeTicketKey=2 " + user, "@PJL SET HOLD=STORE$" + userLine,
       same},
      {"secure without user", "PrintTypeTicketKey=2 " + pw + name, jobName, same},
      {"sample", "PrintTypeTicketKey=3 " + user + entered,
       "@PJL SET HOLD=PROOF$" + userLine + "@PJL SET JOBNAME=\"offer\"^", same},
      {"delayed", "PrintTypeTicketKey=4 DelayPrintTicketKey=18:30 " + user + name,
       jobName + "@PJL SET JOBATTR=\"@PRTM=18:30\"^", jobName},
      {"delayed without a time", "PrintTypeTicketKey=4", "", same},
      {"mailbox",
       "PrintTypeTicketKey=5 PrintTypeMBNTicketKey=12345 " + user + name +
           "PrintTypeMBNPasswordTicketKey=<mpw>",
       "@PJL SET HOLD=BOXSTORE$@PJL SET HOLDTYPE=PRIVATE$@PJL SET BOXNUMBER=1234^"
       "@PJL SET BOXENCRYPTKEY=\"<mpw>\"^" +
           jobName,
       jobName},
      {"mailbox without number and password", "PrintTypeTicketKey=5",
       "@PJL SET HOLD=BOXSTORE$@PJL SET BOXNUMBER=^", ""},
      {"absent", user + entered, userLine + "@PJL SET JOBNAME=\"offer\"^", same},
      {"absent, no name", "DocumentNameTypeTicketKey=2", "", same},
  };
  const std::string part = "*ZLVXPrintTypeSettings: \"Default04\"\n";
  for (const auto& c : cases) {
    for (const std::string& ppd : {std::string(kLatin1PPD), std::string(kUTF8PPD), part}) {
      EXPECT_EQ(PrintTypeLines(c.settings, ppd), WithLineEnds(c.lines)) << c.what << ppd;
    }
    EXPECT_EQ(PrintTypeLines(c.settings, part + kUTF8PPD),
              WithLineEnds(c.partLines == same ? c.lines : c.partLines))
        << c.what;
  }
}

TEST(PrintType, NamesFillTheirFieldsInThePrintersLanguage) {
  const std::string settings =
      "PrintTypeTicketKey=3 PrintTypeUserNameTicketKey=" + Repeat("\u00E9", 100);
  EXPECT_EQ(
      PrintTypeLines(settings, kUTF8PPD),
      WithLineEnds("@PJL SET HOLD=PROOF$@PJL SET USERNAME=\"" + Repeat("\u00E9", 48) + "\"^"));
  EXPECT_EQ(PrintTypeLines(settings),
            WithLineEnds("@PJL SET HOLD=PROOF$@PJL SET USERNAME=\"" + Repeat("\xE9", 96) + "\"^"));
}

}  // namespace
