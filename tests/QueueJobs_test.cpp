// The queue filter: whole jobs from a list of what people choose, and attempts to forge a header.

#include <gtest/gtest.h>

#include <algorithm>
#include <regex>
#include <set>

#include "queue/Composition.h"
#include "queue/HeaderCheck.h"
#include "queue/HeaderProof.h"
#include "queue/SecretOptions.h"
#include "queue/TicketKeys.h"
#include "queue/TicketRows.h"
#include "tests/support/GoldenFile.h"
#include "tests/support/Password.h"
#include "tests/support/Patterns.h"
#include "tests/support/ProcessMemory.h"
#include "tests/support/Tickets.h"

namespace {

using Lines = std::vector<std::string>;

struct QueueJob {
  std::string about;
  std::map<std::string, Lines> lines;  // by the word in front of them

  std::string fact(const std::string& name, const std::string& otherwise) const {
    const auto found = lines.find(name);
    return found == lines.end() ? otherwise : found->second[0];
  }
  Lines all(const std::string& word) const {
    const auto found = lines.find(word);
    return found == lines.end() ? Lines() : found->second;
  }
};

// The jobs of queue-jobs.txt, which says how they are written.
std::vector<QueueJob> QueueJobs() {
  std::vector<QueueJob> jobs;
  for (const std::string& line : GoldenLines("queue-jobs.txt")) {
    const std::string word = line.substr(0, line.find(' '));
    const std::string text = line.substr(std::min(word.size() + 1, line.size()));
    if (word == "==")
      jobs.push_back({text, {}});
    else
      jobs.back().lines[word].push_back(text);
  }
  return jobs;
}

// A model's PPD with an administrator's defaults.
std::string PPDWith(const std::string& model, const std::string& defaults) {
  std::string ppd = FileContent(PPD_DIR "/zelva-" + model + ".ppd");
  std::istringstream words(defaults);
  for (std::string word; words >> word;) {
    const std::string name = word.substr(0, word.find('='));
    const std::regex line("\\*Default" + name + ": .*");
    EXPECT_TRUE(std::regex_search(ppd, line)) << name;
    ppd = std::regex_replace(ppd, line, "*Default" + name + ": " + word.substr(name.size() + 1));
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

// The tickets of a job for a model with these options and what is warned of, or why nothing is
// printed.
Lines TicketsOf(const std::string& model, std::string options) {
  CloseJobPPD();
  setenv("PPD", (PPD_DIR "/zelva-" + model + ".ppd").c_str(), 1);
  Composition composition(JobPPD(), {"sam", "Title", "1"}, TakeJobOptions(options.data()));
  composition.compose(Arguments(""));
  if (composition.complaints().failed()) return {"! " + composition.complaints().failure()};
  Lines tickets;
  for (const JobTicket& ticket : composition.tickets().tickets())
    tickets.push_back(ShortKey(ticket.key) + "=" + (ticket.secret ? "(hidden)" : ticket.value));
  for (const std::string& warning : composition.complaints().warnings())
    tickets.push_back("? " + warning);
  return tickets;
}

TEST(QueueJobs, BecomeTheseTickets) {
  for (const std::string& line : GoldenLines("choices.txt")) {
    const std::size_t blank = line.find(' '), arrow = line.find(" ->");
    const std::string model = line.substr(0, blank);
    const Lines plain = blank == arrow ? Lines() : TicketsOf(model, "");
    const Lines made =
        TicketsOf(model, Replaced(line.substr(blank, arrow - blank), "...", TICKET_KEY("")));
    std::string said;
    for (const std::string& ticket : made)
      if (!std::ranges::count(plain, ticket)) said += " " + ticket;
    const bool isPrinted = made.empty() || !made[0].starts_with('!');
    for (const std::string& ticket : plain)
      if (isPrinted && !std::ranges::count(made, ticket)) said += " -" + ticket;
    EXPECT_EQ(said, line.substr(arrow + 3)) << line;
  }
  unsetenv("PPD");
  CloseJobPPD();
}

TEST(QueueJobs, SayWhatPeopleChoose) {
  const ScratchFolder folder;
  for (const QueueJob& wish : QueueJobs()) {
    SCOPED_TRACE(wish.about);
    FilterJob job;
    job.filter = QUEUE_FILTER_BINARY;
    job.arguments = {"1", wish.fact("user", "sam"), wish.fact("title", "Title"),
                     wish.fact("copies", "1"),
                     Replaced(wish.fact("options", ""), "...", TICKET_KEY(""))};
    for (const std::string& file : wish.all("file")) job.arguments.push_back(file);
    job.input = wish.fact("document", "%!PS-Adobe-3.0\n%%Page: 1 1\n");
    job.environment["CONTENT_TYPE"] = wish.fact("type", "application/pdf");
    const std::string model = wish.fact("model", "atelier-c90");
    if (model != "none") {
      const std::string ppd = PPDWith(model, wish.fact("default", "")) + wish.fact("line", "");
      job.environment["PPD"] = folder.write("test.ppd", ppd);
    }
    const FilterResult result = RunFilter(job);
    const Lines printed = LinesOf(WithOpenedPasswords(result.output));
    Lines messages = LinesOf(result.messages);
    std::erase_if(messages, [&](const std::string& line) {
      return line[0] == 'D' || (line[0] == 'P' && !wish.lines.contains("document"));
    });
    const std::string said = testing::PrintToString(messages);
    for (const std::string& line : messages) EXPECT_LT(line.size(), 1100U);
    const Lines wanted = wish.all("!");
    const bool fails = AnyBegins(wanted, "ERROR: ");

    EXPECT_EQ(result.exitStatus, fails ? 1 : 0) << said;
    EXPECT_EQ(Captures("(12345X)", result.output).size(), fails ? 0U : 2U);
    for (const std::string& line : wish.all("+"))
      EXPECT_TRUE(AnyBegins(printed, line)) << line << "\n" << result.output;
    for (const std::string& line : wish.all("-")) EXPECT_FALSE(AnyBegins(printed, line)) << line;
    for (const std::string& line : wanted)
      EXPECT_TRUE(AnyBegins(messages, line)) << line << "\n" << said;
    EXPECT_EQ(messages.size(), std::stoul(wish.fact("said", std::to_string(wanted.size()))))
        << said;
    for (const std::string& secret : wish.all("?")) {
      EXPECT_EQ(result.messages.find(secret), result.messages.npos);
      EXPECT_EQ(result.messages.find(Stored(secret)), result.messages.npos);
    }
  }
}

// Whatever a header holds, each of its lines is PJL's and ends as it should.
void ExpectNoForgery(const std::string& header) {
  static const std::regex kLine(
      "@PJL (JOB MODE=PRINTER|ENTER LANGUAGE=POSTSCRIPT|COMMENT PRINTJOBINFO [^\"\x01-\x1f\x7f]*|"
      "SET [A-Z]+=([^\"\x01-\x1f\x7f]*|\"[^\"\x01-\x1f\x7f]*\"))\r?");
  ASSERT_TRUE(header.starts_with("\x1b%-12345X"));
  const std::string lines = header.substr(9);
  EXPECT_TRUE(lines.ends_with('\n'));
  for (const std::string& line : LinesOf(lines)) EXPECT_TRUE(std::regex_match(line, kLine)) << line;
  EXPECT_LE(Captures("(@LUNA)", lines).size(), 1U);
}

TEST(QueueJobs, HoldNoForgery) {
  std::vector<std::string> models = {"atelier-c90", "kontor-m20"};
#ifdef SANITIZED
  models.pop_back();  // one is enough for them
#endif
  for (const std::string& model : models) {
    CloseJobPPD();
    setenv("PPD", (PPD_DIR "/zelva-" + model + ".ppd").c_str(), 1);
    std::set<std::string> names = {"job-password", "job-account-id", "job-accounting-user-id",
                                   "media",        "sides",          "copies",
                                   "collate"};
    for (const std::string& key : TicketKeys()) names.insert(key.ends_with('_') ? key + "0" : key);
    for (const TicketRow& row : TicketRows()) names.insert(row.option);
    // What makes the fields of other tickets appear.
    std::string always =
        "ZLVAccounting=User ZLVPrintType=Secure ZLVOutputFace=Off ZLVPBindPosition=BindTop " +
        Tickets("XPIFCoverCountTicket=1 XPIFInsertionCountTicket=1 XPIFExceptionCountTicket=1");
    const std::vector<JobOption> kAlways = TakeJobOptions(always.data());
    int printed = 0;
    for (const std::string& name : names) {
      for (const std::string& value : GoldenLines("forgeries.txt")) {
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

// The last look at a header, whatever the looks before it have passed.
TEST(QueueJobs, HaveWholeHeaderLines) {
  const std::string whole = "\x1b%-12345X@PJL\x20\r\n@PJL SET A=\"b\"\n@PJL SET BOXNUMBER=\r\n";
  EXPECT_EQ(BrokenLine(whole), "");
  for (const std::string broken :
       {"\n", "PJL A\n", "@PJL A", "@PJL A=\n", "@PJL A\x7f\n", "@PJL A=\"b\n", "@PJL A=\"b\"c\n",
        "@PJL A=\"b\" B=\"c\"\n", "@PJL A\rB\n"}) {
    EXPECT_EQ(BrokenLine(whole + broken), broken);
  }
  for (const char* unfit : {"\"", "\n", "\x7f", "\xc2\x80", "\xc2\x9f"})
    EXPECT_FALSE(FitsHeader(unfit));
  for (const char* fit : {"", " ~", "\xc2\xa0", "\xc3\x80"}) EXPECT_TRUE(FitsHeader(fit));
}

TEST(QueueJobs, LeaveOutWhatBreaksAHeaderLine) {
  const UsedPPD ppd(kUTF8PPD);
  Arguments args("");
  TicketList tickets;
  for (const auto& [key, value] : {std::pair{"NumInSequenceSwitchTicket", "0"},
                                   {"TabMarginSwitchTicket", "1"},
                                   {"TabMarginMMShiftTicket", "1\"2"},
                                   {"TrimmerSwitchTicket", "1"},
                                   {"TrimmerMMCuttingSizeTicket", "3\"4"},
                                   {"JBAAccountIDTextEditTicket", "98765"}}) {
    tickets.add({std::string(TICKET_KEY("")) + key, value, key});
  }
  Complaints complaints;
  ProveHeader(args, tickets, "collate", complaints);
  EXPECT_EQ(complaints.warnings().size(), 2U);
  EXPECT_EQ(complaints.failure(),
            "JBAAccountIDTextEditTicket has no effect with the other choices");
  EXPECT_EQ(BrokenLine(HeaderFor(args, tickets.optionsText("collate"))), "");
  EXPECT_EQ(tickets.tickets()[0].source, "NumInSequenceSwitchTicket");
}

// Calls that are none, and what it says of itself.
TEST(QueueJobs, AreNotBegunByOtherCalls) {
  FilterJob job;
  job.filter = QUEUE_FILTER_BINARY;
  job.arguments = {"1", "sam", "Title", "1"};
  EXPECT_TRUE(RunFilter(job).messages.starts_with("Usage: cupstoxpjl "));
  job.arguments = {"--version"};
  EXPECT_TRUE(RunFilter(job).output.starts_with("cupstoxpjl "));
  if (!std::filesystem::exists("/dev/full")) return;
  job.afterShell("exec >/dev/full");
  EXPECT_EQ(RunFilter(job).exitStatus, 1);
}

#ifndef SANITIZED
TEST(QueueJobs, LeaveNoPasswordBehind) {
  const auto memory =
      MemoryAtExit({QUEUE_FILTER_BINARY, "1", "sam", "a title to be found", "1",
                    "Job-Password=open-sesame-7 zlvAccountPassword=Custom.open-sesame-8"},
                   {{"PPD", PPD_DIR "/zelva-atelier-c90.ppd"}}, "%!PS\n");
  if (!memory) GTEST_SKIP() << "no looking into processes here";
  EXPECT_NE(memory->find("a title to be found"), memory->npos);
  EXPECT_EQ(memory->find("open-sesame"), memory->npos);

  FilterJob job;
  job.filter = QUEUE_FILTER_BINARY;
  job.afterShell("ulimit -S -c 8");
  const FilterProcess filter(job);
  filter.waitUntilItWaits();
  EXPECT_TRUE(Matches("Max core file size +0 ",
                      FileContent("/proc/" + std::to_string(filter.pid()) + "/limits")));
}
#endif

}  // namespace
