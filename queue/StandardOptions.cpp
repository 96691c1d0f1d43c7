// Locked options and standard attributes.

#include "queue/StandardOptions.h"

#include <strings.h>

#include <algorithm>
#include <string>
#include <string_view>

#include "queue/TicketKeys.h"
#include "queue/TicketRows.h"

namespace {

constexpr char kLock[] = "ZLVAccountingLock";
constexpr char kPasswordAttribute[] = "job-password";
constexpr char kEncryptionAttribute[] = "job-password-encryption";
constexpr char kNoEncryption[] = "none";

bool SameName(const std::string& a, const char* b) {
  return strcasecmp(a.c_str(), b) == 0;
}

auto Find(std::vector<JobOption>& options, const char* name) {
  return std::ranges::find_if(
      options, [name](const JobOption& option) { return SameName(option.name, name); });
}

// Whether an option of the PPD becomes a ticket of accounting.
bool IsAccountOption(const std::string& name) {
  return std::ranges::any_of(TicketRows(), [&name](const TicketRow& row) {
    return SameName(name, row.option) && BelongsTo(row.ticket, "accounting");
  });
}

bool IsAccount(const std::string& name) {
  if (BelongsTo(TicketKeyOf(name), "accounting") || IsAccountOption(name)) return true;
  return std::ranges::any_of(AttributeRows(), [&name](const AttributeRow& row) {
    return SameName(name, row.attribute) && IsAccountOption(row.option);
  });
}

bool IsLocked(ppd_file_t* ppd) {
  return strcasecmp(PPDDefault(ppd, kLock).c_str(), "True") == 0;
}

}  // namespace

std::vector<JobOption> WithoutLocked(ppd_file_t* ppd, std::vector<JobOption> options,
                                     Complaints& complaints) {
  const bool locked = IsLocked(ppd);
  std::erase_if(options, [&](const JobOption& option) {
    if (!SameName(option.name, kLock) && !(locked && IsAccount(option.name))) return false;
    if (strcasecmp(option.value.c_str(), PPDDefault(ppd, option.name).c_str()) != 0) {
      complaints.warn(option.name, option.name + " is fixed for this queue");
    }
    return true;
  });
  return options;
}

std::vector<JobOption> WithAttributes(ppd_file_t* ppd, std::vector<JobOption> options,
                                      Complaints& complaints) {
  for (const UnaskedRow& row : UnaskedRows()) {
    std::erase_if(options, [&row](const JobOption& option) {
      return SameName(option.name, row.attribute) && option.value == row.value;
    });
  }
  const auto said = Find(options, kEncryptionAttribute);
  const std::string encryption = said != options.end() ? said->value : kNoEncryption;
  for (const AttributeRow& row : AttributeRows()) {
    const auto attribute = Find(options, row.attribute);
    if (attribute == options.end()) continue;
    const std::string value = attribute->value;
    options.erase(attribute);
    if (value.empty()) continue;
    const bool secret = std::string_view(row.attribute) == kPasswordAttribute;
    if (secret && encryption != kNoEncryption) {
      complaints.fail(std::string(kEncryptionAttribute) + "=" + encryption + " is not known");
    }
    if (ppd == nullptr || ppdFindOption(ppd, row.option) == nullptr) {
      complaints.complain(secret, row.attribute,
                          std::string(row.attribute) + ": this printer has no " + row.option);
    } else if (const auto own = Find(options, row.option); own == options.end()) {
      options.push_back({row.option, "Custom." + value});
    } else if (SameName(own->value, "None")) {
      own->value = "Custom." + value;  // a dialog's default must not take a PIN away
    }
  }
  return options;
}
