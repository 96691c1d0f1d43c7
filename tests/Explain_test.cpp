// Why an option had no effect: what xpjl-explain says of misspelt, half-effective, contradictory
// and superseded options, and of the lines of every row.

#include <gtest/gtest.h>

#include <algorithm>
#include <nlohmann/json.hpp>
#include <set>

#include "tests/support/GoldenFile.h"
#include "tests/support/Tickets.h"
#include "tests/support/ToolProcess.h"
#include "tools/explain/ExplanationReports.h"
#include "tools/explain/QueueSource.h"
#include "tools/explain/RowTests.h"

namespace {

std::string PPDOf(const std::string& model) {
  return std::string(PPD_DIR) + "/zelva-" + model + ".ppd";
}

const Trial& TrialFor(const std::string& model) {
  static std::string last;
  static Trial trial(nullptr, {});
  if (model != last) trial = Trial(PPDFromFile(PPDOf(model)).ppd, {"sam", "Report", "1"});
  last = model;
  return trial;
}

Explainer Explained(const std::string& model, const std::string& options) {
  std::vector<JobOption> given;
  std::istringstream words(options);
  for (std::string word; words >> word;) {
    for (const JobOption& option : ParsedOptions(word)) given.push_back(option);
  }
  return {TrialFor(model), {}, given};
}

}  // namespace

TEST(Explain, SaysWhatEachOptionDoesAndWhyOneDoesNothing) {
  std::string model, options, code, expected;
  std::vector<std::string> lines = GoldenLines("explanations.txt");
  lines.emplace_back("|");
  for (const std::string& line : lines) {
    const std::string text = line.substr(std::min(line.find(' '), line.size() - 1) + 1);
    if (line.starts_with('>')) {
      expected += text + "\n";
      continue;
    }
    if (!expected.empty()) {
      const Explainer explainer = Explained(model, options);
      EXPECT_EQ(code.empty() ? TextExplanation(ReportOn(explainer))
                             : TextExplanation(code, explainer.explainLine(code)),
                std::exchange(expected, ""))
          << model << options << " " << code;
    }
    if (line.starts_with("on ")) {
      model = text;
    } else {
      const std::size_t asked = text.find("? ");
      options = text.substr(0, asked);
      code = asked == text.npos ? "" : text.substr(asked + 2);
    }
  }
}

TEST(Explain, RemarksOnWhatTheQueueAdds) {
  const ExplanationReport report = ReportOn({TrialFor("atelier-c90"), {{"ZLVStapel", "x"}}, {}});
  EXPECT_EQ(report.remarks.size(), 1u);
  EXPECT_FALSE(report.fine());
}

// Whatever the job is: each row is named for its line, with just those tests that do not hold.
TEST(Explain, NamesEveryRowAndTheTestsThatFailed) {
  std::size_t written = 0, failed = 0;
  std::set<std::string> said;
  for (const char* options :
       {"", "ZLVPrintPassword=Custom.1 ZLVAccountPassword=Custom.2 ZLVStorageID=Custom.s",
        "ZLVPrintType=Sample ZLVAccounting=Administrator ZLVAccountUser=Custom.pat",
        "ZLVPrintType=Mailbox ZLVMailbox=Custom.7 ZLVTrimmer=ThreeEdges ZLVTabMargin=Custom.5",
        "ZLVOutputFace=Off ZLVOffsetStacking=Copies ZLVNumbering=Custom.3 PageSize=A5"}) {
    SCOPED_TRACE(options);
    const Explainer explainer = Explained("atelier-c90", options);
    ASSERT_EQ(explainer.job().failure, "");
    std::map<std::string, LineExplanation> lines;
    for (const RowName& name : RowNames()) {
      if (name.code.empty() || name.code == "EOJ") continue;  // the frame's last and first words
      if (!lines.contains(name.code)) lines[name.code] = explainer.explainLine(name.code);
      const LineExplanation& line = lines[name.code];
      const auto row = std::ranges::find_if(line.rows, [&](const auto& r) {
        return r.table == name.table->name && r.name == name.name;
      });
      if (row == line.rows.end()) {
        ADD_FAILURE() << name.table->name << " " << name.name << " is not named for " << name.code;
        continue;
      }
      EXPECT_EQ(row->written, row->failed.empty() && row->notUsed.empty()) << name.name;
      EXPECT_EQ(row->failed.size(), std::ranges::count(row->holds, false)) << name.name;
      if (row->written) {
        written++;
        EXPECT_FALSE(line.lines.empty())
            << name.name << " holds, and " << name.code << " is missing";
      }
      for (const std::string& why : row->failed) {
        failed++;
        said.insert(why);
        EXPECT_EQ(why.find("xpjlOption"), why.npos) << name.name << ": " << why;
      }
    }
  }
  EXPECT_GT(written, 60u);
  EXPECT_GT(failed, 1000u);
  EXPECT_TRUE(said.contains("it counts only in a job without JBAUserIDTextEditTicket"));
}

