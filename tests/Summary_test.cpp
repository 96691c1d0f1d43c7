// Colour, toner and line weight, the job summary and the booklet lines: options in, lines out.

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "modules/booklet/Booklet.h"
#include "modules/comment/Comment.h"
#include "modules/quality/Quality.h"
#include "tests/support/Tickets.h"
#include "text/BoundedText.h"

namespace {

// A colour printer whose colour mode has this default.
std::string ColorPPD(const std::string& mode) {
  return "*ColorDevice: True\n*OpenUI *ZLVColorMode: PickOne\n*DefaultZLVColorMode: " + mode +
         "\n*ZLVColorMode Color: \"\"\n*ZLVColorMode Black: \"\"\n*CloseUI: *ZLVColorMode\n";
}

// What `write` writes for a job with these options, without the prefix that all its lines have.
template <typename Write>
std::string Lines(const std::string& ppdLines, const std::string& options,
                  const std::string& prefix, Write write) {
  std::istringstream lines(Written(ppdLines, options, [&](char* args[]) {
    CommentGetTicketFromPDE(args);
    write();
  }));
  std::string items;
  for (std::string line; std::getline(lines, line);) {
    EXPECT_TRUE(line.starts_with(prefix)) << line;
    items += (items.empty() ? "" : " ") + line.substr(prefix.size());
  }
  return items;
}

TEST(Quality, SavesToner) {
  const std::string user = "ZLVTonerSaver=UserInput ZLVTonerReductionRate=";
  const struct {
    std::string options, lines;
  } cases[] = {
      {"", ""},
      {"ZLVTonerSaver=false", "ECONOMODE=OFF REDUCTIONRATE=0"},
      {"ZLVTonerSaver=true", "ECONOMODE=ON REDUCTIONRATE=0"},
      {"ZLVTonerSaver=Mode1", "ECONOMODE=MODE1 REDUCTIONRATE=0"},
      {"ZLVTonerSaver=Mode3", "ECONOMODE=MODE3 REDUCTIONRATE=0"},
      {"ZLVTonerSaver=True", "REDUCTIONRATE=0"},  // the PPD's word is not the dialog's
      {"ZLVTonerSaver=UserInput", ""},
      {user + "Percent", ""},
      {user + "Percent35", "ECONOMODE=ON REDUCTIONRATE=35"},
      {user + "Percent150", "ECONOMODE=ON REDUCTIONRATE=99"},
      {user + "Percent00000459", "ECONOMODE=ON REDUCTIONRATE=45"},  // seven digits count
      {user + "Percent0", "ECONOMODE=OFF REDUCTIONRATE=0"},
      {user + "Percent-5", "ECONOMODE=OFF REDUCTIONRATE=0"},
      {user + "Percenthalf", "ECONOMODE=OFF REDUCTIONRATE=0"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(Lines("", c.options, "@PJL SET ", OutputXPJLCommandForTonerSaver), c.lines)
        << c.options;
  }
}

TEST(Quality, SetsLineWeightAndRenderMode) {
  const struct {
    std::string ppd, options, lines;
  } cases[] = {
      {"", "", "RENDERMODE=GRAYSCALE"},
      {ColorPPD("Color"), "", "RENDERMODE=COLOR"},
      {ColorPPD("Black"), "", "RENDERMODE=GRAYSCALE"},
      {"*ColorDevice: True\n", "", "RENDERMODE=GRAYSCALE"},
      {"", "ZLVColorMode=Color", "RENDERMODE=COLOR"},
      {ColorPPD("Color"), "ZLVColorMode=Black", "RENDERMODE=GRAYSCALE"},
      {ColorPPD("Color"), "ZLVColorMode=Auto", ""},
      {"", "ZLVColorMode=Auto", "RENDERMODE=GRAYSCALE"},
      {"", "ZLVLineWeightAdjustment=Normal", "JOBATTR=\"@LWAD=0\" RENDERMODE=GRAYSCALE"},
      {"", "ZLVLineWeightAdjustment=Strongly3", "JOBATTR=\"@LWAD=-3\" RENDERMODE=GRAYSCALE"},
      {"", "ZLVLineWeightAdjustment=Strongly0", "JOBATTR=\"@LWAD=-0\" RENDERMODE=GRAYSCALE"},
      {"", "ZLVLineWeightAdjustment=Weakly12", "JOBATTR=\"@LWAD=1\" RENDERMODE=GRAYSCALE"},
      {"", "ZLVLineWeightAdjustment=Weakly", "RENDERMODE=GRAYSCALE"},
      {"", "ZLVLineWeightAdjustment=Level2", "RENDERMODE=GRAYSCALE"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(Lines(c.ppd, c.options, "@PJL SET ", OutputXPJLCommandOthers), c.lines)
        << c.ppd << c.options;
  }
}

TEST(Quality, FindsTheLineBehindAFeature) {
  const struct {
    const char *keyword, *choice, *line;
  } cases[] = {
      {"*ZLVSetTrapMode", "False", "@PJL SET JOBATTR=\"@TRAP=OFF\"\n"},
      {"*ZLVBrightnes", "Dark5", "@PJL SET JOBATTR=\"@PSBR=-5\"\n"},
      {"*ZLVColorDensityBlackHigh", "+2", "@PJL SET JOBATTR=\"@AJKH=5\"\n"},
      {"*ZLVColorDensityBlackHigh", "+3", nullptr},  // the last row is never found
      {"*ZLVSetTrapMode", "false", nullptr},
      {"ZLVSetTrapMode", "False", nullptr},
      {"*", "", nullptr},
      {"", "", nullptr},
  };
  for (const auto& c : cases) {
    EXPECT_STREQ(GetThePJLCommandfromKeywordsandMarkedValue(c.keyword, c.choice), c.line)
        << c.keyword << c.choice;
  }
}

TEST(Quality, GivesDefaultsForWhatThePPDDoesNotOffer) {
  const std::string offered =
      "*OpenUI *ZLVBrightnes: PickOne\n*DefaultZLVBrightnes: Normal\n"
      "*ZLVBrightnes Normal: \"\"\n*CloseUI: *ZLVBrightnes\n";
  EXPECT_EQ(Lines(offered, "", "@PJL SET ",
                  [] { OutputPJLCommandForPPDKeyArray(PPDKeyArray, JobPPD()); }),
            "JOBATTR=\"@TRAP=OFF\" JOBATTR=\"@GRGU=OFF\" JOBATTR=\"@RGBP=SRGB\" "
            "JOBATTR=\"@RGBG=22\" ECONOMODE=OFF");
}

std::string Summary(const std::string& options) {
  return Lines("", options, "@PJL COMMENT PRINTJOBINFO ", [] {
    OutputXPJLCommandforCommentBasic();
    OutputXPJLCommandforCommentAdvanced();
  });
}

// One item of the summary, empty when it is missing.
std::string Item(const std::string& name, const std::string& options) {
  std::istringstream items(Summary(options));
  for (std::string item; items >> item;) {
    if (item.starts_with(name + "=")) return item.substr(name.size() + 1);
  }
  return "";
}

TEST(Comment, SummarisesWholeJobs) {
  EXPECT_EQ(Summary(""),
            "DUPLEXTYPE=SIMPLEX COLORMODE=GRAYSCALE NUP=1 ORIENTATION=PORTRAIT "
            "MIXEDSIZETYPE=NONE CUD=OFF");
  EXPECT_EQ(Summary("sides=two-sided-long-edge ZLVColorMode=Color number-up=4 ZLVStaple=TopDouble "
                    "ZLVPunch=LeftPunch ZLVNumPunchHoles=2Holes orientation-requested=4 "
                    "com.apple.print.PrintSettings.PMCopies..n.=3 collate "
                    "com.apple.print.PrintSettings.PMLayoutDirection..n.=5"),
            "JOBCOPIES=3 PAGECOPIES=1 DUPLEXTYPE=DUPLEX COLORMODE=COLOR NUP=4 STAPLE=ON PUNCH=ON "
            "ORIENTATION=LANDSCAPE NUPEX=DOWNTHENRIGHT STAPLEEX=TOPDUAL "
            "PUNCHEX=HOLES[TWO]:LOCATION[LEFT] MIXEDSIZETYPE=NONE CUD=OFF");
  EXPECT_EQ(Summary("ZLVSignature=LeftSigCenterStaple ZLVSigVol=5Sheets nocollate number-up=2 "
                    "com.apple.print.PrintSettings.PMCopies..n.=2 ZLVStaple=SaddleStaple"),
            "PAGECOPIES=2 JOBCOPIES=1 DUPLEXTYPE=TUMBLE COLORMODE=GRAYSCALE NUP=2 STAPLE=OFF "
            "BOOKLETTYPE=TYPE[MANUALDIVIDE]:THRESHOLD[5] ORIENTATION=ROTATEDPORTRAIT "
            "NUPEX=RIGHTTODOWN SADDLESTAPLE=ON MIXEDSIZETYPE=NONE CUD=OFF");
}

TEST(Comment, KeepsItsCollationWhenTheOptionsSayNothingOfIt) {
  CopyBounded(psoptioncomment.collate, "collate");
  CommentGetTicketFromPDE(Arguments("ZLVStaple=None"));
  EXPECT_STREQ(std::exchange(psoptioncomment, {}).collate, "collate");
}

TEST(Comment, FollowsTheRulesOfEachItem) {
  const std::string edge = " DuplexBindingEdge..n.=",
                    direction = " com.apple.print.PrintSettings.PMLayoutDirection..n.=";
  const struct {
    std::string item, options, value;
  } cases[] = {
      {"JOBCOPIES", "collate", "-1"},
      {"PAGECOPIES", "collate=true nocollate=1", "-1"},
      {"DUPLEXTYPE", "sides=two-sided-long-edge" + edge + "0", "SIMPLEX"},
      {"DUPLEXTYPE", "sides=two-sided-short-edge" + edge + "2", "DUPLEX"},
      {"DUPLEXTYPE", "sides=two-sided-short-edge", "TUMBLE"},
      {"DUPLEXTYPE", "sides=other" + edge + "3", "TUMBLE"},
      {"DUPLEXTYPE", "sides=other" + edge + "1", "SIMPLEX"},
      {"DUPLEXTYPE", "sides=other", ""},
      {"DUPLEXTYPE", "ZLVSignature=LeftSig" + edge + "2", "DUPLEX"},
      {"STAPLE", "ZLVStaple=None", "OFF"},
      {"STAPLEEX", "ZLVStaple=UpperLeftSingle", "TOPLEFT"},
      {"STAPLEEX", "ZLVStaple=UpperRightSingle", "TOPRIGHT"},
      {"STAPLEEX", "ZLVStaple=LowerRightSingle", "BOTTOMRIGHT"},
      {"STAPLEEX", "ZLVStaple=LowerLeftSingle", "BOTTOMLEFT"},
      {"STAPLEEX", "ZLVStaple=LeftDouble", "LEFTDUAL"},
      {"STAPLEEX", "ZLVStaple=RightDouble", "RIGHTDUAL"},
      {"STAPLEEX", "ZLVStaple=xBottomDouble", "BOTTOMDUAL"},
      {"STAPLEEX", "ZLVStaple=None", ""},
      {"PUNCH", "ZLVPunch=None", "OFF"},
      {"PUNCHEX", "ZLVPunch=Right ZLVNumPunchHoles=3Holes", "HOLES[THREE]:LOCATION[RIGHT]"},
      {"PUNCHEX", "ZLVPunch=Top ZLVNumPunchHoles=4Holes", "HOLES[FOUR]:LOCATION[TOP]"},
      {"PUNCHEX", "ZLVPunch=Bottom ZLVNumPunchHoles=CoilPunch", "HOLES[COIL]:LOCATION[BOTTOM]"},
      {"PUNCHEX", "ZLVPunch=Left ZLVNumPunchHoles=12Holes", ""},
      {"PUNCHEX", "ZLVPunch=None ZLVNumPunchHoles=2Holes", ""},
      {"BOOKLETTYPE", "ZLVSignature=None ZLVSigVol=5Sheets", "TYPE[NOBOOKLET]"},
      {"BOOKLETTYPE", "ZLVSignature=LeftSig", "TYPE[NOBOOKLET]"},
      {"BOOKLETTYPE", "ZLVSignature=LeftSig ZLVSigVol=None", "TYPE[NONEDIVIDE]"},
      {"BOOKLETTYPE", "ZLVSignature=LeftSig ZLVSigVol=12", "TYPE[MANUALDIVIDE]:THRESHOLD[12]"},
      {"SADDLESTAPLE", "ZLVSignature=None", "OFF"},
      {"SADDLESTAPLE", "ZLVSignature=RightSigCenterStaple", "ON"},
      {"NUPEX", "number-up=2" + direction + "6", "LEFTTOUP"},
      {"NUPEX", "number-up=2" + direction + "2", ""},
      {"NUPEX", "number-up=4", "RIGHTTHENDOWN"},
      {"NUPEX", "number-up=9" + direction + "3", "LEFTTHENDOWN"},
      {"NUPEX", "number-up=3" + direction + "6", "DOWNTHENLEFT"},
      {"NUPEX", "number-up=1", ""},
      {"NUP", "number-up=" + std::string(300, '8'),
       std::string(69, '8') + "@PJL"},  // the line feed is cut off too
  };
  for (const auto& c : cases) EXPECT_EQ(Item(c.item, c.options), c.value) << c.item << c.options;
}

TEST(Comment, TurnsTheOrientationWithTheSheet) {
  const struct {
    std::vector<const char*> signatures, numbersUp;
    std::string words[4];  // for the requested orientations 1, 4, 5 and 6
  } cases[] = {
      {{"LeftSig", "LeftSigCenterStaple", "LeftSigFold"},
       {"1", "4", "9", "16"},
       {"LANDSCAPE", "ROTATEDPORTRAIT", "ROTATEDPORTRAIT", "LANDSCAPE"}},
      {{"LeftSig", "LeftSigFold"},
       {"2", "6"},
       {"ROTATEDPORTRAIT", "LANDSCAPE", "LANDSCAPE", "ROTATEDPORTRAIT"}},
      {{"RightSig", "RightSigCenterStaple", "RightSigFold"},
       {"1", "4", "9", "16"},
       {"ROTATEDLANDSCAPE", "PORTRAIT", "PORTRAIT", "ROTATEDLANDSCAPE"}},
      {{"RightSig", "RightSigFold"},
       {"2", "6"},
       {"PORTRAIT", "ROTATEDLANDSCAPE", "ROTATEDLANDSCAPE", "PORTRAIT"}},
      {{"None"}, {"1"}, {"PORTRAIT", "LANDSCAPE", "ROTATEDLANDSCAPE", "ROTATEDPORTRAIT"}},
      {{"None"}, {"2", "6"}, {"LANDSCAPE", "PORTRAIT", "PORTRAIT", "LANDSCAPE"}},
      {{"None"}, {"4", "9", "16"}, {"PORTRAIT", "LANDSCAPE", "LANDSCAPE", "PORTRAIT"}},
      {{"None", "LeftSig", "RightSig", "Other"}, {"3", "8", "-1"}, {}},
      {{"Other"}, {"1", "2", "4"}, {}},
  };
  const char* requested[] = {"1", "4", "5", "6"};
  for (const auto& c : cases) {
    for (const std::string signature : c.signatures) {
      for (const std::string numberUp : c.numbersUp) {
        for (std::size_t i = 0; i < std::size(requested); i++) {
          const std::string options = "ZLVSignature=" + signature + " number-up=" + numberUp +
                                      " orientation-requested=" + requested[i];
          EXPECT_EQ(Item("ORIENTATION", options), c.words[i]) << options;
        }
      }
    }
  }
  EXPECT_EQ(Item("ORIENTATION", "orientation-requested=3"), "");
}

TEST(Booklet, TellsUTF8DevicesHowToFold) {
  const struct {
    std::string options, lines;
  } cases[] = {
      {"", "DIND=PORTRAIT"},
      {"number-up= orientation-requested=4", "DIND=PORTRAIT"},
      {"number-up=1 orientation-requested=4", "DIND=LANDSCAPE"},
      {"number-up=4 orientation-requested=5", "DIND=LANDSCAPE"},
      {"number-up=2 orientation-requested=4", "DIND=PORTRAIT"},
      {"number-up=6 orientation-requested=6", "DIND=LANDSCAPE"},
      {"ZLVSignature=None ZLVSigVol=5Sheets", "DIND=PORTRAIT DIBB=OFF DIBK=OFF"},
      {"ZLVSignature=LeftSig ZLVSigVol=None", "DIND=PORTRAIT DIBB=LEFT DIBK=NONEDIVIDE"},
      {"ZLVSignature=RightSigFold ZLVSigVol=5Sheets", "DIND=PORTRAIT DIBB=RIGHT DIBK=MANUALDIVIDE"},
      {"ZLVSignature=RightLeft", "DIND=PORTRAIT DIBB=LEFT DIBK=NONEDIVIDE"},
      {"ZLVSignature=Fold", "DIND=PORTRAIT DIBK=NONEDIVIDE"},
  };
  for (const auto& c : cases) {
    std::string lines =
        Lines(kUTF8PPD, c.options, "@PJL SET JOBATTR=\"@", OutputXPJLCommandforBooklet);
    std::erase(lines, '"');
    EXPECT_EQ(lines, c.lines) << c.options;
    EXPECT_EQ(Lines("", c.options, "", OutputXPJLCommandforBooklet), "");
    EXPECT_EQ(Lines(kLatin1PPD, c.options, "", OutputXPJLCommandforBooklet), "");
  }
}

}  // namespace
