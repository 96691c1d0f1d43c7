// Watermark: a line of text stamped on each page, or on the first page only, by PostScript that is
// inserted at the page boundaries.

#pragma once

#include <cstdint>
#include <cstdio>

#include "engine/TicketStore.h"

// The watermark record. Lengths are PostScript points; an absent option reads -1.
struct WatermarkOption {
  char name[256];  // empty: no watermark
  std::int32_t options;
  std::int32_t onlyFirst;    // 0: every page
  char text[256];            // a PostScript string operand, as the dialog wrote it
  std::int32_t orientation;  // 1 and 3 upright, 2 and 4 sideways
  std::int32_t paperHeight;
  std::int32_t paperWidth;
  char filePath[256];
  std::int32_t type;  // 0: text; others are not drawn here
  char font[256];
  std::int32_t fontSize;
  std::int32_t fontType;
  float red;  // 0 to 1
  float green;
  float blue;
  float alpha;
  std::int32_t angle;    // degrees, counter-clockwise
  std::int32_t density;  // percent; 0 is white
  float scale;
  float posHorizontal;
  float posVertical;
  float width;  // of the text box
  float height;
  float hOffset;  // shift of the start point
  float vOffset;
};
extern WatermarkOption psOptionWatermark;

inline constexpr std::int32_t WatermarkTicketDataNum = 25;
extern const TicketData WatermarkticketData[WatermarkTicketDataNum];

// Fills the record from the filter's argument vector.
void WatermarkGetTicketFromPDE(char* args[]);

// Writes to `stream` what belongs at the boundary `hook`; `page` is not used.
void WatermarkOutputPSCommandFromFilter(int hook, int page, std::FILE* stream);

// The start point of the text, so that the text box turned by the angle about it has its centre on
// the page's; the offsets then shift it.
void GetWatermarkPostion(float* x, float* y, float hOffset, float vOffset);
