// The window on the document: what is held until the document is understood, and what is passed on.

#include "queue/PageMarks.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <utility>

#include "queue/PageMarksProlog.h"

namespace {

using Found = DocumentStructure::Found;

constexpr std::size_t kBlockSize = 64 * 1024;

// So much is held of a document whose first page does not begin or does not end.
constexpr std::size_t kLongestHead = 4 * 1024 * 1024;

constexpr std::string_view kFirstLine = "%!PS-Adobe-";

// What may stand in front of it.
constexpr std::string_view kNothings = {" \t\r\n\f\0\4", 7};

std::string Prolog(PageMarks::Paper paper) {
  std::string prolog(kPageMarksProlog);
  if (paper.width > 0 && paper.height > 0) {
    prolog += "//PageMarksDict/paper[" + std::to_string(paper.width) + " " +
              std::to_string(paper.height) + "]put\n";
  }
  return prolog;
}

// How pstops begins a document whose pages it draws on sheets of its own.
constexpr std::string_view kSheetsOfPages = "\nuserdict/ESPshowpage/showpage load put\n";

// Header comments end where anything else begins, which a section's comment is too.
bool IsHeaderComment(std::string_view line) {
  return line.starts_with('%') && !line.starts_with("%%Begin") && !line.starts_with("%%End") &&
         !line.starts_with("%%Page:");
}

// Whether the document's prolog asks whether showpage is an operator. Programs that put several
// pages on a sheet do, and leave it alone when it is not.
bool AsksForShowpage(std::string_view prolog) {
  constexpr std::size_t kNear = 200;
  const std::string_view type = "operatortype";
  for (std::size_t at = prolog.find(type); at != prolog.npos; at = prolog.find(type, at + 1)) {
    const std::size_t from = at - std::min(at, kNear);
    if (prolog.substr(from, at - from).find("showpage") != prolog.npos) return true;
  }
  return false;
}

// How programs ask for copies, in a comment that begins a line or in PostScript.
struct CopiesSpelling {
  std::string_view name;  // the number stands behind it
  bool isDefined;         // "def" or "put" stands behind the number
};
constexpr CopiesSpelling kCopiesSpellings[] = {
    {"%RBINumCopies:", false},
    {"%RBIBeginNonPPDFeature: *NumCopies", false},
    {"%%BeginNonPPDFeature: NumCopies", false},
    {"/NumCopies", false},
    {"/#copies", true},
};
constexpr long kNoCopies = -1;

// Whether what begins at `at` means something: comments do at the beginning of a line, PostScript
// where it is not in a comment or a string.
bool Counts(std::string_view setup, std::size_t at) {
  constexpr std::size_t kLongestIndent = 200;  // looking back further could take long
  const std::size_t from = at - std::min(at, kLongestIndent);
  const std::string_view before = setup.substr(from, at - from);
  const std::size_t lineEnd = before.find_last_of("\r\n");
  if (lineEnd == before.npos && from > 0) return false;
  const std::string_view indent = before.substr(lineEnd + 1);
  return setup[at] == '%' ? indent.empty() : indent.find_first_of("%(") == indent.npos;
}

// The number of copies that the spelling at this place asks for, at least 0; or kNoCopies.
long CopiesAt(std::string_view setup, std::size_t at, const CopiesSpelling& spelling) {
  const std::string text(setup.substr(at + spelling.name.size(), 40));
  const std::size_t digits = text.find_first_not_of(" \t");
  if (digits == text.npos || !Counts(setup, at)) return kNoCopies;
  char* behind = nullptr;
  const long copies = std::strtol(text.c_str() + digits, &behind, 10);
  if (behind == text.c_str() + digits) return kNoCopies;
  behind += std::strspn(behind, " \t");
  if (spelling.isDefined && std::strncmp(behind, "def", 3) != 0 &&
      std::strncmp(behind, "put", 3) != 0) {
    return kNoCopies;
  }
  return std::max(copies, 0L);
}

}  // namespace

PageMarks::PageMarks(ByteReader source, Paper paper, std::string definitions)
    : source_(std::move(source)),
      definitions_(std::move(definitions)),
      prolog_(Prolog(paper) + definitions_),
      window_(new char[1 + kBlockSize]),
      capacity_(kBlockSize),
      begin_(window_.get() + 1),
      end_(begin_),
      ready_(begin_),
      scan_(begin_) {
  window_[0] = '\n';  // the document's first byte begins a line
}

