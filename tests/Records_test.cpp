// What no whole job shows, or only in very many: records and functions by themselves.

#include <gtest/gtest.h>

#include <fstream>
#include <regex>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "FilterFrame/Source/JobState.h"
#include "modules/accounting/Accounting.h"
#include "modules/comment/Comment.h"
#include "modules/quality/Quality.h"
#include "modules/specialpages/SpecialPages.h"
#include "tests/support/Password.h"
#include "tests/support/Patterns.h"
#include "tests/support/Tickets.h"
#include "text/BoundedText.h"

namespace {

std::string AccountingLines(const std::string& settings) {
  const std::string lines = Written(kLatin1PPD, settings, [](char* args[]) {
    JBAGetTicketFromPDE(args);
    JBAInializeDescriptionTableFromFilter();
    JBAOutputXPJLCommandFromFilter(args);
  });
  return std::regex_replace(lines, std::regex("@PJL SET JOBATTR="), "");
}

TEST(Accounting, UnknownNamesHavePlaceholders) {
  for (char* name : {HostNameStr, StdUserName, StdJBAUserName, StdDocumentName}) *name = '\0';
  CopyBounded(IPAddressStr, "I0A010203");
  const std::string unknown =
      "\"@CNAM=UnknownHost\"\n\"@LUNA=UnknownUser\"\n\"@HOAD=I0A010203\"\n\"@NLPP=1\"\n";
  EXPECT_EQ(AccountingLines(""), unknown + "\"@JOAU=\"\r\n");
  *IPAddressStr = '\0';
}

// Nobody's account is nobody's, even where it has a name by mistake.
TEST(Accounting, AJobOfNobodyHasNoLoginName) {
  CopyBounded(HostNameStr, "atlas");
  CopyBounded(StdJBAUserName, "acc");
  *StdUserName = *StdDocumentName = '\0';
  const std::string always = "\"@CNAM=atlas\"\n\"@LUNA=UnknownUser\"\n\"@NLPP=1\"\n";
  const std::string account = "\"@DAID=\"\r\n";
  for (const std::string list : {"0", "1", "3"}) {
    for (const std::string& password : {std::string(), "PasswordTextEditTicket=" + Stored("pw")}) {
      const auto settings = [&](const std::string& of) {
        return of + "UserSettingRadioBtnTicket=1 " + of + "UserIDListCtrlTicket=1 " +
               (password.empty() ? "" : of + "User" + password) + " JBAUserIDTextEditTicket=x " +
               "JBAInfoListTicketKey=" + list + " JBAManageTypeListTicketKey=";
      };
      EXPECT_EQ(AccountingLines(settings("JBA") + "2"), always + account);
      EXPECT_EQ(AccountingLines(settings("JBAAdmin") + "1"), account + always);
    }
  }
}

// features.txt has the device's line for each choice of each feature: keyword, choice, line.
TEST(Quality, FindsTheLineBehindAFeature) {
  const auto find = GetThePJLCommandfromKeywordsandMarkedValue;
  std::set<std::string> found;
  std::ifstream lines(TEST_DATA_DIR "/features.txt");
  for (std::string keyword, choice, line; lines >> keyword >> choice >> line;) {
    const bool attribute = line.starts_with('@');
    const std::string wanted = "@PJL SET " + (attribute ? "JOBATTR=\"" + line + '"' : line) + '\n';
    const char* made = find("*" + keyword, choice);
    EXPECT_EQ(made != nullptr ? made : "none", wanted) << keyword << " " << choice;
    found.insert(keyword + choice);
  }
  EXPECT_EQ(found.size(), kFeatureLineCount - 1);
  for (const auto& [keyword, choice] : std::vector<std::pair<std::string, std::string>>{
           {"*ZLVColorDensityBlackHigh", "+3"},  // the last row is never found
           {"*ZLVSetTrapMode", "false"},
           {"ZLVSetTrapMode", "False"},
           {"*", ""},
           {"", ""}}) {
    EXPECT_EQ(find(keyword, choice), nullptr) << keyword << choice;
  }
}

TEST(SpecialPages, KeywordsStandAtTheEvenPlacesBelowTheCount) {
  for (const auto& [count, result] : {std::pair(6, 0), {5, 0}, {4, -1}, {0, -1}, {-1, -1}}) {
    char word[kSpecialPageFieldSize] = {};
    EXPECT_EQ(getSpecialPageXPJLValue("two-sided-short-edge", SidesXPJLComm, count, word), result);
    EXPECT_STREQ(word, result == 0 ? "TUMBLE" : "");
  }
}

TEST(Comment, KeepsItsCollationWhenTheOptionsSayNothingOfIt) {
  CopyBounded(psoptioncomment.collate, "collate");
  CommentGetTicketFromPDE(Arguments("ZLVStaple=None"));
  EXPECT_STREQ(std::exchange(psoptioncomment, {}).collate, "collate");
}

}  // namespace
