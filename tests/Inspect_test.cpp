// What the inspector says of jobs: whole ones from the filter, broken ones, hostile ones.

#include <gtest/gtest.h>

#include <algorithm>
#include <nlohmann/json.hpp>
#include <random>
#include <set>

#include "modules/perfectbind/PerfectBind.h"
#include "modules/quality/Quality.h"
#include "modules/specialpages/SpecialPages.h"
#include "tests/support/Password.h"
#include "tests/support/Patterns.h"
#include "tests/support/Tickets.h"
#include "tests/support/ToolProcess.h"
#include "tools/JobReader.h"
#include "tools/ReportLines.h"
#include "tools/SealedPasswords.h"

namespace {

constexpr char kKeyFile[] = TEST_DATA_DIR "/demo-device-2048-private.pem";
constexpr char kExit[] = "\033%-12345X";

std::string Handbook() {
  return FileContent(SAMPLES_DIR "/handbook.ps");
}

// A job around header lines and a document.
std::string Job(const std::string& lines, const std::string& document = "%!PS\nshowpage\n") {
  return std::string(kExit) + "@PJL JOB MODE=PRINTER\r\n" + lines +
         "@PJL ENTER LANGUAGE=POSTSCRIPT\n" + document + "\4" + kExit + "@PJL EOJ\n";
}

// What the filter makes of a document with these tickets on a model.
std::string FilteredJob(const std::string& settings, const std::string& model = "atelier-c90",
                        const std::string& document = Handbook()) {
  FilterJob job;
  job.arguments = {"1", "sam", "Handbook", "2", Tickets(settings)};
  job.environment["PPD"] = PPD_DIR "/zelva-" + model + ".ppd";
  job.input = document;
  return RunFilter(job).output;
}

std::string Problems(const JobReport& report) {
  std::string text;
  for (const Remark& problem : report.problems) {
    text += RemarkText(problem, report.charset) + "\n";
  }
  return text;
}

std::string ProblemsOf(const std::string& job) {
  JobReport report = ReadJob(job);
  JudgePasswords(report, nullptr);
  return Problems(report);
}

std::string TextOf(const std::string& job) {
  JobReport report = ReadJob(job);
  JudgePasswords(report, nullptr);
  return TextReport("job", report, {});
}

ToolResult InspectTool(std::vector<std::string> arguments, const std::string& input = "") {
  return RunTool(INSPECT_BINARY, std::move(arguments), input);
}

constexpr char kWatermark[] =
    "WMARKNameTicket=n WMARKTypeTicket=0 WMARKOnlyFirstTicket=0 WMARKTextTicket=(DRAFT) "
    "WMARKFontTicket=Helvetica WMARKFontSizeTicket=90 WMARKAngleTicket=45 WMARKDensityTicket=40 "
    "WMARKOrientationTicket=1 WMARKPaperWidthTicket=595 WMARKPaperHeightTicket=842 "
    "WMARKWidthTicket=300 WMARKHeightTicket=60 WMARKColorRTicket=1 WMARKColorGTicket=0 "
    "WMARKColorBTicket=0 WMARKhOffsetTicket=0 WMARKvOffsetTicket=0 ";

}  // namespace

// The filter's rows, and the lines of features, all in one job: the inspector finds nothing in it
// that it does not know, neither name nor value nor line end.
TEST(Dialect, KnowsEveryRowOfTheFiltersTables) {
  std::string lines;
  for (const std::string& line : SampleLinesOfRows()) {
    if (line.find("ENTER") == line.npos) lines += line;
  }
  for (const FeatureLine& row : FeaturePPDKeyNameandMarkedValuetoPJLCommand) lines += row.line;
  const auto put = [&](const char* attribute, const std::string& value) {
    lines += std::string("@PJL SET JOBATTR=\"@") + attribute + "=" + value + "\"\n";
  };
  for (std::size_t i = 0; i < kPBindWordCount; i++) put("PBCQ", PerfectBindParam[i].deviceWord);
  for (int i = 1; i < CoverTypeXPJLCommValueCount; i += 2) put("EFCV", CoverTypeXPJLComm[i]);
  for (int i = 1; i < MediaColorXPJLCommValueCount; i += 2) put("EMCC", MediaColorXPJLComm[i]);
  for (int i = 1; i < SidesXPJLCommValueCount; i += 2) put("EMDP", SidesXPJLComm[i]);
  const std::string problems = Problems(ReadJob(Job(lines)));
  EXPECT_EQ(problems, "") << "tools/Dialect.def needs these";
  EXPECT_GT(std::count(lines.begin(), lines.end(), '\n'), 300);
}

