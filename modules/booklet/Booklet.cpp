// The three booklet attributes.

#include "modules/booklet/Booklet.h"

#include <string_view>

#include "FilterFrame/Source/UtilityFunctionFilter/JobOptions.h"
#include "FilterFrame/Source/UtilityFunctionFilter/PPDAccess.h"
#include "engine/AttributeLine.h"
#include "modules/comment/Comment.h"

namespace {

// Without a number-up the imposition is upright even on a landscape page.
const char* ImpositionOrientation() {
  if (*psoptioncomment.numberUp == '\0') return "PORTRAIT";
  const int numberUp = DecimalInteger(psoptioncomment.numberUp);
  const int orientation = psoptioncomment.orientation;
  const bool turnsPages = numberUp == 2 || numberUp == 6;
  const bool landscape =
      turnsPages ? orientation == 1 || orientation == 6 : orientation == 4 || orientation == 5;
  return landscape ? "LANDSCAPE" : "PORTRAIT";
}

void PutBinding(std::string_view signature) {
  if (signature.find("Left") != signature.npos) {
    OutputJobAttribute("DIBB", "LEFT");
  } else if (signature.find("Right") != signature.npos) {
    OutputJobAttribute("DIBB", "RIGHT");
  }
}

}  // namespace

void OutputXPJLCommandforBooklet() {
  if (!PrinterLanguageIsUTF8()) return;
  OutputJobAttribute("DIND", ImpositionOrientation());

  const std::string_view signature = psoptioncomment.signature;
  const std::string_view volume = psoptioncomment.signatureVolume;
  if (signature.empty()) return;
  if (signature == "None") {
    OutputJobAttribute("DIBB", "OFF");
    OutputJobAttribute("DIBK", "OFF");
    return;
  }
  PutBinding(signature);
  const bool divided = !volume.empty() && volume != "None";
  OutputJobAttribute("DIBK", divided ? "MANUALDIVIDE" : "NONEDIVIDE");
}
