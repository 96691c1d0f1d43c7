// Composing special pages. A ticket is a run of fields between commas.

#include "queue/SpecialPageTickets.h"

#include <cmath>
#include <cstdlib>

#include "modules/perfectbind/PerfectBind.h"
#include "modules/specialpages/SpecialPages.h"

namespace {

constexpr char kFromInserter[] = "0";
constexpr char kFromPaper[] = "1";
constexpr char kFrontCover[] = "0";
constexpr char kBackCover[] = "1";

// A choice and the word for it in a ticket.
struct Word {
  const char* choice;
  const char* word;
};
constexpr Word kCoverPrint[] = {{"None", "print-none"},
                                {"Front", "print-front"},
                                {"Back", "print-back"},
                                {"Both", "print-both"}};
constexpr Word kSides[] = {{"OneSided", "one-sided"},
                           {"TwoSidedLongEdge", "two-sided-long-edge"},
                           {"TwoSidedShortEdge", "two-sided-short-edge"}};

template <std::size_t Count>
std::string WordFor(const Word (&words)[Count], const std::string& choice) {
  for (const Word& word : words) {
    if (choice == word.choice) return word.word;
  }
  return words[0].word;
}

std::string Letters(std::string_view text) {
  std::string letters;
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if (std::isalnum(byte) != 0) letters.push_back(static_cast<char>(std::tolower(byte)));
  }
  return letters;
}

// The keyword for a colour: those of the device's table, which differ from the choices in case and
// separators only.
std::string ColourKeyword(const std::string& choice) {
  for (int i = 0; i < MediaColorXPJLCommValueCount; i += 2) {
    if (Letters(MediaColorXPJLComm[i]) == Letters(choice)) return MediaColorXPJLComm[i];
  }
  return "other";
}

// The device's word for a paper type, the one it has at the perfect binder as well.
std::string MediaWord(const std::string& choice) {
  char word[256] = {};
  convertPBindPPDValue(choice.c_str(), word, sizeof word);
  return word[0] != '\0' ? word : choice;
}

// The options of one kind of special pages begin with its name.
class Media {
 public:
  Media(const Choices& choices, ppd_file_t* ppd, PageSize page, const std::string& kind)
      : type(MediaWord(choices.choice(kind + "MediaType").keyword)),
        colour(ColourKeyword(choices.choice(kind + "MediaColor").keyword)),
        source(choices.choice(kind + "Source").keyword == "Paper" ? kFromPaper : kFromInserter) {
    const std::string size = choices.choice(kind + "Size").keyword;
    const ppd_size_t* own =
        size != "Body" && ppd != nullptr ? ppdPageSize(ppd, size.c_str()) : nullptr;
    width = TenthsOfMillimetres(own != nullptr ? own->width : page.width);
    height = TenthsOfMillimetres(own != nullptr ? own->length : page.height);
    isA5 = size == "A5";
  }

  // Whole millimetres: paper sizes are, and points only come near them.
  static std::string TenthsOfMillimetres(double points) {
    return std::to_string(std::lround(points * 25.4 / 72) * 10);
  }

  std::string type;
  std::string colour;
  std::string source;
  std::string width;
  std::string height;
  bool isA5;
};

class SpecialPages {
 public:
  SpecialPages(const Choices& choices, ppd_file_t* ppd, PageSize page, TicketList& tickets)
      : choices_(choices), ppd_(ppd), page_(page), tickets_(tickets) {}

  void addCovers() {
    const std::string cover = choices_.choice("ZLVCover").keyword;
    if (cover.empty() || cover == "None" || tickets_.find(kSPXPCoverCountKey) != nullptr) return;
    std::vector<std::string> values;
    const Media media = mediaOf("ZLVCover");
    const std::string printed = WordFor(kCoverPrint, choices_.choice("ZLVCoverPrint").keyword);
    for (const char* side : {kFrontCover, kBackCover}) {
      if (cover != "Both" && cover != (side == kFrontCover ? "Front" : "Back")) continue;
      values.push_back(std::string(side) + "," + media.source + "," + printed + "," + media.type +
                       "," + media.colour + "," + media.width + "," + media.height);
    }
    addNumbered("ZLVCover", kSPXPCoverCountKey, kSPXPCoverValueKey, values);
  }

