// The credential library, seen from both ends: the print dialog's stored form and the device.

#include "secblobenc/secblobenc.h"

#include <gtest/gtest.h>
#include <openssl/core_names.h>
#include <openssl/err.h>
#include <openssl/pem.h>
#include <openssl/rand.h>
#include <openssl/rsa.h>
#include <openssl/x509.h>

#include <fstream>
#include <iterator>
#include <numeric>
#include <optional>
#include <regex>

#include "secblobenc/secblobenc-internal.h"
#include "secblobenc/secblobenc-sender.h"
#include "tests/support/Password.h"

namespace {

using EncodeOrDecode = decltype(&Decode_Storage);

std::uint32_t Length(std::string_view text) {
  return static_cast<std::uint32_t>(text.size());
}

// What `action` printed on standard output.
template <typename Action>
std::string Printed(Action action) {
  testing::internal::CaptureStdout();
  action();
  return testing::internal::GetCapturedStdout();
}

// The same with N for the cryptography library's own error number, which must not be 0, and "why"
// for its own words.
template <typename Action>
std::string PrintedWithoutNumber(Action action) {
  const std::regex number(" Error\\[-?[1-9][0-9]*\\]"), words("error:.*(?=ERROR\\[)");
  return std::regex_replace(std::regex_replace(Printed(action), number, " Error[N]"), words, "why");
}

// The result of a call that fills a buffer; the buffer starts with '#' everywhere.
struct Outcome {
  unsigned status = 0;
  std::string buffer;
  std::uint32_t length = 0;
  std::string printed;
};

std::string Counting(char from, std::size_t length) {
  std::string bytes(length, '\0');
  std::iota(bytes.begin(), bytes.end(), from);
  return bytes;
}

const std::string kKeySeed = Counting(0, 32);
const std::string kMessageSeed = Counting(32, 32);
const std::string kIV = Counting(64, 16);

Outcome Store(EncodeOrDecode direction, std::string_view in, std::uint32_t capacity) {
  Outcome outcome{0, std::string(capacity, '#'), capacity, ""};
  outcome.printed = PrintedWithoutNumber([&] {
    outcome.status = direction(Bytes(in), Length(in), Bytes(kKeySeed), Length(kKeySeed),
                               Bytes(kMessageSeed), Length(kMessageSeed), Bytes(kIV), Length(kIV),
                               Bytes(outcome.buffer), &outcome.length);
  });
  return outcome;
}

Outcome Seal(unsigned mode, unsigned keyType, std::string_view plain, const std::string& keyText) {
  Outcome outcome{0, std::string(100000, '#'), 7, ""};
  outcome.printed = PrintedWithoutNumber([&] {
    outcome.status =
        SecBlobEnc_KT_Encrypt(mode, keyType, Bytes(plain), Length(plain), keyText.c_str(),
                              Length(keyText), Bytes(outcome.buffer), &outcome.length);
  });
  return outcome;
}

std::string KeyText(EVP_PKEY* key) {
  std::string der(static_cast<std::size_t>(i2d_PUBKEY(key, nullptr)), '\0');
  unsigned char* next = Bytes(der);
  i2d_PUBKEY(key, &next);
  return Base64(der).insert(64, "\n");
}

EVPPointer<EVP_PKEY> DeviceKey() {
  return ReadPrivateKey(TEST_DATA_DIR "/demo-device-2048-private.pem");
}

std::string DeviceKeyText() {
  return KeyText(DeviceKey().get());
}

// Lends the library a random source that runs dry after `supply` bytes, OAEP's source at once.
class ScarceRandom {
 public:
  explicit ScarceRandom(unsigned supply) {
    RAND_set_DRBG_type(context_, "TEST-RAND", nullptr, nullptr, nullptr);
    std::string entropy(supply, 'e');
    unsigned strength = 256;
    const OSSL_PARAM parameters[] = {
        OSSL_PARAM_construct_octet_string(OSSL_RAND_PARAM_TEST_ENTROPY, entropy.data(), supply),
        OSSL_PARAM_construct_uint(OSSL_RAND_PARAM_STRENGTH, &strength), OSSL_PARAM_construct_end()};
    EVP_RAND_CTX_set_params(RAND_get0_private(context_), parameters);
    usual_ = OSSL_LIB_CTX_set0_default(context_);
  }
  ~ScarceRandom() {
    OSSL_LIB_CTX_set0_default(usual_);
    OSSL_LIB_CTX_free(context_);
  }
  ScarceRandom(const ScarceRandom&) = delete;
  ScarceRandom& operator=(const ScarceRandom&) = delete;

