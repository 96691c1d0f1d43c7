// Whole jobs, as CUPS starts them and as the printer receives them.

#include <gtest/gtest.h>
#include <openssl/evp.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <regex>
#include <string>
#include <vector>

#include "DeploymentData.h"
#include "secblobenc/secblobenc-key-decoder.h"
#include "tests/support/FilterProcess.h"
#include "tests/support/Tickets.h"

namespace {

const std::string kExit = "\x1b%-12345X";
const std::string kUTF8Names = "@PJL SET STRINGCODESET=UTF8\n";
// The accounting lines of a job without tickets.
const std::string kIdentity = [] {
  char host[97] = {};
  gethostname(host, sizeof host - 1);
  const auto attribute = [](const std::string& text) {
    return "@PJL SET JOBATTR=\"" + text + "\"";
  };
  return attribute("@CNAM=" + std::string(host).substr(0, 32)) + "\n" + attribute("@LUNA=user") +
         "\n" + attribute("@NLPP=1") + "\n" + attribute("@JOAU=user") + "\r\n" +
         attribute("@ACNA=title") + "\r\n";
}();
const std::string kJobMode = "@PJL JOB MODE=PRINTER\r\n" + kIdentity;
const std::string kGray = "@PJL SET RENDERMODE=GRAYSCALE\n";
const std::string kBooklet = "@PJL SET JOBATTR=\"@DIND=PORTRAIT\"\n";
const std::string kPlainHeader = kExit + kJobMode + kGray;
const std::string kUTF8Header = kExit + kUTF8Names + kJobMode + kBooklet + kGray;
const std::string kEnterPS = "@PJL ENTER LANGUAGE=POSTSCRIPT\n";
const std::string kTrailer = kExit + "@PJL EOJ\n";
const std::string kComment = "@PJL COMMENT PRINTJOBINFO ";

FilterJob JobWith(const std::string& input) {
  FilterJob job;
  job.input = input;
  return job;
}

std::string ReadFile(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

TEST(Job, WithoutAPPDIsFramedAndPassedThrough) {
  const FilterResult result = RunFilter(JobWith("%!PS\nep\nshowpage\n%%EOF\nunfinished"));
  EXPECT_EQ(result.output, kPlainHeader + kEnterPS + "%!PS\nep\nshowpage\n%%EOF\n\x04" + kTrailer);
  EXPECT_EQ(result.messages, "PAGE:1 1\n");
  EXPECT_EQ(result.exitStatus, 0);
}

// The lines of the header that the PPD decides on.
TEST(Job, HeaderFollowsThePPD) {
  const std::string utf8 = "*ZLVPrinterLanguageEncoding: \"UTF-8\"\n";
  const std::string latin1 = "*ZLVPrinterLanguageEncoding: \"ISOLatin1\"\n";
  const std::string commentOn = "*CommentOn: \"True\"\n";
  const std::string basic = kComment + "BEGIN\n" + kComment +
                            "PDLTYPE=PDL[POSTSCRIPT]:VERSION[3]\n" + kComment + "JOBTYPE=PRINT\n" +
                            kComment + "DUPLEXTYPE=SIMPLEX\n" + kComment + "COLORMODE=GRAYSCALE\n" +
                            kComment + "NUP=1\n";
  const std::string advanced = kComment + "ORIENTATION=PORTRAIT\n" + kComment +
                               "MIXEDSIZETYPE=NONE\n" + kComment + "CUD=OFF\n";
  const std::string end = kComment + "END\n";
  const std::string shortBlock = kComment + "VERSION=1.3.0\n" + basic + end;
  const std::string longBlock = kComment + "VERSION=1.5.0\n" + basic + advanced + end;
  const struct {
    const char* what;
    std::string ppd;
    std::string header;
  } cases[] = {
      {"UTF-8", utf8, kUTF8Header + kEnterPS},
      {"UTF-8 with comment", utf8 + commentOn, kUTF8Header + longBlock + kEnterPS},
      {"comment is case-sensitive", utf8 + "*CommentOn: \"true\"\n", kUTF8Header + kEnterPS},
      {"another encoding always has the short block", latin1, kPlainHeader + shortBlock + kEnterPS},
      {"another encoding, whatever CommentOn says", latin1 + commentOn,
       kPlainHeader + shortBlock + kEnterPS},
      {"no encoding, no model", commentOn, kPlainHeader + kEnterPS},
      {"no encoding, unlisted model", commentOn + "*PCFileName: \"ZLVTEST.PPD\"\n",
       kPlainHeader + longBlock + kEnterPS},
      {"no encoding, unlisted model, no comment", "*PCFileName: \"ZLVTEST.PPD\"\n",
       kPlainHeader + kEnterPS},
  };
  for (const auto& c : cases) {
    const ScratchFolder folder;
    FilterJob job = JobWith("");
    job.environment["PPD"] = folder.write("test.ppd", PPDText(c.ppd));
    EXPECT_EQ(RunFilter(job).output, c.header + "\x04" + kTrailer) << c.what;
  }
}

TEST(Job, HeaderHasTheDevicesOrder) {
  const ScratchFolder folder;
  FilterJob job = JobWith("");
  job.environment["PPD"] = folder.write(
      "test.ppd", PPDText("*ZLVPrinterLanguageEncoding: \"UTF-8\"\n*CommentOn: \"True\"\n"));
  job.arguments[4] = Tickets(
      "PrintTypeTicketKey=3 PrintTypeUserNameTicketKey=kim OffsetStackingListTicket=4 "
      "ZLVPBindPosition=BindLeft ZLVTonerSaver=Mode2 XPIFCoverCountTicket=1 "
      "XPIFCoverValueTicket_0=0,0,print-both ");
  const std::string output = RunFilter(job).output;
  std::size_t at = 0;
  for (const char* part :
       {"STRINGCODESET", "JOB MODE", "HOLD=PROOF", "@CNAM", "JOBOFFSET", "@PBRE", "@DIND",
        "ECONOMODE", "RENDERMODE", "@EFCV", "PRINTJOBINFO VERSION", "BEGIN", "JOBTYPE",
        "ORIENTATION", "PRINTJOBINFO END", "ENTER LANGUAGE", "EOJ"}) {
    EXPECT_NE(at = output.find(part, at), output.npos) << part;
  }
}

#ifdef __linux__
TEST(Job, LongHostNamesAreCutForUTF8Printers) {
  if (std::system("unshare -u true 2>/dev/null") != 0)
    GTEST_SKIP() << "no right to rename the host";
  const std::string name = "a-computer-whose-name-is-longer-than-most";
  const ScratchFolder folder;
  FilterJob job = JobWith("");
  job.under = {"/usr/bin/unshare", "-u", "/bin/sh", "-c",
               "echo " + name + " >/proc/sys/kernel/hostname; exec \"$0\" \"$@\""};
  EXPECT_NE(RunFilter(job).output.find("\"@CNAM=" + name + "\"\n"), std::string::npos);
  job.environment["PPD"] =
      folder.write("test.ppd", PPDText("*ZLVPrinterLanguageEncoding: \"UTF-8\"\n"));
  EXPECT_NE(RunFilter(job).output.find("\"@CNAM=" + name.substr(0, 32) + "\"\n"),
            std::string::npos);
}
#endif

TEST(Job, AUserNameWithoutALetterThatThePrinterKnowsIsAnEmptyOne) {
  const ScratchFolder folder;
  FilterJob job = JobWith("");
  job.arguments[1] = "\u0395\u03BB\u03AD\u03BD\u03B7";
  job.environment["PPD"] =
      folder.write("ppd", PPDText("*ZLVPrinterLanguageEncoding: \"ISOLatin1\"\n"));
  const std::string attribute = "@PJL SET JOBATTR=\"@";
  EXPECT_NE(
      RunFilter(job).output.find(attribute + "LUNA=UnknownUser\"\n" + attribute + "NLPP=1\"\n" +
                                 attribute + "JOAU=\"\r\n" + attribute + "ACNA=title\"\r\n"),
      std::string::npos);
}

TEST(Job, ATitleWithALineEndIsNoName) {
  for (const char* title : {"two\nlines", "two\rlines", "\n"}) {
    FilterJob job = JobWith("");
    job.arguments[2] = title;
    const std::string output = RunFilter(job).output;
    EXPECT_EQ(output.find("@ACNA"), output.npos) << output;
    EXPECT_EQ(output.find("lines"), output.npos) << output;
  }
}

TEST(Job, CountsItsPagesForCUPS) {
  FilterJob job = JobWith("%%EndProlog\nep\n%%EndProlog\nendp\nep\nshowpage\nep ");
  job.arguments[3] = "7";
  const FilterResult result = RunFilter(job);
  EXPECT_EQ(result.messages, "PAGE:1 7\nPAGE:3 7\n");  // endp counts, but is not logged
}

TEST(Job, ReadsAFileWhenGivenOne) {
  const ScratchFolder folder;
  FilterJob job = JobWith("not this");
  job.arguments.push_back(folder.write("job.ps", "%!PS\r\nbp\r\n"));
  EXPECT_EQ(RunFilter(job).output, kPlainHeader + kEnterPS + "%!PS\r\nbp\r\n\x04" + kTrailer);
  job.arguments.push_back("more");
  EXPECT_EQ(RunFilter(job).output, kPlainHeader + kEnterPS + "%!PS\r\nbp\r\n\x04" + kTrailer);
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

// The key's identifier is the fingerprint of its bytes, in hexadecimal digits.
TEST(Job, SaysItsVersionAndForWhichKeysItSeals) {
  const std::vector<unsigned char> key = SecBlobEnc_Decode_Key(RSA_PUBKEY_2048_OFFICIAL);
  unsigned char digest[32];
  ASSERT_TRUE(EVP_Q_digest(nullptr, "SHA256", nullptr, key.data(), key.size(), digest, nullptr));
  std::string identifier;
  for (unsigned char byte : digest) {
    char digits[3];
    std::snprintf(digits, sizeof digits, "%02x", byte);
    identifier += digits;
  }
  FilterJob job;
  job.arguments = {"--version"};
  const FilterResult result = RunFilter(job);
  const std::string keys = "2048-bit key: " + identifier + "\n3072-bit key: [0-9a-f]{64}\n";
  EXPECT_TRUE(std::regex_match(
      result.output,
      std::regex("pstoxpjl [0-9]+\\.[0-9]+\\.[0-9]+\nDeployment: .+\n" + keys + "(.*\n)?")));
  EXPECT_EQ(result.output.find("public demonstration key") != std::string::npos,
            deploymentIsDemonstration);
  EXPECT_EQ(result.messages, "");
  EXPECT_EQ(result.exitStatus, 0);
}

TEST(Job, SampleGoesThroughUnchanged) {
  const std::string sample = ReadFile(SAMPLES_DIR "/handbook.ps");
  ASSERT_GT(sample.size(), 1000u);
  FilterJob job = JobWith(sample);
  job.environment["PPD"] = PPD_DIR "/zelva-kontor-m20.ppd";
  const FilterResult result = RunFilter(job);
  EXPECT_NE(result.output.find(kEnterPS + sample + "\x04" + kTrailer), std::string::npos);
  EXPECT_EQ(result.messages, "PAGE:1 1\nPAGE:2 1\nPAGE:3 1\nPAGE:4 1\n");
}

}  // namespace
