// Composing a watermark.

#include "queue/WatermarkTickets.h"

#include <utf8.h>

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <numbers>

#include "engine/AttributeLine.h"
#include "engine/TicketStore.h"

namespace {

constexpr char kFont[] = "Helvetica-Bold";
constexpr double kCapHeight = 0.72;    // of a capital letter, in font sizes
constexpr double kShareOfPage = 0.85;  // what a fitting watermark takes of width and height
constexpr double kSmallest = 6;
constexpr double kLargest = 400;
constexpr std::string_view kShow = " show\n";

// A line that shows more is cut.
constexpr std::size_t kLongestShown = kLineSize - 1 - kShow.size();

struct Glyph {
  char32_t character;
  int width;  // in thousandths of the font size
  const char* name;
};

constexpr Glyph kGlyphs[] = {
#define GLYPH(character, name, width) {character, width, name},
#include "queue/HelveticaBold.def"
#undef GLYPH
};

// The words of the choices that name a text.
constexpr struct {
  const char* choice;
  const char* text;
} kTexts[] = {{"Draft", "DRAFT"}, {"Confidential", "CONFIDENTIAL"}, {"Copy", "COPY"}};

const Glyph* FindGlyph(char32_t character) {
  const auto* found = std::ranges::lower_bound(kGlyphs, character, {}, &Glyph::character);
  return found != std::end(kGlyphs) && found->character == character ? found : nullptr;
}

bool IsPlain(char32_t character) {
  return character >= ' ' && character <= '~';
}

std::string Fixed(double value) {
  char text[32];
  std::snprintf(text, sizeof text, "%.2f", value);
  return text;
}

// The text that the options ask for, as the user means it.
std::string WantedText(const Choice& choice) {
  for (const auto& known : kTexts) {
    if (choice.keyword == known.choice) return known.text;
  }
  return choice.entered;
}

// The largest whole size at which text of this width, turned by `angle` degrees, fits the page.
double FittingSize(double width, double angle, PageSize page) {
  const double radians = angle * std::numbers::pi / 180;
  const double across = std::fabs(std::cos(radians));
  const double along = std::fabs(std::sin(radians));
  const double size = std::min(page.width * kShareOfPage / (width * across + kCapHeight * along),
                               page.height * kShareOfPage / (width * along + kCapHeight * across));
  return std::clamp(std::floor(size), kSmallest, kLargest);
}

double Number(const std::string& text) {
  return std::strtod(text.c_str(), nullptr);
}

double FontSize(const Choices& choices, const TicketList& tickets, double width, PageSize page) {
  if (const std::string* given = tickets.find(TICKET_KEY("WMARKFontSizeTicket"))) {
    return Number(*given);
  }
  const Choice size = choices.choice("ZLVWatermarkSize");
  if (size.keyword == "Custom") return Number(size.entered);
  if (!size.keyword.empty() && size.keyword != "Fit") return Number(size.keyword);
  const std::string* angle = tickets.find(TICKET_KEY("WMARKAngleTicket"));
  return FittingSize(width, angle != nullptr ? Number(*angle) : 0, page);
}

bool IsFontName(std::string_view name) {
  return !name.empty() && name.size() <= 64 && std::ranges::all_of(name, [](unsigned char c) {
    return std::isalnum(c) != 0 || c == '-' || c == '_' || c == '.' || c == '+';
  });
}

}  // namespace

std::string ShownText(std::string_view text, double& width) {
  width = 0;
  if (!utf8::is_valid(text.begin(), text.end())) return {};
  std::string shown = "(";
  bool emptyString = true;  // the string that is open has no character yet
  for (auto at = text.begin(); at != text.end();) {
    const char32_t character = utf8::next(at, text.end());
    const Glyph* glyph = FindGlyph(character);
    if (glyph == nullptr) return {};
    width += glyph->width / 1000.0;
    if (IsPlain(character)) {
      if (character == '(' || character == ')' || character == '\\') shown.push_back('\\');
      shown.push_back(static_cast<char>(character));
      emptyString = false;
      continue;
    }
    // By its name, whatever the font's encoding is.
    if (emptyString) {
      shown.pop_back();
    } else {
      shown += ")show";
    }
    shown.append("/").append(glyph->name).append(" glyphshow(");
    emptyString = true;
  }
  shown.append(")");
  // A blank in front, lest the filter takes it for a list of bytes.
  return shown.starts_with('/') ? " " + shown : shown;
}

bool IsOnePostScriptString(std::string_view text) {
  if (text.size() < 2) return false;
  if (text.front() == '<') {
    return text.back() == '>' &&
           std::ranges::all_of(text.substr(1, text.size() - 2),
                               [](unsigned char c) { return std::isxdigit(c); });
  }
  if (text.front() != '(') return false;
  int depth = 0;
  for (std::size_t i = 0; i < text.size(); i++) {
    const unsigned char c = static_cast<unsigned char>(text[i]);
    if (c < ' ') return false;
    if (c == '\\') {
      i++;
    } else if (c == '(') {
      depth++;
    } else if (c == ')' && --depth == 0) {
      return i + 1 == text.size();
    }
  }
  return false;
}

std::string AddWatermarkTickets(const Choices& choices, PageSize page, TicketList& tickets,
                                std::string& definitions) {
  const std::string* name = tickets.find(TICKET_KEY("WMARKNameTicket"));
  if (name == nullptr || name->empty()) return {};
  const std::string source = "ZLVWatermark";
  std::string text = WantedText(choices.choice("ZLVWatermark"));
  std::string shown;
  double width = 0;
  if (const std::string* given = tickets.find(TICKET_KEY("WMARKTextTicket"))) {
    text = *given;
    if (IsOnePostScriptString(text)) {
      if (text.size() > kLongestShown) return "its text is too long";
      shown = text;
      text = text.substr(1, text.size() - 2);
    }
  }
  if (text.empty()) return "it has no text";
  const std::string composed = ShownText(text, width);
  if (shown.empty()) shown = composed;
  if (shown.empty()) return "the font " + std::string(kFont) + " lacks a character of its text";
  if (shown.size() > kLongestShown) {
    definitions = "/ZLVWatermarkText{" + shown + "show}bind def\n";
    shown = kDefinedWatermarkText;
  }
  tickets.remove(TICKET_KEY("WMARKTextTicket"));
  tickets.add({TICKET_KEY("WMARKTextTicket"), shown, source});
  tickets.add({TICKET_KEY("WMARKFontTicket"), kFont, source});
  if (!IsFontName(*tickets.find(TICKET_KEY("WMARKFontTicket")))) return "its font has no such name";

  const double size = FontSize(choices, tickets, std::max(width, 0.1), page);
  const auto add = [&](const char* key, const std::string& value) {
    tickets.add({key, value, source});
  };
  add(TICKET_KEY("WMARKFontSizeTicket"), std::to_string(std::lround(size)));
  add(TICKET_KEY("WMARKWidthTicket"), Fixed(width * size));
  add(TICKET_KEY("WMARKHeightTicket"), Fixed(kCapHeight * size));
  add(TICKET_KEY("WMARKOrientationTicket"), "1");
  add(TICKET_KEY("WMARKPaperWidthTicket"), std::to_string(std::lround(page.width)));
  add(TICKET_KEY("WMARKPaperHeightTicket"), std::to_string(std::lround(page.height)));
  add(TICKET_KEY("WMARKhOffsetTicket"), "0");
  add(TICKET_KEY("WMARKvOffsetTicket"), "0");
  return {};
}
