// The folder, and what goes from Ghostscript into it.

#include "tools/inspect/PageImages.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <system_error>

#include "tools/dialect/DisplayText.h"

namespace {

constexpr std::uint64_t kMegabyte = 1024 * 1024;

// Makes and opens the folder; -1 with the reason in `error`. A link in its place is none: somebody
// else may have put it there.
int OpenFolder(const std::string& folder, std::string& error) {
  std::error_code failure;
  std::filesystem::create_directories(folder, failure);
  const int fd = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
  if (fd >= 0) return fd;
  const bool isLink = std::filesystem::is_symlink(folder, failure);
  error = "cannot make the folder " + Printable(folder, Charset::kUTF8) + ": " +
          (isLink ? "it is a link; name the folder itself" : std::strerror(errno));
  return -1;
}

}  // namespace

PageImages::PageImages(const std::string& folder, int dotsPerInch, RenderLimits limits)
    : folder_(OpenFolder(folder, error_)) {
  if (folder_ < 0) return;
  const auto mostBytes = static_cast<std::uint64_t>(limits.outputMegabytes) * kMegabyte;
  files_ = std::make_unique<PictureFiles>(folder_, mostBytes);
  ghostscript_ = std::make_unique<GhostscriptProcess>(
      dotsPerInch, limits, [this](std::string_view bytes) { return files_->take(bytes); });
  error_ = ghostscript_->error();
}

PageImages::~PageImages() {
  ghostscript_.reset();
  files_.reset();
  if (folder_ >= 0) close(folder_);
}

void PageImages::write(std::string_view bytes) {
  if (ghostscript_) ghostscript_->write(bytes);
}

bool PageImages::finish() {
  if (!error_.empty()) return false;
  if (!ghostscript_->finish()) error_ = ghostscript_->error();
  if (!files_->error().empty()) error_ = files_->error();
  return error_.empty();
}

std::string PageImages::firstMessage() const {
  if (!ghostscript_) return {};
  const std::string& all = ghostscript_->messages();
  const std::size_t begin = std::min(all.find_first_not_of("\r\n \t"), all.size());
  return all.substr(begin, all.find_first_of("\r\n", begin) - begin);
}
