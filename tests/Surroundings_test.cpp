// Jobs in bad surroundings: signals, slow and dying neighbours, full disks, files that go away.
// Each is printed plainly and in decomposed mode.

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "tests/support/FilterProcess.h"
#include "tests/support/Password.h"
#include "tests/support/ProcessMemory.h"
#include "tests/support/Tickets.h"

namespace {

const std::string kFeature = "%%BeginFeature: *ZLVHalftone Fineness\n";

// A job with folders of its own. The PPD decides on the feature's lines.
struct Job : FilterJob {
  explicit Job(bool decomposed, const std::string& bytes = "") {
    const std::string lines = decomposed ? "*ZLVPSDecompMode: \"1\"\n" : "";
    ppd = folder.write("ppd", PPDText(lines + "*ColorDevice: False\n"));
    environment = {{"PPD", ppd}, {"TMPDIR", spool.path()}};
    input = bytes;
  }
  bool leavesNothing() const { return std::filesystem::is_empty(spool.path()); }
  ScratchFolder folder, spool;
  std::string ppd;
};

// The body of a whole job. In decomposed mode only the line end of its last line is printed.
std::string BodyOf(const std::string& input, bool decomposed) {
  const auto lines = [](const std::string& text) { return text.substr(0, text.rfind('\n') + 1); };
  if (!decomposed) return kEnterPS + lines(input) + "\x04";
  const std::string last = input.substr(input.size() - !input.empty());
  const std::string rest = lines(input.substr(0, input.size() - last.size()));
  std::string settings;
  if (rest.find(kFeature) != rest.npos) {
    for (const char* name : {"TTRC", "GTRC", "ITRC", "TSCR", "GSCR", "ISCR"}) {
      settings += "@PJL SET JOBATTR=\"@" + std::string(name) + "=64\"\n";
    }
  }
  return settings + kEnterPS + rest + lines(last);
}

class Surroundings : public testing::TestWithParam<bool> {
 protected:
  const bool decomposed = GetParam();
};
INSTANTIATE_TEST_SUITE_P(Job, Surroundings, testing::Bool(),
                         [](const auto& mode) { return mode.param ? "Decomposed" : "Plain"; });

TEST_P(Surroundings, InputMayEndAnywhere) {
  const std::string whole = "%!PS\nbp\n" + kFeature + "one\nep\n\ntwo\nendp\n%%EOF\n";
  for (std::size_t size = 0; size <= whole.size(); size++) {
    const Job job(decomposed, whole.substr(0, size));
    const FilterResult result = RunFilter(job);
    const std::string body = BodyOf(job.input, decomposed);
    EXPECT_EQ(Body(result.output), body) << size;
    EXPECT_EQ(result.messages, body.find("\nep\n") != body.npos ? "PAGE:1 1\n" : "") << size;
    EXPECT_TRUE(result.exitStatus == 0 && job.leavesNothing()) << size;
  }
}

TEST_P(Surroundings, FoldersAndDescriptorsMayBeMissing) {
  const std::string input = "one\nep\n\n", page = "PAGE:1 1\n";
  const std::string whole = BodyOf(input, decomposed), empty = BodyOf("", decomposed);
  const std::string unspooled = decomposed ? "" : whole, noPage = decomposed ? "" : page;
  const std::string lost = "ERROR: Unable to write print data: ";
  const std::string unread = "ERROR: Unable to read print data: Bad file descriptor\n";
  const std::string tooLarge = "ERROR: Unable to spool print data: File too large\n";
  const bool rootFolder = access("/", W_OK) == 0;
  const struct {
    std::string setting, body, messages;
  } cases[] = {
      {"unset TMPDIR", whole, page},
      {"TMPDIR=", rootFolder ? whole : unspooled, rootFolder ? page : noPage},
      {"TMPDIR=/nonexistent", unspooled, noPage},
      {"TMPDIR=/dev/null", unspooled, noPage},
      {"TMPDIR=/proc", unspooled, noPage},  // where nobody may write
      {"TMPDIR=" + std::string(300, '/'), unspooled, noPage},
      {"ulimit -f 0", unspooled, decomposed ? tooLarge : page},
      {"ulimit -f 0; exec >\"$PPD.output\"", "(no frame)",
       (decomposed ? tooLarge : page) + lost + "File too large\n"},
#ifdef __linux__
      {"exec >/dev/full", "(no frame)", page + lost + "No space left on device\n"},
#endif
      {"exec >&-", "(no frame)", page + lost + "Bad file descriptor\n"},
      {"exec <&-", empty, unread},
      {"exec 2>&-", whole, ""},
      {"exec <&- 2>&-", empty, ""},
      {"exec <&- >&- 2>&-", "(no frame)", ""},
  };
  for (const auto& c : cases) {
    Job job(decomposed, input);
    job.afterShell(c.setting);
    const FilterResult result = RunFilter(job);
    EXPECT_EQ(Body(result.output), c.body) << c.setting;
    EXPECT_EQ(result.messages, c.messages) << c.setting;
    EXPECT_TRUE(result.exitStatus == 0 && job.leavesNothing()) << c.setting;
  }
}

TEST_P(Surroundings, ThePPDMayGoAwayOrChange) {
  for (const bool replaced : {true, false}) {
    const Job job(decomposed, "%!PS\n" + kFeature + "one\nep\n\n"), other(!decomposed);
    FilterProcess filter(job);
    filter.readBytes(1);  // of the header
    std::filesystem::remove(job.ppd);
    if (replaced) std::filesystem::copy(other.ppd, job.ppd);
    filter.write(job.input);
    EXPECT_EQ(Body(filter.finish().output), BodyOf(job.input, decomposed)) << replaced;
  }
}

TEST_P(Surroundings, ASignalInFrontOfTheHeaderPrintsNothing) {
  const Job job(decomposed);
  std::filesystem::remove(job.ppd);
  ASSERT_EQ(mkfifo(job.ppd.c_str(), 0600), 0);
  FilterProcess filter(job);
  std::ofstream ppd(job.ppd);  // waits for the filter to open it
  kill(filter.pid(), SIGTERM);
  ppd.close();
  const FilterResult result = filter.finish();
  EXPECT_EQ(result.output + result.messages, "");
  EXPECT_EQ(result.exitStatus, -1);
}

#ifdef __linux__
TEST_P(Surroundings, ACancelledJobEndsAtAPageOrWithItsInput) {
  const std::string noEnd =
      "%%BeginProlog\n%%EndProlog\n%%EndSetup\nuserdict/setpagedevice{pop}bind put\nbp\n"
      "%%EndPageSetup\n";
  const struct {
    std::string before, after;  // the signal, of the input
    std::string plain, decomposed;
  } cases[] = {
      {"", noEnd + "ep\ntwo\n", noEnd, "(nothing)"},
      {"", "", "\x04", ""},
      {"%!PS\n%%EndProlog\n", "one\nep\ntwo\n", "%!PS\n%%EndProlog\none\n", "(nothing)"},
      {"one\nsho", "wpage\ntwo\n", "one\n", "(nothing)"},
      {"one\n", "endp\ntwo\n", "one\n", "(nothing)"},
      {"one\nep\n", "two\nep\n\n", "one\nep\ntwo\n", "(nothing)"},
      {"one\nep\ntwo\n", "", "one\nep\ntwo\n\x04", "one\nep\n"},
  };
  for (const auto& c : cases) {
    Job job(decomposed);
    job.inputDoesNotBlock = true;  // what blocks is interrupted below
    FilterProcess filter(job);
    filter.readBytes(1);
    filter.write(c.before);
    filter.waitUntilItWaits();  // for more input
    kill(filter.pid(), SIGTERM);
    filter.write(c.after);
    const FilterResult result = filter.finish();
    const std::string body = decomposed ? c.decomposed : c.plain;
    EXPECT_EQ(Body(result.output), body == "(nothing)" ? "" : kEnterPS + body) << c.before;
    EXPECT_EQ(result.exitStatus, 0) << c.before;
  }
}

// From a terminal or a script. Started by nohup the filter does not hear of the terminal's end.
TEST_P(Surroundings, AnInterruptedJobIsACancelledOneAndLeavesNothing) {
  for (const int signal : {SIGINT, SIGHUP}) {
    for (const bool ignored : {false, true}) {
      Job job(decomposed);
      if (ignored) job.afterShell(signal == SIGINT ? "trap '' INT" : "trap '' HUP");
      FilterProcess filter(job);
      filter.readBytes(1);
      filter.write("one\nep\n");
      filter.waitUntilItWaits();
      kill(filter.pid(), signal);
      filter.write("two\nep\n\n");
      const FilterResult result = filter.finish();
      const std::string whole = BodyOf("one\nep\ntwo\nep\n\n", decomposed);
      const std::string cancelled = decomposed ? "" : kEnterPS + "one\nep\ntwo\n";
      EXPECT_EQ(Body(result.output), ignored ? whole : cancelled) << signal;
      EXPECT_TRUE(result.exitStatus == 0 && job.leavesNothing()) << signal;
    }
  }
}

TEST_P(Surroundings, InputThatIsNotReadyYetIsWaitedFor) {
  Job job(decomposed);
  job.inputDoesNotBlock = true;
  FilterProcess filter(job);
  for (const char* part : {"one\nep\n", "two\nep\n\n"}) {
    filter.waitUntilItWaits();
    filter.write(part);
  }
  const FilterResult result = filter.finish();
  EXPECT_EQ(Body(result.output), BodyOf("one\nep\ntwo\nep\n\n", decomposed));
  EXPECT_EQ(result.messages, "PAGE:1 1\nPAGE:2 1\n");
}

TEST_P(Surroundings, AReaderMayStopAndThenGoOnOrCancelOrDie) {
  const std::string page = std::string(400'000, '\n') + "ep\n", whole = page + page + page + "\n";
  const std::string first = page.substr(0, page.size() - (decomposed ? 0 : 3));
  const struct {
    const char* reader;
    std::string body;
    int signal, exitStatus;
  } cases[] = {
      {"goes on", BodyOf(whole, decomposed), 0, 0},
      {"cancels", kEnterPS + first, SIGTERM, 0},
      {"dies", "(no frame)", 0, 1},
  };
  for (const auto& c : cases) {
    Job job(decomposed);
    job.arguments.push_back(job.folder.write("job.ps", whole));
    FilterProcess filter(job);
    filter.readBytes(1);
    // The first signal finds half a block written, the second one nothing of the rest.
    for (int times = 0; times < 2; times++) {
      filter.waitUntilItWaits();  // for room in its pipe
      kill(filter.pid(), c.signal);
    }
    if (c.exitStatus == 1) filter.closeOutput();
    const FilterResult result = filter.drain();
    EXPECT_TRUE(Body(result.output) == c.body) << c.reader;
    EXPECT_EQ(result.exitStatus, c.exitStatus) << c.reader;
    EXPECT_EQ(result.messages.find("ERROR"), std::string::npos) << result.messages;
    EXPECT_TRUE(job.leavesNothing()) << c.reader;
  }
}

TEST_P(Surroundings, ABlockLostAmongOthersIsSaid) {
  Job job(decomposed);
  job.outputPacket = 16 * 1024;
  job.arguments.push_back(job.folder.write("job.ps", std::string(64 * 1024, '\n')));
  const FilterResult result = RunFilter(job);
  EXPECT_NE(Body(result.output), "(no frame)");
  EXPECT_EQ(result.messages, "ERROR: Unable to write print data: Message too long\n");
}

TEST_P(Surroundings, InputMayComeByteByByte) {
  const Job job(decomposed, "%!PS\nbp\n" + kFeature + "TCPR GCPR ICPR\none\nep\nx\n\n");
  FilterProcess filter(job);
  for (char byte : job.input) filter.write({byte}), filter.waitUntilItWaits();
  EXPECT_EQ(Body(filter.finish().output), BodyOf(job.input, decomposed));
}

// Seen when the printer has taken all but the last half megabyte.
TEST_P(Surroundings, ALongJobNeedsNoMoreMemoryAndKeepsNoFilesOpen) {
  const std::string page = std::string(1'000'000, '\n') + "ep\n";
  long peaks[2] = {};  // KiB
  for (const bool isLong : {false, true}) {
    Job job(decomposed);
    std::string whole;
    for (int i = 0; i < (isLong ? 60 : 1); i++) whole += page;
    job.arguments.push_back(job.folder.write("job.ps", whole + "\n"));
    FilterProcess filter(job);
    filter.readBytes(whole.size() - 500'000);
    filter.waitUntilItWaits();
    const std::string process = "/proc/" + std::to_string(filter.pid());
    std::ifstream status(process + "/status");
    for (std::string word; word != "VmHWM:" && status >> word;) {
    }
    ASSERT_TRUE(status >> peaks[isLong]);
    std::multiset<std::string> open;
    for (const auto& fd : std::filesystem::directory_iterator(process + "/fd")) {
      const std::filesystem::path file = std::filesystem::read_symlink(fd);
      if (file.parent_path() == job.folder.path()) open.insert(file.filename());
      if (file.parent_path() == job.spool.path()) open.insert("the spool");
    }
    EXPECT_EQ(open, (decomposed ? std::multiset<std::string>{"job.ps", "the spool"}
                                : std::multiset<std::string>{"job.ps"}));
    EXPECT_TRUE(Body(filter.drain().output) == BodyOf(whole + "\n", decomposed));
  }
#ifndef SANITIZED
  EXPECT_LT(peaks[true], peaks[false] + 512);
#endif
}
#endif

TEST_P(Surroundings, ValgrindFindsNothing) {
  if (VALGRIND[0] == '\0') GTEST_SKIP() << "no valgrind, or a build with sanitizers";
  FilterJob job;
  job.under = {VALGRIND, "-q", "--leak-check=full", "--error-exitcode=99"};
  const char* model = decomposed ? "c60" : "c90";
  job.environment["PPD"] = PPD_DIR "/zelva-atelier-" + std::string(model) + ".ppd";
  const std::string password = "PrintTypePasswordTicketKey=" + Stored("open sesame");
  job.arguments[4] = Tickets("PrintTypeTicketKey=2 PrintTypeUserNameTicketKey=kim " + password);
  job.arguments[4] += Tickets("WMARKNameTicket=x WMARKTypeTicket=0");
  job.input = "%!PS\n%%EndProlog\n" + kFeature + "%%EndPageSetup\none\nep\n\n";
  const FilterResult result = RunFilter(job);
  EXPECT_EQ(result.exitStatus, 0);
  EXPECT_EQ(result.messages, "PAGE:1 1\n");
  EXPECT_NE(WithOpenedPasswords(result.output).find("\"<open sesame>\""), std::string::npos);
}

const struct {
  const char *what, *keys;
} kPasswords[] = {
    {"hold", "PrintTypeTicketKey=2 PrintTypeUserNameTicketKey=kim PrintTypePasswordTicketKey="},
    {"mailbox", "PrintTypeTicketKey=5 PrintTypeMBNTicketKey=7 PrintTypeMBNPasswordTicketKey="},
};

#ifndef SANITIZED
// Of a stored password that has lost its last block all but the last block is opened.
TEST(JobSecrets, AreGoneFromTheFiltersMemoryAtItsEnd) {
  std::string password;
  for (int i = 0; i < 51; i++) password += "p" + std::to_string(1000 + i);
  for (const std::string& stored : {Stored(password), Stored(password).substr(0, 320)}) {
    for (const auto& row : kPasswords) {
      const std::string options = Tickets(row.keys + stored);
      const auto memory =
          MemoryAtExit({FILTER_BINARY, "1", "user", "title", "1", options}, {}, "ep\n");
      if (!memory) GTEST_SKIP() << "no looking into processes here";
      EXPECT_NE(memory->find(options), memory->npos) << row.what;  // what it was given is found
      for (std::size_t at = 0; at + 8 <= password.size(); at++) {
        EXPECT_EQ(memory->find(password.substr(at, 8)), memory->npos) << row.what << " " << at;
      }
    }
  }
}
#endif

// The device's line keeps its end, and what stands in it opens nothing. The library says itself
// why.
TEST(JobSecrets, ThatCannotBeSealedLeaveAJobThatNobodyOpens) {
  const ScratchFolder folder;
  const std::string noRandom = folder.write(
      "cnf", "openssl_conf = all\n[all]\nrandom = none\n[none]\nrandom = NO-SUCH-GENERATOR\n");
  for (const auto& row : kPasswords) {
    FilterJob job;
    job.environment = {{"OPENSSL_CONF", noRandom}};
    job.arguments[4] = Tickets(row.keys + Stored("secret"));
    const FilterResult result = RunFilter(job);
    EXPECT_NE(result.output.find("ERROR[114]: generate random failed[99].\n"), std::string::npos);
    EXPECT_NE(result.output.find("ENCRYPTKEY=\"" + std::string(1920, 'A') + "\"\r\n"),
              std::string::npos)
        << row.what << result.output;
    EXPECT_EQ(result.messages, "##filter debug## final encode failed encodeResult : 99 \n");
    EXPECT_EQ(result.exitStatus, 0);
  }
}

// Every other job decomposed, all with one folder for their spool files.
TEST(JobCrowd, TwoHundredJobsAtOnceDoNotMix) {
  rlimit files = {};
  getrlimit(RLIMIT_NOFILE, &files);
  files.rlim_cur = std::min<rlim_t>(files.rlim_max, 1024);
  setrlimit(RLIMIT_NOFILE, &files);
  [[maybe_unused]] const auto started = std::chrono::steady_clock::now();
  const Job jobs[] = {Job(false), Job(true)};
  const auto input = [](std::size_t number) { return std::to_string(number) + "\nep\n\n"; };
  std::vector<std::unique_ptr<FilterProcess>> filters;
  for (std::size_t i = 0; i < 200; i++) {
    filters.push_back(std::make_unique<FilterProcess>(jobs[i % 2]));
    filters[i]->write(input(i));
  }
  for (std::size_t i = 0; i < 200; i++) {
    const FilterResult result = filters[i]->finish();
    EXPECT_EQ(Body(result.output), BodyOf(input(i), i % 2 == 1));
    EXPECT_TRUE(result.exitStatus == 0 && result.messages == "PAGE:1 1\n") << result.messages;
  }
  EXPECT_TRUE(jobs[1].leavesNothing());
#ifndef SANITIZED
  EXPECT_LT(std::chrono::steady_clock::now() - started, std::chrono::seconds(10));
#endif
}

}  // namespace
