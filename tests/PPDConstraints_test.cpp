// What the PPDs say cannot go together, asked as print dialogs ask libcups.

#include <cups/cups.h>
#include <cups/ppd.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

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
    return "unresolved";
  std::string changed;
  for (int i = 0; i < count; ++i) {
    if (options[i].name == option) continue;
    changed += (changed.empty() ? "" : " ") + std::string(options[i].name) + "=" + options[i].value;
  }
  cupsFreeOptions(count, options);
  return changed;
}

TEST(PPDConstraints, ResolveWhatCannotGoTogether) {
  struct Case {
    std::string model, chosen, option, choice, changed;
  };
  for (const Case& c : std::vector<Case>{
           {"kontor-m20", "ZLVStaple=LeftDouble", "ZLVPunch", "Left", ""},
           {"kontor-m20", "ZLVStaple=LeftDouble", "InstalledFinisher", "False", "ZLVStaple=None"},
           {"kontor-m20", "InstalledPunch=False", "ZLVPunch", "Left", "unresolved"},
           {"atelier-c60", "ZLVStaple=TopDouble", "ZLVSignature", "LeftSig", "ZLVStaple=None"},
           {"atelier-c60", "ZLVSignature=LeftSig", "ZLVStaple", "TopDouble", "ZLVSignature=None"},
           {"atelier-c60", "ZLVSigVol=5Sheets ZLVSignature=LeftSig", "ZLVSignature", "None",
            "ZLVSigVol=None"},
           {"atelier-c60", "InputSlot=3rdTray", "InstalledTray3", "False", "InputSlot=AutoTray"},
           {"atelier-c60", "cupsPrintQuality=Draft", "ZLVTonerSaver", "Mode2",
            "cupsPrintQuality=Normal"},
           {"atelier-c90", "ZLVPunch=Left ZLVNumPunchHoles=CoilPunch", "ZLVPunch", "None",
            "ZLVNumPunchHoles=2Holes"},
           {"atelier-c90", "ZLVStaple=LeftDouble ZLVPunch=Left", "ZLVPBindPosition", "BindLeft",
            "ZLVPunch=None ZLVStaple=None"},
           {"atelier-c90", "ZLVCover=Both", "InstalledInserter", "False", "ZLVCoverSource=Paper"},
           {"atelier-c90", "InstalledInserter=False ZLVCoverSource=Paper", "ZLVCover", "Both", ""},
           {"atelier-c90", "ZLVPBindTrimming=3EdgeCutMinimum", "ZLVPBindCutPageSize", "A4", ""},
           {"atelier-c90", "ZLVPBindTrimming=3EdgeSpecifySize ZLVPBindCutPageSize=A5",
            "ZLVPBindPageSize", "A5", "ZLVPBindTrimming=None"}}) {
    SCOPED_TRACE(c.model + " " + c.chosen + " then " + c.option + "=" + c.choice);
    const PPD ppd = OpenPPD(c.model);
    ASSERT_TRUE(ppd);
    cups_option_t* options = nullptr;
    const int count = cupsParseOptions(c.chosen.c_str(), 0, &options);
    cupsMarkOptions(ppd.get(), count, options);
    cupsFreeOptions(count, options);
    EXPECT_EQ(Resolved(ppd.get(), c.option, c.choice), c.changed);
  }
}

// Each part that can be missing forbids something, and a printer that has all of them has no
// conflict.
TEST(PPDConstraints, ForbidWhatNeedsAPartThatIsMissing) {
  for (const std::string model : {"kontor-m20", "atelier-c60", "atelier-c90"}) {
    const PPD ppd = OpenPPD(model);
    ASSERT_TRUE(ppd);
    EXPECT_EQ(ppdConflicts(ppd.get()), 0) << model;
    int parts = 0;
    for (ppd_option_t* part = ppdFirstOption(ppd.get()); part; part = ppdNextOption(ppd.get())) {
      if (!std::string(part->keyword).starts_with("Installed")) continue;
      ++parts;
      ppdMarkOption(ppd.get(), part->keyword, "False");
      bool forbids = false;
      for (int i = 0; i < ppd->num_groups; ++i) {
        for (int j = 0; j < ppd->groups[i].num_options; ++j) {
          const ppd_option_t& option = ppd->groups[i].options[j];
          for (int k = 0; k < option.num_choices; ++k) {
            forbids |=
                ppdInstallableConflict(ppd.get(), option.keyword, option.choices[k].choice) != 0;
          }
        }
      }
      EXPECT_TRUE(forbids) << model << " " << part->keyword;
      ppdMarkOption(ppd.get(), part->keyword, "True");
    }
    EXPECT_GE(parts, 3) << model;
  }
}

}  // namespace
