// What a document says of itself: its structuring comments and the page device it asks for.

#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "tools/inspect/JobReport.h"

class DocumentComments {
 public:
  // The document's next bytes; the first of them stands on `line` of the job.
  void take(std::string_view bytes, std::uint64_t line);

  // Ends the document; an unfinished last line counts.
  OwnSettings finish();

 private:
  void wholeLines(std::string_view bytes, std::uint64_t line);
  void comment(std::string_view line, std::uint64_t number);
  void pageDevice(std::string_view line, std::uint64_t number);
  void pageDeviceEntry(std::string_view text, std::uint64_t number);
  void add(std::string_view kind, std::string_view name, std::string_view value,
           std::uint64_t number);

  OwnSettings found_;
  std::string begun_;  // a line whose end has not come yet, its first bytes
  std::uint64_t begunLine_ = 0;
  bool inLine_ = false;
  int nested_ = 0;  // documents within the document, whose comments are theirs
};
