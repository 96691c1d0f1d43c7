// Jobs that go wrong: cancelled, cut off, fed badly, or given nonsense.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <string>
#include <vector>

#include "FilterFrame/Source/JobCopy.h"
#include "tests/support/FilterProcess.h"

namespace {

namespace fs = std::filesystem;

const std::string kHeaderEnd = "@PJL ENTER LANGUAGE=POSTSCRIPT\n";
const std::string kTrailer = "\x1b%-12345X@PJL EOJ\n";

// What stands between the header and the trailer of a job's output.
std::string Body(const std::string& output) {
  const std::size_t start = output.find(kHeaderEnd);
  if (start == std::string::npos || !output.ends_with(kTrailer)) return "(no frame) " + output;
  const std::size_t from = start + kHeaderEnd.size();
  return output.substr(from, output.size() - kTrailer.size() - from);
}

TEST(JobFaults, ACancelledJobEndsBeforeItsNextPageEndAndStillHasATrailer) {
  for (const char* pageEnd : {"ep\n", "endp\n", "showpage\n"}) {
    FilterProcess filter{FilterJob{}};
    filter.write("one\nep\n");
    filter.readUntil("ep\n");
    kill(filter.pid(), SIGTERM);
    filter.write(std::string("two\n") + pageEnd + "three\nep\n");
    const FilterResult result = filter.finish();
    EXPECT_EQ(Body(result.output), "one\nep\ntwo\n") << pageEnd;
    EXPECT_EQ(result.exitStatus, 0);
  }
}

TEST(JobFaults, AClosedPipeGivesStatus1AndNoDeathBySignal) {
  for (const bool early : {true, false}) {
    FilterProcess filter{FilterJob{}};
    if (!early) filter.readUntil(kHeaderEnd);
    filter.closeOutput();
    filter.write(std::string(100'000, '\n') + "ep\n");
    const FilterResult result = filter.finish();
    EXPECT_EQ(result.exitStatus, 1);
    EXPECT_EQ(result.messages, "PAGE:1 1\n");
  }
}

TEST(JobFaults, HeaderAndPagesArriveBeforeTheInputEnds) {
  FilterProcess filter{FilterJob{}};
  EXPECT_TRUE(filter.readUntil(kHeaderEnd).ends_with(kHeaderEnd));
  for (const char* page : {"one\nep\n", "two\nendp\n"}) {
    filter.write(page);
    EXPECT_TRUE(filter.readUntil(page).ends_with(page));
  }
  EXPECT_EQ(Body(filter.finish().output), "one\nep\ntwo\nendp\n\x04");
}

TEST(JobFaults, BadInputHasADefinedOutcome) {
  const ScratchFolder folder;
  std::string huge(20'000'000, 'x');
  const std::string nuls("a\0b\n\0ep\nep\0\n", 12);
  const struct {
    const char* what;
    std::string input;
    std::string body;
  } cases[] = {
      {"zero bytes", nuls, nuls + "\x04"},
      {"one huge line", huge + "\n", huge + "\n\x04"},
      {"one huge unfinished line", huge, huge.substr(0, huge.size() / 8065 * 8065) + "\x04"},
  };
  for (const auto& c : cases) {
    FilterJob job;
    job.input = c.input;
    const FilterResult result = RunFilter(job);
    EXPECT_EQ(Body(result.output), c.body) << c.what;
    EXPECT_EQ(result.exitStatus, 0) << c.what;
    EXPECT_EQ(result.messages, "") << c.what;
  }
}

TEST(JobFaults, BadFilesAndArgumentsHaveADefinedOutcome) {
  const ScratchFolder folder;
  const std::string rubbish = folder.write("rubbish", std::string("*PPD-Adobe\0\xFF{{\"", 15));
  const struct {
    const char* what;
    std::string ppd, title, options, file, body, messages = "";
  } cases[] = {
      {"PPD is a folder", folder.path(), "title", "", "", "ps\n\x04"},
      {"PPD is rubbish", rubbish, "title", "", "", "ps\n\x04"},
      {"PPD is missing", "/nonexistent.ppd", "title", "", "", "ps\n\x04"},
      {"title with line ends", "", "a\r\n@PJL EOJ\n", "", "", "ps\n\x04"},
      {"title that is no UTF-8", "", "\xFF\xFE", "", "", "ps\n\x04"},
      {"options that are none", "", "title", "{{ = '\"\\ ==\t=\x01 a{b", "", "ps\n\x04"},
      {"missing input file", "", "title", "", "/nonexistent.ps", ""},
      {"input file is a folder", "", "title", "", folder.path(), "\x04",
       "ERROR: Unable to read print data: Is a directory\n"},
  };
  for (const auto& c : cases) {
    FilterJob job;
    job.arguments = {"1", "user", c.title, "1", c.options};
    if (!c.file.empty()) job.arguments.push_back(c.file);
    if (!c.ppd.empty()) job.environment["PPD"] = c.ppd;
    job.input = "ps\n";
    const FilterResult result = RunFilter(job);
    EXPECT_EQ(Body(result.output), c.body) << c.what;
    EXPECT_EQ(result.exitStatus, 0) << c.what;
    EXPECT_EQ(result.messages, c.messages) << c.what;
  }
}

// Creating the flag file takes the right to write to the system's printer folder.
class JobCopy : public testing::Test {
 protected:
  void SetUp() override {
    if (fs::exists(FlagPath)) GTEST_SKIP() << "the job copy is in use on this machine";
    for (fs::path folder = fs::path(FlagPath).parent_path(); !fs::exists(folder);
         folder = folder.parent_path()) {
      created_.push_back(folder);
    }
    std::error_code error;
    fs::create_directories(fs::path(FlagPath).parent_path(), error);
    const int fd = open(FlagPath, O_CREAT | O_EXCL | O_WRONLY, 0600);
    if (fd < 0) GTEST_SKIP() << "no right to create " << FlagPath;
    close(fd);
    created_.insert(created_.begin(), FlagPath);
  }
  // Innermost first.
  void TearDown() override {
    std::error_code error;
    for (const fs::path& path : created_) fs::remove(path, error);
  }
  std::vector<fs::path> created_;
};

TEST_F(JobCopy, HoldsWhatThePrinterGets) {
  const ScratchFolder folder;
  FilterJob job;
  job.environment = {{"TMPDIR", folder.path() + "/%s"}, {"TZ", "UTC"}};
  fs::create_directory(folder.path() + "/%s");
  job.input = "one\nep\n";
  const FilterResult result = RunFilter(job);
  fs::directory_iterator entry(folder.path() + "/%s");
  ASSERT_NE(entry, fs::directory_iterator());
  const std::string name = entry->path().filename();
  EXPECT_EQ(name.size(), std::string("ff20240131235959.job").size()) << name;
  EXPECT_TRUE(name.starts_with("ff2") && name.ends_with(".job")) << name;
  struct stat status = {};
  ASSERT_EQ(stat(entry->path().c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 07777, 0676u);
  EXPECT_EQ(static_cast<std::size_t>(status.st_size), result.output.size());
  std::string copy(result.output.size(), '\0');
  FILE* file = std::fopen(entry->path().c_str(), "rb");
  EXPECT_EQ(std::fread(copy.data(), 1, copy.size(), file), copy.size());
  std::fclose(file);
  EXPECT_EQ(copy, result.output);
}

// The copy's name can be foretold, and its folder may be one that others write to.
TEST_F(JobCopy, FollowsNoLinkAndWaitsForNoPipe) {
  const struct {
    const char *what, *plant;
  } cases[] = {
      {"link", "ln -s \"$TMPDIR/victim\""},
      {"link to nothing", "ln -s \"$TMPDIR/new\""},
      {"hard link", "ln \"$TMPDIR/victim\""},
      {"pipe", "mkfifo"},
      {"folder", "mkdir"},
  };
  for (const auto& c : cases) {
    const ScratchFolder folder;
    const std::string victim = folder.write("victim", "mine");
    fs::permissions(victim, fs::perms(0600));
    FilterJob job;
    job.environment = {{"TMPDIR", folder.path()}};
    // Whatever the next seconds are.
    job.afterShell(std::string("for s in 0 1 2 3 4 5 6 7 8 9; do ") + c.plant +
                   " \"$TMPDIR/ff$(date -d +${s}sec +%Y%m%d%H%M%S).job\"; done");
    job.input = "one\nep\n";
    const FilterResult result = RunFilter(job);
    EXPECT_EQ(Body(result.output), "one\nep\n\x04") << c.what;
    EXPECT_EQ(result.messages, "PAGE:1 1\n") << c.what;
    EXPECT_EQ(fs::file_size(victim), 4u) << c.what;
    EXPECT_EQ(fs::status(victim).permissions(), fs::perms(0600));
    EXPECT_FALSE(fs::exists(folder.path() + "/new")) << c.what;
  }
}

TEST_F(JobCopy, ThatCannotBeWrittenIsDoneWithout) {
  const ScratchFolder folder;
  const struct {
    const char *what, *shell;
  } cases[] = {
      {"no such folder", "TMPDIR=/nonexistent"},
      {"no folder", "TMPDIR=/dev/null"},
      {"unwritable folder", "TMPDIR=/proc"},
      {"full disk", "ulimit -f 8"},  // eight blocks of 512 bytes
  };
  const std::string input = std::string(200'000, '\n') + "ep\n";
  for (const auto& c : cases) {
    FilterJob job;
    job.environment["TMPDIR"] = folder.path();
    job.afterShell(c.shell);
    job.input = input;
    const FilterResult result = RunFilter(job);
    EXPECT_TRUE(Body(result.output) == input + "\x04") << c.what;
    EXPECT_EQ(result.messages, "PAGE:1 1\n") << c.what;
  }
  const fs::directory_iterator copy(folder.path());
  ASSERT_NE(copy, fs::directory_iterator());
  EXPECT_EQ(copy->file_size(), 4096u);
}

}  // namespace
