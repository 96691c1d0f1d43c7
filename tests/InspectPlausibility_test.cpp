// What the inspector makes of lines that are well formed, but say something strange together.

#include <gtest/gtest.h>
#include <unistd.h>

#include <chrono>
#include <ctime>

#include "queue/WatermarkTickets.h"
#include "tests/support/SampleJobs.h"
#include "tests/support/ToolProcess.h"
#include "tools/inspect/JobReader.h"
#include "tools/inspect/Reports.h"
#include "tools/inspect/WatermarkText.h"

namespace {

std::string ProblemsOf(const std::string& job) {
  std::string text = TextReport("job", ReadJob(job), {});
  const std::size_t at = text.find("\nProblems\n");
  return at == text.npos ? "" : text.substr(at);
}

std::string Attribute(const std::string& text) {
  return "@PJL SET JOBATTR=\"@" + text + "\"\n";
}

}  // namespace

TEST(Plausibility, TellsWhatNoDeviceCanObey) {
  const std::string info = "@PJL COMMENT PRINTJOBINFO ", set = "@PJL SET ";
  const std::string key = set + "HOLDENCRYPTKEY=\"x\"\r\n";
  const struct {
    std::string lines;
    const char* problem;  // empty: nothing
  } rows[] = {
      {Attribute("ACNA=title \033%-12345X"), "an exit sequence inside a header line"},
      {Attribute("ACNA=a\033b"), "a control byte inside a header line"},
      {Attribute("CNAM=a\tb"), "a control byte"},
      {Attribute("CNAM=a\"b"), "a quote inside the value"},
      {Attribute("CNAM=M\xfcller \x9b"), ""},
      {Attribute("LUNA=sam") + Attribute("LUNA=root"),
       "line 3: this line replaces line 2, which has another value: the device takes the last one"},
      {Attribute("LUNA=sam") + Attribute("LUNA=sam"), ""},
      {Attribute("EIST=1") + Attribute("EIST=2"), ""},
      {"@PJL JOB MODE=PRINTER\r\n", "line 2: a second line of this name"},
      {"@PJL EOJ\n@PJL JOB MODE=PRINTER\r\n", "line 2: the job ends in its header"},
      {Attribute("PBTW=-70"), "a value that no device can obey"},
      {Attribute("PBTW=2100") + Attribute("PSBR=-5"), ""},
      {Attribute("PSBR=6"), "a value that no device can obey"},
      {set + "REDUCTIONRATE=101\n", "a value that no device can obey"},
      {Attribute("PRTM=25:99"), "a value that no device can obey"},
      {Attribute("PRTM=23:60"), "a value that no device can obey"},
      {"@PJL SET JOBATTR=\"@PRTM=23:59\"\r\n", ""},
      {info + "JOBCOPIES=-2\n" + info + "END\n", "a value that no device can obey"},
      {set + "HOLD=STORE\n" + set + "HOLDTYPE=PRIVATE\n", "nobody can release it"},
      {set + "HOLD=STORE\n" + set + "HOLDTYPE=PRIVATE\n" + key, ""},
      {set + "HOLD=BOXSTORE\n" + set + "BOXNUMBER=\r\n", "none is named"},
      {info + "STAPLE=ON\n" + info + "END\n", "without a position"},
      {info + "STAPLE=ON\n" + info + "STAPLEEX=TOPLEFT\n" + info + "END\n", ""},
      {info + "PUNCH=ON\n" + info + "END\n", "without holes"},
  };
  for (const auto& row : rows) {
    const std::string problems = ProblemsOf(Job(row.lines));
    EXPECT_TRUE(*row.problem != '\0' ? Contains(problems, row.problem)
                                     : !Contains(problems, "line 2") && !Contains(problems, "3:"))
        << row.lines << row.problem << problems;
  }
}

