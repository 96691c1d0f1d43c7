// The states of reading a job, and what can be wrong in each.

#include "tools/inspect/JobParser.h"

#include <algorithm>
#include <utility>

#include "FilterFrame/Source/PostScriptStream.h"
#include "tools/inspect/LibraryMessages.h"
#include "tools/inspect/Plausibility.h"

namespace {

constexpr std::string_view kEndOfJob = "@PJL EOJ";

constexpr std::size_t kLongestLine = 4096;  // twice what the filter can write
constexpr std::size_t kExcerptBehindExit = 40;
constexpr std::size_t kMostHeaderBytes = 1024 * 1024;

std::string Number(std::uint64_t number, const char* one, const char* several) {
  return std::to_string(number) + " " + (number == 1 ? one : several);
}

}  // namespace

void JobParser::feed(std::string_view bytes, const PostScriptToken* token) {
  report_.bytes += bytes.size();
  while (!bytes.empty()) {
    switch (state_) {
      case State::kBeforeJob:
        beforeJob(bytes);
        break;
      case State::kHeader:
        header(bytes);
        break;
      case State::kPostScript:
        postScript(bytes, token);
        break;
      case State::kTrailer:
        trailer(bytes);
        break;
    }
  }
}

// Moves on behind the first `count` of `bytes`.
void JobParser::take(std::string_view& bytes, std::size_t count) {
  const std::string_view taken = bytes.substr(0, count);
  if (taken.empty()) return;
  offset_ += taken.size();
  line_ += CountLineEnds(taken);
  if (afterCR_ && taken.front() == '\n') line_--;
  afterCR_ = taken.back() == '\r';
  bytes.remove_prefix(taken.size());
}

void JobParser::problem(std::uint64_t line, std::string text, std::string_view excerpt) {
  report_.problem(line, std::move(text), excerpt);
}

void JobParser::beforeJob(std::string_view& bytes) {
  if (offset_ == 0 && bytes.starts_with(kPJL)) {
    problem(1, "there is no exit sequence in front of the job: the printer may take it for text");
    state_ = State::kHeader;
    return;
  }
  const std::size_t end = exit_.findEnd(bytes);
  const std::string_view taken = bytes.substr(0, end);
  held_.append(taken.substr(0, kLongestLine - std::min(kLongestLine, held_.size())));
  heldBytes_ += taken.size();
  if (end == bytes.npos) return take(bytes, bytes.size());
  take(bytes, end);
  report_.exitSequence = true;
  heldBytes_ -= kExitSequence.size();
  if (held_.size() > heldBytes_) held_.resize(heldBytes_);
  if (heldBytes_ > 0) explainPrecedingBytes();
  held_.clear();
  state_ = State::kHeader;
}

void JobParser::explainPrecedingBytes() {
  if (IsLibraryMessage(held_)) return libraryMessages(held_, 1);
  problem(1,
          Number(heldBytes_, "byte stands", "bytes stand") +
              " in front of the exit sequence; the printer may take them for text",
          held_);
}

void JobParser::libraryMessages(std::string_view text, std::uint64_t line) {
  for (const LibraryMessage& message : ExplainLibraryMessages(text)) {
    problem(line + message.line, "a message of the credential library" + message.meaning,
            message.text);
  }
}

void JobParser::header(std::string_view& bytes) {
  if (held_.empty()) {
    heldBytes_ = 0;
    heldLine_ = line_;
    if (bytes.starts_with("%!")) return enterPostScript();
  }
  const std::string_view exit = kExitSequence.substr(std::min(held_.size(), kExitSequence.size()));
  if (kExitSequence.starts_with(held_) && bytes.starts_with(exit)) {
    take(bytes, exit.size());
    held_.clear();
    heldBytes_ = 0;
    exitAfterHeader_ = true;
    state_ = State::kTrailer;
    return;
  }
  const std::size_t end = bytes.find('\n');
  const std::string_view taken = bytes.substr(0, end == bytes.npos ? end : end + 1);
  held_.append(taken.substr(0, kLongestLine - std::min(kLongestLine, held_.size())));
  heldBytes_ += taken.size();
  take(bytes, taken.size());
  if (end == bytes.npos) return;
  headerLine();
  held_.clear();
  heldBytes_ = 0;
}

void JobParser::headerLine() {
  if (heldBytes_ > held_.size()) {
    return problem(
        heldLine_,
        "a line of " + std::to_string(heldBytes_) + " bytes, longer than the filter writes any",
        held_);
  }
  std::string_view line(held_.data(), held_.size() - 1);
  const bool crLf = line.ends_with('\r');
  if (crLf) line.remove_suffix(1);
  if (IsLibraryMessage(line)) return libraryMessages(line, heldLine_);
  if (!line.starts_with(kPJL)) {
    return problem(heldLine_, "a line in the header that is no PJL", line);
  }
  pjlLine(line, crLf);
}

