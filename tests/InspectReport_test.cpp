// What the inspector says of jobs: whole ones from the filter, broken ones, hostile ones.

#include <gtest/gtest.h>
#include <openssl/rsa.h>

#include <algorithm>
#include <nlohmann/json.hpp>

#include "tests/support/Password.h"
#include "tests/support/SampleJobs.h"
#include "tools/inspect/JobReader.h"
#include "tools/inspect/ReportLines.h"
#include "tools/inspect/SealedPasswords.h"

namespace {

JobReport ReportOf(const std::string& job, EVP_PKEY* key = nullptr) {
  JobReport report = ReadJob(job);
  JudgePasswords(report, key);
  return report;
}

std::string ProblemsOf(const std::string& job, EVP_PKEY* key = nullptr) {
  const JobReport report = ReportOf(job, key);
  std::string text;
  for (const Remark& problem : report.problems) text += RemarkText(problem, report.charset) + "\n";
  return text;
}

std::string TextOf(const std::string& job, EVP_PKEY* key = nullptr) {
  return TextReport("job", ReportOf(job, key), {});
}

}  // namespace

// Jobs as the filter writes them: nothing is wrong, and the words are right.
TEST(Inspect, ReadsTheFiltersJobs) {
  const struct {
    std::string settings;
    std::vector<const char*> says;  // a name and words, in one line
  } rows[] = {
      {kSecurePrint + Stored("geheim") + " EjectOptionsListTicket=4 ZLVTonerSaver=Mode2",
       {"Hold +keep until released", "Release password +sealed for the 2048-bit device key",
        "Held for user +sam", "Output face +down, in reverse order", "Toner saver +level 2",
        "Pages +4", "Encoding of texts +UTF-8"}},
      {"PrintTypeTicketKey=5 PrintTypeMBNTicketKey=12 PrintTypeMBNPasswordTicketKey=" +
           Stored("1234") +
           " JBAManageTypeListTicketKey=2 JBAUserSettingRadioBtnTicket=1 "
           "JBAUserIDListCtrlTicket=2 JBAUserIDTextEditTicket=anna "
           "JBAUserPasswordTextEditTicket=" +
           Stored("x") + " JBAAccountIDTextEditTicket=4711",
       {"Mailbox +12", "Accounting user +anna", "Account +4711"}},
      {"ZLVLineWeightAdjustment=Weakly3 ZLVColorMode=Black number-up=4 ZLVSignature=LeftSig "
       "ZLVSigVol=None sides=two-sided-long-edge collate",
       {"Line weight +3", "Colour +grayscale", "Booklet +bound at the left",
        "Booklet in parts +one booklet", "Pages per sheet +N4"}},
      {"TrimmerSelectTicket=3 TrimmerWidthMMSizeTicket=12.5 TrimmerHeightMMSizeTicket=5 "
       "TrimmerAdjustMMSizeTicket=1 OffsetStackingListTicket=4 OffsetStackingPagesLArrowTicket=20",
       {"Trimmer, size +12\\.5 mm", "Offset stacking +by pages", "Offset every +20"}},
      {"ZLVPBindPosition=BindRight ZLVPBindTrimming=1EdgeCut ZLVPBindPageSize=A4 "
       "ZLVPBindCutPositionFore=10mm ZLVPBindCoverPageSize=A3 ZLVPBindCoverMediaColor=Blue "
       "ZLVPBindCoverAdjustX=2",
       {"Perfect binding +at the right", "Trimming +fore edge", "Trimmed width +200 mm",
        "Image shift +5 mm", "Cover colour +BLUE", "Cover, across +-2 steps"}},
      {"XPIFCoverCountTicket=1 XPIFCoverValueTicket_0=0,1,print-both,plain,blue,210,297 "
       "XPIFInsertionCountTicket=1 XPIFInsertionValueTicket_0=0,3,2 XPIFExceptionCountTicket=1 "
       "XPIFExceptionValueTicket_0=0,1,1,2,4,one-sided,plain,white,210,297",
       {"Front cover +printed on both sides", "Back cover +none", "Insert after page +3",
        "Paper from +the inserter", "Exception from page +2"}},
  };
  for (const auto& row : rows) {
    std::string document = Handbook();
    if (Contains(row.settings, "two-sided")) {
      document.replace(document.find("/Duplex false"), 13, "/Duplex true");
    }
    const std::string job = FilteredJob(row.settings, document);
    EXPECT_EQ(ProblemsOf(job), "") << row.settings;
    const std::string text = TextOf(job);
    for (const char* words : row.says) {
      EXPECT_TRUE(Matches(std::string("\n  ") + words, text)) << words << text;
    }
  }
}

