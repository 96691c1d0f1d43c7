// The messages by their numbers.

#include "tools/inspect/LibraryMessages.h"

#include <algorithm>
#include <iterator>

#include "FilterFrame/Source/UtilityFunctionFilter/JobOptions.h"
#include "tools/dialect/ByteSearch.h"

namespace {

constexpr struct {
  int code;
  const char* meaning;
} kErrors[] = {
    {88, "a password is too long to be sealed"},
    {106, "the device key is of an unknown type"},
    {97, "a stored password does not open: it is damaged or was made for another deployment"},
    {84, "a stored password does not open: the cryptography library failed"},
    {150, "a password was not sealed: the deployment's device key does not work"},
    {161, "a password was not sealed: the cryptography library failed"},
    {131, "a password was not sealed: the cryptography library failed"},
    {114, "a password was not sealed: there were no random bytes"},
    {122, "a password was not sealed: there were no random bytes"},
    {139, "a password was not sealed: there were no random bytes"},
};
constexpr std::string_view kBeginnings[] = {"ERROR[", "AES Error", "RSA Error[",
                                            "Generate Random Error["};

}  // namespace

bool IsLibraryMessage(std::string_view text) {
  return std::any_of(std::begin(kBeginnings), std::end(kBeginnings),
                     [&](std::string_view begin) { return text.starts_with(begin); });
}

std::vector<LibraryMessage> ExplainLibraryMessages(std::string_view text) {
  constexpr std::string_view kError = "ERROR[";
  std::vector<LibraryMessage> messages;
  for (std::size_t at = text.find(kError); at != text.npos; at = text.find(kError, at + 1)) {
    const int code = DecimalInteger(std::string(text.substr(at + kError.size(), 4)).c_str());
    const auto* known = std::find_if(std::begin(kErrors), std::end(kErrors),
                                     [&](const auto& error) { return error.code == code; });
    if (known == std::end(kErrors)) continue;
    messages.push_back({CountLineEnds(text.substr(0, at)), std::string(": ") + known->meaning,
                        text.substr(at, text.find('\n', at) - at)});
  }
  if (messages.empty()) messages.push_back({0, {}, text.substr(0, text.find('\n'))});
  return messages;
}
