// What is known of a job after reading it.

#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "tools/dialect/Dialect.h"
#include "tools/dialect/DisplayText.h"

// A line that asks the printer for something.
struct Setting {
  const DialectRow* row;  // never null
  std::string value;      // as it stands in the job
  std::string raw;        // the whole line without its line end
  std::uint64_t line;
  std::string sealed;     // what is known of a sealed password
  std::string sealedFor;  // the identifier of its key in hexadecimal digits
  bool opened = false;    // with the device's key
  std::string password;   // then its plaintext
};

// Something wrong with the job, or worth knowing.
struct Remark {
  std::uint64_t line;  // 0: none in particular
  std::string text;
  std::string excerpt;  // bytes of the job that it is about, may be empty
};

// PostScript that the filter put into the document.
enum class InjectionKind {
  kWatermarkProlog,
  kWatermarkPageSetup,
  kWatermarkText,
  kSeparatorPages,
  kImageShift,
  kAutoScale,
};
struct Injection {
  InjectionKind kind;
  std::string detail;  // of the first one, bytes of the job
  std::uint64_t count = 0;
  std::uint64_t line = 0;    // of the first one
  std::uint64_t offset = 0;  // of the first one, in bytes from the start of the job
  std::vector<std::pair<std::uint64_t, std::uint64_t>> pages;  // ranges, those kept
};

// Something that the document asks for or says of itself.
struct OwnSetting {
  std::string_view kind;  // "comment", "feature" or "page-device"
  std::string name;
  std::string value;  // bytes of the job
  std::uint64_t line;
};
struct OwnSettings {
  std::vector<OwnSetting> entries;  // those kept
  std::uint64_t pageComments = 0;   // pages by their comments
};

struct PostScriptFacts {
  bool present = false;
  std::uint64_t firstLine = 0;
  std::uint64_t lastLine = 0;
  std::uint64_t bytes = 0;
  std::uint64_t pages = 0;      // ended as the filter counts them
  std::uint64_t showpages = 0;  // lines that show a page without ending one
  bool closed = false;          // by the end-of-transmission byte
  std::vector<Injection> injections;
  OwnSettings own;
};

// The number of pages: as the filter counts them, else by their comments, else by showpage lines.
std::uint64_t PageCount(const PostScriptFacts& facts);

struct JobReport {
  Charset charset = Charset::kLatin1;
  std::uint64_t bytes = 0;
  bool exitSequence = false;  // at the start
  bool trailer = false;       // whole
  bool spooledCopy = false;   // PostScript ahead of the switch: the copy of a decomposed job
  std::vector<Setting> settings;
  std::vector<Remark> problems;  // those kept
  std::uint64_t problemsLeftOut = 0;
  std::vector<Remark> notes;
  PostScriptFacts postScript;
  int readError = 0;  // the error's number when reading did not come to the end

  // Adds one; the excerpt is cut to what a reader needs.
  void problem(std::uint64_t atLine, std::string text, std::string_view excerpt = {});
  std::uint64_t problemCount() const { return problems.size() + problemsLeftOut; }
};
