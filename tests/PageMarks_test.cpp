// Where page marks go, byte by byte; and documents of many producers on paper, with and without.

#include "queue/PageMarks.h"

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <algorithm>
#include <cerrno>
#include <regex>

#include "queue/DocumentBody.h"
#include "queue/PageMarksProlog.h"
#include "tests/support/GoldenFile.h"
#include "tests/support/PageImages.h"
#include "tests/support/Patterns.h"
#include "tests/support/Tickets.h"

namespace {

// Reads a text in pieces; an empty piece is an interruption, and `error` stands behind the last.
ByteReader Source(const std::string& text, std::size_t piece, int error = 0) {
  return [text, piece, error, at = std::size_t{0}, calls = 0](char* buffer,
                                                              std::size_t size) mutable -> ssize_t {
    errno = ++calls % 3 == 0 ? EINTR : error;
    if (errno == EINTR || (error != 0 && at == text.size())) return -1;
    const std::size_t length = text.copy(buffer, std::min(size, piece), at);
    at += length;
    return static_cast<ssize_t>(length);
  };
}

template <typename Reader>
std::string ReadAll(Reader& reader, std::size_t room, int* error = nullptr) {
  std::string all;
  std::string buffer(room, '\0');
  for (;;) {
    errno = 0;
    const ssize_t count = reader.read(buffer.data(), room);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0 && error != nullptr) *error = errno;
    if (count <= 0) return all;
    all.append(buffer, 0, static_cast<std::size_t>(count));
  }
}

std::string WithMarks(const std::string& document, PageMarks::Paper paper = {}) {
  PageMarks marks(Source(document, 65536), paper);
  return ReadAll(marks, 65536);
}

std::string Filled(const std::string& places, std::string_view definitions, std::string_view page) {
  const std::string text = std::regex_replace(places, std::regex("<D>"), std::string(definitions));
  const std::string paged = std::regex_replace(text, std::regex("<P>"), std::string(page));
  return std::regex_replace(paged, std::regex("<B>"), page.empty() ? "" : " ");
}

// Whatever pieces come and are taken, also when reading fails in the end.
TEST(PageMarks, StandAtTheirPlaces) {
  for (const std::string& places : GoldenLines("page-marks.txt")) {
    for (const auto& [piece, room] : {std::pair{1U, 65536U}, {8U, 10U}, {65536U, 1U}}) {
      for (const int error : {0, EIO}) {
        PageMarks marks(Source(Filled(places, "", ""), piece, error));
        int said = 0;
        EXPECT_EQ(ReadAll(marks, room, &said), Filled(places, kPageMarksProlog, kPageMarksOfPage));
        EXPECT_EQ(said, error);
      }
    }
  }
}

TEST(PageMarks, OfHeadsAndPagesThatDoNotEndAreDecidedInTime) {
  const std::string head = "%!PS-Adobe-3.0\n", page = "%%Page: 1 1\n", many(9'000'000, 'x');
  const std::string definitions(kPageMarksProlog), marks(kPageMarksOfPage), end = "\n" + page;
  EXPECT_EQ(WithMarks(head + many + end + "bp\nep\n"),
            head + definitions + many + end + "bp\nep\n");
  EXPECT_EQ(WithMarks(head + many + end + "x\n" + page),
            head + definitions + many + end + marks + "x\n" + page + marks);
  EXPECT_EQ(WithMarks(head + page + "bp\n" + many + end), head + page + "bp\n" + many + end);
  EXPECT_EQ(WithMarks(head + page + many + end),
            head + definitions + page + marks + many + end + marks);
}

TEST(PageMarks, AreForWhatStandsAheadOfTheFirstExitSequence) {
  for (const std::string& line : GoldenLines("exit-sequences.txt")) {
    const std::size_t begin = line.find('<'), end = line.rfind('>');
    const std::string printed = line.substr(begin + 1, end - begin - 1);
    const std::string input = line.substr(4, begin - 4) + printed + line.substr(end + 1);
    for (const auto& [piece, room] : {std::pair{1U, 65536U}, {8U, 10U}, {65536U, 1U}}) {
      for (const int error : {0, EIO}) {
        DocumentBody body(Source(input, piece, error));
        int said = 0;
        EXPECT_EQ(ReadAll(body, room, &said), printed) << line;
        EXPECT_EQ(said, error);
        EXPECT_EQ(body.isCut(), line.starts_with("cut ")) << line;
      }
    }
  }
}

