// The storage form: how a password lies encrypted in the print dialog's settings.

#pragma once

#include <cstdint>

// Arguments and results as `Encode_Storage`. Failure prints the primitive's message, then
// "ERROR[39]: Key Derivation HMAC failed[%d]." or "ERROR[52]: AES Encrypt failed[%d].", and
// returns 99.
unsigned SecBlobEnc_DataStorage_Encrypt(const unsigned char* plain, std::uint32_t plainLength,
                                        const unsigned char* keySeed, std::uint32_t keySeedLength,
                                        const unsigned char* messageSeed,
                                        std::uint32_t messageSeedLength, const unsigned char* iv,
                                        std::uint32_t ivLength, unsigned char* cipher,
                                        std::uint32_t* cipherLength);

// Arguments and results as `Decode_Storage`. Failure prints the primitive's message, then
// "ERROR[84]: Key Derivation HMAC failed[%d]." or "ERROR[97]: AES Decrypt failed[%d].", and
// returns 99.
unsigned SecBlobEnc_DataStorage_Decrypt(const unsigned char* cipher, std::uint32_t cipherLength,
                                        const unsigned char* keySeed, std::uint32_t keySeedLength,
                                        const unsigned char* messageSeed,
                                        std::uint32_t messageSeedLength, const unsigned char* iv,
                                        std::uint32_t ivLength, unsigned char* plain,
                                        std::uint32_t* plainLength);
