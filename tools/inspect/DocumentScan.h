// Follows the document within a job: counts its pages and finds what the filter put into it.

#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "FilterFrame/Source/PostScriptLines.h"
#include "tools/inspect/DocumentComments.h"
#include "tools/inspect/InjectedPostScript.h"
#include "tools/inspect/JobReport.h"

// Where something begins in a job.
struct JobPlace {
  std::uint64_t line;
  std::uint64_t offset;
};

class DocumentScan {
 public:
  // What is known so far.
  PostScriptFacts& facts() { return facts_; }

  // A token line begins at `place`. Returns what is wrong with an insertion in front of it.
  std::optional<Remark> beforeToken(const PostScriptToken& token, JobPlace place);

  // The token line ended; what stands behind it begins at `place`.
  void afterToken(const PostScriptToken& token, JobPlace place);

  // The next bytes behind a token line, which may be an insertion.
  void matchExpected(std::string_view bytes);

  // The next bytes of the document, token lines among them; the first stands on `line`.
  void take(std::string_view bytes, std::uint64_t line);

  // Ends the document.
  void finish() { facts_.own = comments_.finish(); }

 private:
  void count(const FoundInjection& found, std::uint64_t page, JobPlace place);

  PostScriptFacts facts_;
  DocumentComments comments_;
  std::string tail_;  // of the document, back to the token line before
  ExpectedInjection expected_ = {};
  std::size_t expectedMatched_ = 0;
  JobPlace expectedPlace_ = {};
  bool behindPageEnd_ = false;   // nothing has come behind the line that ends a page
  bool endIsProcedure_ = false;  // that line is part of one, which stands ahead of the page
};
