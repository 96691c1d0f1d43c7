// What the PPDs say to print dialogs: what cannot go together, asked as they ask libcups, and what
// goes into the document.

#include <cups/cups.h>
#include <cups/ppd.h>
#include <gtest/gtest.h>

#include <memory>
#include <regex>
#include <string>

#include "tests/support/GoldenFile.h"

namespace {

using PPD = std::unique_ptr<ppd_file_t, decltype(&ppdClose)>;

PPD OpenPPD(const std::string& model) {
  PPD ppd(ppdOpenFile((PPD_DIR "/zelva-" + model + ".ppd").c_str()), &ppdClose);
  if (ppd) ppdMarkDefaults(ppd.get());
  return ppd;
}

// What choosing something changes besides, to resolve what conflicts with it: "Option=Choice …".
std::string Resolved(ppd_file_t* ppd, const std::string& option, const std::string& choice) {
  cups_option_t* options = nullptr;
  int count = 0;
  if (!cupsResolveConflicts(ppd, option.c_str(), choice.c_str(), &count, &options))
    return " unresolved";
  std::string changed;
  for (int i = 0; i < count; ++i) {
    if (options[i].name != option)
      changed += std::string(" ") + options[i].name + "=" + options[i].value;
  }
  cupsFreeOptions(count, options);
  return changed;
}

TEST(PPDConstraints, ResolveWhatCannotGoTogether) {
  static const std::regex form("(.*): (.*) \\| (.*)=(.*) ->(.*)");
  for (const std::string& line : GoldenLines("ppd-conflicts.txt")) {
    SCOPED_TRACE(line);
    std::smatch part;
    ASSERT_TRUE(std::regex_match(line, part, form));
    const PPD ppd = OpenPPD(part[1]);
    ASSERT_TRUE(ppd);
    cups_option_t* options = nullptr;
    const int count = cupsParseOptions(part.str(2).c_str(), 0, &options);
    cupsMarkOptions(ppd.get(), count, options);
    cupsFreeOptions(count, options);
    EXPECT_EQ(Resolved(ppd.get(), part[3], part[4]), part.str(5));
  }
}

// A feature's PostScript names the feature and the choice, and texts that people enter have none.
TEST(PPDConstraints, PutIntoTheDocumentWhatIsChosen) {
  static const std::regex feature("/(\\S+)[/ ](\\S+) /Custom/ProcSet .*");
  for (const std::string model : {"kontor-m20", "atelier-c60", "atelier-c90"}) {
    const PPD ppd = OpenPPD(model);
    ASSERT_TRUE(ppd);
    EXPECT_EQ(ppdConflicts(ppd.get()), 0) << model;
    EXPECT_STREQ(ppdFindMarkedChoice(ppd.get(), "Collate")->code, "<</Collate true>>setpagedevice");
    ASSERT_EQ(ppd->num_filters, 1);
    EXPECT_TRUE(std::string(ppd->filters[0]).ends_with(" 0 cupstoxpjl")) << ppd->filters[0];
    for (auto* option = ppdFirstOption(ppd.get()); option; option = ppdNextOption(ppd.get())) {
      const std::string name = option->keyword;
      const bool entered = ppdFindCustomOption(ppd.get(), option->keyword) != nullptr;
      if (entered && name.starts_with("ZLV") && name != "ZLVTonerReductionRate") {
        EXPECT_EQ(option->section, PPD_ORDER_JCL) << name;
      }
      for (int i = 0; i < option->num_choices; ++i) {
        const ppd_choice_t& choice = option->choices[i];
        std::cmatch named;
        if (choice.code == nullptr || !std::regex_match(choice.code, named, feature)) continue;
        if (!name.starts_with("ZLV")) continue;
        EXPECT_EQ(named[1], name.substr(3)) << choice.code;
        EXPECT_TRUE(entered || std::string(choice.choice).ends_with(named[2].str())) << choice.code;
      }
    }
  }
}

}  // namespace
