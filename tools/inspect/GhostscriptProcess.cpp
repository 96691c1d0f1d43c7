// The child, its limits, and the pipes to it.
//
// Ghostscript's safety measures permit a document to read, write, rename and delete below TMPDIR,
// or below /tmp where that is not set. TMPDIR therefore names something that does not exist in a
// folder that only this user can enter, so that there is nothing to read and nothing can be made.
// The pictures come through standard output, and the size of files is limited to nothing.

#include "tools/inspect/GhostscriptProcess.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <utility>
#include <vector>

#include "tools/dialect/DisplayText.h"
#include "tools/inspect/EndWithParent.h"

// macOS's headers leave it to the program.
extern char** environ;  // NOLINT(readability-redundant-declaration)

namespace {

constexpr std::size_t kLongestMessages = 64 * 1024;
constexpr std::size_t kLongestComplaint = 300;
constexpr int kCannotRun = 127;
constexpr int kEndingSignals[] = {SIGINT, SIGTERM, SIGHUP, SIGQUIT};

// What a signal handler needs to take Ghostscript along.
volatile pid_t running = 0;
volatile std::sig_atomic_t timeIsUp = 0;
char privateFolder[PATH_MAX];

void EndGroup() {
  if (running > 0) kill(-running, SIGKILL);
}

void TimeIsUp(int) {
  timeIsUp = 1;
  EndGroup();
}

void EndTogether(int number) {
  EndGroup();
  rmdir(privateFolder);
  std::signal(number, SIG_DFL);
  raise(number);
}

void Handle(int number, void (*handler)(int)) {
  struct sigaction action = {};
  sigaction(number, nullptr, &action);
  if (handler == EndTogether && action.sa_handler == SIG_IGN) return;
  action = {};
  action.sa_handler = handler;
  sigemptyset(&action.sa_mask);
  sigaction(number, &action, nullptr);
}

void Close(int& fd) {
  if (fd >= 0) close(fd);
  fd = -1;
}

// Both ends are closed when another program is run.
bool MakePipe(int (&ends)[2]) {
  if (pipe(ends) != 0) return false;
  for (int end : ends) fcntl(end, F_SETFD, FD_CLOEXEC);
  return true;
}

// A folder that only this user can enter, in the folder for such things.
std::string MakePrivateFolder() {
  const char* parent = std::getenv("TMPDIR");
  std::string folder = parent != nullptr && *parent != '\0' ? parent : "/tmp";
  folder += "/xpjl-inspect-XXXXXX";
  if (mkdtemp(folder.data()) == nullptr) return {};
  char* whole = realpath(folder.c_str(), nullptr);
  if (whole != nullptr) folder = whole;
  std::free(whole);
  return folder;
}

void Limit(int resource, rlim_t soft, rlim_t hard) {
  rlimit limit = {};
  if (getrlimit(resource, &limit) == 0) hard = std::min(hard, limit.rlim_max);
  limit = {.rlim_cur = std::min(soft, hard), .rlim_max = hard};
  setrlimit(resource, &limit);
}

void SetLimits(RenderLimits limits) {
  const auto seconds = static_cast<rlim_t>(limits.cpuSeconds);
  const rlim_t memory = static_cast<rlim_t>(limits.memoryMegabytes) * 1024 * 1024;
  Limit(RLIMIT_CPU, seconds, seconds + 1);
  Limit(RLIMIT_AS, memory, memory);
  Limit(RLIMIT_FSIZE, 0, 0);
  Limit(RLIMIT_CORE, 0, 0);
  std::signal(SIGXFSZ, SIG_IGN);  // a library's cache that cannot be written is done without
}

std::vector<std::string> Words(int dotsPerInch) {
  return {"gs",
          "-q",
          "-dSAFER",
          "-dBATCH",
          "-dNOPAUSE",
          "-sDEVICE=png16m",
          "-dTextAlphaBits=4",
          "-dGraphicsAlphaBits=4",
          "-dMaxBitmap=2000000000",  // a page in bands would need a file
          "-r" + std::to_string(dotsPerInch),
          "-sstdout=%stderr",  // what the document prints
          "-sOutputFile=%stdout",
          "-"};
}

std::vector<char*> Pointers(std::vector<std::string>& words) {
  std::vector<char*> pointers;
  pointers.reserve(words.size() + 1);
  for (std::string& word : words) pointers.push_back(word.data());
  pointers.push_back(nullptr);
  return pointers;
}

// What the child is to become.
struct ChildPlan {
  std::vector<char*> arguments;
  std::vector<char*> environment;
  const char* folder;
  RenderLimits limits;
  pid_t parent;
  std::array<int, 3> streams;
  int report;  // gets the error's number when Ghostscript does not run
};

[[noreturn]] void BecomeGhostscript(const ChildPlan& plan) {
  setpgid(0, 0);
  for (int number : kEndingSignals) std::signal(number, SIG_DFL);
  std::signal(SIGPIPE, SIG_DFL);
  EndWithParent(plan.parent);
  SetLimits(plan.limits);
  bool ready = chdir(plan.folder) == 0;
  for (int i = 0; i < 3; i++)
    ready = dup2(plan.streams[static_cast<std::size_t>(i)], i) == i && ready;
  if (ready) {
    environ = const_cast<char**>(plan.environment.data());
    execvp(plan.arguments[0], plan.arguments.data());
  }
  const int error = errno;
  [[maybe_unused]] const ssize_t told = ::write(plan.report, &error, sizeof error);
  _exit(kCannotRun);
}

// Reads what there is; false at the end.
bool ReadSome(int fd, char* buffer, std::size_t size, std::string_view& got) {
  ssize_t count = 0;
  do {
    count = read(fd, buffer, size);
  } while (count < 0 && errno == EINTR);
  got = {buffer, count > 0 ? static_cast<std::size_t>(count) : 0};
  return count > 0;
}

}  // namespace

