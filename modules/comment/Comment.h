// The job summary: PRINTJOBINFO comment lines for the device's job log. The options it captures are
// also what the colour, toner and booklet lines are made of.

#pragma once

#include <cstddef>
#include <cstdint>

#include "engine/TicketStore.h"

// The captured options; an absent text is empty, an absent number -1 unless said otherwise.
struct CommentOption {
  char sides[256];
  char colorMode[256];
  char collate[256];  // "collate", "nocollate" or empty
  char numberUp[256];
  char staple[256];
  char punch[256];
  char punchHoles[256];
  char signature[256];        // booklet
  char signatureVolume[256];  // its division
  char lineWeight[256];
  char tonerSaver[256];
  char tonerReductionRate[256];
  std::int32_t duplexBindingEdge;
  std::int32_t copies;
  std::int32_t orientation;      // absent: 1
  std::int32_t layoutDirection;  // absent: 1
};
extern CommentOption psoptioncomment;

// The job options.
inline constexpr char kSidesTicketKey[] = "sides";
inline constexpr char kColorModeTicketKey[] = "ZLVColorMode";
inline constexpr char kNumberUpTicketKey[] = "number-up";
inline constexpr char kStapleTicketKey[] = "ZLVStaple";
inline constexpr char kZRPunchTicketKey[] = "ZLVPunch";
inline constexpr char kZRPunchHoleTicketKey[] = "ZLVNumPunchHoles";
inline constexpr char kZRSignatureTicketKey[] = "ZLVSignature";
inline constexpr char kZRSigVolTicketKey[] = "ZLVSigVol";
inline constexpr char KLineWeightAdjustment[] = "ZLVLineWeightAdjustment";
inline constexpr char kTonerSaverKey[] = "ZLVTonerSaver";
inline constexpr char kDetailedTonerSaverKey[] = "ZLVTonerReductionRate";
inline constexpr char kDuplexBindingEdgeTicketKey[] = "DuplexBindingEdge..n.";
inline constexpr char kCopiesTicketKey[] = "com.apple.print.PrintSettings.PMCopies..n.";
inline constexpr char kOrientationTicketKey[] = "orientation-requested";
inline constexpr char kLayoutDirectionTicketKey[] =
    "com.apple.print.PrintSettings.PMLayoutDirection..n.";

inline constexpr std::int32_t CommentTicketDataNum = 15;
extern const TicketData CommentticketData[CommentTicketDataNum];

// Fills psoptioncomment from the filter's argument vector. The collate field keeps its value when
// the options hold neither word.
void CommentGetTicketFromPDE(char* args[]);

// The lines of the block, to standard output: what every summary begins with, what both versions
// say, and what only the long one says. Basic cuts the signature volume at "Sheet" in place.
void OutputXPJLCommandforCommentBegin();
void OutputXPJLCommandforCommentBasic();
void OutputXPJLCommandforCommentAdvanced();

// The lines around them: version of the short and of the long block, and the end.
void OutputXPJLCommandforCommentVersionLow();
void OutputXPJLCommandforCommentVersionHigh();
void OutputXPJLCommandforCommentEnd();
