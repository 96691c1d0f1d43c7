// Perfect binding: binding edge, trimming, body and cover paper and fine adjustments, from the PPD
// options of the job. Lengths on the wire are tenths of a millimetre.

#pragma once

#include <cstddef>
#include <cstdint>

#include "engine/TicketStore.h"

// The options; paper, media and tray names become the device's words as they are written.
struct PBindOption {
  char position[256];  // OFF, LEFT, RIGHT or TOP
  char rotation[256];  // ROTSEFLAND or ROTLEFPORT, by the position
  char trimming[256];  // OFF, FACE or FULLBLEED
  char cutPageSize[256];
  char cutPositionTop[256];   // "7mm"
  char cutPositionFore[256];  // "7mm"
  char cutPageAdjustFore[256];
  char cutPageAdjustTB[256];
  char rotationAdjustTop[256];
  char rotationAdjustBottom[256];
  char rotationAdjustFore[256];
  char coverAdjustX[256];
  char coverAdjustY[256];
  char coverPageSize[256];
  char coverMediaType[256];
  char coverMediaColor[256];
  char coverPaperTray[256];
  char pageSize[256];  // of the body
  char cutPositionAdjustTB[256];
  std::int32_t imagePosition;  // never given
  std::int32_t minimumCut;     // 1 for the trimming modes that cut as little as they can
};
extern PBindOption psoptionpbind;

inline constexpr std::int32_t PBindTicketDataNum = 19;
extern const TicketData PBindticketData[PBindTicketDataNum];

// The device's words for PPD values; ends with a null pair.
struct PBindWord {
  const char* ppdValue;
  const char* deviceWord;
};
inline constexpr std::size_t kPBindWordCount = 77;
extern const PBindWord PerfectBindParam[kPBindWordCount + 1];

// Fills the record from the filter's argument vector and normalises position and trimming.
void PBindGetTicketFromPDE(char* args[]);

// Writes all lines to standard output; none without a PPD or a binding position.
void OutputXPJLCommandforPerfectBind();

// Writes one attribute with a text.
void OutputXPJLCommandforPBindNormal(const char* value, const char* attribute);

// Writes one attribute with the number in `value` times `multiplier`; nothing when the text is
// empty. Sign mode 1 negates it for position RIGHT, 2 for TOP and LEFT, 0 leaves it.
void OutputXPJLCommandforPBindDigital(const char* value, int multiplier, const char* attribute,
                                      const char* position, int signMode);

// Copies the device word for a PPD value into `out` (`size` bytes); an unknown value leaves it
// alone. `value` may be `out`.
void convertPBindPPDValue(const char* value, char* out, std::size_t size);
