// From a test's operands to the options that a user knows.

#include "tools/explain/TestWords.h"

#include <algorithm>
#include <cstdint>
#include <vector>

#include "FilterFrame/Source/UtilityFunctionFilter/PPDAccess.h"
#include "engine/TicketStore.h"
#include "queue/TicketList.h"
#include "queue/TicketRows.h"
#include "tools/explain/RowTests.h"

namespace {

// What the filter itself knows of a job, by the names of its buffers.
constexpr struct {
  std::string_view buffer;
  const char* words;
} kOwnBuffers[] = {{"StdUserName", "the job's user name"},
                   {"HostNameStr", "the computer's name"},
                   {"IPAddressStr", "the computer's address"},
                   {"StdDocumentName", "the job's title"},
                   {"PTStdDocumentName", "the job's title"}};

// "Filled(StdUserName)" looks at StdUserName.
std::string_view Operand(std::string_view source) {
  source.remove_prefix(std::min(source.find('(') + 1, source.size()));
  return source.substr(0, source.find_first_of(",)"));
}

std::string Joined(const std::vector<std::string>& words) {
  std::string text;
  for (std::size_t i = 0; i < words.size(); i++) {
    if (i > 0) text += " or ";
    text += words[i];
  }
  return text;
}

std::string NumberAt(const void* operand) {
  return std::to_string(*static_cast<const std::int32_t*>(operand));
}

std::string TextAt(const void* operand) {
  return *static_cast<const char* const*>(operand);
}

// What a test looks at: options, or something that the filter knows.
std::string Subject(const ComparationItem& test, std::string_view source) {
  const std::string key = TicketKeyOfField(test.left);
  if (!key.empty()) return WaysToSet(key, "");
  const std::string_view name = Operand(source);
  const auto own =
      std::ranges::find_if(kOwnBuffers, [&](const auto& b) { return b.buffer == name; });
  return own != std::end(kOwnBuffers) ? own->words : std::string(name);
}

// Whether the test asks if a ticket is there at all.
bool AsksForPresence(const ComparationItem& test, std::string_view source) {
  return test.compare == IntCampareFunc && Operand(source).ends_with("Absent");
}

std::string Settings(const ComparationItem& test, const std::string& value) {
  const std::string key = TicketKeyOfField(test.left);
  return WaysToSet(key, value);
}

}  // namespace

std::string WaysToSet(std::string_view key, std::string_view value) {
  std::vector<std::string> ways;
  const auto add = [&ways](const std::string& way) {
    if (std::ranges::find(ways, way) == ways.end()) ways.push_back(way);
  };
  for (const TicketRow& row : TicketRows()) {
    if (key != row.ticket || ppdFindOption(JobPPD(), row.option) == nullptr) continue;
    if (value.empty()) {
      add(row.option);
    } else if (row.making == Making::kWord && value == row.word) {
      add(row.choice == std::string_view(kAny) ? row.option
                                               : std::string(row.option) + "=" + row.choice);
    } else if (row.making != Making::kWord) {
      add(std::string(row.option) + "=" + std::string(value));
    }
  }
  if (!ways.empty()) return Joined(ways);
  return ShortKey(key) + (value.empty() ? "" : "=" + std::string(value));
}

std::string TestInWords(const ComparationItem& test, std::string_view source) {
  if (AsksForPresence(test, source)) {
    return "counts only in a job without " + ShortKey(TicketKeyOfField(test.left));
  }
  if (test.compare == IntCampareFunc) {
    return "counts only with " + Settings(test, NumberAt(test.right));
  }
  if (test.compare == IntNoEqualCampareFunc) {
    return "does not count with " + Settings(test, NumberAt(test.right));
  }
  if (test.compare == StrEqualCampareFunc) {
    return "counts only with " + Settings(test, TextAt(test.right));
  }
  const std::string subject = Subject(test, source);
  if (test.compare == StrNoNULLCampareFunc) return "needs " + subject;
  if (test.compare == StrIsNULLCampareFunc) return "counts only without " + subject;
  if (test.compare == StrLengthLessThanCampareFunc) {
    return "counts only where " + subject + " is shorter than " + NumberAt(test.right) + " bytes";
  }
  const bool contains = test.compare == StrContainCampareFunc;
  return std::string(contains ? "counts only" : "does not count") + " where " + subject +
         " has \"" + TextAt(test.right) + "\" in it";
}