GhostscriptProcess::GhostscriptProcess(int dotsPerInch, RenderLimits limits, Pictures pictures)
    : limits_(limits), pictures_(std::move(pictures)), folder_(MakePrivateFolder()) {
  std::signal(SIGPIPE, SIG_IGN);
  if (folder_.empty() || folder_.size() >= sizeof privateFolder) {
    error_ = std::string("cannot make a private folder: ") + std::strerror(errno);
    return;
  }
  std::copy_n(folder_.c_str(), folder_.size() + 1, privateFolder);
  for (int number : kEndingSignals) Handle(number, EndTogether);
  Handle(SIGALRM, TimeIsUp);
  start(dotsPerInch);
}

GhostscriptProcess::~GhostscriptProcess() {
  stop();
  if (pid_ > 0) waitpid(pid_, nullptr, 0);
  running = 0;
  alarm(0);
  for (int* fd : {&input_, &output_, &complaints_}) Close(*fd);
  if (!folder_.empty()) rmdir(folder_.c_str());
}

void GhostscriptProcess::start(int dotsPerInch) {
  int pipes[4][2] = {{-1, -1}, {-1, -1}, {-1, -1}, {-1, -1}};  // input, pictures, messages, report
  if (!std::all_of(std::begin(pipes), std::end(pipes), MakePipe)) {
    error_ = std::string("cannot start Ghostscript: ") + std::strerror(errno);
    for (auto& ends : pipes) std::for_each(std::begin(ends), std::end(ends), Close);
    return;
  }
  const char* path = std::getenv("PATH");
  std::vector<std::string> words = Words(dotsPerInch);
  std::vector<std::string> variables = {std::string("PATH=") + (path != nullptr ? path : ""),
                                        "TMPDIR=" + folder_ + "/none"};
  const ChildPlan plan = {Pointers(words), Pointers(variables),
                          folder_.c_str(), limits_,
                          getpid(),        {pipes[0][0], pipes[1][1], pipes[2][1]},
                          pipes[3][1]};
  timeIsUp = 0;
  pid_ = fork();
  if (pid_ == 0) BecomeGhostscript(plan);
  int error = pid_ < 0 ? errno : 0;
  if (pid_ > 0) {
    setpgid(pid_, pid_);
    running = pid_;
    alarm(static_cast<unsigned>(limits_.seconds));
  }
  for (int* fd : {&pipes[0][0], &pipes[1][1], &pipes[2][1], &pipes[3][1]}) Close(*fd);
  input_ = pipes[0][1];
  output_ = pipes[1][0];
  complaints_ = pipes[2][0];
  fcntl(input_, F_SETFL, O_NONBLOCK);
  std::string_view told;
  if (error == 0) ReadSome(pipes[3][0], reinterpret_cast<char*>(&error), sizeof error, told);
  Close(pipes[3][0]);
  if (error == 0) return;
  error_ = error == ENOENT
               ? "Ghostscript (gs) was not found on the PATH; install it to render pages"
               : std::string("cannot start Ghostscript: ") + std::strerror(error);
}

