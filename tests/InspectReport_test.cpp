// What the inspector says of jobs: those of tests/data/inspections.txt, and of cut, endless and
// broken ones.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <openssl/rsa.h>
#include <unistd.h>

#include <algorithm>
#include <map>

#include "tests/support/GoldenFile.h"
#include "tests/support/Password.h"
#include "tests/support/SampleJobs.h"
#include "tools/explain/Trial.h"
#include "tools/inspect/JobReader.h"
#include "tools/inspect/ReportLines.h"
#include "tools/inspect/SealedPasswords.h"

namespace {

// What stands behind each word of a case of inspections.txt.
using Case = std::map<std::string, std::string>;

std::vector<Case> Cases() {
  std::vector<Case> cases(1);
  std::ifstream lines(TEST_DATA_DIR "/inspections.txt");
  for (std::string line; std::getline(lines, line);) {
    if (line.empty() && !cases.back().empty()) cases.emplace_back();
    if (line.empty() || line[0] == '#') continue;
    const std::size_t blank = std::min(line.find(' '), line.size() - 1);
    const std::string word = line.substr(0, blank);
    const bool ends = word == ">" || !line.ends_with('\\');
    const std::string text = line.substr(blank + 1, line.size() - blank - (ends ? 1 : 2));
    cases.back()[word] += (word == ">" ? text : Unescaped(text)) + (ends ? "\n" : "");
  }
  return cases;
}

// The job of a case, or the plain one beside which it is judged.
std::string JobOf(Case parts, bool plain = false) {
  const std::string document = parts.contains("document") ? parts["document"] : "showpage\n";
  if (parts.contains("tickets")) {
    std::string tickets = plain ? "" : parts["tickets"];
    for (std::size_t at = 0; (at = tickets.find('<')) != tickets.npos;) {
      const std::size_t end = tickets.find('>', at);
      tickets.replace(at, end + 1 - at, Stored(tickets.substr(at + 1, end - at - 1)));
    }
    const std::string model = parts.contains("on") ? parts["on"] : "atelier-c90\n";
    return FilteredJob(tickets, "%!PS\n" + document, model.substr(0, model.size() - 1));
  }
  if (plain) return Job("");
  return parts.contains("job") ? parts["job"] : Job(parts["header"], "%!PS\n" + document);
}

JobReport ReportOf(const std::string& job, EVP_PKEY* key = nullptr) {
  JobReport report = ReadJob(job);
  JudgePasswords(report, key);
  return report;
}

// The lines of a report as inspections.txt has them.
std::vector<std::string> LinesOf(const JobReport& report) {
  std::vector<std::string> lines;
  std::istringstream text(TextReport("job", report, {}));
  for (std::string line; std::getline(text, line);) {
    std::string even;
    std::istringstream words(line.substr(0, line.find(", byte ")));
    for (std::string word; words >> word;) even += (even.empty() ? "" : " ") + word;
    if (even.starts_with("job: ")) even.erase(0, even.find(", ") + 2);
    const bool size = even.starts_with("Size ") && even.find(" bytes") != even.npos;
    if (!even.empty() && !size) lines.push_back(even);
  }
  return lines;
}

std::string ProblemsOf(const JobReport& report) {
  std::string text;
  for (const Remark& problem : report.problems) text += RemarkText(problem, report.charset) + "\n";
  return text;
}

// What comes of a job that is read in pieces of this size, without the filter's token lines.
JobReport InPieces(const std::string& job, std::size_t size, const PostScriptSink& sink = {}) {
  JobParser parser(sink);
  for (std::size_t at = 0; at < job.size(); at += size) {
    parser.feed(std::string_view(job).substr(at, size), nullptr);
  }
  return parser.finish();
}

}  // namespace

TEST(Inspect, SaysWhatAJobAsksForAndWhatIsWrong) {
  for (Case& parts : Cases()) {
    const std::string job = JobOf(parts);
    const std::vector<std::string> plain = LinesOf(ReportOf(JobOf(parts, true)));
    std::string said;
    for (const std::string& line : Surplus(LinesOf(ReportOf(job)), plain)) said += line + "\n";
    EXPECT_EQ(said, parts[">"]) << job;
    if (!parts.contains("document")) continue;
    // The document's own settings are found however it comes in pieces.
    const std::vector<std::string> whole = LinesOf(InPieces(job, job.size()));
    for (std::size_t size = 1; size < 40; size += 7) {
      EXPECT_EQ(LinesOf(InPieces(job, size)), whole) << size;
    }
  }
}

TEST(Inspect, WritesWholeReports) {
  const std::string job = JobOf(Cases().front());
  const JobReport report = ReportOf(job);
  EXPECT_EQ(TextReport("\033[1m\xff", report, {}), FileContent(TEST_DATA_DIR "/inspection.txt"));
  EXPECT_EQ(JsonReport("\033[1m\xff", report, {}), FileContent(TEST_DATA_DIR "/inspection.json"));
  EXPECT_TRUE(Contains(JsonReport("job", ReadJob(Job("")), {}), "\"ISO-8859-1\""));
}

