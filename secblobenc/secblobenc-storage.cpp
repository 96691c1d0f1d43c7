// The storage form: AES-256-CBC under a key that both sides derive from two fixed seeds.

#include "secblobenc/secblobenc-storage.h"

#include "secblobenc/secblobenc-internal.h"

namespace {

constexpr CryptographyStep kDeriveEncryptKey{39, "Key Derivation HMAC"};
constexpr CryptographyStep kEncrypt{52, "AES Encrypt"};
constexpr CryptographyStep kDeriveDecryptKey{84, "Key Derivation HMAC"};
constexpr CryptographyStep kDecrypt{97, "AES Decrypt"};

}  // namespace

unsigned SecBlobEnc_DataStorage_Encrypt(const unsigned char* plain, std::uint32_t plainLength,
                                        const unsigned char* keySeed, std::uint32_t keySeedLength,
                                        const unsigned char* messageSeed,
                                        std::uint32_t messageSeedLength, const unsigned char* iv,
                                        std::uint32_t ivLength, unsigned char* cipher,
                                        std::uint32_t* cipherLength) {
  SecretBytes<kAESKeyLength> key;
  const bool done =
      Succeeded(kDeriveEncryptKey,
                SecBlobEncInternal_GenerateHMAC(keySeed, keySeedLength, messageSeed,
                                                messageSeedLength, key.data())) &&
      Succeeded(kEncrypt, SecBlobEncInternal_AESEncrypt(kAESModeCBC, key.data(), key.size(), iv,
                                                        ivLength, plain, plainLength, *cipherLength,
                                                        cipher, cipherLength, nullptr, 0));
  return done ? kSuccess : kCryptographyFailed;
}

unsigned SecBlobEnc_DataStorage_Decrypt(const unsigned char* cipher, std::uint32_t cipherLength,
                                        const unsigned char* keySeed, std::uint32_t keySeedLength,
                                        const unsigned char* messageSeed,
                                        std::uint32_t messageSeedLength, const unsigned char* iv,
                                        std::uint32_t ivLength, unsigned char* plain,
                                        std::uint32_t* plainLength) {
  SecretBytes<kAESKeyLength> key;
  const bool done =
      Succeeded(kDeriveDecryptKey,
                SecBlobEncInternal_GenerateHMAC(keySeed, keySeedLength, messageSeed,
                                                messageSeedLength, key.data())) &&
      Succeeded(kDecrypt, SecBlobEncInternal_AESDecrypt(
                              kAESModeCBC, key.data(), key.size(), iv, ivLength, cipher,
                              cipherLength, *plainLength, plain, plainLength, nullptr, 0));
  return done ? kSuccess : kCryptographyFailed;
}
