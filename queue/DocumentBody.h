// What of the input is the document. An exit sequence ends it, as it would in the device, so that
// no document brings a header of its own. Drivers of other systems write one around theirs, with
// lines of PJL: that is taken off.

#pragma once

#include <sys/types.h>

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>

#include "FilterFrame/Source/JobInput.h"

// What stands between documents: exit sequences, lines that begin with @PJL, white space, byte 4.
class PJLFrame {
 public:
  // How many of the next bytes belong to it or begin what may. When that is fewer than `bytes`
  // holds, the frame ends there, and what begun() says belongs to what follows it.
  std::size_t follow(std::string_view bytes);

  std::string_view begun() const { return word_.substr(0, matched_); }
  bool hasExit() const { return hasExit_; }  // an exit sequence has come

 private:
  bool take(char byte);

  std::string_view word_;  // what so many bytes of have come
  std::size_t matched_ = 0;
  bool inLine_ = false;  // behind @PJL
  bool hasExit_ = false;
};

class DocumentBody {
 public:
  explicit DocumentBody(ByteReader source) : source_(std::move(source)) {}

  // Reads the document like read(2); the source's errors are handed on, and it may be called again
  // after them. What follows the document is read and dropped.
  ssize_t read(char* buffer, std::size_t size);

  // Whether more than a frame was dropped behind the document. Known when read() has returned 0.
  bool isCut() const { return isCut_; }

 private:
  enum class Phase { kHead, kBody, kBehind, kEnd };

  // These go on in the document, and return -1 as read() does, else 0. What is held goes out before
  // a failure that stays, which the source then says again.
  ssize_t readHead();
  ssize_t finishMatch();
  ssize_t readBehind();
  void beginBehind();
  void dropBehind(std::string_view bytes);
  std::size_t scan(const char* bytes, std::size_t count);

  ByteReader source_;
  Phase phase_ = Phase::kHead;
  PJLFrame frame_;
  std::string held_;         // of the document's head, until it is understood
  std::string pending_;      // goes out next
  std::size_t matched_ = 0;  // behind that, so many bytes of what may be an exit sequence
  bool isCut_ = false;
};
