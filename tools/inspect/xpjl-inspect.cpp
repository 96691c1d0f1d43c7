// xpjl-inspect: reads a printer-ready job and says what the printer is asked to do.

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "deployment/DeploymentInfo.h"
#include "tools/dialect/StandardDescriptors.h"
#include "tools/dialect/WipedMemory.h"
#include "tools/inspect/DeviceBlob.h"
#include "tools/inspect/JobReader.h"
#include "tools/inspect/PageImages.h"
#include "tools/inspect/Reports.h"
#include "tools/inspect/SealedPasswords.h"

namespace {

constexpr int kFine = 0;
constexpr int kBadData = 1;
constexpr int kWrongUsage = 2;

struct Wishes {
  std::vector<std::string> jobs;
  bool diff = false;
  bool json = false;
  bool showPasswords = false;
  std::string deviceKey;
  std::string pngFolder;
  int dotsPerInch = 100;
  RenderLimits limits;
};

int Complain(int status, const std::string& what) {
  std::fprintf(stderr, "xpjl-inspect: %s\n", what.c_str());
  return status;
}

std::string Shown(const std::string& name) {
  return Printable(name, Charset::kUTF8);
}

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
    Complain(kBadData, "cannot read " + Shown(name) + ": " + file.error());
    return std::nullopt;
  }
  JobReport report = ReadJob(file.fd(), sink);
  JudgePasswords(report, key);
  return report;
}

// False when the text did not get out. It may hold passwords, so that no other buffer gets it.
bool Put(std::string_view text) {
  while (!text.empty()) {
    const ssize_t count = write(STDOUT_FILENO, text.data(), text.size());
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) {
      Complain(kBadData, std::string("cannot write: ") + std::strerror(errno));
      return false;
    }
    text.remove_prefix(static_cast<std::size_t>(count));
  }
  return true;
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

int Inspect(const Wishes& wishes, EVP_PKEY* key) {
  const std::string& name = wishes.jobs[0];
  std::unique_ptr<PageImages> images;
  if (!wishes.pngFolder.empty()) {
    images = std::make_unique<PageImages>(wishes.pngFolder, wishes.dotsPerInch, wishes.limits);
    if (!images->error().empty()) return Complain(kBadData, images->error());
  }
  PostScriptSink sink;
  if (images) sink = [&](std::string_view bytes) { images->write(bytes); };
  auto report = Read(name, key, sink);
  if (!report) return kBadData;
  if (images) AddRendering(*images, *report);

  const ReportWishes shown = {.showPasswords = wishes.showPasswords};
  const bool written =
      Put(wishes.json ? JsonReport(name, *report, shown) : TextReport(name, *report, shown));
  WipePasswords(*report);
  int status = written ? kFine : kBadData;
  if (!report->problems.empty()) {
    status = Complain(kBadData, Shown(name) + ": " + FirstProblem(*report));
  }
  return status;
}

int Compare(const Wishes& wishes, EVP_PKEY* key) {
  auto first = Read(wishes.jobs[0], key);
  auto second = Read(wishes.jobs[1], key);
  if (!first || !second) return kBadData;
  for (const auto* report : {&*first, &*second}) {
    if (report->exitSequence || !report->settings.empty()) continue;
    return Complain(kBadData,
                    Shown(wishes.jobs[report == &*first ? 0 : 1]) + ": " + FirstProblem(*report));
  }
  const ReportWishes shown = {.showPasswords = wishes.showPasswords};
  const std::string difference = TextDifference(*first, *second, shown);
  const bool written = Put(wishes.json ? JsonDifference(*first, *second, shown) : difference);
  WipePasswords(*first);
  WipePasswords(*second);
  return difference.empty() && written ? kFine : kBadData;
}

void Declare(CLI::App& app, Wishes& wishes) {
  app.description(
      "Says what a printer-ready job (a job copy, a captured job) asks the printer to do.\n"
      "Sealed passwords are hidden, so that a report can be passed on.");
  app.footer(
      "Exit status: 0 nothing wrong, 1 something is wrong with the job or it cannot be read,\n"
      "2 wrong usage. With --diff: 0 no difference, 1 otherwise.");
  app.set_version_flag("--version", VersionText("xpjl-inspect"));
  app.add_option("JOB", wishes.jobs, "The job; - for standard input. Two of them with --diff")
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
  app.add_option("--device-key", wishes.deviceKey,
                 "Open sealed passwords with the device's private key, a PEM file")
      ->option_text("FILE");
  app.add_flag("--show-passwords", wishes.showPasswords,
               "Show opened passwords, and sealed ones as they stand in the job");
}

// A usage that the parser cannot tell; empty when it makes sense.
std::string Misuse(const Wishes& wishes) {
  const std::size_t wanted = wishes.diff ? 2 : 1;
  if (wishes.jobs.size() != wanted) {
    return wishes.diff ? "--diff compares two jobs" : "one job at a time; --diff compares two";
  }
  if (wishes.diff && !wishes.pngFolder.empty()) return "--png renders one job, not a difference";
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
    return Complain(kWrongUsage, Shown(error.what()) + "; see xpjl-inspect --help");
  }
  const std::string misuse = Misuse(wishes);
  if (!misuse.empty()) return Complain(kWrongUsage, misuse + "; see xpjl-inspect --help");

  PrivateKey key;
  if (!wishes.deviceKey.empty()) {
    key = ReadPrivateKey(wishes.deviceKey.c_str());
    if (!key) {
      return Complain(kBadData, Shown(wishes.deviceKey) +
                                    " is no private key that can be read: "
                                    "give the device's key as a PEM file");
    }
  }
  return wishes.diff ? Compare(wishes, key.get()) : Inspect(wishes, key.get());
}

}  // namespace

int main(int argc, char* argv[]) try {
  WipeLibraryMemory();
  OccupyStandardDescriptors();
  const int status = Run(argc, argv);
  WipeStack();
  return status;
} catch (const std::exception& error) {
  return Complain(kBadData, Shown(error.what()));
}
