// Distances between names.

#include "text/NearestName.h"

#include <algorithm>
#include <numeric>
#include <vector>

namespace {

constexpr std::size_t kLongestName = 200;  // longer ones are near to nothing

char Lower(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

// The number of single changes that turn one name into the other; two letters exchanged are one.
std::size_t Distance(std::string_view a, std::string_view b) {
  std::vector<std::size_t> before(b.size() + 1);
  std::vector<std::size_t> last(b.size() + 1);
  std::vector<std::size_t> now(b.size() + 1);
  std::iota(last.begin(), last.end(), std::size_t{0});
  for (std::size_t i = 1; i <= a.size(); i++) {
    now[0] = i;
    for (std::size_t j = 1; j <= b.size(); j++) {
      const char left = Lower(a[i - 1]);
      const char right = Lower(b[j - 1]);
      now[j] = std::min({last[j] + 1, now[j - 1] + 1, last[j - 1] + (left != right ? 1U : 0U)});
      if (i > 1 && j > 1 && left == Lower(b[j - 2]) && Lower(a[i - 2]) == right) {
        now[j] = std::min(now[j], before[j - 2] + 1);
      }
    }
    before.swap(last);
    last.swap(now);
  }
  return last[b.size()];
}

}  // namespace

std::string NearestName(std::string_view name, std::span<const std::string> candidates) {
  std::string nearest;
  if (name.size() > kLongestName) return nearest;
  std::size_t least = name.size() / 3 + 1;
  for (const std::string& candidate : candidates) {
    if (candidate.size() > kLongestName) continue;
    const std::size_t distance = Distance(name, candidate);
    if (distance < least) {
      least = distance;
      nearest = candidate;
    }
  }
  return nearest;
}
