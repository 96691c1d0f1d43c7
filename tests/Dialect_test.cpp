// The inspector's dialect against the lines that the filter can write.

#include <gtest/gtest.h>

#include <algorithm>

#include "modules/perfectbind/PerfectBind.h"
#include "modules/quality/Quality.h"
#include "modules/specialpages/SpecialPages.h"
#include "tests/support/SampleJobs.h"
#include "tools/dialect/ByteSearch.h"
#include "tools/inspect/JobReader.h"

// The filter's rows, and the lines of features, each in a job: the inspector finds nothing in it
// that it does not know, neither name nor value nor line end.
TEST(Dialect, KnowsEveryRowOfTheFiltersTables) {
  std::string lines;
  for (const std::string& line : SampleLinesOfRows()) {
    if (line.find("ENTER") == line.npos) lines += line;
  }
  for (const FeatureLine& row : FeaturePPDKeyNameandMarkedValuetoPJLCommand) lines += row.line;
  const auto put = [&](const char* attribute, const std::string& value) {
    lines += std::string("@PJL SET JOBATTR=\"@") + attribute + "=" + value + "\"\n";
  };
  for (std::size_t i = 0; i < kPBindWordCount; i++) put("PBCQ", PerfectBindParam[i].deviceWord);
  for (int i = 1; i < CoverTypeXPJLCommValueCount; i += 2) put("EFCV", CoverTypeXPJLComm[i]);
  for (int i = 1; i < MediaColorXPJLCommValueCount; i += 2) put("EMCC", MediaColorXPJLComm[i]);
  for (int i = 1; i < SidesXPJLCommValueCount; i += 2) put("EMDP", SidesXPJLComm[i]);
  std::istringstream text(lines);
  for (std::string line; std::getline(text, line);) {
    for (const Remark& problem : ReadJob(Job(line + "\n")).problems) {
      if (!Matches("dialect does not know|line end|quote|no PJL|can obey", problem.text)) continue;
      ADD_FAILURE() << "tools/dialect/Dialect.def needs this: " << problem.text << ": " << line;
    }
  }
  EXPECT_GT(std::count(lines.begin(), lines.end(), '\n'), 300);
}

// Names that modules write by hand: whatever stands in the sources as an attribute, a variable or a
// word in capital letters is in the dialect, and nothing in the dialect is in no source.
TEST(Dialect, KnowsEveryNameInTheSourcesAndNoOther) {
  std::set<std::string> codes;
  std::set<std::string> words;
  for (const DialectRow& row : DialectRows()) {
    codes.insert(std::string(row.code));
    if (row.kind != ValueKind::kWords) continue;
    for (const std::string& word : Captures("([^=|]+)=", std::string(row.detail))) {
      words.insert(word);
    }
  }
  for (std::size_t i = 0; i < kPBindWordCount; i++) {
    words.insert({PerfectBindParam[i].ppdValue, PerfectBindParam[i].deviceWord});
  }
  words.insert({"CUSTOM", "TWO", "THREE", "FOUR", "COIL", "BOTTOM"});  // of texts and binder words
  words.insert({"CMYK", "PPD", "TMPDIR"});                             // no words of the device

  std::set<std::string> written = NamesInSources("@PJL SET ([A-Z]+)=");
  written.erase("JOBATTR");
  written.merge(NamesInSources("JOBATTR=(%c|\\\\\")@([A-Z0-9]+)="));
  written.merge(NamesInSources("INFO \"([A-Z]+)"));
  written.merge(NamesInSources("ATTRIBUTE\\([^)]*\"([A-Z0-9]+)="));
  for (const std::string& name : written)
    EXPECT_TRUE(codes.contains(name)) << name << " is not in tools/dialect/Dialect.def";
  const std::set<std::string> literals = NamesInSources("\"([A-Z][A-Z0-9_]{2,})\"");
  for (const std::string& name : literals) {
    EXPECT_TRUE(codes.contains(name) || words.contains(name)) << name;
  }
  for (const FeatureLine& row : FeaturePPDKeyNameandMarkedValuetoPJLCommand) {
    written.emplace(TakeApart(row.line)->code);
  }
  written.insert(literals.begin(), literals.end());
  written.insert({"JOB MODE", "ENTER LANGUAGE", "EOJ"});
  for (const std::string& code : codes) EXPECT_TRUE(written.contains(code)) << code;
  EXPECT_GT(literals.size(), 50u);
}

// A line may begin where the bytes at hand do: only the byte ahead of them tells.
TEST(Dialect, FindsLinesAtTheirBeginOnly) {
  const struct {
    std::string bytes;
    char before;
    std::size_t at;
  } rows[] = {{"@PJL A", '\n', 0}, {"@PJL A", 'x', std::string::npos}, {"x@PJL A\r@PJL B", 'x', 8}};
  for (const auto& row : rows) {
    EXPECT_EQ(FindPJLLine(row.bytes, row.before), row.at) << row.bytes << row.before;
  }
}
