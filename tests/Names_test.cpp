// A name that no job cuts, and the sending computer's name and address.

#include <arpa/inet.h>
#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "FilterFrame/Source/JobNames.h"
#include "FilterFrame/Source/JobState.h"
#include "FilterFrame/Source/UtilityFunctionFilter/HostIdentity.h"
#include "tests/support/Tickets.h"
#include "text/BoundedText.h"

namespace {

TEST(Names, LongTitlesAreCutToSixtyFourBytes) {
  CopyBounded(StdDocumentName, Repeat("x", 100));
  EXPECT_EQ(InvalidateStdDocumentName(), 100);
  EXPECT_EQ(std::string(StdDocumentName), Repeat("x", 64));
}

TEST(HostIdentity, EncodesAddresses) {
  const std::pair<const char*, const char*> cases[] = {
      {"192.168.0.1", "IC0A80001"},
      {"10.0.0.7", "I0A000007"},
      {"10.0.0.0007", ""},
      {"10.0.0.256", ""},
      {"2001:db8:85a3::8a2e:370:7334", "620010db885a3000000008a2e03707334"},
      {"fe80::1", "6fe8000000000000000000000000000000001"},
      {"fe80::1%en0", "6fe8000000000000000000000000000000001"},
      {"fe80:1:2::3", "6fe800001000200000000000000000003"},
      {"1:2:3:4:5:6:7:8", "6"},
      {"1:2:3:4:5:6:7:0", "6"},  // zeros at the very end are not looked at
      {"1:2:3:4:5:6::", "600010002000300040005000600000000"},
      {"host", ""},
      {"", ""},
  };
  for (const auto& [address, wanted] : cases) {
    char encoded[46];
    EncodeHostAddress(address, encoded);
    EXPECT_STREQ(encoded, wanted) << address;
  }
}

// What is picked from a list of numeric addresses.
std::string Picked(const std::vector<const char*>& numeric) {
  std::vector<sockaddr_in6> addresses(numeric.size());
  std::vector<addrinfo> list(numeric.size());
  for (std::size_t i = 0; i < numeric.size(); i++) {
    auto* v6 = &addresses[i];
    auto* v4 = reinterpret_cast<sockaddr_in*>(v6);
    if (inet_pton(AF_INET6, numeric[i], &v6->sin6_addr) == 1) {
      v6->sin6_family = AF_INET6;
    } else if (inet_pton(AF_INET, numeric[i], &v4->sin_addr) == 1) {
      v4->sin_family = AF_INET;
    }  // else: a family that cannot be formatted
    list[i].ai_addr = reinterpret_cast<sockaddr*>(v6);
    list[i].ai_addrlen = sizeof *v6;
    list[i].ai_next = i + 1 < numeric.size() ? &list[i + 1] : nullptr;
  }
  char out[46];
  outString = out;
  outStringLen = sizeof out;
  CopyBounded(out, "");
  MyPrintAddressArray(list.data(), "host");
  return out;
}

TEST(HostIdentity, PicksTheFirstIPv4OrTheLastIPv6) {
  EXPECT_EQ(Picked({"fe80::1", "2001:db8::5", "10.0.0.7", "10.0.0.8"}), "10.0.0.7");
  EXPECT_EQ(Picked({"2001:db8::5", "2001:db8::9"}), "2001:db8::9");
  EXPECT_EQ(Picked({"127.0.0.1", "fe80::1"}), "");
  EXPECT_EQ(Picked({"127.0.0.1", "2001:db8::5"}), "2001:db8::5");
  EXPECT_TRUE(result);
  EXPECT_EQ(Picked({"2001:db8::5", "no address"}), "2001:db8::5");
  EXPECT_FALSE(result);  // the last one decides
  char out[46];
  EXPECT_TRUE(getHostAddress("127.0.0.1", out, sizeof out));  // passed over, yet it counts
  EXPECT_STREQ(out, "");
  EXPECT_TRUE(getHostAddress("10.1.2.3", out, 5));
  EXPECT_STREQ(out, "10.1");
  EXPECT_TRUE(getHostAddress("10.1.2.3", out, 0));
  EXPECT_FALSE(getHostAddress("10.1.2.3", out, -1));
  EXPECT_FALSE(getHostAddress("10.1.2.3", nullptr, 5));
  EXPECT_FALSE(getHostAddress(nullptr, out, 5));
  EXPECT_FALSE(getHostAddress("name.invalid", out, sizeof out));
  EXPECT_EQ(MyResolveNameToAddress("10.1.2.3"), 1);  // for nobody
}

TEST(HostIdentity, ProgrammingErrorsStopTheProcess) {
  EXPECT_DEATH(MyPrintAddressArray(nullptr, "host"),
               "Assertion failed: \\(addresses != NULL\\), function MyPrintAddressArray, file "
               "FilterFrame/Source/UtilityFunctionFilter");
  EXPECT_DEATH(MyCFHostCleanup(nullptr), "host != NULL");
  EXPECT_DEATH(MyResolveNameToAddress(nullptr), "hostName != NULL");
}

}  // namespace
