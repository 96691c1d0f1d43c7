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
