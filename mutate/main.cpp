// Runs the tests once for each fault in a table, each time in a process of its own, and says which
// faults no test noticed. Filters that the tests start are this program again, with the same fault.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <map>

#include "mutate/TableMutants.h"

int FilterMain(int argc, char* argv[]);
int QueueFilterMain(int argc, char* argv[]);

namespace {

constexpr int kMutantDescriptor = 99;  // a file with the mutant's number, which filters inherit
constexpr int kNone = -1;
// They say nothing of tables that quicker ones do not.
constexpr char kSlowTests[] = "-QueueJobs.HoldNoForgery:Decomposed.LongLines*:JobCopy.*";
constexpr unsigned kPatience = 120;  // seconds; a program that hangs has been noticed

void SayMutant(int number) {
  char name[] = "/tmp/mutantXXXXXX";
  const int file = mkstemp(name);
  unlink(name);
  if (pwrite(file, &number, sizeof number, 0) != sizeof number) std::abort();
  if (dup2(file, kMutantDescriptor) < 0) std::abort();
  close(file);
}

void ApplyMutant(int number) {
  const TableMutants mutants = AllTableMutants();
  if (number != kNone) mutants.at(static_cast<std::size_t>(number)).apply();
}

void ApplyInheritedMutant() {
  int number = kNone;
  if (pread(kMutantDescriptor, &number, sizeof number, 0) != sizeof number) std::abort();
  close(kMutantDescriptor);
  ApplyMutant(number);
}

// Writes the names of failed tests, a line each.
class Failures : public testing::EmptyTestEventListener {
 public:
  explicit Failures(int fd) : fd_(fd) {}
  void OnTestEnd(const testing::TestInfo& test) override {
    if (!test.result()->Failed()) return;
    dprintf(fd_, "%s.%s\n", test.test_suite_name(), test.name());
  }

 private:
  int fd_;
};

[[noreturn]] void RunTests(int number, int fd) {
  alarm(kPatience);
  SayMutant(number);
  ApplyMutant(number);
  const int nothing = open("/dev/null", O_WRONLY);
  dup2(nothing, STDOUT_FILENO);
  dup2(nothing, STDERR_FILENO);
  auto& listeners = testing::UnitTest::GetInstance()->listeners();
  delete listeners.Release(listeners.default_result_printer());
  listeners.Append(new Failures(fd));
  _exit(RUN_ALL_TESTS() == 0 ? EXIT_SUCCESS : EXIT_FAILURE);
}

struct Outcome {
  bool noticed = false;
  std::string tests;  // those that failed; empty when the program died
};

struct Running {
  int number;
  int pipe;
};

Outcome Finished(const Running& running, int status) {
  Outcome outcome = {!WIFEXITED(status) || WEXITSTATUS(status) != EXIT_SUCCESS, ""};
  char block[4096];
  for (ssize_t count; (count = read(running.pipe, block, sizeof block)) > 0;)
    outcome.tests.append(block, static_cast<std::size_t>(count));
  close(running.pipe);
  std::replace(outcome.tests.begin(), outcome.tests.end(), '\n', ' ');
  return outcome;
}

// Runs the tests for each of these mutants, `jobs` at a time, and calls `done` for each.
template <typename Done>
void RunAll(const std::vector<int>& numbers, int jobs, Done done) {
  std::map<pid_t, Running> running;
  for (auto next = numbers.begin(); next != numbers.end() || !running.empty();) {
    if (next != numbers.end() && static_cast<int>(running.size()) < jobs) {
      int ends[2];
      if (pipe(ends) != 0) std::abort();
      const int number = *next++;
      const pid_t child = fork();
      if (child == 0) {
        close(ends[0]);
        RunTests(number, ends[1]);
      }
      close(ends[1]);
      running[child] = {number, ends[0]};
      continue;
    }
    int status = 0;
    const pid_t ended = wait(&status);
    const auto found = running.find(ended);
    if (found == running.end()) continue;
    done(found->second.number, Finished(found->second, status));
    running.erase(found);
  }
}

int Usage() {
  std::fputs(
      "Usage: mutate_tables [--list | --matrix] [-j jobs] [--every n] [word of a mutant's name]\n",
      stderr);
  return EXIT_FAILURE;
}

int Run(int argc, char* argv[]) {
  bool list = false, matrix = false;
  int jobs = 2;
  std::size_t every = 1;
  std::string word;
  for (int i = 1; i < argc; i++) {
    const std::string argument = argv[i];
    if (argument == "--list")
      list = true;
    else if (argument == "--matrix")
      matrix = true;
    else if (argument == "-j" && i + 1 < argc)
      jobs = std::atoi(argv[++i]);
    else if (argument == "--every" && i + 1 < argc)
      every = static_cast<std::size_t>(std::max(1, std::atoi(argv[++i])));
    else if (argument.starts_with('-') || jobs < 1)
      return Usage();
    else
      word = argument;
  }
  GTEST_FLAG_SET(fail_fast, !matrix);
  GTEST_FLAG_SET(filter, kSlowTests);

  const TableMutants mutants = AllTableMutants();
  std::vector<int> numbers;
  for (std::size_t i = 0; i < mutants.size(); i += every) {
    if (mutants[i].name.find(word) != std::string::npos) numbers.push_back(static_cast<int>(i));
  }
  if (list) {
    for (int number : numbers) std::puts(mutants[static_cast<std::size_t>(number)].name.c_str());
    return EXIT_SUCCESS;
  }

  std::string broken;
  RunAll({kNone}, 1, [&](int, const Outcome& outcome) {
    if (outcome.noticed) broken = "Without any fault these fail: " + outcome.tests + "\n";
  });
  if (!broken.empty()) {
    std::fputs(broken.c_str(), stderr);
    return EXIT_FAILURE;
  }
  std::size_t noticed = 0;
  RunAll(numbers, jobs, [&](int number, const Outcome& outcome) {
    const char* name = mutants[static_cast<std::size_t>(number)].name.c_str();
    noticed += outcome.noticed;
    if (!outcome.noticed)
      std::printf("not noticed: %s\n", name);
    else if (matrix)
      std::printf("%s: %s\n", name, outcome.tests.c_str());
    std::fflush(stdout);
  });
  std::printf("%zu of %zu faults in tables noticed (%.1f %%)\n", noticed, numbers.size(),
              numbers.empty()
                  ? 100.0
                  : 100.0 * static_cast<double>(noticed) / static_cast<double>(numbers.size()));
  return EXIT_SUCCESS;
}

}  // namespace

int main(int argc, char* argv[]) {
  const std::filesystem::path name = std::filesystem::path(argv[0]).filename();
  if (name == "pstoxpjl" || name == "cupstoxpjl") {
    ApplyInheritedMutant();
    return name == "pstoxpjl" ? FilterMain(argc, argv) : QueueFilterMain(argc, argv);
  }
  testing::InitGoogleTest(&argc, argv);
  return Run(argc, argv);
}