// On paper.

// How many pages the filter behind finds.
std::size_t PagesCounted(const std::string& document) {
  FilterJob job;
  job.input = document;
  return Captures("(PAGE:)", RunFilter(job).messages).size();
}

// The same pixels with marks, and with a watermark between them that draws nothing; and a watermark
// in the middle of each page. Its letter covers 28 by 144 points there.
void ExpectSamePages(const std::string& document, std::size_t pages, bool isInked = true) {
  const std::string marked = WithMarks(document, {612, 792});
  EXPECT_NE(marked, document);
  const std::string plain = Rendered(document);
  EXPECT_EQ(ImagesIn(plain).size(), pages);
  EXPECT_TRUE(Rendered(marked) == plain);
  const std::string watermark =
      kWatermark + std::string(
                       "WMARKDensityTicket=100 WMARKFontTicket=Helvetica-Bold "
                       "WMARKFontSizeTicket=200 WMARKWidthTicket=56 WMARKHeightTicket=144 ");
  const auto printed = [&](const std::string& text) {
    return Rendered(PrintedDocument(watermark + "WMARKTextTicket=" + text, marked));
  };
  EXPECT_TRUE(printed("()") == plain);
  const std::vector<PageImage> inked = ImagesIn(printed("(I)"));
  EXPECT_EQ(inked.size(), pages);
  for (const PageImage& page : inked) {
    EXPECT_EQ(page.centre() == std::string("\0\0\xFF", 3), isInked);
  }
}

TEST(PageMarks, LeavePagesOfManyProducersAsTheyAre) {
  if (!HasGhostscript()) GTEST_SKIP() << "Ghostscript is not installed";
  const ScratchFolder folder;
  folder.write("mixed.ps",
               "%!PS\n/Helvetica 30 selectfont\n"
               "72 700 moveto(one)show showpage<</PageSize[792 612]>>setpagedevice\n"
               "72 500 moveto(two)show .5 setgray 300 100 200 50 rectfill showpage\n"
               "showpage<</PageSize[612 792]>>setpagedevice 72 700 moveto(four)show showpage\n");
  const std::string ppd = "PPD=" PPD_DIR "/zelva-atelier-c90.ppd ";
  const auto made = [&](const std::string& command) {
    const std::string script = "cd " + folder.path() + " && export " + ppd + " F=" CUPS_FILTERS +
                               " HANDBOOK=" SAMPLES_DIR "/handbook.ps" + " && (" + command +
                               ")>out.ps 2>messages";
    const int status = std::system(script.c_str());
    if (WEXITSTATUS(status) == 127) return std::string();  // not installed; macOS lacks some
    EXPECT_EQ(status, 0) << command << FileContent(folder.path() + "/messages");
    return FileContent(folder.path() + "/out.ps");
  };
  made("gs -q -dBATCH -dNOPAUSE -sDEVICE=pdfwrite -dAutoRotatePages=/None -o a.pdf mixed.ps");
  made("gs -q -dBATCH -dNOPAUSE -sDEVICE=ps2write -o a.ps a.pdf && pdftops a.pdf b.ps");
  made("pdftocairo -ps a.pdf c.ps");
  for (const std::string& line : GoldenLines("producers.txt")) {
    const std::string command = line.substr(line.find(' '));
    const std::size_t pages = std::stoul(line);
    SCOPED_TRACE(command);
    const std::string document = made(command);
    if (document.empty()) continue;
    ExpectSamePages(document, pages);
    PageMarks marks(Source(document, 65536));
    const std::size_t sheets = PagesCounted(ReadAll(marks, 65536));
    EXPECT_EQ(sheets * static_cast<std::size_t>(marks.deviceCopies()), pages);
  }
}

TEST(PageMarks, LeavePagesWrittenByHandAsTheyAre) {
  if (!HasGhostscript()) GTEST_SKIP() << "Ghostscript is not installed";
  for (const std::string& line : GoldenLines("pages-by-hand.txt")) {
    SCOPED_TRACE(line);
    const std::size_t document = line.find("%!");
    ExpectSamePages(line.substr(document), std::stoul(line), !line.starts_with("1 plain"));
  }
}

}  // namespace
