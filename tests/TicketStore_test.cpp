// Job options become option records.

#include "engine/TicketStore.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "FilterFrame/Source/UtilityFunctionFilter/JobOptions.h"
#include "tests/support/Password.h"
#include "tests/support/Tickets.h"

namespace {

constexpr char kRows[] = "com.apple.print.PrintSettings.PMLayoutRows..n.";
constexpr char kColumns[] = "com.apple.print.PrintSettings.PMLayoutColumns..n.";

struct Sample {
  std::int32_t number;
  std::int32_t absent;
  float angle;
  char plain[10];
  char latin1[10];
  char utf8[10];
};
Sample sample;

constexpr TicketData kSampleTickets[] = {
    Ticket<GetTicketInteger>(TICKET_KEY("NumberTicket"), sample.number),
    Ticket<CheckTicketKey>(TICKET_KEY("NumberTicket"), sample.absent),
    Ticket<GetTicketFloat>("angle", sample.angle),
    Ticket<GetTicketString>("text", sample.plain),
    Ticket<GetTicketStringConvertedToPrtLang>("text", sample.latin1),
    Ticket<GetTicketStringConvertedToPrtLangForUTF8>("text", sample.utf8),
};

Sample Intake(const std::string& options) {
  std::fill_n(reinterpret_cast<char*>(&sample), sizeof sample, 'x');
  EXPECT_EQ(GetTicketFromArray(Arguments(options), kSampleTickets, std::size(kSampleTickets)), 1);
  return sample;
}

TEST(TicketStore, AbsentOptionsLeaveAbsentValues) {
  const Sample got = Intake("other=1");
  EXPECT_EQ(got.number, -1);
  EXPECT_EQ(got.absent, 1);
  EXPECT_EQ(got.angle, -1.0F);
  for (const char* text : {got.plain, got.latin1, got.utf8}) {
    EXPECT_EQ(std::string(text, 10), std::string(10, '\0'));
  }
}

TEST(TicketStore, ReadsNumbers) {
  const struct {
    const char* text;
    std::int32_t integer;
    float decimal;
  } cases[] = {{"7", 7, 7},
               {"-30", -30, -30},
               {"12.75mm", 12, 12.75F},
               {"abc", 0, 0},
               {"0.1", 0, 0.1F},
               {"9999999999", 2147483647, 1e10F},
               {"-9999999999", -2147483647 - 1, -1e10F},
               {"1e400", 1, INFINITY},
               {"16777217", 16777217, 16777216}};
  for (const auto& c : cases) {
    const std::string text = c.text;
    const Sample got =
        Intake("com.zelva.jt.printsettings.ps.ww.NumberTicket=" + text + " angle=" + text);
    EXPECT_EQ(got.number, c.integer) << text;
    EXPECT_EQ(got.absent, 0);
    EXPECT_EQ(got.angle, c.decimal) << text;
  }
}

TEST(TicketStore, ConvertsTexts) {
  const struct {
    std::string option, plain, latin1, utf8;
  } cases[] = {
      {"abc", "abc", "abc", "abc"},
      {"/72/105", "/72/105", "Hi", "Hi"},
      {"/72/0/105", "/72/0/105", "H", "H"},
      {"/300/65", "/300/65", "", ""},
      {"/195/169", "/195/169", "\xE9", "\u00E9"},
      {"/195", "/195", "", ""},  // decoded bytes that are no UTF-8
      {"/", "/", "/", "/"},
      {"/x//65", "/x//65", "", ""},
      {"/-191/66", "/-191/66", "AB", "AB"},
      {"0123456789", "012345678", "012345678", "012345678"},
      {"\u00E9\u20AC", "\xE9", "\xE9", "\u00E9\u20AC"},
  };
  for (const auto& c : cases) {
    const Sample got = Intake("text=" + c.option);
    EXPECT_EQ(std::string(got.plain), c.plain.substr(0, 9)) << c.option;
    EXPECT_EQ(std::string(got.latin1), c.latin1) << c.option;
    EXPECT_EQ(std::string(got.utf8), c.utf8) << c.option;
  }
}

// Calls one getter with these options.
template <std::size_t Size = 2048>
std::pair<int, std::string> Get(TicketGetter* getter, const std::string& optionsText,
                                const char* key = "key") {
  const JobOptions options(optionsText.c_str());
  char text[Size];
  std::fill_n(text, Size, 'x');
  const int result = getter(key, options.count(), options.list(), text, static_cast<int>(Size));
  return {result, text};
}

using Got = std::pair<int, std::string>;

TEST(TicketStore, ReportsLengthsAndPresence) {
  EXPECT_EQ(Get(GetLengthOfTicketStringConvertedToPrtLang, "key=a\u00E9"), Got(2, "a\xE9"));
  EXPECT_EQ(Get(GetLengthOfTicketStringConvertedToPrtLangForUTF8, "key=a\u00E9"),
            Got(3, "a\u00E9"));
  EXPECT_EQ(Get(GetLengthOfTicketStringConvertedToPrtLang, ""), Got(0, ""));
  EXPECT_EQ(Get(GetTicketStringConvertedToPPDEncodingString, "key=/65"), Got(1, "(A)"));
  EXPECT_EQ(Get(GetTicketStringConvertedToPrtLang, "key="), Got(1, ""));
  EXPECT_EQ(Get(GetTicketStringConvertedToPrtLang, ""), Got(0, ""));
  const std::string longText(1500, 'a');
  EXPECT_EQ(Get(GetTicketStringConvertedToPrtLang, "key=" + longText),
            Got(1, longText.substr(0, 1023)));
  EXPECT_EQ(Get(GetTicketString, "key=" + longText), Got(1, longText));
}

TEST(TicketStore, GivesPagesPerSheet) {
  const std::string rows = std::string(kRows) + "=", columns = std::string(kColumns) + "=";
  const struct {
    std::string options, number, comment;
  } cases[] = {
      {"", "1", "1"},
      {"number-up=6", "N6", "6"},
      {"number-up=/52", "N/52", "4"},  // with the N in front it is no byte list
      {rows + "2 " + columns + "2", "N4", "4"},
      {rows + "1 " + columns + "1", "1", "1"},
      {rows + "3", "N3", "3"},
      {columns + "2", "N2", "2"},
      {rows + "0 " + columns + "2", "N", ""},
      {rows + "65536 " + columns + "65536", "N2147483647", "2147483647"},
      {"number-up=2 " + rows + "3", "N2", "2"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(Get(GetNumberUpTicketString, c.options, "number-up"), Got(1, c.number)) << c.options;
    EXPECT_EQ(Get(GetNumberUpTicketStringForComment, c.options, "number-up"), Got(1, c.comment));
  }
  EXPECT_EQ(Get<10>(GetNumberUpTicketString, "number-up=123456789012", "number-up").second,
            "N12345678");
}

TEST(TicketStore, SealsStoredPasswordsForTheDevice) {
  for (const std::string& password :
       {std::string("secret"), std::string(), std::string(255, 'p'), std::string("\u00E9\u20AC")}) {
    const auto [result, text] =
        Get(GetTicketPasswordStringConvertedToEncryption, "key=" + Stored(password));
    EXPECT_EQ(result, 1);
    EXPECT_EQ(Opened(text), password);
  }
}

// Whether the stack below the caller, which nobody has cleared, still holds these bytes.
[[gnu::noinline]] bool StackHolds(std::string_view bytes) {
  volatile char left[64 * 1024];
  std::string copy(sizeof left, '\0');
  for (std::size_t i = 0; i < sizeof left; i++) copy[i] = left[i];
  return copy.find(bytes) != copy.npos;
}

TEST(TicketStore, OpenedPasswordsAreWiped) {
  const std::string password = "correct horse battery staple";
  const std::string option = "key=" + Stored(password);
  EXPECT_EQ(Get(GetTicketPasswordStringConvertedToEncryption, option).first, 1);
  EXPECT_FALSE(StackHolds(std::string_view(password).substr(8)));
}

TEST(TicketStore, PasswordsThatDoNotOpenCountAsEmpty) {
  const auto get = [](const std::string& value) {
    return Get(GetTicketPasswordStringConvertedToEncryption, value);
  };
  EXPECT_EQ(get("other=1"), Got(0, ""));
  EXPECT_EQ(get("key=not*base64"), Got(0, ""));
  EXPECT_EQ(get("key="), Got(0, ""));
  EXPECT_EQ(get("key=" + std::string(1400, 'A')), Got(0, ""));  // cut to 1023 characters
  for (const std::string& value :
       {Base64("seventeen bytes!!"), Base64(std::string(32, 'z')), Stored(std::string(256, 'p'))}) {
    testing::internal::CaptureStdout();
    EXPECT_EQ(get("key=" + value), Got(1, ""));
    const std::string said = testing::internal::GetCapturedStdout();
    EXPECT_TRUE(said.starts_with("AES Error[")) << said;
    EXPECT_TRUE(said.ends_with("]\nERROR[97]: AES Decrypt failed[99].\n")) << said;
  }
}

}  // namespace
