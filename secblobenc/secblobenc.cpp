// The credential library's front door: every entry forwards to the unit that does the work.

#include "secblobenc/secblobenc.h"

#include <algorithm>
#include <vector>

#include "DeploymentData.h"
#include "secblobenc/secblobenc-base64.h"
#include "secblobenc/secblobenc-internal.h"
#include "secblobenc/secblobenc-sender.h"
#include "secblobenc/secblobenc-storage.h"

unsigned Encode_Random(const unsigned char* plain, std::uint32_t plainLength, unsigned char* blob,
                       std::uint32_t* blobLength) {
  return SecBlobEnc_KT_Encrypt(kAESModeCBC, kKeyTypeRSA2048, plain, plainLength,
                               RSA_PUBKEY_2048_OFFICIAL, sizeof RSA_PUBKEY_2048_OFFICIAL - 1, blob,
                               blobLength);
}

unsigned Decode_Storage(const unsigned char* cipher, std::uint32_t cipherLength,
                        const unsigned char* keySeed, std::uint32_t keySeedLength,
                        const unsigned char* messageSeed, std::uint32_t messageSeedLength,
                        const unsigned char* iv, std::uint32_t ivLength, unsigned char* plain,
                        std::uint32_t* plainLength) {
  return SecBlobEnc_DataStorage_Decrypt(cipher, cipherLength, keySeed, keySeedLength, messageSeed,
                                        messageSeedLength, iv, ivLength, plain, plainLength);
}

unsigned Encode_Storage(const unsigned char* plain, std::uint32_t plainLength,
                        const unsigned char* keySeed, std::uint32_t keySeedLength,
                        const unsigned char* messageSeed, std::uint32_t messageSeedLength,
                        const unsigned char* iv, std::uint32_t ivLength, unsigned char* cipher,
                        std::uint32_t* cipherLength) {
  return SecBlobEnc_DataStorage_Encrypt(plain, plainLength, keySeed, keySeedLength, messageSeed,
                                        messageSeedLength, iv, ivLength, cipher, cipherLength);
}

unsigned Generate_Random(std::uint32_t length, unsigned char* out) {
  return SecBlobEncInternal_GenerateRandom(length, out);
}

std::int64_t SecBlobEnc_Base64_Encode(const unsigned char* data, std::uint32_t length, char* text) {
  const std::vector<unsigned char> encoded = SecBlobEnc_Base64_Encode_Data(data, length);
  std::copy(encoded.begin(), encoded.end(), text);
  return static_cast<std::int64_t>(encoded.size());
}

std::int64_t SecBlobEnc_Base64_Decode(const char* text, unsigned char* data) {
  const std::vector<unsigned char> decoded = SecBlobEnc_Base64_Decode_Data(text);
  std::copy(decoded.begin(), decoded.end(), data);
  return static_cast<std::int64_t>(decoded.size());
}
