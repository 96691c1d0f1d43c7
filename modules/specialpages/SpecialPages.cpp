// Field splitting, pairing with command tickets, and the lines of covers, insertions and
// exceptions.

#include "modules/specialpages/SpecialPages.h"

#include <strings.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include "FilterFrame/Source/UtilityFunctionFilter/JobOptions.h"
#include "engine/AttributeLine.h"
#include "modules/specialpages/XPIFTemplates.h"
#include "text/BoundedText.h"

SpecialPageOption psOptionSpecialPage;

constexpr TicketData SpecialPageTicketData[] = {
    Ticket<GetTicketInteger>(kSPXPCoverCountKey, psOptionSpecialPage.coverCount),
    Ticket<GetTicketInteger>(kSPXPInsertionCountKey, psOptionSpecialPage.insertionCount),
    Ticket<GetTicketInteger>(kSPXPExceptionCountKey, psOptionSpecialPage.exceptionCount),
};

constexpr const char* CoverTypeXPJLComm[] = {
    "print-none", "PRINTNONE", "print-front", "PRINTFRONT",
    "print-back", "PRINTBACK", "print-both",  "PRINTBOTH",
};

constexpr const char* MediaColorXPJLComm[] = {
    "white",    "WHITE",   "blue",     "BLUE",    "buff",     "BUFF",    "goldenrod", "GOLDENROD",
    "gray",     "GRAY",    "green",    "GREEN",   "ivory",    "IVORY",   "orange",    "ORANGE",
    "pink",     "PINK",    "red",      "RED",     "yellow",   "YELLOW",  "no-color",  "CLEAR",
    "custom_1", "CUSTOM1", "custom_2", "CUSTOM2", "custom_3", "CUSTOM3", "custom_4",  "CUSTOM4",
    "custom_5", "CUSTOM5", "other",    "OTHER",
};

constexpr const char* SidesXPJLComm[] = {
    "one-sided", "SIMPLEX", "two-sided-long-edge", "DUPLEX", "two-sided-short-edge", "TUMBLE",
};

namespace {

constexpr std::size_t kValueSize = 256;
constexpr std::size_t kLongLineSize = 256;

// Kinds of special pages: the first field of their command tickets, where the paper selection
// stands in those, and the prefix of their value tickets.
struct Kind {
  std::string_view commandKind;
  std::size_t paperPosition;
  const char* valueKey;
};
constexpr Kind kCovers = {"0", 6, kSPXPCoverValueKey};
constexpr Kind kInsertions = {"1", 8, kSPXPInsertionValueKey};
constexpr Kind kExceptions = {"2", 4, kSPXPExceptionValueKey};

// A value ticket has the fields of its kind's template behind one or two that choose among media.
constexpr std::size_t kExceptionFields = 1 + XPIFFieldCount(ExceptionBlockData);
static_assert(XPIFFieldCount(CoverBlockData) == 5 && XPIFFieldCount(InsertionBlockData) == 6,
              "PutCover and PutInsertion take so many");

struct Field {
  char text[kSpecialPageFieldSize] = {};
};

// A ticket's value, taken apart field by field. Behind the last field the last one repeats.
class Fields {
 public:
  explicit Fields(const char* value) : value_(value) {}
  Field next() {
    Field field;
    offset_ += getOneValue(value_ + offset_, field.text);
    return field;
  }
  template <std::size_t Count>
  void next(Field (&fields)[Count]) {
    for (Field& field : fields) field = next();
  }
  int offset() const { return offset_; }

 private:
  const char* value_;
  int offset_ = 0;
};

// The numbered tickets with one prefix that the job really has, by number. Claimed numbers cost
// nothing.
class NumberedTickets {
 public:
  struct Ticket {
    std::int64_t number;
    char value[kValueSize];
  };

  NumberedTickets(const JobOptions& options, std::string_view prefix, std::int64_t claimed) {
    for (int i = 0; i < options.count(); i++) {
      const char* name = options.list()[i].name;
      if (strncasecmp(name, prefix.data(), prefix.size()) != 0) continue;
      const char* digits = name + prefix.size();
      const std::int64_t number = DecimalInteger(digits);
      if (number < 0 || number >= claimed || std::to_string(number) != digits) continue;
      Ticket& ticket = tickets_.emplace_back();
      ticket.number = number;
      GetTicketStringConvertedToPrtLang(name, options.count(), options.list(), ticket.value,
                                        sizeof ticket.value);
    }
    std::sort(tickets_.begin(), tickets_.end(),
              [](const Ticket& a, const Ticket& b) { return a.number < b.number; });
  }

  auto begin() const { return tickets_.begin(); }
  auto end() const { return tickets_.end(); }

