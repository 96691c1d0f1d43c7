// Covers, inserted sheets, page exceptions and bound books: job options in, attribute lines out.

#include <gtest/gtest.h>

#include <chrono>
#include <sstream>
#include <string>

#include "modules/perfectbind/PerfectBind.h"
#include "modules/specialpages/SpecialPages.h"
#include "tests/support/Tickets.h"

namespace {

// "EFCV=NONE EMCW=5" as the device's lines, or its words between others.
std::string Lines(const std::string& text, const std::string& before = "@PJL SET JOBATTR=\"@",
                  const std::string& behind = "\"\n") {
  std::istringstream words(text);
  std::string lines;
  for (std::string word; words >> word;) lines += before + word + behind;
  return lines;
}

// Runs a table of rows "settings -> attributes;", all of them between these.
void Check(std::string (*linesFor)(const std::string&), const std::string& table,
           const std::string& settings = "", const std::string& first = "",
           const std::string& last = "") {
  std::istringstream rows(table);
  for (std::string row; std::getline(rows >> std::ws, row, ';');) {
    const std::string attributes = first + row.substr(row.find("->") + 2) + last;
    EXPECT_EQ(linesFor(settings + row.substr(0, row.find("->"))), Lines(attributes)) << row;
  }
}

// The lines for settings such as "Cover#=1 Cover@0=1,0,print-both %0=0,0,0,33"; % is a command.
std::string SpecialPages(const std::string& settings) {
  std::string all;
  for (char c : Lines(settings, "XPIF", " ")) {
    all += c == '#'   ? "CountTicket"
           : c == '@' ? "ValueTicket_"
           : c == '%' ? "CommandTicket_"
                      : std::string{c};
  }
  Arguments args(Tickets(all));
  testing::internal::CaptureStdout();
  SpecialPageInializeDescriptionTable();
  SpecialPageGetTicketFromPDE(args);
  OutputXPJLCommandForSpecialPage(args);
  return testing::internal::GetCapturedStdout();
}

TEST(SpecialPages, CoversInsertionsAndExceptions) {
  Check(SpecialPages, R"( Cover#=1 Insertion#=0 Exception#=0 %0=0,0,0,33
      Cover@0=1,1,print-front,stationary,blue,2100,2970 -> EFCV=NONE EBCV=PRINTFRONT EMCP=CUSTOM
      EMCW=2100 EMCH=2970 EMCQ=stationary EMCC=BLUE; Cover@0=0,0,x ->; Cover#=0 Cover@0=0,0,x ->;
    Cover#=-1 Cover@0=0,0,x ->; Cover#=1 Cover@0= ->; Cover#=1 Cover@1=0,0,x Cover@00=0,0,x ->;
    Cover#=1 Cover@0=0,2,print-none -> EFCV=PRINTNONE EBCV=NONE;
    Cover#=1 Cover@0=0,0,print-both -> EFCV=PRINTBOTH EMCT=TRAYT1 EBCV=NONE;
    Cover#=1 Cover@0=1,1,x,m,red, -> EFCV=NONE EMCP=FORMALSIZE EMCW= EMCH= EMCQ=m EMCC=RED;
    Cover#=1 Cover@0=1 -> EFCV=NONE EMCP=FORMALSIZE EMCW=1 EMCH=1 EMCQ=1;
    Cover#=2 Cover@0=0,0,print-all Cover@1=1,1,print-back,m,Blue,1,2 -> EMCT=TRAYT1 EBCV=PRINTBACK
      EMCP=FORMALSIZE EMCW=1 EMCH=2 EMCQ=m;
    Cover#=2 %0=0,0,0,330 %1=0,0,0,33 Cover@0=2,1,print-front,a,blue,1,2
      Cover@1=0,1,x,m,no-color,3,4 -> EMCP=CUSTOM EMCW=3 EMCH=4 EMCQ=m EMCC=CLEAR;
    Insertion#=4 %0=1,0,0,0,33 Insertion@0=0,4,2 Insertion@1=1,5,3,pink,1,8,m Insertion@3=2,6,1 ->
      EIST=4 EMCT=TRAYT1 EISC=2 EIST=5 EMCP=CUSTOM EMCW=1 EMCH=8 EMCQ=m EMCC=PINK EISC=3 EIST=6
      EISC=1; Insertion#=2 Insertion@1= -> EIST= EISC=;
    Insertion#=1 Insertion@0=1,7,2,a,b -> EIST=7 EMCP=FORMALSIZE EMCW=b EMCH=b EMCQ=b EISC=2;
    Exception#=2 Exception@0=0,1,9,3,5,two-sided-long-edge,m,custom_2,1,2 %0=2,0,33
      Exception@1=0,1,9,7,8,two-sided,m,none,1,2 -> EOVS=3 EMCP=CUSTOM EMCW=1 EMCH=2 EMCQ=m
      EMCC=CUSTOM2 EMDP=DUPLEX EOVE=5 EOVS=7 EMCP=CUSTOM EMCW=1 EMCH=2 EMCQ=m EOVE=8;
    Exception#=2 Exception@0=0,1,9,3,4,one-sided,m,buff,5 Exception@1=,,,,,two-sided-short-edge, ->
      EOVS=3 EMCP=FORMALSIZE EMCW=5 EMCH=5 EMCQ=m EMCC=BUFF EMDP=SIMPLEX EOVE=4 EOVS=
      EMCP=FORMALSIZE EMCW= EMCH= EMCQ= EMDP=TUMBLE EOVE=;)");
}

// How six entries get their sizes by these commands: C is custom, F a formal size.
std::string Sizes(const std::string& commands) {
  const std::string lines = SpecialPages(commands + R"( Cover#=2 Insertion#=4 Exception#=2
    Cover@0=0,1 Cover@1=1,1 Insertion@0=1 Insertion@2=1 Exception@0=2 Exception@1=2)");
  std::string sizes;
  for (std::size_t at = 0; (at = lines.find("EMCP=", at)) != lines.npos;) sizes += lines[at += 5];
  return Lines(sizes);
}

// Also a missing entry has its command, and where commands run out, the last one counts.
TEST(SpecialPages, CommandsPairWithTheEntriesOfTheirKind) {
  Check(Sizes, R"( -> FFFFFF; %7=0,0,0,33 -> CCCCCC; %8=0,0,0,33 -> FFFFFF;
    %0=2,0,33 %1=1,0,0,0,12 %2=0,0,0,33 %4=1,0,0,0,33 -> CCFCCC;
    %0=2,0,33 %1=1,0,0,0,3 %2=1,0,0,0,3 %4=1,0,0,0,33 -> FFFCCC;
    %0=1,0,0,0,9 %1=1,0,0,0,33 %2=1,0,0,0,3,33 %3=1,0,0,0,33,8 -> FFFFCC;
    %0=3,0,33,33 %1=33 -> FFFFFF; %0=0,0,0,330 %1=0,0,0,033 -> FFFFFF;
    %0=0,0,0,33 %1=0,0 -> CFFFFF; %0=0,000033 %1=0,12,3,33 -> CFFFFF;
    %0=1,33,33,33,33 %1=1,000,33,33 %2=1,0000,,33 %3=2,,33 -> FFCCFF;)");
}

TEST(SpecialPages, LongFieldsAndHostileCountsAreHarmless) {
  const std::string x(63, 'x');  // a field's 63 characters; of a ticket 255 count
  const auto started = std::chrono::steady_clock::now();
  Check(SpecialPages, "Insertion#=1 Insertion@0=1,2,x" + x + ",blue," + std::string(179, 'x') +
                          ",56 -> EIST=2 EMCP=FORMALSIZE EMCW=" + x +
                          " EMCH=5 EMCQ=5 EMCC=BLUE EISC=" + x + ";");
  Check(SpecialPages, R"( Cover#=99999999999 Insertion#=2147483647 Exception#=2147483647
      Cover@2147483646=0,1,x,m,c,1,2 %2147483646=0,0,0,33 Insertion@9=0,1,2 Insertion@10=0,3 ->
      EMCP=CUSTOM EMCW=1 EMCH=2 EMCQ=m EIST=1 EMCT=TRAYT1 EISC=2 EIST=3 EMCT=TRAYT1 EISC=3;
    Cover#=2147483647 Insertion#=1 Insertion@0=0,1,2 -> EIST=1 EMCT=TRAYT1 EISC=2;
    Cover#=-2147483648 Insertion#=1 Insertion@0=0,1,2 -> EIST=1 EMCT=TRAYT1 EISC=2;)");
  EXPECT_EQ(psOptionSpecialPage.coverCount, 0);
  EXPECT_LT(std::chrono::steady_clock::now() - started, std::chrono::seconds(2));
}

// The lines for settings such as "Position=BindLeft PageSize=A4".
std::string BindLines(const std::string& settings) {
  Arguments args(Lines(settings, "ZLVPBind", " "));
  testing::internal::CaptureStdout();
  PBindGetTicketFromPDE(args);
  OutputXPJLCommandforPerfectBind();
  return testing::internal::GetCapturedStdout();
}

TEST(PerfectBinding, FollowsItsOptions) {
  EXPECT_EQ(BindLines("Position=BindLeft"), "");  // no PPD
  const UsedPPD ppd(
      "*OpenUI *PageSize/Size: PickOne\n*PageSize A4: \"\"\n*PageSize SRA3: \"\"\n*CloseUI: "
      "*PageSize\n*PaperDimension A4: \"595 842\"\n*PaperDimension SRA3: \"906.9 1276\"\n");
  Check(BindLines, R"( None -> PBTC=OFF PBBP=A4 PBTP=A4;
    1EdgeCut -> PBTC=FACE PBBP=A4 PBTP=CUSTOM PBTW=2000 PBTH=2970 ISXO=-50 ISXT=50;
    3EdgeCut -> PBTC=FULLBLEED PBBP=A4 PBTP=CUSTOM PBTW=2000 PBTH=2910 ISXO=-50 ISXT=50;
    Other -> PBTC=Other PBBP=A4 PBTP=CUSTOM PBTW=2000 PBTH=2910 ISXO=-50 ISXT=50;
    1EdgeCutMinimum -> PBTC=FACE PBBP=A4 PBTP=CUSTOM PBTW=2030 PBTH=2970;
    3EdgeCutMinimum -> PBTC=FULLBLEED PBBP=A4 PBTP=CUSTOM PBTW=2030 PBTH=2830;
    1EdgeSpecifySize -> PBTC=FACE PBBP=A4 PBTP=SA3 PBTW=3190 PBTH=4500 ISXO=545 ISXT=-545;
    1EdgeCut CutPositionFore= -> PBTC=FACE PBBP=A4 PBTP=CUSTOM PBTW=0 PBTH=0 ISXO=0 ISXT=0;
    X CutPositionFore= -> PBTC=X PBBP=A4 PBTP=CUSTOM PBTH=2910 ISXO=0 ISXT=0;
    X CutPositionFore=125 -> PBTC=X PBBP=A4 PBTP=CUSTOM PBTW=2090 PBTH=2910 ISXO=-5 ISXT=5;
    X CutPositionFore=7 -> PBTC=X PBBP=A4 PBTP=CUSTOM PBTW=2100 PBTH=2910 ISXO=0 ISXT=0;
    X CutPositionTop=xmm -> PBTC=X PBBP=A4 PBTP=CUSTOM PBTW=2000 PBTH=2970 ISXO=-50 ISXT=50;
    1EdgeSpecifySize PageSize= -> PBTC=FACE PBTP=SA3 PBTW=3190 PBTH=4500 ISXO=1595 ISXT=-1595;
    1EdgeCut PageSize=B5 -> PBTC=FACE PBBP=JISB5 PBTP=CUSTOM PBTW=-100 PBTH=0 ISXO=-50 ISXT=50;)",
        "CutPageSize=SRA3 CutPositionTop=3mm CutPositionFore=10mm PageSize=A4 Position=BindLeft "
        "Trimming=",
        "PBRE=LEFT MSDA=ROTSEFLAND ", " PBCI=OFF");
  EXPECT_STREQ(psoptionpbind.pageSize, "JISB5");
  Check(BindLines, "->; Position=None PageSize=A4 CoverPageSize=DL ->; Position=OFF ->;");
  Check(BindLines, R"( BindLeft -> PBRE=LEFT MSDA=ROTSEFLAND PBTC=OFF PBTP= PBAW=7 PBAH=-8 PBAT=1
      PBAB=2 PBAF=3 PBAX=4 PBAY=-5 PBAV=6;
    BindTop -> PBRE=TOP MSDA=ROTSEFLAND PBTC=OFF PBTP= PBAW=7 PBAH=-8 PBAT=1 PBAB=2 PBAF=3 PBAX=4
      PBAY=-5 PBAV=6;
    BindRight PageSize=SRA3 CutPageSize=A4 Trimming=3EdgeSpecifySize -> PBRE=RIGHT MSDA=ROTLEFPORT
      PBTC=FULLBLEED PBBP=SA3 PBTP=A4 PBTW=2100 PBTH=2970 ISXO=545 ISXT=-545 PBAW=7 PBAH=-8 PBAB=1
      PBAT=2 PBAF=-3 PBAX=-4 PBAY=5 PBAV=-6;)",
        "Trimming=None RotationAdjustTop=1 RotationAdjustBot=2 RotationAdjustFore=3 CoverAdjustX=4 "
        "CoverAdjustY=5 CutPositionAdjustmentTB=6 CutPageAdjustmentFore=7 CutPageAdjustmentTB=-8 "
        "Position=",
        "", " PBCI=OFF");
  Check(BindLines, R"( CoverPageSize=DL -> PBCP=LEDGER; CoverMediaColor=b -> PBCC=b PBCT=;
    CoverPaperTray=HCF1 ->;
    CoverPageSize=ZLV122x170 CoverMediaType=PrePrintedThickPaper1S1 CoverMediaColor=White
      CoverPaperTray=HCF1 -> PBCP=DT_SPECIALA3 PBCQ=PREPRINTEDTHICK1S1 PBCC=WHITE PBCT=INTRAY6;
    CoverPageSize=9x11 CoverMediaType=CoatingPaper1B CoverMediaColor=Any CoverPaperTray=4thTray
      -> PBCP=LETTERCOVER PBCQ=COATEDPAPERB PBCC=UNSPECIFIED PBCT=INTRAY4;)",
        "Position=X Trimming=None ", "PBRE=X MSDA= PBTC=OFF PBTP= ", " PBCI=OFF");
  EXPECT_EQ(
      BindLines("Trimming=None Position=" + std::string(80, 'x')),  // a line has 99 characters
      "@PJL SET JOBATTR=\"@PBRE=" + std::string(75, 'x') + Lines("MSDA= PBTC=OFF PBTP= PBCI=OFF"));
}

}  // namespace
