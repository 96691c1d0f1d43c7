// Recognises the PostScript that the filter puts into a document at the lines it acts on.

#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

#include "FilterFrame/Source/PostScriptLines.h"
#include "tools/inspect/JobReport.h"

// How much of the document in front of a token line the search wants to see.
inline constexpr std::size_t kInjectionReach = 1024;

// Name of an injection for readers, and for programs.
const char* InjectionName(InjectionKind kind);
const char* InjectionKey(InjectionKind kind);

struct FoundInjection {
  InjectionKind kind;
  std::size_t at;           // where it begins in the text given
  std::string_view detail;  // watermark text, separator pages, shift, switch
  bool whole = true;        // false: a text that was too long broke the PostScript
};

// What the filter put directly in front of a token line, in the order of the document. `before` is
// the document up to the line, at most back to the token line before.
std::vector<FoundInjection> InjectionsBefore(const PostScriptToken& token, std::string_view before);

// What the filter writes directly behind a token line when it writes something there.
struct ExpectedInjection {
  InjectionKind kind;
  std::string_view text;  // empty: nothing
};
ExpectedInjection InjectionAfter(const PostScriptToken& token);
