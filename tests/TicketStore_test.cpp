// Job options become option records.

#include "engine/TicketStore.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "FilterFrame/Source/UtilityFunctionFilter/JobOptions.h"
#include "engine/StoredPassword.h"
#include "tests/support/Password.h"
#include "tests/support/Tickets.h"

namespace {

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
      {"/9", "/9", "\t", "\t"},
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
std::pair<int, std::string> Get(TicketGetter* getter, const std::string& optionsText) {
  const JobOptions options(optionsText.c_str());
  char text[2048];
  std::fill_n(text, sizeof text, 'x');
  const int result = getter("key", options.count(), options.list(), text, sizeof text);
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

TEST(TicketStore, SealsStoredPasswordsForTheDevice) {
  for (const std::string& password :
       {std::string("secret"), std::string(), std::string(255, 'p'), std::string("\u00E9\u20AC")}) {
    const auto [result, text] =
        Get(GetTicketPasswordStringConvertedToEncryption, "key=" + Stored(password));
    EXPECT_EQ(result, 1);
    EXPECT_EQ(Opened(text), password);
    EXPECT_EQ(StoredPassword(password), password.empty() ? "" : Stored(password));
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
  EXPECT_EQ(StoredPassword(std::string(256, 'p')), "");
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
