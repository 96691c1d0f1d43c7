// Looking at values byte by byte.

#include "queue/TextForms.h"

#include <algorithm>
#include <cctype>

namespace {

bool IsNumber(std::string_view text) {
  if (text.starts_with('-')) text.remove_prefix(1);
  const std::size_t point = std::min(text.find('.'), text.size());
  return IsDigits(text.substr(0, point)) &&
         (point == text.size() || IsDigits(text.substr(point + 1)));
}

bool IsClock(std::string_view text) {
  return text.size() == 5 && text[2] == ':' && IsDigits(text.substr(0, 2)) &&
         IsDigits(text.substr(3)) && text.substr(0, 2) < "24" && text.substr(3) < "60";
}

bool IsSeparators(std::string_view text) {
  return text.size() <= 14 && std::ranges::all_of(text, [](unsigned char c) {
           return std::isalnum(c) != 0 || c == ' ' || c == '/' || c == '-' || c == '.';
         });
}

}  // namespace

bool IsDigits(std::string_view text) {
  return !text.empty() && std::ranges::all_of(text, [](char c) { return c >= '0' && c <= '9'; });
}

bool HasForm(Making form, std::string_view text) {
  switch (form) {
    case Making::kDigits:
      return IsDigits(text);
    case Making::kNumber:
      return IsNumber(text);
    case Making::kClock:
      return IsClock(text);
    case Making::kSeparators:
      return IsSeparators(text);
    default:
      return true;
  }
}

std::string FormProblem(Making form, std::string_view text) {
  if (HasForm(form, text)) return {};
  switch (form) {
    case Making::kDigits:
      return "has other characters than digits";
    case Making::kNumber:
      return "is no number";
    case Making::kClock:
      return "is no time of the day such as 22:30";
    default:
      return "is nothing that the printer takes";
  }
}
