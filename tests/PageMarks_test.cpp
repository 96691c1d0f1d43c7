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

TEST(PageMarks, KnowHowOftenTheDeviceIsToPrint) {
  const std::pair<std::string, int> setups[] = {
      {"", 1},
      {"%%BeginNonPPDFeature: NumCopies 3\n", 3},
      {"%RBINumCopies: 4\n{1 dict begin/NumCopies exch def}{userdict/#copies 3 -1 roll put}\n", 4},
      {"<</NumCopies 12>>setpagedevice\n", 12},
      {"/#copies 7 def\n/NumCopies 3 def\n", 3},
      {"/NumCopies 3 def\nuserdict/#copies 7 put\n", 7},
      {"/NumCopies -1 def\n", 1},
      {"%" + std::string(300, ' ') + "/NumCopies 9 def\n", 1},
      {"% NumCopies 9\n(NumCopies 77)pop\n%/NumCopies 9 def\n(/#copies 8 def)pop\n", 1},
      {"%RBIBeginNonPPDFeature: *NumCopies 5\r% %RBINumCopies: 7\r(\\(%RBINumCopies: 8)pop\n", 5},
      {"/NumCopies 99999999999999999999 def\n", 99999},
  };
  for (const auto& [setup, copies] : setups) {
    PageMarks marks(Source("%!PS-Adobe-3.0\n" + setup + "%%Page: 1 1\n/#copies 9 def\n", 100));
    char first;
    while (marks.read(&first, 1) < 0) continue;
    EXPECT_EQ(marks.deviceCopies(), copies) << setup;
  }
}

