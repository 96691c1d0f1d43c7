// xpjl-explain: what each option of a job does, and why one does nothing.

#include <openssl/crypto.h>

#include <CLI/CLI.hpp>
#include <cstring>
#include <string>
#include <vector>

#include "deployment/DeploymentInfo.h"
#include "text/NearestName.h"
#include "tools/dialect/Dialect.h"
#include "tools/dialect/ToolProgram.h"
#include "tools/explain/ExplanationReports.h"
#include "tools/explain/QueueSource.h"

namespace {

constexpr int kNoEffect = 1;

struct Wishes {
  std::vector<std::string> options;
  int copies = 1;
  std::string title = "Untitled";
  std::string user = cupsUser();
  std::string queue;
  std::string ppd;
  std::string job;
  std::string line;
  bool compose = false;
  bool json = false;
};

int Answer(std::string_view text, int status) {
  return Put(text) ? status : kUnreadable;
}

void Declare(CLI::App& app, Wishes& wishes) {
  app.description(
      "Says what each option of a job does: the tickets that it becomes, the lines that it "
      "causes,\n"
      "and, when it does nothing, why. Nothing is printed, and passwords are hidden.");
  app.footer(
      "Exit status: 0 every option has an effect, 1 one has none or something is left out,\n"
      "2 wrong usage, 3 the queue, the PPD or the job cannot be read. With --line: 0 the job has\n"
      "the line, 1 it has not.");
  app.set_version_flag("--version", VersionText("xpjl-explain"));
  auto* queue = app.add_option("-d,--queue", wishes.queue, "The queue; CUPS_SERVER names a server");
  auto* ppd = app.add_option("--ppd", wishes.ppd, "The printer's PPD instead of a queue");
  queue->option_text("QUEUE")->excludes(ppd);
  ppd->option_text("FILE");
  app.add_option("-o", wishes.options, "Options, as lp takes them")
      ->option_text("NAME=VALUE")
      ->allow_extra_args(false);
  app.add_option("-n", wishes.copies, "Copies")->check(CLI::Range(1, 99999))->option_text("N");
  app.add_option("-t", wishes.title, "The job's title")->option_text("TITLE");
  app.add_option("-U", wishes.user, "The job's user")->option_text("USER");
  auto* job = app.add_option("--job", wishes.job, "Compare a finished job with what it should be");
  job->option_text("FILE");
  auto* line =
      app.add_option("--line", wishes.line, "Say why a line is there or not, such as JOEP");
  line->option_text("NAME")->excludes(job);
  auto* json = app.add_flag("--json", wishes.json, "Write JSON, for programs");
  app.add_flag("--compose", wishes.compose,
               "Write the ticket options that pstoxpjl takes; they hold stored passwords")
      ->excludes(job)
      ->excludes(line)
      ->excludes(json);
}

int ExplainLine(const Wishes& wishes, const Explainer& explainer) {
  std::vector<std::string> codes;
  for (const DialectRow& row : DialectRows()) codes.emplace_back(row.code);
  if (std::ranges::find(codes, wishes.line) == codes.end()) {
    const std::string nearest = NearestName(wishes.line, codes);
    return Complain(kWrongUsage, "no line is named " + Shown(wishes.line) +
                                     (nearest.empty() ? "" : "; did you mean " + nearest + "?"));
  }
  const LineExplanation line = explainer.explainLine(wishes.line);
  return Answer(
      wishes.json ? JsonExplanation(wishes.line, line) : TextExplanation(wishes.line, line),
      line.lines.empty() ? kNoEffect : kFine);
}

int Compose(const Explainer& explainer) {
  if (!explainer.job().failure.empty()) return Complain(kNoEffect, explainer.job().failure);
  return Answer(explainer.composed() + "\n",
                explainer.job().complaints.empty() ? kFine : kNoEffect);
}

int Explain(const Wishes& wishes, const Explainer& explainer) {
  if (!wishes.line.empty()) return ExplainLine(wishes, explainer);
  if (wishes.compose) return Compose(explainer);
  ExplanationReport report = ReportOn(explainer);
  if (!wishes.job.empty()) {
    std::string error;
    report.comparison = CompareWithJob(explainer.job().lines, wishes.job, error);
    if (!report.comparison) {
      return Complain(kUnreadable, "cannot read " + Shown(wishes.job) + ": " + error);
    }
  }
  return Answer(wishes.json ? JsonExplanation(report) : TextExplanation(report),
                report.fine() ? kFine : kNoEffect);
}

int Run(int argc, char* argv[]) {
  Wishes wishes;
  CLI::App app;
  Declare(app, wishes);
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    if (error.get_exit_code() == 0) return app.exit(error);
    return Misused(Shown(error.what()));
  }
  // Everybody on the computer can read a program's arguments.
  for (int i = 1; i < argc; i++) OPENSSL_cleanse(argv[i], std::strlen(argv[i]));
  if (wishes.queue.empty() && wishes.ppd.empty()) return Misused("no queue and no PPD");
  const bool isQueue = !wishes.queue.empty();
  const QueueSource source = isQueue ? PPDFromQueue(wishes.queue) : PPDFromFile(wishes.ppd);
  if (!source.error.empty()) {
    return Complain(kUnreadable, "cannot read the PPD of " +
                                     Shown(isQueue ? wishes.queue : wishes.ppd) + ": " +
                                     source.error);
  }
  std::vector<JobOption> given;
  for (const std::string& text : wishes.options) {
    for (const JobOption& option : ParsedOptions(text)) given.push_back(option);
  }
  if (wishes.copies > 1) given.push_back({"copies", std::to_string(wishes.copies)});
  const Trial trial(source.ppd, {wishes.user, wishes.title, "1"});
  return Explain(wishes, Explainer(trial, source.options, std::move(given)));
}

}  // namespace

int main(int argc, char* argv[]) {
  return ToolMain("xpjl-explain", kUnreadable, Run, argc, argv);
}
