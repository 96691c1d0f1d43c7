// Job headers: what is asked for and every line of the header that comes of it, from a list.

#include <gtest/gtest.h>
#include <unistd.h>

#include <fstream>
#include <map>
#include <regex>

#include "FilterFrame/Source/JobState.h"
#include "engine/JobHeader.h"
#include "modules/comment/Comment.h"
#include "queue/HeaderProof.h"
#include "tests/support/Password.h"
#include "tests/support/Tickets.h"
#include "utf8.h"

namespace {

struct Section {
  std::string about, options, user = "sam", title = "Title";
  struct Printer {
    std::string ppd, header;
  };
  std::vector<Printer> printers = {};
  struct Job {
    std::string options, lines;
  };
  std::vector<Job> jobs = {};
};

// Replaces what stands between two marks, from the left.
template <typename Make>
std::string Replaced(std::string text, const char* marks, Make make) {
  for (std::size_t at = 0; (at = text.find(marks[0], at)) != text.npos;) {
    const std::size_t end = text.find(marks[1], at);
    const std::string made = make(text.substr(at + 1, end - at - 1));
    text.replace(at, end + 1 - at, made);
    at += made.size();
  }
  return text;
}

// With [HH] as the byte of this number.
std::string WithBytes(const std::string& text) {
  return Replaced(text, "[]", [](const std::string& digits) {
    return std::string(1, static_cast<char>(std::stoi(digits, nullptr, 16)));
  });
}

// The sections of jobs.txt, which says how they are written.
std::vector<Section> Sections() {
  std::map<std::string, std::string> names, ppds;
  std::vector<Section> sections;
  std::ifstream lines(TEST_DATA_DIR "/jobs.txt");
  for (std::string line; std::getline(lines, line);) {
    if (line.empty() || line[0] == '#') continue;
    line = Replaced(line, "{}", [&](const std::string& name) {
      const std::size_t times = name.rfind('*');
      return times == name.npos ? names[name]
                                : Repeat(name.substr(0, times), std::stoul(name.substr(times + 1)));
    });
    const std::size_t blank = line.find(' ');
    const std::string kind = line.substr(0, blank);
    const std::string text = blank == line.npos ? "" : line.substr(blank + 1);
    const std::size_t second = text.find(' '), arrow = text.find("->");
    if (kind == "let")
      names[text.substr(0, second)] = text.substr(second + 1);
    else if (kind == "printer")
      ppds[text.substr(0, second)] += second == text.npos ? "" : text.substr(second + 1) + "\n";
    else if (kind == "==")
      sections.push_back({.about = text, .options = ""});
    else if (kind == "on")
      sections.back().printers.push_back({ppds.at(text.substr(0, second)), text.substr(second)});
    else if (kind == "options")
      sections.back().options = text + " ";
    else if (kind == "user")
      sections.back().user = WithBytes(text);
    else if (kind == "title")
      sections.back().title = WithBytes(text);
    else if (kind == "|" && arrow != text.npos)
      sections.back().jobs.push_back({text.substr(0, arrow), text.substr(arrow + 2)});
    else
      ADD_FAILURE() << "jobs.txt: " << line;
  }
  return sections;
}

// A header's lines as jobs.txt writes them, apart by blanks.
std::string Words(const std::string& header) {
  char host[256] = {};
  gethostname(host, sizeof host - 1);
  std::string words;
  std::istringstream lines(header);
  for (std::string line; std::getline(lines, line);) {
    const bool carriageReturn = line.ends_with('\r');
    if (carriageReturn) line.pop_back();
    if (line.starts_with("@PJL SET JOBATTR=\"@") && line.ends_with('"')) {
      line = line.substr(18, line.size() - 19);
      if (line == "@CNAM=" + std::string(host).substr(0, line.size() - 6)) line = "@CNAM=HOST";
    } else if (line.starts_with("@PJL SET ")) {
      line.erase(0, 9);
    } else if (line.starts_with("@PJL COMMENT PRINTJOBINFO ")) {
      line.replace(0, 26, "#");
    }
    std::string shown;
    for (const char c : line) {
      char code[8];
      std::snprintf(code, sizeof code, "\\x%02x", static_cast<unsigned char>(c));
      const bool plain = c > ' ' && c < 127;
      shown +=
          plain || (c < 0 && utf8::is_valid(line.begin(), line.end())) ? std::string(1, c) : code;
    }
    words += shown + (carriageReturn ? "^ " : " ");
  }
  return words;
}

// The words, one blank behind each.
std::string Evened(const std::string& text) {
  std::string even;
  std::istringstream words(text);
  for (std::string word; words >> word;) even += word + " ";
  return even;
}

// The header's words of one job.
std::string HeaderOf(const Section& section, const std::string& options) {
  psoptioncomment = {};
  for (char* name : {StdDocumentName, PTStdDocumentName}) *name = '\0';
  std::vector<std::string> words = {"pstoxpjl", "1", section.user, section.title, "1", ""};
  std::vector<char*> args;
  for (std::string& word : words) args.push_back(word.data());
  args.push_back(nullptr);
  const std::string stored = Replaced(section.options + options, "<>", Stored);
  return Words(WithOpenedPasswords(HeaderFor(args.data(), Tickets(stored))));
}

TEST(Jobs, OfListedModelsHaveTheShortSummary) {
  const char* const models[] = {"OTHER", "VTES", nullptr};
  const std::string model = "*PCFileName: \"ZLVTEST.PPD\"\n", on = "*CommentOn: \"True\"\n";
  for (const auto& [ppd, block] : {std::pair(model, CommentBlock::kShort),
                                   {on + model, CommentBlock::kShort},
                                   {on + kUTF8PPD + model, CommentBlock::kLong},
                                   {on + "*PCFileName: \"ZLVMORE.PPD\"\n", CommentBlock::kLong}}) {
    const UsedPPD used(ppd);
    EXPECT_EQ(ChooseCommentBlock(models), block) << ppd;
  }
}

TEST(Jobs, HaveTheseHeaders) {
  int jobs = 0;
  for (const Section& section : Sections()) {
    for (const Section::Printer& printer : section.printers) {
      const UsedPPD ppd(printer.ppd);
      for (const Section::Job& job : section.jobs) {
        std::string header = printer.header;
        header.replace(header.find(" * "), 3, " " + job.lines + " ");
        EXPECT_EQ(HeaderOf(section, job.options), Evened(header))
            << section.about << ": " << job.options;
        jobs++;
      }
    }
  }
  EXPECT_GT(jobs, 300);
}

}  // namespace
