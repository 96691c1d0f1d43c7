// xpjl-inspect: reads a printer-ready job and says what the printer is asked to do.

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "FilterFrame/Source/PostScriptStream.h"
#include "deployment/DeploymentInfo.h"
#include "tools/dialect/ToolProgram.h"
#include "tools/inspect/DeviceBlob.h"
#include "tools/inspect/JobReader.h"
#include "tools/inspect/PageImages.h"
#include "tools/inspect/Reports.h"
#include "tools/inspect/SealedPasswords.h"
#include "tools/inspect/TerminalText.h"

namespace {

struct Wishes {
  std::vector<std::string> jobs;
  bool diff = false;
  bool json = false;
  bool showPasswords = false;
  std::string deviceKey;
  std::string pngFolder;
  std::string extracted;
  int dotsPerInch = 100;
  RenderLimits limits;
};

// A job to be read; standard input for "-".
class JobFile {
 public:
  explicit JobFile(const std::string& name)
      : fd_(name == "-" ? STDIN_FILENO : open(name.c_str(), O_RDONLY | O_CLOEXEC)) {
    struct stat facts = {};
    if (fd_ < 0 || fstat(fd_, &facts) != 0) {
      error_ = std::strerror(errno);
    } else if (S_ISDIR(facts.st_mode)) {
      error_ = "it is a folder";
    }
  }
  ~JobFile() {
    if (fd_ > STDIN_FILENO) close(fd_);
  }
  JobFile(const JobFile&) = delete;
  JobFile& operator=(const JobFile&) = delete;
  int fd() const { return fd_; }
  const std::string& error() const { return error_; }  // empty: it can be read

 private:
  int fd_;
  std::string error_;
};

std::optional<JobReport> Read(const std::string& name, EVP_PKEY* key,
                              const PostScriptSink& sink = {}) {
  const JobFile file(name);
  if (!file.error().empty()) {
    Complain(kUnreadable, "cannot read " + Shown(name) + ": " + file.error());
    return std::nullopt;
  }
  JobReport report = ReadJob(file.fd(), sink);
  if (report.readError != 0) {
    Complain(kUnreadable, "cannot read " + Shown(name) + ": " + std::strerror(report.readError));
    return std::nullopt;
  }
  JudgePasswords(report, key);
  return report;
}

// What came of rendering the document.
void AddRendering(PageImages& images, JobReport& report) {
  const bool rendered = images.finish();
  if (!rendered) report.problem(0, images.error());
  const std::string message = images.firstMessage();
  if (rendered && !message.empty()) {
    report.notes.push_back({0, "Rendering the document, Ghostscript said", message});
  }
}

// The file that gets the document; standard output for "-". A file that is there already is
// written anew, but neither through a link, which somebody else may have put there, nor when it is
// the job.
class ExtractedFile {
 public:
  ExtractedFile(const std::string& name, const std::string& job) {
    const bool isOutput = name == "-";
    fd_ = isOutput ? dup(STDOUT_FILENO)
                   : open(name.c_str(), O_WRONLY | O_CREAT | O_NOFOLLOW | O_CLOEXEC, 0666);
    struct stat facts = {}, jobFacts = {};
    if (fd_ < 0 || fstat(fd_, &facts) != 0) {
      error_ = errno == ELOOP ? "it is a link; name the file itself" : std::strerror(errno);
    } else if (!isOutput && S_ISREG(facts.st_mode)) {
      const bool known =
          job == "-" ? fstat(STDIN_FILENO, &jobFacts) == 0 : stat(job.c_str(), &jobFacts) == 0;
      if (known && facts.st_dev == jobFacts.st_dev && facts.st_ino == jobFacts.st_ino) {
        error_ = "it is the job itself";
      } else if (ftruncate(fd_, 0) != 0) {
        error_ = std::strerror(errno);
      }
    }
  }
  ~ExtractedFile() {
    if (fd_ >= 0) close(fd_);
  }
  ExtractedFile(const ExtractedFile&) = delete;
  ExtractedFile& operator=(const ExtractedFile&) = delete;
  const std::string& error() const { return error_; }  // empty: it can be written
  bool failed() const { return failed_; }
  void write(std::string_view bytes) { failed_ = failed_ || !Put(bytes, fd_); }

