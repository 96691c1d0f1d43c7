// Colour, toner saving, line weight and image quality as PJL lines: two writers for the job header,
// and the tables that turn a PPD feature met in the PostScript into a line.

#pragma once

#include <cups/ppd.h>

#include <array>
#include <cstddef>

inline constexpr char KPPDOutputModeKey[] = "ZLVOutputMode";
inline constexpr char KPPDFrameModeKey[] = "ZLVFrameMode";
inline constexpr char KPPDHalfToneKey[] = "ZLVHalftone";
inline constexpr char kPPDDeviceColor[] = "ColorDevice";
inline constexpr char kPPDDefaultZRColorMode[] = "ZLVColorMode";

// A PPD feature and the complete PJL line for one of its choices.
struct FeatureLine {
  char keyword[32];  // without the asterisk
  char choice[16];
  char line[48];
};
inline constexpr std::size_t kFeatureLineCount = 39 + 12 * 7;
extern const std::array<FeatureLine, kFeatureLineCount> FeaturePPDKeyNameandMarkedValuetoPJLCommand;

// A feature that gets the line of one of its choices when the PPD does not offer it at all.
struct PPDKeyDefault {
  const char* keyword;  // null ends a list
  const char* choice;
};
extern const PPDKeyDefault PPDKeyArray[];

// 1 when the PPD says that the device prints in colour, else 0.
int IsColorDeivce();

// 1 when the PPD's default colour mode is colour, else 0.
int getDefaultColorMode();

// How the job is coloured, by its colour mode option or else by the PPD. Unknown: a mode that a
// device with colour mode choices has to make out itself.
enum class ColorMode { kColor, kGrayscale, kUnknown };
ColorMode JobColorMode();

// Write the header's toner-saver lines, and its line-weight and render-mode lines.
void OutputXPJLCommandForTonerSaver();
void OutputXPJLCommandOthers();

// The line for a feature, or null. `keyword` is the token of the %%BeginFeature: comment, with its
// asterisk. The search ends one row short: the last row of the table is never found.
const char* GetThePJLCommandfromKeywordsandMarkedValue(const char* keyword, const char* choice);

// Writes the default line of each keyword in `list` that the PPD does not offer as an option.
void OutputPJLCommandForPPDKeyArray(const PPDKeyDefault* list, ppd_file_t* ppd);
