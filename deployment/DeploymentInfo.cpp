// The generated facts of version and deployment as text.

#include "deployment/DeploymentInfo.h"

#include <span>

#include "DeploymentData.h"
#include "Version.h"

const char kDemonstrationWarning[] =
    "This build seals for the public demonstration key: no device opens what it seals, and "
    "everybody "
    "else can.";

namespace {

std::string Hex(std::span<const unsigned char> bytes) {
  constexpr char kDigits[] = "0123456789abcdef";
  std::string text;
  for (unsigned char byte : bytes) {
    text += kDigits[byte >> 4];
    text += kDigits[byte & 15];
  }
  return text;
}

}  // namespace

bool DeploymentIsDemonstration() {
  return deploymentIsDemonstration;
}

std::string VersionText(std::string_view program) {
  std::string text(program);
  text.append(" ").append(kVersion).append("\nDeployment: ").append(deploymentName);
  text.append("\n2048-bit key: ").append(Hex(pubkey2048_OFFICIAL_SHA256));
  text.append("\n3072-bit key: ").append(Hex(pubkey3072_OFFICIAL_SHA256)).append("\n");
  if (DeploymentIsDemonstration()) text.append(kDemonstrationWarning).append("\n");
  return text;
}
