// Access to the job's PPD through libcups.

#include "FilterFrame/Source/UtilityFunctionFilter/PPDAccess.h"

#include <cstdlib>
#include <cstring>

namespace {

ppd_file_t* jobPPD = nullptr;
bool jobPPDOpened = false;

}  // namespace

ppd_file_t* JobPPD() {
  if (!jobPPDOpened) {
    jobPPDOpened = true;
    if (const char* path = std::getenv("PPD")) jobPPD = ppdOpenFile(path);
  }
  return jobPPD;
}

void CloseJobPPD() {
  if (jobPPD != nullptr) ppdClose(jobPPD);
  jobPPD = nullptr;
  jobPPDOpened = false;
}

ppd_attr_t* ppdFindAttr_ALT(ppd_file_t* ppd, const char* name, const char* /*spec*/) {
  if (ppd == nullptr) return nullptr;
  const std::size_t length = std::strlen(name);
  for (int i = 0; i < ppd->num_attrs; i++) {
    if (std::strncmp(ppd->attrs[i]->name, name, length) == 0) return ppd->attrs[i];
  }
  return nullptr;
}

int CheckIfPPDKeywordSupported(ppd_file_t* ppd, const char* keyword, const char* needle) {
  const ppd_attr_t* attribute = ppdFindAttr_ALT(ppd, keyword, nullptr);
  if (attribute == nullptr || attribute->value == nullptr) return 0;
  return std::strstr(attribute->value, needle) != nullptr ? 1 : 0;
}

const char* JobPPDValue(const char* name) {
  const ppd_attr_t* attribute = ppdFindAttr_ALT(JobPPD(), name, nullptr);
  if (attribute == nullptr) return nullptr;
  return attribute->value != nullptr ? attribute->value : "";
}

bool JobPPDValueIs(const char* name, const char* value) {
  const char* found = JobPPDValue(name);
  return found != nullptr && std::strcmp(found, value) == 0;
}

bool PrinterLanguageIsUTF8() {
  return JobPPDValueIs(KPPDCharEncoding, kUTF8CharEncoding);
}

bool PrinterDecomposesPostScript() {
  return JobPPDValueIs("ZLVPSDecompMode", "1");
}

TextEncoding GetCFStringSimEncodingFromPPD(ppd_file_t* ppd) {
  const ppd_attr_t* attribute = ppdFindAttr_ALT(ppd, "LanguageEncoding", nullptr);
  return TextEncodingForLanguageEncoding(attribute != nullptr ? attribute->value : nullptr);
}
