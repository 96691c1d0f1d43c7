// The table.

#include <algorithm>

#include "tools/inspect/ReportLines.h"

namespace {

constexpr std::size_t kWidestWords = 40;  // longer ones push their raw line to the right

void AppendPadded(std::string_view text, std::size_t width, std::string& out) {
  out += text;
  out.append(width - std::min(width, Columns(text)), ' ');
}

std::string Headline(const std::string& name, const JobReport& report) {
  const auto several = [](std::uint64_t number, const std::string& what) {
    return std::to_string(number) + " " + what + (number == 1 ? "" : "s");
  };
  return Printable(name, Charset::kUTF8) + ": " + several(report.bytes, "byte") + ", " +
         several(PageCount(report.postScript), "page") + ", " +
         (report.problems.empty() ? "nothing wrong" : several(report.problemCount(), "problem"));
}

void AppendRemarks(const char* title, const std::vector<Remark>& remarks, Charset charset,
                   std::string& out) {
  if (remarks.empty()) return;
  out += std::string("\n") + title + "\n";
  for (const Remark& remark : remarks) out += "  " + RemarkText(remark, charset) + "\n";
}

}  // namespace

std::string TextReport(const std::string& name, const JobReport& report, ReportWishes wishes) {
  const std::vector<ReportLine> lines = ReportLines(report, wishes);
  std::size_t nameWidth = 0;
  std::size_t wordsWidth = 0;
  for (const ReportLine& line : lines) {
    nameWidth = std::max(nameWidth, Columns(line.name));
    wordsWidth = std::max(wordsWidth, std::min(Columns(line.words), kWidestWords));
  }
  std::string out = Headline(name, report) + "\n";
  std::string_view group;
  for (const ReportLine& line : lines) {
    if (line.group != group) out += "\n" + std::string(line.group) + "\n";
    group = line.group;
    out += "  ";
    AppendPadded(line.name, nameWidth + 2, out);
    if (line.raw.empty()) {
      out += line.words + "\n";
      continue;
    }
    AppendPadded(line.words, wordsWidth, out);
    out += "  " + line.raw + "\n";
  }
  AppendRemarks("Notes", report.notes, report.charset, out);
  AppendRemarks("Problems", report.problems, report.charset, out);
  if (report.problemsLeftOut > 0) {
    out += "  and " + std::to_string(report.problemsLeftOut) + " more\n";
  }
  return out;
}

std::string FirstProblem(const JobReport& report) {
  if (report.problems.empty()) return {};
  const std::uint64_t more = report.problemCount() - 1;
  return RemarkText(report.problems.front(), report.charset) +
         (more > 0 ? " (and " + std::to_string(more) + " more)" : "");
}
