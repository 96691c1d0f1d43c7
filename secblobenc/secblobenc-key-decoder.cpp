// A key as text becomes a key as bytes.

#include "secblobenc/secblobenc-key-decoder.h"

#include "secblobenc/secblobenc-base64.h"

std::vector<unsigned char> SecBlobEnc_Decode_Key(const char* text) {
  return SecBlobEnc_Base64_Decode_Data(text);
}
