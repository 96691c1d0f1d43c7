// The searches. Ordinary lines are never looked at one by one: a search over the whole block for a
// line end with two percent signs behind it, written so that compilers turn it into vector
// instructions, finds the few places that deserve a comparison.

#include "queue/DocumentStructure.h"

#include <algorithm>
#include <charconv>
#include <string_view>

namespace {

using Found = DocumentStructure::Found;

constexpr std::string_view kBeginDocument = "%%BeginDocument";
constexpr std::string_view kEndDocument = "%%EndDocument";
constexpr std::string_view kBeginData = "%%BeginData:";
constexpr std::string_view kBeginBinary = "%%BeginBinary:";

// Lines that begin so, and what they are.
constexpr struct {
  std::string_view text;
  Found meaning;
} kComments[] = {
    {kBeginDocument, Found::kNothing},
    {kEndDocument, Found::kNothing},
    {kBeginData, Found::kNothing},
    {kBeginBinary, Found::kNothing},
    {"%%BeginProlog", Found::kBeginSection},
    {"%%BeginSetup", Found::kBeginSection},
    {"%%EndProlog", Found::kEndSection},
    {"%%EndSetup", Found::kEndSection},
    {"%%Page:", Found::kPage},
    {"%%Trailer", Found::kTrailer},
    {"%%EOF", Found::kTrailer},
};

std::string_view TextBetween(const char* begin, const char* end) {
  return {begin, static_cast<std::size_t>(end - begin)};
}

// Whether a line of interest may begin at `at`: 1 or 0. In bytes and without branches, since it is
// evaluated for many places at once.
using Flag = unsigned char;
template <bool kWithMarks>
Flag MayBegin(const char* at) {
  const auto behindLineEnd = static_cast<Flag>(Flag{at[-1] == '\n'} | Flag{at[-1] == '\r'});
  auto begins = static_cast<Flag>(Flag{at[0] == '%'} & Flag{at[1] == '%'});
  if constexpr (kWithMarks) {
    begins = static_cast<Flag>(begins | Flag{at[0] == 'b'} | Flag{at[0] == 'e'});
  }
  return behindLineEnd & begins;
}

// The first place in [from, end) where such a line may begin, or end; *end is readable.
template <bool kWithMarks>
[[gnu::always_inline]] inline const char* FindCandidate(const char* from, const char* end) {
  constexpr std::ptrdiff_t kStride = 64;
  for (; end - from >= kStride; from += kStride) {
    Flag found = 0;
    for (std::ptrdiff_t i = 0; i < kStride; i++) {
      found = static_cast<Flag>(found | MayBegin<kWithMarks>(from + i));
    }
    if (found != 0) break;
  }
  return std::find_if(from, end, [](const char& c) { return MayBegin<kWithMarks>(&c) != 0; });
}

FOR_WIDER_VECTORS const char* FindComment(const char* from, const char* end) {
  return FindCandidate<false>(from, end);
}

FOR_WIDER_VECTORS const char* FindCommentOrMark(const char* from, const char* end) {
  return FindCandidate<true>(from, end);
}

// Whether a line with these first bytes (perhaps not all there yet) may be one of interest.
bool MayMatter(std::string_view begun) {
  if (begun[0] != '%') return true;
  return std::any_of(std::begin(kComments), std::end(kComments), [begun](const auto& comment) {
    return comment.text.starts_with(begun.substr(0, comment.text.size()));
  });
}

std::string_view TakeWord(std::string_view& text) {
  text.remove_prefix(std::min(text.find_first_not_of(" \t"), text.size()));
  const std::string_view word = text.substr(0, text.find_first_of(" \t"));
  text.remove_prefix(word.size());
  return word;
}

}  // namespace

LineEnd FindLineEnd(const char* line, const char* end, bool isLast) {
  const char* text = std::find_if(line, end, [](char c) { return c == '\n' || c == '\r'; });
  if (text == end) return {};
  if (*text == '\n') return {text, text + 1};
  if (text + 1 == end) return isLast ? LineEnd{text, end} : LineEnd{};
  return {text, text + (text[1] == '\n' ? 2 : 1)};
}

Found DocumentStructure::next(const char*& at, const char* end, bool isLast, bool withMarks) {
  for (;;) {
    skipCounted(at, end, isLast);
    if (at == end || linesToSkip_ > 0) return Found::kNothing;
    at = withMarks ? FindCommentOrMark(at, end - 1) : FindComment(at, end - 1);
    if (at == end - 1) {
      if (isLast) at = end;
      return Found::kNothing;
    }
    const char* limit = at + std::min<std::ptrdiff_t>(end - at, kLongestLine);
    if (!MayMatter(TextBetween(at, limit))) {
      at++;
      continue;
    }
    const LineEnd lineEnd = FindLineEnd(at, limit, isLast);
    if (lineEnd.text == nullptr) {
      if (!isLast && limit - at < static_cast<std::ptrdiff_t>(kLongestLine)) return Found::kNothing;
      at++;
      continue;
    }
    const Found found = understand(at, lineEnd.text);
    at = lineEnd.next;
    if (found != Found::kNothing) return found;
  }
}

// A line of interest in a document: what it means, and what follows from it for the next ones.
Found DocumentStructure::understand(const char* line, const char* end) {
  const std::string_view text = TextBetween(line, end);
  if (text.starts_with(kBeginDocument)) embedded_++;
  if (text.starts_with(kBeginData)) beginData(line + kBeginData.size(), end);
  if (text.starts_with(kBeginBinary)) beginData(line + kBeginBinary.size(), end);
  if (embedded_ > 0) {
    if (text.starts_with(kEndDocument)) embedded_--;
    return Found::kNothing;
  }
  for (const auto& comment : kComments) {
    if (text.starts_with(comment.text)) return comment.meaning;
  }
  if (text == "bp") return Found::kBeginMark;
  if (text == "ep" || text == "endp") return Found::kEndMark;
  return Found::kNothing;
}

// Behind "%%BeginData:" stand a count, a kind of data, and what is counted.
void DocumentStructure::beginData(const char* text, const char* end) {
  std::string_view words = TextBetween(text, end);
  const std::string_view number = TakeWord(words);
  std::uint64_t count = 0;
  std::from_chars(number.data(), number.data() + number.size(), count);
  TakeWord(words);
  (TakeWord(words) == "Lines" ? linesToSkip_ : bytesToSkip_) = count;
}

void DocumentStructure::skipCounted(const char*& at, const char* end, bool isLast) {
  const std::uint64_t bytes = std::min(bytesToSkip_, static_cast<std::uint64_t>(end - at));
  bytesToSkip_ -= bytes;
  at += bytes;
  while (linesToSkip_ > 0 && at != end) {
    const LineEnd lineEnd = FindLineEnd(at, end, isLast);
    if (lineEnd.text == nullptr) {
      // A CR at the very end may be the first half of a line end.
      at = !isLast && end[-1] == '\r' ? end - 1 : end;
      return;
    }
    at = lineEnd.next;
    linesToSkip_--;
  }
}
