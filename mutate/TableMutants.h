// Faults that somebody could make in a table, each as something that can be done to the running
// program: tables are data.

#pragma once

#include <functional>
#include <span>
#include <string>
#include <type_traits>
#include <vector>

struct TableMutant {
  std::string name;  // table, row and what is wrong with it
  std::function<void()> apply;
};
using TableMutants = std::vector<TableMutant>;

// All of them, in an order that does not change from run to run. Binds the rows.
TableMutants AllTableMutants();

void AddRowMutants(TableMutants& mutants);     // PJL lines, and the tests they are written under
void AddTicketMutants(TableMutants& mutants);  // what fills the option records
void AddWordMutants(TableMutants& mutants);    // words, features and tokens
void AddQueueMutants(TableMutants& mutants);   // what choices become

// Writes over a constant.
void OverwriteBytes(const void* where, const void* bytes, std::size_t size);
template <typename Value>
void Overwrite(const Value& where, const std::type_identity_t<Value>& value) {
  OverwriteBytes(&where, &value, sizeof value);
}

// Another text that no table holds. It stays.
const char* Broken(const char* text);

template <typename Value>
void AddChange(TableMutants& mutants, const std::string& name, const Value& where,
               const std::type_identity_t<Value>& value) {
  mutants.push_back({name, [&where, value] { Overwrite(where, value); }});
}
inline void AddBreak(TableMutants& mutants, const std::string& name, const char* const& text) {
  mutants.push_back({name, [&text] { Overwrite(text, Broken(text)); }});
}
template <typename Value>
void AddExchange(TableMutants& mutants, const std::string& name, const Value& one,
                 const Value& other) {
  mutants.push_back({name, [&one, &other] {
                       const Value kept = one;
                       Overwrite(one, other);
                       Overwrite(other, kept);
                     }});
}
