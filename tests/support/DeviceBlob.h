// Opens sealed passwords as the device does that holds the private key.

#pragma once

#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/rsa.h>

#include "tools/DeviceBlob.h"