  // Every algorithm not in use yet is missing from here on.
  void DropAlgorithms() { EVP_set_default_properties(context_, "provider=none"); }

 private:
  OSSL_LIB_CTX* context_ = OSSL_LIB_CTX_new();
  OSSL_LIB_CTX* usual_ = nullptr;
};

}  // namespace

// Made with `openssl dgst -mac HMAC` and `openssl enc -aes-256-cbc` from the seeds above.
const std::string kStoredPlain = "open sesame 1234";
const std::string kStored = BlobBytes("9MMOi760JAXCnez8MVLD38uC3Y2sj2gyjKKnMaPPPZ8=");

TEST(SecBlobEnc, StorageFormIsTheDialogsAndOpensUpTo255BytesInto255) {
  EXPECT_EQ(Store(Encode_Storage, kStoredPlain, 32).buffer, kStored);
  EXPECT_EQ(Store(Decode_Storage, kStored, 16).buffer, kStoredPlain);
  for (const std::size_t length : {0u, 1u, 15u, 16u, 255u}) {
    const std::string plain(length, 'p');
    const Outcome stored = Store(Encode_Storage, plain, 300);
    ASSERT_EQ(stored.length, length / 16 * 16 + 16);
    const Outcome opened = Store(Decode_Storage, stored.buffer.substr(0, stored.length), 255);
    EXPECT_EQ(opened.status, 0u);
    EXPECT_EQ(opened.length, length);
    EXPECT_EQ(opened.buffer, plain + std::string(255 - length, '#'));
    EXPECT_EQ(stored.printed + opened.printed, "");
  }
}

TEST(SecBlobEnc, StorageFailuresPrintTwoLinesAndWriteNothing) {
  std::string altered = kStored;
  altered.back() ^= 1;
  const std::string of256 = Store(Encode_Storage, std::string(256, 'p'), 300).buffer.substr(0, 272);
  const struct {
    EncodeOrDecode direction;
    std::string in;
    std::uint32_t capacity;
  } cases[] = {
      {Decode_Storage, of256, 255},       {Decode_Storage, std::string(4096, 'c'), 255},
      {Decode_Storage, altered, 255},     {Decode_Storage, kStored.substr(0, 31), 255},
      {Decode_Storage, "", 255},          {Decode_Storage, kStored, 15},
      {Encode_Storage, kStoredPlain, 31}, {Encode_Storage, "", 0},
  };
  for (const auto& row : cases) {
    const Outcome outcome = Store(row.direction, row.in, row.capacity);
    EXPECT_EQ(outcome.status, 99u);
    EXPECT_EQ(outcome.printed, row.direction == &Decode_Storage
                                   ? "AES Error[N]\nERROR[97]: AES Decrypt failed[99].\n"
                                   : "AES Error[N]\nERROR[52]: AES Encrypt failed[99].\n");
    EXPECT_EQ(outcome.length, row.capacity);
    EXPECT_EQ(outcome.buffer, std::string(row.capacity, '#'));
  }
}

TEST(SecBlobEnc, DeviceOpensWhatEncodeRandomSealsAfreshEachTime) {
  const auto key = DeviceKey();
  ASSERT_NE(key, nullptr);
  const std::size_t totals[][2] = {{0, 368},   {15, 368},  {16, 384},
                                   {255, 608}, {255, 608}, {99500, 99856}};
  OpenedBlob previous;
  for (const auto& [length, total] : totals) {
    const std::string plain(length, 'p');
    std::string blob(100000, '#');
    std::uint32_t blobLength = 7;
    ASSERT_EQ(Encode_Random(Bytes(plain), Length(plain), Bytes(blob), &blobLength), 0u);
    EXPECT_EQ(blobLength, total);
    EXPECT_EQ(blob.find_first_not_of('#', blobLength), std::string::npos);
    const auto opened = OpenBlob(blob.substr(0, blobLength), key.get());
    ASSERT_TRUE(opened.has_value()) << length;
    EXPECT_EQ(opened->plain, plain);
    EXPECT_EQ(blob.substr(0, 2), "\x08\x01");
    EXPECT_EQ(blob.substr(10, 6), std::string("\x01\0\0\0\0\0", 6));
    EXPECT_EQ(opened->keyIdentifier, KeyIdentifier(key.get()));
    EXPECT_EQ(opened->transportSecret.size(), 32u);
    EXPECT_NE(opened->transportSecret, previous.transportSecret);
    EXPECT_NE(opened->salt, previous.salt);
    EXPECT_NE(opened->iv, previous.iv);
    previous = *opened;
  }
}

