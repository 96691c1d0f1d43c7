// The tables, expanded from their .def files.

#include "queue/TicketRows.h"

#include <algorithm>

#include "engine/TicketStore.h"

#define T(suffix) TICKET_KEY(suffix)
#define ANY kAny
#define ALWAYS         \
  Condition {          \
    nullptr, "", false \
  }
#define WITH(ticket, values) \
  Condition {                \
    ticket, values, false    \
  }
#define UNLESS(ticket, values) \
  Condition {                  \
    ticket, values, true       \
  }

namespace {

#define WORD(text) Making::kWord, text
#define CHOSEN Making::kChosen, ""
#define ENTERED Making::kEntered, ""
#define DIGITS Making::kDigits, ""
#define CLOCK Making::kClock, ""
#define SEPARATORS Making::kSeparators, ""
#define NUMBER Making::kNumber, ""
#define LOGIN Making::kLogin, ""
#define PASSWORD Making::kPassword, ""
#define ROW(option, choice, condition, ticket, ...) \
  {option, choice, condition, ticket, __VA_ARGS__},
constexpr TicketRow kTicketRows[] = {
#include "queue/Tickets.def"
};
#undef ROW

#define FORM_NUMBER Making::kNumber
#define FORM_DIGITS Making::kDigits
#define FORM_SEPARATORS Making::kSeparators
#define NEEDS(condition, ticket) {condition, ticket},
#define FORM(ticket, form)
#define RANGE(ticket, least, most)
#define FIELDS(prefix, fields, fieldsFromInserter)
constexpr NeedRow kNeedRows[] = {
#include "queue/Needs.def"
};
#undef NEEDS
#undef FORM
#define NEEDS(condition, ticket)
#define FORM(ticket, form) {ticket, form},
constexpr FormRow kFormRows[] = {
#include "queue/Needs.def"
};
#undef FORM
#undef RANGE
#define FORM(ticket, form)
#define RANGE(ticket, least, most) {ticket, least, most},
constexpr RangeRow kRangeRows[] = {
#include "queue/Needs.def"
};
#undef RANGE
#undef FIELDS
#define RANGE(ticket, least, most)
#define FIELDS(prefix, fields, fieldsFromInserter) {prefix, fields, fieldsFromInserter},
constexpr FieldsRow kFieldsRows[] = {
#include "queue/Needs.def"
};
#undef NEEDS
#undef FORM
#undef RANGE
#undef FIELDS

#define FAIL true
#define WARN false
#define ATTRIBUTE(attribute, option) {attribute, option},
#define UNASKED(attribute, value)
#define MEANS(option, mainOption, choice, allowed, fails)
constexpr AttributeRow kAttributeRows[] = {
#include "queue/Attributes.def"
};
#undef ATTRIBUTE
#undef UNASKED
#undef MEANS
#define ATTRIBUTE(attribute, option)
#define UNASKED(attribute, value) {attribute, value},
#define MEANS(option, mainOption, choice, allowed, fails)
constexpr UnaskedRow kUnaskedRows[] = {
#include "queue/Attributes.def"
};
#undef UNASKED
#undef MEANS
#define UNASKED(attribute, value)
#define MEANS(option, mainOption, choice, allowed, fails) \
  {option, mainOption, choice, allowed, fails},
constexpr MeaningRow kMeaningRows[] = {
#include "queue/Attributes.def"
};
#undef ATTRIBUTE
#undef UNASKED
#undef MEANS

#define UNUSED(ticket, why) {ticket, why},
constexpr UnusedRow kUnusedRows[] = {
#include "queue/NotComposed.def"
};
#undef UNUSED

}  // namespace

std::span<const TicketRow> TicketRows() {
  return kTicketRows;
}

std::span<const NeedRow> NeedRows() {
  return kNeedRows;
}

std::span<const FormRow> FormRows() {
  return kFormRows;
}

std::span<const RangeRow> RangeRows() {
  return kRangeRows;
}

std::span<const FieldsRow> FieldsRows() {
  return kFieldsRows;
}

std::span<const AttributeRow> AttributeRows() {
  return kAttributeRows;
}

std::span<const UnaskedRow> UnaskedRows() {
  return kUnaskedRows;
}

std::span<const MeaningRow> MeaningRows() {
  return kMeaningRows;
}

std::span<const UnusedRow> UnusedRows() {
  return kUnusedRows;
}

bool HasWord(std::string_view values, std::string_view value) {
  if (values == kAny) return !value.empty();
  while (!values.empty()) {
    const std::size_t end = std::min(values.find(' '), values.size());
    if (values.substr(0, end) == value) return true;
    values.remove_prefix(std::min(end + 1, values.size()));
  }
  return false;
}
