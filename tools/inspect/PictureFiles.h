// Takes a stream of PNG pictures apart into files.

#pragma once

#include <cstdint>
#include <string>
#include <string_view>

class PictureFiles {
 public:
  // Files page-001.png, page-002.png, ... are written into the folder that `folder` is open on; it
  // stays the caller's. They replace what has these names. No more than `mostBytes` in all.
  PictureFiles(int folder, std::uint64_t mostBytes) : folder_(folder), left_(mostBytes) {}
  ~PictureFiles();
  PictureFiles(const PictureFiles&) = delete;
  PictureFiles& operator=(const PictureFiles&) = delete;

  // The stream's next bytes. False: error() says what is wrong, and the picture begun is dropped.
  bool take(std::string_view bytes);

  int count() const { return count_; }  // of whole pictures
  const std::string& error() const { return error_; }

 private:
  bool begin();
  bool headRead();
  bool put(std::string_view bytes);
  bool close();
  bool fail(std::string error);
  std::string name() const;
  std::string partName() const { return "." + name() + ".part"; }

  int folder_;
  std::uint64_t left_;
  int file_ = -1;
  int count_ = 0;
  std::string head_;             // of a picture or a chunk, as far as it has come
  std::uint64_t chunkLeft_ = 0;  // bytes of the chunk to come
  bool lastChunk_ = false;
  std::string error_;
};
