// The small services every room uses: output primitives, PPD, system version, numbers.

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <utility>

#include "FilterFrame/Source/JobState.h"
#include "FilterFrame/Source/PostScriptStream.h"
#include "FilterFrame/Source/UtilityFunctionFilter/JobOptions.h"
#include "FilterFrame/Source/UtilityFunctionFilter/OutputPrimitives.h"
#include "FilterFrame/Source/UtilityFunctionFilter/PPDAccess.h"
#include "FilterFrame/Source/UtilityFunctionFilter/SystemVersion.h"
#include "tests/support/Tickets.h"

namespace {

TEST(OutputPrimitives, CopyAndOutputAreIdentical) {
  char* copy = nullptr;
  std::size_t copySize = 0;
  gJobFilefp = open_memstream(&copy, &copySize);
  testing::internal::CaptureStdout();
  ZRfputs("line\n", stdout);
  ZRfwrite("a\0bc", 2, 2, stdout);
  ZRfputc(0xE9, stdout);
  ZRfprintf(stdout, "%d %s %%\n");
  const std::string output = testing::internal::GetCapturedStdout();
  std::fclose(gJobFilefp);
  gJobFilefp = nullptr;
  EXPECT_EQ(output, std::string("line\na\0bc\xE9%d %s %%\n", 19));
  EXPECT_EQ(std::string(copy, copySize), output);
  std::free(copy);
}

TEST(OutputPrimitives, ItoaAlignsRightAndLeavesZeroEmpty) {
  char buffer[16];
  EXPECT_EQ(itoa(1200, buffer, sizeof buffer), buffer + 11);
  EXPECT_STREQ(buffer + 11, "1200");
  EXPECT_STREQ(itoa(0, buffer, sizeof buffer), "");
  EXPECT_STREQ(itoa(2147483647, buffer, sizeof buffer), "2147483647");
  EXPECT_STREQ(itoa(-12, buffer, sizeof buffer), "/.");  // no sign: remainders below '0'
  EXPECT_STREQ(itoa(12345, buffer, 4), "345");
}

TEST(SystemVersion, FollowsTheKernelRelease) {
  const struct {
    const char* release;
    std::int32_t version;
  } cases[] = {{"19.6.0", 0x10F6}, {"14.0.0", 0x10A0}, {"20.1.0", 0x1001}, {"11.4.2", 0x1074},
               {"", 0x1000},       {"x", 0x1000},      {"19", 0x10F0},     {"19.", 0x10F0},
               {"4.17", 0x1001},   {"-3.2", 0x1002}};
  for (const auto& c : cases) {
    EXPECT_EQ(SystemVersionFromKernelRelease(c.release), c.version) << c.release;
  }
}

TEST(SystemVersion, AnswersSelectorsAndReportsUnknownOnes) {
  std::int32_t value = 77;
  testing::internal::CaptureStderr();
  EXPECT_EQ(Gestalt_ALT(0x7379737A, &value), -1);
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "Gestalt_ALT : selector '7379737a' not supported.\n");
  EXPECT_EQ(value, 77);
#ifdef __linux__
  for (const auto& [selector, answer] : {std::pair(kSystemVersion, 0x10F6),
                                         {kSystemVersionMajor, 10},
                                         {kSystemVersionMinor, 15},
                                         {kSystemVersionBugFix, 6}}) {
    EXPECT_EQ(Gestalt_ALT(selector, &value), 0);
    EXPECT_EQ(value, answer);
  }
#endif
}

TEST(PPDAccess, FindsTheFirstAttributeThatBeginsWithTheName) {
  const UsedPPD ppd(
      "*ZLVPSDecompModeExtra: \"1\"\n*ZLVPSDecompMode: \"0\"\n*ColorDevice: True\n"
      "*ZLVPrinterLanguageEncoding: \"UTF-8\"\n*ZLVXPrintTypeSettings: \"Default03,Default04\"\n");
  EXPECT_STREQ(JobPPDValue("ZLVPSDecompMode"), "1");
  EXPECT_TRUE(PrinterDecomposesPostScript());
  EXPECT_TRUE(PrinterLanguageIsUTF8());
  EXPECT_STREQ(JobPPDValue("ColorDevice"), "True");
  EXPECT_EQ(JobPPDValue("ZLVNothing"), nullptr);
  EXPECT_EQ(CheckIfPPDKeywordSupported(JobPPD(), "ZLVXPrintTypeSettings", "Default04"), 1);
  EXPECT_EQ(CheckIfPPDKeywordSupported(JobPPD(), "ZLVXPrintTypeSettings", "Default05"), 0);
  EXPECT_EQ(CheckIfPPDKeywordSupported(JobPPD(), "ZLVNothing", ""), 0);
  EXPECT_EQ(GetCFStringSimEncodingFromPPD(JobPPD()), kTextEncodingUTF8);
  EXPECT_EQ(GetCFStringSimEncodingFromPPD(nullptr), kTextEncodingUTF8);
}

TEST(PPDAccess, ComparesValuesWhole) {
  const UsedPPD ppd("*ZLVPSDecompMode: \"11\"\n*ZLVPrinterLanguageEncoding: \"utf-8\"\n");
  EXPECT_FALSE(PrinterDecomposesPostScript());
  EXPECT_FALSE(PrinterLanguageIsUTF8());
}

TEST(JobOptions, OffersTheOutputMode) {
  EXPECT_EQ(GetDLOutputMode(Arguments("ZLVOutputMode=1200x1200 media=A4")), 1);
  EXPECT_STREQ(g_DLOutputMode, "1200x1200");
  EXPECT_EQ(GetDLOutputMode(Arguments("media=A4")), 0);
  EXPECT_STREQ(g_DLOutputMode, "");
}

}  // namespace
