// Sealing: plaintext becomes a secure blob that only the owner of the device's private key can
// open.

#pragma once

#include <cstdint>

inline constexpr unsigned kKeyTypeRSA2048 = 0;
inline constexpr unsigned kKeyTypeRSA3072 = 1;

// Seals `plain` (at most 99,500 bytes) under the RSA key given as NUL-terminated Base64 text of its
// SubjectPublicKeyInfo; `keyType` says which of the device's keys the blob names as its own. Only
// `mode` 1 (AES-256-CBC) produces a blob. Integers are 32 bits, little-endian:
//
//   offset    bytes  content
//   0         1      8, the format
//   1         1      1, the version
//   2         4      L, the length of the ciphertext
//   6         4      80 + R + 16 + L, the length of the blob
//   10        1      mode
//   11        1      key type: 0 for RSA 2048 bits, 1 for RSA 3072 bits
//   12        4      zero
//   16        32     key identifier: SHA-256 of the device's public key
//   48        32     salt, random
//   80        R      transport secret (32 random bytes) under RSA-OAEP; R is the modulus' length
//   80+R      16     initialisation vector, random
//   80+R+16   L      AES-256-CBC of the plaintext under HMAC-SHA256(transport secret, salt)
//
// Returns 0 with the blob in `blob` and its length in `blobLength`, or prints why not and returns 2
// (too long, unknown key type) or 99 with both untouched.
unsigned SecBlobEnc_KT_Encrypt(unsigned mode, unsigned keyType, const unsigned char* plain,
                               std::uint32_t plainLength, const char* publicKeyText,
                               std::uint32_t publicKeyTextLength, unsigned char* blob,
                               std::uint32_t* blobLength);
