// cupstoxpjl, the filter that the PPDs name: choices become tickets, pages get their marks, and the
// job goes to the printer as pstoxpjl prints it.

#include <openssl/crypto.h>

#include <sys/resource.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "FilterFrame/Source/JobState.h"
#include "FilterFrame/Source/PrintJob.h"
#include "FilterFrame/Source/UtilityFunctionFilter/PPDAccess.h"
#include "deployment/DeploymentInfo.h"
#include "engine/TicketStore.h"
#include "queue/Composition.h"
#include "queue/DocumentBody.h"
#include "queue/JobMessages.h"
#include "queue/PageMarks.h"
#include "queue/SecretOptions.h"
#include "queue/TicketRows.h"
#include "secblobenc/WipedMemory.h"

namespace {

constexpr int kFewestArguments = 6;  // the program's name included
constexpr int kFailed = 1;
constexpr std::size_t kMostWarnings = 40;

// How often the printer prints each page, as the page log has it: what the document asks the
// printer for, not what the user has asked CUPS for, since the filters ahead may have repeated the
// pages.
using CopiesText = char[16];

int Usage() {
  std::fputs("Usage: cupstoxpjl job-id user title copies options [file]\n", stderr);
  return kFailed;
}

int Version() {
  const bool written = std::fputs(VersionText("cupstoxpjl").c_str(), stdout) >= 0;
  return written && std::fflush(stdout) == 0 ? 0 : kFailed;
}

// Whether the filter that arranges the pages of PDF has reported them to the page log already. It
// does by itself only where nobody behind it would; an option can make it.
bool PagesAreLogged(const Choices& choices) {
  const std::string* logging = choices.given("page-logging");
  const char* type = std::getenv("CONTENT_TYPE");
  return logging != nullptr && HasWord("on true yes", *logging) && type != nullptr &&
         std::strstr(type, "postscript") == nullptr;
}

// What each option became, and what is wrong. False when the job must not be printed.
bool Report(const Composition& composition) {
  for (const JobTicket& ticket : composition.tickets().tickets()) {
    SayDebug(ticket.source + ": " + ShortKey(ticket.key) + "=" +
             (ticket.secret ? "(hidden)" : ticket.value));
  }
  const Complaints& complaints = composition.complaints();
  if (complaints.failed()) {
    SayError(complaints.failure());
    return false;
  }
  const std::vector<std::string>& warnings = complaints.warnings();
  const std::size_t said = std::min(warnings.size(), kMostWarnings);
  for (const std::string& warning : std::span(warnings).first(said)) SayWarning(warning);
  if (said < warnings.size()) {
    SayWarning("... and " + std::to_string(warnings.size() - said) + " more");
  }
  return true;
}

// The document without what stands around it. It lives as long as its reader or `body`.
InputStage TakeBody(std::shared_ptr<DocumentBody>& body) {
  return [&body](ByteReader source) -> ByteReader {
    body = std::make_shared<DocumentBody>(std::move(source));
    return [body](char* buffer, std::size_t size) { return body->read(buffer, size); };
  };
}

// Marks the document's pages, and keeps `copies` as the document has it.
InputStage MarkPages(const Composition& composition, CopiesText& copies) {
  const PageMarks::Paper paper = {static_cast<int>(std::lround(composition.page().width)),
                                  static_cast<int>(std::lround(composition.page().height))};
  return [&composition, &copies, paper](ByteReader source) -> ByteReader {
    const auto marks =
        std::make_shared<PageMarks>(std::move(source), paper, composition.definitions());
    return [marks, &copies](char* buffer, std::size_t size) {
      const ssize_t count = marks->read(buffer, size);
      std::snprintf(copies, sizeof copies, "%d", marks->deviceCopies());
      return count;
    };
  };
}

// What is only known when the document has been read.
void ReportDocument(const Composition& composition, const DocumentBody* body) {
  if (CancelJob == 1 || body == nullptr) return;
  if (body->isCut()) SayWarning("The document holds an exit sequence; it ends there");
  if (JobPages == 0 && composition.tickets().find(TICKET_KEY("WMARKNameTicket")) != nullptr) {
    SayWarning(
        "The document has no page structure: it is printed without the watermark and its pages are "
        "not counted");
  }
}

int Print(int argc, char* argv[]) {
  std::vector<JobOption> chosen = TakeJobOptions(argv[5]);
  Composition composition(JobPPD(), {argv[2], argv[3], argv[4]}, std::move(chosen));
  composition.compose(argv);
  if (!Report(composition)) return kFailed;

  std::string options = composition.optionsText();
  CopiesText copies = "1";
  std::vector<char*> args(argv, argv + argc + 1);
  args[2] = composition.facts().user.data();
  args[3] = composition.facts().title.data();
  args[4] = PagesAreLogged(composition.choices()) ? nullptr : copies;
  args[5] = options.data();
  std::shared_ptr<DocumentBody> body;
  const InputStage takeBody = TakeBody(body), markPages = MarkPages(composition, copies);
  const int status = PrintJob(
      argc, args.data(), [&](ByteReader source) { return markPages(takeBody(std::move(source))); });
  ReportDocument(composition, body.get());
  OPENSSL_cleanse(options.data(), options.size());
  return status;
}

}  // namespace

int main(int argc, char* argv[]) {
  if (argc == 2 && std::strcmp(argv[1], "--version") == 0) return Version();
  if (argc < kFewestArguments) return Usage();
  constexpr rlimit kNoCore = {0, 0};
  setrlimit(RLIMIT_CORE, &kNoCore);  // it would hold passwords
  WipeLibraryMemory();
  PrepareProcess();
  const int status = Print(argc, argv);
  WipeStack();
  return status;
}
