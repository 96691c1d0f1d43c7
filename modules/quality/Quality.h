// Colour, toner saving, line weight and image quality as PJL lines: two writers for the job header,
// and the tables that turn a PPD feature met in the PostScript into a line.

#pragma once

#include <cups/ppd.h>

#include <array>
#include <cstddef>
#include <string_view>

// Keywords of the PPD's features.
inline constexpr char KPPDTrapModeKey[] = "ZLVSetTrapMode";
inline constexpr char KPPDLetterHeadDuplexKey[] = "ZLVLetterHeadDuplexMode";
inline constexpr char KPPDGrayBalanceKey[] = "ZLVGrayBalance";
inline constexpr char KPPDOutputModeKey[] = "ZLVOutputMode";
inline constexpr char KPPDFrameModeKey[] = "ZLVFrameMode";
inline constexpr char KPPDBrightnessKey[] = "ZLVBrightnes";  // as the PPDs have it
inline constexpr char KPPDRGBInputProfileKey[] = "ZLVRGBInputProfile";
inline constexpr char KPPDRGBBCorrectionKey[] = "ZLVRGBBCorrection";
inline constexpr char KPPDTonerSaverKey[] = "ZLVTonerSaver";
inline constexpr char KPPDSaveBlankSheetKey[] = "ZLVSaveBlankSheet";
inline constexpr char KPPDHalfToneKey[] = "ZLVHalftone";
inline constexpr char KPPDMonochromePriority[] = "ZLVMonochromePriority";
#define DENSITY(color, band, code) \
  inline constexpr char KPPDColorDensity##color##band[] = "ZLVColorDensity" #color #band;
#include "modules/quality/ColorDensities.def"
#undef DENSITY

// An attribute and an option that say how a printer prints, and their values.
inline constexpr char kPPDDeviceColor[] = "ColorDevice";
inline constexpr char DeviceColorModeMono[] = "False";
inline constexpr char DeviceColorModeColor[] = "True";
inline constexpr char kPPDDefaultZRColorMode[] = "ZLVColorMode";
inline constexpr char DefaultZRColorModeBlack[] = "Black";
inline constexpr char DefaultZRColorModeColor[] = "Color";

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
// asterisk; both texts are compared over their whole length. The search ends one row short: the
// last row of the table is never found.
const char* GetThePJLCommandfromKeywordsandMarkedValue(std::string_view keyword,
                                                       std::string_view choice);

// Writes the default line of each keyword in `list` that the PPD does not offer as an option.
void OutputPJLCommandForPPDKeyArray(const PPDKeyDefault* list, ppd_file_t* ppd);
