// A key as text becomes a key as bytes.

#pragma once

#include <vector>

// Returns the DER bytes of a key given as NUL-terminated Base64 text (a PEM block without its
// marker lines; line feeds allowed), or nothing when the text does not decode. The DER is not
// looked into.
std::vector<unsigned char> SecBlobEnc_Decode_Key(const char* text);
