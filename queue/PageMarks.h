// Gives PostScript the page marks that the filter behind knows pages by: its lines `bp` and `ep`.
//
// Documents with structure comments get them whose own pages have none. When pstops has put several
// pages on a sheet it is the sheets that get them, and the pages' own lines `bp` and `ep` get a
// blank behind them, which only hides them from the filter. Everything else passes byte for byte:
// other documents that have marks, and PostScript without structure.

#pragma once

#include <sys/types.h>

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "FilterFrame/Source/JobInput.h"
#include "queue/DocumentStructure.h"

class PageMarks {
 public:
  // The page, in points, that drawings on the pages were laid out for: on pages of another size or
  // orientation they are moved so that their centre is the page's. 0 by 0: they are not moved.
  struct Paper {
    int width = 0;
    int height = 0;
  };

  explicit PageMarks(ByteReader source) : PageMarks(std::move(source), Paper{}) {}
  // `definitions` are PostScript that what is drawn on the pages needs; every document gets them,
  // behind its header comments.
  PageMarks(ByteReader source, Paper paper, std::string definitions = {});

  // Reads like read(2) what the source gives, with the marks. When the source is interrupted or not
  // ready it says so and may be called again; when reading fails for another reason, that is said
  // behind what had come before.
  ssize_t read(char* buffer, std::size_t size);

  // How often the document asks the device to print each page: 1 when it says nothing. Known when
  // the first byte has been read.
  //
  // Copies are made in one place. pstops, which pdftops ends with, asks the device for them: it
  // sets NumCopies in the document's setup, and each page is there once. When copies are to be
  // collated and the PPD has no option Collate, or when cupsManualCopies is True, pstops (and
  // pdftopdf in front of pdftops) repeats the pages instead, and asks for one copy.
  int deviceCopies() const { return deviceCopies_; }

 private:
  // What the document is known to be, in the order in which that is found out.
  enum class Phase {
    kHeader,     // its header comments are read
    kHead,       // it has structure comments; its first page is looked for
    kFirstPage,  // whether that has marks is looked for
    kMark,       // its pages are given marks
    kPass,       // the rest passes as it is
  };

  bool scanWindow();
  void markPages();
  void readHeader();
  void findFirstPage();
  void judgeFirstPage();
  void keepFirstPage();
  void goToFirstPage();
  DocumentStructure::Found nextOfPages(bool withMarks);
  void readSetup(std::string_view setup);
  ssize_t refill();
  void makeRoom();
  std::size_t held() const { return static_cast<std::size_t>(end_ - begin_); }
  bool heldEnough() const;

  ByteReader source_;
  std::string definitions_;
  std::string prolog_;
  Phase phase_ = Phase::kHeader;
  int deviceCopies_ = 1;
  DocumentStructure structure_;
  DocumentStructure atFirstPage_;  // what structure_ was there
  std::size_t headerSize_ = 0;     // from begin_; nothing is passed on before both sizes are used
  std::size_t firstPageSize_ = 0;  // from begin_, the %%Page line included
  int openSections_ = 0;
  bool pageInSection_ = false;  // the first page so far is in a section that has not ended
  bool hasSheets_ = false;      // its pages are sheets of several pages
  bool prologDue_ = true;
  bool firstPageDue_ = false;
  bool firstPageJudged_ = false;
  bool pageHasBeginMark_ = false;

  // One byte, which is the last one passed on, and behind it the bytes that have come.
  std::unique_ptr<char[]> window_;
  std::size_t capacity_;
  char* begin_;                   // the first byte not passed on
  char* end_;                     // behind the last byte
  const char* ready_;             // bytes may be passed on up to here
  const char* scan_;              // the document's structure is known up to here
  std::string_view insertion_{};  // stands at ready_
  bool ended_ = false;
  int error_ = 0;  // errno of the read that ended the document
};
