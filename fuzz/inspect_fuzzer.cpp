// The inspector's input: whatever a file holds, the report can be shown and hides what is secret.

#include <algorithm>
#include <cctype>
#include <nlohmann/json.hpp>

#include "fuzz/FuzzSupport.h"
#include "tools/inspect/JobReader.h"
#include "tools/inspect/Reports.h"
#include "tools/inspect/SealedPasswords.h"

namespace {

// As the inspector reports a job without the device's key.
JobReport Inspected(std::string_view job) {
  JobReport report = ReadJob(job);
  JudgePasswords(report, nullptr);
  return report;
}

// A value as short as a word may stand elsewhere too.
bool IsSealed(const Setting& setting) {
  constexpr std::size_t kShortest = 100;
  return setting.row->kind == ValueKind::kSecret && setting.value.size() >= kShortest &&
         std::all_of(setting.value.begin(), setting.value.end(), [](unsigned char c) {
           return std::isalnum(c) || c == '+' || c == '/' || c == '=';
         });
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view job = Text(data, size);
  const JobReport report = Inspected(job);
  Require(report.bytes == size, "every byte is read");
  Require(!report.problems.empty() || (report.exitSequence && report.trailer),
          "a job without its frame is no good one");
  Require(report.problems.empty() == FirstProblem(report).empty(), "the first problem is named");

  const std::string text = TextReport("job", report, {});
  Require(std::none_of(text.begin(), text.end(),
                       [](char c) { return (c >= 0 && c < ' ' && c != '\n') || c == '\x7f'; }),
          "a report holds no control characters");
  for (const Setting& setting : report.settings) {
    if (!IsSealed(setting)) continue;
    Require(text.find(setting.value) == text.npos, "a sealed password is hidden");
  }
  const auto json = nlohmann::json::parse(JsonReport("job", report, {}), nullptr, false);
  Require(!json.is_discarded(), "a report for programs is JSON");
  Require(TextDifference(report, Inspected(job), {}).empty(),
          "a job differs in nothing from itself");
  return 0;
}
