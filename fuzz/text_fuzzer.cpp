// Byte lists, encodings and names. The first byte chooses the size of the destination.

#include <cstring>

#include "FilterFrame/Source/JobNames.h"
#include "engine/TicketStore.h"
#include "fuzz/FuzzSupport.h"
#include "text/BoundedText.h"
#include "text/Encoding.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const std::string source = ArgumentText(Text(data + 1, size - 1));
  const int room = data[0];
  std::string destination(static_cast<std::size_t>(room) + 1, 'x');

  const auto check = [&](int length) {
    Require(length <= std::max(0, room - 1), "texts stay within their destination");
    Require(room == 0 || std::strlen(destination.c_str()) == static_cast<std::size_t>(length),
            "texts are terminated where they end");
    Require(destination.back() == 'x', "nothing is written behind the destination");
  };
  check(ConvertUTF8ToEncoding(source.c_str(), destination.data(), room));
  check(ConvertUTF8ToEncodingForUTF8(source.c_str(), destination.data(), room));
  check(ConvertUTF8ToPPDEncoding(source.c_str(), destination.data(), room, kTextEncodingUTF8));
  checkIfCharacterIsMultibyte(source.c_str());
  Require(CountUTF16Units(FirstUTF16Units(source, 32)) <= 32, "names keep to their limit");

  char text[1024];
  CopyBounded(text, source);
  numstrtochar(text, sizeof text);
  for (const ValidateDataScale* scale :
       {&userNameValidateDataScale, &userNameValidateDataScaleForUTF8, &docuNameValidateDataScale,
        &docuNameValidateDataScaleForProduct02, &docuNameValidateDataScaleForProduct03UTF8}) {
    ValidateDada(source.c_str(), *scale);
  }
  IsAllSpace(source.c_str());
  return 0;
}
