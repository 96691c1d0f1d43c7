// The primitives the credential library is made of: random bytes, HMAC-SHA256, RSA-OAEP and
// AES-256-CBC. Each failure is reported on standard output; the number in brackets is the
// cryptography library's own. All lengths are in bytes.

#pragma once

#include <openssl/crypto.h>

#include <array>
#include <cstddef>
#include <cstdint>

inline constexpr unsigned kSuccess = 0;
inline constexpr unsigned kBadArgument = 2;
inline constexpr unsigned kCryptographyFailed = 99;

inline constexpr unsigned kAESModeCBC = 1;
inline constexpr std::uint32_t kAESBlockLength = 16;
inline constexpr std::uint32_t kAESKeyLength = 32;  // an HMAC-SHA256 is as long, and serves as one

// A key or secret that does not outlive its scope: the bytes are wiped.
template <std::size_t Size>
class SecretBytes {
 public:
  SecretBytes() = default;
  SecretBytes(const SecretBytes&) = delete;
  SecretBytes& operator=(const SecretBytes&) = delete;
  ~SecretBytes() { OPENSSL_cleanse(bytes_.data(), Size); }

  unsigned char* data() { return bytes_.data(); }
  static constexpr std::uint32_t size() { return Size; }

 private:
  std::array<unsigned char, Size> bytes_{};
};

// A step of sealing or opening, as its failure message names it.
struct CryptographyStep {
  int code;
  const char* name;
};

// Whether `status` is success; if not, prints "ERROR[<code>]: <name> failed[<status>]." and LF.
bool Succeeded(const CryptographyStep& step, unsigned status);

// Fills `out` with `length` random bytes of the system's secure source. Failure: prints
// "Generate Random Error[%d]", returns 99.
unsigned SecBlobEncInternal_GenerateRandom(std::uint32_t length, unsigned char* out);

// Writes the HMAC-SHA256 of `data` under `key` to `out` (32 bytes). Returns 0, or 99 in the one
// case that the cryptography library is without HMAC or memory.
unsigned SecBlobEncInternal_GenerateHMAC(const unsigned char* key, std::uint32_t keyLength,
                                         const unsigned char* data, std::uint32_t dataLength,
                                         unsigned char* out);

// Encrypts `data` with RSA-OAEP (SHA-256 for label and mask, empty label) under the public key
// given as NUL-terminated Base64 text of its SubjectPublicKeyInfo; `publicKeyTextLength` is not
// used. The result is as long as the modulus; the key must be an RSA key whose result fits
// `outCapacity`. Failure: prints "RSA Error[%d] %s", returns 99, leaves `outLength` alone.
unsigned SecBlobEncInternal_RSAEncrypt(const char* publicKeyText, std::uint32_t publicKeyTextLength,
                                       const unsigned char* data, std::uint32_t dataLength,
                                       std::uint32_t outCapacity, unsigned char* out,
                                       std::uint32_t* outLength);

// AES-256 in CBC mode with PKCS#7 padding: `mode` 1, `keyLength` 32, `iv` of 16 bytes (`ivLength`
// is not used). The number of bytes produced goes to `outLength`. `tag` and `tagLength` belong to
// mode 0, which produces nothing. Any mode but 1: prints "AES Error. Unsupported AES Mode.",
// returns 2. Failure, also of a result that does not fit `outCapacity`: prints "AES Error[%d]" and
// LF, returns 99, writes nothing.
unsigned SecBlobEncInternal_AESEncrypt(unsigned mode, const unsigned char* key,
                                       std::uint32_t keyLength, const unsigned char* iv,
                                       std::uint32_t ivLength, const unsigned char* in,
                                       std::uint32_t inLength, std::uint32_t outCapacity,
                                       unsigned char* out, std::uint32_t* outLength,
                                       unsigned char* tag, std::uint32_t tagLength);

// The same in the other direction.
unsigned SecBlobEncInternal_AESDecrypt(unsigned mode, const unsigned char* key,
                                       std::uint32_t keyLength, const unsigned char* iv,
                                       std::uint32_t ivLength, const unsigned char* in,
                                       std::uint32_t inLength, std::uint32_t outCapacity,
                                       unsigned char* out, std::uint32_t* outLength,
                                       unsigned char* tag, std::uint32_t tagLength);

// For debugging: writes the bytes to a file created at `path`; prints "cannot open file" if it
// cannot be opened.
void outputData(const unsigned char* buffer, std::uint32_t length, const char* path);
