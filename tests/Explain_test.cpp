// Why an option had no effect: what xpjl-explain says of misspelt, half-effective, contradictory
// and superseded options, and of the lines of every row.

#include <gtest/gtest.h>

#include <algorithm>
#include <nlohmann/json.hpp>

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

std::string AllOf(const OptionExplanation& option) {
  std::string text;
  for (const auto* list : {&option.why, &option.lines, &option.choices, &option.tickets}) {
    for (const std::string& entry : *list) text += entry + "\n";
  }
  return text;
}

#define TICKET_OPTION "com.zelva.jt.printsettings.ps.ww."

// The last option of each job is the one that is explained.
constexpr struct {
  const char* options;
  Effect effect;
  const char* said;  // among reasons, lines and choices
  const char* model = "atelier-c90";
} kOptions[] = {
    // Misspelt.
    {"ZLVStapel=LeftDouble", Effect::kNone, "did you mean ZLVStaple?"},
    {"ZLVStaple=leftdouble", Effect::kLines, "STAPLEEX=LEFTDUAL"},
    {"ZLVStaple=LeftDuoble", Effect::kNone, "did you mean LeftDouble?"},
    {"ZLVPunch=Nowhere", Effect::kNone, "there is no such choice"},
    {"Dupelx=DuplexTumble", Effect::kNone, "did you mean Duplex?"},
    {"InputSlot=2dnTray", Effect::kNone, "did you mean 2ndTray?"},
    {"page-range=1-2", Effect::kNone, "did you mean page-ranges?"},
    {"com.zelva.jt.printsettings.ps.ww.PrintTypTicketKey=2", Effect::kNone,
     "did you mean com.zelva.jt.printsettings.ps.ww.PrintTypeTicketKey?"},
    {"toner=low", Effect::kNone, "Nothing knows an option of this name"},
    // Half of something.
    {"ZLVTonerReductionRate=Percent30", Effect::kNone, "counts only with ZLVTonerSaver=UserInput"},
    {"ZLVTonerSaver=UserInput ZLVTonerReductionRate=Percent30", Effect::kLines, "REDUCTIONRATE=30"},
    {"ZLVNumPunchHoles=4Holes", Effect::kNone, "counts only with ZLVPunch="},
    {"ZLVOffsetStackingNumber=5", Effect::kNone, "counts only with ZLVOffsetStacking=Pages"},
    {"ZLVWatermarkSize=72", Effect::kNone, "counts only with ZLVWatermark="},
    {"ZLVWatermarkColor=Red", Effect::kNone, "counts only with ZLVWatermark="},
    {"ZLVCoverPrint=Front", Effect::kNone, "counts only with ZLVCover="},
    {"ZLVCover=Front ZLVCoverMediaColor=Red", Effect::kNone,
     "counts only with ZLVCoverSource=Paper"},
    {"ZLVInsertCount=3", Effect::kNone, "counts only with ZLVInsertAfter"},
    {"ZLVTrimmer=On ZLVTrimmerWidth=170", Effect::kNone, "counts only with ZLVTrimmer=ThreeEdges"},
    {"ZLVPBindPageSize=B5", Effect::kNone, "counts only with ZLVPBindPosition="},
    {"ZLVSigVol=5Sheets", Effect::kNone, "ZLVSigVol=5Sheets does not go with the other choices"},
    {"ZLVPrintType=Mailbox", Effect::kNone, "needs ZLVMailbox"},
    {"ZLVPrintType=Delayed", Effect::kNone, "needs ZLVDelayTime"},
    {"ZLVAccountID=Custom.4711", Effect::kLines, "@DAID=4711"},
    {TICKET_OPTION "PrintTypeTicketKey=2", Effect::kLines, "HOLD=STORE"},
    {TICKET_OPTION "TabMarginMMShiftTicket=5", Effect::kNone, "counts only with ZLVTabMargin"},
    {TICKET_OPTION "WMARKScaleTicket=2", Effect::kNone, "read, not used"},
    // Contradictory and superseded.
    {"Duplex=None sides=two-sided-short-edge", Effect::kNone, "superseded by Duplex=None"},
    {"ZLVAccounting=None ZLVAccountPassword=Custom.1", Effect::kNone, "Nothing is printed"},
    {"job-password=1234 ZLVPrintType=Normal", Effect::kNone, "Nothing is printed"},
    {"ZLVStaple=None", Effect::kAnyway, "what the queue does anyway"},
    {"ZLVTrimmer=On ZLVTrimmerCut=Custom.99", Effect::kNone, "not within 1 to 50"},
    // What works, and where.
    {"job-password=1234", Effect::kLines, "HOLDENCRYPTKEY=\"(hidden)\""},
    {"print-color-mode=monochrome", Effect::kLines, "RENDERMODE=GRAYSCALE"},
    {"ZLVWatermark=Draft", Effect::kDocument, "WMARKNameTicket=Draft"},
    {"MediaType=RecyclePaper", Effect::kDocument, "MediaType=RecyclePaper"},
    {"page-ranges=1-2", Effect::kElsewhere, ""},
    // What a smaller printer has not.
    {"ZLVPrintType=Mailbox", Effect::kNone, "there is no such choice", "atelier-c60"},
    {"ZLVTrimmer=On", Effect::kNone, "this printer has no such option", "kontor-m20"},
};

}  // namespace

