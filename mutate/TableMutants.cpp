// The lists together, and the writing.

#include "mutate/TableMutants.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "engine/JobHeader.h"

TableMutants AllTableMutants() {
  InializeDescriptionTable();
  TableMutants mutants;
  AddRowMutants(mutants);
  AddTicketMutants(mutants);
  AddWordMutants(mutants);
  AddQueueMutants(mutants);
  return mutants;
}

void OverwriteBytes(const void* where, const void* bytes, std::size_t size) {
  const auto page = static_cast<std::uintptr_t>(sysconf(_SC_PAGESIZE));
  const auto at = reinterpret_cast<std::uintptr_t>(where);
  const std::uintptr_t first = at / page * page, end = (at + size + page - 1) / page * page;
  if (mprotect(reinterpret_cast<void*>(first), end - first, PROT_READ | PROT_WRITE) != 0)
    std::abort();
  std::memcpy(const_cast<void*>(where), bytes, size);
}

const char* Broken(const char* text) {
  static std::string broken;
  broken = text + std::string("?");
  return broken.c_str();
}
