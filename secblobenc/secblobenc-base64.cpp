// Base64 text to bytes and back. The library's own decoder is lenient (it trims blanks and takes
// padding for zero bytes), so the text is checked before it gets there.

#include "secblobenc/secblobenc-base64.h"

#include <openssl/evp.h>

#include <cstddef>
#include <limits>
#include <new>
#include <string>
#include <string_view>

namespace {

constexpr std::string_view kAlphabet =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr std::size_t kLargestBlock = std::numeric_limits<int>::max();  // what the library counts
constexpr std::size_t kMostPadding = 2;

// EVP_EncodeBlock ends its text with a zero byte, which its result does not count.
constexpr std::size_t kEncoderTerminator = 1;

std::size_t PaddingLength(std::string_view text) {
  return text.size() - (text.find_last_not_of('=') + 1);
}

bool WellFormed(std::string_view text) {
  if (text.size() % 4 != 0 || text.size() > kLargestBlock) return false;
  const std::size_t padding = PaddingLength(text);
  if (padding > kMostPadding) return false;
  text.remove_suffix(padding);
  return text.find_first_not_of(kAlphabet) == std::string_view::npos;
}

}  // namespace

std::vector<unsigned char> SecBlobEnc_Base64_Encode_Data(const unsigned char* data,
                                                         std::uint32_t length) try {
  const std::size_t textLength = (std::size_t{length} + 2) / 3 * 4;
  if (length == 0 || textLength > kLargestBlock) return {};
  std::vector<unsigned char> text(textLength + kEncoderTerminator);
  if (EVP_EncodeBlock(text.data(), data, static_cast<int>(length)) < 0) return {};
  text.resize(textLength);
  return text;
} catch (const std::bad_alloc&) {
  return {};
}

std::vector<unsigned char> SecBlobEnc_Base64_Decode_Data(const char* text) try {
  if (text == nullptr) return {};
  std::string line = text;
  std::erase(line, '\n');
  if (!WellFormed(line)) return {};
  std::vector<unsigned char> data(line.size() / 4 * 3);
  if (EVP_DecodeBlock(data.data(), reinterpret_cast<const unsigned char*>(line.data()),
                      static_cast<int>(line.size())) < 0) {
    return {};
  }
  data.resize(data.size() - PaddingLength(line));
  return data;
} catch (const std::bad_alloc&) {
  return {};
}