ssize_t PageMarks::read(char* buffer, std::size_t size) {
  std::size_t filled = 0;
  while (filled < size) {
    const std::size_t room = size - filled;
    if (begin_ != ready_) {
      const std::size_t length = std::min(room, static_cast<std::size_t>(ready_ - begin_));
      std::memcpy(buffer + filled, begin_, length);
      begin_ += length;
      filled += length;
    } else if (!insertion_.empty()) {
      const std::size_t length = insertion_.copy(buffer + filled, room);
      insertion_.remove_prefix(length);
      filled += length;
    } else if (!scanWindow()) {
      if (filled > 0) break;
      if (ended_) {
        errno = error_;
        return error_ == 0 ? 0 : -1;
      }
      if (phase_ == Phase::kPass) return source_(buffer, size);
      if (refill() < 0) return -1;
    }
  }
  return static_cast<ssize_t>(filled);
}

// Finds what may be passed on or inserted next; false when more bytes are needed. What was ready is
// passed on.
bool PageMarks::scanWindow() {
  if (phase_ == Phase::kHeader) readHeader();
  if (phase_ == Phase::kHead) findFirstPage();
  if (phase_ == Phase::kFirstPage) judgeFirstPage();
  if (phase_ == Phase::kMark && std::exchange(prologDue_, false)) {
    ready_ = begin_ + headerSize_;
    firstPageSize_ -= std::min(firstPageSize_, headerSize_);
    insertion_ = prolog_;
    return true;
  }
  if (phase_ == Phase::kPass && !definitions_.empty() && std::exchange(prologDue_, false)) {
    ready_ = begin_ + headerSize_;
    insertion_ = definitions_;
    return true;
  }
  if (phase_ == Phase::kMark && std::exchange(firstPageDue_, false)) {
    ready_ = begin_ + firstPageSize_;
    insertion_ = kPageMarksOfPage;
    return true;
  }
  if (phase_ == Phase::kMark) {
    markPages();
    if (phase_ == Phase::kFirstPage) return scanWindow();
  }
  if (phase_ == Phase::kPass) ready_ = scan_ = end_;
  return ready_ != begin_ || !insertion_.empty();
}

void PageMarks::markPages() {
  Found found = Found::kTrailer;
  while (found == Found::kTrailer) found = nextOfPages(hasSheets_);
  if (found == Found::kPage && !firstPageJudged_) {
    keepFirstPage();
    phase_ = Phase::kFirstPage;
    return;
  }
  ready_ = scan_;
  if (found == Found::kPage) insertion_ = kPageMarksOfPage;
  if (found == Found::kBeginMark || found == Found::kEndMark) {
    ready_ -= scan_[-1] == '\n' && scan_[-2] == '\r' ? 2 : 1;
    insertion_ = " ";
  }
}

bool PageMarks::heldEnough() const {
  return ended_ || held() >= kLongestHead;
}

void PageMarks::readHeader() {
  std::string_view bytes(begin_, held());
  const std::size_t nothings = std::min(bytes.find_first_not_of(kNothings), bytes.size());
  bytes.remove_prefix(nothings);
  if (!bytes.starts_with(kFirstLine.substr(0, bytes.size())) ||
      (ended_ && bytes.size() < kFirstLine.size()) || nothings > DocumentStructure::kLongestLine) {
    phase_ = Phase::kPass;
    return;
  }
  scan_ = std::max(scan_, bytes.data());
  for (;;) {
    const LineEnd lineEnd = FindLineEnd(scan_, end_, ended_);
    if (lineEnd.text == nullptr) {
      const bool isLong =
          end_ - scan_ > static_cast<std::ptrdiff_t>(DocumentStructure::kLongestLine);
      if (!ended_ && !isLong) return;
      break;
    }
    const std::string_view line(scan_, static_cast<std::size_t>(lineEnd.text - scan_));
    const bool isEnd = line.starts_with("%%EndComments");
    if (!IsHeaderComment(line) && !isEnd) break;
    scan_ = lineEnd.next;
    if (isEnd) break;
  }
  headerSize_ = static_cast<std::size_t>(scan_ - begin_);
  phase_ = Phase::kHead;
}

