// Passwords as the print dialog stores them and as the device opens them.

#pragma once

#include <regex>
#include <string>

#include "DeploymentData.h"
#include "secblobenc/secblobenc.h"
#include "tools/inspect/DeviceBlob.h"

inline std::string Base64(const std::string& bytes) {
  std::string text((bytes.size() + 2) / 3 * 4, '\0');
  SecBlobEnc_Base64_Encode(Bytes(bytes), static_cast<std::uint32_t>(bytes.size()), text.data());
  return text;
}

// The stored form, as a ticket carries it.
inline std::string Stored(const std::string& password) {
  std::string cipher(password.size() + 16, '\0');
  auto length = static_cast<std::uint32_t>(cipher.size());
  if (Encode_Storage(Bytes(password), static_cast<std::uint32_t>(password.size()), seed1,
                     sizeof seed1, seed2, sizeof seed2, seed3, sizeof seed3, Bytes(cipher),
                     &length) != 0) {
    return "(not stored)";
  }
  return Base64(cipher.substr(0, length));
}

// The password in a sealed blob's Base64 text, as the device with the demonstration key opens it.
inline std::string Opened(const std::string& text) {
  static const auto key = ReadPrivateKey(TEST_DATA_DIR "/demo-device-2048-private.pem");
  return PasswordInBlob(BlobBytes(text), key.get()).value_or("(does not open)");
}

// A job's lines with every sealed password replaced by <the password>.
inline std::string WithOpenedPasswords(std::string lines) {
  static const std::regex sealed("[A-Za-z0-9+/]{400,}=*");
  for (std::smatch found; std::regex_search(lines, found, sealed);) {
    lines = found.prefix().str() + "<" + Opened(found.str()) + ">" + found.suffix().str();
  }
  return lines;
}
