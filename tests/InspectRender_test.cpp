// xpjl-inspect --png: pages of honest jobs, and what a hostile job's document can do: nothing.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <functional>
#include <thread>

#include "tests/support/SampleJobs.h"
#include "tests/support/ToolProcess.h"
#include "tools/inspect/GhostscriptProcess.h"
#include "tools/inspect/PictureFiles.h"

namespace {

namespace fs = std::filesystem;

ToolResult Inspect(std::vector<std::string> arguments,
                   const std::string& environment = "PATH=/usr/bin:/bin") {
  return RunTool(INSPECT_BINARY, std::move(arguments), "", environment);
}

}  // namespace

TEST(InspectRender, RendersPages) {
  ScratchFolder folder;
  const std::string plain = folder.write("plain", FilteredJob(""));
  folder.write("stamped", FilteredJob(kWatermark));
  for (const char* name : {"plain", "stamped"}) {
    const ToolResult result =
        Inspect({folder.path() + "/" + name, "--png", folder.path() + "/50%d " + name, "--dpi",
                 "20", "--limit-output", "1"});
    ASSERT_EQ(result.status, 0) << result.messages;
  }
  for (const char* page : {"/page-001.png", "/page-004.png"}) {
    const std::string before = FileContent(folder.path() + "/50%d plain" + page);
    EXPECT_TRUE(before.starts_with("\x89PNG"));
    EXPECT_NE(before, FileContent(folder.path() + "/50%d stamped" + page));
  }
  const ToolResult missing =
      RunTool(INSPECT_BINARY, {plain, "--png", folder.path()}, "", "PATH=/nowhere");
  EXPECT_EQ(missing.status, 3);
  EXPECT_TRUE(Contains(missing.messages, "Ghostscript (gs) was not found"));
  const std::string broken = folder.write(
      "broken", Job("", "%!PS\n(%stderr)(w)file dup(Hello\n)writestring flushfile\n(no end\n"));
  const ToolResult refused = Inspect({broken, "--png", folder.path()});
  EXPECT_EQ(refused.status, 1);
  EXPECT_TRUE(Contains(refused.messages, "does not like the document: Error: /syntaxerror"));
  // Neither waits for the other: a large picture comes while much of the document is unread.
  const std::string rest = Repeat("% what nobody reads any more\n", 5'000);
  const std::string noise =
      "0 2 842{0 2 596{1 index rand 255 mod 255 div setgray 2 2 rectfill}for pop}for showpage\n";
  const std::string quits = "%!PS\n" + rest + noise + "quit\n" + rest;
  EXPECT_EQ(Inspect({folder.write("quits", Job("", quits)), "--png", folder.path()}).status, 0);
}

// What Ghostscript could write, byte by byte: whole pictures become files, of others nothing stays.
TEST(InspectRender, TakesPicturesApart) {
  const std::string signature = "\x89PNG\r\n\x1a\n";
  const std::string end = std::string(4, '\0') + "IEND\xae\x42\x60\x82";
  const std::string data = std::string(3, '\0') + "\2IDATxy\1\2\3\4";
  const struct {
    std::string bytes;
    const char* error;
    int files;
  } rows[] = {
      {signature + data + end, "", 1},
      {signature + end + signature + data + end, "", 2},
      {"no picture", "Ghostscript wrote something that is no picture", 0},
      {signature + std::string(8, '\0'), "Ghostscript wrote something that is no picture", 0},
      {signature + data, "", 0},
      {signature + end + signature + data + data + data + end,
       "Ghostscript was ended: the pictures grow too large", 1},
  };
  for (const auto& row : rows) {
    const ScratchFolder folder;
    folder.write(".page-001.png.part", "of a run before");
    const int fd = open(folder.path().c_str(), O_RDONLY | O_DIRECTORY);
    auto files = std::make_unique<PictureFiles>(fd, 60);
    for (const char byte : row.bytes) files->take({&byte, 1});
    EXPECT_EQ(files->error(), row.error);
    EXPECT_EQ(files->count(), row.files);
    files.reset();
    close(fd);
    EXPECT_EQ(fs::exists(folder.path() + "/page-002.png"), row.files == 2);
    EXPECT_EQ(FileContent(folder.path() + "/page-001.png"),
              row.files > 0 ? row.bytes.substr(0, row.bytes.find("IEND") + 8) : "");
    EXPECT_FALSE(fs::exists(folder.path() + "/.page-001.png.part")) << row.error;
  }
}

// A document that reads, writes, lists, renames and deletes wherever it can reach prints the
// numbers of the attempts that did not fail.
TEST(InspectRender, KeepsTheDocumentInItsBox) {
  ScratchFolder outside, temporary;
  const std::string secret = outside.write("secret", "geheim\n");
  const std::string inside = temporary.write("inside", "geheim\n");
  const std::string common = "/tmp/xpjl-render-" + std::to_string(getpid());
  std::ofstream(common) << "geheim\n";
  fs::create_symlink(secret, temporary.path() + "/planted");
  fs::create_directory_symlink(outside.path(), temporary.path() + "/folder");

  std::string document = "%!PS\n(\n reached:) print\n";
  std::vector<std::string> attempts;
  const auto attempt = [&](const std::string& code) {
    document += "{ " + code + " ( " + std::to_string(attempts.size()) + ") print } stopped clear\n";
    attempts.push_back(code);
  };
  const std::string written = " file dup (broken) writestring closefile";
  const std::vector<std::string> names = {secret,
                                          inside,
                                          common,
                                          temporary.path() + "/planted",
                                          temporary.path() + "/folder/secret",
                                          "../" + inside.substr(inside.rfind('/') + 1),
                                          "/tmp/../" + secret,
                                          "x",
                                          "/etc/passwd",
                                          "/proc/self/environ",
                                          "/dev/fd/0"};
  std::string outputFiles;
  for (const std::string& name : names) {
    const std::string quoted = "(" + name + ") ";
    attempt(quoted + "(r) file");
    attempt(quoted + "status not { stop } if");
    attempt(quoted + "(a)" + written);
    attempt(quoted + "(w)" + written);
    attempt("(" + name + "2) (w)" + written);
    attempt(quoted + "(" + name + "3) renamefile");
    attempt(quoted + "deletefile");
    outputFiles += "{ << /OutputFile " + quoted + ">> setpagedevice showpage } stopped clear\n";
    if (name.find("/pstoxpjl-test-") == name.npos) continue;
    attempt("/found false def (" + name.substr(0, name.size() - 3) +
            "*) { pop /found true def } 256 string filenameforall found not { stop } if");
  }
  for (const char* pipe : {"(%pipe%touch ", "(|touch "}) {
    attempt(pipe + outside.path() + "/piped) (w)" + written);
    outputFiles += std::string("{ << /OutputFile ") + pipe + outside.path() +
                   "/piped) >> setpagedevice } stopped clear\n";
  }
  outputFiles += "{ (x) (w) .tempfile } stopped clear\n";
  document += "(.\n) print flush showpage\n" + outputFiles;

  const std::string job = outside.write("job", Job("", document));
  const ToolResult result = Inspect({job, "--png", outside.path() + "/pages", "--dpi", "10"},
                                    "PATH=/usr/bin:/bin TMPDIR=" + temporary.path());
  const auto reached = Captures("said: reached:([0-9 ]*)\\.", result.output);
  ASSERT_EQ(reached.size(), 1u) << result.output;
  EXPECT_EQ(*reached.begin(), "") << attempts.at(std::stoul("0" + reached.begin()->substr(1)));
  for (const std::string& name : {secret, inside, common}) {
    EXPECT_EQ(FileContent(name), "geheim\n") << name;
    EXPECT_FALSE(fs::exists(name + "2") || fs::exists(name + "3")) << name;
  }
  EXPECT_FALSE(fs::exists(outside.path() + "/piped"));
  EXPECT_EQ(std::distance(fs::directory_iterator(temporary.path()), {}), 3);
  fs::remove(common);
}

TEST(InspectRender, TakesTheFoldersNameForAFolder) {
  ScratchFolder folder;
  const std::string job = folder.write("job", Job("", "%!PS\nshowpage\n"));
  const auto render = [&](const std::string& name, const std::string& redirection = "") {
    const std::string command = "cd " + folder.path() + " && '" INSPECT_BINARY "' --dpi 10 '" +
                                "--png=" + name + "' " + job + redirection + " >messages 2>&1";
    return WEXITSTATUS(std::system(command.c_str()));
  };
  for (const std::string name :
       {"|touch piped", "%pipe%touch piped", "-dNOSAFER", "50%d %s", "-"}) {
    EXPECT_EQ(render(name), 0) << name << FileContent(folder.path() + "/messages");
    EXPECT_TRUE(fs::exists(folder.path() + "/" + name + "/page-001.png")) << name;
  }
  EXPECT_FALSE(fs::exists(folder.path() + "/piped"));
  EXPECT_EQ(render("closed", " <&-"), 0);
  EXPECT_TRUE(fs::exists(folder.path() + "/closed/page-001.png"));

  const std::string kept = folder.write("kept", "geheim\n");
  fs::create_directory_symlink(folder.path() + "/closed", folder.path() + "/link");
  EXPECT_NE(render("link"), 0);
  fs::remove(folder.path() + "/closed/page-001.png");
  fs::create_symlink(kept, folder.path() + "/closed/page-001.png");
  EXPECT_EQ(render("closed"), 0);
  EXPECT_EQ(FileContent(kept), "geheim\n");
  EXPECT_FALSE(fs::is_symlink(folder.path() + "/closed/page-001.png"));
}

TEST(InspectRender, HasLimits) {
  const char* noise =  // pictures that cannot be packed
      "<</PageSize[300 300]>>setpagedevice /s 60000 string def 0 1 59999 { s exch rand 255 and put "
      "} for { gsave 300 300 scale "
      "200 100 8 [200 0 0 100 0 0] s false 3 colorimage grestore showpage } loop";
  struct Row {
    const char* document;
    std::vector<std::string> limit;
    const char* message;
  };
  const Row rows[] = {
      {"{} loop", {"--limit-cpu", "1"}, "more than 1 seconds of processor time"},
      {"{ (x) print } loop", {"--limit-time", "1"}, "longer than 1 seconds"},  // endless messages
      {"[ { 60000 string } loop", {"--limit-memory", "100"}, "VMerror"},
      {noise, {"--limit-output", "1"}, "pictures grow too large"},  // the rest is never read
  };
  const auto check = [](const Row& row) {
    ScratchFolder folder;
    std::vector<std::string> arguments = row.limit;
    if (arguments[0] != "--limit-time") arguments.insert(arguments.end(), {"--limit-time", "20"});
    arguments.push_back(folder.write(
        "job", Job("", "%!PS\n" + std::string(row.document) + std::string(200'000, '\n'))));
    arguments.insert(arguments.end(), {"--png", folder.path() + "/pages"});
    const ToolResult result = Inspect(arguments, "PATH=/usr/bin:/bin TMPDIR=" + folder.path());
    EXPECT_EQ(result.status, 1) << row.document;
    EXPECT_TRUE(Contains(result.messages, row.message)) << row.document << result.messages;
    EXPECT_EQ(std::distance(fs::directory_iterator(folder.path()), {}), 2) << row.document;
  };
  std::vector<std::thread> threads;  // one beside the other: each takes a second at most
  for (const Row& row : rows) threads.emplace_back(check, std::cref(row));
  for (std::thread& thread : threads) thread.join();
  GhostscriptProcess talkative(10, {}, [](std::string_view) { return true; });
  talkative.write("%!PS\n10000 { (endless words) print } repeat\n");
  EXPECT_TRUE(talkative.finish());
  EXPECT_EQ(talkative.messages().size(), 64u * 1024);
}

// Nothing of Ghostscript is left when the tool is ended, nor when it ignores a signal and goes on
// to its limit. It is known by its resolution, of which each run has its own.
TEST(InspectRender, EndsWithTheTool) {
  constexpr int kIgnored = -SIGHUP;
  const std::string dpi = std::to_string(100 + getpid() % 1000);
  const int signals[] = {SIGTERM, SIGINT, SIGHUP, SIGKILL, kIgnored};
  for (const int number : signals) {
#ifndef __linux__
    if (number == SIGKILL) continue;
#endif
    ScratchFolder folder;
    const std::string job = folder.write("job", Job("", "%!PS\n{} loop\n"));
    const std::string pages = folder.path() + "/pages";
    const pid_t pid = fork();
    if (pid == 0) {
      std::signal(std::abs(number), number == kIgnored ? SIG_IGN : SIG_DFL);
      setenv("TMPDIR", folder.path().c_str(), 1);
      execl(INSPECT_BINARY, "xpjl-inspect", job.c_str(), "--png", pages.c_str(), "--dpi",
            dpi.c_str(), "--limit-time", number == kIgnored ? "2" : "20", nullptr);
      _exit(127);
    }
    const auto children = [&] {
      const std::string list = "ps -A -o pid= -o ppid= -o args= | grep -c '[g]s -q.*-r" + dpi +
                               " ' >" + folder.path() + "/count";
      return std::system(list.c_str()) == 0;
    };
    for (int i = 0; i < 100 && !children(); i++)
      std::this_thread::sleep_for(std::chrono::milliseconds(50));
    EXPECT_TRUE(children());
    kill(pid, std::abs(number));
    int status = 0;
    waitpid(pid, &status, 0);
    EXPECT_EQ(number == kIgnored ? -SIGHUP * WEXITSTATUS(status) : WTERMSIG(status), number);
    for (int i = 0; i < 100 && children(); i++)
      std::this_thread::sleep_for(std::chrono::milliseconds(50));
    EXPECT_FALSE(children()) << number;
    if (number == SIGKILL) continue;
    for (const auto& entry : fs::directory_iterator(folder.path())) {
      EXPECT_FALSE(entry.path().filename().string().starts_with("xpjl-")) << entry.path();
    }
  }
}