// The document beside the header: what both say, and where they differ.
TEST(Plausibility, ReadsTheDocumentsOwnSettings) {
  const std::string info = "@PJL COMMENT PRINTJOBINFO ", end = info + "END\n";
  const std::string duplex = "%%BeginFeature: *Duplex None\n<</Duplex false>>setpagedevice\n";
  const struct {
    std::string lines, document;
    const char* says;
    bool contradiction;
  } rows[] = {
      {"", "%%Title: (A (b))\r\n%%Creator: me\r\n", "\n  Title +\\(A \\(b\\)\\) +line 4", false},
      {"", "%%Page: 1 1\nshowpage\n%%Page: 2 2\nshowpage\n", ": [0-9]+ bytes, 2 pages, n", false},
      {"", "%%Page: 1 1\n%%BeginDocument: x\n%%Page: 1 1\n%%EndDocument\n", " 1 page, ", false},
      {"", "%%Pages: 3\n%%Page: 1 1\n%%Page: 2 2\n", "announces 3 pages, but has 2", true},
      {"", "%%Pages: (atend)\n%%Page: 1 1\n%%Pages: 1\n", "Pages announced +1 +line 6", false},
      {info + "DUPLEXTYPE=TUMBLE\n" + end, duplex + "showpage\n", "asks for Duplex false on line 7",
       true},
      {info + "DUPLEXTYPE=TUMBLE\n" + end, duplex, "Asks for: Duplex +None +line", false},
      {info + "DUPLEXTYPE=TUMBLE\n" + info + "BOOKLETTYPE=TYPE[NONEDIVIDE]\n" + end,
       duplex + "showpage\n", "Asks for: Duplex +None +line", false},
      {info + "DUPLEXTYPE=SIMPLEX\n" + end, duplex, "Asks for: Duplex +None +line", false},
      {info + "DUPLEXTYPE=DUPLEX\n" + end, "<< /Duplex true /Tumble true >> setpagedevice\n",
       "asks for Tumble true", true},
      {info + "JOBCOPIES=2\n" + end, "[{<</NumCopies 3/Collate true>>setpagedevice\n",
       "asks for NumCopies 3", true},
      {info + "JOBCOPIES=-1\n" + info + "PAGECOPIES=3\n" + end, "<</NumCopies 3>>setpagedevice\n",
       "Asks for: NumCopies +3", false},
      {info + "PAGECOPIES=3\n" + info + "JOBCOPIES=1\n" + end,
       "%RBIBeginNonPPDFeature: *NumCopies 2\n2{/NumCopies exch def x end setpagedevice}\n",
       "asks for NumCopies 2 on line 7", true},
      {"@PJL SET ECONOMODE=MODE1\n",
       "%%BeginFeature: *ZLVTonerSaver Mode2\n%%BeginFeature: *ZLVTonerSaver Mode1\n",
       "Asks for: ZLVTonerSaver +Mode2", false},
      {"@PJL SET ECONOMODE=MODE1\n", "%%BeginFeature: *ZLVTonerSaver Mode2\n",
       "asks for ZLVTonerSaver Mode2 on line 5", true},
  };
  for (const auto& row : rows) {
    const std::string job = Job(row.lines, "%!PS\n" + row.document + "showpage\n");
    const std::string text = TextReport("job", ReadJob(job), {});
    EXPECT_TRUE(Matches(row.says, text)) << row.says << text;
    EXPECT_EQ(Contains(text, "contradiction"), row.contradiction) << row.document << text;
    for (std::size_t size = 1; size < 40; size += 7) {
      JobParser parser;
      for (std::size_t at = 0; at < job.size(); at += size) {
        parser.feed(std::string_view(job).substr(at, size), nullptr);
      }
      const OwnSettings whole = ReadJob(job).postScript.own, own = parser.finish().postScript.own;
      EXPECT_EQ(own.pageComments, whole.pageComments) << size;
      ASSERT_EQ(own.entries.size(), whole.entries.size()) << size << row.document;
      for (std::size_t i = 0; i < own.entries.size(); i++) {
        EXPECT_EQ(own.entries[i].value, whole.entries[i].value) << size;
        EXPECT_EQ(own.entries[i].line, whole.entries[i].line) << size << own.entries[i].name;
      }
    }
  }
}

TEST(Plausibility, KnowsABrokenWatermark) {
  for (const auto& [text, broken] : {std::pair("(DRAFT)", false), std::pair("(a(b))", false),
                                     std::pair("(a)(b)", true), std::pair("DRAFT", true)}) {
    const std::string job =
        FilteredJob(kWatermark + ("WMARKTextTicket=" + std::string(text)), "%!PS\nep\n");
    EXPECT_EQ(Contains(ProblemsOf(job), "no PostScript that shows a text"), broken) << text;
  }
  double width = 0;
  for (const char* text : {"Überfällig", "äöü", "(a)\\ü(b", "DRAFT"}) {
    EXPECT_TRUE(IsWatermarkText(ShownText(text, width))) << ShownText(text, width);
  }
  for (const char* text : {"<4142>", "(a)show/b glyphshow()", kDefinedWatermarkText}) {
    EXPECT_TRUE(IsWatermarkText(text)) << text;
  }
  for (const char* text : {"", " ", "/a glyphshow", "(a)show", "(a) /b glyphshow()", "<4g>", "<41",
                           "/a{ glyphshow()", "/a show()", "(a)show(b", "ZLVWatermarkText () x"}) {
    EXPECT_FALSE(IsWatermarkText(text)) << text;
  }
}

