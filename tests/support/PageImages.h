// What Ghostscript makes of PostScript, and where its pages have ink of a colour.

#pragma once

#include <array>
#include <cstdlib>
#include <limits>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/FilterProcess.h"
#include "tests/support/Patterns.h"

inline bool HasGhostscript() {
  return std::system("gs --version >/dev/null 2>&1") == 0;
}

struct PageImage {
  std::size_t width = 0, height = 0;
  std::string pixels;  // red, green, blue

  // The middle of all that has nearly this colour, in widths and heights of the page from its upper
  // left corner; NaN when nothing has.
  std::pair<double, double> centreOf(const std::array<int, 3>& colour) const {
    std::size_t left = width, right = 0, top = height, bottom = 0;
    for (std::size_t i = 0; i < width * height; i++) {
      bool isNear = true;
      for (std::size_t c = 0; c < 3; c++) {
        const auto value = static_cast<unsigned char>(pixels[3 * i + c]);
        isNear = isNear && std::abs(value - colour[c]) < 60;
      }
      if (!isNear) continue;
      left = std::min(left, i % width), right = std::max(right, i % width + 1);
      top = std::min(top, i / width), bottom = std::max(bottom, i / width + 1);
    }
    constexpr double kNone = std::numeric_limits<double>::quiet_NaN();
    if (right == 0) return {kNone, kNone};
    return {static_cast<double>(left + right) / 2 / static_cast<double>(width),
            static_cast<double>(top + bottom) / 2 / static_cast<double>(height)};
  }
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
