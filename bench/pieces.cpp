// The inner pieces of a job, one at a time: line splitting, row expansion, ticket intake, sealing,
// PPD access. The PPD is the one that the environment variable PPD names.

#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "DeploymentData.h"
#include "FilterFrame/Source/PostScriptLines.h"
#include "FilterFrame/Source/UtilityFunctionFilter/PPDAccess.h"
#include "engine/CommandTable.h"
#include "engine/ModuleDispatch.h"
#include "modules/accounting/Accounting.h"
#include "secblobenc/secblobenc.h"

namespace {

constexpr std::size_t kJobSize = 16 * 1024 * 1024;

// A job of lines of this length in a file without a name.
int JobOfLines(std::size_t length) {
  std::string job;
  const std::string line = std::string(length - 1, '7') + "\n";
  while (job.size() < kJobSize) job += line;
  std::FILE* file = std::tmpfile();
  std::fwrite(job.data(), 1, job.size(), file);
  std::fflush(file);
  return dup(fileno(file));
}

void SplitLines(benchmark::State& state) {
  const int fd = JobOfLines(static_cast<std::size_t>(state.range(0)));
  for (auto _ : state) {
    lseek(fd, 0, SEEK_SET);
    PostScriptLines lines(fd);
    for (PostScriptLines::Piece piece; lines.next(piece);) benchmark::DoNotOptimize(piece);
  }
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(kJobSize));
  close(fd);
}
BENCHMARK(SplitLines)->Arg(16)->Arg(35)->Arg(256)->Arg(4096);

void ExpandRow(benchmark::State& state) {
  InializeDescriptionTableFromFilter();
  char line[kCommandSize];
  for (auto _ : state) {
    BuildPrintComand(JBAFmtTableCommon[0].format, JBAFmtTableCommon[0].values, line, sizeof line);
    benchmark::DoNotOptimize(line);
  }
}
BENCHMARK(ExpandRow);

void TakeTickets(benchmark::State& state) {
  std::string word = "1";
  std::string options = "number-up=4 sides=two-sided-long-edge ZLVStaple=LeftDouble collate";
  char* args[] = {word.data(), word.data(), word.data(), word.data(), word.data(), options.data()};
  for (auto _ : state) GetTicketFromPDE(args);
}
BENCHMARK(TakeTickets);

void SealPassword(benchmark::State& state) {
  const unsigned char password[] = "secret";
  unsigned char blob[2000];
  std::uint32_t length = 0;
  for (auto _ : state) Encode_Random(password, sizeof password - 1, blob, &length);
}
BENCHMARK(SealPassword);

void OpenPPD(benchmark::State& state) {
  for (auto _ : state) {
    CloseJobPPD();
    benchmark::DoNotOptimize(JobPPD());
  }
}
BENCHMARK(OpenPPD);

void AskPPD(benchmark::State& state) {
  for (auto _ : state) benchmark::DoNotOptimize(PrinterLanguageIsUTF8());
}
BENCHMARK(AskPPD);

}  // namespace

BENCHMARK_MAIN();