// What CUPS makes of a document and the queue's filter prints is nothing to complain about; `says`
// is in the job, lest the case is another one.
TEST(Plausibility, LeavesJobsOfAQueueAlone) {
  if (access(CUPS_FILTERS "/pstops", X_OK) != 0) GTEST_SKIP() << "pstops is not installed";
  const std::string begin = "%!PS-Adobe-3.0\n%%Pages: ", page = "%%Page: 1 1\nshowpage\n";
  const std::string single = begin + "1\n%%EndComments\n" + page;
  const std::string document = begin + "2\n%%EndComments\n" + page + "%%Page: 2 2\nshowpage\n";
  const std::string marked =
      "%!PS-Adobe-3.0\n%%Pages: 2\n%%EndComments\n%%BeginProlog\n/bp{}def/ep{}def\n"
      "%%EndProlog\n%%Page: 1 1\nbp\nshowpage\nep\n%%Page: 2 2\nbp\nshowpage\nep\n%%EOF\n";
  const struct {
    std::string options, document;
    const char* says;
  } rows[] = {
      {"Collate=True", document, "JOBCOPIES=3"},
      {"Collate=False", document, "PAGECOPIES=3"},
      {"multiple-document-handling=separate-documents-uncollated-copies", document, "PAGECOPIES=3"},
      {"sides=two-sided-long-edge", single, "Duplex false"},
      {"sides=two-sided-short-edge number-up=2", document, "Duplex false"},
      {"sides=two-sided-long-edge number-up=2", marked, "Duplex false"},
      {"sides=two-sided-long-edge ZLVSignature=LeftSig", document, "DUPLEXTYPE=TUMBLE"},
      {"ZLVWatermark=Custom.Überfällig", document, "/Udieresis glyphshow(berf)"},
      {"ZLVWatermark=Custom." + Repeat("Überfällig", 5), document, "ZLVWatermarkText ()"},
  };
  for (const auto& row : rows) {
    const std::string ppd = "PPD=" PPD_DIR "/zelva-atelier-c90.ppd";
    const std::vector<std::string> arguments = {"1", "sam", "Title", "3", row.options};
    const std::string pages = RunTool(CUPS_FILTERS "/pstops", arguments, row.document, ppd).output;
    const std::string job = RunTool(QUEUE_FILTER_BINARY, arguments, pages, ppd).output;
    EXPECT_TRUE(Contains(job, row.says)) << row.options;
    EXPECT_EQ(ProblemsOf(job), "") << row.options;
  }
}

// Ten kinds of hostile input, each doubled three times: the time grows no more than the input does.
TEST(Plausibility, TakesTimeInStepWithTheInput) {
  const std::string junk[] = {kExit,
                              "x" + kExit + "@PJL EO",
                              "@PJL SET JOBATTR=\"@JOEP=",
                              "JOEP=\"",
                              "@PJL ",
                              "%%BeginFeature: *a b\n",
                              "<</Duplex setpagedevice ",
                              "%%",
                              "ep\n",
                              "(\\\r"};
  const auto seconds = [](const std::string& job) {
    const std::clock_t start = std::clock();
    const JobReport report = ReadJob(job);
    TextReport("job", report, {});
    JsonReport("job", report, {});
    return static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
  };
  for (const std::string& piece : junk) {
    for (const bool inHeader : {true, false}) {
      double first = 0;
      for (std::size_t size = 1 << 19; size <= 1 << 22; size *= 2) {
        std::string text;
        while (text.size() < size) text += piece + (inHeader && text.size() % 7 == 0 ? "\n" : "");
        const double time = seconds(inHeader ? Job(text) : Job("", text));
        if (size == 1 << 19) first = time;
        RecordProperty("seconds", std::to_string(time));
        EXPECT_LT(time, 20 * first + 0.1) << piece << size;
        EXPECT_LT(time, 1.5) << piece << size;
      }
    }
  }
}