// Names that modules write by hand: whatever stands in the sources as an attribute, a variable or a
// word in capital letters is in the dialect, and nothing in the dialect is in no source.
TEST(Dialect, KnowsEveryNameInTheSourcesAndNoOther) {
  std::set<std::string> codes;
  std::set<std::string> words;
  for (const DialectRow& row : DialectRows()) {
    codes.insert(std::string(row.code));
    std::string list(row.detail);
    if (row.kind != ValueKind::kWords) list.clear();
    for (std::size_t at = 0; at < list.size();
         at = std::min(list.find('|', at), list.size() - 1) + 1) {
      words.insert(list.substr(at, list.find('=', at) - at));
    }
  }
  for (std::size_t i = 0; i < kPBindWordCount; i++) {
    words.insert({PerfectBindParam[i].ppdValue, PerfectBindParam[i].deviceWord});
  }
  words.insert({"CUSTOM", "TWO", "THREE", "FOUR", "COIL", "BOTTOM"});  // of texts and binder words
  words.insert({"CMYK", "PPD", "TMPDIR"});                             // no words of the device

  std::set<std::string> written = NamesInSources("@PJL SET ([A-Z]+)=");
  written.erase("JOBATTR");
  written.merge(NamesInSources("JOBATTR=(%c|\\\\\")@([A-Z0-9]+)="));
  written.merge(NamesInSources("INFO \"([A-Z]+)"));
  written.merge(NamesInSources("ATTRIBUTE\\([^)]*\"([A-Z0-9]+)="));
  for (const std::string& name : written) EXPECT_TRUE(codes.contains(name)) << name;
  const std::set<std::string> literals = NamesInSources("\"([A-Z][A-Z0-9_]{2,})\"");
  for (const std::string& name : literals) {
    EXPECT_TRUE(codes.contains(name) || words.contains(name)) << name;
  }
  for (const FeatureLine& row : FeaturePPDKeyNameandMarkedValuetoPJLCommand) {
    written.emplace(TakeApart(row.line)->code);
  }
  written.insert(literals.begin(), literals.end());
  written.insert({"JOB MODE", "ENTER LANGUAGE", "EOJ"});
  for (const std::string& code : codes) EXPECT_TRUE(written.contains(code)) << code;
  EXPECT_GT(literals.size(), 50u);
}

