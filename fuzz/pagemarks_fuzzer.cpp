// Page marks for any bytes: taken out again they leave the document, whatever pieces it comes in
// and goes out in. And the document in any bytes: a part of them without an exit sequence.

#include <algorithm>

#include "fuzz/FuzzSupport.h"
#include "queue/DocumentBody.h"
#include "queue/PageMarks.h"
#include "queue/PageMarksProlog.h"

namespace {

template <typename Reader>
std::string Read(std::string_view document, std::size_t piece, std::size_t room) {
  Reader reader([&document, piece](char* buffer, std::size_t size) {
    const std::size_t length = document.copy(buffer, std::min(size, piece));
    document.remove_prefix(length);
    return static_cast<ssize_t>(length);
  });
  std::string all;
  std::string buffer(room, '\0');
  for (ssize_t count; (count = reader.read(buffer.data(), room)) > 0;) {
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
  const std::size_t piece = 1U + data[0], room = 1U + data[1];
  const std::string body = Read<DocumentBody>(document, piece, room);
  Require(body == Read<DocumentBody>(document, 65536, 65536), "pieces of the body do not matter");
  Require(document.find(body) != document.npos, "nothing within the body is lost");
  Require(body.find("\x1b%-12345X") == body.npos, "no exit sequence is in the body");

  std::string marked = Read<PageMarks>(document, piece, room);
  Require(marked == Read<PageMarks>(document, 65536, 65536), "pieces do not matter");
  CutOut(marked, kPageMarksProlog);
  CutOut(marked, kPageMarksOfPage);
  std::string unmarked(document);
  if (document.find("ESPshowpage") != document.npos) {  // blanks hide the pages' own marks
    CutOut(marked, " ");
    CutOut(unmarked, " ");
  }
  Require(marked == unmarked, "only marks are added");
  return 0;
}