  bool addInsertions() {
    const Choice after = choices_.choice("ZLVInsertAfter");
    if (after.keyword != "Custom" || tickets_.find(kSPXPInsertionCountKey) != nullptr) return true;
    const Choice count = choices_.choice("ZLVInsertCount");
    const Media media = mediaOf("ZLVInsert");
    std::vector<std::string> values;
    for (const PageRange& page : PageRanges(after.entered)) {
      if (page.first != page.last) return false;
      values.push_back(media.source + "," + std::to_string(page.first) + "," +
                       (count.keyword == "Custom" ? count.entered : count.keyword) + "," +
                       media.colour + "," + media.width + "," + media.height + "," + media.type);
    }
    return addNumbered("ZLVInsertAfter", kSPXPInsertionCountKey, kSPXPInsertionValueKey, values);
  }

  bool addExceptions() {
    const Choice pages = choices_.choice("ZLVExceptionPages");
    if (pages.keyword != "Custom" || tickets_.find(kSPXPExceptionCountKey) != nullptr) return true;
    const Media media = mediaOf("ZLVException");
    const std::string sides = WordFor(kSides, choices_.choice("ZLVExceptionSides").keyword);
    std::vector<std::string> values;
    for (const PageRange& range : PageRanges(pages.entered)) {
      values.push_back("0,0,0," + std::to_string(range.first) + "," + std::to_string(range.last) +
                       "," + sides + "," + media.type + "," + media.colour + "," + media.width +
                       "," + media.height);
    }
    return addNumbered("ZLVExceptionPages", kSPXPExceptionCountKey, kSPXPExceptionValueKey, values);
  }

  bool anyA5() const { return anyA5_; }

 private:
  Media mediaOf(const std::string& kind) {
    Media media(choices_, ppd_, page_, kind);
    anyA5_ |= media.isA5;
    return media;
  }

  // False when there is nothing to add.
  bool addNumbered(const char* source, const char* countKey, const char* valueKey,
                   const std::vector<std::string>& values) {
    if (values.empty()) return false;
    tickets_.add({countKey, std::to_string(values.size()), source});
    for (std::size_t i = 0; i < values.size(); i++) {
      tickets_.add({valueKey + std::to_string(i), values[i], source});
    }
    return true;
  }

  const Choices& choices_;
  ppd_file_t* ppd_;
  PageSize page_;
  TicketList& tickets_;
  bool anyA5_ = false;
};

// A page number at the start of `text`, which is cut off it; 0 when there is none.
long TakeNumber(std::string_view& text) {
  constexpr long kMost = 99999;
  long number = 0;
  std::size_t digits = 0;
  while (digits < text.size() && digits < 6 && text[digits] >= '0' && text[digits] <= '9') {
    number = number * 10 + (text[digits++] - '0');
  }
  text.remove_prefix(digits);
  return number <= kMost ? number : 0;
}

}  // namespace

std::vector<PageRange> PageRanges(std::string_view text) {
  std::vector<PageRange> ranges;
  while (true) {
    PageRange range{TakeNumber(text), 0};
    range.last = range.first;
    if (text.starts_with('-')) {
      text.remove_prefix(1);
      range.last = TakeNumber(text);
    }
    if (range.first < 1 || range.last < range.first || ranges.size() == kMostPageRanges) return {};
    ranges.push_back(range);
    if (text.empty()) return ranges;
    if (!text.starts_with(',')) return {};
    text.remove_prefix(1);
  }
}

void AddSpecialPageTickets(const Choices& choices, ppd_file_t* ppd, PageSize page,
                           TicketList& tickets, Complaints& complaints) {
  SpecialPages pages(choices, ppd, page, tickets);
  pages.addCovers();
  if (!pages.addInsertions())
    complaints.warn("ZLVInsertAfter", "ZLVInsertAfter is no list of pages such as 3,7");
  if (!pages.addExceptions())
    complaints.warn("ZLVExceptionPages", "ZLVExceptionPages is no list such as 1,5-8");
  if (tickets.find(TICKET_KEY("EjectOptionsListTicket")) != nullptr) {
    const char* a5 = pages.anyA5() ? "1" : "0";
    tickets.add({TICKET_KEY("whetherMediaSizeA5Ticket"), a5, "ZLVOutputFace"});
  }
}
