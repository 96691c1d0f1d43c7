// A picture is a signature and chunks: length, type, data, checksum. The last chunk is IEND.

#include "tools/inspect/PictureFiles.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <utility>

namespace {

constexpr std::string_view kSignature = "\x89PNG\r\n\x1a\n";
constexpr std::size_t kHeadLength = 8;
constexpr std::uint64_t kChecksumLength = 4;

}  // namespace

PictureFiles::~PictureFiles() {
  if (file_ >= 0) fail("");
}

std::string PictureFiles::name() const {
  char name[32];
  std::snprintf(name, sizeof name, "page-%03d.png", count_ + 1);
  return name;
}

bool PictureFiles::fail(std::string error) {
  error_ = std::move(error);
  if (file_ >= 0) ::close(file_);
  file_ = -1;
  unlinkat(folder_, partName().c_str(), 0);
  return false;
}

bool PictureFiles::begin() {
  if (head_ != kSignature) return fail("Ghostscript wrote something that is no picture");
  unlinkat(folder_, partName().c_str(), 0);  // of a run that was ended
  file_ = openat(folder_, partName().c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC,
                 0666);
  if (file_ < 0) return fail("cannot write " + name() + ": " + std::strerror(errno));
  return put(head_);
}

// The head of a picture or of a chunk is whole.
bool PictureFiles::headRead() {
  if (file_ < 0) return begin();
  chunkLeft_ = kChecksumLength;
  std::uint64_t length = 0;
  for (std::size_t i = 0; i < 4; i++) length = length << 8 | static_cast<unsigned char>(head_[i]);
  const bool letters = std::all_of(head_.begin() + 4, head_.end(),
                                   [](unsigned char c) { return std::isalpha(c) != 0; });
  if (!letters) return fail("Ghostscript wrote something that is no picture");
  chunkLeft_ += length;
  lastChunk_ = head_.ends_with("IEND");
  return put(head_);
}

bool PictureFiles::put(std::string_view bytes) {
  if (bytes.size() > left_) return fail("Ghostscript was ended: the pictures grow too large");
  left_ -= bytes.size();
  while (!bytes.empty()) {
    const ssize_t written = write(file_, bytes.data(), bytes.size());
    if (written < 0 && errno == EINTR) continue;
    if (written < 0) return fail("cannot write " + name() + ": " + std::strerror(errno));
    bytes.remove_prefix(static_cast<std::size_t>(written));
  }
  return true;
}

bool PictureFiles::close() {
  if (::close(std::exchange(file_, -1)) != 0 ||
      renameat(folder_, partName().c_str(), folder_, name().c_str()) != 0) {
    return fail("cannot write " + name() + ": " + std::strerror(errno));
  }
  count_++;
  return true;
}

bool PictureFiles::take(std::string_view bytes) {
  while (error_.empty() && !bytes.empty()) {
    if (chunkLeft_ > 0) {
      const std::string_view data =
          bytes.substr(0, std::min<std::uint64_t>(chunkLeft_, bytes.size()));
      bytes.remove_prefix(data.size());
      chunkLeft_ -= data.size();
      if (!put(data)) break;
      if (chunkLeft_ == 0 && lastChunk_) close();
      continue;
    }
    const std::string_view part = bytes.substr(0, kHeadLength - head_.size());
    head_ += part;
    bytes.remove_prefix(part.size());
    if (head_.size() < kHeadLength) break;
    headRead();
    head_.clear();
  }
  return error_.empty();
}
