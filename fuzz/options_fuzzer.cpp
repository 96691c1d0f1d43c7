// Job options through every ticket table to the header. The first byte chooses the PPD; user, title
// and options follow, separated by line feeds.

#include "FilterFrame/Source/UtilityFunctionFilter/OutputPrimitives.h"
#include "fuzz/FuzzSupport.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  CaptureOutput();
  if (size == 0) return 0;
  static const std::string ppds[] = {
      PPDWith("*ZLVPrinterLanguageEncoding: \"UTF-8\"\n*CommentOn: \"True\"\n"
              "*ZLVXPrintTypeSettings: \"Default04\"\n*ColorDevice: True\n"),
      PPDWith("*ZLVPrinterLanguageEncoding: \"ISOLatin1\"\n"
              "*OpenUI *PageSize: PickOne\n*DefaultPageSize: A4\n*PageSize A4: \"\"\n"
              "*CloseUI: *PageSize\n*PaperDimension A4: \"595 842\"\n"),
  };
  static std::uint8_t used = 255;
  const std::uint8_t choice = data[0] % 2;
  if (used != choice) UsePPD(ppds[used = choice]);

  std::string_view rest = Text(data + 1, size - 1);
  const std::string user = TakeArgument(rest), title = TakeArgument(rest);
  WriteHeader(user, title, ArgumentText(rest));
  const std::string output = TakeOutput();
  Require(output.find("\x1b%-12345X@PJL ") != output.npos, "the header begins");
  Require(output.ends_with("@PJL ENTER LANGUAGE=POSTSCRIPT\n"), "the header ends");
  return 0;
}