TEST(SecBlobEnc, KeyTypeOneNamesThe3072BitKey) {
  const EVPPointer<EVP_PKEY> key(EVP_RSA_gen(3072));
  const Outcome sealed = Seal(1, 1, "pw", KeyText(key.get()));
  ASSERT_EQ(sealed.length, 80u + 384 + 16 + 16);
  const auto opened = OpenBlob(sealed.buffer.substr(0, sealed.length), key.get());
  ASSERT_TRUE(opened.has_value());
  EXPECT_EQ(opened->plain, "pw");
  EXPECT_EQ(opened->keyType, 1u);
  std::FILE* file = std::fopen(SOURCE_DIR "/deployment/demo/device-3072.pem", "r");
  ASSERT_NE(file, nullptr);
  const EVPPointer<EVP_PKEY> official(PEM_read_PUBKEY(file, nullptr, nullptr, nullptr));
  std::fclose(file);
  EXPECT_EQ(opened->keyIdentifier, KeyIdentifier(official.get()));
}

TEST(SecBlobEnc, FailedSealingPrintsWhyAndWritesNothing) {
  const std::string good = DeviceKeyText();
  const EVPPointer<EVP_PKEY> curve(EVP_PKEY_Q_keygen(nullptr, nullptr, "EC", "P-256"));
  const std::string tooLong = "ERROR[88]: too long bufLen [99501].\n";
  const std::string mode = "AES Error. Unsupported AES Mode.ERROR[161]: AES Encrypt failed[2].\n";
  const std::string rsa = "RSA Error[N] whyERROR[150]: RSA Encrypt failed[99].\n";
  const std::string random = "Generate Random Error[N]ERROR[",
                    failed = "]: generate random failed[99].\n";
  constexpr unsigned kPlenty = 1000;  // the usual source
  const struct {
    unsigned mode, keyType;
    std::size_t length;
    std::string keyText;
    unsigned supply;  // of random bytes
    unsigned status;
    std::string printed;
  } cases[] = {
      {1, 0, 99501, good, kPlenty, 2, tooLong},
      {1, 2, 99501, good, kPlenty, 2, tooLong},
      {1, 2, 8, good, 0, 2, "ERROR[106]: invalid key type[2].\n"},
      {0, 0, 8, good, kPlenty, 99, mode},
      {2, 0, 8, good, kPlenty, 99, mode},
      {1, 0, 8, KeyText(curve.get()), kPlenty, 99, rsa},
      {1, 0, 8, "", kPlenty, 99, rsa},
      {1, 0, 8, "no Base64 at all", kPlenty, 99, rsa},
      {1, 0, 8, "Zm9vYmFy", kPlenty, 99, rsa},
      {1, 0, 8, good, 0, 99, random + "114" + failed},
      {1, 0, 8, good, 32, 99, random + "122" + failed},
      {1, 0, 8, good, 64 + 15, 99, random + "139" + failed},
      {0, 0, 8, good, 64 + 11, 99, random + "139" + failed},
      {1, 0, 8, good, 64 + 16, 99, rsa},
      {0, 0, 8, good, 64 + 12, 99, rsa},
  };
  for (const auto& row : cases) {
    std::optional<ScarceRandom> source;
    if (row.supply != kPlenty) source.emplace(row.supply);
    const Outcome outcome = Seal(row.mode, row.keyType, std::string(row.length, 'p'), row.keyText);
    EXPECT_EQ(outcome.status, row.status) << row.printed;
    EXPECT_EQ(outcome.printed, row.printed);
    EXPECT_EQ(outcome.buffer.find_first_not_of('#'), std::string::npos);
    EXPECT_EQ(outcome.length, 7u);
  }
}

