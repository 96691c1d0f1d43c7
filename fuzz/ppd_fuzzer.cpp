// PPD bytes through the header and decomposed mode.

#include "FilterFrame/Source/DecomposedStream.h"
#include "fuzz/FuzzSupport.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  CaptureOutput();
  UsePPD(Text(data, size));
  WriteHeader("user", "title",
              "ZLVPBindPosition=BindLeft ZLVPBindPageSize=A4 ZLVPBindTrimming=3EdgeSpecifySize "
              "ZLVPBindCutPageSize=Custom.1x2 ZLVColorMode=Auto ZLVTonerSaver=UserInput");
  static const std::string job = WriteFile(
      "job.ps",
      "%%BeginFeature: *ZLVHalftone Fineness\n%%BeginFeature: *ZLVOutputMode 600x600\n\n");
  static std::string path = job;
  static char word[] = "1";
  char* argv[] = {word, word, word, word, word, word, path.data(), nullptr};
  OutputPSStreamtoFileandInsertPJLforFeaturePDE(7, argv);
  TakeOutput();
  return 0;
}