TEST(Explain, SaysWhatEachOptionDoesAndWhyOneDoesNothing) {
  for (const auto& row : kOptions) {
    SCOPED_TRACE(std::string(row.model) + ": " + row.options);
    const Explainer explainer = Explained(row.model, row.options);
    const OptionExplanation option = explainer.explain(explainer.given().size() - 1);
    EXPECT_STREQ(EffectKey(option.effect), EffectKey(row.effect)) << AllOf(option);
    EXPECT_NE(AllOf(option).find(row.said), std::string::npos) << AllOf(option);
  }
  const Explainer twice = Explained("atelier-c90", "ZLVStaple=TopDouble ZLVStaple=LeftDouble");
  EXPECT_NE(AllOf(twice.explain(0)).find("the last one counts"), std::string::npos);
  EXPECT_EQ(twice.explain(1).effect, Effect::kLines);
}

// Whatever the job is: each row is named for its line, with just those tests that do not hold.
TEST(Explain, NamesEveryRowAndTheTestsThatFailed) {
  std::size_t written = 0, failed = 0;
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
        EXPECT_EQ(why.find("xpjlOption"), why.npos) << name.name << ": " << why;
      }
    }
  }
  EXPECT_GT(written, 60u);
  EXPECT_GT(failed, 1000u);
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
      {{"-o", "ZLVStapel=LeftDouble"}, 1},
      {{"--line", "JOEP"}, 1},
      {{"--line", "LUNA"}, 0},
      {{"--job", "/nonexistent"}, 3},
      {{"--line", "LUMA"}, 2},
      {{"-x"}, 2},
      {{"--json", "--compose"}, 2},
  };
  for (const auto& row : statuses) {
    const ToolResult result = run(row.arguments);
    EXPECT_EQ(result.status, row.status) << row.arguments.back() << result.messages;
    EXPECT_EQ(IsOneLine(result.messages), row.status > 1) << result.messages;
  }
  EXPECT_EQ(RunTool(EXPLAIN_BINARY, {"--ppd", "/nonexistent.ppd"}).status, 3);
  EXPECT_EQ(RunTool(EXPLAIN_BINARY, {}).status, 2);

  const std::string secret = "ZLVPrintPassword=Custom.S3cretPin";
  for (const char* line : {"-oNothing=1", "--json", "--line=HOLDENCRYPTKEY"}) {
    const ToolResult hidden = run({"-o", secret, line});
    const ToolResult misspelt = run({"-o", "ZLVPrintPasword=Custom.S3cretPin", line});
    EXPECT_NE(hidden.output.find("(hidden)"), std::string::npos) << hidden.output;
    EXPECT_EQ((hidden.output + misspelt.output).find("S3cret"), std::string::npos)
        << hidden.output << misspelt.output;
  }
  const auto json = nlohmann::json::parse(run({"--json", "-o", "ZLVStaple=LeftDouble"}).output);
  EXPECT_EQ(json["version"], kExplanationVersion);
  EXPECT_EQ(json["options"][0]["effect"], "header");
  EXPECT_EQ(json["options"][0]["lines"][1]["words"], "Staple position: two at the left");

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
  const ScratchFolder folder;
  const std::string file = folder.write("job", RunFilter(job).output);
  const ToolResult same = run({"-o", secret, "--job", file});
  EXPECT_EQ(same.status, 0) << same.output;
  const ToolResult other = run({"-o", secret, "-o", "ZLVStaple=LeftDouble", "--job", file});
  EXPECT_EQ(other.status, 1);
  EXPECT_NE(other.output.find("it lacks"), std::string::npos) << other.output;
}
