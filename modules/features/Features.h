// Finishing features: tab margin, trimmer, numbering, offset stacking and output face as PJL lines;
// separator pages and the booklet's image shift as PostScript in the document.

#pragma once

#include <cstdint>
#include <cstdio>

#include "engine/CommandTable.h"
#include "engine/TicketStore.h"

// The features record. Numbers are the dialog's choices, -1 when absent; lengths are texts in
// millimetres, written as they stand.
struct FeaturesOption {
  std::int32_t tabMarginSwitch;
  std::int32_t trimmerSwitch;
  std::int32_t trimmerSelect;  // 2 fore edge, 3 fore edge, top and bottom
  std::int32_t bookletMarginSwitch;
  char tabMarginShift[5];
  char trimmerCuttingSize[5];
  char trimmerWidth[5];
  char trimmerHeight[5];
  char trimmerAdjust[5];
  std::int32_t separatorPageChoice;  // -1 and 1: none
  char separatorPage[100];           // what stands between the brackets of the snippet
  std::int32_t autoFitSwitch;
  char bookletMarginShift[5];
  std::int32_t numInSequenceSwitch;
  char numInSequenceValue[5];
  std::int32_t offsetStacking;  // 4 by pages, 5 by copies
  char offsetEveryPages[6];
  char offsetEveryCopies[6];
  std::int32_t ejectOptions;  // 1 off, 2 down, 3 up, 4 down reverse, 5 up reverse
  char media[100];
  std::int32_t specialPagesMediaSizeA5;
  char punchHoles[100];
  char mediaTypeTab[100];   // "true" or "false"
  char coilPunchFace[100];  // "true" or "false"
  std::int32_t specialPagesMediaTypeTab;
};
extern FeaturesOption xpjlOptionFeatures;

inline constexpr std::int32_t FeaturesTicketDataNum = 25;
extern const TicketData FeaturesticketData[FeaturesTicketDataNum];

inline constexpr std::int32_t FeaturesFmtTableNum = 29;
extern const PrtFmt FeaturesFmtTable[FeaturesFmtTableNum];
extern const RowTable FeaturesRows;

// Fills the record from the filter's argument vector.
void FeaturesGetTicketFromPDE(char* args[]);

// Binds values and conditions to the rows.
void FeaturesInializeDescriptionTableFromFilter();
void FeaturesInitializeCmdParaTable();
void FeaturesInitialzieComparationTable();

// Writes the lines of the rows whose conditions hold.
void FeaturesOutputXPJLCommandFromFilter(char* args[]);

// Writes to `stream` what belongs at the boundary `hook`: with one page per sheet the separator
// snippet at the prolog's end and the auto-fit snippet at the setup's end, with more both in front
// of the line that takes setpagedevice away.
void FeaturesOutputPSCommandFromFilter(int hook, std::FILE* stream);

// The two snippets.
void FeaturesOutputSeparatorPages(std::FILE* stream);
void FeaturesOutputAutoFit(std::FILE* stream);