TEST(Inspect, FindsWhatTheFilterInjected) {
  const std::string job =
      FilteredJob(std::string(kWatermark) +
                  "SeparatorPageListTicket=2 SeparatorPageTicket=3(a) BookletMarginSwitchTicket=1 "
                  "BookletMarginMMShiftTicket=5 AutoFitSwitchTicket=0");
  const struct {
    InjectionKind kind;
    const char* begins;
    const char* detail;
    std::uint64_t count;
  } rows[] = {
      {InjectionKind::kWatermarkProlog, "userdict/fffInfo", "", 1},
      {InjectionKind::kSeparatorPages, "[{", "3(a)", 1},
      {InjectionKind::kImageShift, "[{", "5", 1},
      {InjectionKind::kAutoScale, "[{", "false", 1},
      {InjectionKind::kWatermarkPageSetup, "fffbp", "", 4},
      {InjectionKind::kWatermarkText, "pgsave restore /pgsave", "(DRAFT)", 4},
  };
  const auto injections = ReadJob(job).postScript.injections;
  ASSERT_EQ(injections.size(), std::size(rows));
  for (std::size_t i = 0; i < std::size(rows); i++) {
    EXPECT_EQ(injections[i].kind, rows[i].kind) << i;
    EXPECT_EQ(injections[i].detail, rows[i].detail);
    EXPECT_EQ(injections[i].count, rows[i].count);
    const std::string before = job.substr(0, injections[i].offset);
    EXPECT_TRUE(job.substr(before.size()).starts_with(rows[i].begins)) << i;
    EXPECT_EQ(injections[i].line, 1u + std::count(before.begin(), before.end(), '\n'));
  }
  ASSERT_EQ(injections.back().pages.size(), 1u);
  EXPECT_EQ(injections.back().pages[0], std::pair(std::uint64_t{1}, std::uint64_t{4}));
  EXPECT_TRUE(Contains(TextOf(job), " (DRAFT), pages 1-4 "));
  const std::string pages = Repeat("bp\n{\nep\n}page\n%%EndPageSetup\n", 2);
  EXPECT_TRUE(Matches("page setup +pages 1-2 ", TextOf(FilteredJob(kWatermark, "%!PS\n" + pages))));
  EXPECT_TRUE(ReadJob(FilteredJob("")).postScript.injections.empty());
  const JobReport first = ReadJob(FilteredJob(std::string(kWatermark) + "WMARKOnlyFirstTicket=1",
                                              "%!PS\ngrestore\nep\ngsave\ngrestore\nep\n"));
  EXPECT_EQ(first.postScript.injections.at(0).count, 1u);
  EXPECT_TRUE(Contains(ProblemsOf(FilteredJob(std::string(kWatermark) + "WMARKTextTicket=(" +
                                              std::string(120, 'x') + ")")),
                       "the watermark's text is cut off"));
}

