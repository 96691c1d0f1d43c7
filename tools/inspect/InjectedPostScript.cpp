// The insertions, as the watermark and finishing modules write them.

#include "tools/inspect/InjectedPostScript.h"

#include <algorithm>
#include <iterator>

namespace {

// One row for each kind.
constexpr struct {
  InjectionKind kind;
  const char* name;
  const char* key;
} kNames[] = {
    {InjectionKind::kWatermarkProlog, "watermark definitions", "watermark-prolog"},
    {InjectionKind::kWatermarkPageSetup, "watermark page setup", "watermark-page-setup"},
    {InjectionKind::kWatermarkText, "watermark", "watermark-text"},
    {InjectionKind::kSeparatorPages, "separator pages", "separator-pages"},
    {InjectionKind::kImageShift, "booklet image shift", "image-shift"},
    {InjectionKind::kAutoScale, "booklet auto-scale", "auto-scale"},
};

const auto& NamesOf(InjectionKind kind) {
  return *std::find_if(std::begin(kNames), std::end(kNames),
                       [kind](const auto& row) { return row.kind == kind; });
}

constexpr std::string_view kProlog =
    "userdict/fffInfo 2 dict dup begin\n"
    "/fffpgsave 0 def\n"
    "/fffbp{/fffpgsave save restore} bind def\n";
constexpr std::string_view kPageSetup = "fffbp\n";

constexpr std::string_view kTextEnd = "grestore\n";
constexpr std::string_view kSelectFont = " selectfont\n";
constexpr std::string_view kRotate = " rotate\n";
constexpr std::string_view kShow = " show\n";

constexpr std::string_view kSnippetBegin = "[{\n%%BeginNonPPDFeatures\n";
constexpr std::string_view kSnippetEnd = "%%EndNonPPDFeatures\n} stopped cleartomark\n";

// What a snippet holds, by the operator it calls; its detail stands between two texts.
constexpr struct {
  std::string_view call;
  InjectionKind kind;
  std::string_view before;
  std::string_view behind;
} kSnippets[] = {
    {"setcoverseparator", InjectionKind::kSeparatorPages, "SeparatorPages[", "]put"},
    {"setsignatureimageshift", InjectionKind::kImageShift, "", ".000/Custom"},
    {"setsignatureautoscale", InjectionKind::kAutoScale, "known {get ", " exch"},
};

std::string_view Between(std::string_view text, std::string_view before, std::string_view behind) {
  const std::size_t start = text.find(before);
  if (start == text.npos) return {};
  text.remove_prefix(start + before.size());
  const std::size_t end = text.rfind(behind);
  return end == text.npos ? std::string_view() : text.substr(0, end);
}

// The text that restores the page's own state stands for a watermark's beginning.
std::string_view WatermarkStart(const PostScriptToken& token) {
  if (token.line == "ep") return "pgsave restore /pgsave save store gsave\n";
  if (token.line == "endp") return "pm restore /pm save store gsave\n";
  return {};
}

void FindWatermark(std::string_view start, std::string_view before,
                   std::vector<FoundInjection>& found) {
  if (start.empty() || !before.ends_with(kTextEnd)) return;
  const std::size_t at = before.rfind(start);
  if (at == before.npos) return;
  std::string_view body = before.substr(at + start.size());
  const std::size_t rotate = body.find(kRotate);
  if (rotate == body.npos || body.find(kSelectFont) > rotate) return;
  FoundInjection watermark = {InjectionKind::kWatermarkText, at, {}};
  body.remove_prefix(rotate + kRotate.size());
  if (body.size() < kTextEnd.size()) return;
  body.remove_suffix(kTextEnd.size());
  watermark.whole = body.ends_with(kShow);
  if (watermark.whole) body.remove_suffix(kShow.size());
  watermark.detail = body;
  found.push_back(watermark);
}

void FindSnippets(std::string_view before, std::vector<FoundInjection>& found) {
  while (before.ends_with(kSnippetEnd)) {
    const std::size_t at = before.rfind(kSnippetBegin);
    if (at == before.npos) return;
    std::string_view body = before.substr(at + kSnippetBegin.size());
    body.remove_suffix(kSnippetEnd.size());
    for (const auto& snippet : kSnippets) {
      if (body.find(snippet.call) == body.npos) continue;
      found.insert(found.begin(),
                   {snippet.kind, at, Between(body, snippet.before, snippet.behind)});
    }
    before = before.substr(0, at);
  }
}

}  // namespace

const char* InjectionName(InjectionKind kind) {
  return NamesOf(kind).name;
}

const char* InjectionKey(InjectionKind kind) {
  return NamesOf(kind).key;
}

std::vector<FoundInjection> InjectionsBefore(const PostScriptToken& token,
                                             std::string_view before) {
  std::vector<FoundInjection> found;
  if (token.hookPlace != HookPlace::kBefore) return found;
  FindWatermark(WatermarkStart(token), before, found);
  FindSnippets(before, found);
  return found;
}

ExpectedInjection InjectionAfter(const PostScriptToken& token) {
  if (token.line == "%%BeginProlog") return {InjectionKind::kWatermarkProlog, kProlog};
  if (token.line == "%%EndPageSetup") return {InjectionKind::kWatermarkPageSetup, kPageSetup};
  return {};
}
