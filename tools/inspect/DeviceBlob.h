// Opens a sealed password as the device does that holds the private key.

#pragma once

#include <openssl/evp.h>

#include <cstddef>
#include <cstdint>
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
using PrivateKey = EVPPointer<EVP_PKEY>;

inline unsigned char* Bytes(std::string& text) {
  return reinterpret_cast<unsigned char*>(text.data());
}
inline const unsigned char* Bytes(std::string_view text) {
  return reinterpret_cast<const unsigned char*>(text.data());
}

// A blob's fields; what is bytes lies in strings.
struct BlobParts {
  unsigned format = 0;
  unsigned version = 0;
  unsigned mode = 0;
  unsigned keyType = 0;
  std::uint32_t reserved = 0;
  std::string keyIdentifier;
  std::string salt;
  std::string wrappedSecret;
  std::string iv;
  std::string cipher;
};
struct OpenedBlob : BlobParts {
  std::string transportSecret;
  std::string plain;
};

// Reads a PEM private key; null if there is none at `path`. OpenSSL asks the terminal for the pass
// phrase of a key that has one.
PrivateKey ReadPrivateKey(const char* path);

// The identifier by which blobs name a key: SHA-256 of its SubjectPublicKeyInfo. Empty on failure.
std::string KeyIdentifier(EVP_PKEY* key);

// The bytes behind Base64 text; empty when it is none.
std::string BlobBytes(const std::string& text);

// Takes a blob apart whose transport secret is `wrappedLength` bytes long; nothing if its lengths
// do not add up. The values of the header are for the caller to judge.
std::optional<BlobParts> TakeBlobApart(std::string_view blob, std::size_t wrappedLength);

// Opens `blob` with `key`, whose modulus gives the transport secret's length. Nothing if it does
// not come apart or a layer does not open.
std::optional<OpenedBlob> OpenBlob(std::string_view blob, EVP_PKEY* key);

// The password that `blob` holds for the owner of `key`; nothing if it does not open.
std::optional<std::string> PasswordInBlob(std::string_view blob, EVP_PKEY* key);
