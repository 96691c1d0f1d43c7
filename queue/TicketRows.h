// The queue filter's tables: which choice becomes which ticket, what counts only together, which
// attribute stands for which option. Their rows are the .def files of this room.

#pragma once

#include <span>
#include <string_view>

// Stands for any choice, or for any value that is not empty.
inline constexpr char kAny[] = "*";

// Something said of a ticket's value. Values are separated by blanks.
struct Condition {
  const char* ticket;  // null: holds always
  const char* values;
  bool unless;  // holds for every other value of a ticket that is there
};

// What a ticket's value is made of.
enum class Making {
  kWord,
  kChosen,
  kEntered,
  kDigits,
  kClock,
  kSeparators,
  kNumber,
  kLogin,
  kPassword
};

struct TicketRow {
  const char* option;
  const char* choice;
  Condition condition;
  const char* ticket;
  Making making;
  const char* word;
};

struct NeedRow {
  Condition condition;
  const char* ticket;
};

struct FormRow {
  const char* ticket;
  Making form;
};

struct RangeRow {
  const char* ticket;
  int least;
  int most;
};

struct FieldsRow {
  const char* prefix;  // of the numbered ticket's key
  int fields;
  int fieldsFromInserter;  // where the inserter gives the paper
};

struct AttributeRow {
  const char* attribute;
  const char* option;
};

struct UnaskedRow {
  const char* attribute;
  const char* value;
};

struct MeaningRow {
  const char* option;
  const char* mainOption;
  const char* choice;
  const char* allowed;
  bool fails;  // the job, where it cannot be
};

struct UnusedRow {
  const char* ticket;
  const char* why;
};

std::span<const TicketRow> TicketRows();
std::span<const NeedRow> NeedRows();
std::span<const FormRow> FormRows();
std::span<const RangeRow> RangeRows();
std::span<const FieldsRow> FieldsRows();
std::span<const AttributeRow> AttributeRows();
std::span<const UnaskedRow> UnaskedRows();
std::span<const MeaningRow> MeaningRows();
std::span<const UnusedRow> UnusedRows();

// Whether `values`, separated by blanks, hold `value`; kAny holds every one that is not empty.
bool HasWord(std::string_view values, std::string_view value);
