// The credential library's front door: a password comes in as it is stored in the print dialog's
// settings and leaves as a secure blob that only the device can open. Both travel as Base64 text.
//
// All lengths are in bytes. A status is 0 for success, 2 for a bad argument and 99 for a failure of
// the cryptography; whatever fails says so on standard output. Buffers belong to the caller.

#pragma once

#include <cstdint>

// Seals `plain` for the device of the deployment's 2048-bit key. A plaintext of n bytes makes a
// blob of 352 + 16 * (n / 16 + 1) bytes, for which `blob` must have room; its length goes to
// `blobLength` (output only). On failure both stay as they were. The limit is 99,500 bytes.
unsigned Encode_Random(const unsigned char* plain, std::uint32_t plainLength, unsigned char* blob,
                       std::uint32_t* blobLength);

// Opens the storage form: the ciphertext of AES-256-CBC with PKCS#7 padding, whose key is the
// HMAC-SHA256 of `messageSeed` under `keySeed` and whose `iv` is fixed (16 bytes; `ivLength` is not
// used). `plainLength` holds the capacity of `plain` on entry and the number of plaintext bytes on
// return. Text that does not open or does not fit is a failure (99), which writes neither of them.
unsigned Decode_Storage(const unsigned char* cipher, std::uint32_t cipherLength,
                        const unsigned char* keySeed, std::uint32_t keySeedLength,
                        const unsigned char* messageSeed, std::uint32_t messageSeedLength,
                        const unsigned char* iv, std::uint32_t ivLength, unsigned char* plain,
                        std::uint32_t* plainLength);

// Makes the storage form that `Decode_Storage` opens; `cipherLength` is capacity and result.
unsigned Encode_Storage(const unsigned char* plain, std::uint32_t plainLength,
                        const unsigned char* keySeed, std::uint32_t keySeedLength,
                        const unsigned char* messageSeed, std::uint32_t messageSeedLength,
                        const unsigned char* iv, std::uint32_t ivLength, unsigned char* cipher,
                        std::uint32_t* cipherLength);

// Fills `out` with `length` bytes from the system's secure random source.
unsigned Generate_Random(std::uint32_t length, unsigned char* out);

// Writes the Base64 form of `data` to `text`: one line, padded, without a terminator, so that the
// caller fills `text` with zeros first. Returns the number of characters, 4 for every 3 bytes
// begun; 0 on failure and for no data.
std::int64_t SecBlobEnc_Base64_Encode(const unsigned char* data, std::uint32_t length, char* text);

// Writes the bytes behind the NUL-terminated Base64 `text` to `data`, at most 3 for every 4
// characters, and returns their number. Line feeds are passed over; any other character outside the
// alphabet, missing or misplaced padding, and empty text give 0 and write nothing.
std::int64_t SecBlobEnc_Base64_Decode(const char* text, unsigned char* data);
