// Text on its way into the printer's language encoding, and names that are nearly right.

#include "text/Encoding.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "text/NearestName.h"

namespace {

struct Case {
  const char* source;
  int size;
  std::string latin1;
  std::string utf8;
};

TEST(Encoding, ConvertsDropsAndCuts) {
  const std::string ideographic = "\xE3\x80\x80";  // U+3000
  const Case cases[] = {
      {"", 10, "", ""},
      {"Caf\u00E9", 10, "Caf\xE9", "Caf\u00E9"},
      {"Ab\u20ACc", 10, "Abc", "Ab\u20ACc"},
      {"x\U0001F600y", 10, "xy", "xy"},
      {"abcdef", 4, "abc", "abc"},
      {"\u00E9\u00E9", 4, "\xE9\xE9", "\u00E9\xC3"},
      {"ab\u20AC", 4, "ab", "ab\xE2"},
      {"\u00FF\u0100", 10, "\xFF", "\u00FF\u0100"},
      {"\\~\x01", 10, "\\~\x01", "\\~\x01"},
      {"\uFEFF\uFFFF", 10, "", "\uFEFF\uFFFF"},
      {ideographic.c_str(), 10, "", ideographic},
      {"a", 1, "", ""},
      {"ok\xFF", 10, "", ""},            // no UTF-8 byte
      {"\xC0\xAF", 10, "", ""},          // overlong
      {"\xED\xA0\x80", 10, "", ""},      // half of a surrogate pair
      {"\xF4\x90\x80\x80", 10, "", ""},  // beyond U+10FFFF
      {"cut\xC3", 10, "", ""},
  };
  for (const Case& c : cases) {
    char destination[16];
    std::fill_n(destination, sizeof destination, 'x');
    EXPECT_EQ(ConvertUTF8ToEncoding(c.source, destination, c.size),
              static_cast<int>(c.latin1.size()))
        << c.source;
    // All of the destination is cleared, nothing behind it is touched.
    EXPECT_EQ(std::string(destination, sizeof destination),
              c.latin1 + std::string(static_cast<std::size_t>(c.size) - c.latin1.size(), '\0') +
                  std::string(sizeof destination - static_cast<std::size_t>(c.size), 'x'));
    EXPECT_EQ(ConvertUTF8ToEncodingForUTF8(c.source, destination, c.size),
              static_cast<int>(c.utf8.size()))
        << c.source;
    EXPECT_EQ(destination, c.utf8);
  }
  EXPECT_EQ(ConvertUTF8ToEncoding("a", nullptr, 0), 0);
}

TEST(Encoding, WrapsInParenthesesWholeOrNotAtAll) {
  char destination[600];
  const auto convert = [&](const std::string& text, int size) {
    const int length =
        ConvertUTF8ToPPDEncoding(text.c_str(), destination, size, kTextEncodingISOLatin1);
    EXPECT_EQ(std::string(destination).size(), static_cast<std::size_t>(length));
    return std::string(destination);
  };
  EXPECT_EQ(convert("name", 10), "(name)");
  EXPECT_EQ(convert("name", 7), "(name)");
  EXPECT_EQ(convert("name", 6), "");
  EXPECT_EQ(convert("\xFF", 10), "");
  EXPECT_EQ(convert("\U0001F600", 10), "(\U0001F600)");
  const std::string longest(253, 'a');
  EXPECT_EQ(convert(longest, 600), "(" + longest + ")");
  EXPECT_EQ(convert(longest + "a", 600), longest + "a");
}

TEST(Encoding, CountsAndKeepsWholeCharacters) {
  EXPECT_EQ(CountUTF16Units("a\u00E9\U0001F600"), 4u);
  EXPECT_EQ(CountUTF16Units("ab\xE2\x82"), 2u);
  EXPECT_EQ(FirstUTF16Units("a\u00E9\u20ACx", 3), "a\u00E9\u20AC");
  EXPECT_EQ(FirstUTF16Units("ab\U0001F600", 3), "ab");
  EXPECT_EQ(FirstUTF16Units("\U0001F600b", 2), "\U0001F600");
  EXPECT_EQ(FirstUTF16Units("ab\xE2\x82", 9), "ab");
}

TEST(Encoding, AnswersAboutCharactersAndPPDs) {
  EXPECT_EQ(checkIfCharacterIsMultibyte("a\\~\u00FF"), 0);
  EXPECT_EQ(checkIfCharacterIsMultibyte("a\u0100"), 1);
  EXPECT_EQ(checkIfCharacterIsMultibyte("\U0001F600"), 1);
  EXPECT_EQ(checkIfCharacterIsMultibyte("\xFF"), 0);
  EXPECT_EQ(TextEncodingForLanguageEncoding("JIS83-RKSJ"), kTextEncodingJISX0208_83);
  for (const char* other : {"ISOLatin1", "WindowsANSI", "Cyrillic", ""}) {
    EXPECT_EQ(TextEncodingForLanguageEncoding(other), kTextEncodingUTF8);
  }
  EXPECT_EQ(TextEncodingForLanguageEncoding(nullptr), kTextEncodingUTF8);
}

TEST(NearestName, DiffersInAThirdOfItsLettersAtMost) {
  const std::string names[] = {"at", "abc", "uvwxyz", "cat", "car", std::string(201, 'n')};
  const std::pair<std::string, std::string> cases[] = {
      {"AT", "at"},   {"ab", ""},
      {"acb", "abc"}, {"abx", "abc"},
      {"ac", ""},     {"uvwabc", ""},
      {"uvwx", ""},   {"uvwxy", "uvwxyz"},
      {"cap", "cat"}, {"uvxwyzz", "uvwxyz"},
      {"", ""},       {std::string(200, 'n'), ""},
  };
  for (const auto& [written, meant] : cases) EXPECT_EQ(NearestName(written, names), meant);
}

}  // namespace