TEST(SecBlobEnc, SaysWhenTheCryptographyLibraryHasNoHMAC) {
  const std::string keyText = DeviceKeyText(), failed = "]: Key Derivation HMAC failed[99].\n";
  ScarceRandom source(64);
  source.DropAlgorithms();
  EXPECT_EQ(Seal(1, 0, "pw", keyText).printed, "ERROR[131" + failed);
  EXPECT_EQ(Store(Encode_Storage, "pw", 32).printed, "ERROR[39" + failed);
  EXPECT_EQ(Store(Decode_Storage, kStored, 32).printed, "ERROR[84" + failed);
  EXPECT_EQ(ERR_peek_error(), 0u) << "would be reported for the next failure";
}

TEST(SecBlobEnc, PrimitivesRefuseKeysAndBuffersThatDoNotFit) {
  std::string out(512, '#');
  std::uint32_t length = 7;
  EXPECT_EQ(Printed([&] {
              SecBlobEncInternal_RSAEncrypt(DeviceKeyText().c_str(), 0, Bytes("pw"), 2, 255,
                                            Bytes(out), &length);
            }),
            "RSA Error[50331803] error:0300009B:digital envelope routines::buffer too small");
  EXPECT_EQ(Printed([&] {
              SecBlobEncInternal_AESEncrypt(1, Bytes(kKeySeed), 16, Bytes(kIV), 16, Bytes("pw"), 2,
                                            512, Bytes(out), &length, nullptr, 0);
            }),
            "AES Error[50331778]\n");
  EXPECT_EQ(out, std::string(512, '#'));
  EXPECT_EQ(length, 7u);
}

TEST(SecBlobEnc, Base64) {
  const std::pair<const char*, const char*> pairs[] = {
      {"f", "Zg=="}, {"fo", "Zm8="}, {"foo", "Zm9v"}, {"foob", "Zm9vYg=="}, {"\xfb\xff", "+/8="}};
  for (const auto& [bytes, text] : pairs) {
    char encoded[16] = "";
    EXPECT_EQ(SecBlobEnc_Base64_Encode(Bytes(bytes), Length(bytes), encoded), Length(text));
    EXPECT_STREQ(encoded, text);
    std::string decoded(16, '\0');
    EXPECT_EQ(SecBlobEnc_Base64_Decode(text, Bytes(decoded)), Length(bytes)) << text;
    EXPECT_STREQ(decoded.c_str(), bytes);
  }
  std::string decoded(16, '#');
  for (const char* bad :
       {"", "\n", "Zg", "Zg=", "Z===", "====", "=Zg=", "Zg==Zg==", "Zm9vZ===", "Zm9v=", "Zg=a",
        "Zm 9v", " Zm9v", "Zm9v ", "Zm9v\r\n", "Zm-_", "Zm9\xc3"}) {
    EXPECT_EQ(SecBlobEnc_Base64_Decode(bad, Bytes(decoded)), 0) << bad;
  }
  EXPECT_EQ(decoded, std::string(16, '#'));
  EXPECT_EQ(SecBlobEnc_Base64_Decode("\nZm\n9vYg=\n=\n", Bytes(decoded)), 4);
  EXPECT_EQ(decoded.substr(0, 5), "foob#");
  char text[200] = "";
  EXPECT_EQ(SecBlobEnc_Base64_Encode(Bytes(decoded), 0, text), 0);
  EXPECT_EQ(SecBlobEnc_Base64_Encode(Bytes(std::string_view(DeviceKeyText())), 99, text), 132);
  EXPECT_EQ(std::string_view(text).find('\n'), std::string_view::npos);
}

TEST(SecBlobEnc, OutputDataWritesAFileOrSaysThatItCannot) {
  const std::string path = testing::TempDir() + "/secblobenc-output";
  EXPECT_EQ(Printed([&] { outputData(Bytes("a\r\n\0b"), 4, path.c_str()); }), "");
  std::ifstream file(path, std::ios::binary);
  EXPECT_EQ(std::string(std::istreambuf_iterator<char>(file), {}), std::string("a\r\n\0b", 4));
  EXPECT_EQ(Printed([] { outputData(nullptr, 0, "/no/such/folder/file"); }), "cannot open file");
  std::remove(path.c_str());
}
