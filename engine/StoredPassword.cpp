// Storing a password as a print dialog does.

#include "engine/StoredPassword.h"

#include <cstdint>

#include "DeploymentData.h"
#include "secblobenc/secblobenc.h"

std::string StoredPassword(std::string_view password) {
  constexpr std::size_t kBlock = 16;
  if (password.empty() || password.size() > kLongestStoredPassword) return {};
  unsigned char cipher[kLongestStoredPassword / kBlock * kBlock + kBlock];
  std::uint32_t length = sizeof cipher;
  if (Encode_Storage(reinterpret_cast<const unsigned char*>(password.data()),
                     static_cast<std::uint32_t>(password.size()), seed1, sizeof seed1, seed2,
                     sizeof seed2, seed3, sizeof seed3, cipher, &length) != 0) {
    return {};
  }
  std::string text((length + 2) / 3 * 4, '\0');
  if (SecBlobEnc_Base64_Encode(cipher, length, text.data()) < 1) return {};
  return text;
}
