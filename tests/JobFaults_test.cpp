// Jobs that go wrong: cancelled, cut off, fed badly, or given nonsense.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <string>

#include "FilterFrame/Source/JobCopy.h"
#include "tests/support/FilterProcess.h"

namespace {

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
    std::string ppd, title, options, file, body;
  } cases[] = {
      {"PPD is a folder", folder.path(), "title", "", "", "ps\n\x04"},
      {"PPD is rubbish", rubbish, "title", "", "", "ps\n\x04"},
      {"PPD is missing", "/nonexistent.ppd", "title", "", "", "ps\n\x04"},
      {"title with line ends", "", "a\r\n@PJL EOJ\n", "", "", "ps\n\x04"},
      {"title that is no UTF-8", "", "\xFF\xFE", "", "", "ps\n\x04"},
      {"options that are none", "", "title", "{{ = '\"\\ ==\t=\x01 a{b", "", "ps\n\x04"},
      {"missing input file", "", "title", "", "/nonexistent.ps", ""},
      {"input file is a folder", "", "title", "", folder.path(), "\x04"},
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
    EXPECT_EQ(result.messages, "") << c.what;
  }
}

// Creating the flag file takes the right to write to the system's printer folder.
class JobCopy : public testing::Test {
 protected:
  void SetUp() override {
    const std::filesystem::path flag = FlagPath;
    std::error_code error;
    if (std::filesystem::exists(flag)) GTEST_SKIP() << "the job copy is in use on this machine";
    hadFolder_ = std::filesystem::exists(flag.parent_path());
    std::filesystem::create_directories(flag.parent_path(), error);
    const int fd = open(FlagPath, O_CREAT | O_EXCL | O_WRONLY, 0600);
    if (fd < 0) GTEST_SKIP() << "no right to create " << FlagPath;
    close(fd);
    created_ = true;
  }
  void TearDown() override {
    if (created_) std::filesystem::remove(FlagPath);
    if (created_ && !hadFolder_) {
      std::filesystem::remove(std::filesystem::path(FlagPath).parent_path());
    }
  }
  bool created_ = false;
  bool hadFolder_ = false;
};

TEST_F(JobCopy, HoldsWhatThePrinterGets) {
  const ScratchFolder folder;
  FilterJob job;
  job.environment = {{"TMPDIR", folder.path() + "/%s"}, {"TZ", "UTC"}};
  std::filesystem::create_directory(folder.path() + "/%s");
  job.input = "one\nep\n";
  const FilterResult result = RunFilter(job);
  std::filesystem::directory_iterator entry(folder.path() + "/%s");
  ASSERT_NE(entry, std::filesystem::directory_iterator());
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

TEST_F(JobCopy, ThatCannotBeWrittenIsDoneWithout) {
  const ScratchFolder folder;
  const struct {
    const char *what, *shell;
  } cases[] = {
      {"no such folder", "TMPDIR=/nonexistent"},
      {"no folder", "TMPDIR=/dev/null"},
      {"unwritable folder", "TMPDIR=/proc"},
      {"full disk", "trap '' XFSZ; ulimit -f 8"},  // eight blocks of 512 bytes
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
  const std::filesystem::directory_iterator copy(folder.path());
  ASSERT_NE(copy, std::filesystem::directory_iterator());
  EXPECT_EQ(copy->file_size(), 4096u);
}

}  // namespace