// Jobs as the filter writes them: nothing is wrong, and the words are right.
TEST(Inspect, ReadsTheFiltersJobs) {
  const struct {
    const char* model;
    std::string settings;
    std::vector<const char*> says;  // a name and words, in one line
  } rows[] = {
      {"atelier-c90",
       "PrintTypeTicketKey=2 PrintTypeUserNameTicketKey=sam PrintTypePasswordTicketKey=" +
           Stored("geheim") + " EjectOptionsListTicket=4 ZLVTonerSaver=Mode2",
       {"Hold +keep until released", "Release password +sealed for the 2048-bit device key",
        "Held for user +sam", "Output face +down, in reverse order", "Toner saver +level 2",
        "Pages +4", "Encoding of texts +UTF-8"}},
      {"atelier-c90",
       "PrintTypeTicketKey=5 PrintTypeMBNTicketKey=12 PrintTypeMBNPasswordTicketKey=" +
           Stored("1234") +
           " JBAManageTypeListTicketKey=2 JBAUserSettingRadioBtnTicket=1 "
           "JBAUserIDListCtrlTicket=2 JBAUserIDTextEditTicket=anna "
           "JBAUserPasswordTextEditTicket=" +
           Stored("x") + " JBAAccountIDTextEditTicket=4711",
       {"Mailbox +12", "Accounting user +anna", "Account +4711"}},
      {"atelier-c90",
       "ZLVLineWeightAdjustment=Weakly3 ZLVColorMode=Black number-up=4 "
       "ZLVSignature=LeftSig ZLVSigVol=None sides=two-sided-long-edge collate",
       {"Line weight +3", "Colour +grayscale", "Booklet +bound at the left",
        "Booklet in parts +one booklet", "Pages per sheet +N4"}},
      {"atelier-c90",
       "TrimmerSelectTicket=3 TrimmerWidthMMSizeTicket=12.5 "
       "TrimmerHeightMMSizeTicket=5 TrimmerAdjustMMSizeTicket=1 "
       "OffsetStackingListTicket=4 OffsetStackingPagesLArrowTicket=20",
       {"Trimmer, size +12\\.5 mm", "Offset stacking +by pages", "Offset every +20"}},
      {"atelier-c90",
       "ZLVPBindPosition=BindRight ZLVPBindTrimming=1EdgeCut ZLVPBindPageSize=A4 "
       "ZLVPBindCutPositionFore=10mm ZLVPBindCoverPageSize=A3 "
       "ZLVPBindCoverMediaColor=Blue ZLVPBindCoverAdjustX=2",
       {"Perfect binding +at the right", "Trimming +fore edge", "Trimmed width +200 mm",
        "Image shift +5 mm", "Cover colour +BLUE", "Cover, across +-2 steps"}},
      {"atelier-c90",
       "XPIFCoverCountTicket=1 XPIFCoverValueTicket_0=0,1,print-both,plain,blue,210,297 "
       "XPIFInsertionCountTicket=1 XPIFInsertionValueTicket_0=0,3,2 "
       "XPIFExceptionCountTicket=1 XPIFExceptionValueTicket_0=0,1,1,2,4,one-sided,"
       "plain,white,210,297",
       {"Front cover +printed on both sides", "Back cover +none", "Insert after page +3",
        "Paper from +the inserter", "Exception from page +2"}},
  };
  for (const auto& row : rows) {
    const std::string job = FilteredJob(row.settings, row.model);
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
  const JobReport report = ReadJob(job);
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
  ASSERT_EQ(report.postScript.injections.size(), std::size(rows));
  for (std::size_t i = 0; i < std::size(rows); i++) {
    const Injection& injection = report.postScript.injections[i];
    EXPECT_EQ(injection.kind, rows[i].kind) << i;
    EXPECT_EQ(injection.detail, rows[i].detail);
    EXPECT_EQ(injection.count, rows[i].count);
    EXPECT_TRUE(job.substr(injection.offset).starts_with(rows[i].begins)) << i;
    EXPECT_EQ(injection.line,
              1u + static_cast<std::size_t>(std::count(
                       job.begin(), job.begin() + static_cast<long>(injection.offset), '\n')));
  }
  const auto& pages = report.postScript.injections.back().pages;
  EXPECT_EQ(pages, (decltype(report.postScript.injections.back().pages){{1, 4}}));
  EXPECT_TRUE(ReadJob(FilteredJob("")).postScript.injections.empty());
  const JobReport first =
      ReadJob(FilteredJob(std::string(kWatermark) + "WMARKOnlyFirstTicket=1", "atelier-c90",
                          "%!PS\ngrestore\nep\ngsave\ngrestore\nep\n"));
  EXPECT_EQ(first.postScript.injections.at(0).count, 1u);
  EXPECT_NE(ProblemsOf(FilteredJob(std::string(kWatermark) + "WMARKTextTicket=(" +
                                   std::string(120, 'x') + ")"))
                .find("the watermark's text is cut off"),
            std::string::npos);
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
      {"\x7f"
       "ELF\1\2",
       "no printer-ready job"},
      {good.substr(9), "there is no exit sequence in front of the job"},
      {"hello\n" + good,
       "6 bytes stand in front of the exit sequence; the printer may take them "
       "for text: hello"},
      {"AES Error[-1]\nERROR[97]: AES Decrypt failed[99].\n" + good,
       "line 2: a message of the credential library: a stored password does not open"},
      {replaced("MODE=PRINTER\r\n", "MODE=PRINTER\n"), "line 1: wrong line end: LF without CR"},
      {replaced("RET=ON\n", "RET=ON\r\n"), "line 2: wrong line end: CR LF instead of LF alone"},
      {replaced("@PJL SET RET=ON\n", ""), ""},
      {replaced("RET=ON", "RET=MAYBE"), "line 2: a value that the device dialect does not know"},
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
      {replaced("showpage\n", std::string("x") + kExit + "@PJL \n"),
       "line 5: an exit sequence inside the PostScript"},
      {good.substr(0, good.find("\4")), "the trailer is missing"},
      {good.substr(0, good.size() - 4), "the trailer breaks off"},
      {good.substr(0, good.size() - 1), "the trailer breaks off"},
      {good.substr(0, good.size() - 1) + "\r\n", "wrong line end: the trailer ends in LF"},
      {good + good, "bytes follow the trailer"},
      {std::string(kExit) + "@PJL JOB MODE=PRINTER\r\n" + kExit + "@PJL EOJ\n",
       "there is no PostScript: the job was cancelled"},
      {std::string(kExit) + "@PJL JOB MODE=PRINTER\r\n@PJL SET R", "breaks off within a line"},
  };
  EXPECT_EQ(ProblemsOf(good), "");
  for (const auto& row : rows) {
    const std::string problems = ProblemsOf(row.job);
    if (*row.problem == '\0') {
      EXPECT_EQ(problems, "");
    } else {
      EXPECT_NE(problems.find(row.problem), std::string::npos) << row.problem << "\n" << problems;
    }
  }
}

