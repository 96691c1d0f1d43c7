// Printer-ready jobs: made by hand, and made by the filter of the sample document.

#pragma once

#include "tests/support/Patterns.h"
#include "tests/support/Tickets.h"

const std::string kExit = "\033%-12345X";
constexpr char kSecurePrint[] =
    "PrintTypeTicketKey=2 PrintTypeUserNameTicketKey=sam PrintTypePasswordTicketKey=";

// A job around header lines and a document.
inline std::string Job(const std::string& lines, const std::string& document = "%!PS\nshowpage\n") {
  return kExit + "@PJL JOB MODE=PRINTER\r\n" + lines + "@PJL ENTER LANGUAGE=POSTSCRIPT\n" +
         document + "\4" + kExit + "@PJL EOJ\n";
}

inline bool Contains(const std::string& text, const std::string& part) {
  return text.find(part) != text.npos;
}

inline std::string Handbook() {
  return FileContent(SAMPLES_DIR "/handbook.ps");
}

// What the filter makes of a document with these tickets on a model.
inline std::string FilteredJob(const std::string& settings,
                               const std::string& document = Handbook(),
                               const std::string& model = "atelier-c90") {
  FilterJob job;
  job.arguments = {"1", "sam", "Handbook", "2", Tickets(settings)};
  job.environment["PPD"] = PPD_DIR "/zelva-" + model + ".ppd";
  job.input = document;
  return RunFilter(job).output;
}
