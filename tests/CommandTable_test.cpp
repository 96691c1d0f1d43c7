// Formats and values become lines, and conditions are tested. The modules' tests run the rows.

#include "engine/CommandTable.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

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
      {"a%sb", {}, ""},  // no values at all
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
