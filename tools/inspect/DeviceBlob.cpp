// The layers of a blob: header, RSA-OAEP, HMAC, AES.

#include "tools/inspect/DeviceBlob.h"

#include <openssl/crypto.h>
#include <openssl/pem.h>
#include <openssl/rsa.h>
#include <openssl/x509.h>

#include "secblobenc/secblobenc.h"

namespace {

constexpr std::size_t kIdentifierAt = 16;
constexpr std::size_t kSaltAt = 48;
constexpr std::size_t kWrappedAt = 80;
constexpr std::size_t kDigestLength = 32;
constexpr std::size_t kIVLength = 16;

std::uint32_t NumberAt(std::string_view blob, std::size_t at) {
  std::uint32_t value = 0;
  for (std::size_t i = 4; i-- > 0;) value = value << 8 | Bytes(blob)[at + i];
  return value;
}

std::optional<std::string> DecryptOAEP(EVP_PKEY* key, std::string_view cipher) {
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

std::optional<std::string> DecryptCBC(std::string_view key, std::string_view iv,
                                      std::string_view cipher) {
  const EVPPointer<EVP_CIPHER_CTX> context(EVP_CIPHER_CTX_new());
  std::string plain(cipher.size() + kIVLength, '\0');
  int body = 0;
  int end = 0;
  if (EVP_DecryptInit_ex2(context.get(), EVP_aes_256_cbc(), Bytes(key), Bytes(iv), nullptr) <= 0 ||
      EVP_DecryptUpdate(context.get(), Bytes(plain), &body, Bytes(cipher),
                        static_cast<int>(cipher.size())) <= 0 ||
      EVP_DecryptFinal_ex(context.get(), Bytes(plain) + body, &end) <= 0) {
    OPENSSL_cleanse(plain.data(), plain.size());
    return std::nullopt;
  }
  plain.resize(static_cast<std::size_t>(body) + static_cast<std::size_t>(end));
  return plain;
}

}  // namespace

PrivateKey ReadPrivateKey(const char* path) {
  const std::unique_ptr<BIO, decltype(&BIO_free)> file(BIO_new_file(path, "r"), BIO_free);
  if (!file) return nullptr;
  PrivateKey key(PEM_read_bio_PrivateKey(file.get(), nullptr, nullptr, nullptr));
  return key;
}

std::string KeyIdentifier(EVP_PKEY* key) {
  unsigned char* der = nullptr;
  const int length = i2d_PUBKEY(key, &der);
  if (length <= 0) return {};
  std::string digest(kDigestLength, '\0');
  const bool done = EVP_Digest(der, static_cast<std::size_t>(length), Bytes(digest), nullptr,
                               EVP_sha256(), nullptr) > 0;
  OPENSSL_free(der);
  return done ? digest : std::string();
}

std::string BlobBytes(const std::string& text) {
  std::string blob(text.size(), '\0');
  blob.resize(static_cast<std::size_t>(SecBlobEnc_Base64_Decode(text.c_str(), Bytes(blob))));
  return blob;
}

std::optional<BlobParts> TakeBlobApart(std::string_view blob, std::size_t wrappedLength) {
  const std::size_t ivAt = kWrappedAt + wrappedLength;
  const std::size_t cipherAt = ivAt + kIVLength;
  if (blob.size() < cipherAt || NumberAt(blob, 6) != blob.size() ||
      NumberAt(blob, 2) != blob.size() - cipherAt) {
    return std::nullopt;
  }
  BlobParts parts;
  parts.format = Bytes(blob)[0];
  parts.version = Bytes(blob)[1];
  parts.mode = Bytes(blob)[10];
  parts.keyType = Bytes(blob)[11];
  parts.reserved = NumberAt(blob, 12);
  parts.keyIdentifier = blob.substr(kIdentifierAt, kDigestLength);
  parts.salt = blob.substr(kSaltAt, kDigestLength);
  parts.wrappedSecret = blob.substr(kWrappedAt, wrappedLength);
  parts.iv = blob.substr(ivAt, kIVLength);
  parts.cipher = blob.substr(cipherAt);
  return parts;
}

std::optional<OpenedBlob> OpenBlob(std::string_view blob, EVP_PKEY* key) {
  const auto parts = TakeBlobApart(blob, static_cast<std::size_t>(EVP_PKEY_get_size(key)));
  if (!parts) return std::nullopt;
  const auto secret = DecryptOAEP(key, parts->wrappedSecret);
  if (!secret) return std::nullopt;
  OpenedBlob opened = {*parts, *secret, {}};
  std::string aesKey(kDigestLength, '\0');
  if (EVP_Q_mac(nullptr, "HMAC", nullptr, "SHA256", nullptr, secret->data(), secret->size(),
                Bytes(opened.salt), opened.salt.size(), Bytes(aesKey), aesKey.size(),
                nullptr) == nullptr) {
    return std::nullopt;
  }
  const auto plain = DecryptCBC(aesKey, opened.iv, opened.cipher);
  OPENSSL_cleanse(aesKey.data(), aesKey.size());
  if (!plain) return std::nullopt;
  opened.plain = *plain;
  return opened;
}

std::optional<std::string> PasswordInBlob(std::string_view blob, EVP_PKEY* key) {
  const auto opened = OpenBlob(blob, key);
  if (!opened) return std::nullopt;
  return opened->plain;
}
