// Rows become lines.

#include "engine/CommandTable.h"

#include <gtest/gtest.h>

#include <string>

namespace {

struct Sample {
  char address[46];
  char detected[40];
  std::int32_t copies;
};
Sample sample;
constexpr std::int32_t kSampleAbsent = -1;
constexpr std::int32_t kSampleTwo = 2;
constexpr std::int32_t kSampleLimit = 9;
constexpr const char* kSampleWord = "fe80";

}  // namespace

#define ROWS_FILE "tests/support/SampleRows.def"
#define ROWS_TABLE sampleFmtTable
#define ROWS_COUNT 5
#define ROWS_BIND_VALUES BindSampleValues
#define ROWS_BIND_TESTS BindSampleTests
#include "engine/CommandRows.h"

namespace {

std::string Lines(const Sample& options) {
  sample = options;
  BindSampleValues();
  BindSampleTests();
  testing::internal::CaptureStdout();
  OutputXPJLCommandFromArray(nullptr, sampleFmtTable, 5);
  return testing::internal::GetCapturedStdout();
}

TEST(CommandTable, WritesTheRowsWhoseConditionsHold) {
  const std::string always = "@PJL SET RET=ON 100%\n";
  EXPECT_EQ(Lines({"10.1.2.3", "", -1}), "@PJL SET JOBATTR=\"@HOAD=10.1.2.3\"\n" + always);
  EXPECT_EQ(Lines({"", "I0A010203", -1}), "@PJL SET JOBATTR=\"@HOAD=I0A010203\"\n" + always);
  EXPECT_EQ(Lines({"", "", 3}), "@PJL SET QTY=3\r\n" + always);
  const std::string line = "@PJL SET JOBATTR=\"@HOAD=10.1.2.3\"\n";
  EXPECT_EQ(Lines({"10.1.2.3", "", 2}), line + "@PJL SET QTY=2\r\n" + always + line);
  EXPECT_EQ(Lines({"10.1.22.3", "", 2}).find(always) + always.size(),
            Lines({"10.1.22.3", "", 2}).size());
  EXPECT_EQ(Lines({"fe80::1", "", 2}).find(always) + always.size(),
            Lines({"fe80::1", "", 2}).size());
}

std::string Expand(const std::string& format, std::vector<CmdValue> values,
                   std::size_t outSize = kCommandSize) {
  std::vector<char> out(outSize, 'x');
  const SymPara description = {static_cast<std::int32_t>(values.size()), values.data()};
  BuildPrintComand(format.c_str(), values.empty() ? nullptr : &description, out.data(), outSize);
  return out.data();
}

TEST(CommandTable, ExpandsFormats) {
  static const char text[] = "abc";
  static const char empty[] = "";
  static const char nul = '\0';
  static const char high = '\xE9';
  static const std::int32_t number = -2147483647 - 1;
  const struct {
    const char* format;
    std::vector<CmdValue> values;
    const char* line;
  } cases[] = {
      {"", {}, ""},
      {"plain 100% %x %%", {}, "plain 100% %x %%"},
      {"%c%c-12345X", {CTRLSym_ESC, CTRLSym_PERCENTAGE}, "\x1b%-12345X"},
      {"%%d", {number}, "%-2147483648"},
      {"%s%c", {text, high}, "abc\xE9"},
      {"a%sb%sc", {text, empty}, "aabc"},  // "b" goes with the empty value, and the rest
      {"%s", {empty}, ""},
      {"a=%c\n", {nul}, ""},
      {"%s tail", {text}, "abc tail"},
      {"%s", {text, text, text}, "abc"},
  };
  for (const auto& c : cases) EXPECT_EQ(Expand(c.format, c.values), c.line) << c.format;
}

TEST(CommandTable, CutsLongLines) {
  static char longText[3000];
  std::fill_n(longText, sizeof longText - 1, 'v');
  EXPECT_EQ(Expand("a%s\n", {longText}), "a" + std::string(2046, 'v'));
  EXPECT_EQ(Expand(std::string(3000, 'f'), {}), std::string(2047, 'f'));
  EXPECT_EQ(Expand("ab%s", {longText}, 5), "abvv");
  char buffer[4];
  EXPECT_EQ(getCtrlSym("%s", longText, buffer, sizeof buffer), 3);
  EXPECT_STREQ(buffer, "vvv");
  EXPECT_EQ(getCtrlSym("%x", longText, buffer, sizeof buffer), 0);
}

TEST(CommandTable, ConditionsAreConjunctionsThatStopEarly) {
  static int calls;
  calls = 0;
  const CompareFunc yes = [](const void*, const void*) { return ++calls, 1; };
  const CompareFunc no = [](const void*, const void*) { return ++calls, 0; };
  const ComparationItem items[] = {
      {nullptr, nullptr, yes}, {nullptr, nullptr, no}, {nullptr, nullptr, yes}};
  const Comparation none = {0, nullptr}, one = {1, items}, all = {3, items};
  EXPECT_EQ(ConditionCompare(&none), 1);
  EXPECT_EQ(ConditionCompare(&one), 1);
  EXPECT_EQ(ConditionCompare(&all), 0);
  EXPECT_EQ(calls, 3);
}

TEST(CommandTable, ComparesTextsAndLengths) {
  const char* word = "Coil";
  const std::int32_t limit = 97;
  const struct {
    const char* left;
    int equal, contains, lacks, filled, empty;
  } cases[] = {{"Coil", 1, 1, 0, 1, 0},
               {"CoilPunch", 0, 1, 0, 1, 0},
               {"2Holes", 0, 0, 1, 1, 0},
               {"", 0, 0, 1, 0, 1}};
  for (const auto& c : cases) {
    EXPECT_EQ(StrEqualCampareFunc(c.left, &word), c.equal) << c.left;
    EXPECT_EQ(StrContainCampareFunc(c.left, &word), c.contains) << c.left;
    EXPECT_EQ(StrNotContainCampareFunc(c.left, &word), c.lacks) << c.left;
    EXPECT_EQ(StrNoNULLCampareFunc(c.left, &OptionNULLStr), c.filled) << c.left;
    EXPECT_EQ(StrIsNULLCampareFunc(c.left, &OptionNULLStr), c.empty) << c.left;
  }
  EXPECT_EQ(StrContainCampareFunc(nullptr, &word), 0);
  EXPECT_EQ(StrNotContainCampareFunc(nullptr, &word), 1);
  EXPECT_EQ(StrLengthLessThanCampareFunc(std::string(96, 'a').c_str(), &limit), 1);
  EXPECT_EQ(StrLengthLessThanCampareFunc(std::string(97, 'a').c_str(), &limit), 0);
}

}  // namespace