TEST(Inspect, SaysWhatIsWrongWithTheFrame) {
  const std::string good = Job("@PJL SET RET=ON\n");
  const auto replaced = [&](const std::string& text, const std::string& by) {
    std::string job = good;
    return job.replace(job.find(text), text.size(), by);
  };
  const std::string attribute = "@PJL SET JOBATTR=\"@";
  const struct {
    std::string job;
    const char* problem;
  } rows[] = {
      {"", "there is nothing in it"},
      {Handbook(), "PostScript that has not gone through the filter"},
      {"%PDF-1.7\n", "PDF document that has not gone"},
      {"\x7f\x45LF\1\2", "no printer-ready job"},
      {good.substr(9), "there is no exit sequence in front of the job"},
      {"hello\n" + good,
       "6 bytes stand in front of the exit sequence; the printer may take them for text: hello"},
      {"AES Error[-1]\nERROR[97]: AES Decrypt failed[99].\n" + good,
       "line 2: a message of the credential library: a stored password does not open"},
      {replaced("MODE=PRINTER\r\n", "MODE=PRINTER\n"), "line 1: wrong line end: LF without CR"},
      {replaced("RET=ON\n", "RET=ON\r\n"), "line 2: wrong line end: CR LF instead of LF alone"},
      {replaced("RET=ON", "RET=MAYBE"), "line 2: a value that the device dialect does not know"},
      {replaced("@PJL SET RET=ON\n", "@PJL EOJ\n"), "line 2: the job ends in its header"},
      {replaced("RET=ON", "RAT=ON"), "line 2: a line that the device dialect does not know"},
      {replaced("@PJL SET RET=ON\n", attribute + "ZZZZ=1\"\n"), "dialect does not know"},
      {replaced("@PJL SET RET=ON\n", "SET RET=ON\n"),
       "line 2: a line in the header that is no PJL"},
      {replaced("@PJL SET RET=ON\n", attribute + "FACE=UP\n"), "the closing quote is missing"},
      {replaced("@PJL SET RET=ON\n", attribute + "@PJL SET RET=ON\n"),
       "line 2: a line that lost its end runs into the next one"},
      {replaced("@PJL SET RET=ON\n", attribute), "line 2: a line that lost its end"},
      {replaced("@PJL SET RET=ON\n", attribute + "CNAM=" + std::string(5000, 'x') + "\"\n"),
       "longer than the filter writes any"},
      {replaced("@PJL JOB MODE=PRINTER\r\n", ""), "no line @PJL JOB MODE"},
      {replaced("@PJL SET RET=ON\n", "@PJL COMMENT PRINTJOBINFO BEGIN\n"), "summary has no end"},
      {replaced("@PJL ENTER LANGUAGE=POSTSCRIPT\n", ""), "begins without @PJL ENTER"},
      {replaced("%!PS\nshowpage\n", ""), "the document is empty"},
      {replaced("showpage\n", "x" + kExit + "@PJL \n"),
       "line 5: an exit sequence inside the PostScript"},
      {good.substr(0, good.find("\4")), "the trailer is missing"},
      {good.substr(0, good.size() - 4), "the trailer breaks off"},
      {good.substr(0, good.size() - 1), "the trailer breaks off"},
      {good.substr(0, good.size() - 1) + "\r\n", "wrong line end: the trailer ends in LF"},
      {good + good, "bytes follow the trailer"},
      {kExit + "@PJL JOB MODE=PRINTER\r\n" + kExit + "@PJL EOJ\n",
       "there is no PostScript: the job was cancelled"},
      {kExit + "@PJL JOB MODE=PRINTER\r\n@PJL SET R", "breaks off within a line"},
  };
  EXPECT_EQ(ProblemsOf(good), "");
  for (const auto& row : rows) {
    const std::string problems = ProblemsOf(row.job);
    EXPECT_TRUE(Contains(problems, row.problem)) << row.problem << "\n" << problems;
  }
}

// A printer that decomposes PostScript: its job has no end byte, and the job copy of it has the
// document ahead of the switch, with lines of features in between.
TEST(Inspect, ExplainsDecomposedJobsAndTheirCopies) {
  const std::string job =
      FilteredJob("", "%!PS\n%%BeginFeature: *ZLVTonerSaver Mode2\nep\nep\n%%EOF\n", "atelier-c60");
  EXPECT_EQ(ProblemsOf(job), "");
  EXPECT_TRUE(Contains(TextOf(job), "is not closed by the end byte"));

  const std::string copy = kExit +
                           "@PJL JOB MODE=PRINTER\r\n%!PS\n@PJL SET ECONOMODE=MODE2\n"
                           "%%BeginFeature: *ZLVTonerSaver Mode2\nep\n\n\4"
                           "@PJL ENTER LANGUAGE=POSTSCRIPT\n" +
                           kExit + "@PJL EOJ\n";
  const std::string text = TextOf(copy);
  EXPECT_TRUE(Contains(text, "nothing wrong")) << text;
  EXPECT_TRUE(Contains(text, "job copy for a printer that decomposes"));
  EXPECT_TRUE(Matches("Toner saver +level 2", text));
  EXPECT_TRUE(Matches("Pages +1\n", text)) << text;
  std::string document;
  JobParser parser([&](std::string_view bytes) { document += bytes; });
  parser.feed(copy, nullptr);
  parser.finish();
  EXPECT_EQ(document, "%!PS\n%%BeginFeature: *ZLVTonerSaver Mode2\nep\n\n\4");
}

