// Whole jobs, as CUPS starts them and as the printer receives them.

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <regex>
#include <string>
#include <utility>

#include "DeploymentData.h"
#include "tests/support/Patterns.h"
#include "tests/support/Tickets.h"

namespace {

#ifdef __linux__
TEST(Job, LongHostNamesAreCutForUTF8Printers) {
  if (std::system("unshare -u true 2>/dev/null") != 0)
    GTEST_SKIP() << "no right to rename the host";
  const std::string name = "a-computer-whose-name-is-longer-than-most";
  const ScratchFolder folder;
  FilterJob job;
  job.under = {"/usr/bin/unshare", "-u", "/bin/sh", "-c",
               "echo " + name + " >/proc/sys/kernel/hostname; exec \"$0\" \"$@\""};
  EXPECT_NE(RunFilter(job).output.find("\"@CNAM=" + name + "\"\n"), std::string::npos);
  job.environment["PPD"] = folder.write("ppd", PPDText(kUTF8PPD));
  EXPECT_NE(RunFilter(job).output.find("\"@CNAM=" + name.substr(0, 32) + "\"\n"),
            std::string::npos);
}
#endif

TEST(Job, CountsItsPagesForCUPS) {
  FilterJob job{.input = "%%EndProlog\nep\n%%EndProlog\nendp\nep\nshowpage\nep "};
  job.arguments[3] = "7";
  const FilterResult result = RunFilter(job);
  EXPECT_EQ(result.messages, "PAGE:1 7\nPAGE:3 7\n");  // endp counts, but is not logged
}

TEST(Job, ReadsAFileWhenGivenOne) {
  const ScratchFolder folder;
  FilterJob job{.input = "not this"};
  job.arguments.push_back(folder.write("job.ps", "%!PS\r\nbp\r\n"));
  EXPECT_EQ(Body(RunFilter(job).output), kEnterPS + "%!PS\r\nbp\r\n\x04");
  job.arguments.push_back("more");
  EXPECT_EQ(Body(RunFilter(job).output), kEnterPS + "%!PS\r\nbp\r\n\x04");
}

TEST(Job, BindsNoBookWithoutAPPD) {
  FilterJob job;
  job.arguments[4] = "ZLVPBindPosition=BindLeft";
  EXPECT_EQ(RunFilter(job).output.find("@PB"), std::string::npos);
}

TEST(Job, WithTooFewArgumentsSaysHowItIsUsed) {
  for (std::size_t count = 0; count < 5; count++) {
    FilterJob job;
    job.arguments.resize(count);
    const FilterResult result = RunFilter(job);
    EXPECT_EQ(result.output, "");
    EXPECT_EQ(result.messages, "Usage: pstoxpjl job-id user title copies options [file]\n");
    EXPECT_EQ(result.exitStatus, 1);
  }
}

TEST(Job, SaysItsVersionAndForWhichKeysItSeals) {
  std::string keys;
  for (const auto& [name, identifier] :
       {std::pair("2048", pubkey2048_OFFICIAL_SHA256), {"3072", pubkey3072_OFFICIAL_SHA256}}) {
    keys += name + std::string("-bit key: ");
    for (int i = 0; i < 32; i++) {
      char digits[3];
      std::snprintf(digits, sizeof digits, "%02x", identifier[i]);
      keys += digits;
    }
    keys += "\n";
  }
  FilterJob job;
  job.arguments = {"--version"};
  const FilterResult result = RunFilter(job);
  EXPECT_TRUE(std::regex_match(
      result.output,
      std::regex("pstoxpjl [0-9]+\\.[0-9]+\\.[0-9]+\nDeployment: .+\n" + keys + "(.*\n)?")));
  EXPECT_EQ(result.output.find("public demonstration key") != std::string::npos,
            deploymentIsDemonstration);
  EXPECT_EQ(result.messages, "");
  EXPECT_EQ(result.exitStatus, 0);
  job.afterShell("exec >&-");
  EXPECT_EQ(RunFilter(job).exitStatus, 1);
}

TEST(Job, SampleGoesThroughUnchanged) {
  const std::string sample = FileContent(SAMPLES_DIR "/handbook.ps");
  ASSERT_GT(sample.size(), 1000u);
  FilterJob job{.input = sample};
  job.environment["PPD"] = PPD_DIR "/zelva-kontor-m20.ppd";
  const FilterResult result = RunFilter(job);
  EXPECT_TRUE(Body(result.output).ends_with(kEnterPS + sample + "\x04"));
  EXPECT_EQ(result.messages, "PAGE:1 1\nPAGE:2 1\nPAGE:3 1\nPAGE:4 1\n");
}

}  // namespace