// A line that begins "@PJL ", without its line end.
void JobParser::pjlLine(std::string_view line, bool crLf) {
  const std::size_t next = line.rfind(kPJL);
  if (next > 0) {
    problem(heldLine_,
            "a line that lost its end runs into the next one, and the printer understands neither: "
            "the option behind it has no value, or one that is too long",
            line);
    line.remove_prefix(next);
    if (line.starts_with("@PJL ENTER LANGUAGE=")) enterPostScript();
    return;
  }
  const auto parts = TakeApart(line);
  const DialectRow* row = parts ? FindInDialect(parts->form, parts->code) : nullptr;
  if (row == nullptr) {
    return problem(heldLine_, "a line that the device dialect does not know", line);
  }
  if (!parts->closed) problem(heldLine_, "the closing quote is missing", line);
  if (!ValueInWords(*row, parts->value)) {
    problem(heldLine_, "a value that the device dialect does not know", line);
  }
  checkLineEnd(*row, line, crLf);
  knownLine(*row, line, parts->value);
}

void JobParser::checkLineEnd(const DialectRow& row, std::string_view line, bool crLf) {
  const LineEnds ends = LineEndsOf(row);
  if (crLf ? ends.crLf : ends.lf) return;
  problem(heldLine_,
          crLf ? "wrong line end: CR LF instead of LF alone" : "wrong line end: LF without CR",
          line);
}

void JobParser::knownLine(const DialectRow& row, std::string_view line, std::string_view value) {
  kept_ += line.size() + sizeof(Setting);
  if (kept_ <= kMostHeaderBytes) {
    report_.settings.push_back(
        {&row, std::string(value), std::string(line), heldLine_, {}, {}, false, {}});
  } else if (kept_ - line.size() - sizeof(Setting) <= kMostHeaderBytes) {
    problem(heldLine_, "the header is longer than any; what follows is not listed");
  }
  if (row.code == "STRINGCODESET" && value == "UTF8") report_.charset = Charset::kUTF8;
  if (row.code == "JOB MODE") jobMode_ = true;
  if (row.form == LineForm::kSummary) summaryOpen_ = row.code != "END";
  if (row.code == "EOJ") problem(heldLine_, "the job ends in its header", line);
  if (row.code == "ENTER LANGUAGE") enterPostScript();
}

void JobParser::enterPostScript() {
  entered_ = state_ == State::kPostScript || held_.starts_with(kPJL);
  if (state_ == State::kPostScript) return;
  if (!jobMode_) problem(0, "the header has no line @PJL JOB MODE=PRINTER");
  if (summaryOpen_) problem(0, "the job summary has no end");
  report_.spooledCopy = !entered_;
  document_.facts().present = true;
  document_.facts().firstLine = line_;
  lastByte_ = '\n';
  held_.clear();
  heldBytes_ = 0;
  state_ = State::kPostScript;
}

void JobParser::postScript(std::string_view& bytes, const PostScriptToken* token) {
  std::string_view document = bytes;
  if (report_.spooledCopy) {
    const std::size_t line = FindPJLLine(bytes, lastByte_);
    if (line == 0) {
      const std::size_t end = bytes.find_first_of("\r\n");
      heldLine_ = line_;
      held_ = bytes.substr(0, std::min(end, kLongestLine));
      take(bytes, end == bytes.npos ? end : end + 1);
      pjlLine(held_, false);
      held_.clear();
      lastByte_ = '\n';
      return;
    }
    document = bytes.substr(0, line);
  }
  if (token == nullptr) {
    document_.matchExpected(document);
  } else if (const auto fault = document_.beforeToken(*token, {line_, offset_})) {
    problem(fault->line, fault->text, fault->excerpt);
  }

  const std::size_t before = exit_.begun();
  const std::size_t end = exit_.findEnd(document);
  const bool ends = end != document.npos;
  const std::size_t taken = ends ? end : document.size();
  const std::size_t ofExit = std::min(taken, ends ? kExitSequence.size() : exit_.begun());
  const bool goesOn = ends ? end < kExitSequence.size() : exit_.begun() > document.size();
  if (before > 0 && !goesOn) passOn(kExitSequence.substr(0, before));
  passOn(document.substr(0, taken - ofExit));
  take(bytes, taken);
  document_.facts().lastLine = line_;
  if (token != nullptr) document_.afterToken(*token, {line_, offset_});
  if (!ends) return;
  held_.clear();
  heldBytes_ = 0;
  heldLine_ = line_;
  state_ = State::kTrailer;
}

