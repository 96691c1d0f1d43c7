// The text is what the queue filter composes, or what a print dialog gave.

#include "tools/inspect/WatermarkText.h"

#include <algorithm>
#include <cstddef>

#include "queue/WatermarkTickets.h"

namespace {

constexpr std::string_view kGlyphShow = " glyphshow";
constexpr std::string_view kShow = "show";

// The length of the string that `text` begins with; 0 when it begins with none that is closed.
std::size_t StringLength(std::string_view text) {
  if (text.starts_with('<')) {
    const std::size_t end = text.find_first_not_of("0123456789abcdefABCDEF", 1);
    return end != text.npos && text[end] == '>' ? end + 1 : 0;
  }
  int depth = 0;
  for (std::size_t at = 0; at < text.size(); at++) {
    if (text[at] == '\\') {
      at++;
    } else if (text[at] == '(') {
      depth++;
    } else if (text[at] == ')' && --depth == 0) {
      return at + 1;
    }
    if (depth == 0) return 0;
  }
  return 0;
}

// The length of a glyph's name with its operator; 0 when `text` does not begin so.
std::size_t GlyphLength(std::string_view text) {
  if (!text.starts_with('/')) return 0;
  const std::size_t end = text.find_first_of(" ()<>[]{}/%", 1);
  return end != text.npos && text.substr(end).starts_with(kGlyphShow) ? end + kGlyphShow.size() : 0;
}

}  // namespace

bool IsWatermarkText(std::string_view text) {
  if (text == kDefinedWatermarkText) return true;
  if (text.starts_with(' ')) text.remove_prefix(1);
  for (;;) {
    if (const std::size_t glyph = GlyphLength(text); glyph > 0) {
      text.remove_prefix(glyph);
      continue;
    }
    const std::size_t length = StringLength(text);
    text.remove_prefix(length);
    if (length == 0 || text.empty()) return length > 0;
    if (!text.starts_with(kShow)) return false;
    text.remove_prefix(kShow.size());
  }
}
