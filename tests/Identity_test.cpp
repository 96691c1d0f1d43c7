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

TEST(Accounting, EveryJobSaysWhereItComesFrom) {
  EXPECT_EQ(AccountingLines(""), Attributes(kAlways + "@JOAU=acc^" + kTitle));  // all the same
  EXPECT_EQ(AccountingLines("JBAManageTypeListTicketKey=3 JBAUserIDTextEditTicket=x"),
            Attributes(kAlways + kTitle));
  EXPECT_EQ(
      AccountingLines("JBAIPAddressStringTicket=10.1.2.3 number-up=4 JBAUserIDTextEditTicket="),
      Attributes("@CNAM=atlas$@LUNA=sam$@HOAD=10.1.2.3$@NLPP=N4$@ACNA=letter^"));
}

TEST(Accounting, UnknownNamesHavePlaceholders) {
  for (char* name : {HostNameStr, StdUserName, StdJBAUserName, StdDocumentName}) *name = '\0';
  CopyBounded(IPAddressStr, "I0A010203");
  EXPECT_EQ(Written(kLatin1PPD, "", WriteAccounting),
            Attributes("@CNAM=UnknownHost$@LUNA=UnknownUser$@HOAD=I0A010203$@NLPP=1$@JOAU=^"));
  *IPAddressStr = '\0';
}

// What a device is told of a user by the user's tickets, or by those of the administrator: "*" in a
// ticket's name is nothing or "Admin".
struct AccountingCase {
  const char* what;
  std::string settings;
  std::string identity;
  std::string storagePassword = "";
  std::string behind = "";  // the title
};

void CheckBothModes(const std::string& settings, std::initializer_list<AccountingCase> cases) {
  const std::regex star("\\*");
  const std::string byUser = "JBAManageTypeListTicketKey=2 JBAUserIDTextEditTicket=kim ";
  const std::string byAdministrator =
      "JBAManageTypeListTicketKey=1 JBAUserIDTextEditTicket=lee JBAAdminUserIDTextEditTicket=kim ";
  for (const AccountingCase& c : cases) {
    EXPECT_EQ(AccountingLines(byUser + std::regex_replace(settings + c.settings, star, "")),
              Attributes(kAlways + c.identity + c.storagePassword + kTitle + c.behind))
        << c.what;
    // The administrator's lines, with a title of their own, precede those that every job has.
    EXPECT_EQ(
        AccountingLines(byAdministrator + std::regex_replace(settings + c.settings, star, "Admin")),
        Attributes(c.identity + kTitle + c.storagePassword + c.behind + kAlways + kTitle))
        << c.what << ", by the administrator";
  }
}

TEST(Accounting, ByLoginName) {
  CheckBothModes("JBA*UserSettingRadioBtnTicket=1 JBA*UserIDListCtrlTicket=1 ",
                 {{"no information set", "JBAInfoListTicketKey=0", "@JOAU=acc^@JOEP=^@DAID=^"},
                  {"user account", "JBAInfoListTicketKey=1", "@JOAU=acc^@JOEP=^@DAID=^"},
                  {"billing", "JBAInfoListTicketKey=2", "@JOAU=UnknownUser$@JOEP=^@DAID=^"},
                  {"all", "JBAInfoListTicketKey=3", "@JOAU=acc^@JOEP=^@DAID=^"},
                  {"another list", "JBAInfoListTicketKey=4", "@JOEP=^@DAID=^"},
                  {"placeholder form", "JBAInfoListTicketKey=1 JBAInfoSetListTicketKey=8",
                   "@JOAU=UnknownUser$@JOEP=^@DAID=^"},
                  {"placeholder form, all", "JBAInfoListTicketKey=3 JBAInfoSetListTicketKey=8",
                   "@JOAU=UnknownUser$@JOEP=^@DAID=^"},
                  {"placeholder form without information",
                   "JBAInfoListTicketKey=0 JBAInfoSetListTicketKey=8", "@JOAU=acc^@JOEP=^@DAID=^"},
                  {"everything",
                   "JBAInfoListTicketKey=0 JBA*UserPasswordTextEditTicket=<pw> "
                   "JBA*DomainNameTextEditTicket=office JBA*AccountIDTextEditTicket=a7 "
                   "JBA*StorageIDTextEditTicket=s9 JBA*StoragePasswordTextEditTicket=<spw>",
                   "@JOAU=acc^@JOEP=<pw>^@JOAD=office^@DAID=a7^@ACID=s9^", "@ACEP=<spw>^"}});
  EXPECT_EQ(AccountingLines("JBAManageTypeListTicketKey=2 JBAUserSettingRadioBtnTicket=1 "
                            "JBAUserIDListCtrlTicket=1 JBAInfoListTicketKey=0"),
            Attributes(kAlways + "@JOAU=acc^@JOAU=acc^@JOEP=^@DAID=^" + kTitle));
}

