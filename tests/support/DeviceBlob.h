// Opens a secure blob byte by byte, as the device does that holds the private key.

#pragma once

#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/rsa.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

struct EVPDeleter {
  void operator()(EVP_PKEY* key) const { EVP_PKEY_free(key); }
  void operator()(EVP_PKEY_CTX* context) const { EVP_PKEY_CTX_free(context); }
  void operator()(EVP_CIPHER_CTX* context) const { EVP_CIPHER_CTX_free(context); }
};
template <typename T>
using EVPPointer = std::unique_ptr<T, EVPDeleter>;

// A blob's fields; what is bytes lies in strings.
struct OpenedBlob {
  unsigned format = 0;
  unsigned version = 0;
  unsigned mode = 0;
  unsigned keyType = 0;
  std::uint32_t reserved = 0;
  std::string keyIdentifier;
  std::string salt;
  std::string transportSecret;
  std::string iv;
  std::string cipher;
  std::string plain;
};

inline unsigned char* Bytes(std::string& text) {
  return reinterpret_cast<unsigned char*>(text.data());
}

inline const unsigned char* Bytes(std::string_view text) {
  return reinterpret_cast<const unsigned char*>(text.data());
}

// Reads a PEM private key without a pass phrase; null if there is none at `path`.
inline EVPPointer<EVP_PKEY> ReadPrivateKey(const char* path) {
  std::FILE* file = std::fopen(path, "r");
  if (file == nullptr) return nullptr;
  EVPPointer<EVP_PKEY> key(PEM_read_PrivateKey(file, nullptr, nullptr, nullptr));
  std::fclose(file);
  return key;
}

inline std::optional<std::string> DecryptOAEP(EVP_PKEY* key, std::string_view cipher) {
  const EVPPointer<EVP_PKEY_CTX> context(EVP_PKEY_CTX_new(key, nullptr));
  std::string plain(cipher.size(), '\0');
  std::size_t length = plain.size();
  if (EVP_PKEY_decrypt_init(context.get()) <= 0 ||
      EVP_PKEY_CTX_set_rsa_padding(context.get(), RSA_PKCS1_OAEP_PADDING) <= 0 ||
      EVP_PKEY_CTX_set_rsa_oaep_md(context.get(), EVP_sha256()) <= 0 ||
      EVP_PKEY_CTX_set_rsa_mgf1_md(context.get(), EVP_sha256()) <= 0 ||
      EVP_PKEY_decrypt(context.get(), Bytes(plain), &length, Bytes(cipher), cipher.size()) <= 0) {
    return std::nullopt;
  }
  plain.resize(length);
  return plain;
}

inline std::optional<std::string> DecryptCBC(std::string_view key, std::string_view iv,
                                             std::string_view cipher) {
  const EVPPointer<EVP_CIPHER_CTX> context(EVP_CIPHER_CTX_new());
  std::string plain(cipher.size() + 16, '\0');
  int body = 0;
  int end = 0;
  if (key.size() != 32 || iv.size() != 16 ||
      EVP_DecryptInit_ex2(context.get(), EVP_aes_256_cbc(), Bytes(key), Bytes(iv), nullptr) <= 0 ||
      EVP_DecryptUpdate(context.get(), Bytes(plain), &body, Bytes(cipher),
                        static_cast<int>(cipher.size())) <= 0 ||
      EVP_DecryptFinal_ex(context.get(), Bytes(plain) + body, &end) <= 0) {
    return std::nullopt;
  }
  plain.resize(static_cast<std::size_t>(body + end));
  return plain;
}

// Takes `blob` apart and opens it with `key`, whose modulus gives the transport secret's length.
// Nothing if the blob's lengths do not add up or a layer does not open; the header's values and the
// key identifier are for the caller to judge.
inline std::optional<OpenedBlob> OpenBlob(std::string_view blob, EVP_PKEY* key) {
  const auto number = [&](std::size_t at) {
    std::uint32_t value = 0;
    for (std::size_t i = 4; i-- > 0;) value = value << 8 | Bytes(blob)[at + i];
    return value;
  };
  const auto wrapped = static_cast<std::size_t>(EVP_PKEY_get_size(key));
  const std::size_t cipherAt = 80 + wrapped + 16;
  if (blob.size() < cipherAt || number(6) != blob.size() || number(2) != blob.size() - cipherAt) {
    return std::nullopt;
  }
  OpenedBlob opened;
  opened.format = Bytes(blob)[0];
  opened.version = Bytes(blob)[1];
  opened.mode = Bytes(blob)[10];
  opened.keyType = Bytes(blob)[11];
  opened.reserved = number(12);
  opened.keyIdentifier = blob.substr(16, 32);
  opened.salt = blob.substr(48, 32);
  opened.iv = blob.substr(80 + wrapped, 16);
  opened.cipher = blob.substr(cipherAt);

  const auto secret = DecryptOAEP(key, blob.substr(80, wrapped));
  if (!secret) return std::nullopt;
  opened.transportSecret = *secret;
  std::string aesKey(32, '\0');
  if (EVP_Q_mac(nullptr, "HMAC", nullptr, "SHA256", nullptr, secret->data(), secret->size(),
                Bytes(opened.salt), opened.salt.size(), Bytes(aesKey), aesKey.size(),
                nullptr) == nullptr) {
    return std::nullopt;
  }
  const auto plain = DecryptCBC(aesKey, opened.iv, opened.cipher);
  if (!plain) return std::nullopt;
  opened.plain = *plain;
  return opened;
}

// The password that `blob` holds for the owner of `key`; nothing if it does not open.
inline std::optional<std::string> PasswordInBlob(std::string_view blob, EVP_PKEY* key) {
  const auto opened = OpenBlob(blob, key);
  if (!opened) return std::nullopt;
  return opened->plain;
}