 private:
  int fd_ = -1;
  std::string error_;
  bool failed_ = false;
};

// The end byte is the frame's.
std::string_view WithoutEndByte(std::string_view bytes) {
  return bytes.ends_with(kEndOfTransmission) ? bytes.substr(0, bytes.size() - 1) : bytes;
}

int Report(const Wishes& wishes, const std::string& name, const JobReport& report) {
  const ReportWishes shown = {.showPasswords = wishes.showPasswords};
  std::string text =
      wishes.json ? JsonReport(name, report, shown) : TextReport(name, report, shown);
  if (!wishes.json && isatty(STDOUT_FILENO) == 1) {
    text = ForTerminal(text, std::getenv("NO_COLOR") == nullptr);
  }
  const bool written = wishes.extracted == "-" || Put(text);
  if (!written) return kUnreadable;
  if (report.problems.empty()) return kFine;
  return Complain(kBadData, Shown(name) + ": " + FirstProblem(report));
}

int Inspect(const Wishes& wishes, const std::string& name, EVP_PKEY* key) {
  std::unique_ptr<PageImages> images;
  if (!wishes.pngFolder.empty()) {
    images = std::make_unique<PageImages>(wishes.pngFolder, wishes.dotsPerInch, wishes.limits);
    if (!images->error().empty()) return Complain(kUnreadable, images->error());
  }
  std::unique_ptr<ExtractedFile> extracted;
  if (!wishes.extracted.empty()) {
    extracted = std::make_unique<ExtractedFile>(wishes.extracted, name);
    if (!extracted->error().empty()) {
      return Complain(kUnreadable,
                      "cannot write " + Shown(wishes.extracted) + ": " + extracted->error());
    }
  }
  const auto sink = [&](std::string_view bytes) {
    if (images) images->write(bytes);
    if (extracted) extracted->write(WithoutEndByte(bytes));
  };
  auto report = Read(name, key, sink);
  if (!report) return kUnreadable;
  if (images) AddRendering(*images, *report);
  const int status = Report(wishes, name, *report);
  return extracted && extracted->failed() ? kUnreadable : status;
}

// Each job by itself, with an empty line between tables; of their statuses the highest counts.
int InspectAll(const Wishes& wishes, EVP_PKEY* key) {
  int status = kFine;
  for (const std::string& name : wishes.jobs) {
    if (&name != &wishes.jobs.front() && !wishes.json) Put("\n");
    status = std::max(status, Inspect(wishes, name, key));
  }
  return status;
}

int Compare(const Wishes& wishes, EVP_PKEY* key) {
  auto first = Read(wishes.jobs[0], key);
  auto second = Read(wishes.jobs[1], key);
  if (!first || !second) return kUnreadable;
  for (const auto* report : {&*first, &*second}) {
    if (report->exitSequence || !report->settings.empty()) continue;
    return Complain(kBadData,
                    Shown(wishes.jobs[report == &*first ? 0 : 1]) + ": " + FirstProblem(*report));
  }
  const ReportWishes shown = {.showPasswords = wishes.showPasswords};
  const std::string difference = TextDifference(*first, *second, shown);
  const bool written = Put(wishes.json ? JsonDifference(*first, *second, shown) : difference);
  return difference.empty() && written ? kFine : kBadData;
}

void Declare(CLI::App& app, Wishes& wishes) {
  app.description(
      "Says what a printer-ready job (a job copy, a captured job) asks the printer to do.\n"
      "Sealed passwords are hidden, so that a report can be passed on.");
  app.footer(
      "Exit status: 0 nothing wrong, 1 something is wrong with a job, 2 wrong usage, 3 a file\n"
      "cannot be read or written. With --diff: 0 no difference, 1 a difference.");
  app.set_version_flag("--version", VersionText("xpjl-inspect"));
  app.add_option("JOB", wishes.jobs, "The jobs; - for standard input. Two of them with --diff")
      ->required();
  app.add_flag("--diff", wishes.diff, "Say what the second job asks differently from the first");
  app.add_flag("--json", wishes.json, "Write JSON, for programs");
  auto* images = app.add_option("--png", wishes.pngFolder,
                                "Render the pages into this folder with Ghostscript")
                     ->option_text("DIR");
  app.add_option("--dpi", wishes.dotsPerInch, "Resolution of the pages, 10 to 1200; else 100")
      ->check(CLI::Range(10, 1200))
      ->option_text("N")
      ->needs(images);
  const auto limit = [&](const char* name, int& value, const char* what) {
    app.add_option(name, value, std::string(what) + "; else " + std::to_string(value))
        ->check(CLI::Range(1, 1'000'000))
        ->option_text("N")
        ->needs(images);
  };
  limit("--limit-cpu", wishes.limits.cpuSeconds, "Seconds of processor time for rendering");
  limit("--limit-time", wishes.limits.seconds, "Seconds by the clock for rendering");
  limit("--limit-memory", wishes.limits.memoryMegabytes, "Megabytes of memory for rendering");
  limit("--limit-output", wishes.limits.outputMegabytes, "Megabytes for all pictures");
  app.add_option(
         "--extract", wishes.extracted,
         "Write the job's PostScript into this file; - for standard output, without a report")
      ->option_text("FILE");
  app.add_option("--device-key", wishes.deviceKey,
                 "Open sealed passwords with the device's private key, a PEM file")
      ->option_text("FILE");
  app.add_flag("--show-passwords", wishes.showPasswords,
               "Show opened passwords, and sealed ones as they stand in the job");
}

// A usage that the parser cannot tell; empty when it makes sense.
std::string Misuse(const Wishes& wishes) {
  const bool files = !wishes.pngFolder.empty() || !wishes.extracted.empty();
  if (wishes.diff && wishes.jobs.size() != 2) return "--diff compares two jobs";
  if (files && wishes.jobs.size() != 1) return "--png and --extract take one job";
  return {};
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
  const std::string misuse = Misuse(wishes);
  if (!misuse.empty()) return Misused(misuse);

  PrivateKey key;
  if (!wishes.deviceKey.empty()) {
    key = ReadPrivateKey(wishes.deviceKey.c_str());
    if (!key) {
      return Complain(kUnreadable, Shown(wishes.deviceKey) +
                                       " is no private key that can be read: "
                                       "give the device's key as a PEM file");
    }
  }
  return wishes.diff ? Compare(wishes, key.get()) : InspectAll(wishes, key.get());
}

}  // namespace

int main(int argc, char* argv[]) {
  return ToolMain("xpjl-inspect", kUnreadable, Run, argc, argv);
}
