// Taking passwords out of a text.

#include "queue/SecretOptions.h"

#include <openssl/crypto.h>
#include <strings.h>

#include <algorithm>
#include <cctype>
#include <cstring>

#include "FilterFrame/Source/UtilityFunctionFilter/JobOptions.h"
#include "queue/TicketRows.h"

namespace {

constexpr char kMask = '*';

bool IsBlank(char c) {
  return std::isspace(static_cast<unsigned char>(c)) != 0;
}

// Passes over an option's value as libcups reads it: in quotes or braces if it begins so, else up
// to a blank; a backslash takes the next character as it is. Where there is a `secret`, the value's
// characters go there, and asterisks take their place.
char* TakeValue(char* at, std::string* secret) {
  const char first = *at;
  const char end = first == '{' ? '}' : first;
  const bool quoted = first == '\'' || first == '"';
  const bool braced = first == '{';
  if (quoted) at++;
  for (; *at != '\0' && (quoted || braced ? *at != end : !IsBlank(*at)); at++) {
    char* const start = at;
    if (*at == '\\' && at[1] != '\0') at++;
    if (secret == nullptr) continue;
    secret->push_back(*at);
    *start = *at = kMask;
  }
  if (braced && *at != '\0' && secret != nullptr) {
    secret->push_back(*at);
    *at = kMask;
  }
  return *at != '\0' && (quoted || braced) ? at + 1 : at;
}

}  // namespace

bool IsSecretOption(const std::string& name) {
  std::string option = name;
  for (const AttributeRow& row : AttributeRows()) {
    if (strcasecmp(name.c_str(), row.attribute) == 0) option = row.option;
  }
  return std::ranges::any_of(TicketRows(), [&option](const TicketRow& row) {
    return row.making == Making::kPassword && strcasecmp(option.c_str(), row.option) == 0;
  });
}

std::vector<JobOption> TakeJobOptions(char* text) {
  std::vector<JobOption> secrets;
  char* const end = text + std::strlen(text);
  for (char* at = text; at != end;) {
    const char* const name = at;
    while (at != end && *at != '=' && !IsBlank(*at)) at++;
    const std::string option(name, static_cast<const char*>(at));
    while (at != end && IsBlank(*at)) at++;
    if (at != end && *at == '=') {
      std::string secret;
      const bool isSecret = IsSecretOption(option);
      at = TakeValue(at + 1, isSecret ? &secret : nullptr);
      if (isSecret) secrets.push_back({option, secret});
    }
    while (at != end && IsBlank(*at)) at++;
  }
  std::vector<JobOption> options;
  {
    const JobOptions parsed(text);
    for (int i = 0; i < parsed.count(); i++) {
      options.push_back({parsed.list()[i].name, parsed.list()[i].value});
    }
  }
  for (JobOption& option : options) {
    for (const JobOption& secret : secrets) {
      if (strcasecmp(option.name.c_str(), secret.name.c_str()) == 0) option.value = secret.value;
    }
  }
  OPENSSL_cleanse(text, static_cast<std::size_t>(end - text));
  return options;
}
