// The features table, expanded from its .def file, and the PostScript snippets.

#include "modules/features/Features.h"

#include "FilterFrame/Source/JobState.h"
#include "FilterFrame/Source/UtilityFunctionFilter/JobOptions.h"
#include "FilterFrame/Source/UtilityFunctionFilter/OutputPrimitives.h"
#include "engine/AttributeLine.h"

FeaturesOption xpjlOptionFeatures;

namespace {

// What the print dialog's values mean.
constexpr std::int32_t OptionTabMarginNone = 0;
constexpr std::int32_t OptionTabMargin = 1;
constexpr std::int32_t OptionTrimmerNone = 0;
constexpr std::int32_t OptionTrimmer = 1;
constexpr std::int32_t SelectTrimmer = 2;
constexpr std::int32_t SelectTrimmerTopLower = 3;
constexpr std::int32_t OptionNumInSequenceNone = 0;
constexpr std::int32_t OptionNumInSequence = 1;
constexpr std::int32_t OptionOffsetStackingEndOfSetPage = 4;
constexpr std::int32_t OptionOffsetStackingEndOfSetCopy = 5;
constexpr std::int32_t EjectOptionsOff = 1;
constexpr std::int32_t EjectOptionsDown = 2;
constexpr std::int32_t EjectOptionsUp = 3;
constexpr std::int32_t EjectOptionsDownReverse = 4;
constexpr std::int32_t EjectOptionsUpReverse = 5;
constexpr std::int32_t specialPagesMediaNoTab = 0;
constexpr std::int32_t specialPagesMediaTab = 1;
constexpr std::int32_t specialPagesMediasizeNoA5 = 0;
constexpr std::int32_t specialPagesMediasizeA5 = 1;
constexpr const char* punchHoleCoil = "Coil";
constexpr const char* mediaTypeNoTab = "false";
constexpr const char* mediaTypeIsTab = "true";
constexpr const char* coilPunchFaceOn = "true";
constexpr const char* coilPunchFaceOff = "false";
constexpr const char* mediaTypeA5 = "A5";

constexpr std::int32_t kAbsent = -1;
constexpr std::int32_t kNoSeparatorPage = 1;
constexpr std::int32_t kSwitchedOff = 0;

constexpr int kBeforeEndProlog = 14;
constexpr int kBeforeEndSetup = 16;
constexpr int kBeforeSetPageDeviceGoes = 21;

// What the device does not know must neither stop the job nor leave anything on the stack.
void BeginSnippet(std::FILE* stream) {
  ZRfprintf(stream, "[{\n%%BeginNonPPDFeatures\n");
}
void EndSnippet(std::FILE* stream) {
  ZRfprintf(stream, "%%EndNonPPDFeatures\n} stopped cleartomark\n");
}

bool SeveralPagesPerSheet() {
  const long rows = DecimalInteger(StdLayoutRowInfo);
  const long columns = DecimalInteger(StdLayoutColumnInfo);
  return rows * columns >= 2;
}

}  // namespace

#define TICKET(suffix, field, getter) Ticket<getter>(TICKET_KEY(suffix), xpjlOptionFeatures.field),
#define OPTION(key, field, getter) Ticket<getter>(key, xpjlOptionFeatures.field),
constexpr TicketData FeaturesticketData[] = {
#include "modules/features/FeaturesTickets.def"
};

#define ROWS_FILE "modules/features/FeaturesRows.def"
#define ROWS_TABLE FeaturesFmtTable
#define ROWS_COUNT FeaturesFmtTableNum
#define ROWS_LIST FeaturesRows
#define ROWS_BIND_VALUES FeaturesInitializeCmdParaTable
#define ROWS_BIND_TESTS FeaturesInitialzieComparationTable
#include "engine/CommandRows.h"

void FeaturesGetTicketFromPDE(char* args[]) {
  GetTicketFromArray(args, FeaturesticketData, FeaturesTicketDataNum);
}

void FeaturesInializeDescriptionTableFromFilter() {
  FeaturesInitializeCmdParaTable();
  FeaturesInitialzieComparationTable();
}

void FeaturesOutputXPJLCommandFromFilter(char* args[]) {
  OutputXPJLCommandFromArray(args, FeaturesFmtTable, FeaturesFmtTableNum);
}

void FeaturesOutputPSCommandFromFilter(int hook, std::FILE* stream) {
  const bool several = SeveralPagesPerSheet();
  if (hook == (several ? kBeforeSetPageDeviceGoes : kBeforeEndProlog)) {
    FeaturesOutputSeparatorPages(stream);
  }
  if (hook == (several ? kBeforeSetPageDeviceGoes : kBeforeEndSetup)) {
    FeaturesOutputAutoFit(stream);
  }
}

void FeaturesOutputSeparatorPages(std::FILE* stream) {
  const std::int32_t choice = xpjlOptionFeatures.separatorPageChoice;
  if (choice == kAbsent || choice == kNoSeparatorPage) return;
  BeginSnippet(stream);
  OutputFormattedLine(stream,
                      "1 dict dup/SeparatorPages[%s]put/Custom/ProcSet "
                      "findresource/setcoverseparator get exec\n",
                      xpjlOptionFeatures.separatorPage);
  EndSnippet(stream);
}

void FeaturesOutputAutoFit(std::FILE* stream) {
  const FeaturesOption& option = xpjlOptionFeatures;
  if (option.bookletMarginSwitch == kAbsent || option.bookletMarginSwitch == kSwitchedOff) return;
  BeginSnippet(stream);
  OutputFormattedLine(stream,
                      "%s.000/Custom/ProcSet findresource/setsignatureimageshift get exec\n",
                      option.bookletMarginShift);
  EndSnippet(stream);

  if (option.autoFitSwitch == kAbsent) return;
  BeginSnippet(stream);
  ZRfprintf(stream, option.autoFitSwitch == kSwitchedOff
                        ? "/Custom/ProcSet findresource/setsignatureautoscale 2 copy known "
                          "{get false exch exec} {pop pop} ifelse\n"
                        : "/Custom/ProcSet findresource/setsignatureautoscale 2 copy known "
                          "{get true exch exec} {pop pop} ifelse\n");
  EndSnippet(stream);
}
