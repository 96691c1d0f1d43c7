// What Ghostscript makes of PostScript.

#pragma once

#include <cstdlib>
#include <sstream>
#include <string>
#include <vector>

#include "tests/support/FilterProcess.h"
#include "tests/support/Patterns.h"

inline bool HasGhostscript() {
  return std::system("gs --version >/dev/null 2>&1") == 0;
}

struct PageImage {
  std::size_t width = 0, height = 0;
  std::string pixels;  // red, green, blue
  std::string centre() const { return pixels.substr(3 * (height / 2 * width + width / 2), 3); }
};

// All pages as images, one behind the other; what Ghostscript says when the PostScript fails.
inline std::string Rendered(const std::string& postScript) {
  const ScratchFolder folder;
  const std::string images = folder.path() + "/images";
  const std::string command = "gs -q -dSAFER -dBATCH -dNOPAUSE -sDEVICE=ppmraw -r24 -o " + images +
                              " " + folder.write("job.ps", postScript) + " >" + folder.path() +
                              "/said 2>&1";
  const bool failed = std::system(command.c_str()) != 0;
  const std::string said = FileContent(folder.path() + "/said");
  return failed || !said.empty() ? "failed: " + said : FileContent(images);
}

inline std::vector<PageImage> ImagesIn(const std::string& rendered) {
  std::vector<PageImage> pages;
  std::istringstream images(rendered);
  for (std::string magic; images >> magic && magic == "P6";) {
    PageImage& page = pages.emplace_back();
    images.ignore(1);
    while (images.peek() == '#') std::getline(images, magic);
    std::size_t most = 0;
    images >> page.width >> page.height >> most;
    images.ignore(1);
    page.pixels.resize(3 * page.width * page.height);
    images.read(page.pixels.data(), static_cast<std::streamsize>(page.pixels.size()));
  }
  return pages;
}