// Wherever a job breaks off something is wrong with it, and endless ones are reported shortly.
TEST(Inspect, StandsWhateverComes) {
  const std::string job =
      FilteredJob(kWatermark + (kSecurePrint + Stored("geheim")),
                  "%!PS\n%%BeginProlog\n%%EndProlog\n%%EndPageSetup\nep\n%%EOF\n");
  for (std::size_t length = 0; length < job.size(); length++) {
    EXPECT_FALSE(ReadJob(std::string_view(job).substr(0, length)).problems.empty()) << length;
  }
  // A file of which somebody has read a part.
  const ScratchFolder folder;
  const int file = open(folder.write("jobs", "%%EOF\n" + job).c_str(), O_RDONLY);
  lseek(file, 6, SEEK_SET);
  EXPECT_EQ(TextReport("job", ReadJob(file, {}), {}), TextReport("job", ReadJob(job), {}));
  close(file);
  const JobReport endless = ReadJob(Job("@PJL " + std::string(3'000'000, '@') + "\n"));
  EXPECT_TRUE(FirstProblem(endless).starts_with("line 2: a line of 3000006 bytes, longer than"));
  EXPECT_LT(FirstProblem(endless).size(), 250u);
  const JobReport many = ReadJob(Job(std::string(200'000, '\n') + "@PJL SET RET=NO\n"));
  EXPECT_EQ(many.problemCount(), 200'001u);
  const std::string said = TextReport("job", many, {});
  EXPECT_TRUE(Contains(said, "200001 problems") && Contains(said, "\n  and 199901 more\n"));
  EXPECT_TRUE(Contains(FirstProblem(many), "(and 200000 more)"));
  const JobReport settings = ReadJob(Job(Repeat("@PJL SET RET=ON\n", 20'000)));
  EXPECT_LT(settings.settings.size(), 10'000u);
  EXPECT_EQ(settings.problemCount(), 1u);
  const std::string entries = Repeat("<</Duplex true>>setpagedevice\n", 1000);
  EXPECT_EQ(ReadJob(Job("", "%!PS\n" + entries)).postScript.own.entries.size(), 200u);
  const std::string apart = Repeat("%%EndPageSetup\nfffbp\nep\nep\n", 100);
  EXPECT_EQ(ReadJob(Job("", "%!PS\n" + apart)).postScript.injections.at(0).pages.size(), 50u);
  const std::string wide = "%%Title: " + std::string(9000, 'x') + "\n";
  const OwnSettings cut = InPieces(Job("", "%!PS\n" + wide), 100).postScript.own;
  EXPECT_EQ(cut.entries.at(0).value.size(), 1024u - 9);
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
      const JobReport report =
          InPieces(row.job, size, [&](std::string_view bytes) { document += bytes; });
      EXPECT_EQ(document, row.document) << size;
      EXPECT_EQ(report.postScript.bytes, document.size()) << size;
      EXPECT_EQ(report.settings.size(), row.settings) << size;
      EXPECT_EQ(report.problems.size(), row.problems) << size;
      EXPECT_EQ(report.postScript.lastLine, row.lastLine) << size;
      EXPECT_TRUE(report.trailer && report.postScript.closed) << size;
    }
  }
  // The lines that are sent ahead of a spooled document's rest are not its own.
  std::string document;
  InPieces(kExit + "@PJL JOB MODE=PRINTER\r\n%!PS\n@PJL SET ECONOMODE=MODE2\nep\n", 1000,
           [&](std::string_view bytes) { document += bytes; });
  EXPECT_EQ(document, "%!PS\nep\n");
}

TEST(Inspect, JudgesSealedPasswords) {
  const std::string job = FilteredJob(kSecurePrint + Stored("geheim"));
  const PrivateKey key = ReadPrivateKey(TEST_DATA_DIR "/demo-device-2048-private.pem");
  const EVPPointer<EVP_PKEY> other(EVP_RSA_gen(2048));
  EXPECT_TRUE(Contains(ProblemsOf(ReportOf(job, other.get())), "for another key than the one"));
  const std::size_t begin = job.find("HOLDENCRYPTKEY=\"") + 16;
  const std::size_t length = job.find('"', begin) - begin;
  const std::string blob = BlobBytes(job.substr(begin, length));
  const auto with = [&](std::size_t at, int value) {
    return std::string(blob).replace(at, 1, 1, static_cast<char>(value));
  };
  // One of 256 damaged ends looks like the end of a password.
  int end = blob.back() + 1;
  while (PasswordInBlob(with(blob.size() - 1, end), key.get()) && end < blob.back() + 256) end++;
  std::string cut = with(2, blob[2] - 1).replace(6, 1, 1, static_cast<char>(blob[6] - 1));
  cut.pop_back();
  const struct {
    std::string blob;
    const char* fault;
  } rows[] = {
      {"", "it is no Base64 text"},
      {"hello", "it does not begin as a blob"},
      {"\10\1", "it does not begin as a blob"},
      {with(1, 2), "it does not begin as a blob"},
      {with(11, 2), "it names an unknown type of key"},
      {with(11, 1), "its lengths do not add up"},
      {blob.substr(0, blob.size() - 1), "its lengths do not add up"},
      {with(6, blob[6] + 1), "its lengths do not add up"},
      {with(10, 2), "its header holds unknown values"},
      {with(12, 1), "its header holds unknown values"},
      {cut, "it is cut off"},
      {with(16, blob[16] + 1), "for another key than the one given"},
      {with(blob.size() - 1, end), "it does not open with its own key"},
  };
  for (const auto& row : rows) {
    const std::string text = row.blob.empty() ? "!" : Base64(row.blob);
    const std::string broken = std::string(job).replace(begin, length, text);
    const std::string problems = ProblemsOf(ReportOf(broken, key.get()));
    EXPECT_TRUE(Contains(problems, row.fault)) << row.fault << problems;
  }
}
