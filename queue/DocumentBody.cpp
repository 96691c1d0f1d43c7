// The search for exit sequences, which may lie across the borders of what is read at once.

#include "queue/DocumentBody.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <utility>

namespace {

constexpr char kEscape = '\x1b';
constexpr std::string_view kExit = "\x1b%-12345X";
constexpr std::string_view kPJL = "@PJL";
constexpr std::string_view kBetween = {" \t\r\n\f\0\4", 7};

constexpr std::size_t kBlockSize = 4096;

// So much is held of a document that begins like a frame without an exit sequence.
constexpr std::size_t kLongestHead = 4096;

}  // namespace

std::size_t PJLFrame::follow(std::string_view bytes) {
  const auto end = std::find_if(bytes.begin(), bytes.end(), [this](char c) { return !take(c); });
  return static_cast<std::size_t>(end - bytes.begin());
}

bool PJLFrame::take(char byte) {
  if (inLine_) {
    inLine_ = byte != '\n';
    return true;
  }
  if (matched_ == 0) {
    if (kBetween.find(byte) != kBetween.npos) return true;
    word_ = byte == kEscape ? kExit : kPJL;
  }
  if (byte != word_[matched_]) return false;
  if (++matched_ < word_.size()) return true;
  matched_ = 0;
  (word_ == kExit ? hasExit_ : inLine_) = true;
  return true;
}

ssize_t DocumentBody::read(char* buffer, std::size_t size) {
  for (;;) {
    ssize_t count = 0;
    if (!pending_.empty()) {
      const std::size_t length = pending_.copy(buffer, size);
      pending_.erase(0, length);
      return static_cast<ssize_t>(length);
    }
    if (phase_ == Phase::kEnd) return 0;
    if (phase_ == Phase::kHead) {
      count = readHead();
    } else if (phase_ == Phase::kBehind) {
      count = readBehind();
    } else if (matched_ > 0) {
      count = finishMatch();
    } else {
      count = source_(buffer, size);
      if (count <= 0) return count;
      const std::size_t length = scan(buffer, static_cast<std::size_t>(count));
      if (length > 0) return static_cast<ssize_t>(length);
    }
    if (count < 0) return count;
  }
}

// Reads on until it is known whether the document begins with a frame that has an exit sequence;
// what is held until then waits in held_.
ssize_t DocumentBody::readHead() {
  char block[kBlockSize];
  const ssize_t count = source_(block, sizeof block);
  if (count < 0 && MayPassLater(errno)) return count;
  std::string_view bytes(block, static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
  const std::size_t length = frame_.follow(bytes);
  const bool decided = count <= 0 || length < bytes.size();
  if (frame_.hasExit()) {
    held_ = frame_.begun();
    bytes.remove_prefix(length);
  }
  held_ += bytes;
  if (!decided && held_.size() <= kLongestHead) return 0;
  phase_ = Phase::kBody;
  held_.resize(scan(held_.data(), held_.size()));
  pending_ = std::exchange(held_, {});
  return 0;
}

// The source's next byte decides whether the exit sequence goes on.
ssize_t DocumentBody::finishMatch() {
  char byte = 0;
  const ssize_t count = source_(&byte, 1);
  if (count < 0 && MayPassLater(errno)) return count;
  if (count > 0 && byte == kExit[matched_]) {
    if (++matched_ == kExit.size()) beginBehind();
    return 0;
  }
  pending_ = kExit.substr(0, matched_);
  matched_ = count > 0 && byte == kEscape ? 1 : 0;
  if (count > 0 && matched_ == 0) pending_ += byte;
  return 0;
}

ssize_t DocumentBody::readBehind() {
  char block[kBlockSize];
  const ssize_t count = source_(block, sizeof block);
  if (count == 0) phase_ = Phase::kEnd;
  if (count > 0) dropBehind({block, static_cast<std::size_t>(count)});
  return count;
}

void DocumentBody::beginBehind() {
  phase_ = Phase::kBehind;
  frame_ = {};
}

void DocumentBody::dropBehind(std::string_view bytes) {
  isCut_ = isCut_ || frame_.follow(bytes) < bytes.size();
}

// How many of the bytes may go out; what follows them is dealt with.
std::size_t DocumentBody::scan(const char* bytes, std::size_t count) {
  const char* end = bytes + count;
  const char* at = bytes;
  for (;; at++) {
    at = static_cast<const char*>(std::memchr(at, kEscape, static_cast<std::size_t>(end - at)));
    if (at == nullptr) return count;
    const std::string_view rest(at, static_cast<std::size_t>(end - at));
    if (rest.size() < kExit.size() && kExit.starts_with(rest)) {
      matched_ = rest.size();
      break;
    }
    if (rest.starts_with(kExit)) {
      beginBehind();
      dropBehind(rest.substr(kExit.size()));
      break;
    }
  }
  return static_cast<std::size_t>(at - bytes);
}
