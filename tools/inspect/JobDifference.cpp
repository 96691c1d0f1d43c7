// Two jobs compared entry by entry: the first line of a name with the first, the second with the
// second.

#include <map>
#include <nlohmann/json.hpp>
#include <set>
#include <utility>

#include "tools/inspect/ReportLines.h"

namespace {

struct Difference {
  const ReportLine* first = nullptr;  // null: the job has none
  const ReportLine* second = nullptr;
  const ReportLine& either() const { return first != nullptr ? *first : *second; }
};

// What two jobs never have in common, or only by chance.
bool Counts(const ReportLine& line) {
  return line.name != "Size";
}

// Sealed passwords differ from one job to the next even when the password is the same. Without the
// key only their lengths can tell.
bool SameSecret(const Setting& first, const Setting& second) {
  if (first.opened && second.opened) return first.password == second.password;
  return first.value.size() == second.value.size();
}

bool Same(const ReportLine& first, const ReportLine& second) {
  if (first.setting != nullptr && first.setting->row->kind == ValueKind::kSecret) {
    return SameSecret(*first.setting, *second.setting);
  }
  return first.words == second.words;
}

std::vector<Difference> Differences(const std::vector<ReportLine>& first,
                                    const std::vector<ReportLine>& second) {
  using Key = std::pair<std::pair<std::string_view, std::string>, int>;
  const auto keysOf = [](const std::vector<ReportLine>& lines) {
    std::map<std::pair<std::string_view, std::string>, int> seen;
    std::vector<Key> keys;
    for (const ReportLine& line : lines) {
      const std::pair name(line.key, line.code.empty() ? line.name : line.code);
      keys.emplace_back(name, seen[name]++);
    }
    return keys;
  };
  std::vector<std::pair<Key, Difference>> pairs;
  std::map<Key, std::size_t> place;
  const auto add = [&](const std::vector<ReportLine>& lines, const ReportLine* Difference::*side) {
    const std::vector<Key> keys = keysOf(lines);
    for (std::size_t i = 0; i < lines.size(); i++) {
      if (!Counts(lines[i])) continue;
      const auto [at, isNew] = place.try_emplace(keys[i], pairs.size());
      if (isNew) pairs.push_back({keys[i], {}});
      pairs[at->second].second.*side = &lines[i];
    }
  };
  add(first, &Difference::first);
  add(second, &Difference::second);

  std::vector<Difference> differences;
  for (const auto& [key, pair] : pairs) {
    if (pair.first != nullptr && pair.second != nullptr && Same(*pair.first, *pair.second))
      continue;
    differences.push_back(pair);
  }
  return differences;
}

// The group's entries together, in the order of the groups of the first job's report.
template <typename Visit>
void ForEachGroup(const std::vector<Difference>& differences, Visit visit) {
  std::set<std::string_view> done;
  for (const Difference& leader : differences) {
    if (!done.insert(leader.either().group).second) continue;
    for (const Difference& difference : differences) {
      if (difference.either().group == leader.either().group) visit(difference);
    }
  }
}

std::string Side(const ReportLine* line) {
  if (line == nullptr) return "(not asked for)";
  return line->words.empty() ? line->raw : line->words;
}

// A secret whose words are the same on both sides.
std::string Suffix(const Difference& difference) {
  const bool alike = difference.first != nullptr && difference.second != nullptr &&
                     difference.first->words == difference.second->words;
  return alike ? " (another one)" : "";
}

}  // namespace

std::string TextDifference(const JobReport& first, const JobReport& second, ReportWishes wishes) {
  const std::vector<ReportLine> a = ReportLines(first, wishes);
  const std::vector<ReportLine> b = ReportLines(second, wishes);
  std::string out;
  std::string_view group;
  ForEachGroup(Differences(a, b), [&](const Difference& difference) {
    const ReportLine& either = difference.either();
    if (either.group != group) {
      out += (out.empty() ? "" : "\n") + std::string(either.group) + "\n";
    }
    group = either.group;
    out += "  " + either.name + ": " + Side(difference.first) + " -> " + Side(difference.second) +
           Suffix(difference) + "\n";
  });
  return out;
}

std::string JsonDifference(const JobReport& first, const JobReport& second, ReportWishes wishes) {
  using Json = nlohmann::ordered_json;
  const std::vector<ReportLine> a = ReportLines(first, wishes);
  const std::vector<ReportLine> b = ReportLines(second, wishes);
  Json list = Json::array();
  ForEachGroup(Differences(a, b), [&](const Difference& difference) {
    const ReportLine& either = difference.either();
    const auto side = [](const ReportLine* line) {
      return line ? Json(Side(line)) : Json(nullptr);
    };
    list.push_back({{"group", either.key},
                    {"code", either.code},
                    {"name", either.name},
                    {"first", side(difference.first)},
                    {"second", side(difference.second)}});
  });
  const Json json = {{"version", kJsonVersion}, {"same", list.empty()}, {"differences", list}};
  return json.dump(2, ' ', true, Json::error_handler_t::replace) + "\n";
}