TEST(Inspect, ShowsHostileTextEscaped) {
  const std::string lines =
      std::string("@PJL SET JOBATTR=\"@CNAM=a\033[31m\x9b\xff\u202e\0\x7f\"\n", 39) +
      "@PJL \033]0;x\a\n";
  for (const char* encoding : {"", "@PJL SET STRINGCODESET=UTF8\n"}) {
    const JobReport report = ReadJob(Job(encoding + lines));
    for (const std::string& text :
         {TextReport("\033[1m", report, {}), JsonReport("\033[1m", report, {})}) {
      EXPECT_FALSE(std::any_of(text.begin(), text.end(), [](char c) {
        return (c >= 0 && c < ' ' && c != '\n') || c == 0x7f;
      })) << text;
      EXPECT_FALSE(Contains(text, "\u202e") || Contains(text, "\xc2\x9b")) << text;
    }
    EXPECT_TRUE(nlohmann::json::accept(JsonReport("x", report, {})));
  }
  EXPECT_TRUE(Contains(TextOf(Job("@PJL SET JOBATTR=\"@CNAM=M\xfcller\"\n")), "Müller"));
}

// Wherever a job breaks off something is wrong with it, and endless ones are reported shortly.
TEST(Inspect, StandsWhateverComes) {
  const std::string job =
      FilteredJob(kWatermark + (kSecurePrint + Stored("geheim")),
                  "%!PS\n%%BeginProlog\n%%EndProlog\n%%EndPageSetup\nep\n%%EOF\n");
  for (std::size_t length = 0; length < job.size(); length++) {
    EXPECT_FALSE(ReadJob(std::string_view(job).substr(0, length)).problems.empty()) << length;
  }
  const std::string endless = Job("@PJL " + std::string(3'000'000, '@') + "\n");
  EXPECT_TRUE(Contains(ProblemsOf(endless), "a line of 3000006 bytes"));
  const JobReport many = ReadJob(Job(std::string(200'000, '\n') + "@PJL SET RET=NO\n"));
  EXPECT_EQ(many.problemCount(), 200'001u);
  EXPECT_TRUE(Contains(TextReport("job", many, {}), "200001 problems"));
}

// Exit sequences, header lines and the trailer are found however the job comes in pieces.
TEST(Inspect, ReadsJobsInAnyPieces) {
  const struct {
    std::string job, document;
    std::size_t settings, problems, lastLine;
  } rows[] = {
      {Job("@PJL SET RET=ON\n", "%!PS\r\n\r\rep\r\n"), "%!PS\r\n\r\rep\r\n\4", 3, 0, 8},
      {Job("", "%!PS\n" + kExit + "@PJL EO?\n"), "%!PS\n@PJL EO?\n\4", 2, 1, 5},
      {Job(kExit + "@PJL SET RET=ON\n", "%!PS\n"), "%!PS\n\4", 3, 1, 5},
  };
  for (const auto& row : rows) {
    for (std::size_t size = 1; size < row.job.size(); size++) {
      std::string document;
      JobParser parser([&](std::string_view bytes) { document += bytes; });
      for (std::size_t at = 0; at < row.job.size(); at += size) {
        parser.feed(std::string_view(row.job).substr(at, size), nullptr);
      }
      const JobReport report = parser.finish();
      EXPECT_EQ(document, row.document) << size;
      EXPECT_EQ(report.postScript.bytes, document.size()) << size;
      EXPECT_EQ(report.settings.size(), row.settings) << size;
      EXPECT_EQ(report.problems.size(), row.problems) << size;
      EXPECT_EQ(report.postScript.lastLine, row.lastLine) << size;
      EXPECT_TRUE(report.trailer && report.postScript.closed) << size;
    }
  }
}

TEST(Inspect, JudgesSealedPasswords) {
  const std::string job = FilteredJob(kSecurePrint + Stored("geheim"));
  const EVPPointer<EVP_PKEY> other(EVP_RSA_gen(2048));
  EXPECT_TRUE(Contains(TextOf(job, other.get()), "for another key"));

  const PrivateKey key = ReadPrivateKey(TEST_DATA_DIR "/demo-device-2048-private.pem");
  const std::size_t begin = job.find("HOLDENCRYPTKEY=\"") + 16;
  const std::size_t length = job.find('"', begin) - begin;
  const struct {
    std::string blob;
    const char* fault;
  } rows[] = {
      {job.substr(begin, length - 4), "its lengths do not add up"},
      {job.substr(begin, length - 8) + "AAAAAAA=", "it does not open with its own key"},
      {"aGVsbG8=", "it does not begin as a blob"},
      {"!", "it is no Base64 text"},
  };
  for (const auto& row : rows) {
    const std::string broken = std::string(job).replace(begin, length, row.blob);
    EXPECT_TRUE(Contains(ProblemsOf(broken, key.get()), row.fault)) << row.fault;
  }
}
