// Reads a printer-ready job piece by piece: exit sequence, PJL header, PostScript, trailer. Memory
// does not grow with the job, whatever it holds.

#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "FilterFrame/Source/PostScriptLines.h"
#include "tools/dialect/ByteSearch.h"
#include "tools/inspect/DocumentScan.h"
#include "tools/inspect/JobReport.h"

// Receives the document's bytes in their order.
using PostScriptSink = std::function<void(std::string_view bytes)>;

class JobParser {
 public:
  explicit JobParser(PostScriptSink sink = {}) : sink_(std::move(sink)) {}

  // The job's next bytes; `token` when they are one of the lines that mean something to the filter.
  void feed(std::string_view bytes, const PostScriptToken* token);

  // Ends the job. Called once.
  JobReport finish();

 private:
  enum class State { kBeforeJob, kHeader, kPostScript, kTrailer };

  // Each takes some of `bytes` from its front; all that there is when the state stays.
  void beforeJob(std::string_view& bytes);
  void header(std::string_view& bytes);
  void postScript(std::string_view& bytes, const PostScriptToken* token);
  void trailer(std::string_view& bytes);

  void explainPrecedingBytes();
  void libraryMessages(std::string_view text, std::uint64_t line);
  void headerLine();
  void pjlLine(std::string_view line, bool crLf);
  void knownLine(const DialectRow& row, std::string_view line, std::string_view value);
  void checkLineEnd(const DialectRow& row, std::string_view line, bool crLf);
  void enterPostScript();
  void passOn(std::string_view bytes);
  void finishTrailer();
  void finishPostScript();

  void take(std::string_view& bytes, std::size_t count);
  void problem(std::uint64_t line, std::string text, std::string_view excerpt = {});

  PostScriptSink sink_;
  JobReport report_;
  State state_ = State::kBeforeJob;
  ExitSearch exit_;

  std::uint64_t offset_ = 0;  // of the next byte
  std::uint64_t line_ = 1;    // it stands on
  bool afterCR_ = false;

  std::string held_;             // before the job, a header line, or what follows the exit sequence
  std::uint64_t heldBytes_ = 0;  // of which the first are kept
  std::uint64_t heldLine_ = 1;   // where they begin
  std::size_t kept_ = 0;         // bytes of header lines in the report
  bool jobMode_ = false;
  bool summaryOpen_ = false;
  bool entered_ = false;  // the switch into PostScript has come
  bool exitAfterHeader_ = false;

  DocumentScan document_;
  char lastByte_ = '\0';  // of the document
};
