// What can be said of the sealed passwords in a job.

#pragma once

#include <openssl/evp.h>

#include "tools/inspect/JobReport.h"

// Describes each sealed password in `report`, and notes those that no device can open as problems.
// With `key`, the device's private one, each is opened and kept in its setting.
void JudgePasswords(JobReport& report, EVP_PKEY* key);
