// A main for fuzzers built without libFuzzer: runs each file of the folders and files named once.

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "fuzz/FuzzSupport.h"

namespace {

int RunFile(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  const std::string content{std::istreambuf_iterator<char>(file), {}};
  LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(content.data()), content.size());
  return 1;
}

}  // namespace

int main(int argc, char* argv[]) {
  int runs = 0;
  for (int i = 1; i < argc; i++) {
    if (!std::filesystem::is_directory(argv[i])) {
      runs += RunFile(argv[i]);
      continue;
    }
    for (const auto& entry : std::filesystem::directory_iterator(argv[i])) {
      runs += RunFile(entry.path());
    }
  }
  std::fprintf(stderr, "%d inputs\n", runs);
  return runs > 0 ? 0 : 1;
}
