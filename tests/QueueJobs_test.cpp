// The queue filter: whole jobs from a list of what people choose, and attempts to forge a header.

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <regex>
#include <set>

#include "queue/Composition.h"
#include "queue/HeaderProof.h"
#include "queue/TicketKeys.h"
#include "queue/TicketRows.h"
#include "tests/support/Password.h"
#include "tests/support/Patterns.h"
#include "tests/support/ProcessMemory.h"
#include "tests/support/Tickets.h"

namespace {

using Lines = std::vector<std::string>;

struct QueueJob {
  std::string about;
  std::map<std::string, std::string> facts = {
      {"model", "atelier-c90"}, {"user", "sam"}, {"title", "Title"}, {"copies", "1"}};
  Lines wanted = {}, unwanted = {}, messages = {};
};

// The jobs of queue-jobs.txt, which says how they are written.
std::vector<QueueJob> QueueJobs() {
  std::vector<QueueJob> jobs;
  std::ifstream lines(TEST_DATA_DIR "/queue-jobs.txt");
  for (std::string line; std::getline(lines, line);) {
    if (line.empty() || line[0] == '#') continue;
    const std::size_t blank = line.find(' ');
    const std::string kind = line.substr(0, blank);
    const std::string text = blank == line.npos ? "" : line.substr(blank + 1);
    if (kind == "==")
      jobs.push_back({text});
    else if (kind == "+")
      jobs.back().wanted.push_back(text);
    else if (kind == "-")
      jobs.back().unwanted.push_back(text);
    else if (kind == "!")
      jobs.back().messages.push_back(text);
    else
      jobs.back().facts[kind] = text;
  }
  return jobs;
}

std::string Replaced(std::string text, const std::string& what, const std::string& by) {
  for (std::size_t at = 0; (at = text.find(what, at)) != text.npos; at += by.size())
    text.replace(at, what.size(), by);
  return text;
}

// A model's PPD with an administrator's defaults.
std::string PPDWith(const std::string& model, const std::string& defaults) {
  std::string ppd = FileContent(PPD_DIR "/zelva-" + model + ".ppd");
  std::istringstream words(defaults);
  for (std::string word; words >> word;) {
    const std::size_t equals = word.find('=');
    const std::regex line("\\*Default" + word.substr(0, equals) + ": .*");
    EXPECT_TRUE(std::regex_search(ppd, line)) << word;
    ppd = std::regex_replace(ppd, line,
                             "*Default" + word.substr(0, equals) + ": " + word.substr(equals + 1));
  }
  return ppd;
}

Lines LinesOf(const std::string& text) {
  std::istringstream stream(text);
  Lines lines;
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

bool AnyBegins(const Lines& lines, const std::string& with) {
  return std::ranges::any_of(lines,
                             [&](const std::string& line) { return line.starts_with(with); });
}

TEST(QueueJobs, SayWhatPeopleChoose) {
  const ScratchFolder folder;
  for (QueueJob& wish : QueueJobs()) {
    SCOPED_TRACE(wish.about);
    FilterJob job;
    job.filter = QUEUE_FILTER_BINARY;
    job.arguments = {"1", wish.facts["user"], wish.facts["title"], wish.facts["copies"],
                     Replaced(wish.facts["options"], "...", TICKET_KEY(""))};
    job.input = "%!PS-Adobe-3.0\n%%Page: 1 1\n";
    if (wish.facts["model"] != "none") {
      job.environment["PPD"] =
          folder.write("test.ppd", PPDWith(wish.facts["model"], wish.facts["default"]));
    }
    const FilterResult result = RunFilter(job);
    const Lines header =
        LinesOf(WithOpenedPasswords(result.output.substr(0, result.output.find("@PJL ENTER"))));
    Lines messages = LinesOf(result.messages);
    std::erase_if(messages,
                  [](const std::string& line) { return line[0] == 'D' || line[0] == 'P'; });
    const bool fails = AnyBegins(wish.messages, "ERROR: ");

    EXPECT_EQ(result.exitStatus, fails ? 1 : 0) << result.messages;
    EXPECT_EQ(result.output.empty(), fails);
    for (const std::string& line : wish.wanted) {
      const std::string bytes = Replaced(Replaced(line, "\\r", "\r"), "\\xeb", "\xeb");
      EXPECT_TRUE(AnyBegins(header, bytes)) << line << "\n" << testing::PrintToString(header);
    }
    for (const std::string& line : wish.unwanted) EXPECT_FALSE(AnyBegins(header, line)) << line;
    for (const std::string& line : wish.messages)
      EXPECT_TRUE(AnyBegins(messages, line)) << line << "\n" << result.messages;
    EXPECT_EQ(messages.size(), wish.messages.size()) << result.messages;
  }
}

// What is wrong with the document, and how many pages it has.
TEST(QueueJobs, SayWhatTheDocumentLacks) {
  const std::string head = "%!PS-Adobe-3.0\n", page = "%%Page: 1 1\nshowpage\n";
  const std::string exit = "\x1b%-12345X", forged = exit + "@PJL SET JOBATTR=\"@LUNA=root\"\n";
  const std::string lacks = "WARNING: The document has no page structure",
                    cut = "WARNING: The document holds an exit";
  const struct {
    std::string document, options;
    Lines messages;
  } cases[] = {
      {"%!PS\nshowpage\n", "", {}},
      {"%!PS\nshowpage\n", "ZLVWatermark=Draft", {lacks}},
      {"%!PS\nbp\nshowpage\nep\n", "ZLVWatermark=Draft", {"PAGE:1"}},
      {head + "%%BeginDocument: a\n" + page, "ZLVWatermark=Draft", {lacks}},
      {"\4\r\n" + head + page, "ZLVWatermark=Draft", {"PAGE:1"}},
      {exit + "@PJL\n" + head + page + exit + "@PJL EOJ\n" + exit, "", {"PAGE:1"}},
      {head + page + forged + head + page, "", {"PAGE:1", cut}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.document);
    FilterJob job;
    job.filter = QUEUE_FILTER_BINARY;
    job.arguments[4] = c.options;
    job.input = c.document;
    job.environment["PPD"] = PPD_DIR "/zelva-atelier-c90.ppd";
    const FilterResult result = RunFilter(job);
    Lines messages = LinesOf(result.messages);
    std::erase_if(messages, [](const std::string& line) { return line[0] == 'D'; });
    EXPECT_TRUE(std::ranges::equal(messages, c.messages, [](const auto& line, const auto& begin) {
      return line.starts_with(begin);
    })) << result.messages;
    EXPECT_EQ(result.output.find("@LUNA=root"), result.output.npos);
    EXPECT_EQ(Captures("(12345X)", result.output).size(), 2U);
  }
}

// Values that would write a line of their own, end the header, or open a quote.
const std::string kForgeries[] = {
    "\"",
    "a\" @PJL EOJ",
    "x\r\n@PJL SET JOBATTR=\"@LUNA=root\"",
    "\x1b%-12345X@PJL EOJ\n",
    "/34/10/64/80/74/76/32/69/79/74/10",
    "/27/37/45/49/50/51/52/53/88",
    "\xc2\x9b",
    std::string(1500, 'W'),
    "Custom.\"",
    "\t",
};

// Whatever a header holds, each of its lines is PJL's and ends as it should.
void ExpectNoForgery(const std::string& header) {
  static const std::regex kLine(
      "@PJL (JOB MODE=PRINTER|ENTER LANGUAGE=POSTSCRIPT|COMMENT PRINTJOBINFO [^\"]*|"
      "SET [A-Z]+=([^\"]*|\"[^\"]*\"))\r?");
  ASSERT_TRUE(header.starts_with("\x1b%-12345X"));
  const std::string lines = header.substr(9);
  EXPECT_TRUE(lines.ends_with('\n'));
  for (std::string line : LinesOf(lines)) {
    EXPECT_TRUE(std::regex_match(line, kLine)) << line;
    if (line.ends_with('\r')) line.pop_back();
    EXPECT_TRUE(std::ranges::none_of(line, [](unsigned char c) { return c < ' ' || c == 127; }))
        << line;
  }
  EXPECT_LE(Captures("(@LUNA)", lines).size(), 1U);
}

TEST(QueueJobs, HoldNoForgery) {
  for (const std::string model : {"atelier-c90", "kontor-m20"}) {
    CloseJobPPD();
    setenv("PPD", (PPD_DIR "/zelva-" + model + ".ppd").c_str(), 1);
    std::set<std::string> names = {"job-password", "job-account-id", "job-accounting-user-id",
                                   "media",        "sides",          "copies",
                                   "collate"};
    for (const std::string& key : TicketKeys()) names.insert(key.ends_with('_') ? key + "0" : key);
    for (const TicketRow& row : TicketRows()) names.insert(row.option);
    // What makes the fields of other tickets appear.
    const std::vector<JobOption> kAlways = {{"ZLVAccounting", "User"},
                                            {"ZLVPrintType", "Secure"},
                                            {"ZLVOutputFace", "Off"},
                                            {TICKET_KEY("XPIFCoverCountTicket"), "1"},
                                            {TICKET_KEY("XPIFInsertionCountTicket"), "1"},
                                            {TICKET_KEY("XPIFExceptionCountTicket"), "1"},
                                            {"ZLVPBindPosition", "BindTop"}};
    int printed = 0;
    for (const std::string& name : names) {
      for (const std::string& value : kForgeries) {
        for (const std::string& entered : {value, "Custom." + value}) {
          SCOPED_TRACE(name + "=" + entered);
          std::vector<JobOption> options = {{name, entered}};
          for (const JobOption& option : kAlways) {
            if (option.name != name) options.push_back(option);
          }
          Composition job(JobPPD(), {"sam", "Title", "1"}, options);
          Arguments args("");
          job.compose(args);
          if (job.complaints().failed()) continue;
          printed++;
          ExpectNoForgery(HeaderFor(args, job.optionsText()));
        }
      }
    }
    EXPECT_GT(printed, 1000);
  }
  CloseJobPPD();
  unsetenv("PPD");
}

// Each ticket that the filter reads can be set, or it is said why not.
TEST(QueueJobs, ReachEveryTicket) {
  CloseJobPPD();
  setenv("PPD", PPD_DIR "/zelva-atelier-c90.ppd", 1);
  std::set<std::string> reached;
  for (const TicketRow& row : TicketRows()) reached.insert(row.ticket);
  const Choices choices(JobPPD(), {});
  Composition special(JobPPD(), {"sam", "Title", "1"},
                      {{"ZLVCover", "Front"},
                       {"ZLVInsertAfter", "Custom.1"},
                       {"ZLVExceptionPages", "Custom.1"},
                       {"ZLVWatermark", "Draft"},
                       {"ZLVOutputFace", "Off"}});
  Arguments args("");
  special.compose(args);
  for (const JobTicket& ticket : special.tickets().tickets()) reached.insert(ticket.key);
  for (const UnusedRow& row : UnusedRows()) {
    EXPECT_FALSE(reached.contains(row.ticket)) << row.ticket << " is set: it needs no reason";
    reached.insert(row.ticket);
  }
  for (const std::string& key : TicketKeys()) {
    EXPECT_TRUE(reached.contains(key.ends_with('_') && !reached.contains(key) ? key + "0" : key))
        << key << ": no row of queue/Tickets.def sets it, and NotComposed.def gives no reason";
  }
  for (const TicketRow& row : TicketRows()) {
    const bool attribute = std::islower(static_cast<unsigned char>(row.option[0])) != 0;
    EXPECT_TRUE(attribute || choices.offers(row.option)) << row.option << ": no PPD offers it";
    if (attribute || std::string_view(row.choice) == kAny) continue;
    EXPECT_TRUE(choices.offers(row.option, row.choice)) << row.option << "=" << row.choice;
  }
  CloseJobPPD();
  unsetenv("PPD");
}

// The text as PostScript, and how wide it is; an empty one cannot be drawn.
TEST(QueueJobs, DrawAnyTextThatTheFontHas) {
  const struct {
    std::string text, shown;
    double width;
  } cases[] = {
      {"DRAFT", "(DRAFT)", 3.388},
      {"a (b\\", "(a \\(b\\\\)", 2.056},
      {"Ü(", " /Udieresis glyphshow(\\()", 1.055},
      {"aß\"é", "(a)show/germandbls glyphshow(\")show/eacute glyphshow()", 2.197},
      {"Ω", " /Omega glyphshow()", 0.802},
      {"日", "", 0},
      {"\xff", "", 0},
  };
  for (const auto& c : cases) {
    double width = 0;
    EXPECT_EQ(ShownText(c.text, width), c.shown);
    if (!c.shown.empty()) {
      EXPECT_NEAR(width, c.width, 0.01) << c.text;
    }
  }
  for (const char* one : {"(a)", "(a(b)c\\))", "<41 >", "<>"}) {
    EXPECT_EQ(IsOnePostScriptString(one), std::string(one) != "<41 >") << one;
  }
  for (const char* other : {"", "(", "a", "(a)(b)", "(a) show", "(a\n)", "<4g>"}) {
    EXPECT_FALSE(IsOnePostScriptString(other)) << other;
  }
}

#ifndef SANITIZED
TEST(QueueJobs, LeaveNoPasswordBehind) {
  const auto memory =
      MemoryAtExit({QUEUE_FILTER_BINARY, "1", "sam", "a title to be found", "1",
                    "job-password=open-sesame-7 ZLVAccountPassword=Custom.open-sesame-8"},
                   {{"PPD", PPD_DIR "/zelva-atelier-c90.ppd"}}, "%!PS\n");
  if (!memory) GTEST_SKIP() << "no looking into processes here";
  EXPECT_NE(memory->find("a title to be found"), memory->npos);
  EXPECT_EQ(memory->find("open-sesame"), memory->npos);
}
#endif

}  // namespace
