// Job options and PPDs for tests of the modules, which run in the test's own process.

#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <sstream>
#include <string>

#include "FilterFrame/Source/UtilityFunctionFilter/PPDAccess.h"
#include "tests/support/FilterProcess.h"

constexpr char kUTF8PPD[] = "*ZLVPrinterLanguageEncoding: \"UTF-8\"\n";
constexpr char kLatin1PPD[] = "*ZLVPrinterLanguageEncoding: \"ISOLatin1\"\n";

// "Name=value Name=value" with the print dialog's key prefix before each ticket's name.
inline std::string Tickets(const std::string& settings) {
  std::string options;
  std::istringstream words(settings);
  for (std::string word; words >> word;) {
    const bool isTicket = word.substr(0, word.find('=')).find("Ticket") != word.npos;
    options += isTicket ? "com.zelva.jt.printsettings.ps.ww." + word : word;
    options += ' ';
  }
  return options;
}

// Tickets of a text watermark; of tickets given twice the last one counts.
constexpr char kWatermark[] =
    "WMARKNameTicket=x WMARKTypeTicket=0 WMARKTextTicket=(DRAFT) WMARKFontTicket=Helvetica "
    "WMARKFontSizeTicket=60 WMARKColorRTicket=0 WMARKColorGTicket=0 WMARKColorBTicket=1 "
    "WMARKDensityTicket=50 WMARKOrientationTicket=1 WMARKPaperWidthTicket=612 "
    "WMARKPaperHeightTicket=792 WMARKAngleTicket=0 WMARKWidthTicket=200 WMARKHeightTicket=50 "
    "WMARKhOffsetTicket=0 WMARKvOffsetTicket=0 WMARKOnlyFirstTicket=0 ";

// What a printer gets of a document that is printed with these tickets.
inline std::string PrintedDocument(const std::string& settings, const std::string& document) {
  FilterJob job;
  job.arguments[4] = Tickets(settings);
  job.input = document;
  const std::string body = Body(RunFilter(job).output);
  EXPECT_TRUE(body.starts_with(kEnterPS) && body.ends_with('\4')) << body;
  return body.substr(kEnterPS.size(), body.size() - kEnterPS.size() - 1);
}

inline std::string Repeat(const std::string& text, std::size_t count) {
  std::string repeated;
  while (count-- > 0) repeated += text;
  return repeated;
}

// A filter's argument vector.
class Arguments {
 public:
  explicit Arguments(std::string options) : options_(std::move(options)) {}
  operator char**() { return pointers_; }

 private:
  std::string options_;
  char word_[2] = "1";
  char* pointers_[7] = {word_, word_, word_, word_, word_, options_.data(), nullptr};
};

// Makes a PPD with these attribute lines the job's, as long as it lives.
class UsedPPD {
 public:
  explicit UsedPPD(const std::string& lines) {
    CloseJobPPD();
    setenv("PPD", folder_.write("test.ppd", PPDText(lines)).c_str(), 1);
  }
  ~UsedPPD() {
    unsetenv("PPD");
    CloseJobPPD();
  }
  UsedPPD(const UsedPPD&) = delete;
  UsedPPD& operator=(const UsedPPD&) = delete;

 private:
  ScratchFolder folder_;
};

// What `write`, given the argument vector, writes for these tickets under a PPD with these lines.
template <typename Write>
std::string Written(const std::string& ppdLines, const std::string& settings, Write write) {
  const UsedPPD ppd(ppdLines);
  Arguments args(Tickets(settings));
  testing::internal::CaptureStdout();
  write(args);
  return testing::internal::GetCapturedStdout();
}