// A printer that decomposes PostScript: its job has no end byte, and the job copy of it has the
// document ahead of the switch, with lines of features in between.
TEST(Inspect, ExplainsDecomposedJobsAndTheirCopies) {
  const std::string job =
      FilteredJob("", "atelier-c60", "%!PS\n%%BeginFeature: *ZLVTonerSaver Mode2\nep\nep\n%%EOF\n");
  EXPECT_EQ(ProblemsOf(job), "");
  EXPECT_NE(TextOf(job).find("is not closed by the end byte"), std::string::npos);

  const std::string copy =
      std::string(kExit) +
      "@PJL JOB MODE=PRINTER\r\n%!PS\n"
      "@PJL SET ECONOMODE=MODE2\n%%BeginFeature: *ZLVTonerSaver Mode2\nep\n\n\4"
      "@PJL ENTER LANGUAGE=POSTSCRIPT\n" +
      kExit + "@PJL EOJ\n";
  const std::string text = TextOf(copy);
  EXPECT_NE(text.find("nothing wrong"), std::string::npos) << text;
  EXPECT_NE(text.find("job copy for a printer that decomposes"), std::string::npos);
  EXPECT_TRUE(Matches("Toner saver +level 2", text));
  EXPECT_TRUE(Matches("Pages +1\n", text)) << text;
  std::string document;
  JobParser parser([&](std::string_view bytes) { document += bytes; });
  parser.feed(copy, nullptr);
  parser.finish();
  EXPECT_EQ(document, "%!PS\n%%BeginFeature: *ZLVTonerSaver Mode2\nep\n\n\4");
}

TEST(Inspect, HidesSecretsEverywhere) {
  const std::string sealed(600, 'S');
  const std::string lines =
      "@PJL SET JOBATTR=\"@JOEP=" + sealed + "\"\n@PJL SET JOBATTR=\"@ACEP=secret\"\r\n" +
      "@PJL SET HOLDENCRYPTKEY=\"secret\"\r\n@PJL SET BOXENCRYPTKEY=secret\n" +
      "@PJL SET JOBATTR=\"@JOEP=secret\n@PJL SET JOBATTR=\"@ACEP=secret@PJL SET RET=ON\n" +
      "@PJL SET JOBATTR=\"@XXXX=" + sealed + "\"\nx " + sealed + "\n";
  ScratchFolder folder;
  const std::string first = folder.write("a", "@JOEP=secret" + Job(lines));
  const std::string second = folder.write("b", Job("@PJL SET HOLDENCRYPTKEY=\"secret2\"\r\n"));
  for (const auto& arguments :
       std::vector<std::vector<std::string>>{{first},
                                             {"--json", first},
                                             {"--diff", first, second},
                                             {"--diff", "--json", first, second}}) {
    const ToolResult result = InspectTool(arguments);
    EXPECT_EQ(result.status, 1);
    for (const std::string& text : {result.output, result.messages}) {
      EXPECT_EQ(text.find("secret"), std::string::npos) << text;
      EXPECT_EQ(text.find("SSSSSSSS"), std::string::npos) << text;
    }
  }
  EXPECT_NE(InspectTool({first, "--show-passwords"}).output.find("secret"), std::string::npos);
}

