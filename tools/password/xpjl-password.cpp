// xpjl-password: turns a password into the ticket value that the filter opens.

#include <openssl/crypto.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <cstdint>
#include <cstdio>
#include <string>

#include "DeploymentData.h"
#include "FilterFrame/Source/UtilityFunctionFilter/StandardDescriptors.h"
#include "deployment/DeploymentInfo.h"
#include "engine/StoredPassword.h"
#include "secblobenc/secblobenc.h"
#include "tools/dialect/ToolProgram.h"
#include "tools/password/PasswordInput.h"

namespace {

// Why a password cannot be used; null when it can.
const char* Fault(InputResult result, const Password& password) {
  if (result == InputResult::kInterrupted) return "interrupted";
  if (result == InputResult::kNothing) return "there is no password on standard input";
  if (password.length() == 0) return "the password is empty";
  if (password.length() > kLongestStoredPassword) return "the password is longer than 255 bytes";
  return nullptr;
}

// Whether the filter's storage form behind `value` opens, to something that is a password. What the
// library says of one that does not goes nowhere.
bool Opens(std::string_view value) {
  unsigned char cipher[kLongestLine];
  const std::int64_t cipherLength = SecBlobEnc_Base64_Decode(std::string(value).c_str(), cipher);
  if (cipherLength < 1) return false;
  const SilencedDescriptor silenced(STDOUT_FILENO);
  unsigned char plain[kLongestStoredPassword];
  std::uint32_t length = sizeof plain;
  const bool opens =
      Decode_Storage(cipher, static_cast<std::uint32_t>(cipherLength), seed1, sizeof seed1, seed2,
                     sizeof seed2, seed3, sizeof seed3, plain, &length) == 0;
  OPENSSL_cleanse(plain, sizeof plain);
  return opens && length > 0;
}

int CheckValue() {
  Password value;
  const InputResult result = ReadPassword("Value: ", value);
  if (result == InputResult::kInterrupted) return Complain(kBadData, "interrupted");
  if (result == InputResult::kNothing || value.length() == 0) {
    return Complain(kBadData, "there is no value on standard input");
  }
  if (value.length() > kLongestLine || !Opens(value.text())) {
    return Complain(kBadData,
                    "the value does not open: it is damaged, or was made for another deployment");
  }
  return Put("The value opens in this deployment.\n") ? kFine : kBadData;
}

int SealPassword(bool confirm) {
  if (DeploymentIsDemonstration() && isatty(STDERR_FILENO) == 1) {
    Complain(kFine, kDemonstrationWarning);
  }
  Password password;
  if (const char* fault = Fault(ReadPassword("Password: ", password), password)) {
    return Complain(kBadData, fault);
  }
  if (confirm && ReadsFromTerminal()) {
    Password again;
    if (const char* fault = Fault(ReadPassword("Once more: ", again), again)) {
      return Complain(kBadData, fault);
    }
    if (again.text() != password.text()) return Complain(kBadData, "the two passwords differ");
  }
  const std::string value = StoredPassword(password.text());
  if (value.empty()) return Complain(kBadData, "the cryptography library failed");
  return Put(value + "\n") ? kFine : kBadData;
}

constexpr char kFooter[] =
    "The value goes into a password ticket of a job or a queue, for example\n"
    "  lp -o com.zelva.jt.printsettings.ps.ww.PrintTypePasswordTicketKey=VALUE ...\n"
    "It hides the password from a glance, not from somebody who has this program's\n"
    "deployment data.\n\n"
    "Exit status: 0 done, 1 no usable password or value, 2 wrong usage.";

int Run(int argc, char* argv[]) {
  bool confirm = false;
  bool check = false;
  CLI::App app;
  app.description(
      "Asks for a password and prints the ticket value that the filter opens.\n"
      "Without a terminal it reads the first line of standard input.");
  app.footer(DeploymentIsDemonstration() ? kDemonstrationWarning + ("\n\n" + std::string(kFooter))
                                         : kFooter);
  app.set_version_flag("--version", VersionText("xpjl-password"));
  auto* twice = app.add_flag("--confirm", confirm, "Ask twice, on a terminal");
  app.add_flag("--check", check, "Read such a value instead, and say whether it opens")
      ->excludes(twice);
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    if (error.get_exit_code() == 0) return app.exit(error);
    // The message would repeat what may be a password.
    return Complain(kWrongUsage,
                    "takes no password as an argument and knows --check, --confirm, --help "
                    "and --version only; it asks for the password itself");
  }
  return check ? CheckValue() : SealPassword(confirm);
}

}  // namespace

int main(int argc, char* argv[]) {
  return ToolMain("xpjl-password", kBadData, Run, argc, argv);
}