 private:
  std::vector<Ticket> tickets_;
};

// What one pass over a kind of special pages shares with the next: the job's options, its command
// tickets, and the paper selection read last.
struct Job {
  const JobOptions& options;
  NumberedTickets commands;
  Field paperSelection;
};

void Put(const char* attribute, const char* value) {
  OutputJobAttribute(attribute, value, kLongLineSize);
}

void PutMapped(const char* attribute, const char* keyword, const char* const* table, int count) {
  Field word;
  if (getSpecialPageXPJLValue(keyword, table, count, word.text) == 0) Put(attribute, word.text);
}

void PutPaper(const char* paperSelection, const Field& width, const Field& height,
              const Field& mediaType) {
  const bool custom = std::strcmp(paperSelection, CustomPapertyeSelectNumber) == 0;
  Put("EMCP", custom ? "CUSTOM" : "FORMALSIZE");
  Put("EMCW", width.text);
  Put("EMCH", height.text);
  Put("EMCQ", mediaType.text);
}

void PutColor(const Field& color) {
  PutMapped("EMCC", color.text, MediaColorXPJLComm, MediaColorXPJLCommValueCount);
}

// Calls output(value) for each value ticket of a kind. Every claimed entry, present or not, takes
// the next command ticket of its kind for its paper selection, as long as there are some.
template <typename Output>
void ForEachEntry(Job& job, const Kind& kind, std::int64_t claimed, Output output) {
  std::vector<const char*> selections;
  for (const auto& command : job.commands) {
    if (Fields(command.value).next().text != kind.commandKind) continue;
    const bool reaches = std::strlen(command.value) > kind.paperPosition;
    selections.push_back(reaches ? command.value + kind.paperPosition : "");
  }
  const auto select = [&](std::int64_t entry) {
    if (selections.empty()) return;
    const auto last = static_cast<std::int64_t>(selections.size()) - 1;
    job.paperSelection = Fields(selections[static_cast<std::size_t>(std::min(entry, last))]).next();
  };
  for (const auto& ticket : NumberedTickets(job.options, kind.valueKey, claimed)) {
    select(ticket.number);
    output(ticket.value);
  }
  if (claimed > 0) select(claimed - 1);
}

void PutCover(const char* value, const char* paperSelection, bool only) {
  Fields fields(value);
  const Field side = fields.next();
  const Field source = fields.next();
  const Field type = fields.next();
  const bool front = std::strcmp(side.text, "0") == 0;
  const bool back = std::strcmp(side.text, "1") == 0;
  if (!front && !back) return;

  if (back && only) Put("EFCV", "NONE");
  PutMapped(front ? "EFCV" : "EBCV", type.text, CoverTypeXPJLComm, CoverTypeXPJLCommValueCount);
  Field color;
  OutputSPMediaSizeAndColor(source.text, fields.offset(), value, paperSelection, color.text);
  if (front && only) Put("EBCV", "NONE");
}

void PutInsertion(const char* value, const char* paperSelection) {
  Fields fields(value);
  const Field source = fields.next();
  const Field afterPage = fields.next();
  const Field count = fields.next();
  Put("EIST", afterPage.text);
  if (std::strcmp(source.text, "0") == 0) {
    Put("EMCT", "TRAYT1");
  } else if (std::strcmp(source.text, "1") == 0) {
    const Field color = fields.next();
    const Field width = fields.next();
    const Field height = fields.next();
    const Field mediaType = fields.next();
    PutPaper(paperSelection, width, height, mediaType);
    PutColor(color);
  }
  Put("EISC", count.text);
}

void PutException(const char* value, const char* paperSelection) {
  Field field[kExceptionFields];
  Fields(value).next(field);
  Put("EOVS", field[3].text);
  PutPaper(paperSelection, field[8], field[9], field[6]);
  PutColor(field[7]);
  PutMapped("EMDP", field[5].text, SidesXPJLComm, SidesXPJLCommValueCount);
  Put("EOVE", field[4].text);
}

}  // namespace

void SpecialPageGetTicketFromPDE(char* args[]) {
  GetTicketFromArray(args, SpecialPageTicketData, SpecialPageTicketDataNum);
}

void SpecialPageInializeDescriptionTable() {
  psOptionSpecialPage = {};
}

void OutputXPJLCommandForSpecialPage(char* args[]) {
  SpecialPageOption& option = psOptionSpecialPage;
  for (std::int32_t* count : {&option.coverCount, &option.insertionCount, &option.exceptionCount}) {
    *count = std::max(*count, 0);
  }
  const std::int64_t total =
      std::int64_t{option.coverCount} + option.insertionCount + option.exceptionCount;
  if (total < 1) return;

  const JobOptions options(args[5]);
  Job job = {options, NumberedTickets(options, kSPViewTicketKey, total), {}};
  const char* paper = job.paperSelection.text;
  ForEachEntry(job, kCovers, option.coverCount,
               [&](const char* value) { PutCover(value, paper, option.coverCount == 1); });
  ForEachEntry(job, kInsertions, option.insertionCount,
               [&](const char* value) { PutInsertion(value, paper); });
  ForEachEntry(job, kExceptions, option.exceptionCount,
               [&](const char* value) { PutException(value, paper); });
}

int getOneValue(const char* source, char* field) {
  if (source == nullptr || field == nullptr) return -1;
  const std::string_view rest = source;
  const std::size_t comma = rest.find(',');
  CopyBounded(field, kSpecialPageFieldSize, rest.substr(0, comma));
  return comma == rest.npos ? 0 : static_cast<int>(comma) + 1;
}

int getSpecialPageXPJLValue(const char* keyword, const char* const* table, int count, char* out) {
  for (int i = 0; i < count; i += 2) {
    if (std::strcmp(table[i], keyword) != 0) continue;
    CopyBounded(out, kSpecialPageFieldSize, table[i + 1]);
    return 0;
  }
  return -1;
}

void OutputSPMediaSizeAndColor(const char* source, int offset, const char* value,
                               const char* paperSelection, char* out) {
  if (std::strcmp(source, "0") == 0) return Put("EMCT", "TRAYT1");
  if (std::strcmp(source, "1") != 0) return;
  Fields fields(value + offset);
  const Field mediaType = fields.next();
  const Field color = fields.next();
  const Field width = fields.next();
  const Field height = fields.next();
  PutPaper(paperSelection, width, height, mediaType);
  if (getSpecialPageXPJLValue(color.text, MediaColorXPJLComm, MediaColorXPJLCommValueCount, out) ==
      0) {
    Put("EMCC", out);
  }
}
