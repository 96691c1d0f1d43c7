// Sealing. A blob is put together only when all its parts are there, so that a failure leaves no
// trace in the caller's buffer.

#include "secblobenc/secblobenc-sender.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <memory>
#include <new>

#include "DeploymentData.h"
#include "secblobenc/secblobenc-internal.h"

namespace {

constexpr std::uint32_t kFirstLengthTooLong = 99501;
constexpr int kCodeTooLong = 88;
constexpr int kCodeInvalidKeyType = 106;
constexpr CryptographyStep kDrawSecret{114, "generate random"};
constexpr CryptographyStep kDrawSalt{122, "generate random"};
constexpr CryptographyStep kDeriveKey{131, "Key Derivation HMAC"};
constexpr CryptographyStep kDrawIV{139, "generate random"};
constexpr CryptographyStep kWrapSecret{150, "RSA Encrypt"};
constexpr CryptographyStep kEncryptPlain{161, "AES Encrypt"};

constexpr unsigned char kFormat = 8;
constexpr unsigned char kVersion = 1;
constexpr std::uint32_t kHeaderLength = 16;
constexpr std::uint32_t kIdentifierLength = 32;
constexpr std::uint32_t kSaltLength = 32;
constexpr std::uint32_t kTransportSecretLength = 32;
constexpr std::uint32_t kWrappedSecretCapacity = 512;  // an RSA key of 4096 bits
constexpr std::uint32_t kIVLengthOfModeZero = 12;
constexpr std::uint32_t kTagLength = 16;

using KeyIdentifier = unsigned char[kIdentifierLength];

// The parts of a blob that sealing fills in, in the blob's order.
struct SealedParts {
  std::array<unsigned char, kSaltLength> salt{};
  std::array<unsigned char, kWrappedSecretCapacity> wrappedSecret{};
  std::uint32_t wrappedSecretLength = 0;
  std::array<unsigned char, kAESBlockLength> iv{};
  std::uint32_t ivLength = 0;
  std::array<unsigned char, kTagLength> tag{};
  std::uint32_t tagLength = 0;
  std::unique_ptr<unsigned char[]> cipher;
  std::uint32_t cipherLength = 0;
};

const KeyIdentifier* FindKeyIdentifier(unsigned keyType) {
  switch (keyType) {
    case kKeyTypeRSA2048:
      return &pubkey2048_OFFICIAL_SHA256;
    case kKeyTypeRSA3072:
      return &pubkey3072_OFFICIAL_SHA256;
    default:
      return nullptr;
  }
}

bool Seal(unsigned mode, const unsigned char* plain, std::uint32_t plainLength,
          const char* publicKeyText, std::uint32_t publicKeyTextLength, SealedParts* parts) {
  parts->ivLength = mode == 0 ? kIVLengthOfModeZero : kAESBlockLength;
  parts->tagLength = mode == kAESModeCBC ? 0 : kTagLength;
  const std::uint32_t cipherCapacity = plainLength + kAESBlockLength;
  parts->cipher.reset(new (std::nothrow) unsigned char[cipherCapacity]);
  if (parts->cipher == nullptr) return false;

  SecretBytes<kTransportSecretLength> secret;
  SecretBytes<kAESKeyLength> key;
  return Succeeded(kDrawSecret, SecBlobEncInternal_GenerateRandom(secret.size(), secret.data())) &&
         Succeeded(kDrawSalt, SecBlobEncInternal_GenerateRandom(kSaltLength, parts->salt.data())) &&
         Succeeded(kDeriveKey,
                   SecBlobEncInternal_GenerateHMAC(secret.data(), secret.size(), parts->salt.data(),
                                                   kSaltLength, key.data())) &&
         Succeeded(kDrawIV, SecBlobEncInternal_GenerateRandom(parts->ivLength, parts->iv.data())) &&
         Succeeded(kWrapSecret, SecBlobEncInternal_RSAEncrypt(
                                    publicKeyText, publicKeyTextLength, secret.data(),
                                    secret.size(), kWrappedSecretCapacity,
                                    parts->wrappedSecret.data(), &parts->wrappedSecretLength)) &&
         Succeeded(kEncryptPlain,
                   SecBlobEncInternal_AESEncrypt(
                       mode, key.data(), key.size(), parts->iv.data(), parts->ivLength, plain,
                       plainLength, cipherCapacity, parts->cipher.get(), &parts->cipherLength,
                       parts->tag.data(), parts->tagLength));
}

void StoreLittleEndian(std::uint32_t value, unsigned char* out) {
  for (unsigned i = 0; i < 4; i++) out[i] = static_cast<unsigned char>(value >> (8 * i));
}

std::uint32_t WriteBlob(unsigned mode, unsigned keyType, const KeyIdentifier& identifier,
                        const SealedParts& parts, unsigned char* blob) {
  const std::uint32_t total = kHeaderLength + kIdentifierLength + kSaltLength +
                              parts.wrappedSecretLength + parts.ivLength + parts.tagLength +
                              parts.cipherLength;
  std::array<unsigned char, kHeaderLength> header{kFormat, kVersion};
  StoreLittleEndian(parts.cipherLength, &header[2]);
  StoreLittleEndian(total, &header[6]);
  header[10] = static_cast<unsigned char>(mode);
  header[11] = static_cast<unsigned char>(keyType);

  unsigned char* end = std::copy_n(header.data(), kHeaderLength, blob);
  end = std::copy_n(identifier, kIdentifierLength, end);
  end = std::copy_n(parts.salt.data(), kSaltLength, end);
  end = std::copy_n(parts.wrappedSecret.data(), parts.wrappedSecretLength, end);
  end = std::copy_n(parts.iv.data(), parts.ivLength, end);
  end = std::copy_n(parts.tag.data(), parts.tagLength, end);
  std::copy_n(parts.cipher.get(), parts.cipherLength, end);
  return total;
}

}  // namespace

unsigned SecBlobEnc_KT_Encrypt(unsigned mode, unsigned keyType, const unsigned char* plain,
                               std::uint32_t plainLength, const char* publicKeyText,
                               std::uint32_t publicKeyTextLength, unsigned char* blob,
                               std::uint32_t* blobLength) {
  if (plainLength >= kFirstLengthTooLong) {
    std::printf("ERROR[%d]: too long bufLen [%d].\n", kCodeTooLong, static_cast<int>(plainLength));
    return kBadArgument;
  }
  const KeyIdentifier* identifier = FindKeyIdentifier(keyType);
  if (identifier == nullptr) {
    std::printf("ERROR[%d]: invalid key type[%d].\n", kCodeInvalidKeyType,
                static_cast<int>(keyType));
    return kBadArgument;
  }
  SealedParts parts;
  if (!Seal(mode, plain, plainLength, publicKeyText, publicKeyTextLength, &parts)) {
    return kCryptographyFailed;
  }
  *blobLength = WriteBlob(mode, keyType, *identifier, parts, blob);
  return kSuccess;
}