TEST(Accounting, ByEnteredName) {
  CheckBothModes(
      "JBA*UserSettingRadioBtnTicket=1 JBA*UserIDListCtrlTicket=2 ",
      {{"name alone", "", "@JOAU=kim^@JOEP=^@DAID=^"},
       {"with password and storage",
        "JBA*UserPasswordTextEditTicket=<pw> JBA*StorageIDTextEditTicket=s9",
        "@JOAU=kim^@JOEP=<pw>^@DAID=^@ACID=s9^", "@ACEP=^"},
       {"no name", "JBA*UserIDTextEditTicket= JBA*UserPasswordTextEditTicket=<pw>", "@DAID=^"},
       {"storage password without storage", "JBA*StoragePasswordTextEditTicket=<spw>",
        "@JOAU=kim^@JOEP=^@DAID=^"},
       {"password that does not open", "JBA*UserPasswordTextEditTicket=!",
        "@JOAU=kim^@JOEP=^@DAID=^"}});
}

TEST(Accounting, ByJobInput) {
  const std::string typed =
      "JBAInputUserIDTextEditTicket=jo JBAInputUserPasswordTextEditTicket=<jpw> "
      "JBAInputDomainNameTextEditTicket=lab JBAInputAccountIDTextEditTicket=b3 "
      "JBAInputStorageIDTextEditTicket=t5 JBAInputStoragePasswordTextEditTicket=<tpw> ";
  const std::string byUser = "JBAInputAuthRadioBtnTicketKey=1 ";
  const std::string byStorage = "JBAInputStrgRadioBtnTicketKey=1 ";
  const std::string unknown = "@JOAU=UnknownUser$@JOEP=$";
  CheckBothModes("JBA*UserInputRadioBtnTicket=1 ",
                 {{"by user", byUser + typed, "@JOAU=jo^@JOEP=<jpw>^@JOAD=lab^@DAID=b3^"},
                  {"by user, nothing typed", byUser, "@JOAU=UnknownUser^@JOEP=^@DAID=^"},
                  {"by user, no password", byUser + "JBAInputUserIDTextEditTicket=jo",
                   "@JOAU=jo^@JOEP=^@DAID=^"},
                  {"by user, placeholder form", byUser + typed + "JBAInfoSetListTicketKey=8",
                   "@JOAU=UnknownUser^@JOEP=^@JOAD=lab^@DAID=^"},
                  {"by storage", byStorage + typed + "JBAInfoListTicketKey=0", "@ACID=t5^", "",
                   unknown + "@ACEP=<tpw>^"},
                  {"by storage, with information", byStorage + typed + "JBAInfoListTicketKey=2",
                   "@DAID=^@ACID=t5^", "", unknown + "@ACEP=<tpw>^"},
                  {"by storage, no password", byStorage + "JBAInputStorageIDTextEditTicket=t5",
                   "@DAID=^@ACID=t5^", "", unknown + "@ACEP=^"},
                  {"by storage, nothing typed", byStorage, "@DAID=^", "", unknown}});
  for (const std::string mode : {"1", "2"}) {  // without job input being selected
    const std::string settings =
        "JBAManageTypeListTicketKey=" + mode + " JBAUserIDTextEditTicket=x ";
    EXPECT_EQ(AccountingLines(settings + byUser + typed), Attributes(kAlways + kTitle)) << mode;
  }
}

TEST(Accounting, TextsAreCutToWhatTheDeviceTakes) {
  const std::string settings =
      "JBAManageTypeListTicketKey=2 JBAUserSettingRadioBtnTicket=1 JBAUserIDListCtrlTicket=2 "
      "JBAUserIDTextEditTicket=" +
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