// A trailer ahead of all pages is that of a document embedded without saying so, and so is a page
// in the prolog or the setup, unless that is never ended.
void PageMarks::findFirstPage() {
  Found found = Found::kTrailer;
  while (found != Found::kNothing && (found != Found::kPage || openSections_ > 0)) {
    found = structure_.next(scan_, end_, ended_, false);
    if (found == Found::kBeginSection) openSections_++;
    if (found == Found::kEndSection && openSections_ > 0 && --openSections_ == 0) {
      pageInSection_ = false;
    }
    if (found == Found::kPage && !pageInSection_) {
      keepFirstPage();
      pageInSection_ = openSections_ > 0;
    }
  }
  if (found == Found::kNothing && !heldEnough()) return;
  const bool hasPage = found == Found::kPage || pageInSection_;
  if (hasPage) goToFirstPage();
  readSetup({begin_, static_cast<std::size_t>(scan_ - begin_)});
  phase_ = hasPage ? Phase::kFirstPage : ended_ ? Phase::kPass : Phase::kMark;
}

void PageMarks::keepFirstPage() {
  firstPageSize_ = static_cast<std::size_t>(scan_ - begin_);
  atFirstPage_ = structure_;
}

void PageMarks::goToFirstPage() {
  scan_ = begin_ + firstPageSize_;
  structure_ = atFirstPage_;
}

// What is next of the pages, where sections mean nothing.
Found PageMarks::nextOfPages(bool withMarks) {
  Found found = Found::kBeginSection;
  while (found == Found::kBeginSection || found == Found::kEndSection) {
    found = structure_.next(scan_, end_, ended_, withMarks);
  }
  return found;
}

// Whether the first page begins with `bp` and ends with `ep`; its end may be out of sight.
void PageMarks::judgeFirstPage() {
  Found found = Found::kBeginMark;
  while (found == Found::kBeginMark || (found == Found::kEndMark && !pageHasBeginMark_)) {
    found = nextOfPages(true);
    if (found == Found::kBeginMark) pageHasBeginMark_ = true;
  }
  if (found == Found::kNothing && !heldEnough()) return;
  const bool mayEndLater = found == Found::kNothing && !ended_;
  const bool hasMarks =
      !hasSheets_ && pageHasBeginMark_ && (found == Found::kEndMark || mayEndLater);
  phase_ = hasMarks ? Phase::kPass : Phase::kMark;
  firstPageJudged_ = firstPageDue_ = true;
  if (prologDue_ && AsksForShowpage({begin_, firstPageSize_})) headerSize_ = firstPageSize_;
  goToFirstPage();
}

// The last number of copies counts.
void PageMarks::readSetup(std::string_view setup) {
  hasSheets_ = setup.find(kSheetsOfPages) != setup.npos;
  std::size_t last = 0;
  for (const CopiesSpelling& spelling : kCopiesSpellings) {
    for (std::size_t at = setup.find(spelling.name); at != setup.npos;
         at = setup.find(spelling.name, at + 1)) {
      const long copies = CopiesAt(setup, at, spelling);
      if (copies == kNoCopies || at < last) continue;
      deviceCopies_ = static_cast<int>(std::clamp(copies, 1L, 99999L));
      last = at;
    }
  }
}

// Reads behind what is held; what read() says. A failure that stays is the document's end.
ssize_t PageMarks::refill() {
  makeRoom();
  const std::size_t used = static_cast<std::size_t>(end_ - (window_.get() + 1));
  const ssize_t count = source_(end_, std::min(capacity_ - used, kBlockSize));
  if (count > 0) {
    end_ += count;
    return count;
  }
  if (count < 0 && MayPassLater(errno)) return -1;
  if (count < 0) error_ = errno;
  ended_ = true;
  return 0;
}

// Moves what is held to the front, with the byte before it, and makes the window larger when it is
// full: only while the head is held.
void PageMarks::makeRoom() {
  const std::size_t size = held();
  const std::ptrdiff_t scanned = scan_ - begin_;
  std::unique_ptr<char[]> full;  // until its bytes have moved
  if (size == capacity_) {
    full = std::exchange(window_, std::unique_ptr<char[]>(new char[1 + 2 * capacity_]));
    capacity_ *= 2;
  }
  if (begin_ - 1 != window_.get()) std::memmove(window_.get(), begin_ - 1, size + 1);
  begin_ = window_.get() + 1;
  end_ = begin_ + size;
  scan_ = begin_ + scanned;
  ready_ = begin_;
}
