// Whole jobs on paper: the filter's PostScript goes through Ghostscript, and the ink is looked at.

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <utf8.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <map>
#include <string>
#include <vector>

#include "queue/WatermarkTickets.h"
#include "tests/support/PageImages.h"
#include "tests/support/Patterns.h"
#include "tests/support/Tickets.h"

namespace {

// Two empty pages.
constexpr char kDocument[] =
    "%!PS\n%%BeginProlog\n/pgsave null def\n/bp{/pgsave save store}bind def\n"
    "/ep{pgsave restore showpage}bind def\n%%EndProlog\n%%EndSetup\n"
    "bp\n%%EndPageSetup\nep\nbp\n%%EndPageSetup\nep\n";

// What Ghostscript says of the PostScript.
std::string Ghostscript(const std::string& device, const std::string& postScript) {
  const ScratchFolder folder;
  const std::string path = folder.write("job.ps", postScript);
  const std::string command =
      "gs -q -dSAFER -dBATCH -dNOPAUSE -sDEVICE=" + device + " " + path + " 2>&1";
  std::string said;
  std::FILE* pipe = popen(command.c_str(), "r");
  for (int c = 0; (c = std::fgetc(pipe)) != EOF;) said += static_cast<char>(c);
  EXPECT_EQ(WEXITSTATUS(pclose(pipe)), 0) << said;
  return said;
}

// Where a page has ink, in points from its lower left corner; all 0 on an empty one.
struct Ink {
  double left, bottom, right, top;
};

std::vector<Ink> InkOfPages(const std::string& postScript) {
  std::vector<Ink> pages;
  const std::string said = Ghostscript("bbox", postScript);
  for (const std::string& box : Captures("HiResBoundingBox: ([^\n]*)", said)) {
    Ink& ink = pages.emplace_back();
    std::istringstream(box) >> ink.left >> ink.bottom >> ink.right >> ink.top;
  }
  EXPECT_EQ(pages.size(), 2u) << said;
  return pages;
}

// "DRAFT" in Helvetica at 60 points is 200 points wide and 43 high: the box is that of the ink.
constexpr double kTextWidth = 200, kTextHeight = 43;
const std::string kMark = kWatermark + std::string("WMARKHeightTicket=43 WMARKhOffsetTicket=20 ") +
                          "WMARKvOffsetTicket=-10 ";

TEST(Rendering, WatermarksAreInkedWhereTheGeometrySays) {
  if (!HasGhostscript()) GTEST_SKIP() << "Ghostscript is not installed";
  for (const int angle : {0, 45, 120, 200, 300}) {
    for (const bool upright : {true, false}) {
      for (const bool onlyFirst : {false, true}) {
        const std::string settings = kMark + "WMARKOnlyFirstTicket=" + (onlyFirst ? "1" : "0") +
                                     " WMARKAngleTicket=" + std::to_string(angle) +
                                     " WMARKOrientationTicket=" + (upright ? "1" : "2");
        SCOPED_TRACE(settings);
        const std::vector<Ink> pages = InkOfPages(PrintedDocument(settings, kDocument));
        const Ink& ink = pages.at(0);
        const double turn = angle * std::acos(-1.0) / 180;
        const double c = std::abs(std::cos(turn)), s = std::abs(std::sin(turn));
        constexpr double kTolerance = 7;  // letters do not fill their box to the corners
        EXPECT_NEAR((ink.left + ink.right) / 2, (upright ? 306 : 396) + 20, kTolerance);
        EXPECT_NEAR((ink.bottom + ink.top) / 2, (upright ? 396 : 306) - 10, kTolerance);
        EXPECT_NEAR(ink.right - ink.left, c * kTextWidth + s * kTextHeight, 3 * kTolerance);
        EXPECT_NEAR(ink.top - ink.bottom, s * kTextWidth + c * kTextHeight, 3 * kTolerance);
        EXPECT_EQ(pages.at(1).top > 0, !onlyFirst);
      }
    }
  }
}

TEST(Rendering, SnippetsLeaveNothingOnTheStacks) {
  if (!HasGhostscript()) GTEST_SKIP() << "Ghostscript is not installed";
  const std::string report = "(stacks ) print count = countdictstack =\n";
  const std::string printed = PrintedDocument(
      "SeparatorPageListTicket=2 SeparatorPageTicket=1 BookletMarginSwitchTicket=1 "
      "BookletMarginMMShiftTicket=12 AutoFitSwitchTicket=1",
      kDocument);
  EXPECT_NE(printed.find("BeginNonPPDFeatures"), printed.npos);
  const std::string plain = Ghostscript("nullpage", kDocument + report);
  EXPECT_TRUE(plain.starts_with("stacks ")) << plain;
  EXPECT_EQ(Ghostscript("nullpage", printed + report), plain);
}

}  // namespace

// Each letter that a watermark may have, as the font has it: the character that the glyph's name
// stands for, and its width.
TEST(Rendering, LettersOfWatermarksAreThoseOfTheFont) {
  std::string postScript =
      "/Helvetica-Bold findfont 1000 scalefont setfont\n"
      "/code{dup AdobeGlyphList exch known{AdobeGlyphList exch get}\n"
      "{20 string cvs dup 0(16#)putinterval cvi}ifelse =}def\n";
  // No-break space, soft hyphen and the Greek mu, which more fonts have as a sign.
  const std::map<char32_t, char32_t> looksLike = {{0xa0, ' '}, {0xad, '-'}, {0x3bc, 0xb5}};
  std::string expected;
  int letters = 0;
  for (char32_t letter = ' '; letter < 0xd800; letter++) {
    std::string text;
    double width = 0;
    utf8::append(letter, std::back_inserter(text));
    const std::string shown = ShownText(text, width);
    if (shown.empty()) continue;
    letters++;
    postScript += "0 0 moveto " + shown + "show currentpoint pop round cvi =\n";
    expected += std::to_string(std::lround(width * 1000)) + "\n";
    for (const std::string& name : Captures("/([A-Za-z0-9]+) glyphshow", shown)) {
      postScript += "/" + name + " code currentfont/CharStrings get/" + name + " known =\n";
      const auto other = looksLike.find(letter);
      expected += std::to_string(other != looksLike.end() ? other->second : letter) + "\ntrue\n";
    }
  }
  EXPECT_EQ(Ghostscript("bbox", postScript), expected);
  EXPECT_EQ(letters, 524);
}
