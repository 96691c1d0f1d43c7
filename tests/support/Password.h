// Passwords as the print dialog stores them and as the device opens them.

#pragma once

#include <string>

#include "DeploymentData.h"
#include "secblobenc/secblobenc.h"
#include "tools/DeviceBlob.h"

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
  constexpr std::size_t kShortestSealed = 400;
  constexpr char kBase64[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  for (std::size_t at = 0; at < lines.size();) {
    const std::size_t end = std::min(lines.find_first_not_of(kBase64, at), lines.size());
    if (end - at < kShortestSealed) {
      at = end + 1;
      continue;
    }
    const std::size_t quote = lines.find('"', end);  // behind the padding
    const std::string opened = "<" + Opened(lines.substr(at, quote - at)) + ">";
    lines.replace(at, quote - at, opened);
    at += opened.size();
  }
  return lines;
}
