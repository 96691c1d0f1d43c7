// Base64, the stored form of passwords, and their way to the device.

#include <cstring>
#include <vector>

#include "DeploymentData.h"
#include "engine/TicketStore.h"
#include "fuzz/FuzzSupport.h"
#include "secblobenc/secblobenc.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  CaptureOutput();
  const std::string text = ArgumentText(Text(data, size));
  std::vector<unsigned char> decoded(text.size() + 3);
  const std::int64_t length = SecBlobEnc_Base64_Decode(text.c_str(), decoded.data());
  Require(length >= 0 && static_cast<std::size_t>(length) <= text.size(), "decoding shortens");

  unsigned char plain[255];
  std::uint32_t plainLength = sizeof plain;
  const auto cipherLength = static_cast<std::uint32_t>(length);
  if (Decode_Storage(decoded.data(), cipherLength, seed1, sizeof seed1, seed2, sizeof seed2, seed3,
                     sizeof seed3, plain, &plainLength) == 0) {
    Require(plainLength <= sizeof plain, "an opened password fits");
  }

  // The raw bytes as a ciphertext, and the text as a ticket.
  plainLength = sizeof plain;
  Decode_Storage(data, static_cast<std::uint32_t>(size), seed1, sizeof seed1, seed2, sizeof seed2,
                 seed3, sizeof seed3, plain, &plainLength);
  char key[] = "key";
  std::string value = text;
  cups_option_t option = {key, value.data()};
  char sealed[2048];
  GetTicketPasswordStringConvertedToEncryption(key, 1, &option, sealed, sizeof sealed);
  Require(std::memchr(sealed, '\0', sizeof sealed) != nullptr, "a sealed password is terminated");
  TakeOutput();
  return 0;
}
