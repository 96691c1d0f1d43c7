// Why a line is in the header, or is not.

#include <algorithm>

#include "queue/TicketKeys.h"
#include "tools/dialect/Dialect.h"
#include "tools/explain/Candidates.h"
#include "tools/explain/Explanation.h"
#include "tools/explain/RowTests.h"

namespace {

constexpr std::size_t kMostCauses = 8;

bool HasCode(const std::vector<std::string>& lines, std::string_view code) {
  return std::ranges::any_of(lines, [&](const auto& line) { return CodeOfLine(line) == code; });
}

std::vector<std::string> WithCode(const std::vector<std::string>& lines, std::string_view code) {
  std::vector<std::string> found;
  for (const std::string& line : lines) {
    if (CodeOfLine(line) == code) found.push_back(line);
  }
  return found;
}

LineExplanation::Row InWords(const RowState& state) {
  LineExplanation::Row row = {state.table->name, state.name, state.holds(), {}, {}, {}, {}};
  if (!state.used) row.notUsed = "this printer does not get the lines of this table";
  for (const TestState& test : state.tests) {
    row.tests.push_back(test.source);
    row.holds.push_back(test.holds);
    if (!test.holds) row.failed.push_back("it " + test.words);
  }
  return row;
}

}  // namespace

std::string CodeOfLine(std::string_view line) {
  const auto parts = TakeApart(line);
  return parts ? std::string(parts->code) : std::string();
}

// What the line is there for: tickets without which it would be another one, or none.
std::vector<std::string> Explainer::causesOf(std::string_view code) const {
  std::vector<std::string> causes;
  const std::vector<std::string> now = WithCode(job_.lines, code);
  for (const JobTicket& ticket : job_.tickets) {
    if (WithCode(trial_.linesOf(job_, ticket.key), code) == now) continue;
    const bool own = ticket.source == kGivenByJob;
    std::string cause =
        own ? ShortKey(ticket.key) + (ticket.secret ? "" : "=" + ticket.value) : ticket.source;
    if (ticket.secret) cause.resize(std::min(cause.find('='), cause.size()));
    if (std::ranges::find(causes, cause) == causes.end()) causes.push_back(cause);
  }
  return causes;
}

// What would make code write the line: every choice of the PPD, tried out.
std::vector<std::string> Explainer::waysTo(std::string_view code) const {
  std::vector<std::string> ways;
  const Choices choices(trial_.ppd(), options(kAll));
  for (const std::string& key : TicketKeys()) {
    for (const TicketSetting& setting : SettingsOf(key, choices)) {
      if (!HasCode(trial_.linesOf(job_, key, setting.value.c_str()), code)) continue;
      ways.push_back(setting.words);
      if (ways.size() == kMostCauses) return ways;
    }
  }
  return ways;
}

LineExplanation Explainer::explainLine(std::string_view code) const {
  LineExplanation found;
  found.failure = job_.failure;
  found.lines = WithCode(job_.lines, code);
  trial_.run(options(kAll));  // the records are those of the job
  for (const RowState& state : RowsOfCode(code)) found.rows.push_back(InWords(state));
  std::ranges::stable_sort(found.rows, {}, [](const auto& row) {
    return row.failed.size() + (row.notUsed.empty() ? 0 : row.tests.size());
  });
  if (!found.lines.empty()) found.causes = causesOf(code);
  if (found.lines.empty() && found.rows.empty()) found.causes = waysTo(code);
  return found;
}
