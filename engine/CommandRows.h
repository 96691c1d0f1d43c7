// Turns a .def file of rows into the named objects behind a table. Included with these defined:
//
//   ROWS_FILE        the .def file
//   ROWS_TABLE       the table to define, a `const PrtFmt[]`; without it every row becomes a
//                    table of its own, prtFmtTable<Name> with numFmtTable<Name> = 1
//   ROWS_COUNT       the number of rows the device's manual lists
//   ROWS_BIND_VALUES name of the function to define that binds each row's value list
//   ROWS_BIND_TESTS  the same for each row's condition; a file of ROW_SAME needs neither
//   ROWS_LIST        name of the `const RowTable` to define, which the module is registered with;
//                    a row that is a table of its own has rowTable<Name>
//   ROWS_USED        a bool() that says whether the printer gets the table; without it all do
//
// A row is
//
//   ROW(Name, "format", VALUES(...), TESTS(...))     VALUES() and TESTS() may be empty
//   ROW_LIKE(Name, Suffix, TESTS(...))               format and values of row Name; other tests
//   ROW_SAME(Name)                                   row Name as it stands
//
// where the last two take a row from a file that was expanded before. A row defines
// prtfmtStr<Name>, cmdParaList<Name>, cmdParaNum<Name>, symPara<Name>, comparationItem<Name> and
// comparation<Name> (a ROW_LIKE the last two, under <Name><Suffix>). A value that does not fit its
// control symbol, a missing one and a test on the wrong type do not compile.

#include <cstdint>
#include <iterator>

#include "engine/CommandTable.h"

#define QUOTE CTRLSym_DOUBLE
#define CR CTRLSym_CR
#define LF CTRLSym_LF
#define VALUES(...) __VA_ARGS__
#define TESTS(...) __VA_ARGS__

// Each list starts with a placeholder, since an array cannot be empty.
#define ROWS_LENGTH(list) (static_cast<std::int32_t>(std::size(list)) - 1)
#define ROWS_FIRST(list) (std::data(list) + 1)
#define ROWS_UNLESS_EMPTY(list, object) (ROWS_LENGTH(list) > 0 ? &object : nullptr)

// Text as it is written, macros in it expanded.
#define ROWS_LITERAL(...) #__VA_ARGS__
#define ROWS_TEXT(...) ROWS_LITERAL(__VA_ARGS__)

// Define the objects.
#define ROWS_TESTS(name, ...)                                                           \
  constexpr ComparationItem comparationItem##name[] = {ComparationItem{}, __VA_ARGS__}; \
  Comparation comparation##name;
#define ROW(name, format, values, tests)                                                  \
  constexpr char prtfmtStr##name[] = format;                                              \
  constexpr CmdValue cmdParaList##name[] = {CmdValue{}, values};                          \
  static_assert(ValuesFitFormat(prtfmtStr##name, {ROWS_FIRST(cmdParaList##name),          \
                                                  std::size(cmdParaList##name) - 1}));    \
  constexpr std::int32_t cmdParaNum##name = ROWS_LENGTH(cmdParaList##name);               \
  SymPara symPara##name;                                                                  \
  ROWS_TESTS(name, tests)
#define ROW_LIKE(name, suffix, tests) ROWS_TESTS(name##suffix, tests)
#define ROW_SAME(name)
namespace {
#include ROWS_FILE
}  // namespace
#undef ROW
#undef ROW_LIKE
#undef ROWS_TESTS

// List the table.
#define ROWS_ENTRY(name, condition)                                               \
  {prtfmtStr##name, ROWS_UNLESS_EMPTY(cmdParaList##name, symPara##name), \
   ROWS_UNLESS_EMPTY(comparationItem##condition, comparation##condition)}
#ifdef ROWS_TABLE
#define ROW(name, format, values, tests) ROWS_ENTRY(name, name),
#define ROW_LIKE(name, suffix, tests) ROWS_ENTRY(name, name##suffix),
#undef ROW_SAME
#define ROW_SAME(name) ROWS_ENTRY(name, name),
const PrtFmt ROWS_TABLE[] = {
#include ROWS_FILE
};
static_assert(std::size(ROWS_TABLE) == ROWS_COUNT);
#undef ROW
#undef ROW_LIKE
#undef ROW_SAME

// The rows' own text. One literal costs the filter nothing: no job looks at it.
#define ROW(name, format, values, tests) #name "\0" ROWS_TEXT(tests) "\0"
#define ROW_LIKE(name, suffix, tests) #name #suffix "\0" ROWS_TEXT(tests) "\0"
#define ROW_SAME(name) #name "\0\0"
#ifndef ROWS_USED
#define ROWS_USED nullptr
#endif
constexpr RowTable ROWS_LIST = {.name = ROWS_TEXT(ROWS_TABLE),
                                .rows = ROWS_TABLE,
                                .used = ROWS_USED,
                                .texts =
#include ROWS_FILE
};
#undef ROW_LIKE
#undef ROW_SAME
#define ROW_SAME(name)
#else
#define ROW(name, format, values, tests)                       \
  const PrtFmt prtFmtTable##name[] = {ROWS_ENTRY(name, name)}; \
  const std::int32_t numFmtTable##name = 1;                    \
  constexpr RowTable rowTable##name = {"prtFmtTable" #name, prtFmtTable##name, nullptr, \
                                       #name "\0" ROWS_TEXT(tests) "\0"};
#include ROWS_FILE
#endif
#undef ROW

#ifdef ROWS_BIND_VALUES
// Bind the descriptions.
#define ROW(name, format, values, tests) \
  InitializeCmdParaTable(&symPara##name, cmdParaNum##name, ROWS_FIRST(cmdParaList##name));
#define ROW_LIKE(name, suffix, tests)
void ROWS_BIND_VALUES() {
#include ROWS_FILE
}
#undef ROW
#undef ROW_LIKE

// Bind the conditions.
#define ROWS_BIND(name)                                                             \
  InitializeComparationTable(&comparation##name, ROWS_LENGTH(comparationItem##name), \
                             ROWS_FIRST(comparationItem##name));
#define ROW(name, format, values, tests) ROWS_BIND(name)
#define ROW_LIKE(name, suffix, tests) ROWS_BIND(name##suffix)
void ROWS_BIND_TESTS() {
#include ROWS_FILE
}
#undef ROW
#undef ROW_LIKE
#undef ROWS_BIND
#endif
#undef ROW_SAME

#undef ROWS_ENTRY
#undef ROWS_UNLESS_EMPTY
#undef ROWS_FIRST
#undef ROWS_LENGTH
#undef ROWS_TEXT
#undef ROWS_LITERAL
#undef TESTS
#undef VALUES
#undef LF
#undef CR
#undef QUOTE
#undef ROWS_USED
#undef ROWS_LIST
#undef ROWS_BIND_TESTS
#undef ROWS_BIND_VALUES
#undef ROWS_COUNT
#undef ROWS_TABLE
#undef ROWS_FILE
