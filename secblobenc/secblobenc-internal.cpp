// The credential library's primitives, each a call or two of OpenSSL's EVP interface.

#include "secblobenc/secblobenc-internal.h"

#include <openssl/err.h>
#include <openssl/evp.h>
#include <openssl/rand.h>
#include <openssl/rsa.h>
#include <openssl/x509.h>

#include <algorithm>
#include <cstdio>
#include <limits>
#include <memory>
#include <utility>
#include <vector>

#include "secblobenc/secblobenc-key-decoder.h"

namespace {

constexpr unsigned kDefaultStrength = 0;
constexpr std::size_t kErrorTextSize = 512;

template <auto Free>
struct Deleter {
  template <typename T>
  void operator()(T* object) const {
    Free(object);
  }
};
using CipherContext = std::unique_ptr<EVP_CIPHER_CTX, Deleter<EVP_CIPHER_CTX_free>>;
using Key = std::unique_ptr<EVP_PKEY, Deleter<EVP_PKEY_free>>;
using KeyContext = std::unique_ptr<EVP_PKEY_CTX, Deleter<EVP_PKEY_CTX_free>>;
using File = std::unique_ptr<std::FILE, Deleter<std::fclose>>;

struct WipeAndFree {
  std::size_t size = 0;
  void operator()(unsigned char* bytes) const { OPENSSL_clear_free(bytes, size); }
};
using WipedBuffer = std::unique_ptr<unsigned char, WipeAndFree>;

struct CipherInput {
  const unsigned char* key;
  std::uint32_t keyLength;
  const unsigned char* iv;
  const unsigned char* data;
  std::uint32_t length;
};

enum Direction { kDecrypt = 0, kEncrypt = 1 };

// Everything that fails here has left its reason in OpenSSL's error queue, or put one there itself.
unsigned long TakeLastError() {
  const unsigned long error = ERR_peek_last_error();
  ERR_clear_error();
  return error;
}

Key ImportRSAKey(const std::vector<unsigned char>& der) {
  if (der.empty()) {
    ERR_raise(ERR_LIB_EVP, EVP_R_DECODE_ERROR);
    return nullptr;
  }
  const unsigned char* next = der.data();
  Key key(d2i_PUBKEY(nullptr, &next, static_cast<long>(der.size())));
  if (key != nullptr && EVP_PKEY_is_a(key.get(), "RSA") == 0) {
    ERR_raise(ERR_LIB_EVP, EVP_R_EXPECTING_AN_RSA_KEY);
    return nullptr;
  }
  return key;
}

bool EncryptOAEP(EVP_PKEY* key, const unsigned char* data, std::uint32_t dataLength,
                 std::uint32_t outCapacity, unsigned char* out, std::uint32_t* outLength) {
  // RSA writes a whole modulus without asking how much room there is.
  if (std::cmp_greater(EVP_PKEY_get_size(key), outCapacity)) {
    ERR_raise(ERR_LIB_EVP, EVP_R_BUFFER_TOO_SMALL);
    return false;
  }
  const KeyContext context(EVP_PKEY_CTX_new_from_pkey(nullptr, key, nullptr));
  std::size_t produced = outCapacity;
  if (context == nullptr || EVP_PKEY_encrypt_init(context.get()) <= 0 ||
      EVP_PKEY_CTX_set_rsa_padding(context.get(), RSA_PKCS1_OAEP_PADDING) <= 0 ||
      EVP_PKEY_CTX_set_rsa_oaep_md(context.get(), EVP_sha256()) <= 0 ||
      EVP_PKEY_CTX_set_rsa_mgf1_md(context.get(), EVP_sha256()) <= 0 ||
      EVP_PKEY_encrypt(context.get(), out, &produced, data, dataLength) <= 0) {
    return false;
  }
  *outLength = static_cast<std::uint32_t>(produced);
  return true;
}

// Runs AES-256-CBC over the whole input into `out`, which has room for a block more than the input.
bool RunCipher(Direction direction, const CipherInput& input, unsigned char* out, int* produced) {
  const CipherContext context(EVP_CIPHER_CTX_new());
  if (context == nullptr || EVP_CipherInit_ex2(context.get(), EVP_aes_256_cbc(), input.key,
                                               input.iv, direction, nullptr) <= 0) {
    return false;
  }
  int body = 0;
  if (input.length > 0 && EVP_CipherUpdate(context.get(), out, &body, input.data,
                                           static_cast<int>(input.length)) <= 0) {
    return false;
  }
  int end = 0;
  if (EVP_CipherFinal_ex(context.get(), out + body, &end) <= 0) return false;
  *produced = body + end;
  return true;
}

// Works in a buffer of its own, as decryption fills more room than its result needs and a failure
// leaves half a secret behind. Padding changes the length by a block at most, so that an input far
// beyond the capacity is refused before there is a buffer for it.
bool RunBoundedCipher(Direction direction, const CipherInput& input, std::uint32_t outCapacity,
                      unsigned char* out, std::uint32_t* outLength) {
  if (input.keyLength != kAESKeyLength) {
    ERR_raise(ERR_LIB_EVP, EVP_R_INVALID_KEY_LENGTH);
    return false;
  }
  const std::size_t workLength = std::size_t{input.length} + kAESBlockLength;
  if (input.length > std::uint64_t{outCapacity} + kAESBlockLength ||
      workLength > std::numeric_limits<int>::max()) {
    ERR_raise(ERR_LIB_EVP, EVP_R_BUFFER_TOO_SMALL);
    return false;
  }
  const WipedBuffer work(static_cast<unsigned char*>(OPENSSL_malloc(workLength)),
                         WipeAndFree{workLength});
  int produced = 0;
  if (work == nullptr || !RunCipher(direction, input, work.get(), &produced)) return false;
  if (std::cmp_greater(produced, outCapacity)) {
    ERR_raise(ERR_LIB_EVP, EVP_R_BUFFER_TOO_SMALL);
    return false;
  }
  std::copy_n(work.get(), produced, out);
  *outLength = static_cast<std::uint32_t>(produced);
  return true;
}

unsigned RunAES(Direction direction, unsigned mode, const CipherInput& input,
                std::uint32_t outCapacity, unsigned char* out, std::uint32_t* outLength) {
  if (mode != kAESModeCBC) {
    std::printf("AES Error. Unsupported AES Mode.");
    return kBadArgument;
  }
  if (!RunBoundedCipher(direction, input, outCapacity, out, outLength)) {
    std::printf("AES Error[%d]\n", static_cast<int>(TakeLastError()));
    return kCryptographyFailed;
  }
  return kSuccess;
}

}  // namespace

