// Covers, inserted sheets, page exceptions and bound books: job options in, attribute lines out.

#include <gtest/gtest.h>

#include <chrono>
#include <regex>
#include <string>
#include <vector>

#include "modules/perfectbind/PerfectBind.h"
#include "modules/specialpages/SpecialPages.h"
#include "tests/support/Tickets.h"

namespace {

// "EFCV=NONE EMCW=5" as the device's lines.
std::string Lines(const std::string& attributes) {
  return std::regex_replace(attributes, std::regex("([^ ]+) *"), "@PJL SET JOBATTR=\"@$1\"\n");
}

struct Row {
  std::string settings, attributes;
};

// Runs a table whose rows all have these settings in front, and these attributes around theirs.
void Check(std::string (*linesFor)(const std::string&), const std::vector<Row>& table,
           const std::string& settings = "", const std::string& first = "",
           const std::string& last = "") {
  for (const Row& row : table) {
    EXPECT_EQ(linesFor(settings + row.settings), Lines(first + row.attributes + last))
        << row.settings;
  }
}

// The lines for settings such as "CoverCount=1 Cover_0=1,0,print-both Command_0=0,0,0,33".
std::string SpecialPages(const std::string& settings) {
  std::string tickets =
      std::regex_replace(settings, std::regex("([A-Z][a-z]+)Count="), "XPIF$1CountTicket=");
  tickets =
      std::regex_replace(tickets, std::regex("(Cover|Insertion|Exception)_"), "XPIF$1ValueTicket_");
  tickets = std::regex_replace(tickets, std::regex("Command_"), "XPIFCommandTicket_");
  return Written("", tickets, [](char* args[]) {
    SpecialPageInializeDescriptionTable();
    SpecialPageGetTicketFromPDE(args);
    OutputXPJLCommandForSpecialPage(args);
  });
}

TEST(SpecialPages, Covers) {
  Check(SpecialPages,
        {{"CoverCount=1 InsertionCount=0 ExceptionCount=0 Command_0=0,0,0,33 "
          "Cover_0=1,1,print-front,stationary,blue,2100,2970",
          "EFCV=NONE EBCV=PRINTFRONT EMCP=CUSTOM EMCW=2100 EMCH=2970 EMCQ=stationary EMCC=BLUE"},
         {"Cover_0=0,0,x", ""},
         {"CoverCount=0 Cover_0=0,0,x", ""},
         {"CoverCount=-1 Cover_0=0,0,x", ""},
         {"CoverCount=1 Cover_0=", ""},
         {"CoverCount=1 Cover_1=0,0,x Cover_00=0,0,x", ""},
         {"CoverCount=1 Cover_0=0,2,print-none", "EFCV=PRINTNONE EBCV=NONE"},
         {"CoverCount=1 Cover_0=0,0,print-both", "EFCV=PRINTBOTH EMCT=TRAYT1 EBCV=NONE"},
         {"CoverCount=1 Cover_0=1,1,x,m,red,",
          "EFCV=NONE EMCP=FORMALSIZE EMCW= EMCH= EMCQ=m EMCC=RED"},
         {"CoverCount=1 Cover_0=1", "EFCV=NONE EMCP=FORMALSIZE EMCW=1 EMCH=1 EMCQ=1"},
         {"CoverCount=2 Cover_0=0,0,print-all Cover_1=1,1,print-back,m,Blue,1,2",
          "EMCT=TRAYT1 EBCV=PRINTBACK EMCP=FORMALSIZE EMCW=1 EMCH=2 EMCQ=m"},
         {"CoverCount=2 Command_0=0,0,0,330 Command_1=0,0,0,33 "
          "Cover_0=2,1,print-front,a,blue,1,2 Cover_1=0,1,x,m,no-color,3,4",
          "EMCP=CUSTOM EMCW=3 EMCH=4 EMCQ=m EMCC=CLEAR"}});
}

TEST(SpecialPages, InsertionsAndExceptions) {
  Check(SpecialPages,
        {{"InsertionCount=4 Command_0=1,0,0,0,33 Insertion_0=0,4,2 Insertion_1=1,5,3,pink,1,8,m "
          "Insertion_3=2,6,1",
          "EIST=4 EMCT=TRAYT1 EISC=2 "
          "EIST=5 EMCP=CUSTOM EMCW=1 EMCH=8 EMCQ=m EMCC=PINK EISC=3 EIST=6 EISC=1"},
         {"InsertionCount=2 Insertion_1=", "EIST= EISC="},
         {"InsertionCount=1 Insertion_0=1,7,2,a,b",
          "EIST=7 EMCP=FORMALSIZE EMCW=b EMCH=b EMCQ=b EISC=2"},
         {"ExceptionCount=2 Exception_0=0,1,9,3,5,two-sided-long-edge,m,custom_2,1,2 "
          "Exception_1=0,1,9,7,8,two-sided,m,none,1,2 Command_0=2,0,33",
          "EOVS=3 EMCP=CUSTOM EMCW=1 EMCH=2 EMCQ=m EMCC=CUSTOM2 EMDP=DUPLEX EOVE=5 "
          "EOVS=7 EMCP=CUSTOM EMCW=1 EMCH=2 EMCQ=m EOVE=8"},
         {"ExceptionCount=2 Exception_0=0,1,9,3,4,one-sided,m,buff,5 "
          "Exception_1=,,,,,two-sided-short-edge,",
          "EOVS=3 EMCP=FORMALSIZE EMCW=5 EMCH=5 EMCQ=m EMCC=BUFF EMDP=SIMPLEX EOVE=4 "
          "EOVS= EMCP=FORMALSIZE EMCW= EMCH= EMCQ= EMDP=TUMBLE EOVE="}});
}

// How six entries get their sizes by these commands: C is custom, F a formal size.
std::string Sizes(const std::string& commands) {
  const std::string lines =
      SpecialPages(commands +
                   " CoverCount=2 InsertionCount=4 ExceptionCount=2 Cover_0=0,1 "
                   "Cover_1=1,1 Insertion_0=1 Insertion_2=1 Exception_0=2 Exception_1=2");
  std::string sizes;
  for (std::size_t at = 0; (at = lines.find("EMCP=", at)) != lines.npos;) sizes += lines[at += 5];
  return sizes;
}

// Also a missing entry has its command, and where commands run out, the last one counts.
TEST(SpecialPages, CommandsPairWithTheEntriesOfTheirKind) {
  const struct {
    const char *commands, *sizes;
  } cases[] = {
      {"", "FFFFFF"},
      {"Command_7=0,0,0,33", "CCCCCC"},
      {"Command_8=0,0,0,33", "FFFFFF"},
      {"Command_0=2,0,33 Command_1=1,0,0,0,12 Command_2=0,0,0,33 Command_4=1,0,0,0,33", "CCFCCC"},
      {"Command_0=2,0,33 Command_1=1,0,0,0,3 Command_2=1,0,0,0,3 Command_4=1,0,0,0,33", "FFFCCC"},
      {"Command_0=1,0,0,0,9 Command_1=1,0,0,0,33 Command_2=1,0,0,0,3,33 Command_3=1,0,0,0,33,8",
       "FFFFCC"},
      {"Command_0=3,0,33,33 Command_1=33", "FFFFFF"},
      {"Command_0=0,0,0,330 Command_1=0,0,0,033", "FFFFFF"},
      {"Command_0=0,0,0,33 Command_1=0,0", "CFFFFF"},
      {"Command_0=0,000033 Command_1=0,12,3,33", "CFFFFF"},
      {"Command_0=1,33,33,33,33 Command_1=1,000,33,33 Command_2=1,0000,,33 Command_3=2,,33",
       "FFCCFF"},
  };
  for (const auto& c : cases) EXPECT_EQ(Sizes(c.commands), c.sizes) << c.commands;
}

TEST(SpecialPages, KeywordsStandAtTheEvenPlacesBelowTheCount) {
  for (const auto& [count, result] : {std::pair(6, 0), {5, 0}, {4, -1}, {0, -1}, {-1, -1}}) {
    char word[kSpecialPageFieldSize] = {};
    EXPECT_EQ(getSpecialPageXPJLValue("two-sided-short-edge", SidesXPJLComm, count, word), result);
    EXPECT_STREQ(word, result == 0 ? "TUMBLE" : "");
  }
}

TEST(SpecialPages, LongFieldsAndHostileCountsAreHarmless) {
  const std::string x(63, 'x');  // a field's 63 characters; of a ticket 255 count
  const std::string one = "InsertionCount=1 Insertion_0=0,1,2",
                    oneLines = "EIST=1 EMCT=TRAYT1 EISC=2";
  const auto started = std::chrono::steady_clock::now();
  Check(SpecialPages,
        {{"InsertionCount=1 Insertion_0=1,2,x" + x + ",blue," + std::string(179, 'x') + ",56",
          "EIST=2 EMCP=FORMALSIZE EMCW=" + x + " EMCH=5 EMCQ=5 EMCC=BLUE EISC=" + x},
         {"CoverCount=99999999999 InsertionCount=2147483647 ExceptionCount=2147483647 "
          "Cover_2147483646=0,1,x,m,c,1,2 Command_2147483646=0,0,0,33 "
          "Insertion_9=0,1,2 Insertion_10=0,3",
          "EMCP=CUSTOM EMCW=1 EMCH=2 EMCQ=m " + oneLines + " EIST=3 EMCT=TRAYT1 EISC=3"},
         {"CoverCount=2147483647 " + one, oneLines},
         {"CoverCount=-2147483648 " + one, oneLines}});
  EXPECT_EQ(psOptionSpecialPage.coverCount, 0);
  EXPECT_LT(std::chrono::steady_clock::now() - started, std::chrono::seconds(2));
}

// The lines for settings such as "Position=BindLeft PageSize=A4".
std::string BindLines(const std::string& settings) {
  Arguments args(std::regex_replace(settings, std::regex("([^ ]+)"), "ZLVPBind$1"));
  testing::internal::CaptureStdout();
  PBindGetTicketFromPDE(args);
  OutputXPJLCommandforPerfectBind();
  return testing::internal::GetCapturedStdout();
}

constexpr char kSizesPPD[] =
    "*OpenUI *PageSize/Size: PickOne\n*PageSize A4: \"\"\n*PageSize SRA3: \"\"\n"
    "*CloseUI: *PageSize\n*PaperDimension A4: \"595 842\"\n*PaperDimension SRA3: \"906.9 1276\"\n";

TEST(PerfectBinding, TrimsTheBook) {
  EXPECT_EQ(BindLines("Position=BindLeft"), "");  // no PPD
  const UsedPPD ppd(kSizesPPD);
  Check(
      BindLines,
      {{"None", "PBTC=OFF PBBP=A4 PBTP=A4"},
       {"1EdgeCut", "PBTC=FACE PBBP=A4 PBTP=CUSTOM PBTW=2000 PBTH=2970 ISXO=-50 ISXT=50"},
       {"3EdgeCut", "PBTC=FULLBLEED PBBP=A4 PBTP=CUSTOM PBTW=2000 PBTH=2910 ISXO=-50 ISXT=50"},
       {"Other", "PBTC=Other PBBP=A4 PBTP=CUSTOM PBTW=2000 PBTH=2910 ISXO=-50 ISXT=50"},
       {"1EdgeCutMinimum", "PBTC=FACE PBBP=A4 PBTP=CUSTOM PBTW=2030 PBTH=2970"},
       {"3EdgeCutMinimum", "PBTC=FULLBLEED PBBP=A4 PBTP=CUSTOM PBTW=2030 PBTH=2830"},
       {"1EdgeSpecifySize", "PBTC=FACE PBBP=A4 PBTP=SA3 PBTW=3190 PBTH=4500 ISXO=545 ISXT=-545"},
       {"1EdgeCut CutPositionFore=", "PBTC=FACE PBBP=A4 PBTP=CUSTOM PBTW=0 PBTH=0 ISXO=0 ISXT=0"},
       {"X CutPositionFore=", "PBTC=X PBBP=A4 PBTP=CUSTOM PBTH=2910 ISXO=0 ISXT=0"},
       {"X CutPositionFore=125", "PBTC=X PBBP=A4 PBTP=CUSTOM PBTW=2090 PBTH=2910 ISXO=-5 ISXT=5"},
       {"X CutPositionFore=7", "PBTC=X PBBP=A4 PBTP=CUSTOM PBTW=2100 PBTH=2910 ISXO=0 ISXT=0"},
       {"X CutPositionTop=xmm", "PBTC=X PBBP=A4 PBTP=CUSTOM PBTW=2000 PBTH=2970 ISXO=-50 ISXT=50"},
       {"1EdgeSpecifySize PageSize=",
        "PBTC=FACE PBTP=SA3 PBTW=3190 PBTH=4500 ISXO=1595 ISXT=-1595"},
       {"1EdgeCut PageSize=B5",
        "PBTC=FACE PBBP=JISB5 PBTP=CUSTOM PBTW=-100 PBTH=0 ISXO=-50 ISXT=50"}},
      "CutPageSize=SRA3 CutPositionTop=3mm CutPositionFore=10mm PageSize=A4 Position=BindLeft "
      "Trimming=",
      "PBRE=LEFT MSDA=ROTSEFLAND ", " PBCI=OFF");
  EXPECT_STREQ(psoptionpbind.pageSize, "JISB5");
}

TEST(PerfectBinding, BindsAndCoversTheBook) {
  const UsedPPD ppd(kSizesPPD);
  Check(BindLines,
        {{"", ""}, {"Position=None PageSize=A4 CoverPageSize=DL", ""}, {"Position=OFF", ""}});
  const std::string adjusted = " PBAW=7 PBAH=-8 PBAT=1 PBAB=2 PBAF=3 PBAX=4 PBAY=-5 PBAV=6";
  Check(BindLines,
        {{"BindLeft", "PBRE=LEFT MSDA=ROTSEFLAND PBTC=OFF PBTP=" + adjusted},
         {"BindTop", "PBRE=TOP MSDA=ROTSEFLAND PBTC=OFF PBTP=" + adjusted},
         {"BindRight PageSize=SRA3 CutPageSize=A4 Trimming=3EdgeSpecifySize",
          "PBRE=RIGHT MSDA=ROTLEFPORT PBTC=FULLBLEED PBBP=SA3 PBTP=A4 PBTW=2100 PBTH=2970 ISXO=545 "
          "ISXT=-545 PBAW=7 PBAH=-8 PBAB=1 PBAT=2 PBAF=-3 PBAX=-4 PBAY=5 PBAV=-6"}},
        "Trimming=None RotationAdjustTop=1 RotationAdjustBot=2 RotationAdjustFore=3 CoverAdjustX=4 "
        "CoverAdjustY=5 CutPositionAdjustmentTB=6 CutPageAdjustmentFore=7 CutPageAdjustmentTB=-8 "
        "Position=",
        "", " PBCI=OFF");
  Check(BindLines,
        {{"CoverPageSize=DL", "PBCP=LEDGER"},
         {"CoverMediaColor=b", "PBCC=b PBCT="},
         {"CoverPaperTray=HCF1", ""},
         {"CoverPageSize=ZLV122x170 CoverMediaType=PrePrintedThickPaper1S1 CoverMediaColor=White "
          "CoverPaperTray=HCF1",
          "PBCP=DT_SPECIALA3 PBCQ=PREPRINTEDTHICK1S1 PBCC=WHITE PBCT=INTRAY6"},
         {"CoverPageSize=9x11 CoverMediaType=CoatingPaper1B CoverMediaColor=Any "
          "CoverPaperTray=4thTray",
          "PBCP=LETTERCOVER PBCQ=COATEDPAPERB PBCC=UNSPECIFIED PBCT=INTRAY4"}},
        "Position=X Trimming=None ", "PBRE=X MSDA= PBTC=OFF PBTP= ", " PBCI=OFF");
  EXPECT_EQ(
      BindLines("Trimming=None Position=" + std::string(80, 'x')),  // a line has 99 characters
      "@PJL SET JOBATTR=\"@PBRE=" + std::string(75, 'x') + Lines("MSDA= PBTC=OFF PBTP= PBCI=OFF"));
}

}  // namespace
