// Comments are lines that begin "%%", or "%RBI" as CUPS writes them; of everything else only lines
// with setpagedevice are looked at.

#include "tools/inspect/DocumentComments.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "tools/dialect/ByteSearch.h"

namespace {

constexpr std::size_t kLongestLine = 1024;
constexpr std::size_t kMostSettings = 200;
constexpr std::string_view kLineEnds = "\r\n";
constexpr std::string_view kSetPageDevice = "setpagedevice";
// Behind them stand an entry of the page device and its value.
constexpr std::string_view kNonPPDFeatures[] = {
    "%RBIBeginNonPPDFeature: *", "%%BeginNonPPDFeature: *", "%%BeginNonPPDFeature: "};

// Comments with a value that is told.
constexpr struct {
  std::string_view comment;
  std::string_view name;
} kTold[] = {
    {"%%Title:", "Title"},
    {"%%Creator:", "Producer"},
    {"%%Pages:", "Pages announced"},
};

// Entries of the page device that a job's header can contradict, or that a reader looks for.
constexpr std::string_view kEntries[] = {"Duplex",    "Tumble",        "NumCopies",
                                         "Collate",   "PageSize",      "MediaColor",
                                         "MediaType", "MediaPosition", "ManualFeed"};

std::string_view Trimmed(std::string_view text) {
  text.remove_prefix(std::min(text.find_first_not_of(" \t"), text.size()));
  return text.substr(0, text.find_last_not_of(" \t") + 1);
}

std::string_view LineAt(std::string_view bytes, std::size_t at) {
  return bytes.substr(at, std::min(bytes.find_first_of(kLineEnds, at), bytes.size()) - at);
}

}  // namespace

void DocumentComments::take(std::string_view bytes, std::uint64_t line) {
  if (inLine_) {
    const std::size_t end = bytes.find_first_of(kLineEnds);
    const std::size_t room = kLongestLine - std::min(kLongestLine, begun_.size());
    begun_ += bytes.substr(0, std::min(end, room));
    if (end == bytes.npos) return;
    wholeLines(begun_, begunLine_);
    inLine_ = false;
    bytes.remove_prefix(end);
  }
  const std::size_t last = bytes.find_last_of(kLineEnds);
  const std::string_view whole = bytes.substr(0, last + 1);  // none: npos + 1 is 0
  wholeLines(whole, line);
  begun_ = bytes.substr(whole.size(), kLongestLine);
  begunLine_ = line + CountLineEnds(whole);
  inLine_ = whole.size() < bytes.size();
}

OwnSettings DocumentComments::finish() {
  if (inLine_) wholeLines(begun_, begunLine_);
  inLine_ = false;
  return std::move(found_);
}

void DocumentComments::wholeLines(std::string_view bytes, std::uint64_t line) {
  std::size_t counted = 0;
  const auto numberAt = [&](std::size_t at) {
    line += CountLineEnds(bytes.substr(counted, at - counted));
    counted = at;
    return line;
  };
  std::size_t device = bytes.find(kSetPageDevice);
  std::size_t standard = bytes.find("%%");
  std::size_t ofCUPS = bytes.find("%RBI");
  while (standard != bytes.npos || ofCUPS != bytes.npos || device != bytes.npos) {
    const std::size_t at = std::min(standard, ofCUPS);
    if (at < device) {
      const bool begins = at == 0 || kLineEnds.find(bytes[at - 1]) != kLineEnds.npos;
      if (begins) comment(LineAt(bytes, at), numberAt(at));
      if (at == standard) {
        standard = bytes.find("%%", at + 2);
      } else {
        ofCUPS = bytes.find("%RBI", at + 4);
      }
      continue;
    }
    const std::size_t from = device - std::min(device, kLongestLine);
    const std::size_t end = bytes.substr(from, device - from).find_last_of(kLineEnds);
    const std::size_t begin = end == bytes.npos ? from : from + end + 1;
    pageDevice(bytes.substr(begin, device - begin), numberAt(std::max(begin, counted)));
    device = bytes.find(kSetPageDevice, device + kSetPageDevice.size());
  }
}

void DocumentComments::comment(std::string_view line, std::uint64_t number) {
  if (line.starts_with("%%BeginDocument")) nested_++;
  if (line.starts_with("%%EndDocument")) nested_ = std::max(nested_ - 1, 0);
  if (nested_ > 0) return;
  if (line.starts_with("%%Page:")) found_.pageComments++;
  constexpr std::string_view kFeature = "%%BeginFeature: *";
  if (line.starts_with(kFeature)) {
    line.remove_prefix(kFeature.size());
    const std::size_t blank = std::min(line.find(' '), line.size());
    return add("feature", line.substr(0, blank), line.substr(blank), number);
  }
  for (const std::string_view begin : kNonPPDFeatures) {
    if (line.starts_with(begin)) return pageDeviceEntry(line.substr(begin.size()), number);
  }
  for (const auto& told : kTold) {
    if (!line.starts_with(told.comment)) continue;
    line.remove_prefix(told.comment.size());
    if (Trimmed(line) != "(atend)") add("comment", told.name, line, number);
    return;
  }
}

// `text` begins with the entry's name, ahead of its value. What stands on the stack is no value:
// the comment in front of it has said it.
void DocumentComments::pageDeviceEntry(std::string_view text, std::uint64_t number) {
  const auto* entry = std::find_if(std::begin(kEntries), std::end(kEntries), [&](auto known) {
    return text.starts_with(known) && text.substr(known.size()).find_first_of(" [(") == 0;
  });
  if (entry == std::end(kEntries)) return;
  const std::string_view value = Trimmed(text.substr(entry->size()));
  if (value.starts_with("exch ")) return;
  add("page-device", *entry, value.substr(0, value.find_first_of("/>")), number);
}

// `line` up to the operator: one or several dictionaries.
void DocumentComments::pageDevice(std::string_view line, std::uint64_t number) {
  if (line.substr(0, line.find("<<")).find('%') != line.npos) return;  // a comment
  for (std::size_t at = line.find('/'); at != line.npos; at = line.find('/', at + 1)) {
    pageDeviceEntry(line.substr(at + 1), number);
  }
}

void DocumentComments::add(std::string_view kind, std::string_view name, std::string_view value,
                           std::uint64_t number) {
  if (found_.entries.size() == kMostSettings) return;
  found_.entries.push_back(
      {kind, std::string(name.substr(0, 80)), std::string(Trimmed(value)), number});
}
