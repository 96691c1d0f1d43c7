// A print job from its names to the trailer.

#include "FilterFrame/Source/PrintJob.h"

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>

#include "FilterFrame/Source/DecomposedStream.h"
#include "FilterFrame/Source/JobCopy.h"
#include "FilterFrame/Source/JobNames.h"
#include "FilterFrame/Source/JobState.h"
#include "FilterFrame/Source/PostScriptStream.h"
#include "FilterFrame/Source/UtilityFunctionFilter/HostIdentity.h"
#include "FilterFrame/Source/UtilityFunctionFilter/OutputPrimitives.h"
#include "FilterFrame/Source/UtilityFunctionFilter/PPDAccess.h"
#include "FilterFrame/Source/UtilityFunctionFilter/StandardDescriptors.h"
#include "engine/JobHeader.h"
#include "engine/ModuleDispatch.h"

namespace {

constexpr std::size_t kOutputBufferSize = 8 * 1024;

// Standard output hands on whole blocks; it is flushed where the next program should see more.
void BufferOutput() {
  static char buffer[kOutputBufferSize];
  std::setvbuf(stdout, buffer, _IOFBF, sizeof buffer);
}

void SignalHandler(int /*signal*/) {
  CancelJob = 1;
}

// From a terminal or a script, not from CUPS.
void SignalUserHandler(int /*signal*/) {
  CancelJob = 1;
  CancelJobByUser = 1;
}

void SignalPipeHandler(int /*signal*/) {
  CancelJobForPipe = 1;
}

// Interrupted reads and writes go on: a cancelled job ends at its next page boundary.
void InstallHandler(int signal, void (*handler)(int)) {
  struct sigaction action = {};
  action.sa_handler = handler;
  action.sa_flags = SA_RESTART;
  sigemptyset(&action.sa_mask);
  sigaction(signal, &action, nullptr);
}

void InstallHandlers() {
  InstallHandler(SIGTERM, SignalHandler);
  InstallHandler(SIGPIPE, SignalPipeHandler);
  for (const int signal : {SIGINT, SIGHUP}) {
    struct sigaction inherited = {};
    sigaction(signal, nullptr, &inherited);
    if (inherited.sa_handler != SIG_IGN) InstallHandler(signal, SignalUserHandler);  // nohup
  }
  InstallHandler(SIGXFSZ, SIG_IGN);  // a limit of the file's size is a write error like others
}

// Hands on the rest of the job. What could not be written is said once; a closed pipe is no news
// to the program that closed it.
void FinishOutput() {
  FlushOutput(stdout);
  const int error = FirstOutputError();
  if (error != 0 && error != EPIPE) {
    std::fprintf(stderr, "ERROR: Unable to write print data: %s\n", std::strerror(error));
  }
}

}  // namespace

void PrepareProcess() {
  OccupyStandardDescriptors();
  BufferOutput();
  std::setvbuf(stderr, nullptr, _IONBF, 0);
}

void PrepareHeader(char* argv[]) {
  ReadUserName(argv[2]);
  InstallHandlers();  // a job that has not begun yet ends at once
  InvalidateStdUserName();
  ReadDocumentName(argv);
  InializeDescriptionTable();
  getHostName(HostNameStr);
  GetTicketFromPDE(argv);
}

int PrintJob(int argc, char* argv[], const InputStage& stage) {
  OpenJobCopy();
  PrepareHeader(argv);
  OutputXPJLCommand(argv);
  FlushOutput(stdout);

  if (PrinterDecomposesPostScript()) {
    OutputPSStreamtoFileandInsertPJLforFeaturePDE(argc, argv, stage);
  } else {
    OutputPSStream(argc, argv, stage);
  }

  OutputXPJLCommandFromArray(argv, prtFmtTableXPJLTrailer, numFmtTableXPJLTrailer);
  CloseJobCopy();
  FinishOutput();
  return CancelJobForPipe == 1 ? 1 : 0;
}
