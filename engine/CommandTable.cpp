// Expansion of rows into lines, and the tests that rows are written under.

#include "engine/CommandTable.h"

#include <cstring>

#include "FilterFrame/Source/UtilityFunctionFilter/OutputPrimitives.h"
#include "text/BoundedText.h"

namespace {

const CtrlSym* FindCtrlSym(const char* symbol) {
  for (const CtrlSym& row : ctrlSymTalbe) {
    if (std::strcmp(symbol, row.symbol) == 0) return &row;
  }
  return nullptr;
}

// The control symbol at `text`, copied out so that it can be looked up.
struct SymbolAt {
  explicit SymbolAt(const char* text) { CopyBounded(symbol, std::string_view(text, 2)); }
  char symbol[3];
};

std::int32_t IntAt(const void* operand) {
  return *static_cast<const std::int32_t*>(operand);
}
const char* TextAt(const void* operand) {
  return static_cast<const char*>(operand);
}
const char* TextVariableAt(const void* operand) {
  return *static_cast<const char* const*>(operand);
}

// A line being built: appends are cut to the buffer, which always ends in a terminator.
class LineBuilder {
 public:
  LineBuilder(char* out, std::size_t size) : out_(out), size_(size) { CopyBounded(out, size, {}); }
  void append(std::string_view text) {
    length_ += CopyBounded(out_ + length_, size_ - length_, text);
  }

 private:
  char* out_;
  std::size_t size_;
  std::size_t length_ = 0;
};

}  // namespace

void OutputXPJLCommandFromArray(char* const /*args*/[], const PrtFmt* table,
                                std::int32_t rowCount) {
  char command[kCommandSize];
  for (const PrtFmt* row = table; row < table + rowCount; row++) {
    if (row->condition != nullptr && ConditionCompare(row->condition) != 1) continue;
    BuildPrintComand(row->format, row->values, command, sizeof command);
    ZRfputs(command, stdout);
  }
}

int ConditionCompare(const Comparation* condition) {
  int result = 1;
  for (std::int32_t i = 0; i < condition->count; i++) {
    const ComparationItem& item = condition->items[i];
    result = item.compare(item.left, item.right);
    if (result == 0) break;
  }
  return result;
}

void BuildPrintComand(const char* format, const SymPara* values, char* out, std::size_t outSize) {
  char work[kCommandSize];
  char value[kCommandSize];
  CopyBounded(work, format);
  LineBuilder line(out, outSize);

  const char* literal = work;
  std::int32_t next = 0;
  for (const char* at = GetNextCtrlSym(work); at != nullptr; at = GetNextCtrlSym(literal)) {
    if (values == nullptr || values->list == nullptr) return;
    const SymbolAt found(at);
    if (getCtrlSym(found.symbol, values->list[next++].value, value, sizeof value) == 0) return;
    line.append(std::string_view(literal, static_cast<std::size_t>(at - literal)));
    line.append(value);
    literal = at + 2;
  }
  line.append(literal);
}

int getCtrlSym(const char* symbol, const void* value, char* buf, std::size_t bufSize) {
  const CtrlSym* row = FindCtrlSym(symbol);
  std::string_view text;
  char digits[16];
  if (row != nullptr) {
    switch (row->kind) {
      case CtrlSymKind::kInteger:
        std::snprintf(digits, sizeof digits, "%d", IntAt(value));
        text = digits;
        break;
      case CtrlSymKind::kByte:
        text = std::string_view(TextAt(value), *TextAt(value) != '\0' ? 1 : 0);
        break;
      case CtrlSymKind::kText:
        text = TextAt(value);
        break;
    }
  }
  return static_cast<int>(CopyBounded(buf, bufSize, text));
}

const char* GetNextCtrlSym(const char* text) {
  for (const char* at = std::strchr(text, '%'); at != nullptr; at = std::strchr(at + 1, '%')) {
    if (IsCtrlSym(SymbolAt(at).symbol) != 0) return at;
  }
  return nullptr;
}

int IsCtrlSym(const char* twoCharString) {
  return FindCtrlSym(twoCharString) != nullptr ? 1 : 0;
}

void InitializeCmdParaTable(SymPara* description, std::int32_t count, const CmdValue* list) {
  *description = {count, list};
}

void InitializeComparationTable(Comparation* condition, std::int32_t count,
                                const ComparationItem* items) {
  *condition = {count, items};
}

int IntCampareFunc(const void* left, const void* right) {
  return IntAt(left) == IntAt(right);
}

int IntNoEqualCampareFunc(const void* left, const void* right) {
  return IntAt(left) != IntAt(right);
}

int StrEqualCampareFunc(const void* left, const void* right) {
  return std::strcmp(TextAt(left), TextVariableAt(right)) == 0;
}

int StrContainCampareFunc(const void* left, const void* right) {
  if (StrIsNULLCampareFunc(left, right)) return 0;
  return std::strstr(TextAt(left), TextVariableAt(right)) != nullptr;
}

int StrNotContainCampareFunc(const void* left, const void* right) {
  return !StrContainCampareFunc(left, right);
}

int StrNoNULLCampareFunc(const void* left, const void* right) {
  return !StrIsNULLCampareFunc(left, right);
}

int StrIsNULLCampareFunc(const void* left, const void* /*right*/) {
  return left == nullptr || *TextAt(left) == '\0';
}

int StrLengthLessThanCampareFunc(const void* left, const void* right) {
  return static_cast<std::int64_t>(std::strlen(TextAt(left))) < IntAt(right);
}
