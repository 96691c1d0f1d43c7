// What the inspector makes of lines that are well formed, but say something strange together.

#include <gtest/gtest.h>

#include <chrono>
#include <ctime>

#include "tests/support/SampleJobs.h"
#include "tools/inspect/JobReader.h"
#include "tools/inspect/Reports.h"

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
      {info + "DUPLEXTYPE=TUMBLE\n" + end, duplex, "asks for Duplex false on line 7", true},
      {info + "DUPLEXTYPE=SIMPLEX\n" + end, duplex, "Asks for: Duplex +None +line", false},
      {info + "DUPLEXTYPE=DUPLEX\n" + end, "<< /Duplex true /Tumble true >> setpagedevice\n",
       "asks for Tumble true", true},
      {info + "JOBCOPIES=2\n" + end, "[{<</NumCopies 3/Collate true>>setpagedevice\n",
       "asks for NumCopies 3", true},
      {info + "JOBCOPIES=-1\n" + info + "PAGECOPIES=3\n" + end, "<</NumCopies 3>>setpagedevice\n",
       "Asks for: NumCopies +3", false},
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
    EXPECT_EQ(Contains(ProblemsOf(job), "not one PostScript string"), broken) << text;
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
