// Choices that become another ticket, count by themselves, or have another form.

#include "mutate/TableMutants.h"
#include "queue/TicketRows.h"

namespace {

void AddCondition(TableMutants& mutants, const std::string& name, const Condition& condition) {
  if (condition.ticket == nullptr) return;
  AddChange(mutants, name + " condition gone", condition.ticket, nullptr);
  AddBreak(mutants, name + " condition's values", condition.values);
  AddChange(mutants, name + " condition turned", condition.unless, !condition.unless);
}

void AddTicketRows(TableMutants& mutants) {
  for (const TicketRow& row : TicketRows()) {
    const std::string name =
        std::string("choice ") + row.option + "=" + row.choice + " " + row.ticket;
    AddBreak(mutants, name + " option", row.option);
    AddBreak(mutants, name + " choice", row.choice);
    AddBreak(mutants, name + " ticket", row.ticket);
    AddCondition(mutants, name, row.condition);
    if (row.making == Making::kWord)
      AddBreak(mutants, name + " word", row.word);
    else
      AddChange(mutants, name + " making", row.making, Making::kWord);
  }
}

}  // namespace

void AddQueueMutants(TableMutants& mutants) {
  AddTicketRows(mutants);
  for (const NeedRow& row : NeedRows()) {
    const std::string name = std::string("need ") + row.condition.ticket + " of " + row.ticket;
    AddBreak(mutants, name, row.ticket);
    AddBreak(mutants, name + " condition's ticket", row.condition.ticket);
    AddBreak(mutants, name + " condition's values", row.condition.values);
    AddChange(mutants, name + " condition turned", row.condition.unless, !row.condition.unless);
  }
  for (const FormRow& row : FormRows()) {
    const std::string name = std::string("form ") + row.ticket;
    AddBreak(mutants, name + " ticket", row.ticket);
    AddChange(mutants, name + " form", row.form,
              row.form == Making::kNumber ? Making::kDigits : Making::kNumber);
  }
  for (const RangeRow& row : RangeRows()) {
    const std::string name = std::string("range ") + row.ticket;
    AddBreak(mutants, name + " ticket", row.ticket);
    AddChange(mutants, name + " least", row.least, row.least - 1);
    AddChange(mutants, name + " most", row.most, row.most + 1);
  }
  for (const FieldsRow& row : FieldsRows()) {
    const std::string name = std::string("fields ") + row.prefix;
    AddBreak(mutants, name + " prefix", row.prefix);
    AddChange(mutants, name + " number", row.fields, row.fields + 1);
    AddChange(mutants, name + " from inserter", row.fieldsFromInserter, row.fieldsFromInserter - 1);
  }
  for (const AttributeRow& row : AttributeRows()) {
    AddBreak(mutants, std::string("attribute ") + row.attribute, row.attribute);
    AddBreak(mutants, std::string("attribute's option ") + row.attribute, row.option);
  }
  for (const UnaskedRow& row : UnaskedRows()) {
    AddBreak(mutants, std::string("unasked ") + row.attribute, row.attribute);
    AddBreak(mutants, std::string("unasked value ") + row.attribute, row.value);
  }
  for (const MeaningRow& row : MeaningRows()) {
    const std::string name = std::string("meaning ") + row.option;
    AddBreak(mutants, name + " option", row.option);
    AddBreak(mutants, name + " main option", row.mainOption);
    AddBreak(mutants, name + " choice", row.choice);
    AddBreak(mutants, name + " allowed", row.allowed);
    AddChange(mutants, name + " fails", row.fails, !row.fails);
  }
}
