// Renders a job's document into pictures with the Ghostscript that is installed.

#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "tools/inspect/GhostscriptProcess.h"
#include "tools/inspect/PictureFiles.h"

class PageImages {
 public:
  // Starts Ghostscript; its pages become page-001.png, page-002.png, ... in `folder`, which is made
  // when there is none. error() says why it did not start.
  PageImages(const std::string& folder, int dotsPerInch, RenderLimits limits);
  ~PageImages();
  PageImages(const PageImages&) = delete;
  PageImages& operator=(const PageImages&) = delete;

  // The document's bytes in their order.
  void write(std::string_view bytes);

  // Waits for the pictures. False: error() says what went wrong.
  bool finish();

  const std::string& error() const { return error_; }

  // The first line that Ghostscript or the document printed; may be empty.
  std::string firstMessage() const;

 private:
  std::string error_;  // first: opening the folder sets it
  int folder_ = -1;
  std::unique_ptr<PictureFiles> files_;
  std::unique_ptr<GhostscriptProcess> ghostscript_;
};