TEST(Inspect, ShowsHostileTextEscaped) {
  const std::string job =
      Job(std::string("@PJL SET JOBATTR=\"@CNAM=a\033[31m\x9b\xff\u202e\0\x7f\"\n", 39) +
          "@PJL \033]0;x\a\n");
  for (const char* encoding : {"", "@PJL SET STRINGCODESET=UTF8\n"}) {
    std::string with = job;
    with.insert(9, encoding);
    const JobReport report = ReadJob(with);
    for (const std::string& text :
         {TextReport("\033[1m", report, {}), JsonReport("\033[1m", report, {})}) {
      EXPECT_FALSE(std::any_of(text.begin(), text.end(), [](char c) {
        return (c >= 0 && c < ' ' && c != '\n') || c == 0x7f;
      })) << text;
      EXPECT_EQ(text.find("\u202e"), std::string::npos);
      EXPECT_EQ(text.find("\xc2\x9b"), std::string::npos);
    }
    EXPECT_TRUE(nlohmann::json::accept(JsonReport("x", report, {})));
  }
  EXPECT_NE(TextOf(Job("@PJL SET JOBATTR=\"@CNAM=M\xfcller\"\n")).find("Müller"),
            std::string::npos);
}

// Wherever a job breaks off something is wrong with it, and nothing that stands in one stops the
// inspector.
TEST(Inspect, StandsWhateverComes) {
  const std::string job =
      FilteredJob(std::string(kWatermark) +
                      "PrintTypeTicketKey=2 PrintTypeUserNameTicketKey=sam "
                      "PrintTypePasswordTicketKey=" +
                      Stored("geheim"),
                  "atelier-c90", "%!PS\n%%BeginProlog\n%%EndProlog\n%%EndPageSetup\nep\n%%EOF\n");
  for (std::size_t length = 0; length < job.size(); length++) {
    EXPECT_FALSE(ReadJob(std::string_view(job).substr(0, length)).problems.empty()) << length;
  }
  std::mt19937 random(1);
  for (int round = 0; round < 300; round++) {
    std::string damaged = job;
    for (int i = 0; i < 8; i++) {
      const std::size_t at = random() % damaged.size();
      const std::size_t from = random() % damaged.size();
      if (i % 2 == 0) damaged[at] = static_cast<char>(random());
      if (i % 2 == 1) damaged.insert(at, damaged.substr(from, random() % 200));
    }
    JobReport report = ReadJob(damaged);
    JudgePasswords(report, nullptr);
    TextReport("job", report, {});
    JsonReport("job", report, {});
  }
  const std::string endless = Job("@PJL " + std::string(3'000'000, '@') + "\n");
  EXPECT_NE(ProblemsOf(endless).find("a line of 3000006 bytes"), std::string::npos);
  EXPECT_EQ(ReadJob(Job(std::string(200'000, '\n'))).problems.size(), 101u);
}

// The exit sequence and the trailer are found however the job comes in pieces.
TEST(Inspect, ReadsJobsInAnyPieces) {
  const std::string job = Job("@PJL SET RET=ON\n", "%!PS\r\n\r\rshowpage\r\n");
  for (std::size_t cut = 1; cut < job.size(); cut++) {
    JobParser parser;
    parser.feed(std::string_view(job).substr(0, cut), nullptr);
    parser.feed(std::string_view(job).substr(cut), nullptr);
    const JobReport report = parser.finish();
    EXPECT_EQ(Problems(report), "") << cut;
    EXPECT_TRUE(report.trailer && report.postScript.closed) << cut;
    EXPECT_EQ(report.postScript.lastLine, 8u) << cut;
  }
  const std::string split = Job("", std::string("%!PS\n") + kExit + "@PJL EO?\n");
  for (std::size_t cut = 1; cut < split.size(); cut++) {
    std::string document;
    JobParser parser([&](std::string_view bytes) { document += bytes; });
    parser.feed(std::string_view(split).substr(0, cut), nullptr);
    parser.feed(std::string_view(split).substr(cut), nullptr);
    EXPECT_EQ(parser.finish().postScript.bytes, document.size());
    EXPECT_EQ(document, "%!PS\n@PJL EO?\n\4") << cut;
  }
}

TEST(InspectTool, OpensPasswordsWithTheDeviceKey) {
  ScratchFolder folder;
  const std::string settings =
      "PrintTypeTicketKey=2 PrintTypeUserNameTicketKey=sam "
      "PrintTypePasswordTicketKey=" +
      Stored("ge\033heim");
  const std::string job = FilteredJob(settings);
  const std::string path = folder.write("job", job);
  const ToolResult opened = InspectTool({path, "--device-key", kKeyFile});
  EXPECT_EQ(opened.status, 0);
  EXPECT_NE(opened.output.find("device key, opens "), std::string::npos) << opened.output;
  EXPECT_EQ(opened.output.find("heim"), std::string::npos);
  const ToolResult shown = InspectTool({path, "--device-key", kKeyFile, "--show-passwords"});
  EXPECT_NE(shown.output.find("opens: \"ge\\x1bheim\""), std::string::npos);
  EXPECT_NE(InspectTool({"--json", path, "--device-key", kKeyFile, "--show-passwords"})
                .output.find("\"password\": \"ge\\u001bheim\""),
            std::string::npos);

  const EVPPointer<EVP_PKEY> other(EVP_RSA_gen(2048));
  JobReport report = ReadJob(job);
  JudgePasswords(report, other.get());
  EXPECT_NE(TextReport("job", report, {}).find("for another key"), std::string::npos);

  // A blob cut short, one that is changed at its end, and one that was never one.
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
  const PrivateKey key = ReadPrivateKey(kKeyFile);
  for (const auto& row : rows) {
    JobReport broken = ReadJob(std::string(job).replace(begin, length, row.blob));
    JudgePasswords(broken, key.get());
    EXPECT_NE(Problems(broken).find(row.fault), std::string::npos) << row.fault << Problems(broken);
  }
}

TEST(InspectTool, ComparesTwoJobs) {
  ScratchFolder folder;
  const std::string hold =
      "PrintTypeTicketKey=2 PrintTypeUserNameTicketKey=sam "
      "PrintTypePasswordTicketKey=";
  const std::string first = folder.write("a", FilteredJob(hold + Stored("one") + " number-up=2"));
  const std::string again = folder.write("b", FilteredJob(hold + Stored("one") + " number-up=2"));
  const std::string other = folder.write("c", FilteredJob(hold + Stored("two") + " number-up=4"));
  const ToolResult same = InspectTool({"--diff", first, again, "--device-key", kKeyFile});
  EXPECT_EQ(same.status, 0) << same.output;
  EXPECT_EQ(same.output, "");
  const ToolResult different = InspectTool({"--diff", first, other});
  EXPECT_EQ(different.status, 1);
  EXPECT_EQ(different.output,
            "Layout and booklet\n  Pages per sheet: N2 -> N4\n"
            "  Imposition: sideways -> upright\n\n"
            "Job summary\n  Pages per sheet: 2 -> 4\n  Orientation: landscape -> portrait\n"
            "  Order of pages: right, or down -> right, then down\n");
  EXPECT_NE(InspectTool({"--diff", first, other, "--device-key", kKeyFile})
                .output.find("Release password: "),
            std::string::npos);
  const auto json = nlohmann::json::parse(InspectTool({"--diff", "--json", first, other}).output);
  EXPECT_FALSE(json["same"]);
  EXPECT_EQ(json["differences"][0]["second"], "N4");
  const auto insertions = [](const std::string& page, const std::string& nextPage) {
    const std::string line = "@PJL SET JOBATTR=\"@EIST=";
    return ReadJob(Job(line + page + "\"\n" + line + nextPage + "\"\n"));
  };
  EXPECT_EQ(TextDifference(insertions("2", "1"), insertions("3", "1"), {}),
            "Special pages\n  Insert after page: 2 -> 3\n");
}

TEST(InspectTool, RendersPages) {
  ScratchFolder folder;
  const std::string plain = folder.write("plain", FilteredJob(""));
  const std::string stamped = folder.write("stamped", FilteredJob(kWatermark));
  for (const char* name : {"plain", "stamped"}) {
    const ToolResult result = InspectTool(
        {folder.path() + "/" + name, "--png", folder.path() + "/50%d " + name, "--dpi", "20"});
    ASSERT_EQ(result.status, 0) << result.messages;
  }
  for (const char* page : {"/page-001.png", "/page-004.png"}) {
    const std::string before = FileContent(folder.path() + "/50%d plain" + page);
    EXPECT_TRUE(before.starts_with("\x89PNG"));
    EXPECT_NE(before, FileContent(folder.path() + "/50%d stamped" + page));
  }
  const ToolResult missing =
      RunTool(INSPECT_BINARY, {plain, "--png", folder.path()}, "", "/nowhere");
  EXPECT_EQ(missing.status, 1);
  EXPECT_NE(missing.messages.find("Ghostscript (gs) was not found"), std::string::npos);
  const std::string broken = folder.write("broken", Job("", "%!PS\n(no end\n"));
  const ToolResult refused = InspectTool({broken, "--png", folder.path()});
  EXPECT_EQ(refused.status, 1);
  EXPECT_NE(refused.messages.find("does not like the document: Error: /syntaxerror"),
            std::string::npos)
      << refused.messages;
}

TEST(InspectTool, KeepsItsManners) {
  ScratchFolder folder;
  const std::string good = folder.write("good", Job(""));
  const std::string bad = folder.write("bad", Job("@PJL SET RET=NO\n"));
  const std::string text = folder.write("text", "hello\n");
  const struct {
    std::vector<std::string> arguments;
    int status;
    const char* message;
  } rows[] = {
      {{good}, 0, ""},
      {{"--json", good}, 0, ""},
      {{bad}, 1, "bad: line 2: a value that the device dialect does not know: @PJL SET RET=NO"},
      {{text}, 1, "text: this is no printer-ready job"},
      {{"--diff", good, text}, 1, "text: this is no printer-ready job"},
      {{folder.path()}, 1, "it is a folder"},
      {{folder.path() + "/none"}, 1, "cannot read "},
      {{good, "--device-key", good}, 1, "is no private key that can be read"},
      {{good, "--png", good}, 1, "cannot make the folder"},
      {{}, 2, "JOB is required"},
      {{good, good}, 2, "one job at a time"},
      {{"--diff", good}, 2, "--diff compares two jobs"},
      {{"--diff", "--png", "x", good, good}, 2, "--png renders one job"},
      {{good, "--dpi", "50"}, 2, "--png"},
      {{good, "--colour"}, 2, "--colour"},
  };
  for (const auto& row : rows) {
    const ToolResult result = InspectTool(row.arguments);
    EXPECT_EQ(result.status, row.status) << row.message << result.messages;
    if (row.status == 0) {
      EXPECT_EQ(result.messages, "");
    } else {
      EXPECT_TRUE(IsOneLine(result.messages)) << result.messages;
      EXPECT_TRUE(result.messages.starts_with("xpjl-inspect: ")) << result.messages;
      EXPECT_NE(result.messages.find(row.message), std::string::npos) << result.messages;
    }
  }
  EXPECT_EQ(InspectTool({"-"}, Job("")).output.find("problem"), std::string::npos);
  EXPECT_EQ(InspectTool({"--help"}).status, 0);
  EXPECT_TRUE(InspectTool({"--version"}).output.starts_with("xpjl-inspect "));
}
