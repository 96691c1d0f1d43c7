// Whole jobs on paper: the filter's PostScript goes through Ghostscript, and the ink is looked at.

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "tests/support/Patterns.h"
#include "tests/support/Tickets.h"

namespace {

constexpr int kResolution = 36;  // dots per inch
constexpr int kPages = 4;        // of the sample document

struct Page {
  int width = 0, height = 0;
  std::string pixels;  // three bytes each, top row first
};

Page ReadPage(const std::string& path) {
  Page page;
  std::ifstream file(path, std::ios::binary);
  std::string magic, line;
  file >> magic >> std::ws;
  if (file.peek() == '#') std::getline(file, line);
  int most = 0;
  file >> page.width >> page.height >> most;
  file.get();
  page.pixels.assign(std::istreambuf_iterator<char>(file), {});
  return page;
}

bool HasGhostscript() {
  return std::system("gs --version >/dev/null 2>&1") == 0;
}

// What Ghostscript says of the PostScript; nothing when all is well.
std::string Ghostscript(const std::string& options, const std::string& path) {
  const std::string command = "gs -q -dSAFER -dBATCH -dNOPAUSE " + options + " " + path + " 2>&1";
  std::string said;
  std::FILE* pipe = popen(command.c_str(), "r");
  for (int c = 0; (c = std::fgetc(pipe)) != EOF;) said += static_cast<char>(c);
  const int status = pclose(pipe);
  return status == 0 ? said : said + " (status " + std::to_string(WEXITSTATUS(status)) + ")";
}

std::string Printed(const std::string& settings) {
  return PrintedDocument(settings, FileContent(SAMPLES_DIR "/handbook.ps"));
}

std::vector<Page> Render(const std::string& settings) {
  const ScratchFolder folder;
  const std::string job = folder.write("job.ps", Printed(settings));
  EXPECT_EQ(Ghostscript("-sDEVICE=ppmraw -r" + std::to_string(kResolution) +
                            " -sOutputFile=" + folder.path() + "/%d.ppm",
                        job),
            "");
  std::vector<Page> pages;
  for (int number = 1; number <= kPages; number++) {
    pages.push_back(ReadPage(folder.path() + "/" + std::to_string(number) + ".ppm"));
    EXPECT_GT(pages.back().width, 0);
  }
  return pages;
}

// Where two pages differ, in points from the lower left corner, and how much of it has the
// watermark's colour.
struct Ink {
  double left = 1e9, right = -1e9, bottom = 1e9, top = -1e9;
  int count = 0, coloured = 0;
};

Ink Difference(const Page& plain, const Page& marked) {
  Ink ink;
  EXPECT_EQ(plain.pixels.size(), marked.pixels.size());
  for (int row = 0; row < plain.height; row++) {
    for (int column = 0; column < plain.width; column++) {
      const auto at = static_cast<std::size_t>(3 * (row * plain.width + column));
      const std::string now = marked.pixels.substr(at, 3);
      if (plain.pixels.compare(at, 3, now) == 0) continue;
      const double scale = 72.0 / kResolution;
      ink.count++;
      if (now == "\x80\x80\xFF" || now == "\x7F\x7F\xFF") ink.coloured++;
      ink.left = std::min(ink.left, column * scale);
      ink.right = std::max(ink.right, (column + 1) * scale);
      ink.top = std::max(ink.top, (plain.height - row) * scale);
      ink.bottom = std::min(ink.bottom, (plain.height - row - 1) * scale);
    }
  }
  return ink;
}

// "DRAFT" in Helvetica at 60 points is 200 points wide and 43 high: the box is that of the ink.
constexpr double kTextWidth = 200, kTextHeight = 43;
const std::string kMark =
    kWatermark + std::string(
                     "WMARKPaperWidthTicket=595 WMARKPaperHeightTicket=842 WMARKHeightTicket=43 "
                     "WMARKhOffsetTicket=20 WMARKvOffsetTicket=-10 ");

TEST(Rendering, WatermarksAreInkedWhereTheGeometrySays) {
  if (!HasGhostscript()) GTEST_SKIP() << "Ghostscript is not installed";
  const std::vector<Page> plain = Render("");
  for (const int angle : {0, 45, 120, 200, 300}) {
    for (const int orientation : {1, 2}) {
      for (const bool onlyFirst : {false, true}) {
        const std::string settings = kMark + "WMARKOnlyFirstTicket=" + (onlyFirst ? "1" : "0") +
                                     " WMARKAngleTicket=" + std::to_string(angle) +
                                     " WMARKOrientationTicket=" + std::to_string(orientation);
        SCOPED_TRACE(settings);
        const std::vector<Page> marked = Render(settings);
        const double turn = angle * std::acos(-1.0) / 180;
        const double c = std::abs(std::cos(turn)), s = std::abs(std::sin(turn));
        const double centreX = (orientation == 1 ? 595 : 842) / 2.0 + 20;
        const double centreY = (orientation == 1 ? 842 : 595) / 2.0 - 10;
        const Ink ink = Difference(plain[0], marked[0]);
        constexpr double kTolerance = 7;  // letters do not fill their box to the corners
        EXPECT_NEAR((ink.left + ink.right) / 2, centreX, kTolerance);
        EXPECT_NEAR((ink.bottom + ink.top) / 2, centreY, kTolerance);
        EXPECT_NEAR(ink.right - ink.left, c * kTextWidth + s * kTextHeight, 3 * kTolerance);
        EXPECT_NEAR(ink.top - ink.bottom, s * kTextWidth + c * kTextHeight, 3 * kTolerance);
        EXPECT_GT(ink.coloured, ink.count * 9 / 10);
        for (std::size_t page = 1; page < kPages; page++) {
          EXPECT_EQ(Difference(plain[page], marked[page]).count == 0, onlyFirst) << page;
        }
      }
    }
  }
}

TEST(Rendering, SnippetsLeaveNothingOnTheStacks) {
  if (!HasGhostscript()) GTEST_SKIP() << "Ghostscript is not installed";
  const std::string report = "(stacks ) print count = countdictstack =\n";
  const ScratchFolder folder;
  std::string said[2];
  int run = 0;
  for (const char* settings :
       {"",
        "SeparatorPageListTicket=2 SeparatorPageTicket=1 BookletMarginSwitchTicket=1 "
        "BookletMarginMMShiftTicket=12 AutoFitSwitchTicket=1"}) {
    const std::string printed = Printed(settings);
    EXPECT_EQ(printed.find("BeginNonPPDFeatures") != printed.npos, *settings != '\0');
    said[run++] = Ghostscript("-sDEVICE=nullpage", folder.write("job.ps", printed + report));
  }
  EXPECT_TRUE(said[0].starts_with("stacks ")) << said[0];
  EXPECT_EQ(said[1], said[0]);
}

}  // namespace
