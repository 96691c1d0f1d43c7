// The pass-through loop and what happens at a token.

#include "FilterFrame/Source/PostScriptStream.h"

#include <cstdint>
#include <cstring>

#include "FilterFrame/Source/JobState.h"
#include "FilterFrame/Source/UtilityFunctionFilter/JobOptions.h"
#include "FilterFrame/Source/UtilityFunctionFilter/OutputPrimitives.h"
#include "FilterFrame/Source/UtilityFunctionFilter/SystemVersion.h"
#include "engine/ModuleDispatch.h"
#include "text/BoundedText.h"

char g_DLOutputMode[255];

namespace {

constexpr std::int32_t kFirstSystemWithPageLog = 0x1070;

void Write(std::string_view bytes, std::FILE* stream) {
  ZRfwrite(bytes.data(), 1, bytes.size(), stream);
}

}  // namespace

void OutputPSStream(int argc, char* argv[], const InputStage& stage) {
  const JobInput input(argc == 6 ? nullptr : argv[6]);
  if (input.fd() < 0) return;
  PostScriptLines lines(input.reader(stage));
  StreamPosition position;
  PostScriptLines::Piece piece;
  while (lines.next(piece)) {
    if (piece.token == nullptr) {
      Write(piece.bytes, stdout);
    } else if (!OutputTokenLine(*piece.token, piece.bytes, position, stdout, argv)) {
      return;
    }
  }
  ReportReadError(lines);
  ZRfputc(kEndOfTransmission, stdout);
}

void ReportReadError(const PostScriptLines& lines) {
  if (lines.readError() == 0) return;
  std::fprintf(stderr, "ERROR: Unable to read print data: %s\n", std::strerror(lines.readError()));
}

bool OutputTokenLine(const PostScriptToken& token, std::string_view line, StreamPosition& position,
                     std::FILE* stream, char* argv[]) {
  if (token.endsPage) JobPages = ++position.page;
  const bool hooked = !(token.onlyFirst && position.prologEnded);
  if (token.onlyFirst) position.prologEnded = true;

  if (hooked && token.hookPlace == HookPlace::kBefore) {
    OutputPSCommandFromFilter(token.hookCode, position.page, stream);
  }
  if (token.pollsCancel && CancelJob == 1) return false;
  Write(line, stream);
  if (hooked && token.hookPlace == HookPlace::kAfter) {
    OutputPSCommandFromFilter(token.hookCode, position.page, stream);
  }
  if (token.endsPage) FlushOutput(stream);
  if (stream != stdout && std::ferror(stream) != 0) return false;
  if (token.logsPage) OutputPageLogCommand(position.page, argv);
  return true;
}

void OutputPageLogCommand(int page, char* argv[]) {
  if (argv[4] == nullptr) return;
  std::int32_t version = 0;
  Gestalt_ALT(kSystemVersion, &version);
  if (version >= kFirstSystemWithPageLog) std::fprintf(stderr, "PAGE:%d %s\n", page, argv[4]);
}

int GetDLOutputMode(char* argv[]) {
  const JobOptions options(argv[5]);
  CopyBounded(g_DLOutputMode, "");
  const char* mode = cupsGetOption("ZLVOutputMode", options.count(), options.list());
  if (mode == nullptr) return 0;
  CopyBounded(g_DLOutputMode, mode);
  return 1;
}
