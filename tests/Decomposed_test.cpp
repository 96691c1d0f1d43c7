// Whole jobs for printers that decompose PostScript: its settings as PJL, then the PostScript.

#include <gtest/gtest.h>
#include <sys/mount.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <filesystem>
#include <sstream>
#include <string>

#include "tests/support/FilterProcess.h"

namespace {

// A job with folders of its own for the PPD and the spool file.
struct Job : FilterJob {
  explicit Job(const std::string& bytes, const std::string& ppd = "") {
    const std::string lines = PPDText("*ZLVPSDecompMode: \"1\"\n" + ppd);
    environment = {{"PPD", ppdFolder.write("ppd", lines)}, {"TMPDIR", spoolFolder.path()}};
    input = bytes;
  }
  // Waits up to 10 seconds until the spool file has this size.
  std::filesystem::path spoolOfSize(std::uintmax_t size) const {
    for (int tries = 0; tries < 1000; tries++, usleep(10'000)) {
      for (const auto& file : std::filesystem::directory_iterator(spoolFolder.path())) {
        if (file.file_size() == size) return file.path();
      }
    }
    return "(none)";
  }
  ScratchFolder ppdFolder, spoolFolder;
};

// The same for these settings ("@LWAD=1 ECONOMODE=ON": a job attribute and a setting) and body.
std::string Switched(const std::string& settings, const std::string& body) {
  std::istringstream words(settings);
  std::string lines;
  for (std::string word; words >> word;) {
    lines += word[0] == '@' ? "@PJL SET JOBATTR=\"" + word + "\"\n" : "@PJL SET " + word + "\n";
  }
  return lines + kEnterPS + body;
}

// Runs a table of rows "PostScript->settings;". "|" ends a line, "#" begins a feature's line, "~"
// is a zero byte.
void Check(const std::string& ppd, const std::string& table) {
  std::istringstream rows(table);
  for (std::string row; std::getline(rows >> std::ws, row, ';');) {
    const std::size_t arrow = row.find("->");
    std::string input;
    for (char c : row.substr(0, arrow)) {
      input += c == '|'   ? "\n"
               : c == '#' ? "%%BeginFeature: *ZLV"
                          : std::string{c == '~' ? '\0' : c};
    }
    EXPECT_EQ(Body(RunFilter(Job(input + "\n%%EOF\n", ppd)).output),
              Switched(row.substr(arrow + 2), input + "\n\n"))
        << row;
  }
}

TEST(Decomposed, FeatureLinesAndSettingsLines) {
  Check("", R"( #TonerSaver Mode1 TCPR=1GCPR=2ICPR=3|#TonerSaver True->ECONOMODE=MODE1 ECONOMODE=ON;
    #OutputMode 1200x1200|#OutputMode 600x600->RESOLUTION=1200 BITSPERPIXEL=1 @DRDM=RASTER;
    #OutputMode Standard|#OutputMode 600x600|#OutputMode HighSpeed->
      BITSPERPIXEL=8 RESOLUTION=600 BITSPERPIXEL=1 @DRDM=RASTER BITSPERPIXEL=1;
    #TonerSaver  Mode2|#TonerSaver|%%BeginFeature:| #TonerSaver Mode2|#Halftone Fineness->;
    %%BeginFeature:  *ZLVTonerSaver Mode2|%%BeginFeature: ZLVOutputMode 600x600->;
    TSCR=1 GSCR:2 ISCR 34 TTRC=4 GTRC=5 ITRC=60->@TSCR=1 @GSCR=2 @ISCR=34 @TTRC=4 @GTRC=5 @ITRC=60;
    TSCR=1 GSCR=2 ISCR=3 TTRC=4 GTRC=5 TCPR=6 GCPR=7|ICPR=3 tcpr=1 GCPR=2->;
    TCPR=123 GCPR=4 ICPR=5 dict 6->@TCPR=12 @PR=1=3 @GCPR=4 @ICPR=5 @dict=6;
    7TCPR GCPR ICPR|a,8TCPR GCPR ICPR|(1)|abc,90TCPR GCPR ICPR->@=7 @a=8 @abc=90;
    %%BeginFeature: TCPR=1 GCPR=2 ICPR=3->;
    #TonerSaver~x Mode2|#TonerSaver Mode2~|#TonerSaver~ Mode2|#OutputMode 600x600~->;)");
  const std::string color = "*ColorDevice: True\n*OpenUI *ZLVGrayBalance/x: PickOne\n";
  Check(color + "*ZLVGrayBalance True/x: \"\"\n*CloseUI: *ZLVGrayBalance\n", R"( no feature->;
    #OutputMode 600x600|#TonerSaver Mode2->@TRAP=OFF @PSBR=0 @RGBP=SRGB @RGBG=22 ECONOMODE=OFF
      RESOLUTION=600 BITSPERPIXEL=1 @DRDM=RASTER ECONOMODE=MODE2;
    #Halftone Fineness->@TRAP=OFF @PSBR=0 @RGBP=SRGB @RGBG=22 ECONOMODE=OFF;)");
  Check("*ColorDevice: True\n", R"(
    #Halftone Fineness->@TRAP=OFF @GRGU=OFF @PSBR=0 @RGBP=SRGB @RGBG=22 ECONOMODE=OFF;)");
  Check("*ColorDevice: False\n", R"(
    #Halftone Fineness|#Halftone Other|#TonerSaver Mode2|#Halftone Gradation->
      @TTRC=64 @GTRC=64 @ITRC=64 @TSCR=64 @GSCR=64 @ISCR=64 ECONOMODE=MODE2
      @TTRC=66 @GTRC=66 @ITRC=66 @TSCR=66 @GSCR=66 @ISCR=66;)");
}

// Lines of 8064 bytes count, of features 99 bytes, of settings a hundred digits.
TEST(Decomposed, LongLinesAndManyLines) {
  const std::string toner = "#TonerSaver Mode2 ", screen = "TCPR GCPR ICPR NAME=7 ";
  const std::string x(8027, 'x'), y(8042, 'y'), w(70'000, 'w'), dashes(63, '-');
  Check("", toner + x + "->ECONOMODE=MODE2;" + toner + "x" + x + "->;" + w + toner + "->;" +
                screen + y + "->@NAME=7;" + screen + "y" + y + "->;" + w + screen + "->;" +
                "%%BeginFeature:" + dashes + " *ZLVTonerSaver Mode2more->ECONOMODE=MODE2;" +
                "%%BeginFeature:-" + dashes + " *ZLVTonerSaver Mode2->;");
  std::string lines, settings, digits = "TCPR GCPR ICPR ", attributes;
  for (int i = 0; i < 200; i++) lines += toner + "|", settings += "ECONOMODE=MODE2 ";
  for (int i = 0; i < 99; i++) digits += "NAME=7 ", attributes += "@NAME=7 ";
  const auto started = std::chrono::steady_clock::now();
  Check("", lines + "->" + settings + ";" + digits + "NAME=89->" + attributes + "@NAME=8;");
  EXPECT_LT(std::chrono::steady_clock::now() - started, std::chrono::seconds(2));
}

TEST(Decomposed, WatermarksAreInTheSpooledPostScript) {
  Job spooled("%%BeginProlog\n%%EndPageSetup\nep\n%%EndPageSetup\nendp\n%%EOF\n");
  const std::string key = " com.zelva.jt.printsettings.ps.ww.WMARK";
  spooled.arguments[4] = key + "NameTicket=x" + key + "TypeTicket=0" + key + "OnlyFirstTicket=0";
  FilterJob plain = spooled;
  plain.environment.erase("PPD");
  std::string body = Body(RunFilter(plain).output);
  body.replace(body.find("grestore\nendp\n%%EOF\n\4") + 14, 7, "\n");
  EXPECT_EQ(Body(RunFilter(spooled).output), body);
}

TEST(Decomposed, WithoutItsInputFileThereIsOnlyTheFrame) {
  Job job("A\n\n");
  job.arguments.insert(job.arguments.end(), {"/nonexistent.ps", "more"});
  EXPECT_EQ(Body(RunFilter(job).output), Switched("", "A\n\n"));  // from standard input
  job.arguments.pop_back();
  EXPECT_EQ(Body(RunFilter(job).output), "");
  EXPECT_EQ(RunFilter(job).messages, "");
}

TEST(Decomposed, AJobCancelledWhileItIsSpooledLeavesItsWholeLines) {
  const Job job("");
  FilterProcess filter(job);
  filter.write("one\nep\nt");
  const std::filesystem::path spool = job.spoolOfSize(7);
  kill(filter.pid(), SIGTERM);
  filter.write("wo\nshowpage\nthree\n");
  const FilterResult result = filter.finish();
  EXPECT_EQ(Body(result.output), "");
  EXPECT_EQ(result.messages, "PAGE:1 1\n");
  EXPECT_EQ(std::filesystem::file_size(spool), 11u);  // the lines in front of the page end
  EXPECT_EQ(std::filesystem::status(spool).permissions(), std::filesystem::perms(0600));
}

#ifdef __linux__
TEST(Decomposed, AFullDiskPrintsNothingAndSaysSo) {
  std::string pages;
  for (int i = 0; i < 25; i++) pages += std::string(10236, 'x') + "\nep\n";  // 250 KiB
  for (const std::string& rest : {std::string(6 * 1024, '\n'), pages}) {
    const Job job(pages + rest);
    const char* disk = job.spoolFolder.path().c_str();
    if (mount("none", disk, "tmpfs", 0, "size=256k") != 0) GTEST_SKIP() << "no right to mount";
    const FilterResult result = RunFilter(job);
    EXPECT_TRUE(std::filesystem::is_empty(disk));
    EXPECT_EQ(umount(disk), 0);
    EXPECT_EQ(Body(result.output), "");
    EXPECT_EQ(result.messages.substr(result.messages.find("PAGE:25")),
              "PAGE:25 1\nERROR: Unable to spool print data: No space left on device\n");
  }
}
#endif

}  // namespace
