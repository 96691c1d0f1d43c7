// Escaping and hiding.

#include "tools/dialect/DisplayText.h"

#include <utf8.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <iterator>

#include "tools/dialect/Dialect.h"

namespace {

constexpr std::string_view kHidden = "(hidden)";

// A sealed password has 492 characters and more; an account's name has not.
constexpr std::size_t kShortestSealed = 100;
constexpr std::string_view kBase64 =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/=";

std::string EscapedByte(unsigned byte) {
  char text[8];
  std::snprintf(text, sizeof text, "\\x%02x", byte);
  return text;
}

std::string EscapedCharacter(unsigned character) {
  if (character < 0x100) return EscapedByte(character);
  char text[16];
  std::snprintf(text, sizeof text, "\\u{%x}", character);
  return text;
}

// Control characters, line and paragraph separators, and what turns the writing direction.
bool IsHarmless(std::uint32_t character) {
  if (character < 0x20 || (character >= 0x7F && character < 0xA0)) return false;
  if (character == 0x200E || character == 0x200F || character == 0x061C) return false;
  if (character >= 0x2028 && character <= 0x202E) return false;
  return character < 0x2066 || character > 0x2069;
}

void AppendPrintable(std::uint32_t character, std::string& out) {
  if (IsHarmless(character)) {
    utf8::unchecked::append(character, std::back_inserter(out));
  } else {
    out += EscapedCharacter(character);
  }
}

// Calls character(code) and rubbish(byte) for the text's parts in turn.
template <typename Character, typename Rubbish>
void Walk(std::string_view bytes, Charset charset, Character character, Rubbish rubbish) {
  if (charset == Charset::kLatin1) {
    for (char byte : bytes) character(static_cast<unsigned char>(byte));
    return;
  }
  auto at = bytes.begin();
  while (at != bytes.end()) {
    const auto invalid = utf8::find_invalid(at, bytes.end());
    while (at != invalid) character(utf8::unchecked::next(at));
    if (at != bytes.end()) rubbish(static_cast<unsigned char>(*at++));
  }
}

// The end of a secret that begins at `from`: its line's last quote, or the end of its line or of
// what is left of it in front of another. It may hold quotes itself.
std::size_t EndOfSecret(std::string_view bytes, std::size_t from) {
  std::string_view rest = bytes.substr(from);
  rest = rest.substr(0, std::min(rest.find_first_of("\r\n"), rest.find("@PJL ")));
  return from + std::min(rest.rfind('"'), rest.size());
}

// Whether `before`, which ends in the equals sign, ends in the name of a secret.
const DialectRow* SecretNamedAt(std::string_view before) {
  before.remove_suffix(1);
  for (const DialectRow& row : DialectRows()) {
    if (row.kind == ValueKind::kSecret && before.ends_with(row.code)) return &row;
  }
  return nullptr;
}

}  // namespace

std::string Decoded(std::string_view bytes, Charset charset) {
  std::string text;
  const auto append = [&](std::uint32_t character) {
    utf8::unchecked::append(character, std::back_inserter(text));
  };
  Walk(bytes, charset, append, [&](unsigned) { append(0xFFFD); });
  return text;
}

std::string Printable(std::string_view bytes, Charset charset) {
  std::string text;
  Walk(
      bytes, charset, [&](std::uint32_t character) { AppendPrintable(character, text); },
      [&](unsigned byte) { text += EscapedByte(byte); });
  return text;
}

std::string WithoutSecrets(std::string_view bytes) {
  std::string text;
  std::size_t run = 0;  // Base64 characters that the text ends with
  const auto hideLongRun = [&] {
    if (run >= kShortestSealed) text.replace(text.size() - run, run, kHidden);
    run = 0;
  };
  for (std::size_t at = 0; at < bytes.size();) {
    const char c = bytes[at++];
    text += c;
    if (kBase64.find(c) == kBase64.npos) {
      text.pop_back();
      hideLongRun();
      text += c;
      continue;
    }
    run++;
    const DialectRow* secret = c == '=' ? SecretNamedAt(bytes.substr(0, at)) : nullptr;
    if (secret == nullptr) continue;
    hideLongRun();
    if (secret->form == LineForm::kVariable && bytes.substr(at).starts_with('"'))
      text += bytes[at++];
    const std::size_t end = EndOfSecret(bytes, at);
    if (end > at) text += kHidden;
    at = end;
  }
  hideLongRun();
  return text;
}

std::size_t Columns(std::string_view text) {
  return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), [](char c) {
    return (static_cast<unsigned char>(c) & 0xC0) != 0x80;
  }));
}