bool Succeeded(const CryptographyStep& step, unsigned status) {
  if (status == kSuccess) return true;
  std::printf("ERROR[%d]: %s failed[%d].\n", step.code, step.name, static_cast<int>(status));
  return false;
}

unsigned SecBlobEncInternal_GenerateRandom(std::uint32_t length, unsigned char* out) {
  if (RAND_priv_bytes_ex(nullptr, out, length, kDefaultStrength) == 1) return kSuccess;
  std::printf("Generate Random Error[%d]", static_cast<int>(TakeLastError()));
  return kCryptographyFailed;
}

unsigned SecBlobEncInternal_GenerateHMAC(const unsigned char* key, std::uint32_t keyLength,
                                         const unsigned char* data, std::uint32_t dataLength,
                                         unsigned char* out) {
  const unsigned char* produced =
      EVP_Q_mac(nullptr, "HMAC", nullptr, "SHA256", nullptr, key, keyLength, data, dataLength, out,
                kAESKeyLength, nullptr);
  if (produced != nullptr) return kSuccess;
  ERR_clear_error();
  return kCryptographyFailed;
}

unsigned SecBlobEncInternal_RSAEncrypt(const char* publicKeyText,
                                       std::uint32_t /*publicKeyTextLength*/,
                                       const unsigned char* data, std::uint32_t dataLength,
                                       std::uint32_t outCapacity, unsigned char* out,
                                       std::uint32_t* outLength) {
  const Key key = ImportRSAKey(SecBlobEnc_Decode_Key(publicKeyText));
  if (key != nullptr && EncryptOAEP(key.get(), data, dataLength, outCapacity, out, outLength)) {
    return kSuccess;
  }
  const unsigned long error = TakeLastError();
  std::array<char, kErrorTextSize> text{};
  ERR_error_string_n(error, text.data(), text.size());
  std::printf("RSA Error[%d] %s", static_cast<int>(error), text.data());
  return kCryptographyFailed;
}

unsigned SecBlobEncInternal_AESEncrypt(unsigned mode, const unsigned char* key,
                                       std::uint32_t keyLength, const unsigned char* iv,
                                       std::uint32_t /*ivLength*/, const unsigned char* in,
                                       std::uint32_t inLength, std::uint32_t outCapacity,
                                       unsigned char* out, std::uint32_t* outLength,
                                       unsigned char* /*tag*/, std::uint32_t /*tagLength*/) {
  return RunAES(kEncrypt, mode, {key, keyLength, iv, in, inLength}, outCapacity, out, outLength);
}

unsigned SecBlobEncInternal_AESDecrypt(unsigned mode, const unsigned char* key,
                                       std::uint32_t keyLength, const unsigned char* iv,
                                       std::uint32_t /*ivLength*/, const unsigned char* in,
                                       std::uint32_t inLength, std::uint32_t outCapacity,
                                       unsigned char* out, std::uint32_t* outLength,
                                       unsigned char* /*tag*/, std::uint32_t /*tagLength*/) {
  return RunAES(kDecrypt, mode, {key, keyLength, iv, in, inLength}, outCapacity, out, outLength);
}

void outputData(const unsigned char* buffer, std::uint32_t length, const char* path) {
  const File file(std::fopen(path, "wb"));
  if (file == nullptr) {
    std::printf("cannot open file");
    return;
  }
  std::fwrite(buffer, 1, length, file.get());
}