void GhostscriptProcess::stop() {
  EndGroup();
  Close(input_);
}

void GhostscriptProcess::takePictures() {
  char block[64 * 1024];
  std::string_view bytes;
  if (!ReadSome(output_, block, sizeof block, bytes)) return Close(output_);
  if (!pictures_(bytes)) {
    stop();
    Close(output_);
  }
}

void GhostscriptProcess::takeMessages() {
  char block[4096];
  std::string_view bytes;
  if (!ReadSome(complaints_, block, sizeof block, bytes)) return Close(complaints_);
  messages_ += bytes.substr(0, kLongestMessages - std::min(kLongestMessages, messages_.size()));
}

// Waits until Ghostscript reads or writes, and does the other half of it.
void GhostscriptProcess::exchange(std::string_view& bytes) {
  pollfd ready[] = {
      {bytes.empty() ? -1 : input_, POLLOUT, 0}, {output_, POLLIN, 0}, {complaints_, POLLIN, 0}};
  if (poll(ready, std::size(ready), -1) < 0) return;
  if (ready[1].revents != 0) takePictures();
  if (ready[2].revents != 0) takeMessages();
  if (ready[0].revents == 0 || input_ < 0) return;
  const ssize_t count = ::write(input_, bytes.data(), bytes.size());
  if (count > 0) bytes.remove_prefix(static_cast<std::size_t>(count));
  if (count < 0 && errno != EAGAIN && errno != EINTR) Close(input_);
}

void GhostscriptProcess::write(std::string_view bytes) {
  while (error_.empty() && input_ >= 0 && !bytes.empty()) exchange(bytes);
}

bool GhostscriptProcess::finish() {
  if (!error_.empty()) return false;
  Close(input_);
  std::string_view nothing;
  while (output_ >= 0 || complaints_ >= 0) exchange(nothing);
  int status = 0;
  while (waitpid(pid_, &status, 0) < 0 && errno == EINTR) {
  }
  pid_ = -1;
  running = 0;
  alarm(0);
  if (WIFEXITED(status) && WEXITSTATUS(status) == 0) return true;
  error_ = fateInWords(status);
  return false;
}

std::string GhostscriptProcess::fateInWords(int status) const {
  if (timeIsUp != 0) {
    return "Ghostscript was ended: the document takes longer than " +
           std::to_string(limits_.seconds) + " seconds";
  }
  if (WIFSIGNALED(status) && (WTERMSIG(status) == SIGXCPU || WTERMSIG(status) == SIGKILL)) {
    return "Ghostscript was ended: the document takes more than " +
           std::to_string(limits_.cpuSeconds) + " seconds of processor time";
  }
  if (WIFSIGNALED(status)) return "Ghostscript died of signal " + std::to_string(WTERMSIG(status));
  std::string_view words = messages_;
  const std::size_t error = words.find("Error: ");
  if (error != words.npos) words.remove_prefix(error);
  words = words.substr(0, std::min(words.find('\n'), kLongestComplaint));
  return "Ghostscript does not like the document" +
         (words.empty() ? "" : ": " + Printable(words, Charset::kUTF8));
}
