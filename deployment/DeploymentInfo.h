// What a program says of itself: its version, and the deployment it was built for.

#pragma once

#include <string>
#include <string_view>

// Whether the deployment's keys and seeds are the public ones of the demonstration.
bool DeploymentIsDemonstration();

// One line without its end: that nothing sealed by this build is safe. For demonstration builds.
extern const char kDemonstrationWarning[];

// What `program` answers to --version, as lines that end in LF: name and version, the deployment's
// name, the identifiers (SHA-256 in hex) by which devices know their keys, and the warning where it
// applies.
std::string VersionText(std::string_view program);
