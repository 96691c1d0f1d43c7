// pstoxpjl, the filter: a print job from CUPS's arguments. PrintJob.cpp tells the job in its order.

#include <cstdio>
#include <cstring>

#include "FilterFrame/Source/PrintJob.h"
#include "deployment/DeploymentInfo.h"

namespace {

constexpr int kFewestArguments = 6;  // the program's name included

int Usage() {
  std::fputs("Usage: pstoxpjl job-id user title copies options [file]\n", stderr);
  return 1;
}

int Version() {
  const bool written = std::fputs(VersionText("pstoxpjl").c_str(), stdout) >= 0;
  return written && std::fflush(stdout) == 0 ? 0 : 1;
}

}  // namespace

int main(int argc, char* argv[]) {
  if (argc == 2 && std::strcmp(argv[1], "--version") == 0) return Version();
  if (argc < kFewestArguments) return Usage();
  PrepareProcess();
  return PrintJob(argc, argv);
}