TEST(PageMarks, AreForWhatStandsAheadOfTheFirstExitSequence) {
  const std::string exit = "\x1b%-12345X", ps = "%!PS\n\x1b%-1234 \x1b\x1b[ @PJL\nshowpage\n";
  const std::string header = exit + "@PJL JOB\r\n@PJL ENTER LANGUAGE=POSTSCRIPT\r\n";
  const std::string blanks(9000, ' ');
  const struct {
    std::string input, body;
    bool isCut;
  } cases[] = {
      {"", "", false},
      {"\4 ", "\4 ", false},
      {ps, ps, false},
      {ps + "\x1b%-1", ps + "\x1b%-1", false},
      {"\r\n\4" + header + ps + "\4\n" + exit + "@PJL EOJ\n\4" + exit, ps + "\4\n", false},
      {blanks + header + ps, blanks, true},
      {exit + blanks + exit + "\x1b%" + ps, "\x1b%" + ps, false},
      {exit + "@PJ" + ps, "@PJ" + ps, false},
      {"\4@PJL" + ps, "\4@PJL" + ps, false},
      {exit + "@PJ" + ps + exit + "L\n", "@PJ" + ps, true},
      {"%!PS\n123" + exit, "%!PS\n123", false},
      {ps + exit + "@PJL JOB\n" + ps, ps, true},
      {ps + "(\x1b" + exit + ")" + blanks + exit, ps + "(\x1b", true},
      {header + ps + exit + "@PJL EOJ\n" + exit + "\x1b%", ps, false},
      {header + ps + exit + "@PJ", ps, false},
  };
  for (const auto& c : cases) {
    for (const auto& [piece, room] : {std::pair{1U, 65536U}, {8U, 10U}, {65536U, 1U}}) {
      for (const int error : {0, EIO}) {
        DocumentBody body(Source(c.input, piece, error));
        int said = 0;
        EXPECT_EQ(ReadAll(body, room, &said), c.body) << c.input;
        EXPECT_EQ(said, error);
        EXPECT_EQ(body.isCut(), c.isCut) << c.input;
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
  const std::pair<const char*, std::size_t> producers[] = {
      {"cat a.ps", 4},
      {"cat b.ps", 4},
      {"cat c.ps", 4},
      {"$F/pstops 1 u t 1 number-up=2 a.ps", 2},
      {"$F/pstops 1 u t 1 number-up=4 b.ps", 1},
      {"$F/pstops 1 u t 1 number-up=16 c.ps", 1},
      {"$F/pstops 1 u t 1 number-up=2 $HANDBOOK", 2},
      {"$F/pstops 1 u t 1 number-up=4 $HANDBOOK", 1},
      {"$F/pstops 1 u t 1 page-border=single $HANDBOOK", 4},
      {"$F/pstops 1 u t 2 'collate=true number-up=2' b.ps", 4},
      {"$F/pstops 1 u t 2 page-border=single b.ps", 8},
      {"$F/pdftopdf 1 u t 1 booklet=on a.pdf | $F/pdftops 1 u t 1 ''", 2},
      {"$F/pdftopdf 1 u t 1 number-up=4 a.pdf | $F/pdftops 1 u t 1 ''", 1},
      {"$F/texttops 1 u t 1 '' mixed.ps", 1},
  };
  for (const auto& [command, pages] : producers) {
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
  const std::string box = "9 9 99 50 rectfill ", next = "\n%%Page: 2 2\n";
  const std::pair<std::string, std::size_t> documents[] = {
      {box + "showpage" + next + "showpage", 2},
      {box + "showpage" + next + box, 1},
      {box + "showpage" + next + box + "showpage 9 200 9 9 rectfill showpage", 3},
      {"save " + box + "restore showpage" + next + "save " + box + "showpage restore", 2},
      {box + "copypage showpage", 2},
      {"/wide 200 def " + box + "showpage" + next + "9 9 wide 9 rectfill showpage", 2},
      {"%%BeginPageSetup\n<</PageSize[792 612]>>setpagedevice\n%%EndPageSetup\n%%EndPageSetup\n" +
           box + "showpage" + next + box + "showpage",
       2},
      {"save<</PageSize[792 612]>>setpagedevice " + box + "showpage restore", 1},
      {"gsave 2 2 scale 50 50 translate 0 0 9 9 rectclip " + box + "showpage grestore", 1},
      {"before " + box + "restore/before save def showpage" + next + "before restore showpage", 2},
      {"true setglobal 3 dict begin/ep{quit}def/bp/ep load def/page/ep load def " + box +
           "/gsave/ep load def/show/ep load def/restore/ep load def/fffbp/ep load def showpage",
       1},
      {"%%EndPageSetup\n" + box + "showpage" + next + "%%EndPageSetup\ncount 0 gt{quit}if showpage",
       2},
      {box + "sp" + next + "sp" + next + box + "sp", 3},
  };
  ExpectSamePages(
      "%!PS-Adobe-3.0\n/showpage/showpage load type/operatortype eq"
      "{{late{systemdict/showpage get exec}if}}{/showpage load}ifelse def\n%%Page: 1 1\n"
      "/late false def showpage/late true def " +
          box + "showpage\n",
      1);
  for (const auto& [pages, count] : documents) {
    SCOPED_TRACE(pages);
    ExpectSamePages("%!PS-Adobe-3.0\n/sp{showpage}bind def/before save def\n%%Page: 1 1\n" + pages +
                        "\n%%Trailer\n",
                    count);
  }
  const std::string inProcedure = "/F{\n%%Page: 1 1\n" + box + "}def\n";
  const std::string calls = "%%Page: 1 1\nF showpage" + next + "F F showpage\n";
  ExpectSamePages("%!PS-Adobe-3.0\n" + inProcedure + calls, 2);
  ExpectSamePages("%!PS-Adobe-3.0\n%%BeginProlog\n" + inProcedure + "%%EndProlog\n" + calls, 2);
  ExpectSamePages("%!PS-Adobe-3.0\n%%BeginProlog\n%%Page: 1 1\n" + box +
                      "systemdict/showpage get exec\n"
                      "currentfile 0(%%EndBinary)/SubFileDecode filter flushfile\n"
                      "%%BeginBinary: 16\n\nep\n%%Page: 1 1\n%%EndBinary\n",
                  1, false);
}

}  // namespace