// Bytes of the document.
void JobParser::passOn(std::string_view bytes) {
  if (bytes.empty()) return;
  if (sink_) sink_(bytes);
  const bool endsCRLF = afterCR_ && bytes.front() == '\n';  // a line that has been counted
  document_.take(bytes, line_ - (endsCRLF ? 1 : 0));
  lastByte_ = bytes.back();
}

void JobParser::trailer(std::string_view& bytes) {
  const std::string matched = held_;
  const std::size_t wanted = kEndOfJob.size() - std::min(kEndOfJob.size(), matched.size());
  const std::string_view expected = kEndOfJob.substr(kEndOfJob.size() - wanted);
  const std::string_view next = bytes.substr(0, wanted);
  if (next == expected.substr(0, next.size())) {
    held_.append(bytes.substr(0, kLongestLine - std::min(kLongestLine, held_.size())));
    heldBytes_ += bytes.size();
    return take(bytes, bytes.size());
  }
  held_.append(bytes.substr(0, kExcerptBehindExit));
  const bool inHeader = std::exchange(exitAfterHeader_, false);
  problem(heldLine_,
          inHeader ? "a second exit sequence in the header"
                   : "an exit sequence inside the PostScript: the printer ends the job "
                     "here",
          held_);
  // What had come of it before these bytes is the beginning of a line, or of the document's rest.
  state_ = inHeader ? State::kHeader : State::kPostScript;
  held_ = inHeader ? matched : "";
  heldBytes_ = held_.size();
  if (!inHeader) passOn(matched);
}

JobReport JobParser::finish() {
  switch (state_) {
    case State::kBeforeJob:
      problem(0,
              report_.bytes == 0        ? "there is nothing in it"
              : held_.starts_with("%!") ? "this is PostScript that has not gone through the filter"
              : held_.starts_with("%PDF")
                  ? "this is a PDF document that has not gone through the filter"
                  : "this is no printer-ready job: there is no exit sequence in it",
              held_.substr(0, held_.find('\n')));
      break;
    case State::kHeader:
      if (!held_.empty()) problem(heldLine_, "the job breaks off within a line", held_);
      problem(0, "the job breaks off in its header: there is no PostScript and no trailer");
      break;
    case State::kPostScript:
      problem(0, "the trailer is missing: the job breaks off in the PostScript");
      break;
    case State::kTrailer:
      finishTrailer();
      break;
  }
  finishPostScript();
  report_.postScript = std::move(document_.facts());
  JudgeSettings(report_);
  return std::move(report_);
}

void JobParser::finishTrailer() {
  if (exitAfterHeader_) {
    problem(heldLine_,
            "there is no PostScript: the job was cancelled, or the document could not "
            "be read or spooled");
  }
  const std::string_view rest =
      std::string_view(held_).substr(std::min(held_.size(), kEndOfJob.size()));
  if (held_.size() < kEndOfJob.size() || rest.empty()) {
    return problem(heldLine_, "the trailer breaks off", held_);
  }
  report_.trailer = true;
  const std::size_t end = rest.starts_with("\r\n") ? 2 : 1;
  if (rest.front() != '\n') problem(heldLine_, "wrong line end: the trailer ends in LF", held_);
  const std::uint64_t behind = heldBytes_ - kEndOfJob.size() - end;
  if (behind > 0) {
    problem(heldLine_, Number(behind, "byte follows", "bytes follow") + " the trailer",
            rest.substr(end));
  }
}

void JobParser::finishPostScript() {
  PostScriptFacts& facts = document_.facts();
  if (!facts.present) return;
  document_.finish();
  facts.closed = lastByte_ == kEndOfTransmission;
  if (report_.spooledCopy && !entered_) {
    problem(facts.firstLine, "the PostScript begins without @PJL ENTER LANGUAGE=POSTSCRIPT");
  } else if (report_.spooledCopy) {
    report_.notes.push_back({facts.firstLine,
                             "This is a job copy for a printer that decomposes PostScript: the "
                             "document stands where it was spooled, ahead of the switch.",
                             {}});
  }
  const std::uint64_t endByte = facts.closed ? 1 : 0;
  if (facts.bytes == endByte) problem(facts.firstLine, "the document is empty");
  if (!facts.closed && !report_.spooledCopy && report_.trailer && facts.bytes > 0) {
    report_.notes.push_back({facts.lastLine,
                             "The PostScript is not closed by the end byte: the "
                             "printer decomposes PostScript, or the job was cancelled.",
                             {}});
  }
  if (facts.pages == 0 && facts.bytes > endByte) {
    report_.notes.push_back({0,
                             PageCount(facts) > 0
                                 ? "The document does not end its pages with the lines ep or endp, "
                                   "so its pages are neither counted nor stamped."
                                 : "No page ends in this document.",
                             {}});
  }
}
