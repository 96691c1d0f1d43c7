// Jobs that are fed badly or given nonsense, and the job copy.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include "FilterFrame/Source/JobCopy.h"
#include "tests/support/FilterProcess.h"
#include "tests/support/Patterns.h"

namespace {

namespace fs = std::filesystem;

TEST(JobFaults, HeaderAndPagesArriveBeforeTheInputEnds) {
  FilterProcess filter{FilterJob{}};
  EXPECT_TRUE(filter.readUntil(kEnterPS).ends_with(kEnterPS));
  for (const char* page : {"one\nep\n", "two\nendp\n"}) {
    filter.write(page);
    EXPECT_TRUE(filter.readUntil(page).ends_with(page));
  }
  EXPECT_EQ(Body(filter.finish().output), kEnterPS + "one\nep\ntwo\nendp\n\x04");
}

TEST(JobFaults, BadInputHasADefinedOutcome) {
  const std::string huge(20'000'000, 'x'), nuls("a\0b\n\0ep\nep\0\n", 12);
  for (const auto& [input, passed] : {std::pair(nuls, nuls),
                                      {huge + "\n", huge + "\n"},
                                      {huge, huge.substr(0, huge.size() / 8065 * 8065)}}) {
    FilterJob job;
    job.input = input;
    const FilterResult result = RunFilter(job);
    EXPECT_TRUE(Body(result.output) == kEnterPS + passed + "\x04") << input.substr(0, 12);
    EXPECT_EQ(result.exitStatus, 0);
    EXPECT_EQ(result.messages, "");
  }
}

TEST(JobFaults, BadFilesAndArgumentsHaveADefinedOutcome) {
  const ScratchFolder folder;
  const std::string rubbish = folder.write("rubbish", std::string("*PPD-Adobe\0\xFF{{\"", 15));
  const struct {
    std::string ppd, title, options, file, document, messages;
  } cases[] = {
      {folder.path(), "title", "", "", "ps\n\x04", ""},
      {rubbish, "title", "", "", "ps\n\x04", ""},
      {"/nonexistent.ppd", "title", "", "", "ps\n\x04", ""},
      {"", "a\r\n@PJL EOJ\n", "", "", "ps\n\x04", ""},
      {"", "\xFF\xFE", "", "", "ps\n\x04", ""},
      {"", "title", "{{ = '\"\\ ==\t=\x01 a{b", "", "ps\n\x04", ""},
      {"", "title", "", "/nonexistent.ps", "", ""},
      {"", "title", "", folder.path(), "\x04",
       "ERROR: Unable to read print data: Is a directory\n"},
  };
  for (const auto& c : cases) {
    FilterJob job;
    job.arguments = {"1", "user", c.title, "1", c.options};
    if (!c.file.empty()) job.arguments.push_back(c.file);
    if (!c.ppd.empty()) job.environment["PPD"] = c.ppd;
    job.input = "ps\n";
    const FilterResult result = RunFilter(job);
    const std::string which = c.ppd + c.title + c.options + c.file;
    EXPECT_EQ(Body(result.output), kEnterPS + c.document) << which;
    EXPECT_EQ(result.exitStatus, 0) << which;
    EXPECT_EQ(result.messages, c.messages) << which;
  }
}

// Creating the flag file takes the right to write to the system's printer folder.
class JobCopy : public testing::Test {
 protected:
  void SetUp() override {
    if (fs::exists(FlagPath)) GTEST_SKIP() << "the job copy is in use on this machine";
    for (fs::path path = FlagPath; !fs::exists(path); path = path.parent_path())
      created_.push_back(path);
    startCleaner();
    std::error_code error;
    fs::create_directories(fs::path(FlagPath).parent_path(), error);
    const int fd = open(FlagPath, O_CREAT | O_EXCL | O_WRONLY, 0600);
    if (fd < 0) GTEST_SKIP() << "no right to create " << FlagPath;
    close(fd);
  }
  void TearDown() override {
    char byte;
    if (created_.empty()) return;
    shutdown(cleaner_[0], SHUT_WR);
    EXPECT_EQ(read(cleaner_[0], &byte, 1), 0);  // when all is gone
    close(cleaner_[0]);
  }

 private:
  // A process of its own takes away what has been created, even of a test that is killed.
  void startCleaner() {
    ASSERT_EQ(socketpair(AF_UNIX, SOCK_STREAM, 0, cleaner_), 0);
    fcntl(cleaner_[0], F_SETFD, FD_CLOEXEC);
    const pid_t parent = fork();
    if (parent == 0) {
      setsid();  // lest it be killed with the test
      if (fork() > 0) _exit(0);
      close(cleaner_[0]);
      char byte;
      std::error_code error;
      while (read(cleaner_[1], &byte, 1) < 0 && errno == EINTR) {
      }
      for (const fs::path& path : created_) fs::remove(path, error);  // innermost first
      _exit(0);
    }
    close(cleaner_[1]);
    waitpid(parent, nullptr, 0);
  }

  int cleaner_[2];
  std::vector<fs::path> created_;
};

// In decomposed mode all that is spooled comes ahead of the switch to PostScript.
TEST_F(JobCopy, HoldsWhatThePrinterGetsOnce) {
  for (const bool decomposed : {false, true}) {
    const ScratchFolder folder;
    const std::string copies = folder.path() + "/%s";
    fs::create_directory(copies);
    FilterJob job;
    job.environment = {{"TMPDIR", copies}, {"TZ", "UTC"}};
    if (decomposed)
      job.environment["PPD"] = folder.write("ppd", PPDText("*ZLVPSDecompMode: \"1\"\n"));
    job.input = "one\nep\n\n";
    std::string output = RunFilter(job).output;
    if (decomposed)
      output.replace(output.find(kEnterPS), kEnterPS.size() + 8, "one\nep\n\n\x04" + kEnterPS);
    const fs::directory_iterator entry(copies);
    ASSERT_NE(entry, fs::directory_iterator());
    EXPECT_TRUE(Matches("^ff2[0-9]{13}[.]job$", entry->path().filename())) << entry->path();
    EXPECT_EQ(fs::status(entry->path()).permissions(), fs::perms(0676));
    EXPECT_EQ(FileContent(entry->path()), output);
  }
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
    EXPECT_EQ(Body(result.output), kEnterPS + "one\nep\n\x04") << c.what;
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
    EXPECT_TRUE(Body(result.output) == kEnterPS + input + "\x04") << c.what;
    EXPECT_EQ(result.messages, "PAGE:1 1\n") << c.what;
  }
  const fs::directory_iterator copy(folder.path());
  ASSERT_NE(copy, fs::directory_iterator());
  EXPECT_EQ(copy->file_size(), 4096u);
}

}  // namespace
