// xpjl-inspect as a command: what it prints, renders and refuses, and what it never shows.

#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <nlohmann/json.hpp>

#include "tests/support/Password.h"
#include "tests/support/SampleJobs.h"
#include "tests/support/ToolProcess.h"
#include "tools/inspect/TerminalText.h"

namespace {

constexpr char kKeyFile[] = TEST_DATA_DIR "/demo-device-2048-private.pem";

ToolResult Inspect(std::vector<std::string> arguments, const std::string& input = "") {
  return RunTool(INSPECT_BINARY, std::move(arguments), input);
}

}  // namespace

TEST(InspectTool, HidesSecretsEverywhere) {
  const std::string sealed(600, 'S');
  const std::string lines =
      "@PJL SET JOBATTR=\"@JOEP=" + sealed + "\"\n@PJL SET JOBATTR=\"@ACEP=secret\"\r\n" +
      "@PJL SET HOLDENCRYPTKEY=\"secret\"\r\n@PJL SET BOXENCRYPTKEY=secret\n" +
      "@PJL SET JOBATTR=\"@JOEP=secret\n@PJL SET JOBATTR=\"@ACEP=secret@PJL SET RET=ON\n" +
      "@PJL SET JOBATTR=\"@XXXX=" + sealed + "\"\nx " + sealed + "\n";
  ScratchFolder folder;
  const std::string first = folder.write("a", "@JOEP=secret" + Job(lines));
  const std::string second = folder.write("b", Job("@PJL SET HOLDENCRYPTKEY=\"secret2\"\r\n"));
  const std::vector<std::string> uses[] = {
      {first}, {"--json", first}, {"--diff", first, second}, {"--diff", "--json", first, second}};
  for (const auto& arguments : uses) {
    const ToolResult result = Inspect(arguments);
    EXPECT_EQ(result.status, 1);
    const std::string text = result.output + result.messages;
    EXPECT_FALSE(Contains(text, "secret") || Contains(text, "SSSSSSSS")) << text;
  }
  EXPECT_TRUE(Contains(Inspect({"--diff", first, second}).output, "text (another one)\n"));
  EXPECT_TRUE(Contains(Inspect({first, "--show-passwords"}).output, "secret"));
}

TEST(InspectTool, OpensPasswordsWithTheDeviceKey) {
  ScratchFolder folder;
  const std::string job = folder.write("job", FilteredJob(kSecurePrint + Stored("ge\033heim")));
  const ToolResult opened = Inspect({job, "--device-key", kKeyFile});
  EXPECT_EQ(opened.status, 0);
  EXPECT_TRUE(Matches("device key [0-9a-f]{16}, opens ", opened.output)) << opened.output;
  EXPECT_FALSE(Contains(opened.output, "heim"));
  EXPECT_FALSE(Contains(Inspect({"--json", job, "--device-key", kKeyFile}).output, "heim"));
  const ToolResult shown = Inspect({job, "--device-key", kKeyFile, "--show-passwords"});
  EXPECT_TRUE(Contains(shown.output, "opens: \"ge\\x1bheim\""));
  const ToolResult json = Inspect({"--json", job, "--device-key", kKeyFile, "--show-passwords"});
  EXPECT_TRUE(Contains(json.output, "\"password\": \"ge\\u001bheim\""));
}

