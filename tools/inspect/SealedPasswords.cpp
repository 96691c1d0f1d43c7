// The layers of a blob that show without the key, and what the key shows.

#include "tools/inspect/SealedPasswords.h"

#include <iterator>

#include "engine/StoredPassword.h"
#include "tools/inspect/DeviceBlob.h"

namespace {

constexpr std::size_t kShownDigits = 16;  // of a key's identifier

// The device's keys by the type that blobs name.
constexpr std::size_t kWrappedLengths[] = {256, 384};
constexpr const char* kKeyNames[] = {"2048-bit", "3072-bit"};

std::string Hex(std::string_view bytes) {
  constexpr char kDigits[] = "0123456789abcdef";
  std::string text;
  for (const char c : bytes) {
    const auto byte = static_cast<unsigned char>(c);
    text += kDigits[byte >> 4];
    text += kDigits[byte & 15];
  }
  return text;
}

// What is wrong with a blob as far as it shows from outside; null when nothing is.
const char* OuterFault(std::string_view blob, unsigned& keyType, std::string& sealedFor) {
  if (blob.empty()) return "it is no Base64 text";
  if (blob.size() < 16 || blob[0] != 8 || blob[1] != 1) return "it does not begin as a blob";
  keyType = static_cast<unsigned char>(blob[11]);
  if (keyType >= std::size(kWrappedLengths)) return "it names an unknown type of key";
  const auto parts = TakeBlobApart(blob, kWrappedLengths[keyType]);
  if (!parts) return "its lengths do not add up";
  if (parts->mode != 1 || parts->reserved != 0) return "its header holds unknown values";
  sealedFor = Hex(parts->keyIdentifier);
  if (parts->cipher.empty() || parts->cipher.size() % 16 != 0) return "it is cut off";
  return nullptr;
}

void Fault(JobReport& report, Setting& setting, const char* fault) {
  setting.sealed = std::string("malformed: ") + fault;
  report.problem(setting.line,
                 "no device can open the " + std::string(setting.row->name) + ": " + fault);
}

void OpenWith(JobReport& report, Setting& setting, const std::string& blob, EVP_PKEY* key) {
  const auto parts = TakeBlobApart(blob, static_cast<std::size_t>(EVP_PKEY_get_size(key)));
  if (!parts || parts->keyIdentifier != KeyIdentifier(key)) {
    setting.sealed += ", for another key than the one given";
    return report.problem(setting.line, "the " + std::string(setting.row->name) +
                                            " is sealed for another key than the one given");
  }
  const auto password = PasswordInBlob(blob, key);
  if (!password) return Fault(report, setting, "it does not open with its own key");
  if (password->size() > kLongestStoredPassword) return Fault(report, setting, "it is too long");
  setting.sealed += password->empty() ? ", opens, empty" : ", opens";
  setting.opened = true;
  setting.password = *password;
}

}  // namespace

void JudgePasswords(JobReport& report, EVP_PKEY* key) {
  for (Setting& setting : report.settings) {
    if (setting.row->kind != ValueKind::kSecret || setting.value.empty()) continue;
    const std::string blob = BlobBytes(setting.value);
    unsigned keyType = 0;
    if (const char* fault = OuterFault(blob, keyType, setting.sealedFor)) {
      Fault(report, setting, fault);
      continue;
    }
    setting.sealed = std::string("sealed for the ") + kKeyNames[keyType] + " device key " +
                     setting.sealedFor.substr(0, kShownDigits);
    if (key != nullptr) OpenWith(report, setting, blob, key);
  }
}