// The program: exit statuses, what it composes, the job it compares with, and no password anywhere.
TEST(Explain, AnswersScripts) {
  const std::string ppd = PPDOf("atelier-c90");
  const auto run = [&](std::vector<std::string> arguments, const std::string& input = "") {
    arguments.insert(arguments.begin(), {"--ppd", ppd, "-U", "sam", "-t", "Report"});
    return RunTool(EXPLAIN_BINARY, arguments, input);
  };
  const struct {
    std::vector<std::string> arguments;
    int status;
  } statuses[] = {
      {{"-o", "ZLVStaple=LeftDouble Duplex=DuplexTumble", "-n", "2"}, 0},
      {{"-o", "ZLVStaple=None"}, 0},
      {{"-o", "ZLVStapel=LeftDouble"}, 1},
      {{"--line", "JOEP"}, 1},
      {{"--line", "LUNA"}, 0},
      {{"--job", "/nonexistent"}, 3},
      {{"--line", "LUMA"}, 2},
      {{"-x"}, 2},
      {{"--json", "--compose"}, 2},
      {{"--compose"}, 0},
      {{"--compose", "-o", "ZLVStapel=LeftDouble"}, 1},
  };
  for (const auto& row : statuses) {
    const ToolResult result = run(row.arguments);
    EXPECT_EQ(result.status, row.status) << row.arguments.back() << result.messages;
    EXPECT_EQ(IsOneLine(result.messages), row.status > 1) << result.messages;
  }
  EXPECT_EQ(RunTool(EXPLAIN_BINARY, {"--ppd", "/nonexistent.ppd"}).status, 3);
  EXPECT_EQ(RunTool(EXPLAIN_BINARY, {}).status, 2);
  const ScratchFolder folder;
  const std::string broken = folder.write("ppd", "hello\n");
  const ToolResult refused = RunTool(EXPLAIN_BINARY, {"--ppd", broken});
  EXPECT_NE(refused.messages.find(" in line 1\n"), std::string::npos) << refused.messages;

  const std::string secret = "ZLVPrintPassword=Custom.S3cretPin";
  const ToolResult hidden = run({"-o", secret, "--json"});
  const ToolResult misspelt = run({"-o", "ZLVPrintPasword=Custom.S3cretPin", "--json"});
  EXPECT_NE(hidden.output.find("(hidden)"), std::string::npos) << hidden.output;
  EXPECT_EQ((hidden.output + misspelt.output).find("S3cret"), std::string::npos)
      << hidden.output << misspelt.output;
  auto json = nlohmann::ordered_json::parse(
      run({"--json", "-o", "ZLVStaple=LeftDouble ZLVStapel=x page-set=odd", "-n", "2"}).output);
  EXPECT_GT(json["header"].size(), 20u);  // with this computer's name
  json["header"] = nullptr;
  EXPECT_EQ(json.dump(2) + "\n", FileContent(TEST_DATA_DIR "/explanation.json"));
  EXPECT_EQ(run({"--json", "--line=TABS"}).output,
            FileContent(TEST_DATA_DIR "/explanation-line.json"));

  // The manual page names every key.
  const std::string manual = FileContent(SOURCE_DIR "/man/xpjl-explain.1");
  const auto flat = json.flatten();
  for (const auto& [path, value] : flat.items()) {
    for (const std::string& key : Captures("([a-z]+)", path)) {
      EXPECT_NE(manual.find(key), std::string::npos) << key;
    }
  }

  // What it composes is what the printer filter takes; the job that comes out is the one expected.
  FilterJob job;
  job.environment["PPD"] = ppd;
  job.arguments = {"1", "sam", "Report", "1", run({"--compose", "-o", secret}).output};
  std::string printed = RunFilter(job).output;
  const std::string address = "@PJL SET JOBATTR=\"@HOAD=10.1.1.1\"\n";  // of another computer
  const std::string file = folder.write("job", printed.insert(printed.find("@PJL SET"), address));
  const ToolResult same = run({"-o", secret, "--job", file});
  EXPECT_EQ(same.status, 0) << same.output;
  const std::string toner = "@PJL SET ECONOMODE=OFF\n";
  const std::string doubled = folder.write("doubled", Replaced(printed, toner, toner + toner));
  EXPECT_EQ(run({"-o", secret, "--job", doubled}).status, 1);
  const ToolResult other = run({"-o", secret, "-o", "ZLVStaple=LeftDouble", "--job", file});
  EXPECT_EQ(other.status, 1);
  EXPECT_NE(other.output.find("The job is another one:\n    it lacks\n"
                              "      Staple: on  [@PJL COMMENT PRINTJOBINFO STAPLE=ON]\n"
                              "      Staple position: two at the left  "
                              "[@PJL COMMENT PRINTJOBINFO STAPLEEX=LEFTDUAL]\n"
                              "    it has besides\n"
                              "      Staple: off  [@PJL COMMENT PRINTJOBINFO STAPLE=OFF]\n"),
            std::string::npos)
      << other.output;
}
