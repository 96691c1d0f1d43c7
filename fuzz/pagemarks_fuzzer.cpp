// Page marks for any bytes: taken out again they leave the document, whatever pieces it comes in
// and goes out in.

#include <algorithm>

#include "fuzz/FuzzSupport.h"
#include "queue/PageMarks.h"
#include "queue/PageMarksProlog.h"

namespace {

std::string Marked(std::string_view document, std::size_t piece, std::size_t room) {
  PageMarks marks([&document, piece](char* buffer, std::size_t size) {
    const std::size_t length = document.copy(buffer, std::min(size, piece));
    document.remove_prefix(length);
    return static_cast<ssize_t>(length);
  });
  std::string all;
  std::string buffer(room, '\0');
  for (ssize_t count; (count = marks.read(buffer.data(), room)) > 0;) {
    Require(static_cast<std::size_t>(count) <= room, "no more than asked for");
    all.append(buffer, 0, static_cast<std::size_t>(count));
  }
  return all;
}

// Takes each `part` out.
void CutOut(std::string& text, std::string_view part) {
  std::size_t at = 0;
  while ((at = text.find(part, at)) != text.npos) text.erase(at, part.size());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 2) return 0;
  const std::string_view document = Text(data + 2, size - 2);
  if (document.find("PageMarks\n") != document.npos) return 0;
  std::string marked = Marked(document, 1U + data[0], 1U + data[1]);
  Require(marked == Marked(document, 65536, 65536), "pieces do not matter");
  CutOut(marked, kPageMarksProlog);
  CutOut(marked, kPageMarksOfPage);
  Require(marked == document, "only marks are added");
  return 0;
}
