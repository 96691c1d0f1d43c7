// The order of the job header.

#include "engine/JobHeader.h"

#include <cstdio>
#include <cstring>

#include "DeploymentData.h"
#include "FilterFrame/Source/UtilityFunctionFilter/OutputPrimitives.h"
#include "FilterFrame/Source/UtilityFunctionFilter/PPDAccess.h"
#include "engine/ModuleDispatch.h"
#include "modules/booklet/Booklet.h"
#include "modules/comment/Comment.h"
#include "modules/perfectbind/PerfectBind.h"
#include "modules/quality/Quality.h"
#include "modules/specialpages/SpecialPages.h"

#define ROWS_FILE "engine/JobHeaderRows.def"
#define ROWS_BIND_VALUES BindJobHeaderValues
#define ROWS_BIND_TESTS BindJobHeaderTests
#include "engine/CommandRows.h"

constexpr char prtfmtStrXPJLEnterPS[] = "@PJL ENTER LANGUAGE=POSTSCRIPT\n";
const PrtFmt prtFmtTableEnterPS[] = {{prtfmtStrXPJLEnterPS, nullptr, nullptr}};
const std::int32_t numFmtTableEnterPS = 1;
constexpr RowTable rowTableEnterPS = {"prtFmtTableEnterPS", prtFmtTableEnterPS, nullptr,
                                      "EnterPS\0"};

namespace {

// Whether the printer is one of these models.
bool IsOneOf(const char* const* models, const char* pcFileName) {
  for (const char* const* model = models; *model != nullptr; model++) {
    if (std::strstr(pcFileName, *model) != nullptr) return true;
  }
  return false;
}

void OutputCommentBlock(CommentBlock block) {
  if (block == CommentBlock::kNone) return;
  if (block == CommentBlock::kLong) {
    OutputXPJLCommandforCommentVersionHigh();
  } else {
    OutputXPJLCommandforCommentVersionLow();
  }
  OutputXPJLCommandforCommentBegin();
  OutputXPJLCommandforCommentBasic();
  if (block == CommentBlock::kLong) OutputXPJLCommandforCommentAdvanced();
  OutputXPJLCommandforCommentEnd();
}

}  // namespace

std::vector<const RowTable*> RowTables() {
  std::vector<const RowTable*> tables = {&rowTableXPJLHead, &rowTableXPJLJobMode};
  for (const Module& module : Modules()) {
    tables.insert(tables.end(), module.rows.begin(), module.rows.end());
  }
  tables.insert(tables.end(), {&rowTableEnterPS, &rowTableXPJLTrailer});
  return tables;
}

void InializeDescriptionTable() {
  BindJobHeaderValues();
  BindJobHeaderTests();
  InializeDescriptionTableFromFilter();
}

void OutputXPJLCommand(char* args[]) {
  OutputXPJLCommandFromArray(args, prtFmtTableXPJLHead, numFmtTableXPJLHead);
  OutputXPJLCommandLanguageEncodingForModelGroup();
  OutputXPJLCommandFromArray(nullptr, prtFmtTableXPJLJobMode, numFmtTableXPJLJobMode);
  OutputXPJLCommandFromFilter(args);
  OutputXPJLCommandforPerfectBind();
  OutputXPJLCommandforBooklet();
  OutputXPJLCommandForTonerSaver();
  OutputXPJLCommandOthers();
  OutputXPJLCommandForSpecialPage(args);
  OutputCommentBlock(ChooseCommentBlock(modelsWithComment));
  if (PrinterDecomposesPostScript()) return;  // the spooled settings come before the switch
  OutputXPJLCommandFromArray(nullptr, prtFmtTableEnterPS, numFmtTableEnterPS);
}

void OutputXPJLCommandLanguageEncodingForModelGroup() {
  if (PrinterLanguageIsUTF8()) ZRfprintf(stdout, "@PJL SET STRINGCODESET=UTF8\n");
}

CommentBlock ChooseCommentBlock(const char* const* modelsAlwaysShort) {
  const char* encoding = JobPPDValue(KPPDCharEncoding);
  if (encoding != nullptr && std::strcmp(encoding, kUTF8CharEncoding) != 0)
    return CommentBlock::kShort;
  if (encoding == nullptr) {
    const char* pcFileName = JobPPDValue("PCFileName");
    if (pcFileName == nullptr) return CommentBlock::kNone;
    if (IsOneOf(modelsAlwaysShort, pcFileName)) return CommentBlock::kShort;
  }
  return JobPPDValueIs("CommentOn", "True") ? CommentBlock::kLong : CommentBlock::kNone;
}
