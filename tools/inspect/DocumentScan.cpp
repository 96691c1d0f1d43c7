// Pages and insertions, as the token lines come.

#include "tools/inspect/DocumentScan.h"

#include <algorithm>
#include <utility>

#include "tools/dialect/ByteSearch.h"
#include "tools/inspect/WatermarkText.h"

namespace {

constexpr std::size_t kMostPageRanges = 50;

}  // namespace

std::optional<Remark> DocumentScan::beforeToken(const PostScriptToken& token, JobPlace place) {
  if (token.endsPage) facts_.pages++;
  if (token.line == "showpage") facts_.showpages++;
  std::optional<Remark> fault;
  for (const FoundInjection& found : InjectionsBefore(token, tail_)) {
    const std::string_view from = std::string_view(tail_).substr(found.at);
    const JobPlace begin = {place.line - CountLineEnds(from), place.offset - from.size()};
    count(found, token.endsPage ? facts_.pages : 0, begin);
    if (found.whole && found.kind == InjectionKind::kWatermarkText &&
        !IsWatermarkText(found.detail)) {
      fault = {begin.line, "the watermark's text is no PostScript that shows a text",
               std::string(found.detail)};
    }
    if (found.whole) continue;
    fault = {begin.line, "the watermark's text is cut off, which breaks the PostScript",
             std::string(found.detail)};
  }
  return fault;
}

void DocumentScan::afterToken(const PostScriptToken& token, JobPlace place) {
  tail_.clear();
  expected_ = InjectionAfter(token);
  expectedMatched_ = 0;
  expectedPlace_ = place;
  behindPageEnd_ = token.endsPage;
}

void DocumentScan::matchExpected(std::string_view bytes) {
  if (std::exchange(behindPageEnd_, false)) endIsProcedure_ = bytes.starts_with('}');
  if (expected_.text.empty()) return;
  const std::string_view rest = expected_.text.substr(expectedMatched_);
  const std::size_t length = std::min(rest.size(), bytes.size());
  if (bytes.substr(0, length) != rest.substr(0, length)) {
    expected_ = {};
    return;
  }
  expectedMatched_ += length;
  if (expectedMatched_ < expected_.text.size()) return;
  const bool onPage = expected_.kind == InjectionKind::kWatermarkPageSetup;
  const std::uint64_t page = facts_.pages + (endIsProcedure_ ? 0 : 1);
  count({expected_.kind, 0, {}}, onPage ? page : 0, expectedPlace_);
  expected_ = {};
}

void DocumentScan::count(const FoundInjection& found, std::uint64_t page, JobPlace place) {
  auto& all = facts_.injections;
  auto same = std::find_if(all.begin(), all.end(),
                           [&](const Injection& known) { return known.kind == found.kind; });
  if (same == all.end()) {
    same = all.insert(all.end(),
                      {found.kind, std::string(found.detail), 0, place.line, place.offset, {}});
  }
  same->count++;
  if (page == 0) return;
  auto& pages = same->pages;
  if (!pages.empty() && page <= pages.back().second + 1) {
    pages.back().second = page;
  } else if (pages.size() < kMostPageRanges) {
    pages.emplace_back(page, page);
  }
}

void DocumentScan::take(std::string_view bytes, std::uint64_t line) {
  facts_.bytes += bytes.size();
  comments_.take(bytes, line);
  if (bytes.size() >= kInjectionReach) {
    tail_ = bytes.substr(bytes.size() - kInjectionReach);
    return;
  }
  tail_ += bytes;
  if (tail_.size() > 2 * kInjectionReach) tail_.erase(0, tail_.size() - kInjectionReach);
}
