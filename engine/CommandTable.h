// The command table engine: static rows of (format, values, condition) become PJL lines.
//
// A row's format holds control symbols, "%d", "%c" and "%s"; nothing else in it is special. The
// row's parameter description lists one value for each symbol; its condition is a list of tests on
// the option records, all of which must hold. Rows are written in .def files (see CommandRows.h).

#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <span>
#include <string_view>

// A control symbol and what its value pointer points to.
enum class CtrlSymKind { kInteger = 0, kByte = 1, kText = 2 };
struct CtrlSym {
  const char* symbol;
  CtrlSymKind kind;
};
inline constexpr int CtrlSymNum = 3;
inline constexpr CtrlSym ctrlSymTalbe[CtrlSymNum] = {
    {"%d", CtrlSymKind::kInteger},  // std::int32_t
    {"%c", CtrlSymKind::kByte},     // one char
    {"%s", CtrlSymKind::kText},     // NUL-terminated text
};

// Bytes that are awkward inside a format; value lists point at them.
inline constexpr char CTRLSym_ESC = 27;
inline constexpr char CTRLSym_PERCENTAGE = '%';
inline constexpr char CTRLSym_CR = 13;
inline constexpr char CTRLSym_LF = 10;
inline constexpr char CTRLSym_DOUBLE = '"';

// Right operands of tests that ignore theirs.
inline constexpr const char* OptionNULLStr = nullptr;
inline constexpr const char* OptionNULLCharStr = nullptr;

// A test: 1 when it holds for the two operands, else 0.
using CompareFunc = int (*)(const void* left, const void* right);
struct ComparationItem {
  const void* left;
  const void* right;
  CompareFunc compare;
};
struct Comparation {
  std::int32_t count;            // items; below 1 the condition holds
  const ComparationItem* items;  // tested in order, all must hold
};

// One entry of a row's value list, with the control symbol its type asks for.
struct CmdValue {
  constexpr CmdValue() = default;
  constexpr CmdValue(const std::int32_t& number) : value(&number), symbol('d') {}
  constexpr CmdValue(const char& byte) : value(&byte), symbol('c') {}
  template <std::size_t Size>
  constexpr CmdValue(const char (&text)[Size]) : value(text), symbol('s') {}

  const void* value = nullptr;
  char symbol = '\0';
};

struct SymPara {
  std::int32_t count;    // entries of the list; expansion goes by the symbols of the format
  const CmdValue* list;  // one value for each control symbol, in their order
};

struct PrtFmt {
  const char* format;            // text with control symbols
  const SymPara* values;         // null when the format has no control symbol
  const Comparation* condition;  // null: always
};

// A table as its module lists it. `texts` holds for each row its name and its tests as they are
// written, each with a NUL behind it; no tests for a row that is another table's.
struct RowTable {
  const char* name;  // as the sources name it
  std::span<const PrtFmt> rows;
  bool (*used)() = nullptr;  // whether the job's printer gets it; null: every printer does
  const char* texts;
};

// The longest line a row can give, with its terminator, in bytes.
inline constexpr std::size_t kCommandSize = 2048;

// Writes every row of `table` (`rowCount` rows) whose condition holds to standard output. `args`,
// the filter's argument vector, is not used and may be null.
void OutputXPJLCommandFromArray(char* const args[], const PrtFmt* table, std::int32_t rowCount);

// 1 when all items of the condition hold (tested in order up to the first that fails), else the
// result of the item that decided.
int ConditionCompare(const Comparation* condition);

// Expands one row into `out` (`outSize` bytes), cut to outSize - 1 characters. A value that comes
// out empty ends the line in front of the literal text before its symbol.
void BuildPrintComand(const char* format, const SymPara* values, char* out, std::size_t outSize);

// Formats the value that `value` points to as `symbol` says into `buf` (`bufSize` bytes), cut to
// bufSize - 1 characters. Returns the length; 0 for a symbol that is not in the table.
int getCtrlSym(const char* symbol, const void* value, char* buf, std::size_t bufSize);

// The first control symbol in `text`, or null.
const char* GetNextCtrlSym(const char* text);

// 1 when the two characters are a control symbol, else 0.
int IsCtrlSym(const char* twoCharString);

// Bind a value list to its description, and test items to their condition.
void InitializeCmdParaTable(SymPara* description, std::int32_t count, const CmdValue* list);
void InitializeComparationTable(Comparation* condition, std::int32_t count,
                                const ComparationItem* items);

// The compare functions. A text operand on the left is a char array, on the right a pointer to a
// variable that holds a text pointer.
int IntCampareFunc(const void* left, const void* right);                // equal
int IntNoEqualCampareFunc(const void* left, const void* right);         // different
int StrEqualCampareFunc(const void* left, const void* right);           // the same text
int StrContainCampareFunc(const void* left, const void* right);         // left contains right
int StrNotContainCampareFunc(const void* left, const void* right);      // the contrary
int StrNoNULLCampareFunc(const void* left, const void* right);          // left is not empty
int StrIsNULLCampareFunc(const void* left, const void* right);          // left is empty
int StrLengthLessThanCampareFunc(const void* left, const void* right);  // bytes against an int

// Typed makers of condition items: a test of an int as if it were text does not compile, and the
// right operand must be a named constant.
constexpr ComparationItem Equal(const std::int32_t& option, const std::int32_t& constant) {
  return {&option, &constant, IntCampareFunc};
}
constexpr ComparationItem Differs(const std::int32_t& option, const std::int32_t& constant) {
  return {&option, &constant, IntNoEqualCampareFunc};
}
template <std::size_t Size>
constexpr ComparationItem Equal(const char (&option)[Size], const char* const& constant) {
  return {option, &constant, StrEqualCampareFunc};
}
template <std::size_t Size>
constexpr ComparationItem Contains(const char (&option)[Size], const char* const& constant) {
  return {option, &constant, StrContainCampareFunc};
}
template <std::size_t Size>
constexpr ComparationItem Lacks(const char (&option)[Size], const char* const& constant) {
  return {option, &constant, StrNotContainCampareFunc};
}
template <std::size_t Size>
constexpr ComparationItem Filled(const char (&option)[Size]) {
  return {option, &OptionNULLStr, StrNoNULLCampareFunc};
}
template <std::size_t Size>
constexpr ComparationItem Empty(const char (&option)[Size]) {
  return {option, &OptionNULLStr, StrIsNULLCampareFunc};
}
template <std::size_t Size>
constexpr ComparationItem ShorterThan(const char (&option)[Size], const std::int32_t& bytes) {
  return {option, &bytes, StrLengthLessThanCampareFunc};
}

// Whether the values stand in exactly the order and number of the format's control symbols.
constexpr bool ValuesFitFormat(std::string_view format, std::span<const CmdValue> values) {
  for (std::size_t i = 0; i + 1 < format.size(); i++) {
    const char symbol = format[i + 1];
    if (format[i] != '%' || (symbol != 'd' && symbol != 'c' && symbol != 's')) continue;
    if (values.empty() || values.front().symbol != symbol) return false;
    values = values.subspan(1);
  }
  return values.empty();
}