TEST(InspectTool, ComparesTwoJobs) {
  ScratchFolder folder;
  const auto job = [&](const char* name, const char* password, const char* layout) {
    return folder.write(name, FilteredJob(kSecurePrint + Stored(password) + layout));
  };
  const std::string first = job("a", "one", " number-up=2");
  const std::string again = job("b", "one", " number-up=2");
  const std::string other = job("c", "two", " number-up=4");
  const ToolResult same = Inspect({"--diff", first, again, "--device-key", kKeyFile});
  EXPECT_EQ(same.status, 0);
  EXPECT_EQ(same.output, "");
  const ToolResult different = Inspect({"--diff", first, other});
  EXPECT_EQ(different.status, 1);
  EXPECT_EQ(different.output,
            "Layout and booklet\n  Pages per sheet: N2 -> N4\n"
            "  Imposition: sideways -> upright\n\n"
            "Job summary\n  Pages per sheet: 2 -> 4\n  Orientation: landscape -> portrait\n"
            "  Order of pages: right, or down -> right, then down\n");
  EXPECT_TRUE(Contains(Inspect({"--diff", first, other, "--device-key", kKeyFile}).output,
                       "Release password: "));
  const auto json = nlohmann::json::parse(Inspect({"--diff", "--json", first, other}).output);
  EXPECT_FALSE(json["same"]);
  const nlohmann::json pages = {{"group", "layout"},
                                {"code", "NLPP"},
                                {"name", "Pages per sheet"},
                                {"first", "N2"},
                                {"second", "N4"}};
  EXPECT_EQ(json["differences"][0], pages);

  const std::string insertion = "@PJL SET JOBATTR=\"@EIST=";
  const std::string two = folder.write("d", Job(insertion + "2\"\n" + insertion + "1\"\n"));
  const std::string three = folder.write(
      "e", Job(insertion + "3\"\n" + insertion + "1\"\n", "%!PS\nshowpage\n%%BeginFeature: *X\n"));
  EXPECT_EQ(Inspect({"--diff", two, three}).output,
            "Special pages\n  Insert after page: 2 -> 3\n\n"
            "PostScript\n  Asks for: X: (not asked for) -> line 7\n");
}

// Whatever the tool writes as JSON is what the schema says, and nothing else.
TEST(InspectTool, WritesJsonByItsSchema) {
  using Json = nlohmann::json;
  const Json schema = Json::parse(FileContent(SOURCE_DIR "/docs/xpjl-inspect.schema.json"));
  const std::function<std::string(const Json&, const Json&)> fault = [&](const Json& rule,
                                                                         const Json& value) {
    std::set<std::string> types;
    for (const Json& type : rule["type"].is_array() ? rule["type"] : Json::array({rule["type"]})) {
      types.insert(type.get<std::string>());
    }
    const std::string type = value.is_number_integer() ? "integer" : value.type_name();
    if (!types.contains(type)) return "is of type " + type;
    if (value.is_array()) {
      for (const Json& item : value) {
        if (const std::string found = fault(rule["items"], item); !found.empty()) return found;
      }
    }
    if (!value.is_object()) return std::string();
    for (const Json& name : rule["required"]) {
      if (!value.contains(name)) return "lacks " + name.get<std::string>();
    }
    for (const auto& [name, member] : value.items()) {
      if (!rule["properties"].contains(name)) return "has " + name;
      const std::string found = fault(rule["properties"][name], member);
      if (!found.empty()) return name + "." + found;
    }
    return std::string();
  };
  ScratchFolder folder;
  const std::string full =
      folder.write("full", FilteredJob(kWatermark + (kSecurePrint + Stored("geheim"))));
  const std::string bad = folder.write("bad", "x" + Job("@PJL SET RET=NO\n"));
  const std::string text = folder.write("text", "hello\n");
  const std::pair<const char*, std::vector<std::string>> rows[] = {
      {"#/$defs/job", {full, "--device-key", kKeyFile, "--show-passwords"}},
      {"#/$defs/job", {bad}},
      {"#/$defs/job", {text}},
      {"#/$defs/difference", {"--diff", full, full}},
      {"#/$defs/difference", {"--diff", full, bad}},
  };
  for (const auto& [form, arguments] : rows) {
    std::vector<std::string> all = {"--json"};
    all.insert(all.end(), arguments.begin(), arguments.end());
    const Json json = Json::parse(Inspect(all).output);
    for (const Json& known : schema["oneOf"]) {
      const std::string name = known["$ref"];
      const std::string found = fault(schema.at(Json::json_pointer(name.substr(1))), json);
      EXPECT_EQ(found.empty(), name == form) << name << ": " << found;
    }
    EXPECT_EQ(schema["oneOf"].size(), 2u);
    EXPECT_EQ(json["version"], 1);
  }
}

TEST(InspectTool, FitsATerminal) {
  const std::string first = "  " + Repeat("seven ä ", 9) + "seven";
  const std::string second = "ä " + Repeat("seven ä ", 8) + "seven ä";
  EXPECT_EQ(
      ForTerminal("job\n" + first + " " + second + " seven\n  " + std::string(90, 'x'), false),
      "job\n" + first + "\n      " + second + "\n      seven\n  " + std::string(78, 'x') +
          "\n      " + std::string(12, 'x') + "\n");
  const std::string word = std::string(70, 'x');
  EXPECT_EQ(ForTerminal(word + " " + word, false), word + "\n      " + word + "\n");
  EXPECT_EQ(ForTerminal("job: nothing wrong\nIdentity\n  x\n", true),
            "\033[1mjob: nothing wrong\033[0m\n\033[1mIdentity\033[0m\n  x\n");
  EXPECT_EQ(ForTerminal("job: 1 problem\nProblems\n  x\n", true),
            "\033[31mjob: 1 problem\033[0m\n\033[31mProblems\033[0m\n\033[31m  x\033[0m\n");
}

