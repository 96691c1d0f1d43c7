// Counting.

#include "tools/inspect/JobReport.h"

#include <utility>

namespace {

constexpr std::size_t kMostRemarks = 100;
constexpr std::size_t kExcerpt = 120;

}  // namespace

std::uint64_t PageCount(const PostScriptFacts& facts) {
  if (facts.pages > 0) return facts.pages;
  return facts.own.pageComments > 0 ? facts.own.pageComments : facts.showpages;
}

void JobReport::problem(std::uint64_t atLine, std::string text, std::string_view excerpt) {
  if (problems.size() == kMostRemarks) {
    problemsLeftOut++;
    return;
  }
  problems.push_back({atLine, std::move(text), std::string(excerpt.substr(0, kExcerpt))});
}
