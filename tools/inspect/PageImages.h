// Renders a job's document into pictures with the Ghostscript that is installed.

#pragma once

#include <sys/types.h>

#include <string>
#include <string_view>

class PageImages {
 public:
  // Starts Ghostscript, which writes page-001.png, page-002.png, ... into `folder`; makes the
  // folder when there is none. error() says why it did not start.
  PageImages(const std::string& folder, int dotsPerInch);
  ~PageImages();
  PageImages(const PageImages&) = delete;
  PageImages& operator=(const PageImages&) = delete;

  // The document's bytes in their order.
  void write(std::string_view bytes);

  // Waits for the pictures. False: error() says what Ghostscript did not like.
  bool finish();

  const std::string& error() const { return error_; }

 private:
  void start(const std::string& folder, int dotsPerInch);
  std::string complaint();

  pid_t pid_ = -1;
  int input_ = -1;     // Ghostscript's, to be written
  int messages_ = -1;  // a file with what it printed
  std::string error_;
};