TEST(InspectTool, KeepsItsManners) {
  ScratchFolder folder;
  const std::string good = folder.write("good", Job(""));
  const std::string bad = folder.write("bad", Job("@PJL SET RET=NO\n"));
  const std::string text = folder.write("text", "hello\n");
  const std::string old = folder.write("old", std::string(1000, 'x'));
  const std::string link = folder.path() + "/link";
  std::filesystem::create_symlink(old, link);
  const struct {
    std::vector<std::string> arguments;
    int status;
    const char* message;
  } rows[] = {
      {{"--diff", good, text}, 1, "text: this is no printer-ready job"},
      {{folder.path()}, 3, "it is a folder"},
      {{folder.path() + "/none"}, 3, "cannot read "},
      {{"/proc/self/mem"}, 3, "cannot read "},
      {{good, "--device-key", good}, 3, "is no private key that can be read"},
      {{good, "--png", good}, 3, "cannot make the folder"},
      {{}, 2, "JOB is required"},
      {{"\033[1m"}, 3, "cannot read \\x1b[1m: "},
      {{good, good}, 0, ""},
      {{good, bad, good}, 1, "bad: line 2: a value that the device dialect does not know: @PJL "},
      {{good, "--extract", folder.path()}, 3, "cannot write "},
      {{good, "--extract", good}, 3, "it is the job itself"},
      {{good, "--extract", "/dev/full"}, 3, "cannot write: "},
      {{good, "--extract", link}, 3, "it is a link"},
      {{"--diff", good}, 2, "--diff compares two jobs"},
      {{"--png", "x", good, good}, 2, "--png and --extract"},
      {{good, "--dpi", "50"}, 2, "--png"},
      {{good, "--png", "x", "--dpi", "9"}, 2, "--dpi"},
      {{good, "--colour"}, 2, "--colour"},
  };
  for (const auto& row : rows) {
    const ToolResult result = Inspect(row.arguments);
    EXPECT_EQ(result.status, row.status) << row.message << result.messages;
    EXPECT_EQ(IsOneLine(result.messages), row.status != 0) << result.messages;
    EXPECT_EQ(result.messages.starts_with("xpjl-inspect: "), row.status != 0) << result.messages;
    EXPECT_TRUE(Contains(result.messages, row.message)) << result.messages;
  }
  EXPECT_EQ(Inspect({"--extract", "-", good}).output, "%!PS\nshowpage\n");
  EXPECT_EQ(FileContent(good) + FileContent(old), Job("") + std::string(1000, 'x'));
  EXPECT_EQ(
      Inspect({"--extract", old, good}).status + Inspect({"--extract", "/dev/null", good}).status,
      0);
  EXPECT_EQ(FileContent(old), "%!PS\nshowpage\n");
  EXPECT_TRUE(Inspect({"-"}, Job("")).output.starts_with("-: 96 bytes, 1 page, nothing wrong\n"));
  EXPECT_TRUE(Contains(Inspect({good, good}).output, "\n\n" + good + ": 96 bytes"));
  // What a shell does with the standard streams; no message gets into a file of the job's.
  const auto shell = [&](const std::string& redirected) {
    return RunTool("/bin/sh", {"-c", INSPECT_BINARY " " + redirected}).status;
  };
  EXPECT_EQ(shell("--extract " + good + " - <" + good), 3);
  EXPECT_EQ(shell("--extract " + link + "ed - <" + bad + " 2>&-"), 1);
  EXPECT_EQ(FileContent(good) + FileContent(link + "ed"), Job("") + "%!PS\nshowpage\n");
  EXPECT_EQ(shell(good + " >&-"), 3);
  EXPECT_EQ(shell(good + " >/dev/full"), 3);
  EXPECT_EQ(Inspect({"--help"}).status, 0);
}
