// What the inspector makes of watermarks, of the jobs of a queue, and of hostile input in time.

#include <gtest/gtest.h>
#include <unistd.h>

#include <ctime>

#include "queue/WatermarkTickets.h"
#include "tests/support/SampleJobs.h"
#include "tests/support/ToolProcess.h"
#include "tools/inspect/JobReader.h"
#include "tools/inspect/Reports.h"
#include "tools/inspect/WatermarkText.h"

TEST(Plausibility, KnowsABrokenWatermark) {
  double width = 0;
  for (const char* text : {"Überfällig", "äöü", "(a)\\ü(b", "DRAFT"}) {
    EXPECT_TRUE(IsWatermarkText(ShownText(text, width))) << ShownText(text, width);
  }
  for (const char* text : {"<4142>", "(a)show/b glyphshow()", kDefinedWatermarkText}) {
    EXPECT_TRUE(IsWatermarkText(text)) << text;
  }
  for (const char* text :
       {"", " ", "/a glyphshow", "(a)show", "(a) /b glyphshow()", "<4g>", "<41", "<41g",
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
    const std::string text = TextReport("job", ReadJob(job), {});
    EXPECT_TRUE(Contains(text, ", nothing wrong\n")) << row.options << text;
  }
}

// Ten kinds of hostile input, each doubled three times: the time grows no more than the input does.
TEST(Plausibility, TakesTimeInStepWithTheInput) {
#ifdef SANITIZED
  GTEST_SKIP() << "sanitizers take time of their own";
#endif
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
        EXPECT_LT(time, 5) << piece << size;  // unoptimised, too
      }
    }
  }
}
